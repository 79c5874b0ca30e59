#include "fikleipa.h"
#include "pxutil.h"
#include "tests/core/platform.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>

namespace fikleipa::tests {

unsigned cpuFeatures = 0;
unsigned cpuQuestions = 0;
bool swapThrows = false;

} // namespace fikleipa::tests

unsigned int CPUFeatureFlags() {
    ++fikleipa::tests::cpuQuestions;
    return fikleipa::tests::cpuFeatures;
}

void EndianConvertWord(void* destination, const void* source, size_t count) {
    if (fikleipa::tests::swapThrows) throw count;
    auto* const dst = static_cast<unsigned char*>(destination);
    const auto* const src = static_cast<const unsigned char*>(source);
    for (size_t i = 0; i < 2 * count; i += 2) std::tie(dst[i], dst[i + 1]) = std::pair(src[i + 1], src[i]);
}

namespace {

using namespace fikleipa::tests;

constexpr unsigned kUnprobed = 0xFFFFFFFE;

// Every combination of the four bits, which decide everything.
TEST(Processor, LevelsFollowTheFeatures) {
    for (unsigned combination = 0; combination < 16; ++combination) {
        const bool sse = combination % 2 != 0;
        const bool avx = combination / 2 % 2 != 0;
        const bool avx2 = combination / 4 % 2 != 0;
        const bool avx512 = combination / 8 != 0;
        cpuFeatures = (sse ? 0x20U : 0) | (avx ? 0x80U : 0) | (avx2 ? 0x2000U : 0) | (avx512 ? 0x4000U : 0);
        SCOPED_TRACE(cpuFeatures);
        const unsigned two = sse ? 2 : 1;
        const unsigned three = avx2 ? 3 : two;
        const unsigned four = avx512 ? 4 : three;
        const unsigned best = avx512 ? 4 : avx2 ? 3 : avx ? 5 : sse ? 4 : 0;

        gdwProcType = kUnprobed;
        EXPECT_EQ(cycbcr_get_cpu(1), four);
        EXPECT_EQ(gdwProcType, four);
        EXPECT_EQ(cycbcr_get_cpu(0), best);
        EXPECT_EQ(gdwProcType, four) << "the best level must not be stored";

        const std::pair<unsigned, unsigned> requests[] = {
            {0, 0}, {1, 1}, {2, two}, {3, three}, {4, four}, {5, avx ? 5 : two}, {6, best}, {0xFFFFFFFF, best},
        };
        for (const auto& [request, stored] : requests) {
            EXPECT_EQ(cycbcr_set_cpu(request), stored) << "request " << request;
            EXPECT_EQ(gdwProcType, stored);
            EXPECT_EQ(cycbcr_get_cpu(-1), stored) << "what was stored counts as probed, 0 as well";
        }
    }
}

TEST(Processor, ProbesOnceAndAsksAfresh) {
    cpuFeatures = 0;
    gdwProcType = kUnprobed;
    cpuQuestions = 0;
    cycbcr_get_cpu(1);
    EXPECT_EQ(cpuQuestions, 3U) << "each of the three bits is asked for on its own";
    cycbcr_get_cpu(1);
    EXPECT_EQ(cpuQuestions, 3U) << "a level that is known is not probed again";
    cycbcr_get_cpu(0);
    EXPECT_EQ(cpuQuestions, 7U);

    gdwProcType = kUnprobed;
    cpuQuestions = 0;
    cycbcr_set_cpu(9);
    EXPECT_EQ(cpuQuestions, 7U) << "the probe, then the best level";
}

} // namespace
