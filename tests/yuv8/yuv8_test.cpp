#include "tests/extremes.h"
#include "tests/yuv8/models.h"

namespace {

using namespace fikleipa::tests;

class Yuv8 : public testing::TestWithParam<std::vector<Converter> (*)()> {};
INSTANTIATE_TEST_SUITE_P(PackedPlanarAndCopies, Yuv8, testing::Values(packedConverters, planarConverters, planeCopies));

// Pitches below, at and above what a row needs, odd ones, and 0.
TEST_P(Yuv8, ConvertersDoAsTheirModels) {
    checkAll(GetParam()(), 1 << 14, [](const Converter& converter) {
        std::vector<Geometry> all;
        for (const unsigned width : {0U, 1U, 2U, 3U, 7U, 8U, 31U, 64U, 129U}) {
            const unsigned dstRow = converter.dstRow(width);
            const unsigned srcRow = converter.srcRow(width);
            for (const unsigned height : {0U, 1U, 2U, 3U, 4U, 5U, 8U}) {
                for (const unsigned dstPitch : {0U, dstRow / 3, dstRow, dstRow + width % 2, dstRow + 3, dstRow + 40}) {
                    for (const unsigned srcPitch : {0U, srcRow / 2, srcRow, srcRow + 3, srcRow + 40, dstRow}) {
                        all.push_back({width, height, dstPitch, srcPitch});
                    }
                }
            }
        }
        return all;
    });
}

// Frames that caches do not hold go other ways; the rows of these are longer than what a way takes at a time.
constexpr unsigned kWidth = 4102;
constexpr unsigned kHeight = 178;
constexpr std::size_t kLargeRoom = std::size_t{3} * kWidth * kHeight;

TEST_P(Yuv8, LargeFramesAreConvertedAlike) {
    checkAll(GetParam()(), kLargeRoom, [](const Converter& converter) {
        const unsigned dstRow = converter.dstRow(kWidth);
        const unsigned srcRow = converter.srcRow(kWidth);
        return std::vector<Geometry>{{kWidth, kHeight, dstRow + 26, srcRow + 10}, {kWidth, kHeight, dstRow, srcRow}};
    });
}

TEST_P(Yuv8, EmptyFramesTakeNoTime) {
    expectEmptyFramesToTakeNoTime(GetParam()());
}

TEST(Yuv8Frames, RowOffsetsWrapAt32Bits) {
    expectRowOffsetsToWrap(packedConverters());
    expectRowOffsetsToWrap(planarConverters());
}

TEST(Yuv8Frames, ResultsAndPitchesWrapAt32Bits) {
    std::uint8_t byte = 0;
    EXPECT_EQ(cycbcr_yvyu_to_uyvy(&byte, &byte, 0, 0x10001, 0x10000, 0), 0x10000U);
    EXPECT_EQ(cycbcr_cyuv_to_p422(&byte, &byte, 0, 0x10001, 0x10000, 0), 0x18000U);
}

TEST(Yuv8Frames, TheOverloadWorksOnUnitsOfEightBytes) {
    Bytes src = noise(5 * 8);
    for (const unsigned long units : {1UL, 2UL, 9UL}) {
        Bytes dst(5 * 8, 0x55);
        EXPECT_EQ(cycbcr_yuy2_to_yvyu(dst.data(), src.data(), units, 1UL, 9UL), units);
        for (std::size_t i = 0; i < dst.size(); ++i) {
            const std::array<std::uint8_t, 4> swapped{src[i / 8 * 8], src[i / 8 * 8 + 3], src[i / 8 * 8 + 2],
                                                      src[i / 8 * 8 + 1]};
            ASSERT_EQ(dst[i], i / 8 >= units / 2 ? 0x55 : i % 8 < 4 ? swapped[i % 8] : 0) << i;
        }
    }
}

} // namespace
