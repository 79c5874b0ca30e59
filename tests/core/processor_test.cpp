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
constexpr unsigned kBits[] = {0x20, 0x80, 0x2000, 0x4000};

unsigned features(unsigned combination) {
    unsigned flags = 0;
    for (unsigned i = 0; i < 4; ++i) flags |= (combination >> i & 1) != 0 ? kBits[i] : 0;
    return flags;
}

struct Levels {
    unsigned probed;
    unsigned best;
    unsigned set2, set3, set4, set5;
};

Levels expected(unsigned flags) {
    const bool sse = (flags & 0x20) != 0;
    const bool avx = (flags & 0x80) != 0;
    const bool avx2 = (flags & 0x2000) != 0;
    const bool avx512 = (flags & 0x4000) != 0;
    const unsigned two = sse ? 2 : 1;
    const unsigned three = avx2 ? 3 : two;
    return {avx512 ? 4U : three, avx512 ? 4U : avx2 ? 3U : avx ? 5U : sse ? 4U : 0U, two, three, avx512 ? 4U : three,
            avx ? 5U : two};
}

TEST(Processor, LevelsFollowTheFeatures) {
    for (unsigned combination = 0; combination < 16; ++combination) {
        cpuFeatures = features(combination);
        const Levels levels = expected(cpuFeatures);
        SCOPED_TRACE(cpuFeatures);

        gdwProcType = kUnprobed;
        EXPECT_EQ(cycbcr_get_cpu(1), levels.probed);
        EXPECT_EQ(gdwProcType, levels.probed);
        EXPECT_EQ(cycbcr_get_cpu(0), levels.best);
        EXPECT_EQ(gdwProcType, levels.probed) << "the best level must not be stored";

        const std::pair<unsigned, unsigned> requests[] = {
            {0, 0},           {1, 1},           {2, levels.set2}, {3, levels.set3},
            {4, levels.set4}, {5, levels.set5}, {6, levels.best}, {0xFFFFFFFF, levels.best},
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
    const auto probes = [&](PXConvertFrame* convert) {
        gdwProcType = kUnprobed;
        convert(bytes, bytes + 32, 2, 1, 4, 4);
        return gdwProcType == 2;
    };
    for (PXConvertFrame* const convert :
         {cycbcr_yuy2_to_yuy2, cycbcr_yvyu_to_yvyu, cycbcr_uyvy_to_uyvy, cycbcr_cyuv_to_cyuv, cycbcr_yuy2_to_uyvy,
          cycbcr_uyvy_to_yuy2, static_cast<PXConvertFrame*>(cycbcr_yuy2_to_yvyu), cycbcr_yvyu_to_yuy2,
          cycbcr_yuy2_to_cyuv, cycbcr_yvyu_to_cyuv, cycbcr_uyvy_to_cyuv, cycbcr_cyuv_to_uyvy, cycbcr_cyuv_to_yuy2,
          cycbcr_cyuv_to_yvyu}) {
        EXPECT_TRUE(probes(convert));
    }
    for (PXConvertFrame* const convert : {cycbcr_interleaved_copy, cycbcr_yvyu_to_uyvy, cycbcr_uyvy_to_yvyu}) {
        EXPECT_FALSE(probes(convert));
    }

    gdwProcType = kUnprobed;
    cycbcr_invert(bytes, 4, 2);
    EXPECT_EQ(gdwProcType, 2U);
    gdwProcType = kUnprobed;
    cycbcr_i420_to_rgb32(bytes, bytes + 32, 2, 2, 8, 0, PX_MATRIX_BT601, PX_RGB_BGRA);
    EXPECT_EQ(gdwProcType, 2U);
    gdwProcType = kUnprobed;
    cycbcr_transcode(bytes, bytes + 32, 2, 1, 4, 4, PX_MATRIX_BT601, PX_RGB_BGRA, 1, 1);
    EXPECT_EQ(gdwProcType, 2U);
}

} // namespace
