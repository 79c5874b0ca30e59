#include "fikleipa.h"
#include "tests/guarded_bytes.h"
#include "tests/v210/model.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

using namespace fikleipa::tests;

constexpr std::size_t kRoom = 16384;

struct Geometry {
    unsigned width, height, dstPitch, srcPitch;
};

std::string describe(const char* name, const Geometry& g) {
    return std::string(name) + " " + std::to_string(g.width) + "x" + std::to_string(g.height) + ", pitches " +
           std::to_string(g.dstPitch) + " and " + std::to_string(g.srcPitch);
}

template <class Test>
void eachGeometry(Test test) {
    for (unsigned width = 0; width <= 60; ++width) {
        for (const unsigned height : {0U, 1U, 2U, 5U}) {
            for (const unsigned dstPitch : {0U, 2 * width + 1, naturalPitch(width) + 20}) {
                for (const unsigned srcPitch : {2 * width, 2 * width + 7}) {
                    test(Geometry{width, height, dstPitch, srcPitch});
                }
            }
        }
    }
}

struct Source {
    Bytes y = noise(kRoom, 1);
    Bytes cb = noise(kRoom, 2);
    Bytes cr = noise(kRoom, 3);
};

// Where a source has its chroma: sample `pair` of luma row `r`.
using ChromaOffset = unsigned (*)(const Geometry& g, unsigned r, unsigned pair);
unsigned chroma422(const Geometry& g, unsigned r, unsigned pair) {
    return r * (g.srcPitch / 4) * 2 + 2 * pair;
}
unsigned chroma420(const Geometry& g, unsigned r, unsigned pair) {
    return chroma422(g, r / 2, pair);
}
unsigned chroma444(const Geometry& g, unsigned r, unsigned pair) {
    return r * (g.srcPitch / 2) * 2 + 4 * pair;
}
unsigned wholePitch420(const Geometry& g, unsigned r, unsigned pair) {
    return r / 2 * (g.srcPitch / 2) * 2 + 2 * pair;
}
unsigned interleaved420(const Geometry& g, unsigned r, unsigned pair) {
    return r / 2 * (g.srcPitch / 2) * 2 + 4 * pair;
}

// The source's sample for a row's component in the order of UYVY.
unsigned sample(const Source& s, const Geometry& g, ChromaOffset chroma, unsigned r, unsigned i) {
    if (i % 2 != 0) return load16(&s.y[r * (g.srcPitch / 2) * 2 + i / 2 * 2]);
    return load16(&(i % 4 == 0 ? s.cb : s.cr)[chroma(g, r, i / 4)]);
}

unsigned low10(unsigned sample) {
    return sample & 0x3FF;
}
unsigned from12(unsigned sample) {
    return (sample & 0xFFC) >> 2;
}
unsigned from16(unsigned sample) {
    return sample >> 6;
}

struct ToV210 {
    const char* name;
    PXJoinPlanes* convert;
    unsigned (*reduce)(unsigned sample);
    ChromaOffset chroma;
    unsigned (*words)(unsigned width); // of a row
};

unsigned groupWords(unsigned width) {
    return roundUp(width, 6) / 6 * 4;
}
unsigned extraWords(unsigned width) {
    return groupWords(width) + (width % 6 != 0 ? 2 : 0);
}
unsigned extraGroups(unsigned width) {
    return width == 0 ? 0 : groupWords(width + 5);
}

const ToV210 kToV210[] = {
    {"yuv422p10", cycbcr_yuv422p10_to_012v, low10, chroma422, extraWords},
    {"yuv422p10 band", cycbcr_yuv422p10_to_012v_internal, low10, chroma422, extraWords},
    {"yuv422p12", cycbcr_yuv422p12_to_012v, from12, chroma422, extraWords},
    {"yuv422p12 band", cycbcr_yuv422p12_to_012v_internal, from12, chroma422, extraWords},
    {"yuv422p16", cycbcr_yuv422p16_to_012v, from16, chroma422, extraWords},
    {"yuv444p12", cycbcr_yuv444p12_to_012v, from12, chroma444, groupWords},
    {"yuv444p12 band", cycbcr_yuv444p12_to_012v_internal, from12, chroma444, groupWords},
    {"yuv444p10", cycbcr_yuv444p10_to_012v, low10, chroma444, groupWords},
    {"yuv420p10", cycbcr_yuv420p10_to_012v, low10, chroma420, extraGroups},
};

TEST(Deep, PlanesToV210) {
    Source src;
    for (const ToV210& converter : kToV210) {
        eachGeometry([&](const Geometry& g) {
            const unsigned pitch = v210Pitch(g.width, g.dstPitch);
            Bytes got(kRoom, 0x55);
            Bytes expected = got;
            for (unsigned r = 0; r < g.height; ++r) {
                storeRow(&expected[r * pitch], converter.words(g.width),
                         [&](unsigned i) { return converter.reduce(sample(src, g, converter.chroma, r, i)); });
            }
            EXPECT_EQ(converter.convert(got.data(), src.y.data(), src.cb.data(), src.cr.data(), g.width, g.height,
                                        g.dstPitch, g.srcPitch),
                      pitch * g.height);
            ASSERT_EQ(got, expected) << describe(converter.name, g);
        });
    }
}

