#include "tests/bytes.h"
#include "tests/core/codes.h"
#include "tests/core/platform.h"
#include "tests/guarded_bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>

namespace {

using namespace fikleipa::tests;

constexpr unsigned kUnhandled = 0xFFFFFFFF;
constexpr unsigned kWidth = 20;
constexpr unsigned kHeight = 6;
constexpr std::size_t kRoom = 8192;

// The named converter of a pair.
struct Pair {
    const Codes &src, &dst;
    PXConvertFrame* convert;
    PXConvertRgbFrame* convertRgb;
};

#define PAIR(src, Src, dst, Dst)                                                                                       \
    Pair {                                                                                                             \
        k##Src##Codes, k##Dst##Codes, static_cast<PXConvertFrame*>(cycbcr_##src##_to_##dst), nullptr                   \
    }
#define RGB_PAIR(src, Src, dst, Dst)                                                                                   \
    Pair {                                                                                                             \
        k##Src##Codes, k##Dst##Codes, nullptr, cycbcr_##src##_to_##dst                                                 \
    }
#define TO_EVERY_YCBCR(pair, src, Src)                                                                                 \
    pair(src, Src, uyvy, Uyvy), pair(src, Src, yuy2, Yuy2), pair(src, Src, yvyu, Yvyu), pair(src, Src, cyuv, Cyuv),    \
        pair(src, Src, i420, I420), pair(src, Src, yv12, Yv12), pair(src, Src, p422, P422), pair(src, Src, 012v, V210)
#define TO_EVERYTHING(src, Src) TO_EVERY_YCBCR(PAIR, src, Src), RGB_PAIR(src, Src, rgb32, Rgb32)
const std::array kPairs{
    TO_EVERYTHING(uyvy, Uyvy), TO_EVERYTHING(yuy2, Yuy2), TO_EVERYTHING(yvyu, Yvyu),
    TO_EVERYTHING(cyuv, Cyuv), TO_EVERYTHING(i420, I420), TO_EVERYTHING(yv12, Yv12),
    TO_EVERYTHING(p422, P422), TO_EVERYTHING(012v, V210), TO_EVERY_YCBCR(RGB_PAIR, RGB32, Rgb32),
};

const Codes* const kKnown[] = {&kYuy2Codes, &kUyvyCodes, &kYvyuCodes, &kCyuvCodes, &kI420Codes,
                               &kYv12Codes, &kP422Codes, &kV210Codes, &kRgb32Codes};

Codes knownCodes() {
    Codes all;
    for (const Codes* const codes : kKnown) all.insert(all.end(), codes->begin(), codes->end());
    return all;
}

Codes unknownCodes() {
    Codes all = kUnknownCodes;
    all.push_back(PX_FOURCC_422P);
    return all;
}

const Pair* find(int dst, int src) {
    if (src == PX_FOURCC_422P) src = PX_FOURCC_P422;
    const auto has = [](const Codes& codes, int code) { return std::count(codes.begin(), codes.end(), code) != 0; };
    const auto* const found = std::find_if(kPairs.begin(), kPairs.end(),
                                           [&](const Pair& pair) { return has(pair.dst, dst) && has(pair.src, src); });
    return found != kPairs.end() ? found : nullptr;
}

// Planes are found by the pitch or by the width; pitches of 0, too small, of no whole groups and too large are
// corrected first, but for "422P".
TEST(Transcode, EveryPairIsItsNamedConverterWithCorrectedPitches) {
    Codes codes = knownCodes();
    for (const int code : unknownCodes()) codes.push_back(code);
    const Bytes source = noise(kRoom);
    for (const int dst : codes) {
        for (const int src : codes) {
            for (const unsigned pitch : {96U, 0U, 2 * kWidth - 1, 200U}) {
                Bytes from = source;
                Bytes to = noise(kRoom, 2);
                Bytes expectedFrom = source;
                Bytes expectedTo = to;
                const unsigned result = cycbcr_transcode(to.data(), from.data(), kWidth, kHeight, pitch, pitch,
                                                         PX_MATRIX_BT709, PX_RGB_ARGB, dst, src);

                unsigned dstPitch = pitch;
                unsigned srcPitch = pitch;
                _fixPitch(static_cast<unsigned>(dst), kWidth, dstPitch);
                _fixPitch(static_cast<unsigned>(src), kWidth, srcPitch);
                const auto convert = [&](auto* converter, auto... colours) {
                    return converter(expectedTo.data(), expectedFrom.data(), kWidth, kHeight, dstPitch, srcPitch,
                                     colours...);
                };
                const Pair* const pair = find(dst, src);
                const unsigned expected = pair == nullptr ? kUnhandled
                                          : pair->convert != nullptr
                                              ? convert(pair->convert)
                                              : convert(pair->convertRgb, PX_MATRIX_BT709, PX_RGB_ARGB);
                ASSERT_EQ(result, expected) << src << " to " << dst << ", pitch " << pitch;
                ASSERT_TRUE(to == expectedTo && from == expectedFrom) << src << " to " << dst << ", pitch " << pitch;
            }
        }
    }
}

TEST(Transcode, OnlyTheGuardedPairSwallowsWhatIsThrown) {
    Bytes source = noise(kRoom);
    Bytes dst(kRoom);
    const auto convert = [&](int to, int from) {
        return cycbcr_transcode(dst.data(), source.data(), kWidth, kHeight, 0, 0, PX_MATRIX_BT601, PX_RGB_BGRA, to,
                                from);
    };
    swapThrows = true;
    EXPECT_EQ(convert(PX_FOURCC_YUY2, PX_FOURCC_UYVY), kUnhandled);
    EXPECT_EQ(convert(PX_FOURCC_YUNV, PX_FOURCC_2vuy), kUnhandled);
    EXPECT_ANY_THROW(convert(PX_FOURCC_UYVY, PX_FOURCC_YUY2));
    swapThrows = false;
}

TEST(Transcode, CanTranscodeKnowsTheCodesAndNotThePairs) {
    for (const int a : knownCodes()) {
        for (const int b : knownCodes()) EXPECT_EQ(cycbcr_can_transcode(a, b), 1);
        for (const int b : unknownCodes()) {
            EXPECT_EQ(cycbcr_can_transcode(a, b), 0);
            EXPECT_EQ(cycbcr_can_transcode(b, a), 0);
        }
    }
}

TEST(Transcode, FramesWithoutAWidthTakeNoTime) {
    const GuardedBytes nothing(0);
    const auto begin = std::chrono::steady_clock::now();
    for (const Pair& pair : kPairs) {
        cycbcr_transcode(nothing.begin(), nothing.begin(), 0, 0xFFFFFFFF, 0, 0, PX_MATRIX_BT601, PX_RGB_BGRA,
                         pair.dst.front(), pair.src.front());
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(1));
}

} // namespace
