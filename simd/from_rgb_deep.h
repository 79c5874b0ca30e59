// Row kernels from RGB to 16-bit samples of YCbCr of 10, 12 and 16 bits.
//
// Samples are given by byte pointers, since nothing is known of their alignment.
#pragma once

#include "simd/from_rgb.h"
#include "simd/level.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// What a pixel is: 8-bit components, 16-bit ones, the upper ten bits of those, always four or three to a pixel; or
// three of 10 bits in a 32-bit word from its bit 2 on, which counts them from the lowest.
enum class RgbSource { Four16, Three16, Four16Upper10, Three16Upper10, Three10, Four8, Three8 };
inline constexpr std::size_t kRgbSources = 7;
inline constexpr std::size_t kHalvedRgbSources = 5; // the first of them, which also become samples with half the chroma
constexpr unsigned bytesPerPixel(RgbSource source) {
    constexpr std::array<unsigned, kRgbSources> kBytes{8, 6, 8, 6, 4, 4, 3};
    return kBytes[static_cast<unsigned>(source)];
}

// What is added to the magnitude of a sum before it is divided and truncated: of a sum not below zero, and of one
// below.
struct Rounding {
    std::int32_t up, down;
};

// Luma is `yo` plus the rounded quotient, chroma half of max + 1 plus it; both are limited to 0..max. Sums and what is
// added to them stay below 2^31, those of luma are not below zero.
struct FromRgbDeepRow {
    FromRgbRow k;
    std::uint32_t divisor;
    std::uint32_t max;
    Rounding luma, cb, cr;
};

// Convert `pixels` pixels, to a chroma sample for each or for each pair. That of a pair is the average (a + b) >> 1 of
// its pixels', an odd last pixel being a pair of its own.
using FromRgbDeepKernel = void (*)(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src,
                                   std::size_t pixels, const RgbOrder& order, const FromRgbDeepRow& row);

// In double precision, of 16-bit components divided by 65535: luma `yo` plus the sum, limited to 0..1, times 1023, plus
// 0.5, truncated; chroma the same with limits of -0.5..0.5 and 512 for `yo`.
struct RgbFloatWeights {
    double r, g, b;
};
struct FromRgbFloatRow {
    std::int32_t yo;
    RgbFloatWeights y, cb, cr;
};
using FromRgbFloatKernel = void (*)(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src,
                                    std::size_t pixels, const RgbOrder& order, const FromRgbFloatRow& row);

// Chroma for pairs from that for pixels, of 10 bits: (c[2k - 1] + 2 c[2k] + 2 c[2k + 1] + c[2k + 2]) / 6 as sample 2k
// of dst, and 0 as sample 2k + 1. A sample ahead of the `pairs` pairs is read, and one behind.
using FilterChromaKernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t pairs);

struct FromRgbDeepKernels {
    // Results are of 10 bits.
    std::array<FromRgbDeepKernel, kRgbSources> full;
    // Results are of 16 bits for pixels of 16, of 12 bits at most for others; those of Three10 are shifted left by 6.
    std::array<FromRgbDeepKernel, kHalvedRgbSources> halved;
    std::array<FromRgbFloatKernel, 2> fullFloat; // Four16, Three16
    FilterChromaKernel filterChroma;
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
FromRgbDeepKernels fromRgbDeepKernels(Level level);

} // namespace fikleipa::simd
