#include "fikleipa.h"
#include "tests/core/platform.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr unsigned kUnhandled = 0xFFFFFFFF;
constexpr unsigned kWidth = 20;
constexpr unsigned kHeight = 6;
constexpr std::size_t kRoom = 4096;

Bytes noise() {
    std::minstd_rand random(7);
    Bytes data(kRoom);
    for (unsigned char& byte : data) byte = static_cast<unsigned char>(random() >> 8);
    return data;
}

// What a pair's named converter does with pitches that need no correction.
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
#define RGB(src, SRC)                                                                                                  \
    Pair {                                                                                                             \
        PX_FOURCC_RGB32, PX_FOURCC_##SRC, nullptr, cycbcr_##src##_to_rgb32                                             \
    }
const std::array kPairs{
    PAIR(uyvy, UYVY, uyvy, UYVY),
    PAIR(uyvy, UYVY, yuy2, YUY2),
    PAIR(uyvy, UYVY, yvyu, YVYU),
    PAIR(uyvy, UYVY, cyuv, cyuv),
    PAIR(yuy2, YUY2, uyvy, UYVY),
    PAIR(yuy2, YUY2, yuy2, YUY2),
    PAIR(yuy2, YUY2, yvyu, YVYU),
    PAIR(yuy2, YUY2, cyuv, cyuv),
    PAIR(yvyu, YVYU, uyvy, UYVY),
    PAIR(yvyu, YVYU, yuy2, YUY2),
    PAIR(yvyu, YVYU, yvyu, YVYU),
    PAIR(yvyu, YVYU, cyuv, cyuv),
    PAIR(cyuv, cyuv, uyvy, UYVY),
    PAIR(cyuv, cyuv, yuy2, YUY2),
    PAIR(cyuv, cyuv, yvyu, YVYU),
    PAIR(cyuv, cyuv, cyuv, cyuv),
    PAIR(uyvy, UYVY, 012v, v210),
    PAIR(yuy2, YUY2, 012v, v210),
    PAIR(yvyu, YVYU, 012v, v210),
    PAIR(cyuv, cyuv, 012v, v210),
    PAIR(i420, I420, 012v, v210),
    PAIR(yv12, YV12, 012v, v210),
    PAIR(p422, P422, 012v, v210),
    PAIR(012v, v210, uyvy, UYVY),
    PAIR(012v, v210, yuy2, YUY2),
    PAIR(012v, v210, yvyu, YVYU),
    PAIR(012v, v210, cyuv, cyuv),
    PAIR(012v, v210, i420, I420),
    PAIR(012v, v210, yv12, YV12),
    PAIR(012v, v210, p422, P422),
    PAIR(012v, v210, 012v, v210),
    RGB(uyvy, UYVY),
    RGB(yuy2, YUY2),
    RGB(yvyu, YVYU),
    RGB(cyuv, cyuv),
    RGB(i420, I420),
    RGB(yv12, YV12),
    RGB(p422, P422),
    RGB(012v, v210),
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

constexpr unsigned kPitch = 2 * kWidth + 8;

TEST(Transcode, EveryPairIsItsNamedConverter) {
    std::vector<int> codes(std::begin(kCodes), std::end(kCodes));
    codes.push_back(PX_FOURCC_422P);
    codes.push_back(kUnknown);
    for (const int dst : codes) {
        for (const int src : codes) {
            SCOPED_TRACE(std::to_string(src) + " to " + std::to_string(dst));
            Bytes source = noise();
            Bytes got(kRoom, 0x55);
            Bytes expected = got;
            const unsigned dstPitch = dst == PX_FOURCC_RGB32 ? 4 * kWidth + 12 : kPitch;
            const unsigned result = cycbcr_transcode(got.data(), source.data(), kWidth, kHeight, dstPitch, kPitch,
                                                     PX_MATRIX_BT709, PX_RGB_ARGB, dst, src);

            const Pair* const pair = dst == PX_FOURCC_422P ? nullptr : find(dst, src);
            if (pair == nullptr) {
                EXPECT_EQ(result, kUnhandled);
            } else if (pair->convertRgb != nullptr) {
                EXPECT_EQ(result, pair->convertRgb(expected.data(), source.data(), kWidth, kHeight, dstPitch, kPitch,
                                                   PX_MATRIX_BT709, PX_RGB_ARGB));
            } else {
                EXPECT_EQ(result, pair->convert(expected.data(), source.data(), kWidth, kHeight, dstPitch, kPitch));
            }
            EXPECT_EQ(got, expected);
        }
    }
}

TEST(Transcode, PitchesAreCorrectedFirst) {
    Bytes source = noise();
    for (const unsigned pitch : {0U, 2 * kWidth - 1}) {
        Bytes got(kRoom, 0x55);
        Bytes expected = got;
        EXPECT_EQ(cycbcr_transcode(got.data(), source.data(), kWidth, kHeight, pitch, pitch, PX_MATRIX_BT601,
                                   PX_RGB_BGRA, PX_FOURCC_UYVY, PX_FOURCC_YUY2),
                  2 * kWidth * kHeight);
        cycbcr_yuy2_to_uyvy(expected.data(), source.data(), kWidth, kHeight, 2 * kWidth, 2 * kWidth);
        EXPECT_EQ(got, expected);
    }
}

// v210 pitches that do not hold whole groups become those of the width's whole groups, a partial one not counted.
TEST(Transcode, PitchesOfV210AreCorrectedFirst) {
    constexpr unsigned kCorrected = kWidth / 6 * 16;
    Bytes source = noise();
    for (const unsigned pitch : {kCorrected - 16, kCorrected + 2}) {
        Bytes got(kRoom, 0x55);
        EXPECT_EQ(cycbcr_transcode(got.data(), source.data(), kWidth, kHeight, pitch, pitch, PX_MATRIX_BT601,
                                   PX_RGB_BGRA, PX_FOURCC_012v, PX_FOURCC_v210),
                  kCorrected * kHeight);
        Bytes expected(kRoom, 0x55);
        std::copy_n(source.begin(), kCorrected * kHeight, expected.begin());
        EXPECT_EQ(got, expected);
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
