#include "command.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fmt/format.h>

namespace fikleipa::tool {
namespace {

using ViewTest = CommandTest;
using PatternTest = CommandTest;

void expectNear(const Pixel& seen, const Pixel& wanted, int tolerance, const std::string& what) {
    EXPECT_LE(std::abs(seen.red - wanted.red), tolerance) << what << " red " << seen.red;
    EXPECT_LE(std::abs(seen.green - wanted.green), tolerance) << what << " green " << seen.green;
    EXPECT_LE(std::abs(seen.blue - wanted.blue), tolerance) << what << " blue " << seen.blue;
}

// A frame of 4x4: the upper half red, the lower half blue, at 100 % by BT.601.
struct Case {
    std::string layout;
    Bytes frame;
};

Bytes repeated(const Bytes& first, const Bytes& second, std::size_t times) {
    Bytes bytes;
    for (const Bytes* each : {&first, &second}) {
        for (std::size_t i = 0; i < times; ++i) bytes.insert(bytes.end(), each->begin(), each->end());
    }
    return bytes;
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes bytes;
    for (const Bytes& part : parts) bytes.insert(bytes.end(), part.begin(), part.end());
    return bytes;
}

TEST_F(ViewTest, KnownColoursOfEveryLayout) {
    const Bytes luma = repeated({81}, {41}, 8);
    const Bytes cb420 = repeated({90}, {240}, 2);
    const Bytes cr420 = repeated({240}, {110}, 2);
    const std::vector<Case> cases{
        {"uyvy", repeated({90, 81, 240, 81}, {240, 41, 110, 41}, 4)},
        {"yuy2", repeated({81, 90, 81, 240}, {41, 240, 41, 110}, 4)},
        {"yvyu", repeated({81, 240, 81, 90}, {41, 110, 41, 240}, 4)},
        {"cyuv", repeated({240, 41, 110, 41}, {90, 81, 240, 81}, 4)},
        {"i420", joined({luma, cb420, cr420})},
        {"yv12", joined({luma, cr420, cb420})},
        {"p422", joined({luma, repeated({90}, {240}, 4), repeated({240}, {110}, 4)})},
        {"nv12", joined({luma, repeated({90, 240}, {240, 110}, 2)})},
        {"rgb32", repeated({0, 0, 255, 9}, {255, 0, 0, 9}, 8)},
        {"rgb32 --rgb-order argb", repeated({9, 255, 0, 0}, {9, 0, 0, 255}, 8)},
        {"rgb32 --rgb-order abgr --bottom-up", repeated({9, 255, 0, 0}, {9, 0, 0, 255}, 8)},
        {"rgb24 --rgb-order rgba", repeated({255, 0, 0}, {0, 0, 255}, 8)},
        {"rgb565 --rgb-order rgba", repeated({0x00, 0xF8}, {0x1F, 0x00}, 8)},
        {"rgb565", repeated({0x1F, 0x00}, {0x00, 0xF8}, 8)},
        {"rgb555 --rgb-order argb", repeated({0x00, 0x7C}, {0x1F, 0x80}, 8)},
    };
    for (const auto& [layout, frame] : cases) {
        write("in", joined({noise(frame.size()), frame}));
        mustRun("fikleipa view in out.png --frame 1 --size 4x4 --from " + layout);
        const std::vector<Pixel> pixels = picture("out.png", 4, 4);
        ASSERT_EQ(pixels.size(), 16U);
        for (std::size_t i = 0; i < 16; ++i)
            expectNear(pixels[i], i < 8 ? Pixel{255, 0, 0} : Pixel{0, 0, 255}, 2, fmt::format("{} {}", layout, i));
    }
}

// The same picture of samples that are `scale` times those of 8 bits; chroma rows and columns are as many as luma's
// divided by these.
Bytes deepFrame(unsigned int scale, std::size_t columns, std::size_t rows) {
    const auto halves = [&](unsigned int first, unsigned int second, std::size_t count) {
        std::vector<unsigned int> values(count, first * scale);
        std::fill(values.begin() + static_cast<std::ptrdiff_t>(count / 2), values.end(), second * scale);
        return words(values);
    };
    const std::size_t chroma = 16 / columns / rows;
    return joined({halves(81, 41, 16), halves(90, 240, chroma), halves(240, 110, chroma)});
}

TEST_F(ViewTest, DeepLayoutsHaveDeepPictures) {
    const std::vector<Case> cases{
        {"yuv420p10", deepFrame(4, 2, 2)},
        {"yuv422p10", deepFrame(4, 2, 1)},
        {"yuv444p10", deepFrame(4, 1, 1)},
        {"yuv420p12", deepFrame(16, 2, 2)},
        {"yuv422p12", deepFrame(16, 2, 1)},
        {"yuv444p12", deepFrame(16, 1, 1)},
        {"yuv420p16", deepFrame(256, 2, 2)},
        {"yuv422p16", deepFrame(256, 2, 1)},
        {"p010", joined({words(std::vector<unsigned int>(8, 81 << 8)), words(std::vector<unsigned int>(8, 41 << 8)),
                         words({90 << 8, 240 << 8, 90 << 8, 240 << 8, 240 << 8, 110 << 8, 240 << 8, 110 << 8})})},
        {"rgb48", repeated(words({0, 0, 65535}), words({65535, 0, 0}), 8)},
        {"rgb64 --rgb-order argb --bottom-up", repeated(words({9, 0, 0, 65535}), words({9, 65535, 0, 0}), 8)},
    };
    const auto expectPicture = [&](const std::string& what) {
        const Picture picture = storedPicture("out.png");
        ASSERT_EQ(picture.pixels.size(), 16U);
        EXPECT_EQ(picture.bits, 16) << what;
        for (std::size_t i = 0; i < 16; ++i)
            expectNear(picture.pixels[i], i < 8 ? Pixel{65535, 0, 0} : Pixel{0, 0, 65535}, 512,
                       fmt::format("{} {}", what, i));
    };
    for (const auto& [layout, frame] : cases) {
        write("in", joined({noise(frame.size()), frame}));
        mustRun("fikleipa view in out.png --frame 1 --size 4x4 --from " + layout);
        expectPicture(layout);
    }
    write("in", deepFrame(4, 2, 1));
    mustRun("fikleipa convert in packed --from yuv422p10 --to v210 --size 4x4");
    mustRun("fikleipa view packed out.png --from v210 --size 4x4");
    expectPicture("v210");
}

TEST_F(ViewTest, EveryStepOfTenBitsIsSeen) {
    std::vector<unsigned int> ramp;
    for (unsigned int y = 64; y < 940; ++y) ramp.push_back(y);
    ramp.insert(ramp.end(), ramp.size(), 512);
    write("in", words(ramp));
    mustRun("fikleipa convert in packed --from yuv422p10 --to v210 --size 876x1");
    for (const auto* source : {"in out.png --from yuv422p10", "packed out.png --from v210"}) {
        mustRun(fmt::format("fikleipa view {} --size 876x1", source));
        const Picture picture = storedPicture("out.png");
        ASSERT_EQ(picture.pixels.size(), 876U);
        for (std::size_t i = 1; i < 876; ++i)
            EXPECT_GT(picture.pixels[i].green, picture.pixels[i - 1].green) << source << " " << i;
    }
}

// The last pixel of a row of v210 would take its chroma from what lies behind the row.
TEST_F(ViewTest, V210IsOneColourToItsLastColumn) {
    for (const std::size_t width : {2U, 4U, 6U, 48U, 94U}) {
        std::vector<unsigned int> samples(width * 2, 327);
        samples.insert(samples.end(), width, 361);
        samples.insert(samples.end(), width, 960);
        write("in", words(samples));
        mustRun(fmt::format("fikleipa convert in packed --from yuv422p10 --to v210 --size {}x2", width));
        mustRun(fmt::format("fikleipa view packed out.png --from v210 --size {}x2", width));
        for (const Pixel& pixel : storedPicture("out.png").pixels)
            expectNear(pixel, {65535, 0, 0}, 512, fmt::format("width {}", width));
    }
}

TEST_F(ViewTest, SizesOfRgbMayBeOdd) {
    Bytes frame = noise(5 * 3 * 3);
    write("in", frame);
    mustRun("fikleipa view in - --from rgb24 --rgb-order rgba --size 5x3 > out.png");
    const std::vector<Pixel> pixels = picture("out.png", 5, 3);
    ASSERT_EQ(pixels.size(), 15U);
    for (std::size_t i = 0; i < 15; ++i)
        expectNear(pixels[i], {frame[i * 3], frame[i * 3 + 1], frame[i * 3 + 2]}, 0, std::to_string(i));
}

// Y, Cb and Cr of bars at 75 %, as the broadcast standards list them.
using Bars = std::array<std::array<int, 3>, 8>;
constexpr Bars kBars601{{{180, 128, 128},
                         {162, 44, 142},
                         {131, 156, 44},
                         {112, 72, 58},
                         {84, 184, 198},
                         {65, 100, 212},
                         {35, 212, 114},
                         {16, 128, 128}}};
constexpr Bars kBars709{{{180, 128, 128},
                         {168, 44, 136},
                         {145, 147, 44},
                         {133, 63, 52},
                         {63, 193, 204},
                         {51, 109, 212},
                         {28, 212, 120},
                         {16, 128, 128}}};

TEST_F(PatternTest, BarsHaveTheLevelsOfTheStandards) {
    for (const auto& [matrix, bars] : {std::pair{"bt601", kBars601}, std::pair{"bt709", kBars709}}) {
        mustRun(fmt::format("fikleipa pattern out --to uyvy --size 64x64 --frames 1 --matrix {}", matrix));
        const Bytes frame = read("out");
        for (std::size_t i = 0; i < bars.size(); ++i) {
            const unsigned char* group = &frame[i * 16];
            EXPECT_EQ(group[1], bars[i][0]) << matrix << " bar " << i;
            EXPECT_EQ(group[0], bars[i][1]) << matrix << " bar " << i;
            EXPECT_EQ(group[2], bars[i][2]) << matrix << " bar " << i;
        }
    }
}

// The same by BT.709 at 10 bits, which are not four times those of 8.
constexpr Bars kDeepBars709{{{721, 512, 512},
                             {674, 176, 543},
                             {581, 589, 176},
                             {534, 253, 207},
                             {251, 771, 817},
                             {204, 435, 848},
                             {111, 848, 481},
                             {64, 512, 512}}};

TEST_F(PatternTest, DeepBarsHaveTheLevelsOfTheStandards) {
    mustRun("fikleipa pattern planes --to yuv422p10 --size 64x64 --frames 1 --matrix bt709");
    mustRun("fikleipa pattern packed --to v210 --size 64x64 --frames 1 --matrix bt709");
    mustRun("fikleipa convert packed unpacked --from v210 --to yuv422p10 --size 64x64");
    const Bytes frame = read("planes");
    EXPECT_EQ(read("unpacked"), frame);
    const auto sample = [&](std::size_t index) { return frame[2 * index] | frame[2 * index + 1] << 8; };
    for (std::size_t i = 0; i < kDeepBars709.size(); ++i) {
        EXPECT_EQ(sample(i * 8), kDeepBars709[i][0]) << "bar " << i;
        EXPECT_EQ(sample(64 * 64 + i * 4), kDeepBars709[i][1]) << "bar " << i;
        EXPECT_EQ(sample(64 * 96 + i * 4), kDeepBars709[i][2]) << "bar " << i;
    }
}

TEST_F(PatternTest, TheClipMovesAndDoesNotDependOnTheJobs) {
    mustRun("fikleipa pattern one --to i420 --size 64x48 --frames 12 --jobs 1");
    mustRun("fikleipa pattern many --to i420 --size 64x48 --frames 12 --jobs 5");
    const Bytes clip = read("one");
    EXPECT_EQ(clip, read("many"));
    constexpr std::size_t kFrame = 64 * 48 * 3 / 2;
    ASSERT_EQ(clip.size(), kFrame * 12);
    for (std::size_t frame = 1; frame < 12; ++frame)
        EXPECT_FALSE(std::equal(clip.data(), clip.data() + kFrame, clip.data() + frame * kFrame)) << frame;
    mustRun("fikleipa pattern tiny --to i420 --size 2x2 --frames 3");
    mustRun("fikleipa pattern point --to rgb24 --size 1x1 --frames 3 --dst-pitch 5");
    EXPECT_EQ(read("point").size(), 15U);
}

} // namespace
} // namespace fikleipa::tool
