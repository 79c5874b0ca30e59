// The converters that split wide frames into bands, and frames for them.
#pragma once

#include "fikleipa.h"
#include "pxutil/pxutil.h"
#include "tests/v210/model.h"

#include <algorithm>
#include <cstdint>

namespace fikleipa::tests {

struct SplitConverter {
    PXJoinPlanes* convert;
    PXJoinPlanes* band;
    pxOSThreadEntry worker;
    const char* event;
    const char* thread;
    unsigned widest; // that is not split
    bool toUyvy;
    bool fullChroma;
    bool leavesRest;
    bool numbered;
};

inline const SplitConverter kSplitConverters[] = {
    {cycbcr_yuv422p10_to_012v, cycbcr_yuv422p10_to_012v_internal, cycbcr_yuv422p10_to_012v_worker,
     "cycbcr_yuv422p10_to_012v", "ycbcr422p10", 2048, false, false, false, false},
    {cycbcr_yuv422p12_to_012v, cycbcr_yuv422p12_to_012v_internal, cycbcr_yuv422p12_to_012v_worker,
     "cycbcr_yuv422p12_to_012v", "ycbcr422p12", 1920, false, false, true, false},
    {cycbcr_yuv444p12_to_012v, cycbcr_yuv444p12_to_012v_internal, cycbcr_yuv444p12_to_012v_worker,
     "cycbcr_yuv444p12_to_012v", "yuv444p12", 2048, false, true, false, true},
    {cycbcr_yuv422p10_to_uyvy, cycbcr_yuv422p10_to_uyvy_internal, cycbcr_yuv422p10_to_uyvy_worker,
     "cycbcr_yuv422p10_to_012v", "ycbcr422p10", 2048, true, false, false, false},
};

inline constexpr unsigned kTallest = 20;
inline constexpr std::size_t kMargin = 64; // what goes beyond a frame

// A source as large as any here, and a frame's geometry for a converter.
struct Picture {
    Picture(const SplitConverter& converter, unsigned w, unsigned h)
        : of(converter), width(w), height(h), dstPitch(of.toUyvy ? 2 * w : naturalPitch(w)),
          srcPitch(roundUp(2 * w, 4)) {}

    static unsigned char* plane(unsigned i) {
        static Bytes planes[3] = {noise(200000, 1), noise(200000, 2), noise(200000, 3)};
        return planes[i].data();
    }

    unsigned run(PXJoinPlanes* convert, Bytes& dst, unsigned rows) const {
        return convert(dst.data(), plane(0), plane(1), plane(2), width, rows, dstPitch, srcPitch);
    }

    Bytes empty() const { return Bytes(std::size_t{dstPitch} * height + kMargin, 0x55); }

    // What one thread makes of it. Of 4:2:2 in 12 bits, only as many rows as eight bands share.
    Bytes expected() const {
        Bytes dst = empty();
        const bool split = width > of.widest;
        const unsigned rows = of.leavesRest && split ? height / 8 * 8 : height;
        run(of.band, dst, rows);
        if (rows != height) std::fill(dst.begin() + std::ptrdiff_t{dstPitch} * rows, dst.end(), 0x55);
        return dst;
    }

    [[nodiscard]] bool isRightInBands() const {
        Bytes dst = empty();
        run(of.convert, dst, height);
        return dst == expected();
    }

    const SplitConverter& of;
    unsigned width;
    unsigned height;
    unsigned dstPitch;
    unsigned srcPitch;
};

} // namespace fikleipa::tests
