#include "command.h"

#include <algorithm>
#include <fmt/format.h>

namespace fikleipa::tool {
namespace {

using ConvertTest = CommandTest;

Bytes wordsSwapped(Bytes bytes) {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

Bytes slice(const Bytes& bytes, std::size_t from, std::size_t count) {
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(from);
    return {first, first + static_cast<std::ptrdiff_t>(count)};
}

TEST_F(ConvertTest, EveryByteOfAClipIsConverted) {
    const Bytes clip = noise(34 * 5 * 2 * 7);
    write("in", clip);
    mustRun("fikleipa convert in out --from uyvy --to yuy2 --size 34x5");
    EXPECT_EQ(read("out"), wordsSwapped(clip));
    mustRun("fikleipa convert out back --from YUY2 --to UYVY --size 34x5");
    EXPECT_EQ(read("back"), clip);
    mustRun("fikleipa convert in copy --from p422 --to p422 --size 34x5");
    EXPECT_EQ(read("copy"), clip);
}

TEST_F(ConvertTest, FramesLeaveInOrderWhateverTheJobs) {
    write("in", noise(64 * 16 * 2 * 97));
    mustRun("fikleipa convert in one --from yuy2 --to rgb32 --size 64x16 --jobs 1");
    mustRun("fikleipa convert in many --from yuy2 --to rgb32 --size 64x16 --jobs 11");
    EXPECT_EQ(read("one").size(), 64U * 16 * 4 * 97);
    EXPECT_EQ(read("one"), read("many"));
}

TEST_F(ConvertTest, PipesWorkAsFilesDo) {
    const Bytes clip = noise(32 * 8 * 2 * 9);
    write("in", clip);
    mustRun("cat in | fikleipa convert - - --from uyvy --to yuy2 --size 32x8 | cat > out");
    EXPECT_EQ(read("out"), wordsSwapped(clip));
    mustRun("fikleipa convert - - --from uyvy --to yuy2 --size 32x8 < in > out2");
    EXPECT_EQ(read("out2"), wordsSwapped(clip));
}

TEST_F(ConvertTest, ARangeOfFramesIsCutOut) {
    constexpr std::size_t kFrame = 16 * 4 * 2;
    const Bytes clip = noise(kFrame * 10);
    write("in", clip);
    const Bytes swapped = wordsSwapped(clip);
    const auto cut = [&](const std::string& range) {
        const std::string options = " --from uyvy --to yuy2 --size 16x4 --frames " + range;
        mustRun("fikleipa convert in out" + options);
        mustRun("cat in | fikleipa convert - piped" + options);
        EXPECT_EQ(read("out"), read("piped")) << range;
        return read("out");
    };
    EXPECT_EQ(cut("3-5"), slice(swapped, 3 * kFrame, 3 * kFrame));
    EXPECT_EQ(cut("7"), slice(swapped, 7 * kFrame, kFrame));
    EXPECT_EQ(cut("8-"), slice(swapped, 8 * kFrame, 2 * kFrame));
}

// Rows of `rowBytes` taken out of rows of `pitch`.
Bytes withoutPadding(const Bytes& bytes, std::size_t rowBytes, std::size_t pitch) {
    Bytes rows;
    for (std::size_t at = 0; at < bytes.size(); at += pitch) {
        const Bytes row = slice(bytes, at, rowBytes);
        rows.insert(rows.end(), row.begin(), row.end());
    }
    return rows;
}

TEST_F(ConvertTest, PaddedRowsAreUnderstoodAndMade) {
    // Two 4:2:0 frames of 16x4, rows of 24 and 12 bytes.
    const Bytes padded = noise(2 * 24 * 6);
    Bytes tight;
    for (std::size_t frame = 0; frame < 2; ++frame) {
        const Bytes luma = withoutPadding(slice(padded, frame * 144, 96), 16, 24);
        const Bytes chroma = withoutPadding(slice(padded, frame * 144 + 96, 48), 8, 12);
        tight.insert(tight.end(), luma.begin(), luma.end());
        tight.insert(tight.end(), chroma.begin(), chroma.end());
    }
    write("padded", padded);
    write("tight", tight);
    mustRun("fikleipa convert padded a --from i420 --to rgb32 --size 16x4 --src-pitch 24");
    mustRun("fikleipa convert tight b --from i420 --to rgb32 --size 16x4");
    EXPECT_EQ(read("a"), read("b"));

    mustRun("fikleipa convert tight c --from i420 --to rgb32 --size 16x4 --dst-pitch 70 --bottom-up");
    mustRun("fikleipa convert tight d --from i420 --to rgb32 --size 16x4 --bottom-up");
    const Bytes wide = read("c");
    EXPECT_EQ(wide.size(), 70U * 8);
    EXPECT_EQ(withoutPadding(wide, 64, 70), read("d"));

    mustRun("fikleipa convert padded e --from i420 --to i420 --size 16x4 --src-pitch 24 --dst-pitch 16");
    EXPECT_EQ(read("e"), tight);
    mustRun("fikleipa convert padded f --from uyvy --to yuy2 --size 8x4 --src-pitch 18 --dst-pitch 17");
    EXPECT_EQ(withoutPadding(read("f"), 16, 17), wordsSwapped(withoutPadding(padded, 16, 18)));
}

// Groups are of 6 pixels, some converters take two of them, and pitches are a multiple of 48.
TEST_F(ConvertTest, NoSampleIsLostOnTheWayThroughV210) {
    for (const auto* layout : {"uyvy", "yuy2", "yvyu", "i420", "yv12", "p422", "yuv420p10", "yuv422p10"}) {
        for (const unsigned int width : {2U, 4U, 6U, 8U, 10U, 12U, 14U, 46U, 48U, 50U, 100U}) {
            const std::string size = fmt::format("--size {}x6", width);
            mustRun(fmt::format("fikleipa pattern in --to {} {} --frames 2", layout, size));
            mustRun(fmt::format("fikleipa convert in v210 --from {} --to v210 {}", layout, size));
            mustRun(fmt::format("fikleipa convert v210 out --from v210 --to {} {}", layout, size));
            EXPECT_EQ(read("out"), read("in")) << layout << " " << size;
        }
    }
}

TEST_F(ConvertTest, RowsOfV210MayLieCloserOrFartherAndEndInLitter) {
    const std::string size = "--size 50x2";
    mustRun(fmt::format("fikleipa pattern usual --to v210 {} --frames 1", size));
    mustRun(fmt::format("fikleipa convert usual planes --from v210 --to yuv422p10 {}", size));
    const Bytes usual = read("usual");
    ASSERT_EQ(usual.size(), 2U * 256);
    for (const std::size_t pitch : {144U, 192U, 250U, 384U}) {
        mustRun(fmt::format("fikleipa convert planes out --from yuv422p10 --to v210 {} --dst-pitch {}", size, pitch));
        Bytes packed = read("out");
        ASSERT_EQ(packed.size(), 2 * pitch);
        EXPECT_EQ(slice(packed, pitch, 144), slice(usual, 256, 144)) << pitch;
        EXPECT_EQ(slice(packed, 144, pitch - 144), Bytes(pitch - 144)) << pitch;
        // Behind its 100 samples in 34 words.
        std::fill(packed.begin() + 136, packed.begin() + static_cast<std::ptrdiff_t>(pitch), 0xA5);
        write("littered", packed);
        for (const auto* to : {"v210", "yuv422p10"})
            mustRun(
                fmt::format("fikleipa convert littered {0} --from v210 --to {0} {1} --src-pitch {2}", to, size, pitch));
        EXPECT_EQ(read("v210"), usual) << pitch;
        EXPECT_EQ(read("yuv422p10"), read("planes")) << pitch;
    }
}

TEST_F(ConvertTest, MatricesHaveNamesAndNumbers) {
    write("in", noise(16 * 4 * 2));
    const auto converted = [&](const std::string& options) {
        mustRun("fikleipa convert in out --from uyvy --to rgb32 --size 16x4 " + options);
        return read("out");
    };
    const Bytes bgra = converted("");
    EXPECT_NE(converted("--matrix bt709"), bgra);
    EXPECT_EQ(converted("--matrix bt709"), converted("--matrix 2"));
    EXPECT_EQ(converted("--matrix 709"), converted("--matrix 0x2"));
    EXPECT_NE(converted("--matrix bt2020"), converted("--matrix bt709"));
    EXPECT_NE(converted("--matrix bt601-studio"), bgra);
    EXPECT_EQ(converted("--matrix 4000000000"), bgra);
}

TEST_F(ConvertTest, SynonymsMeanTheirLayout) {
    write("in", noise(16 * 4 * 2));
    const auto converted = [&](const std::string& from, const std::string& to) {
        mustRun(fmt::format("fikleipa convert in out --from {} --to {} --size 16x4", from, to));
        return read("out");
    };
    const Bytes uyvy = converted("uyvy", "yuy2");
    for (const auto* name : {"UYNV", "AJYU", "2vuy", "yuv2", "2Vuy", "yuV2", "0x8800001E", "0x8810001e", "uyvy422"})
        EXPECT_EQ(converted(name, "yuyv"), uyvy) << name;
    const Bytes planar = converted("p422", "0x0");
    for (const auto* name : {"P422", "422P", "yuv422p"}) EXPECT_EQ(converted(name, "RGB32"), planar) << name;
    EXPECT_NE(planar, converted("uyvy", "rgb32"));
}

TEST_F(ConvertTest, ProgressIsShownOnATerminalOnly) {
    write("in", noise(640 * 480 * 2 * 4));
    // A reader that pauses keeps the work going long enough for the line to be drawn.
    const std::string line =
        "(cat in; sleep 0.3; cat in) | fikleipa convert - out --from uyvy --to rgb32 --size 640x480";
    const std::string shown = onTerminal(line + " --frames 0-7");
    EXPECT_NE(shown.find("/8 frames"), std::string::npos) << shown;
    EXPECT_NE(shown.find(" left"), std::string::npos) << shown;
    EXPECT_NE(shown.find("8 frames in "), std::string::npos) << shown;
    mustRun(line);
}

TEST_F(ConvertTest, InfoAndHelpTellWhatIsThere) {
    const std::string info = shell("fikleipa info").out;
    EXPECT_EQ(info.rfind("fikleipa ", 0), 0U) << info;
    EXPECT_NE(info.find("processor level"), std::string::npos);
    EXPECT_NE(info.find("\nkernel "), std::string::npos);
    const Result help = shell("fikleipa convert --help");
    EXPECT_EQ(help.status, 0);
    for (const auto* option :
         {"--from", "--to", "--size", "--matrix", "--rgb-order", "--bottom-up", "--jobs", "--frames"})
        EXPECT_NE(help.out.find(option), std::string::npos) << option;
}

} // namespace
} // namespace fikleipa::tool
