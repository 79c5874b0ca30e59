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

// Of planes of blocks of colour, which are 24x24 pixels large, the middle.
struct Blocks {
    std::size_t bytesPerSample, chromaRowsPerLumaRows;

    std::vector<int> middles(const Bytes& planes) const {
        std::vector<int> values;
        const unsigned char* sample = planes.data();
        for (const std::size_t across : {1U, 2U, 2U}) {
            const std::size_t down = across == 1 ? 1 : chromaRowsPerLumaRows;
            for (std::size_t y = 0; y < 72 / down; ++y) {
                for (std::size_t x = 0; x < 120 / across; ++x, sample += bytesPerSample) {
                    if (x % (24 / across) != 12 / across || y % (24 / down) != 12 / down) continue;
                    values.push_back(bytesPerSample == 1 ? sample[0] : sample[0] | sample[1] << 8);
                }
            }
        }
        return values;
    }
};

TEST_F(PeerTest, RgbBecomesTheSameColours) {
    write("colours", noise(5 * 3 * 6));
    ffmpeg("-f rawvideo -pix_fmt rgb48le -s 5x3 -i colours -vf scale=120:72:flags=neighbor -c:v png -pix_fmt rgb48be "
           "blocks.png");
    struct Source {
        std::string format, layout;
        int bits;
    };
    struct Target {
        std::string format, layout, planes;
        Blocks blocks;
        int tolerance;
    };
    for (const auto& [format, layout, bits] : {Source{"bgra", "rgb32", 8},
                                               {"bgr24", "rgb24", 8},
                                               {"rgb48le", "rgb48 --rgb-order rgba", 16},
                                               {"rgba64le", "rgb64 --rgb-order rgba", 16}}) {
        ffmpeg(fmt::format("-i blocks.png -f rawvideo -pix_fmt {} rgb", format));
        for (const Target& to : {Target{"yuv420p", "i420", "i420", {1, 2}, 2},
                                 {"yuv422p", "uyvy", "p422", {1, 1}, 2},
                                 {"yuv422p10le", "v210", "yuv422p10", {2, 1}, 5}}) {
            if (to.layout == "i420" && bits == 16) continue; // not converted
            ffmpeg(fmt::format("-f rawvideo -pix_fmt {} -s 120x72 -i rgb -sws_flags accurate_rnd+bicubic -pix_fmt {} "
                               "-f rawvideo peer",
                               format, to.format));
            mustRun(fmt::format("fikleipa convert rgb own --from {} --to {} --size 120x72", layout, to.layout));
            mustRun(fmt::format("fikleipa convert own planes --from {} --to {} --size 120x72", to.layout, to.planes));
            const std::vector<int> own = to.blocks.middles(read("planes"));
            const std::vector<int> peer = to.blocks.middles(read("peer"));
            ASSERT_EQ(own.size(), 45U);
            ASSERT_EQ(peer.size(), 45U);
            for (std::size_t i = 0; i < own.size(); ++i)
                EXPECT_NEAR(own[i], peer[i], to.tolerance) << format << " to " << to.layout << " " << i;
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
