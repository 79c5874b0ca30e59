#include "command.h"

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

TEST_F(PatternTest, EveryLayoutShowsTheSamePicture) {
    constexpr std::size_t kWidth = 96;
    constexpr std::size_t kHeight = 64;
    mustRun("fikleipa pattern rgb --to rgb24 --size 96x64 --frames 2 --rgb-order rgba");
    mustRun("fikleipa view rgb rgb.png --from rgb24 --size 96x64 --rgb-order rgba --frame 1");
    const std::vector<Pixel> wanted = picture("rgb.png", kWidth, kHeight);
    for (const auto* layout :
         {"uyvy", "yuy2", "yvyu", "cyuv", "i420", "yv12", "p422", "nv12", "rgb32", "rgb565", "rgb555"}) {
        mustRun(fmt::format("fikleipa pattern out --to {} --size 96x64 --frames 2", layout));
        mustRun(fmt::format("fikleipa view out out.png --from {} --size 96x64 --frame 1", layout));
        const std::vector<Pixel> pixels = picture("out.png", kWidth, kHeight);
        std::size_t off = 0;
        for (std::size_t i = 0; i < wanted.size(); ++i)
            if (std::abs(pixels[i].green - wanted[i].green) > 8 || std::abs(pixels[i].red - wanted[i].red) > 8) ++off;
        // Edges of colour differ by what subsampled chroma loses.
        EXPECT_LT(off, wanted.size() / 10) << layout;
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
