// Against ffmpeg, where it is installed.
#include "command.h"

#include <cmath>
#include <fmt/format.h>

namespace fikleipa::tool {
namespace {

class PeerTest : public CommandTest {
protected:
    void SetUp() override {
        if (shell("command -v ffmpeg").status != 0) GTEST_SKIP() << "ffmpeg is not installed";
    }

    void ffmpeg(const std::string& arguments) const { mustRun("ffmpeg -nostdin -v error -y " + arguments); }
};

TEST_F(PeerTest, ReorderingsAreTheSame) {
    constexpr auto* kRaw = "-f rawvideo -s 208x112 -pix_fmt";
    ffmpeg(fmt::format("-f lavfi -i testsrc2=s=208x112 -frames:v 4 {} uyvy422 uyvy", kRaw));
    ffmpeg(fmt::format("{0} uyvy422 -i uyvy {0} yuyv422 yuyv", kRaw));
    ffmpeg(fmt::format("{0} uyvy422 -i uyvy {0} yvyu422 yvyu", kRaw));
    for (const auto& [from, to] : {std::pair{"uyvy", "yuyv"}, {"yuyv", "uyvy"}, {"yuyv", "yvyu"}, {"yvyu", "yuyv"}}) {
        mustRun(fmt::format("fikleipa convert {0} out --from {0} --to {1} --size 208x112", from, to));
        EXPECT_EQ(read("out"), read(to)) << from << " to " << to;
    }
}

TEST_F(PeerTest, PicturesOfItsClipsAreClose) {
    for (const auto* format : {"yuv420p", "yuv422p", "yuv420p10", "yuv420p12"}) {
        ffmpeg(fmt::format("-f lavfi -i testsrc2=s=208x112 -frames:v 3 -pix_fmt {} -strict -1 clip.y4m", format));
        ffmpeg("-i clip.y4m -sws_flags accurate_rnd+neighbor -vf 'select=eq(n\\,2)' -frames:v 1 peer.png");
        mustRun("fikleipa view clip.y4m own.png --frame 2");
        const auto own = picture("own.png", 208, 112);
        const auto peer = picture("peer.png", 208, 112);
        double squares = 0;
        for (std::size_t i = 0; i < own.size(); ++i) {
            squares += std::pow(own[i].red - peer[i].red, 2) + std::pow(own[i].green - peer[i].green, 2) +
                       std::pow(own[i].blue - peer[i].blue, 2);
        }
        const double error = squares / static_cast<double>(own.size() * 3);
        EXPECT_LT(error, 255.0 * 255.0 / std::pow(10.0, 3.5)) << format; // 35 dB
    }
}

// Whatever kind of PNG it writes, the pixels are those that it sees itself.
TEST_F(PeerTest, ItsPicturesAreRead) {
    for (const auto* format : {"rgb24", "rgba", "gray", "ya8", "pal8", "monob", "rgb48be", "rgba64be", "gray16be"}) {
        ffmpeg(fmt::format("-f lavfi -i testsrc2=s=98x62 -frames:v 1 -pix_fmt {} in.png", format));
        ffmpeg("-i in.png -f rawvideo -pix_fmt rgb24 raw");
        mustRun("fikleipa view in.png out.png");
        const auto own = picture("out.png", 98, 62);
        const Bytes raw = read("raw");
        for (std::size_t i = 0; i < own.size(); ++i) {
            // It rounds 16 bits to 8 where picture() cuts them.
            EXPECT_NEAR(own[i].red, raw[3 * i], 1) << format << " " << i;
            EXPECT_NEAR(own[i].green, raw[3 * i + 1], 1) << format << " " << i;
            EXPECT_NEAR(own[i].blue, raw[3 * i + 2], 1) << format << " " << i;
        }
    }
}

TEST_F(PeerTest, ItReadsOurClips) {
    mustRun("fikleipa pattern clip.y4m --size 96x64 --frames 5");
    mustRun("fikleipa pattern raw --to i420 --size 96x64 --frames 5");
    ffmpeg("-i clip.y4m -f rawvideo -pix_fmt yuv420p decoded");
    EXPECT_EQ(read("decoded"), read("raw"));
}

// It packs values of 4 to 1019 only.
TEST_F(PeerTest, V210IsTheSameInBothDirections) {
    for (const std::size_t width : {720U, 1280U, 1920U, 3840U, 1918U, 1000U}) {
        const std::string size = fmt::format("{}x18", width);
        const std::string planar = fmt::format("-f rawvideo -s {} -pix_fmt yuv422p10le", size);
        const Bytes planes = noiseWords(width * 18 * 2 * 3, 4, 1019);
        write("planes", planes);
        ffmpeg(fmt::format("{} -i planes -c:v v210 -f rawvideo packed", planar));

        mustRun(fmt::format("fikleipa convert packed unpacked --from v210 --to yuv422p10 --size {}", size));
        EXPECT_TRUE(read("unpacked") == planes) << size;
        mustRun(fmt::format("fikleipa convert planes own --from yuv422p10 --to v210 --size {}", size));
        EXPECT_TRUE(read("own") == read("packed")) << size;
        ffmpeg(fmt::format("-f v210 -video_size {} -i own {} decoded", size, planar));
        EXPECT_TRUE(read("decoded") == planes) << size;
    }
}

TEST_F(PeerTest, DeepClipsGoBothWays) {
    for (const auto* layout :
         {"yuv420p10", "yuv422p10", "yuv444p10", "yuv420p12", "yuv422p12", "yuv444p12", "yuv420p16", "yuv422p16"}) {
        const std::string raw = fmt::format("-f rawvideo -s 208x112 -pix_fmt {}le", layout);
        ffmpeg(fmt::format("-f lavfi -i testsrc2=s=208x112 -frames:v 2 {} raw", raw));
        ffmpeg(fmt::format("{} -i raw -strict -1 clip.y4m", raw));
        mustRun(fmt::format("fikleipa convert clip.y4m out --to {}", layout));
        EXPECT_EQ(read("out"), read("raw")) << layout;
        mustRun(fmt::format("fikleipa convert raw own.y4m --from {0} --to {0} --size 208x112", layout));
        ffmpeg(fmt::format("-i own.y4m {} decoded", raw));
        EXPECT_EQ(read("decoded"), read("raw")) << layout;
    }
}

} // namespace
} // namespace fikleipa::tool
