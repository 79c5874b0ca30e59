// How long rows are and where they begin. All of it is unsigned 32-bit arithmetic that wraps.
#pragma once

#include "simd/v210.h"

#include <algorithm>
#include <cstddef>

namespace fikleipa {

// The bytes of a v210 row of `width` pixels, rounded up to 48.
constexpr unsigned naturalV210Pitch(unsigned width) {
    const unsigned rest = width % 48;
    return rest == 0 ? width * 8 / 3 : ((width - rest) * 8 + 384) / 3;
}

// The pitch of a v210 frame: what was passed if rows fit.
constexpr unsigned v210Pitch(unsigned width, unsigned pitch) {
    return std::max(pitch, naturalV210Pitch(width));
}

// The pitch of a UYVY frame.
constexpr unsigned uyvyPitch(unsigned width, unsigned pitch) {
    return std::max(2 * width, pitch);
}

// The groups that hold `pixels` pixels, and the pairs.
constexpr std::size_t v210Groups(std::size_t pixels) {
    return (pixels + simd::kV210GroupPixels - 1) / simd::kV210GroupPixels;
}
constexpr std::size_t pixelPairs(std::size_t pixels) {
    return (pixels + 1) / 2;
}

// Rows of 16-bit samples begin at even offsets: those of a destination round the offset down, those of a source the
// pitch.
constexpr unsigned evenOffset(unsigned row, unsigned pitch) {
    return row * pitch / 2 * 2;
}
constexpr unsigned evenPitch(unsigned pitch) {
    return pitch / 2 * 2;
}

} // namespace fikleipa
