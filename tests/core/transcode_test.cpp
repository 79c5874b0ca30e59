#include "fikleipa.h"
#include "tests/core/platform.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned kUnhandled = 0xFFFFFFFF;
constexpr unsigned kWidth = 20;
constexpr unsigned kHeight = 6;
constexpr std::size_t kRoom = 8192;

Bytes noise() {
    std::minstd_rand random(7);
    Bytes data(kRoom);
    for (unsigned char& byte : data) byte = static_cast<unsigned char>(random() >> 8);
    return data;
}

// The named converter of a pair.
struct Pair {
    int dst;
    int src;
    PXConvertFrame* convert;
    PXConvertRgbFrame* convertRgb;
};

#define PAIR(src, SRC, dst, DST)                                                                                       \
    Pair {                                                                                                             \
        PX_FOURCC_##DST, PX_FOURCC_##SRC, static_cast<PXConvertFrame*>(cycbcr_##src##_to_##dst), nullptr               \
    }
#define RGB_PAIR(src, SRC, dst, DST)                                                                                   \
    Pair {                                                                                                             \
        PX_FOURCC_##DST, PX_FOURCC_##SRC, nullptr, cycbcr_##src##_to_##dst                                             \
    }
#define TO_EVERY_YCBCR(pair, src, SRC)                                                                                 \
    pair(src, SRC, uyvy, UYVY), pair(src, SRC, yuy2, YUY2), pair(src, SRC, yvyu, YVYU), pair(src, SRC, cyuv, cyuv),    \
        pair(src, SRC, i420, I420), pair(src, SRC, yv12, YV12), pair(src, SRC, p422, P422), pair(src, SRC, 012v, v210)
#define TO_EVERYTHING(src, SRC) TO_EVERY_YCBCR(PAIR, src, SRC), RGB_PAIR(src, SRC, rgb32, RGB32)
const std::array kPairs{
    TO_EVERYTHING(uyvy, UYVY), TO_EVERYTHING(yuy2, YUY2), TO_EVERYTHING(yvyu, YVYU),
    TO_EVERYTHING(cyuv, cyuv), TO_EVERYTHING(i420, I420), TO_EVERYTHING(yv12, YV12),
    TO_EVERYTHING(p422, P422), TO_EVERYTHING(012v, v210), TO_EVERY_YCBCR(RGB_PAIR, RGB32, RGB32),
};

constexpr int kCodes[] = {
    PX_FOURCC_YUY2,     PX_FOURCC_YUNV, PX_FOURCC_UYVY, PX_FOURCC_UYNV, PX_FOURCC_AJYU,
    PX_FOURCC_2vuy,     PX_FOURCC_yuv2, PX_FOURCC_2Vuy, PX_FOURCC_yuV2, PX_FOURCC_8800001E,
    PX_FOURCC_8810001E, PX_FOURCC_YVYU, PX_FOURCC_cyuv, PX_FOURCC_I420, PX_FOURCC_IYUV,
    PX_FOURCC_YV12,     PX_FOURCC_P422, PX_FOURCC_v210, PX_FOURCC_012v, PX_FOURCC_RGB32,
};
constexpr int kUnknown = PX_FOURCC('N', 'V', '1', '2');

// The code whose pairs a synonym shares.
int canonical(int code) {
    switch (code) {
    case PX_FOURCC_YUNV:
        return PX_FOURCC_YUY2;
    case PX_FOURCC_UYNV:
    case PX_FOURCC_AJYU:
    case PX_FOURCC_2vuy:
    case PX_FOURCC_yuv2:
    case PX_FOURCC_2Vuy:
    case PX_FOURCC_yuV2:
    case PX_FOURCC_8800001E:
    case PX_FOURCC_8810001E:
        return PX_FOURCC_UYVY;
    case PX_FOURCC_IYUV:
        return PX_FOURCC_I420;
    case PX_FOURCC_422P:
        return PX_FOURCC_P422;
    case PX_FOURCC_012v:
        return PX_FOURCC_v210;
    default:
        return code;
    }
}

const Pair* find(int dst, int src) {
    for (const Pair& pair : kPairs) {
        if (pair.dst == canonical(dst) && pair.src == canonical(src)) return &pair;
    }
    return nullptr;
}

// Planes are found by the pitch or by the width; pitches of 0, too small, of no whole groups and too large are
// corrected first, but for "422P".
TEST(Transcode, EveryPairIsItsNamedConverterWithCorrectedPitches) {
    std::vector<int> codes(std::begin(kCodes), std::end(kCodes));
    codes.push_back(PX_FOURCC_422P);
    codes.push_back(kUnknown);
    const Bytes source = noise();
    for (const int dst : codes) {
        for (const int src : codes) {
            for (const unsigned pitch : {96U, 0U, 2 * kWidth - 1, 200U}) {
                Bytes from = source;
                Bytes to(kRoom, 0x55);
                Bytes expectedFrom = source;
                Bytes expectedTo = to;
                const unsigned result = cycbcr_transcode(to.data(), from.data(), kWidth, kHeight, pitch, pitch,
                                                         PX_MATRIX_BT709, PX_RGB_ARGB, dst, src);

                unsigned dstPitch = pitch;
                unsigned srcPitch = pitch;
                _fixPitch(static_cast<unsigned>(dst), kWidth, dstPitch);
                _fixPitch(static_cast<unsigned>(src), kWidth, srcPitch);
                unsigned expected = kUnhandled;
                const Pair* const pair = dst == PX_FOURCC_422P ? nullptr : find(dst, src);
                if (pair != nullptr && pair->convert != nullptr) {
                    expected =
                        pair->convert(expectedTo.data(), expectedFrom.data(), kWidth, kHeight, dstPitch, srcPitch);
                } else if (pair != nullptr) {
                    expected = pair->convertRgb(expectedTo.data(), expectedFrom.data(), kWidth, kHeight, dstPitch,
                                                srcPitch, PX_MATRIX_BT709, PX_RGB_ARGB);
                }
                ASSERT_EQ(result, expected) << src << " to " << dst << ", pitch " << pitch;
                ASSERT_TRUE(to == expectedTo && from == expectedFrom) << src << " to " << dst << ", pitch " << pitch;
            }
        }
    }
}

TEST(Transcode, OnlyTheGuardedPairSwallowsWhatIsThrown) {
    Bytes source = noise();
    Bytes dst(kRoom);
    const auto convert = [&](int to, int from) {
        return cycbcr_transcode(dst.data(), source.data(), kWidth, kHeight, 0, 0, PX_MATRIX_BT601, PX_RGB_BGRA, to,
                                from);
    };
    fikleipa::tests::swapThrows = true;
    EXPECT_EQ(convert(PX_FOURCC_YUY2, PX_FOURCC_UYVY), kUnhandled);
    EXPECT_EQ(convert(PX_FOURCC_YUNV, PX_FOURCC_2vuy), kUnhandled);
    EXPECT_ANY_THROW(convert(PX_FOURCC_UYVY, PX_FOURCC_YUY2));
    fikleipa::tests::swapThrows = false;
}

TEST(Transcode, CanTranscodeKnowsTheCodesAndNotThePairs) {
    for (const int a : kCodes) {
        for (const int b : kCodes) EXPECT_EQ(cycbcr_can_transcode(a, b), 1);
        for (const int b : std::initializer_list<int>{PX_FOURCC_422P, kUnknown, -1}) {
            EXPECT_EQ(cycbcr_can_transcode(a, b), 0);
            EXPECT_EQ(cycbcr_can_transcode(b, a), 0);
        }
    }
}

} // namespace
