#include "fikleipa.h"
#include "tests/guarded_bytes.h"
#include "tests/v210/model.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

using namespace fikleipa::tests;

constexpr std::size_t kRoom = 8192;

struct Planes {
    Bytes y = Bytes(kRoom, 0x55);
    Bytes cb = Bytes(kRoom, 0x55);
    Bytes cr = Bytes(kRoom, 0x55);

    bool operator==(const Planes&) const = default;
};

struct Geometry {
    unsigned width, height, yPitch, chromaPitch, srcPitch;
};

std::string describe(const Geometry& g) {
    return std::to_string(g.width) + "x" + std::to_string(g.height) + ", pitches " + std::to_string(g.yPitch) + ", " +
           std::to_string(g.chromaPitch) + " and " + std::to_string(g.srcPitch);
}

template <class Test>
void eachGeometry(Test test) {
    for (unsigned width = 0; width <= 60; ++width) {
        for (const unsigned height : {0U, 1U, 2U, 5U}) {
            for (const unsigned yPitch : {2 * width, 2 * width + 150, naturalPitch(width) + 3}) {
                for (const unsigned chromaPitch : {yPitch / 2, 2 * width + 17}) {
                    for (const unsigned srcPitch : {0U, naturalPitch(width) + 6}) {
                        test(Geometry{width, height, yPitch, chromaPitch, srcPitch});
                    }
                }
            }
        }
    }
}

// Stores as many of a row's samples as asked for, value(component index), and `zeros` behind them: two luma samples and
// one of each chroma.
template <class Value>
void storeRow422(Planes& planes, unsigned luma, unsigned chroma, unsigned pixels, bool zeros, Value value) {
    for (unsigned x = 0; x < pixels; ++x) store16(&planes.y[luma + 2 * x], value(lumaOf(x)));
    for (unsigned x = 0; x < pixels / 2; ++x) {
        store16(&planes.cb[chroma + 2 * x], value(cbOf(x)));
        store16(&planes.cr[chroma + 2 * x], value(crOf(x)));
    }
    if (!zeros || pixels == 0) return;
    storeWord(&planes.y[luma + 2 * pixels], 0);
    store16(&planes.cb[chroma + pixels], 0);
    store16(&planes.cr[chroma + pixels], 0);
}

TEST(DeepPlanes, V210To422OfTenBits) {
    Bytes src = noise(kRoom);
    eachGeometry([&](const Geometry& g) {
        const unsigned pitch = naturalPitch(g.width) > g.yPitch ? naturalPitch(g.width) : g.srcPitch;
        Planes got;
        Planes expected;
        for (unsigned r = 0; r < g.height; ++r) {
            storeRow422(expected, r * g.yPitch / 2 * 2, r * g.chromaPitch / 2 * 2, roundUp(g.width, 6),
                        2 * g.chromaPitch == g.yPitch, [&](unsigned i) { return component(&src[r * pitch], i); });
        }
        EXPECT_EQ(cycbcr_012v_to_yuv422p10(got.y.data(), got.cb.data(), got.cr.data(), src.data(), g.width, g.height,
                                           g.yPitch, g.chromaPitch, g.srcPitch),
                  (g.yPitch + 2 * g.chromaPitch) * g.height);
        ASSERT_TRUE(got == expected) << describe(g);
    });
}

TEST(DeepPlanes, V210To422Of16BitsLeavesTheLastRow) {
    Bytes src = noise(kRoom + 1);
    for (unsigned char* const start : {src.data(), src.data() + 1}) {
        eachGeometry([&](const Geometry& g) {
            const unsigned pitch = v210Pitch(g.width, g.srcPitch);
            Planes got;
            Planes expected;
            for (unsigned r = 0; r + 1 < g.height; ++r) {
                storeRow422(expected, r * g.yPitch / 2 * 2, r * (g.yPitch / 2) / 2 * 2, roundUp(g.width, 6), true,
                            [&](unsigned i) { return component(start + r * pitch, i) << 6; });
            }
            EXPECT_EQ(cycbcr_012v_to_yuv422p16(got.y.data(), got.cb.data(), got.cr.data(), start, g.width, g.height,
                                               g.yPitch, g.srcPitch),
                      g.yPitch * g.height);
            ASSERT_TRUE(got == expected) << describe(g);
        });
    }
}

