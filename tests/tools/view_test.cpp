#include "command.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fmt/format.h>
#include <png.h>

namespace fikleipa::tool {
namespace {

using ViewTest = CommandTest;
using PatternTest = CommandTest;

void expectNear(const Pixel& seen, const Pixel& wanted, int tolerance, const std::string& what) {
    EXPECT_LE(std::abs(seen.red - wanted.red), tolerance) << what << " red " << seen.red;
    EXPECT_LE(std::abs(seen.green - wanted.green), tolerance) << what << " green " << seen.green;
    EXPECT_LE(std::abs(seen.blue - wanted.blue), tolerance) << what << " blue " << seen.blue;
}

Bytes halves(const Bytes& first, const Bytes& second, std::size_t times) {
    return joined({repeated(first, times), repeated(second, times)});
}

// Planes of Y, Cb and Cr that are `scale` times what they are at 8 bits.
Bytes deepFrame(unsigned int scale, std::size_t chromaSamples) {
    const auto plane = [&](unsigned int first, unsigned int second, std::size_t samples) {
        return halves(words({first * scale}), words({second * scale}), samples / 2);
    };
    return joined({plane(81, 41, 16), plane(90, 240, chromaSamples), plane(240, 110, chromaSamples)});
}

// A frame of 4x4: the upper half red, the lower half blue, at 100 % by BT.601.
struct Case {
    std::string layout;
    int bits; // of the picture
    Bytes frame;
};

std::vector<Case> redAndBlue() {
    const Bytes luma = halves({81}, {41}, 8);
    const Bytes cb420 = halves({90}, {240}, 2);
    const Bytes cr420 = halves({240}, {110}, 2);
    std::vector<Case> all{
        {"uyvy", 8, halves({90, 81, 240, 81}, {240, 41, 110, 41}, 4)},
        {"yuy2", 8, halves({81, 90, 81, 240}, {41, 240, 41, 110}, 4)},
        {"yvyu", 8, halves({81, 240, 81, 90}, {41, 110, 41, 240}, 4)},
        {"cyuv", 8, halves({240, 41, 110, 41}, {90, 81, 240, 81}, 4)},
        {"i420", 8, joined({luma, cb420, cr420})},
        {"yv12", 8, joined({luma, cr420, cb420})},
        {"p422", 8, joined({luma, halves({90}, {240}, 4), halves({240}, {110}, 4)})},
        {"nv12", 8, joined({luma, halves({90, 240}, {240, 110}, 2)})},
        {"rgb32", 8, halves({0, 0, 255, 9}, {255, 0, 0, 9}, 8)},
        {"rgb32 --rgb-order argb", 8, halves({9, 255, 0, 0}, {9, 0, 0, 255}, 8)},
        {"rgb32 --rgb-order abgr --bottom-up", 8, halves({9, 255, 0, 0}, {9, 0, 0, 255}, 8)},
        {"rgb24 --rgb-order rgba", 8, halves({255, 0, 0}, {0, 0, 255}, 8)},
        {"rgb565 --rgb-order rgba", 8, halves({0x00, 0xF8}, {0x1F, 0x00}, 8)},
        {"rgb565", 8, halves({0x1F, 0x00}, {0x00, 0xF8}, 8)},
        {"rgb555 --rgb-order argb", 8, halves({0x00, 0x7C}, {0x1F, 0x80}, 8)},
        {"p010", 16,
         joined({halves(words({81 << 8}), words({41 << 8}), 8),
                 halves(words({90 << 8, 240 << 8}), words({240 << 8, 110 << 8}), 2)})},
        {"rgb48", 16, halves(words({0, 0, 65535}), words({65535, 0, 0}), 8)},
        {"rgb64 --rgb-order argb --bottom-up", 16, halves(words({9, 0, 0, 65535}), words({9, 65535, 0, 0}), 8)},
        {"rgb30", 16, halves({0xFF, 0x0F, 0, 0}, {0x03, 0, 0xC0, 0xFF}, 8)},
        {"rgb30 --rgb-order rgba", 16, halves({0x03, 0, 0xC0, 0xFF}, {0xFF, 0x0F, 0, 0}, 8)},
    };
    for (const auto& [bits, scale] : {std::pair{10, 4U}, {12, 16}, {16, 256}}) {
        for (const auto& [sampling, chroma] : {std::pair{420, 4U}, {422, 8}, {444, 16}}) {
            if (bits == 16 && sampling == 444) continue; // no layout
            all.push_back({fmt::format("yuv{}p{}", sampling, bits), 16, deepFrame(scale, chroma)});
        }
    }
    return all;
}

TEST_F(ViewTest, KnownColoursOfEveryLayout) {
    for (const auto& [layout, bits, frame] : redAndBlue()) {
        write("in", joined({noise(frame.size()), frame}));
        mustRun("fikleipa view in out.png --frame 1 --size 4x4 --from " + layout);
        EXPECT_EQ(storedPicture("out.png").bits, bits) << layout;
        const std::vector<Pixel> pixels = picture("out.png", 4, 4);
        ASSERT_EQ(pixels.size(), 16U);
        for (std::size_t i = 0; i < 16; ++i)
            expectNear(pixels[i], i < 8 ? Pixel{255, 0, 0} : Pixel{0, 0, 255}, 2, fmt::format("{} {}", layout, i));
    }
}

TEST_F(ViewTest, EveryStepOfTenBitsIsSeen) {
    std::vector<unsigned int> ramp;
    for (unsigned int y = 64; y < 940; ++y) ramp.push_back(y);
    ramp.insert(ramp.end(), ramp.size(), 512);
    write("in", words(ramp));
    const std::string size = "--size 876x1 --from ";
    mustRun("fikleipa convert in packed --to v210 " + size + "yuv422p10");
    for (const auto* source : {"in", "packed"}) {
        mustRun(fmt::format("fikleipa view {} out.png {}{}", source, size, *source == 'i' ? "yuv422p10" : "v210"));
        const std::vector<Pixel> pixels = storedPicture("out.png").pixels;
        for (std::size_t i = 1; i < 876; ++i) EXPECT_GT(pixels.at(i).green, pixels[i - 1].green) << source << " " << i;
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

TEST_F(ViewTest, PicturesComeBackAsTheyWentIn) {
    for (const auto& [layout, bytes] : {std::pair{"rgb24", 3U}, {"rgb48", 6U}}) {
        const Bytes frame = noise(5 * 3 * bytes);
        write("in", frame);
        mustRun(fmt::format("fikleipa view in - --from {} --rgb-order rgba --size 5x3 > out.png", layout));
        const Picture seen = storedPicture("out.png");
        Bytes stored;
        for (const Pixel& pixel : seen.pixels) {
            for (const int sample : {pixel.red, pixel.green, pixel.blue}) {
                stored.push_back(static_cast<unsigned char>(sample));
                if (bytes == 6) stored.push_back(static_cast<unsigned char>(sample >> 8));
            }
        }
        EXPECT_EQ(stored, frame) << layout;
        for (const auto* options : {"", "--from rgb64 --rgb-order argb --bottom-up", "--size 5x3 --from rgb48"}) {
            mustRun(fmt::format("fikleipa view out.png again.png {}", options));
            mustRun("cat out.png | fikleipa view - piped.png");
            EXPECT_EQ(read("piped.png"), read("out.png")) << layout;
            const auto again = picture("again.png", 5, 3);
            const auto once = picture("out.png", 5, 3);
            for (std::size_t i = 0; i < once.size(); ++i) expectNear(again[i], once[i], 0, layout);
        }
    }
}

TEST_F(ViewTest, InterlacedPicturesAreTheSame) {
    for (const auto& [bits, type] : {std::pair{8, PNG_COLOR_TYPE_RGBA}, {16, PNG_COLOR_TYPE_RGB}, {1, 0}}) {
        for (const std::uint32_t side : {1U, 2U, 3U, 5U, 8U, 9U, 17U}) {
            writeNoisePng("plain", side, 18 - side, bits, type, PNG_INTERLACE_NONE);
            writeNoisePng("interlaced", side, 18 - side, bits, type, PNG_INTERLACE_ADAM7);
            mustRun("fikleipa view plain a && fikleipa view interlaced b");
            EXPECT_EQ(read("a"), read("b")) << bits << " bits, width " << side;
        }
    }
}

// Y, Cb and Cr of bars at 75 %, as the broadcast standards list them. At 10 bits they are not four times those of 8.
using Bars = std::array<std::array<unsigned int, 3>, 8>;
struct Levels {
    std::string layout, matrix;
    Bars bars;
};

// clang-format off
const std::array<Levels, 3> kLevels{{
    {"p422", "bt601", {{{180, 128, 128}, {162, 44, 142}, {131, 156, 44}, {112, 72, 58},
                        {84, 184, 198}, {65, 100, 212}, {35, 212, 114}, {16, 128, 128}}}},
    {"p422", "bt709", {{{180, 128, 128}, {168, 44, 136}, {145, 147, 44}, {133, 63, 52},
                        {63, 193, 204}, {51, 109, 212}, {28, 212, 120}, {16, 128, 128}}}},
    {"yuv422p10", "bt709", {{{721, 512, 512}, {674, 176, 543}, {581, 589, 176}, {534, 253, 207},
                             {251, 771, 817}, {204, 435, 848}, {111, 848, 481}, {64, 512, 512}}}},
}};
// clang-format on

TEST_F(PatternTest, BarsHaveTheLevelsOfTheStandards) {
    for (const auto& [layout, matrix, bars] : kLevels) {
        mustRun(fmt::format("fikleipa pattern out --to {} --size 64x64 --frames 1 --matrix {}", layout, matrix));
        const Bytes frame = read("out");
        const auto sample = [&, &layout = layout](std::size_t index) {
            return layout == "p422" ? frame[index] : frame[2 * index] + 256U * frame[2 * index + 1];
        };
        for (std::size_t i = 0; i < bars.size(); ++i) {
            const std::array<unsigned int, 3> seen{sample(i * 8), sample(64 * 64 + i * 4), sample(64 * 96 + i * 4)};
            EXPECT_EQ(seen, bars[i]) << layout << " " << matrix << " bar " << i;
        }
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
