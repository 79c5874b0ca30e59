// Row kernels that store alpha samples into 32-bit pixels.
#pragma once

#include "simd/level.h"

#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// Studio levels expanded to a byte: 0 up to `low`, 255 from `high` on, (a - low) x 255 / range between, truncated,
// which may fall short of 255.
struct AlphaLevels {
    int low, high, range;

    constexpr int expanded(int a) const { return a <= low ? 0 : a >= high ? 255 : (a - low) * 255 / range; }
};
inline constexpr AlphaLevels kAlphaLevels8{16, 235, 219};
// 876 where the range ends at 940. Deliberate.
inline constexpr AlphaLevels kAlphaLevels10{64, 876, 876};

// To the fourth byte of every pixel of `dst`; its other bytes stay as they are, though they may be written.
using MergeAlphaKernel = void (*)(std::uint8_t* dst, const std::uint8_t* alpha, std::size_t pixels);

// From bytes, and from words of 10 bits, of which the upper eight bits are taken or the level is expanded.
struct AlphaKernels {
    MergeAlphaKernel bytes;
    MergeAlphaKernel expandedBytes;
    MergeAlphaKernel words;
    MergeAlphaKernel expandedWords;
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
AlphaKernels alphaKernels(Level level);

} // namespace fikleipa::simd
