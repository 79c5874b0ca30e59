// Conversions of layouts with more than 8 bits.
#include "command.h"

#include <fmt/format.h>
#include <functional>

namespace fikleipa::tool {
namespace {

class DeepTest : public CommandTest {
protected:
    Bytes converted(const Bytes& frames, const std::string& from, const std::string& to, const std::string& size,
                    const std::string& options = "") const {
        write("in", frames);
        mustRun(fmt::format("fikleipa convert in out --from {} --to {} --size {} {}", from, to, size, options));
        return read("out");
    }
};

Bytes longWords(const std::vector<unsigned int>& values) {
    Bytes bytes;
    for (const unsigned int value : values) {
        const Bytes halves = words({value & 0xFFFF, value >> 16});
        bytes.insert(bytes.end(), halves.begin(), halves.end());
    }
    return bytes;
}

Bytes eachWord(const Bytes& bytes, const std::function<unsigned int(unsigned int)>& change) {
    std::vector<unsigned int> values;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) values.push_back(change(bytes[i] + 256U * bytes[i + 1]));
    return words(values);
}

TEST_F(DeepTest, SamplesLieInV210WhereTheyBelong) {
    // One row of eight pixels: a whole group and a part of one, the rest and the padding zeros.
    const Bytes planes = words({0x001, 0x002, 0x003, 0x004, 0x005, 0x006, 0x3FF, 0x155, // Y
                                0x101, 0x102, 0x103, 0x104,                             // Cb
                                0x201, 0x202, 0x203, 0x2AA});                           // Cr
    Bytes packed = longWords({0x201U << 20 | 0x001 << 10 | 0x101, 0x003U << 20 | 0x102 << 10 | 0x002,
                              0x103U << 20 | 0x004 << 10 | 0x202, 0x006U << 20 | 0x203 << 10 | 0x005,
                              0x2AAU << 20 | 0x3FF << 10 | 0x104, 0x155});
    packed.resize(128);
    EXPECT_EQ(converted(planes, "yuv422p10", "v210", "8x1"), packed);
    EXPECT_EQ(converted(packed, "v210", "yuv422p10le", "8x1"), planes);
    EXPECT_EQ(converted(packed, "012v", "V210", "8x1"), packed);
    // What lies behind the picture is not looked at.
    Bytes littered = packed;
    for (std::size_t i = 24; i < littered.size(); ++i) littered[i] = 0xA5;
    EXPECT_EQ(converted(littered, "v210", "yuv422p10", "8x1"), planes);
    EXPECT_EQ(converted(littered, "v210", "v210", "8x1"), packed);
}

TEST_F(DeepTest, NoSampleIsLostOnTheWayThroughV210) {
    const auto tenBits = [](std::size_t samples) { return noiseWords(samples, 0, 1023); };
    const auto highTenBits = [](std::size_t samples) {
        return eachWord(noiseWords(samples, 0, 1023), [](unsigned int word) { return word << 6; });
    };
    const auto bytes = [](std::size_t samples) { return noise(samples); };
    struct Case {
        std::string layout;
        std::size_t quartersPerPixel; // samples
        std::function<Bytes(std::size_t)> samples;
    };
    const std::vector<Case> cases{
        {"uyvy", 8, bytes},           {"yuy2", 8, bytes},        {"yvyu", 8, bytes},
        {"i420", 6, bytes},           {"yv12", 6, bytes},        {"p422", 8, bytes},
        {"yuv420p10", 6, tenBits},    {"yuv422p10", 8, tenBits}, {"yuv420p16", 6, highTenBits},
        {"yuv422p16", 8, highTenBits}};
    // Groups are of 6 pixels, some converters take two of them, and pitches are a multiple of 48.
    for (const std::size_t width : {2U, 4U, 6U, 8U, 10U, 12U, 14U, 22U, 24U, 46U, 48U, 50U, 100U}) {
        for (const auto& [layout, quarters, samples] : cases) {
            constexpr std::size_t kFrames = 2;
            const Bytes clip = samples(width * 6 * quarters / 4 * kFrames);
            const std::string size = fmt::format("{}x6", width);
            EXPECT_EQ(converted(converted(clip, layout, "v210", size), "v210", layout, size), clip)
                << layout << " " << size;
        }
    }
}

TEST_F(DeepTest, FullChromaIsTakenFromEvenPixelsAndRepeated) {
    const auto repeated = [&](const Bytes& planes422, std::size_t pixels) {
        Bytes planes(planes422.begin(), planes422.begin() + static_cast<std::ptrdiff_t>(2 * pixels));
        for (std::size_t i = 2 * pixels; i < planes422.size(); i += 2)
            for (int copy = 0; copy < 2; ++copy) planes.insert(planes.end(), {planes422[i], planes422[i + 1]});
        return planes;
    };
    for (const std::size_t width : {2U, 10U, 12U, 46U, 50U}) {
        const std::string size = fmt::format("{}x3", width);
        const Bytes planes422 = noiseWords(width * 3 * 2, 0, 1023);
        const Bytes planes444 = repeated(planes422, width * 3);
        const Bytes packed = converted(planes422, "yuv422p10", "v210", size);
        EXPECT_EQ(converted(packed, "v210", "yuv444p10", size), planes444) << size;
        Bytes uneven = planes444;
        for (std::size_t i = width * 3 * 2; i < uneven.size(); i += 4) uneven[i + 2] ^= 0xFF;
        EXPECT_EQ(converted(uneven, "yuv444p10", "v210", size), packed) << size;
        const Bytes deeper = eachWord(uneven, [](unsigned int word) { return word << 2 | 3; });
        EXPECT_EQ(converted(deeper, "yuv444p12", "v210", size), packed) << size;
    }
}

TEST_F(DeepTest, RgbFollowsOrderAndDirection) {
    constexpr std::size_t kRow = 10 * 8; // of rgb64
    const std::map<std::string, std::size_t> bytesPerRow{{"v210", 128}, {"yuv422p10", 40}, {"yuv420p12", 30}};
    for (const auto& [from, bytes] : bytesPerRow) {
        const Bytes frame = noise(4 * bytes);
        const auto rgb = [&, &layout = from](const std::string& options) {
            return converted(frame, layout, "rgb64", "10x4", options);
        };
        const Bytes bgra = rgb("");
        ASSERT_EQ(bgra.size(), 4 * kRow);
        Bytes turned;
        for (std::size_t row = 4; row-- > 0;)
            turned.insert(turned.end(), bgra.data() + row * kRow, bgra.data() + (row + 1) * kRow);
        EXPECT_EQ(rgb("--bottom-up"), turned) << from;
        Bytes argb = rgb("--rgb-order argb");
        for (std::size_t i = 0; i < argb.size(); i += 8)
            for (const auto& [a, b] : {std::pair{0U, 6U}, {1U, 7U}, {2U, 4U}, {3U, 5U}})
                std::swap(argb[i + a], argb[i + b]);
        EXPECT_EQ(argb, bgra) << from;
        EXPECT_NE(rgb("--matrix bt2020"), bgra) << from;
    }
}

TEST_F(DeepTest, RowsOfV210MayLieCloserOrFarther) {
    const Bytes planes = noiseWords(50 * 2 * 2, 0, 1023);
    const Bytes usual = converted(planes, "yuv422p10", "v210", "50x2");
    ASSERT_EQ(usual.size(), 2U * 256);
    for (const std::size_t pitch : {144U, 192U, 250U, 384U}) {
        const std::string number = std::to_string(pitch);
        const Bytes packed = converted(planes, "yuv422p10", "v210", "50x2", "--dst-pitch " + number);
        ASSERT_EQ(packed.size(), 2 * pitch);
        EXPECT_TRUE(std::equal(packed.begin(), packed.begin() + 144, usual.begin())) << pitch;
        EXPECT_EQ(Bytes(packed.begin() + 144, packed.begin() + static_cast<std::ptrdiff_t>(pitch)), Bytes(pitch - 144));
        EXPECT_EQ(converted(packed, "v210", "yuv422p10", "50x2", "--src-pitch " + number), planes) << pitch;
    }
}

} // namespace
} // namespace fikleipa::tool
