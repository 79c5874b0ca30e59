#include "command.h"

#include <fmt/format.h>

namespace fikleipa::tool {
namespace {

using Y4mTest = CommandTest;

constexpr std::size_t kFrame = 16 * 4 * 3 / 2;

std::string noiseText(std::size_t size) {
    const Bytes bytes = noise(size);
    return {bytes.begin(), bytes.end()};
}

// A clip of 16x4 with two frames of the same noise.
std::string clip(const std::string& fields, const std::string& frameFields = "", std::size_t frame = kFrame) {
    const std::string one = "FRAME" + frameFields + "\n" + noiseText(frame);
    return "YUV4MPEG2 W16 H4" + fields + "\n" + one + one;
}

TEST_F(Y4mTest, AClipTellsItsLayoutAndSize) {
    write("in.y4m", clip(" F30:1"));
    write("raw", noiseText(kFrame) + noiseText(kFrame));
    mustRun("fikleipa convert in.y4m a --to rgb32");
    mustRun("fikleipa convert raw b --from i420 --size 16x4 --to rgb32");
    EXPECT_EQ(read("a"), read("b"));
    mustRun("cat in.y4m | fikleipa convert - c --to rgb32 --from iyuv --size 16x4");
    EXPECT_EQ(read("a"), read("c"));
    mustRun("fikleipa convert in.y4m d --to i420 --frames 1");
    EXPECT_EQ(text("d"), noiseText(kFrame));

    write("fields.y4m", clip(" C420paldv", " Ip XYZ"));
    mustRun("fikleipa convert fields.y4m e --to i420 --frames 1-");
    EXPECT_EQ(text("e"), noiseText(kFrame));

    write("422.y4m", clip(" C422", "", 128));
    mustRun("fikleipa convert 422.y4m f --to p422");
    EXPECT_EQ(text("f"), noiseText(128) + noiseText(128));
}

TEST_F(Y4mTest, FieldsAreHandedOn) {
    const std::string fields = " F30000:1001 It A10:11 C420jpeg XCOLORRANGE=FULL XYSCSS=420JPEG";
    write("in", clip(fields));
    mustRun("fikleipa convert in out.y4m --to i420");
    EXPECT_EQ(text("out.y4m"), clip(fields));
    mustRun("fikleipa convert in - --to i420 --y4m --jobs 3 > piped");
    EXPECT_EQ(text("piped"), clip(fields));
    const std::string deep = clip(" F50:1 It A0:0 C422p10 XYSCSS=422P10 XCOLORRANGE=FULL", "", 256);
    write("in", deep);
    mustRun("fikleipa convert in out.y4m --to yuv422p10");
    EXPECT_EQ(text("out.y4m"), deep);
    EXPECT_EQ(converted("--to v210 --frames 0").size(), 128U * 4);
}

TEST_F(Y4mTest, RawFramesBecomeAClip) {
    struct Case {
        std::string layout, tag;
        std::size_t bytes;
    };
    for (const auto& [layout, tag, bytes] :
         {Case{"i420", "420mpeg2", kFrame}, {"p422", "422", 128}, {"yuv444p12", "444p12", 384}}) {
        write("raw", noiseText(bytes));
        mustRun(fmt::format("fikleipa convert raw out.y4m --from {0} --to {0} --size 16x4", layout));
        EXPECT_EQ(text("out.y4m"), fmt::format("YUV4MPEG2 W16 H4 F25:1 Ip A0:0 C{}\nFRAME\n", tag) + noiseText(bytes));
    }
}

TEST_F(Y4mTest, ClipsMadeOfRgbTellTheirRange) {
    mustRun("fikleipa pattern a.y4m --size 32x16 --frames 2");
    EXPECT_EQ(text("a.y4m").rfind("YUV4MPEG2 W32 H16 F25:1 Ip A0:0 C420mpeg2 XCOLORRANGE=LIMITED\nFRAME\n", 0), 0U);
    mustRun("fikleipa pattern b.y4m --size 32x16 --frames 2 --to p422 --matrix bt2020-full");
    EXPECT_EQ(text("b.y4m").rfind("YUV4MPEG2 W32 H16 F25:1 Ip A0:0 C422 XCOLORRANGE=FULL\nFRAME\n", 0), 0U);
    mustRun("fikleipa pattern rgb --size 32x16 --frames 1 --to rgb24");
    mustRun("fikleipa convert rgb c.y4m --from rgb24 --to p422 --size 32x16 --matrix bt2020-full");
    EXPECT_EQ(text("c.y4m").substr(0, 60), text("b.y4m").substr(0, 60));
}

TEST_F(Y4mTest, BrokenClipsAreRefused) {
    const std::string whole = clip("");
    const std::string frames = "\nFRAME\n" + noiseText(kFrame);
    const std::vector<std::pair<std::string, std::string>> broken{
        {"", "is empty"},
        {"YUV4MPEG W16 H4" + frames, "does not begin"},
        {"YUV4MPEG2X W16 H4" + frames, "does not begin"},
        {"YUV4MPEG2 W16 H4", "does not end"},
        {"YUV4MPEG2 W16" + std::string(5000, ' ') + "H4" + frames, "does not end"},
        {"YUV4MPEG2 W16" + frames, "no height"},
        {"YUV4MPEG2 H4" + frames, "no width"},
        {"YUV4MPEG2 W0 H4" + frames, "'W0'"},
        {"YUV4MPEG2 W-16 H4" + frames, "'W-16'"},
        {"YUV4MPEG2 W16 H4x" + frames, "'H4x'"},
        {"YUV4MPEG2 W16 W16 H4" + frames, "'W16'"},
        {"YUV4MPEG2 W4294967312 H4" + frames, "'W4294967312'"},
        {"YUV4MPEG2 W16 H4 F25" + frames, "'F25'"},
        {"YUV4MPEG2 W16 H4 Iq" + frames, "'Iq'"},
        {"YUV4MPEG2 W16 H4 A1/1" + frames, "'A1/1'"},
        {"YUV4MPEG2 W16 H4 Q1" + frames, "'Q1'"},
        {"YUV4MPEG2 W16 H4 C444" + frames, "C444"},
        {"YUV4MPEG2 W16 H4 C420p14" + frames, "C420p14"},
        {"YUV4MPEG2 W16 H4 C444p16" + frames, "C444p16"},
        {"YUV4MPEG2 W15 H4 C422p10" + frames, "odd"},
        {"YUV4MPEG2 W15 H4" + frames, "odd"},
        {"YUV4MPEG2 W16 H3" + frames, "odd"},
        {"YUV4MPEG2 W65536 H65536" + frames, "too large"},
        {"YUV4MPEG2 W16 H4\n", "holds no frame"},
        {whole.substr(0, whole.size() - 1), "ends within frame 1"},
        {whole + "FRAME\n", "ends within frame 2"},
        {whole + "FRAM\n" + noiseText(kFrame), "does not begin with FRAME"},
    };
    for (const auto& [bytes, reason] : broken) {
        write("in.y4m", bytes);
        const Result result = shell("fikleipa convert in.y4m out --to rgb32");
        EXPECT_EQ(result.status, 1) << reason;
        EXPECT_EQ(result.err.find('\n'), result.err.size() - 1) << result.err;
        EXPECT_NE(result.err.find(reason), std::string::npos) << reason << "\n" << result.err;
        EXPECT_EQ(files().size(), 1U) << reason;
    }
}

TEST_F(Y4mTest, WhatContradictsTheClipIsRefused) {
    write("in.y4m", clip(""));
    for (const auto* options : {"--from uyvy", "--from yv12", "--size 4x16", "--src-pitch 16", "--frames 2"}) {
        const Result result = shell(fmt::format("fikleipa convert in.y4m out --to rgb32 {}", options));
        EXPECT_EQ(result.status, 1) << options;
        EXPECT_EQ(result.err.rfind("fikleipa: in.y4m ", 0), 0U) << options << "\n" << result.err;
    }
    EXPECT_EQ(shell("fikleipa convert in.y4m out.y4m --to i420 --dst-pitch 32").status, 1);
    EXPECT_EQ(files().size(), 1U);
}

} // namespace
} // namespace fikleipa::tool
