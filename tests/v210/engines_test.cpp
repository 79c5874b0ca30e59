#include "fikleipa.h"
#include "tests/v210/model.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using namespace fikleipa::tests;

// A frame of samples in one buffer: where it begins, and its flags.
struct Samples {
    unsigned y, cb, cr;
    int planar422;
    int planar;
};
constexpr Samples kPacked[] = {{0, 1, 3, 1, 0}, {0, 3, 1, 0, 0}, {1, 0, 2, 1, 0}, {8, 3, 1, 1, 0}};

constexpr unsigned kGap = 64;

// Planes of `lumaBytes`, apart from one another so that no surplus of one reaches the next.
Samples planes(unsigned lumaBytes, int planar422) {
    return {0, lumaBytes + kGap, 2 * (lumaBytes + kGap), planar422, 1};
}

struct Geometry {
    unsigned width, height, dstPitch, srcPitch;
};

unsigned chromaRow(const Samples& s, unsigned row) {
    return s.planar != 0 && s.planar422 == 0 ? row / 2 : row;
}

void packModel(Bytes& dst, const Bytes& src, const Samples& s, const Geometry& g) {
    const unsigned step = s.planar != 0 ? 1 : 2;
    const unsigned chromaStep = s.planar != 0 ? 1 : 4;
    for (unsigned r = 0; r < g.height; ++r) {
        const unsigned packed = g.srcPitch == 2 * g.width ? r * 2 * roundUp(g.width, 6) : r * g.srcPitch;
        const unsigned luma = s.planar != 0 ? r * g.width : packed;
        const unsigned chroma = s.planar != 0 ? chromaRow(s, r) * (g.width / 2) : packed;
        storeRow(dst.data() + r * v210Pitch(g.width, g.dstPitch), roundUp(g.width, 6) / 6 * 4, [&](unsigned i) {
            if (i % 2 != 0) return src[s.y + luma + i / 2 * step] * 4U;
            return src[(i % 4 == 0 ? s.cb : s.cr) + chroma + i / 4 * chromaStep] * 4U;
        });
    }
}

// Steps of 12 pixels, each with its luma, then its chroma.
void unpackModel(Bytes& dst, const Bytes& src, const Samples& s, const Geometry& g, unsigned bytes) {
    const unsigned step = s.planar != 0 ? 1 : 2;
    const unsigned chromaStep = s.planar != 0 ? 1 : 4;
    const auto put = [&](unsigned offset, unsigned value) {
        if (bytes == 1) {
            dst[offset] = static_cast<unsigned char>(value >> 2);
        } else {
            store16(&dst[offset], value << 6);
        }
    };
    for (unsigned r = 0; r < g.height; ++r) {
        const unsigned char* const row = src.data() + r * v210Pitch(g.width, g.srcPitch);
        const unsigned chromaPitch = s.planar != 0 ? g.dstPitch / 2 : g.dstPitch;
        const unsigned luma = r * g.dstPitch / bytes * bytes;
        const unsigned chroma = chromaRow(s, r) * chromaPitch / bytes * bytes;
        for (unsigned x = 0; x < g.width; x += 12) {
            for (unsigned i = x; i < x + 12; ++i) put(s.y + luma + i * step * bytes, component(row, lumaOf(i)));
            for (unsigned i = x / 2; i < x / 2 + 6; ++i) {
                put(s.cb + chroma + i * chromaStep * bytes, component(row, cbOf(i)));
                put(s.cr + chroma + i * chromaStep * bytes, component(row, crOf(i)));
            }
        }
    }
}

template <class Test>
void eachSize(Test test) {
    std::vector<unsigned> widths{100, 1278, 1918};
    for (unsigned width = 0; width <= 60; ++width) widths.push_back(width);
    for (const unsigned width : widths) {
        for (const unsigned height : {0U, 1U, 2U, 5U}) test(width, height);
    }
}

