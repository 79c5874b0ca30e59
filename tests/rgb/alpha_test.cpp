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

} // namespace
