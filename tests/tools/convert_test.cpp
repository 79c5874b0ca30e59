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

TEST_F(ConvertTest, EveryByteOfAClipIsConvertedFromFilesAndPipes) {
    const Bytes clip = noise(34 * 5 * 2 * 7);
    const std::string options = "--from uyvy --to yuy2 --size 34x5";
    write("in", clip);
    EXPECT_EQ(converted(options), wordsSwapped(clip));
    EXPECT_EQ(converted("--from p422 --to p422 --size 34x5"), clip);
    mustRun("cat in | fikleipa convert - - " + options + " | cat > piped");
    EXPECT_EQ(read("piped"), wordsSwapped(clip));
    mustRun("fikleipa convert - - " + options + " < in > piped");
    EXPECT_EQ(read("piped"), wordsSwapped(clip));
}

TEST_F(ConvertTest, FramesLeaveInOrderWhateverTheJobs) {
    write("in", noise(64 * 16 * 2 * 97));
    const std::string options = "--from yuy2 --to rgb32 --size 64x16 --jobs ";
    const Bytes one = converted(options + "1");
    EXPECT_EQ(one.size(), 64U * 16 * 4 * 97);
    EXPECT_EQ(converted(options + "11"), one);
}

TEST_F(ConvertTest, ARangeOfFramesIsCutOut) {
    constexpr std::size_t kFrame = 16 * 4 * 2;
    const Bytes clip = noise(kFrame * 10);
    write("in", clip);
    struct Range {
        std::string frames;
        std::size_t first, count;
    };
    for (const auto& [frames, first, count] : {Range{"3-5", 3, 3}, {"7", 7, 1}, {"8-", 8, 2}}) {
        const std::string options = "--from uyvy --to yuy2 --size 16x4 --frames " + frames;
        EXPECT_EQ(converted(options), wordsSwapped(slice(clip, first * kFrame, count * kFrame)));
        mustRun("cat in | fikleipa convert - piped " + options);
        EXPECT_EQ(read("piped"), read("out")) << frames;
    }
}

// Rows of `rowBytes` taken out of rows of `pitch`.
Bytes withoutPadding(const Bytes& bytes, std::size_t rowBytes, std::size_t pitch) {
    Bytes rows;
    for (std::size_t at = 0; at < bytes.size(); at += pitch) rows = joined({rows, slice(bytes, at, rowBytes)});
    return rows;
}

TEST_F(ConvertTest, PaddedRowsAreUnderstoodAndMade) {
    // Two 4:2:0 frames of 16x4, rows of 24 and 12 bytes.
    const Bytes padded = noise(2 * 24 * 6);
    Bytes tight;
    for (std::size_t frame = 0; frame < 2; ++frame) {
        tight = joined({tight, withoutPadding(slice(padded, frame * 144, 96), 16, 24),
                        withoutPadding(slice(padded, frame * 144 + 96, 48), 8, 12)});
    }
    write("in", tight);
    const Bytes rgb = converted("--from i420 --to rgb32 --size 16x4");
    const Bytes flipped = converted("--from i420 --to rgb32 --size 16x4 --bottom-up");
    const Bytes wide = converted("--from i420 --to rgb32 --size 16x4 --bottom-up --dst-pitch 70");
    EXPECT_EQ(wide.size(), 70U * 8);
    EXPECT_EQ(withoutPadding(wide, 64, 70), flipped);
    write("in", padded);
    EXPECT_EQ(converted("--from i420 --to rgb32 --size 16x4 --src-pitch 24"), rgb);
    EXPECT_EQ(converted("--from i420 --to i420 --size 16x4 --src-pitch 24 --dst-pitch 16"), tight);
    EXPECT_EQ(withoutPadding(converted("--from uyvy --to yuy2 --size 8x4 --src-pitch 18 --dst-pitch 17"), 16, 17),
              wordsSwapped(withoutPadding(padded, 16, 18)));
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

TEST_F(ConvertTest, NamesAndNumbersMeanTheSame) {
    write("in", noise(16 * 4 * 2));
    const auto with = [&](const std::string& from, const std::string& to, const std::string& options = "") {
        return converted(fmt::format("--from {} --to {} --size 16x4 {}", from, to, options));
    };
    const Bytes bgra = with("uyvy", "rgb32");
    const Bytes bt709 = with("uyvy", "rgb32", "--matrix bt709");
    EXPECT_NE(bt709, bgra);
    EXPECT_EQ(with("uyvy", "rgb32", "--matrix 2"), bt709);
    EXPECT_EQ(with("uyvy", "rgb32", "--matrix 709"), with("uyvy", "rgb32", "--matrix 0x2"));
    EXPECT_NE(with("uyvy", "rgb32", "--matrix bt2020"), bt709);
    EXPECT_NE(with("uyvy", "rgb32", "--matrix bt601-studio"), bgra);
    EXPECT_EQ(with("uyvy", "rgb32", "--matrix 4000000000"), bgra);

    const Bytes uyvy = with("uyvy", "yuy2");
    for (const auto* name : {"UYNV", "AJYU", "2vuy", "yuv2", "2Vuy", "yuV2", "0x8800001E", "0x8810001e", "uyvy422"})
        EXPECT_EQ(with(name, "yuyv"), uyvy) << name;
    const Bytes planar = with("p422", "0x0");
    for (const auto* name : {"P422", "422P", "yuv422p"}) EXPECT_EQ(with(name, "RGB32"), planar) << name;
    EXPECT_NE(planar, bgra);
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

TEST_F(ConvertTest, InfoTellsWhatIsThere) {
    const std::string info = shell("fikleipa info").out;
    for (const auto* part : {"fikleipa ", "processor level", "\nkernel "})
        EXPECT_NE(info.find(part), std::string::npos) << info;
    EXPECT_EQ(shell("fikleipa convert --help").status, 0);
}

} // namespace
} // namespace fikleipa::tool