// The words behind a row take three more pixels, of which the last has no Cr of its own.
TEST(Deep, NoMoreIsReadThanTheExtraWordsHold) {
    GuardedBytes y(4096);
    GuardedBytes cb(4096);
    GuardedBytes cr(4096);
    Bytes dst(1024);
    for (unsigned width = 1; width <= 60; ++width) {
        const unsigned pixels = roundUp(width, 6) + (width % 6 != 0 ? 3 : 0);
        for (PXJoinPlanes* const convert :
             {cycbcr_yuv422p10_to_012v, cycbcr_yuv422p12_to_012v, cycbcr_yuv422p16_to_012v}) {
            convert(dst.data(), y.end() - 2 * pixels, cb.end() - (pixels + 1) / 2 * 2, cr.end() - pixels / 2 * 2, width,
                    1, 0, 2 * width);
        }
    }
}

TEST(Deep, LeftJustifiedSamplesGoInWithoutAMask) {
    Source src;
    eachGeometry([&](const Geometry& g) {
        for (const unsigned flags : {0U, 2U, 0xFFFFFFFDU}) {
            const ChromaOffset chroma = flags == 2 ? interleaved420 : wholePitch420;
            const unsigned pitch = std::max(2 * g.width, g.dstPitch);
            Bytes got(kRoom, 0x55);
            Bytes expected = got;
            for (unsigned r = 0; r < g.height; ++r) {
                // Up to the last component of the row's last pixel; what else its word holds is 0.
                const unsigned components =
                    g.width == 0 ? 0 : std::max(lumaOf(g.width - 1), crOf((g.width - 1) / 2)) + 1;
                for (unsigned w = 0; w < (components + 2) / 3; ++w) {
                    std::uint32_t word = 0;
                    for (unsigned i = 3 * w; i < 3 * w + 3; ++i) {
                        const bool inRow = i % 2 != 0 ? i / 2 < g.width : i / 4 < (g.width + 1) / 2;
                        const unsigned value = inRow ? sample(src, g, chroma, r, i) : 0;
                        word |= i % 3 == 0 ? value >> 6 : value << (i % 3 == 1 ? 4 : 14);
                    }
                    storeWord(&expected[r * pitch + 4 * w], word);
                }
            }
            EXPECT_EQ(cycbcr_yuv420p16_to_012v(got.data(), src.y.data(), src.cb.data(), src.cr.data(), g.width,
                                               g.height, g.dstPitch, g.srcPitch, flags),
                      pitch * g.height);
            ASSERT_EQ(got, expected) << describe("yuv420p16", g) << ", flags " << flags;
        }
    });
}

TEST(Deep, PlanesToUyvy) {
    Source src;
    const auto check = [&](const Geometry& g, ChromaOffset chroma, unsigned shift, auto convert) {
        const unsigned pitch = std::max(2 * g.width, g.dstPitch);
        Bytes got(kRoom, 0x55);
        Bytes expected = got;
        for (unsigned r = 0; r < g.height; ++r) {
            for (unsigned i = 0; i < std::min(roundUp(g.width, 2) * 2, pitch); ++i) {
                expected[r * pitch + i] = static_cast<unsigned char>(sample(src, g, chroma, r, i) >> shift);
            }
        }
        EXPECT_EQ(convert(got.data()), pitch * g.height);
        ASSERT_EQ(got, expected) << describe("uyvy", g) << ", shift " << shift;
    };
    eachGeometry([&](const Geometry& g) {
        const auto to = [&](auto converter, auto... flags) {
            return [&, converter, flags...](unsigned char* dst) {
                return converter(dst, src.y.data(), src.cb.data(), src.cr.data(), g.width, g.height, g.dstPitch,
                                 g.srcPitch, flags...);
            };
        };
        check(g, chroma422, 2, to(cycbcr_yuv422p10_to_uyvy));
        check(g, chroma422, 2, to(cycbcr_yuv422p10_to_uyvy_internal));
        check(g, chroma420, 2, to(cycbcr_yuv420p10_to_uyvy));
        check(g, wholePitch420, 8, to(cycbcr_yuv420p16_to_uyvy, 1U));
        check(g, interleaved420, 8, to(cycbcr_yuv420p16_to_uyvy, 2U));
    });
}

TEST(Deep, TellingSamples) {
    const auto luma = [](auto convert, unsigned value, auto... flags) {
        Bytes y(64);
        Bytes chroma(64);
        Bytes dst(256);
        store16(y.data(), value);
        convert(dst.data(), y.data(), chroma.data(), chroma.data(), 6U, 1U, 0U, 12U, flags...);
        return loadWord(dst.data());
    };
    EXPECT_EQ(luma(cycbcr_yuv422p10_to_012v, 0x0400), 0U);
    EXPECT_EQ(luma(cycbcr_yuv422p10_to_012v, 0x07FF), 1023U << 10);
    EXPECT_EQ(luma(cycbcr_yuv422p12_to_012v, 0x0FFF), 1023U << 10);
    EXPECT_EQ(luma(cycbcr_yuv422p12_to_012v, 0xF003), 0U);
    EXPECT_EQ(luma(cycbcr_yuv422p16_to_012v, 0xFFFF), 1023U << 10);
    EXPECT_EQ(luma(cycbcr_yuv420p16_to_012v, 0x0040, 0U), 1U << 10);
    EXPECT_EQ(luma(cycbcr_yuv420p16_to_012v, 0x0001, 0U), 1U << 4);
}

} // namespace
