// Row kernels from RGB to 8-bit YCbCr.
//
// Coefficients have the scale 1 000 000; those of luma are not below zero, and none adds up to 2 with its like.
//
// Luma is the sum divided and rounded to the nearest, halves downwards, plus the offset, at most 255; but that of the
// second pixel of a pair in planes is truncated. Cb and Cr are those of the pair's first pixel alone: the sum divided
// and rounded as ChromaRounding says, limited to -128..127, plus 128. All of this is deliberate.
#pragma once

#include "simd/from_rgb.h"
#include "simd/level.h"
#include "simd/samples.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

inline constexpr int kFromRgb8Scale = 1'000'000;

// Remainders above these take a quotient one step away from zero, by the sign of the sum. Those of Cb are uneven:
// deliberate.
struct ChromaRounding {
    int positive, negative;
};
inline constexpr int kLumaRounding = 500'000;
inline constexpr ChromaRounding kCbRounding{450'000, 250'000};
inline constexpr ChromaRounding kCrRounding{500'000, 500'000};

// `pairs` pairs of pixels. What lies `ahead` of a pair, before or behind it, will be wanted soon; nothing there is
// read. Of 16-bit components the upper byte counts. Pixels of three of them may name a fourth component, which is the
// next pixel's first; the one behind the row is then read.
struct RgbPairs {
    const std::uint8_t* src;
    std::size_t pairs;
    std::ptrdiff_t ahead;
    RgbOrder order;
};

// To two luma samples and one of each chroma for a pair, or to luma alone. Where rows lie on one another the result is
// that of a walk from the first pair to the last that reads a pair and then writes Y0, Y1, Cb, Cr.
using FromRgb8Kernel = void (*)(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const RgbPairs& from,
                                const FromRgbRow& row);
using LumaFromRgb8Kernel = void (*)(std::uint8_t* y, const RgbPairs& from, const FromRgbRow& row);

// The fourth byte of every 32-bit pixel: as it is, or scaled from 0..255 to 16..235.
using AlphaKernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, std::ptrdiff_t ahead);

struct FromRgb8Kernels {
    // [RgbPixel][Samples8]; BiPlanar is not there.
    std::array<std::array<FromRgb8Kernel, kSamples8 - 1>, kRgbPixels> convert;
    // To a plane of luma.
    std::array<LumaFromRgb8Kernel, kRgbPixels> luma;
    AlphaKernel alpha;
    AlphaKernel scaledAlpha;
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
FromRgb8Kernels fromRgb8Kernels(Level level);

} // namespace fikleipa::simd