TEST(Engines, Tov210PacksEveryArrangement) {
    const Bytes source = noise(80000);
    const auto check = [&](const Samples& s, const Geometry& g) {
        Bytes src = source;
        Bytes got(naturalPitch(g.width) * g.height + 7 * g.dstPitch + 64, 0x55);
        Bytes expected = got;
        packModel(expected, source, s, g);
        EXPECT_EQ(Tov210(got.data(), src.data() + s.y, src.data() + s.cb, src.data() + s.cr, g.width, g.height,
                         g.dstPitch, g.srcPitch, s.planar422, s.planar),
                  naturalPitch(g.width) * g.height);
        ASSERT_TRUE(got == expected && src == source) << g.width << "x" << g.height << ", pitches " << g.dstPitch
                                                      << " and " << g.srcPitch << ", planar " << s.planar;
    };
    eachSize([&](unsigned width, unsigned height) {
        for (const unsigned dstPitch : {0U, naturalPitch(width) + 5}) {
            for (const Samples& s : kPacked) {
                for (const unsigned srcPitch : {0U, 2 * width, 2 * width + 7})
                    check(s, {width, height, dstPitch, srcPitch});
            }
            for (const int planar422 : {0, 7}) check(planes(width * height, planar422), {width, height, dstPitch, 1});
        }
    });
}

template <PXV210ToSamples* kUnpack, unsigned kBytes>
void unpacksEveryArrangement() {
    const Bytes source = noise(80000);
    const auto check = [&](const Samples& s, const Geometry& g) {
        Bytes src = source;
        Bytes got(3 * (g.dstPitch * g.height + kGap) + 4 * roundUp(g.width, 12), 0x55);
        Bytes expected = got;
        unpackModel(expected, source, s, g, kBytes);
        const unsigned planar =
            kBytes == 1 ? g.width * g.height * 3 / 2 : g.width * g.height * (s.planar422 != 0 ? 4 : 3);
        EXPECT_EQ(kUnpack(got.data() + s.y, got.data() + s.cb, got.data() + s.cr, src.data(), g.width, g.height,
                          g.dstPitch, g.srcPitch, s.planar422, s.planar),
                  s.planar != 0 ? planar : 2 * g.width * g.height);
        ASSERT_TRUE(got == expected && src == source) << g.width << "x" << g.height << ", pitches " << g.dstPitch
                                                      << " and " << g.srcPitch << ", planar " << s.planar;
    };
    eachSize([&](unsigned width, unsigned height) {
        const unsigned row = width * kBytes;
        for (const unsigned srcPitch : {0U, naturalPitch(width) + 5}) {
            for (Samples s : kPacked) {
                s = {s.y * kBytes, s.cb * kBytes, s.cr * kBytes, s.planar422, s.planar};
                for (const unsigned dstPitch : {0U, 2 * row, 2 * row + 7})
                    check(s, {width, height, dstPitch, srcPitch});
            }
            for (const int planar422 : {0, 7}) {
                for (const unsigned dstPitch : {row, row + 31}) {
                    check(planes(dstPitch * height, planar422), {width, height, dstPitch, srcPitch});
                }
            }
        }
    });
}

TEST(Engines, Fromv210UnpacksEveryArrangement) {
    unpacksEveryArrangement<Fromv210, 1>();
}

TEST(Engines, Fromv210To16BitsUnpacksEveryArrangement) {
    unpacksEveryArrangement<Fromv210_16, 2>();
}

