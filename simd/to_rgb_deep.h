// Row kernels from 16-bit samples of YCbCr to RGB.
//
// Samples and words are given by byte pointers, since nothing is known of their alignment.
#pragma once

#include "simd/level.h"
#include "simd/to_rgb8.h"
#include "simd/v210.h"

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
template <class Row>
using DeepToRgbKernel = void (*)(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb,
                                 const std::uint8_t* cr, std::size_t pixels, const Row& row);
using DeepToPlanesKernel = void (*)(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y,
                                    const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pixels,
                                    const DeepRow& row);

// The kernels for one way to take chroma. To bytes goes the lower byte of a result; where the limit is not 255, it is
// below 2^15, and the divisor is a multiple of four.
struct DeepKernels {
    DeepToPlanesKernel toBytePlanes;
    DeepToPlanesKernel toWordPlanes;
    std::array<DeepToRgbKernel<DeepRow>, kRgb8s> toRgb8;
    std::array<DeepToRgbKernel<DeepRow>, kRgb16s> toRgb16;
    DeepToRgbKernel<DeepRow> toRgb10; // one 32-bit word a pixel: packRgb10()
    // Past the cache, where `dst` begins a cache line. finishStreaming() follows.
    std::array<DeepToRgbKernel<DeepRow>, kRgb8s> toRgb8Past;
    std::array<DeepToRgbKernel<DeepRow>, kRgb16s> toRgb16Past;
    DeepToRgbKernel<DeepRow> toRgb10Past;
};

// The fields overlap. Deliberate: B has its upper bits where the lower ones of R and G are.
constexpr std::uint32_t packRgb10(std::uint32_t r, std::uint32_t g, std::uint32_t b) {
    return ((r | r << 14 | b << 28) & 0x3FFF0003) | b >> 2 | (g & 3) << 2 | (g << 6 & 0x3FFF00);
}

// Convert a row of v210 from a group's start on, with odd pixels as AverageButRed. The last pixel averages with what is
// behind it in its group, or in the four bytes behind that. Pieces, of which all vectors begin alike, are the fastest.
inline constexpr std::size_t kV210PiecePixels = 96;
inline constexpr std::size_t kV210PieceBytes = kV210PiecePixels / kV210GroupPixels * kV210GroupBytes;
template <class Row>
using V210ToRgbKernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const Row& row);
using V210ToPlanesKernel = void (*)(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* src,
                                    std::size_t pixels, const DeepRow& row);

// Null at levels where rows of samples are no slower.
struct V210ToRgbKernels {
    V210ToPlanesKernel toWordPlanes;
    std::array<V210ToRgbKernel<DeepRow>, kRgb8s> toRgb8;
    std::array<V210ToRgbKernel<DeepRow>, kRgb16s> toRgb16;
    // Past the cache, as above.
    std::array<V210ToRgbKernel<DeepRow>, kRgb8s> toRgb8Past;
    std::array<V210ToRgbKernel<DeepRow>, kRgb16s> toRgb16Past;
};

struct ToRgbDeepKernels {
    std::array<DeepKernels, kOddPixels> integer;
    // 10-bit samples to 0..255 in double precision, odd pixels as AverageButRed. The luma offset is a whole number.
    std::array<DeepToRgbKernel<ToRgbFloatRow>, kRgb8s> toRgb8Float;
    V210ToRgbKernels v210;

    const DeepKernels& of(OddPixel odd) const { return integer[static_cast<unsigned>(odd)]; }
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
ToRgbDeepKernels toRgbDeepKernels(Level level);

} // namespace fikleipa::simd
