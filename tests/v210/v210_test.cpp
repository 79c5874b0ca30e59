#include "tests/extremes.h"
#include "tests/v210/models.h"

namespace {

using namespace fikleipa::tests;

class V210 : public testing::TestWithParam<std::vector<Converter> (*)()> {};
INSTANTIATE_TEST_SUITE_P(EightAndSixteenBits, V210,
                         testing::Values(eightBitConverters, v210OfDeepPlanes, uyvyOfDeepPlanes, deepPlanesOfPacked,
                                         rowUnpackers));

std::vector<unsigned> widths() {
    std::vector<unsigned> all{23, 24, 25, 35, 36, 37, 47, 48, 49, 60, 100};
    for (unsigned width = 0; width < 15; ++width) all.push_back(width);
    return all;
}

// Pitches below, at and above what a row needs, odd ones, and 0.
TEST_P(V210, ConvertersDoAsTheirModels) {
    checkAll(GetParam()(), 1 << 14, [](const Converter& converter) {
        std::vector<Geometry> all;
        for (const unsigned width : widths()) {
            const unsigned dstRow = converter.dstRow(width);
            const unsigned srcRow = converter.srcRow(width);
            for (const unsigned height : {0U, 1U, 2U, 5U}) {
                for (const unsigned dstPitch : {0U, dstRow, dstRow + 7, naturalPitch(width) + 26}) {
                    for (const unsigned srcPitch : {0U, srcRow, srcRow + 5, srcRow + 40}) {
                        const bool halves = (dstPitch + srcPitch) % 2 == 0;
                        all.push_back({width, height, dstPitch, srcPitch, halves ? dstPitch / 2 : 2 * width + 17});
                    }
                }
            }
        }
        return all;
    });
}

constexpr std::size_t kLargeRoom = std::size_t{10} << 20;

TEST_P(V210, LargeFramesAreConvertedAlike) {
    constexpr unsigned kWidth = 2082; // with a rest of a step of two groups and of a vector
    checkAll(GetParam()(), kLargeRoom, [](const Converter& converter) {
        const unsigned dstPitch = roundUp(converter.dstRow(kWidth), 64);
        const unsigned srcPitch = roundUp(converter.srcRow(kWidth), 64);
        std::vector<Geometry> all{{kWidth, 340, dstPitch, srcPitch, 2 * kWidth},
                                  {kWidth, 341, dstPitch + 26, srcPitch + 12, 2 * kWidth + 6}};
        if (converter.splits) all.push_back({kWidth, 1608, 5632, srcPitch}); // each band is large
        return all;
    });
}

TEST_P(V210, RowOffsetsWrapAt32Bits) {
    expectRowOffsetsToWrap(GetParam()());
}

TEST_P(V210, EmptyFramesTakeNoTime) {
    if (GetParam() != rowUnpackers) expectEmptyFramesToTakeNoTime(GetParam()());
}

// The last group of a row has pixels which the next row overwrites, and of the last row the next plane's first ones.
TEST_P(V210, LargeFramesWithoutGapsAreConvertedAlike) {
    Comparison comparison(kLargeRoom);
    for (const Converter& converter : GetParam()()) {
        comparison.limitSamples(converter.sampleBits);
        for (const unsigned width : {1916U, 1918U, 1917U}) {
            const unsigned dstPitch = converter.dstRow(width);
            const unsigned srcPitch = converter.srcRow(width);
            comparison.checkTight(converter, {width, 400, dstPitch, srcPitch, dstPitch / 2});
            comparison.checkTight(converter, {width, 401, dstPitch, srcPitch, dstPitch});
        }
        if (HasFatalFailure()) return;
    }
}

} // namespace
