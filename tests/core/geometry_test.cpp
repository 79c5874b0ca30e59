#include "fikleipa.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

unsigned fixed(int fourcc, unsigned width, unsigned pitch) {
    _fixPitch(static_cast<unsigned>(fourcc), width, pitch);
    return pitch;
}

constexpr int kPacked[] = {PX_FOURCC_YUY2, PX_FOURCC_YUNV,     PX_FOURCC_UYVY, PX_FOURCC_UYNV, PX_FOURCC_AJYU,
                           PX_FOURCC_2vuy, PX_FOURCC_yuv2,     PX_FOURCC_2Vuy, PX_FOURCC_yuV2, PX_FOURCC_8800001E,
                           PX_FOURCC_YVYU, PX_FOURCC_8810001E, PX_FOURCC_cyuv};

TEST(FixPitch, PackedRowsHoldTheirPixels) {
    for (const int code : kPacked) {
        EXPECT_EQ(fixed(code, 720, 0), 1440U);
        EXPECT_EQ(fixed(code, 720, 1000), 1440U);
        EXPECT_EQ(fixed(code, 720, 1440), 1440U);
        EXPECT_EQ(fixed(code, 720, 2048), 2048U);
        EXPECT_EQ(fixed(code, 0, 7), 7U);
        EXPECT_EQ(fixed(code, 0x80000001, 0), 2U) << "the product wraps";
    }
}

TEST(FixPitch, PlanarPitchesAboveTheAlignedWidthAreReplaced) {
    for (const int code : {PX_FOURCC_I420, PX_FOURCC_IYUV, PX_FOURCC_YV12, PX_FOURCC_P422}) {
        for (const unsigned kept : {0U, 500U, 720U, 768U}) EXPECT_EQ(fixed(code, 720, kept), kept);
        EXPECT_EQ(fixed(code, 720, 769), 720U);
        EXPECT_EQ(fixed(code, 720, 2048), 720U);
        EXPECT_EQ(fixed(code, 0, 1), 0U);
        EXPECT_EQ(fixed(code, 0xFFFFFFFF, 5), 0xFFFFFFFFU) << "the aligned width wraps to 0";
    }
}

TEST(FixPitch, V210PitchesAreWholeGroups) {
    for (const int code : {PX_FOURCC_v210, PX_FOURCC_012v}) {
        for (const unsigned width : {1920U, 1921U}) {
            EXPECT_EQ(fixed(code, width, 0), 0U);
            EXPECT_EQ(fixed(code, width, 4096), 5120U);
            EXPECT_EQ(fixed(code, width, 5120), 5120U);
            EXPECT_EQ(fixed(code, width, 5121), 5120U);
            EXPECT_EQ(fixed(code, width, 6144), 6144U);
        }
        EXPECT_EQ(fixed(code, 0, 17), 0U);
        EXPECT_EQ(fixed(code, 0, 32), 32U);
        EXPECT_EQ(fixed(code, 0xFFFFFFFF, 1), 0xFFFFFFFFU / 6 * 16) << "no product of the width may wrap before";
    }
}

TEST(FixPitch, OthersAreLeftAlone) {
    for (const int code : std::initializer_list<int>{PX_FOURCC_RGB32, PX_FOURCC_422P, PX_FOURCC('N', 'V', '1', '2')}) {
        for (const unsigned pitch : {0U, 1U, 5000U}) EXPECT_EQ(fixed(code, 720, pitch), pitch);
    }
}

} // namespace
