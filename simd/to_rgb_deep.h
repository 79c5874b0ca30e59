// Row kernels from 16-bit samples of YCbCr to RGB.
//
// Samples and words are given by byte pointers, since nothing is known of their alignment.
#pragma once

#include "simd/level.h"
#include "simd/to_rgb8.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// The chroma of the second pixel of a pair: the pair's own sample; the average (a + b) >> 1 of it and of the next
// pair's; or the average, but the pair's own for R, which is for 10-bit samples only.
enum class OddPixel { Own, Average, AverageButRed };
inline constexpr std::size_t kOddPixels = 3;

// Sums are formed as ToRgbRow says, with chroma less `centre`, divided, truncated and limited to 0..max. Every row of
// coefficients fits 16 bits with a sign.
struct DeepRow {
    ToRgbRow k;
    std::int32_t centre;
    std::uint32_t divisor;
    std::uint32_t max;
};

// Convert `pixels` pixels. Chroma has a sample for each pair, begun ones included; where odd pixels average, it has
// pixels / 2 + 1.
using DeepToRgbKernel = void (*)(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb,
                                 const std::uint8_t* cr, std::size_t pixels, const DeepRow& row);
template <class Row>
using ToWordsKernel = void (*)(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y,
                               const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pixels, const Row& row);

// The kernels for one way to take chroma.
struct DeepKernels {
    ToWordsKernel<DeepRow> toWords;
    std::array<DeepToRgbKernel, kRgb8s> toRgb8; // of rows with a max of 255
    std::array<DeepToRgbKernel, kRgb16s> toRgb16;
};

struct ToRgbDeepKernels {
    std::array<DeepKernels, kOddPixels> integer;
    // 10-bit samples to 0..255 in double precision, odd pixels as AverageButRed.
    ToWordsKernel<ToRgbFloatRow> toWordsFloat;

    const DeepKernels& of(OddPixel odd) const { return integer[static_cast<unsigned>(odd)]; }
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
ToRgbDeepKernels toRgbDeepKernels(Level level);

} // namespace fikleipa::simd