TEST(DeepPlanes, V210To420OfTenBitsInTightPlanes) {
    Bytes src = noise(kRoom);
    eachGeometry([&](const Geometry& g) {
        const unsigned pitch = g.srcPitch / 4 * 4;
        Planes got;
        Planes expected;
        for (unsigned r = 0; r < g.height; ++r) {
            const unsigned other = std::min(r / 2 * 2 + 1, g.height - 1);
            storeRow422(expected, r * 2 * g.width, r / 2 * (g.width / 2) * 2, g.width, false, [&](unsigned i) {
                const unsigned value = component(&src[r * pitch], i);
                if (i % 2 != 0) return value;
                return (component(&src[r / 2 * 2 * pitch], i) + component(&src[other * pitch], i)) / 2;
            });
        }
        EXPECT_EQ(cycbcr_012v_to_yuv420p10(got.y.data(), got.cb.data(), got.cr.data(), src.data(), g.width, g.height,
                                           g.yPitch, g.chromaPitch, g.srcPitch),
                  3 * g.width * g.height);
        ASSERT_TRUE(got == expected) << describe(g);
    });
}

template <class Value>
Planes planes444(const Geometry& g, unsigned unit, Value value) {
    Planes planes;
    for (unsigned r = 0; r < g.height; ++r) {
        for (unsigned x = 0; x < roundUp(g.width, unit); ++x) {
            store16(&planes.y[r * g.yPitch / 2 * 2 + 2 * x], value(r, lumaOf(x)));
            store16(&planes.cb[r * g.chromaPitch / 2 * 2 + 2 * x], value(r, cbOf(x / 2)));
            store16(&planes.cr[r * g.chromaPitch / 2 * 2 + 2 * x], value(r, crOf(x / 2)));
        }
    }
    return planes;
}

TEST(DeepPlanes, FullChromaIsThatOfThePair) {
    Bytes src = noise(kRoom);
    eachGeometry([&](const Geometry& g) {
        const auto check = [&](PXSplitByPitches* convert, const Planes& expected) {
            Planes got;
            EXPECT_EQ(convert(got.y.data(), got.cb.data(), got.cr.data(), src.data(), g.width, g.height, g.yPitch,
                              g.chromaPitch, g.srcPitch),
                      (g.chromaPitch + 2 * g.yPitch) * g.height);
            ASSERT_TRUE(got == expected) << describe(g);
        };
        const unsigned pitch = v210Pitch(g.width, g.srcPitch);
        check(cycbcr_012v_to_yuv444p10,
              planes444(g, 6, [&](unsigned r, unsigned i) { return component(&src[r * pitch], i); }));
        check(cycbcr_uyvy_to_yuv444p10,
              planes444(g, 2, [&](unsigned r, unsigned i) { return src[r * g.srcPitch + i] * 4U; }));
    });
}

TEST(DeepPlanes, OneRowOf16BitsWritesNothing) {
    Bytes src(128, 0xFF);
    Planes got;
    EXPECT_EQ(cycbcr_012v_to_yuv422p16(got.y.data(), got.cb.data(), got.cr.data(), src.data(), 48, 1, 96, 0), 96U);
    EXPECT_TRUE(got == Planes());
}

// There and back, whole groups to the row, so that nothing is lost.
TEST(DeepPlanes, TenBitsSurviveEveryWayThroughPlanes) {
    constexpr unsigned kWidth = 1278;
    constexpr unsigned kHeight = 4;
    const unsigned pitch = naturalPitch(kWidth);
    Bytes src(std::size_t{pitch} * kHeight);
    const Bytes values = noise(4 * kWidth * kHeight);
    for (unsigned r = 0; r < kHeight; ++r) {
        storeRow(&src[r * pitch], kWidth / 6 * 4,
                 [&](unsigned i) { return load16(&values[2 * (r * kWidth + i / 2)]) % 1024; });
    }
    const unsigned row = 2 * kWidth;
    Bytes y(std::size_t{row} * kHeight + 64);
    Bytes cb(y.size());
    Bytes cr(y.size());
    Bytes back(src.size());
    cycbcr_012v_to_yuv422p10(y.data(), cb.data(), cr.data(), src.data(), kWidth, kHeight, row, row / 2, 0);
    cycbcr_yuv422p10_to_012v(back.data(), y.data(), cb.data(), cr.data(), kWidth, kHeight, 0, row);
    EXPECT_EQ(back, src);
    cycbcr_012v_to_yuv444p10(y.data(), cb.data(), cr.data(), src.data(), kWidth, kHeight, row, row, 0);
    back.assign(back.size(), 0);
    cycbcr_yuv444p10_to_012v(back.data(), y.data(), cb.data(), cr.data(), kWidth, kHeight, 0, row);
    EXPECT_EQ(back, src);
    cycbcr_v210to_planar16(y.data(), cb.data(), cr.data(), src.data(), kWidth, kHeight, row, 0, 0, 0);
    back.assign(back.size(), 0);
    cycbcr_yuv422p16_to_012v(back.data(), y.data(), cb.data(), cr.data(), kWidth, kHeight, 0, row);
    EXPECT_EQ(back, src);
}

} // namespace
