#include "fikleipa.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

TEST(Alpha, IsStoredInTheFourthByteOfEveryPixel) {
    constexpr unsigned kPitch = 3 * 4 + 5;
    Bytes alpha{1, 2, 3, 4, 5, 6};
    for (const unsigned type : {0U, 3U, 0x8000U}) {
        Bytes dst(2 * kPitch, 0x55);
        EXPECT_EQ(cycbcr_uyvy_to_rgb32_Alpha(dst.data(), alpha.data(), 3, 2, kPitch, 99, PX_MATRIX_BT709,
                                             static_cast<PXYCBCRRgbType>(type)),
                  6U);
        Bytes expected(dst.size(), 0x55);
        for (unsigned i = 0; i < 6; ++i) {
            const unsigned row = (type & 0x8000) != 0 ? 1 - i / 3 : i / 3;
            expected[row * kPitch + i % 3 * 4 + 3] = alpha[i];
        }
        EXPECT_EQ(dst, expected);
    }
}

TEST(Alpha, OddMatricesExpandStudioLevels) {
    Bytes alpha(256);
    for (unsigned a = 0; a < 256; ++a) alpha[a] = static_cast<unsigned char>(a);
    Bytes dst(256 * 4);
    for (const unsigned matrix : {1U, 7U, 0xFFFFFFFFU}) {
        cycbcr_uyvy_to_rgb32_Alpha(dst.data(), alpha.data(), 256, 1, 0, 0, static_cast<PXYCBCRMatrix>(matrix),
                                   PX_RGB_BGRA);
        EXPECT_EQ(dst[16 * 4 + 3], 0);
        EXPECT_EQ(dst[17 * 4 + 3], 1);
        EXPECT_EQ(dst[126 * 4 + 3], 128);
        EXPECT_EQ(dst[234 * 4 + 3], 253);
        EXPECT_EQ(dst[235 * 4 + 3], 255);
        EXPECT_EQ(dst[255 * 4 + 3], 255);
    }
}

// Rows of 4 pixels begin 16 / 3 bytes apart, wherever that falls.
TEST(Alpha, OfTenBitsComesThreeToAWord) {
    constexpr unsigned kPitch = 4 * 4 + 3;
    // Samples 1, 2 and 3 in the first word of the first row, 4 in the second; the second row begins at byte 5.
    Bytes alpha{0x04, 0x20, 0xC0, 0x00, 0x10, 0x14, 0x60, 0xC0, 0x01, 0x20, 0x00};
    const Bytes rows[2] = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    for (const unsigned type : {0U, 3U, 0x8000U}) {
        Bytes dst(2 * kPitch, 0x55);
        EXPECT_EQ(cycbcr_012v_to_rgb32_Alpha(dst.data(), alpha.data(), 4, 2, kPitch, 99, PX_MATRIX_BT709,
                                             static_cast<PXYCBCRRgbType>(type)),
                  10U);
        Bytes expected(dst.size(), 0x55);
        for (unsigned i = 0; i < 8; ++i) {
            const unsigned row = (type & 0x8000) != 0 ? 1 - i / 4 : i / 4;
            expected[row * kPitch + i % 4 * 4 + 3] = rows[i / 4][i % 4];
        }
        EXPECT_EQ(dst, expected) << type;
    }
    Bytes untouched(4, 0x55);
    EXPECT_EQ(cycbcr_012v_to_rgb32_Alpha(untouched.data(), alpha.data(), 0, 7, 4, 0, PX_MATRIX_BT709, PX_RGB_BGRA), 0U);
    EXPECT_EQ(untouched, Bytes(4, 0x55));
}

// From 875 to 876 it jumps. The level of 940 was 255 long before.
TEST(Alpha, OddMatricesExpandTenBitsToo) {
    const auto expanded = [](unsigned sample) {
        Bytes word{static_cast<unsigned char>(sample), static_cast<unsigned char>(sample >> 8)};
        Bytes dst(4);
        cycbcr_012v_to_rgb32_Alpha(dst.data(), word.data(), 1, 1, 4, 0, PX_MATRIX_BT601_STUDIO, PX_RGB_BGRA);
        return unsigned{dst[3]};
    };
    EXPECT_EQ(expanded(0), 0U);
    EXPECT_EQ(expanded(64), 0U);
    EXPECT_EQ(expanded(65), 0U);
    EXPECT_EQ(expanded(68), 1U);
    EXPECT_EQ(expanded(502), 127U);
    EXPECT_EQ(expanded(875), 236U);
    EXPECT_EQ(expanded(876), 255U);
    EXPECT_EQ(expanded(1023), 255U);
}

} // namespace
