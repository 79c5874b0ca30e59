#include "fikleipa.h"
#include "tests/v210/model.h"

#include <gtest/gtest.h>

namespace {

using namespace fikleipa::tests;

struct Geometry {
    unsigned width, height, dstPitch, srcPitch;
};

// Where a layout's samples begin, in bytes and in quarters of the luma plane.
struct Layout {
    const char* name;
    PXConvertFrame* fromV210;
    PXConvertFrame* toV210;
    unsigned y, cb, cr;
    unsigned cbQuarters, crQuarters;
    int planar422;
    int planar;
};

const Layout kLayouts[] = {
    {"yuy2", cycbcr_012v_to_yuy2, cycbcr_yuy2_to_012v, 0, 1, 3, 0, 0, 1, 0},
    {"yvyu", cycbcr_012v_to_yvyu, cycbcr_yvyu_to_012v, 0, 3, 1, 0, 0, 1, 0},
    {"cyuv", cycbcr_012v_to_cyuv, cycbcr_cyuv_to_012v, 1, 0, 2, 0, 0, 1, 0},
    {"i420", cycbcr_012v_to_i420, cycbcr_i420_to_012v, 0, 0, 0, 4, 5, 0, 1},
    {"yv12", cycbcr_012v_to_yv12, cycbcr_yv12_to_012v, 0, 0, 0, 5, 4, 0, 1},
    {"p422", cycbcr_012v_to_p422, cycbcr_p422_to_012v, 0, 0, 0, 4, 6, 1, 1},
};

constexpr std::size_t kRoom = 8192;

template <class Test>
void eachGeometry(Test test) {
    for (const unsigned width : {0U, 1U, 2U, 11U, 24U, 47U, 48U, 100U}) {
        for (const unsigned height : {0U, 1U, 2U, 3U, 8U}) {
            for (const unsigned v210Pitch : {0U, naturalPitch(width), naturalPitch(width) + 19}) {
                for (const unsigned pitch : {0U, width, 2 * width, 2 * width + 26}) {
                    test(Geometry{width, height, pitch, v210Pitch});
                }
            }
        }
    }
}

std::string describe(const char* name, const Geometry& g) {
    return std::string(name) + " " + std::to_string(g.width) + "x" + std::to_string(g.height) + ", pitches " +
           std::to_string(g.dstPitch) + " and " + std::to_string(g.srcPitch);
}

TEST(Pairs, V210ComesOutAsTheEngineLeavesIt) {
    Bytes src = noise(kRoom);
    for (const Layout& layout : kLayouts) {
        eachGeometry([&](const Geometry& g) {
            const unsigned luma = g.dstPitch * g.height;
            Bytes got(kRoom, 0x55);
            Bytes expected = got;
            const unsigned size = Fromv210(&expected[layout.y], &expected[layout.cb + luma * layout.cbQuarters / 4],
                                           &expected[layout.cr + luma * layout.crQuarters / 4], src.data(), g.width,
                                           g.height, g.dstPitch, g.srcPitch, layout.planar422, layout.planar);
            EXPECT_EQ(layout.fromV210(got.data(), src.data(), g.width, g.height, g.dstPitch, g.srcPitch), size);
            ASSERT_EQ(got, expected) << describe(layout.name, g);
        });
    }
}

TEST(Pairs, V210IsMadeByTheEngineAndOfCyuvTurnedOver) {
    Bytes src = noise(kRoom);
    for (const Layout& layout : kLayouts) {
        eachGeometry([&](const Geometry& swapped) {
            const Geometry g{swapped.width, swapped.height, swapped.srcPitch, swapped.dstPitch};
            const unsigned luma = g.srcPitch * g.height;
            Bytes got = noise(kRoom, 4);
            Bytes expected = got;
            const unsigned size =
                Tov210(expected.data(), &src[layout.y], &src[layout.cb + luma * layout.cbQuarters / 4],
                       &src[layout.cr + luma * layout.crQuarters / 4], g.width, g.height, g.dstPitch, g.srcPitch,
                       layout.planar422, layout.planar);
            if (layout.toV210 == cycbcr_cyuv_to_012v) cycbcr_invert(expected.data(), g.dstPitch, g.height);
            EXPECT_EQ(layout.toV210(got.data(), src.data(), g.width, g.height, g.dstPitch, g.srcPitch), size);
            ASSERT_EQ(got, expected) << describe(layout.name, g);
        });
    }
}

TEST(Pairs, ThreePlanesAreTheEnginesTo422) {
    Bytes src = noise(kRoom);
    Bytes got(kRoom, 0x55);
    Bytes expected = got;
    EXPECT_EQ(cycbcr_012v_to_planar422(got.data(), &got[3000], &got[5000], src.data(), 35, 7, 50, 0), 35U * 7 * 3 / 2);
    Fromv210(expected.data(), &expected[3000], &expected[5000], src.data(), 35, 7, 50, 0, 1, 1);
    EXPECT_EQ(got, expected);
    EXPECT_EQ(cycbcr_012v_to_planar422_16(got.data(), &got[3000], &got[5000], src.data(), 35, 7, 101, 300),
              35U * 7 * 4);
    Fromv210_16(expected.data(), &expected[3000], &expected[5000], src.data(), 35, 7, 101, 300, 1, 1);
    EXPECT_EQ(got, expected);
}

TEST(Pairs, UyvyIsRoundedAndStopsAtTheWidth) {
    Bytes src = noise(kRoom);
    // Every value of ten bits; the fields of three consecutive ones to a word.
    for (unsigned i = 0; i < 1023; i += 3) storeWord(&src[i / 3 * 4], i | (i + 1) << 10 | (i + 2) << 20);
    storeWord(&src[341 * 4], 1023);
    eachGeometry([&](const Geometry& g) {
        Bytes got(kRoom, 0x55);
        Bytes expected = got;
        const unsigned pitch = g.srcPitch == 0 ? roundUp(g.width, 6) / 6 * 16 : v210Pitch(g.width, g.srcPitch);
        for (unsigned r = 0; r < g.height; ++r) {
            for (unsigned i = 0; i < roundUp(g.width, 2) * 2; ++i) {
                const unsigned value = (component(&src[r * pitch], i) + 2) >> 2;
                expected[r * g.dstPitch + i] = static_cast<unsigned char>(std::min(value, 255U));
            }
        }
        for (PXConvertFrame* const convert : {cycbcr_012v_to_uyvy, cycbcr_012v_to_uyvy_opt}) {
            EXPECT_EQ(convert(got.data(), src.data(), g.width, g.height, g.dstPitch, g.srcPitch),
                      g.dstPitch * g.height);
            ASSERT_EQ(got, expected) << describe("uyvy", g);
        }
    });
}

TEST(Pairs, V210OfUyvyHasAPitchOfItsOwn) {
    Bytes src = noise(kRoom);
    eachGeometry([&](const Geometry& g) {
        const unsigned pitch = std::max(roundUp(g.width * 16 / 6, 64), g.srcPitch);
        Bytes got(kRoom, 0x55);
        Bytes expected = got;
        for (unsigned r = 0; r < g.height; ++r) {
            const unsigned char* const row = &src[r * std::max(2 * g.width, g.dstPitch)];
            storeRow(&expected[r * pitch], roundUp(g.width, 6) / 6 * 4, [&](unsigned i) { return row[i] * 4U; });
        }
        for (PXConvertFrame* const convert : {cycbcr_uyvy_to_012v, cycbcr_uyvy_to_012v_opt}) {
            EXPECT_EQ(convert(got.data(), src.data(), g.width, g.height, g.srcPitch, g.dstPitch),
                      g.srcPitch * g.height);
            ASSERT_EQ(got, expected) << describe("uyvy", g);
        }
    });
    Bytes dst(2 * 384, 0x55);
    cycbcr_uyvy_to_012v(dst.data(), src.data(), 100, 2, 0, 0);
    EXPECT_EQ(component(&dst[320], 0), src[200] * 4U) << "320 bytes a row, not 384";
}

TEST(Pairs, ACopyKnowsPitchesOnly) {
    Bytes src = noise(600);
    Bytes dst(600, 0x55);
    EXPECT_EQ(cycbcr_012v_to_012v(dst.data(), src.data(), 0, 3, 200, 200), 600U);
    EXPECT_EQ(dst, src);
    dst.assign(600, 0x55);
    EXPECT_EQ(cycbcr_012v_to_012v(dst.data(), src.data(), 48, 3, 130, 150), 390U);
    for (unsigned i = 0; i < 600; ++i) ASSERT_EQ(dst[i], i < 390 ? src[i / 130 * 150 + i % 130] : 0x55);
}

// 10-bit values of luma and what they become.
TEST(Pairs, TruncationAndRounding) {
    Bytes src(128);
    storeRow(src.data(), 4, [](unsigned i) { return i == lumaOf(0) ? 1023U : 514U; });
    Bytes yuy2(24);
    Bytes uyvy(24);
    cycbcr_012v_to_yuy2(yuy2.data(), src.data(), 6, 1, 12, 0);
    cycbcr_012v_to_uyvy(uyvy.data(), src.data(), 6, 1, 12, 0);
    EXPECT_EQ(yuy2[0], 255);
    EXPECT_EQ(uyvy[1], 255);
    EXPECT_EQ(yuy2[2], 128);
    EXPECT_EQ(uyvy[3], 129);
}

TEST(Pairs, OfTwoRowsTheLaterOnesChromaRemains) {
    Bytes src(2 * 128);
    storeRow(src.data(), 4, [](unsigned) { return 400U; });
    storeRow(&src[128], 4, [](unsigned) { return 800U; });
    Bytes i420(12 * 2 * 3 / 2);
    EXPECT_EQ(cycbcr_012v_to_i420(i420.data(), src.data(), 12, 2, 12, 0), 36U);
    EXPECT_EQ(i420[0], 100);
    EXPECT_EQ(i420[24], 200);
    Bytes p422(12 * 2 * 2);
    EXPECT_EQ(cycbcr_012v_to_p422(p422.data(), src.data(), 12, 2, 12, 0), 36U) << "although it writes 48 bytes";
    EXPECT_EQ(p422[24], 100);
    EXPECT_EQ(p422[47], 0) << "of the second group, which the source holds as 0";
}

// A frame that caches hold, and one that they do not.
TEST(Pairs, CyuvGoesInUpsideDownAndComesOutAsItIs) {
    for (const auto& [width, height] : {std::pair{48U, 5U}, {1000U, 800U}}) {
        const unsigned srcPitch = 2 * width + 4;
        const unsigned dstPitch = naturalPitch(width) + 12;
        Bytes src = noise(std::size_t{srcPitch} * height + 16);
        Bytes cyuv(std::size_t{dstPitch} * height);
        Bytes uyvy = cyuv;
        cycbcr_cyuv_to_012v(cyuv.data(), src.data(), width, height, dstPitch, srcPitch);
        cycbcr_uyvy_to_012v(uyvy.data(), src.data(), width, height, dstPitch, srcPitch);
        EXPECT_FALSE(cyuv == uyvy);
        cycbcr_invert(cyuv.data(), dstPitch, height);
        EXPECT_TRUE(cyuv == uyvy) << width;
    }
    Bytes src = noise(std::size_t{96} * 5);
    Bytes v210(std::size_t{128} * 5);
    Bytes back(src.size());
    cycbcr_uyvy_to_012v(v210.data(), src.data(), 48, 5, 0, 0);
    cycbcr_012v_to_cyuv(back.data(), v210.data(), 48, 5, 96, 0);
    EXPECT_EQ(back, src) << "8 bits survive the way through ten";
}

} // namespace
