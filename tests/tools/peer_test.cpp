// Against ffmpeg.
#include "command.h"

#include <fmt/format.h>

namespace fikleipa::tool {
namespace {

class PeerTest : public CommandTest {
protected:
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

// Frames of one colour each.
TEST_F(PeerTest, RgbBecomesTheSameColours) {
    write("colours", noise(15 * 6));
    struct Source {
        std::string format, layout;
    };
    struct Target {
        std::string format, layout, planes;
        int tolerance;
    };
    for (const auto& [format, layout] : {Source{"bgra", "rgb32"},
                                         {"bgr24", "rgb24"},
                                         {"rgb48le", "rgb48 --rgb-order rgba"},
                                         {"rgba64le", "rgb64 --rgb-order rgba"}}) {
        const bool deep = format.find("le") != std::string::npos;
        ffmpeg(fmt::format("-f rawvideo -pix_fmt rgb48le -s 1x1 -i colours -vf scale=24:16:flags=neighbor "
                           "-f rawvideo -pix_fmt {} rgb",
                           format));
        for (const auto& [peerFormat, to, planes, tolerance] : {Target{"yuv420p", "i420", "i420", 2},
                                                                {"yuv422p", "uyvy", "p422", 2},
                                                                {"yuv422p10le", "v210", "yuv422p10", 5}}) {
            if (to == "i420" && deep) continue; // not converted
            ffmpeg(fmt::format("-f rawvideo -pix_fmt {} -s 24x16 -i rgb -sws_flags accurate_rnd+bicubic -pix_fmt {} "
                               "-f rawvideo peer",
                               format, peerFormat));
            mustRun(fmt::format("fikleipa convert rgb packed --from {} --to {} --size 24x16", layout, to));
            mustRun(fmt::format("fikleipa convert packed own --from {} --to {} --size 24x16", to, planes));
            const Bytes own = read("own");
            const Bytes peer = read("peer");
            ASSERT_EQ(own.size(), peer.size());
            const std::size_t bytes = planes == "yuv422p10" ? 2 : 1;
            for (std::size_t i = 0; i < own.size() / bytes; ++i) {
                if (i % 12 / 4 != 1) continue; // filters look beyond the ends of rows
                const auto sample = [&](const Bytes& frame) {
                    return bytes == 2 ? frame[2 * i] | frame[2 * i + 1] << 8 : frame[i];
                };
                ASSERT_NEAR(sample(own), sample(peer), tolerance) << format << " to " << to << " " << i;
            }
        }
    }
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

TEST_F(PeerTest, ClipsGoBothWays) {
    for (const auto* layout : {"yuv420p", "yuv422p", "yuv420p10", "yuv422p10", "yuv444p10", "yuv420p12", "yuv422p12",
                               "yuv444p12", "yuv420p16", "yuv422p16"}) {
        const bool deep = std::string(layout).size() > 7;
        const std::string raw = fmt::format("-f rawvideo -s 208x112 -pix_fmt {}{}", layout, deep ? "le" : "");
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