// The surplus of a plane's row lies on the next plane, in a frame of one row on the row in hand.
TEST(Engines, ThePlanesOfAFrameOverwriteOneAnotherInTheOrderOfTheSteps) {
    Bytes src = noise(8 * naturalPitch(60));
    for (unsigned width = 24; width <= 60; ++width) {
        for (const unsigned height : {1U, 2U, 3U, 8U}) {
            for (const int planar422 : {0, 1}) {
                const unsigned luma = width * height;
                const Samples s{0, luma, luma + luma / (planar422 != 0 ? 2 : 4), planar422, 1};
                Bytes got(2 * luma + kGap, 0x55);
                Bytes expected = got;
                unpackModel(expected, src, s, {width, height, width, 0}, 1);
                Fromv210(&got[s.y], &got[s.cb], &got[s.cr], src.data(), width, height, width, 0, planar422, 1);
                ASSERT_EQ(got, expected) << width << "x" << height << ", 4:2:2 " << planar422;
            }
        }
    }
}

TEST(Engines, PitchesAndResults) {
    Bytes src(2 * 1924 * 2, 0x80);
    Bytes dst(2 * 5200, 0x55);
    EXPECT_EQ(Tov210(dst.data(), src.data(), &src[1], &src[3], 1918, 2, 5200, 2 * 1918, 1, 0), 2U * 5120)
        << "the natural pitch's bytes, not the passed one's";
    EXPECT_EQ(loadWord(&dst[5116]), 0x20080200U) << "320 whole groups";
    EXPECT_EQ(dst[5120], 0x55);
    EXPECT_EQ(loadWord(&dst[5200]), 0x20080200U);

    for (const auto& [width, pitch] : {std::pair{1920U, 5120U}, {1280U, 3456U}, {720U, 1920U}, {100U, 384U}}) {
        EXPECT_EQ(Tov210(dst.data(), src.data(), src.data(), src.data(), width, 1, 0, 0, 1, 1), pitch);
    }
}

TEST(Engines, RowsWithoutAGapDriftByWholeGroups) {
    Bytes src(40);
    for (unsigned i = 0; i < 40; ++i) src[i] = static_cast<unsigned char>(i);
    Bytes dst(2 * 128);
    Tov210(dst.data(), src.data(), &src[1], &src[3], 4, 2, 0, 8, 1, 0);
    EXPECT_EQ(component(dst.data(), lumaOf(0)), 0U);
    EXPECT_EQ(component(&dst[128], lumaOf(0)), 12U * 4) << "row 1 begins 4 bytes late";
    Tov210(dst.data(), src.data(), &src[1], &src[3], 4, 2, 0, 9, 1, 0);
    EXPECT_EQ(component(&dst[128], lumaOf(0)), 9U * 4);
}

// Of the fields' 10 bits the high eight come back, whatever lies in bits 30 and 31.
TEST(Engines, WordsOfAGroup) {
    Bytes y{0x81, 0x82, 0x83, 0x84, 0x85, 0x86};
    Bytes cb{0x11, 0x12, 0x13};
    Bytes cr{0x21, 0x22, 0x23};
    Bytes group(128);
    Tov210(group.data(), y.data(), cb.data(), cr.data(), 6, 1, 0, 0, 1, 1);
    EXPECT_EQ(loadWord(group.data()), 0x21U << 22 | 0x81U << 12 | 0x11U << 2);
    EXPECT_EQ(loadWord(&group[4]), 0x83U << 22 | 0x12U << 12 | 0x82U << 2);
    EXPECT_EQ(loadWord(&group[8]), 0x13U << 22 | 0x84U << 12 | 0x22U << 2);
    EXPECT_EQ(loadWord(&group[12]), 0x86U << 22 | 0x23U << 12 | 0x85U << 2);

    for (unsigned i = 3; i < 16; i += 4) group[i] |= 0xC0;
    Bytes back(12 + 6 + 6);
    Fromv210(back.data(), &back[12], &back[18], group.data(), 6, 1, 0, 0, 1, 1);
    EXPECT_TRUE(std::equal(y.begin(), y.end(), back.begin()));
    EXPECT_TRUE(std::equal(cb.begin(), cb.end(), &back[12]));
    EXPECT_TRUE(std::equal(cr.begin(), cr.end(), &back[18]));
}

} // namespace
