#include "command.h"

#include <algorithm>
#include <fmt/format.h>

namespace fikleipa::tool {
namespace {

class ErrorsTest : public CommandTest {
protected:
    // The command fails, says so in one line that holds `reason`, and leaves the folder as it was.
    void expectRefusal(const std::string& line, const std::string& reason) const {
        const auto before = files();
        const Result result = shell(line);
        EXPECT_NE(result.status, 0) << line;
        EXPECT_LT(result.status, 126) << line;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << line << "\n" << result.err;
        EXPECT_EQ(result.err.rfind("fikleipa: ", 0), 0U) << result.err;
        EXPECT_NE(result.err.find(reason), std::string::npos) << line << "\n" << result.err;
        EXPECT_EQ(files(), before) << line;
    }

    struct Refusal {
        std::string options, reason;
    };
    void expectRefusals(const std::string& line, const std::vector<Refusal>& refusals) const {
        for (const auto& [options, reason] : refusals) expectRefusal(line + options, reason);
    }
};

TEST_F(ErrorsTest, LayoutsSizesAndPitchesThatCannotBe) {
    write("in", noise(16 * 4 * 2));
    expectRefusals("fikleipa convert in out ",
                   {{"--from uyvz --to yuy2 --size 16x4", "'uyvz' is no layout"},
                    {"--from uyvy --to '' --size 16x4", "is no layout"},
                    {"--from 0x8800001F --to yuy2 --size 16x4", "is no layout"},
                    {"--from yuv444p16 --to v210 --size 16x4", "is no layout"},
                    {"--from rgb32 --to rgb32 --size 8x4", "rgb32 to rgb32 is not converted"},
                    {"--from rgb565 --to v210 --size 16x4", "is not converted"},
                    {"--from p422 --to 422P --size 16x4", "a source only"},
                    {"--from i420 --to rgb32 --size 16x5", "the height 5 is odd"},
                    {"--from yuv420p10 --to v210 --size 16x3", "the height 3 is odd"},
                    {"--from p422 --to rgb32 --size 15x4", "odd"},
                    {"--from v210 --to uyvy --size 15x4", "the width 15 is odd"},
                    {"--from v210 --to uyvy --size 4294967294x1", "too large"},
                    {"--from i420 --to rgb32 --size 16x4 --src-pitch 17", "chroma rows"},
                    {"--from uyvy --to v210 --size 16x4 --dst-pitch 47", "too small"},
                    {"--from yuv422p10 --to v210 --size 16x4 --src-pitch 34 --dst-pitch 128", "whole number"}});
    expectRefusals("fikleipa convert in out --from uyvy --to yuy2 ",
                   {{"--size 0x4", "empty"},
                    {"--size 16x0", "empty"},
                    {"--size 15x4", "the width 15 is odd"},
                    {"--size 65536x65536", "too large"}, // in 32 bits these wrap to something small
                    {"--size 4294967294x2147483649", "too large"},
                    {"--size 16x4 --dst-pitch 4294967295", "too large"},
                    {"--size 16x4 --src-pitch 31", "too small"},
                    {"--size 16x4 --dst-pitch 0", "too small"}});
    for (const auto* size : {"16", "x", "16x", "16x4x", "-16x4", "16x4.0", "4294967296x2", "0x10x4"})
        expectRefusal(fmt::format("fikleipa convert in out --from uyvy --to yuy2 --size={}", size), "is no size");
    expectRefusal("fikleipa convert - out --from i420 --to rgb32 --size 40000x40000 < /dev/null", "too large");
}

TEST_F(ErrorsTest, OptionsThatCannotBe) {
    write("in", noise(16 * 4 * 2));
    expectRefusals("fikleipa convert in out --from uyvy --to rgb32 --size 16x4 ",
                   {{"--matrix bt602", "is no matrix"},
                    {"--matrix 4294967296", "is no matrix"},
                    {"--rgb-order grb", "is no order"},
                    {"--jobs 0", "--jobs"},
                    {"--jobs many", "--jobs"},
                    {"--src-pitch -32", "--src-pitch"},
                    {"--frames 1", "holds 1"},
                    {"--frames 0-1", "holds 1"},
                    {"--frames 2-1", "is no range"},
                    {"--frames a", "is no range"},
                    {"--frames 1-b", "is no range"},
                    {"--frames=-", "is no range"},
                    {"--frames 0-18446744073709551615", "is no range"}, // as many frames as 64 bits have no number for
                    {"--speed", "--speed"},
                    {"--y4m", "cannot hold rgb32"}});
    expectRefusals("fikleipa", {{"", "is needed"},
                                {" transmogrify", "transmogrify"},
                                {" convert in out", "--to"},
                                {" convert in out --to rgb32", "must be given with --from and --size"},
                                {" pattern out --size 16x4", "--to"},
                                {" pattern out --to rgb10 --size 16x4", "rgb10 is not drawn"},
                                {" pattern out.y4m --to v210 --size 16x4", "cannot hold v210"},
                                {" pattern out --to uyvy --size 16x4 --frames 0", "--frames"},
                                {" pattern out --to uyvy --size 16x4 --frames 99999999999999999999", "--frames"},
                                {" view in out --from uyvy --size 16x4 --frame 99999999999999999999", "--frame"},
                                {" pattern out --to uyvy --size 16x4 --matrix 8", "matrices 0 to 7"},
                                {" view in out.png --from uyvy --size 16x4 --frame 1", "no frame 1"}});
}

TEST_F(ErrorsTest, FilesThatAreNotWhatTheyShouldBe) {
    write("in", noise(16 * 4 * 2 + 1));
    write("none", "");
    const std::string options = " --from uyvy --to yuy2 --size 16x4";
    expectRefusal("fikleipa convert in out" + options, "not a whole number of frames");
    expectRefusal("cat in | fikleipa convert - out" + options, "ends within frame 1");
    expectRefusal("cat in | fikleipa convert - out --frames 3-" + options, "ends before");
    write("out", "precious");
    expectRefusal("cat in | fikleipa convert - out --frames 0-1 --jobs 3" + options, "ends within frame 1");
    expectRefusal("fikleipa convert none out" + options, "holds no frame");
    expectRefusal("fikleipa convert - out < /dev/null" + options, "holds no frame");
    expectRefusal("fikleipa convert missing out" + options, "No such file");
    expectRefusal("fikleipa convert . out" + options, "Is a directory");
}

TEST_F(ErrorsTest, PicturesThatAreBrokenOrContradicted) {
    mustRun(
        "fikleipa pattern in --to rgb24 --size 16x4 --frames 1 && fikleipa view in in.png --from rgb24 --size 16x4");
    const Bytes good = read("in.png");
    for (const auto& [options, reason] : std::map<std::string, std::string>{{"--from uyvy", "RGB and not uyvy"},
                                                                            {"--from rgb10", "fields overlap"},
                                                                            {"--size 4x16", "16x4, not 4x16"},
                                                                            {"--src-pitch 48", "no pitch"},
                                                                            {"--frames 1", "holds 1"}})
        expectRefusal("fikleipa convert in.png out --to v210 " + options, reason);
    for (std::size_t size = 8; size < good.size(); ++size) {
        write("in.png", Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)));
        expectRefusal("fikleipa convert in.png out --to v210", "is a broken PNG picture: ");
    }
    Bytes huge = good;
    huge[17] = 0xFF; // of the width, whose checksum is wrong now
    write("in.png", huge);
    expectRefusal("fikleipa convert in.png out --to v210", "is a broken PNG picture: ");
}

