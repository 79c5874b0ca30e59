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

// Hosts can tell which converters probe.
TEST(Processor, ConvertersThatProbe) {
    cpuFeatures = 0x20;
    unsigned char bytes[64] = {};
    const auto probes = [&](auto* converter, auto... arguments) {
        gdwProcType = kUnprobed;
        converter(bytes, arguments...);
        return gdwProcType == 2;
    };
    unsigned char* const src = bytes + 32;
    for (PXConvertFrame* const convert :
         {cycbcr_yuy2_to_yuy2, cycbcr_yvyu_to_yvyu, cycbcr_uyvy_to_uyvy, cycbcr_cyuv_to_cyuv, cycbcr_yuy2_to_uyvy,
          cycbcr_uyvy_to_yuy2, static_cast<PXConvertFrame*>(cycbcr_yuy2_to_yvyu), cycbcr_yvyu_to_yuy2,
          cycbcr_yuy2_to_cyuv, cycbcr_yvyu_to_cyuv, cycbcr_uyvy_to_cyuv, cycbcr_cyuv_to_uyvy, cycbcr_cyuv_to_yuy2,
          cycbcr_cyuv_to_yvyu}) {
        EXPECT_TRUE(probes(convert, src, 2U, 1U, 4U, 4U));
    }
    for (PXConvertFrame* const convert : {cycbcr_interleaved_copy, cycbcr_yvyu_to_uyvy, cycbcr_uyvy_to_yvyu}) {
        EXPECT_FALSE(probes(convert, src, 2U, 1U, 4U, 4U));
    }
    EXPECT_TRUE(probes(cycbcr_invert, 4U, 2U));
    EXPECT_TRUE(probes(cycbcr_i420_to_rgb32, src, 2U, 2U, 8U, 0U, PX_MATRIX_BT601, PX_RGB_BGRA));
    EXPECT_TRUE(probes(cycbcr_transcode, src, 2U, 1U, 4U, 4U, PX_MATRIX_BT601, PX_RGB_BGRA, 1, 1));
}

} // namespace
