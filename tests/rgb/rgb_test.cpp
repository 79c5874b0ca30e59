#include "tests/extremes.h"
#include "tests/rgb/models.h"

#include <atomic>
#include <thread>

namespace {

using namespace fikleipa::tests;

class Rgb : public testing::TestWithParam<std::vector<Converter> (*)()> {};
INSTANTIATE_TEST_SUITE_P(FromAndToEightBitsAndMore, Rgb,
                         testing::Values(toRgb8Converters, deepToRgbConverters, fromRgb8Converters,
                                         fromRgbDeepConverters, alphaConverters));

// Every width that a group or a vector may end in, and those about the ends of chunks. Pitches below, at and above what
// a row needs, odd ones, and 0; the rest by turns.
TEST_P(Rgb, ConvertersDoAsTheirModels) {
    constexpr unsigned kTypes[] = {0, 1, 2, 3, 4, 7, 0x8000, 0x8001, 0x8002, 0x8003, 0x10002};
    std::vector<unsigned> widths{127, 128, 129, 131, 194, 200, 767, 768, 769, 770, 1571, 1919, 1920, 1922, 1927, 3847};
    for (unsigned width = 0; width <= 70; ++width) widths.push_back(width);
    unsigned turn = 0;
    checkAll(GetParam()(), std::size_t{1} << 18, [&](const Converter& converter) {
        std::vector<Geometry> all;
        for (const unsigned width : widths) {
            const unsigned dst = converter.dstRow(width + width % 2);
            const unsigned src = converter.srcRow(width + width % 2);
            const unsigned dstPitches[] = {dst, dst + 7, 0, dst / 2 + 1, converter.dstRow(width) + 40};
            const unsigned srcPitches[] = {src, src + 5, src + 4, src + 40, 0, converter.srcRow(width), src + 1};
            for (const unsigned height : {0U, 1U, 2U, 3U, 5U, 9U}) {
                if (width > 200 && height != 3) continue;
                ++turn;
                all.push_back({width, height, dstPitches[turn % 5], srcPitches[turn % 7],
                               turn % 26 < 13 ? dst / 2 : 2 * width + 3, turn % 13, kTypes[turn % 11], turn / 5});
            }
        }
        return all;
    });
}

// Frames that caches do not hold go other ways, by how they lie and which way up they are.
TEST_P(Rgb, LargeFramesAreConvertedAlike) {
    constexpr unsigned kWidth = 3849; // more than a chunk, whole words of alpha, with a rest of a group and of a vector
    unsigned turn = 0;
    std::string done;
    checkAll(GetParam()(), std::size_t{5} << 20, [&](const Converter& converter) {
        const unsigned dstRow = converter.dstRow(kWidth + 1);
        if (dstRow == 0 || std::exchange(done, converter.name) == converter.name) return std::vector<Geometry>();
        ++turn;
        const unsigned dstPitch = roundUp(dstRow, 64) + (turn % 5 == 0 ? 14 : 0);
        const unsigned height = (1U << 20) / dstRow + 2;
        const unsigned type = (turn % 3 == 0 ? 0 : kBottomUp) + turn / 3 % 4;
        return std::vector<Geometry>{
            {kWidth, height, dstPitch, converter.srcRow(kWidth + 1) + 10, 2 * kWidth + 2, turn % 8, type, turn / 2}};
    });
}

TEST_P(Rgb, RowOffsetsWrapAt32Bits) {
    expectRowOffsetsToWrap(GetParam()());
}

TEST_P(Rgb, EmptyFramesTakeNoTime) {
    expectEmptyFramesToTakeNoTime(GetParam()());
}

// First calls race to probe the level and to choose kernels, and a host may set the level meanwhile.
TEST(Threads, ManyCallersConvertAtOnce) {
    constexpr unsigned kWidth = 66;
    constexpr unsigned kHeight = 4;
    const Bytes source = noise(std::size_t{2} * kWidth * kHeight);
    const auto convert = [&](Bytes src) {
        Bytes dst(std::size_t{4} * kWidth * kHeight);
        cycbcr_transcode(dst.data(), src.data(), kWidth, kHeight, kWidth * 4, 0, PX_MATRIX_BT709, PX_RGB_RGBA,
                         PX_FOURCC_RGB32, PX_FOURCC_UYVY);
        return dst;
    };
    std::vector<std::vector<Bytes>> results(16, std::vector<Bytes>(50));
    std::vector<std::thread> callers;
    for (auto& own : results) {
        callers.emplace_back([&, isHost = &own == &results.front()] {
            for (unsigned round = 0; round < own.size(); ++round) {
                own[round] = convert(source);
                if (isHost) cycbcr_set_cpu(round % 7);
            }
        });
    }
    for (std::thread& caller : callers) caller.join();
    const Bytes expected = convert(source);
    for (const auto& own : results) EXPECT_EQ(own, std::vector<Bytes>(own.size(), expected));
}

} // namespace