TEST_F(ErrorsTest, AFrameThatIsMissingDoesNotTakeThoseBeforeItAlong) {
    write("in", noise(16 * 4 * 2 * 5 + 7));
    const Result result = shell("cat in | fikleipa convert - - --from uyvy --to yuy2 --size 16x4 --jobs 4");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out.size(), 16U * 4 * 2 * 5);
}

TEST_F(ErrorsTest, OutputsThatCannotBeWritten) {
    write("in", noise(16 * 4 * 2 * 300));
    const std::string options = " --from uyvy --to yuy2 --size 16x4";
    expectRefusal("fikleipa convert in /dev/full" + options, "No space left");
    expectRefusal("fikleipa convert in - > /dev/full" + options, "No space left");
    expectRefusal("fikleipa view in /dev/full --from uyvy --size 16x4", "No space left");
    expectRefusal("fikleipa pattern - --to uyvy --size 16x4 > /dev/full", "No space left");
    for (const auto* line : {"formats", "info", "--help", "--version"})
        expectRefusal(fmt::format("fikleipa {} > /dev/full", line), "No space left");
    expectRefusal("fikleipa convert in missing/out" + options, "cannot create missing/out");
    expectRefusal("fikleipa convert in ''" + options, "cannot create ''");
    expectRefusal("fikleipa convert in ." + options, "Is a directory");
}

TEST_F(ErrorsTest, AClosedPipeEndsTheWork) {
    expectRefusal("fikleipa pattern - --to uyvy --size 640x480 --frames 1000 | true; exit 1", "Broken pipe");
    const Result result =
        shell("{ fikleipa pattern - --to uyvy --size 640x480 --frames 1000; echo $? > status; } | true");
    EXPECT_NE(result.err, "");
    EXPECT_EQ(read("status"), (Bytes{'1', '\n'}));
}

TEST_F(ErrorsTest, TheOutputMustNotBeTheInput) {
    write("in", noise(16 * 4 * 2));
    std::filesystem::create_hard_link(path("in"), path("hard"));
    std::filesystem::create_symlink("in", path("soft"));
    const std::string options = " --from uyvy --to yuy2 --size 16x4";
    const std::string reason = "both the input and the output";
    expectRefusal("fikleipa convert in ./in" + options, reason);
    expectRefusal("fikleipa convert in hard" + options, reason);
    expectRefusal("fikleipa convert soft in" + options, reason);
    expectRefusal("fikleipa convert - in < in" + options, reason);
    expectRefusal("fikleipa convert in - >> in" + options, reason);
    expectRefusal("fikleipa view in soft --from uyvy --size 16x4", reason);
}

} // namespace
} // namespace fikleipa::tool
