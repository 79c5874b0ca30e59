// Row kernels from 8-bit YCbCr to RGB.
#pragma once

#include "simd/level.h"
#include "simd/samples.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// Packed RGB of 8-bit precision. In the 16- and 15-bit words the first-named component has the highest bits.
enum class Rgb8 { Bgra, Abgr, Rgba, Argb, Bgr, Rgb, Bgr565, Rgb565, Bgr555, Rgb555 };
inline constexpr std::size_t kRgb8s = 10;
constexpr unsigned bytesPerPixel(Rgb8 format) {
    return format < Rgb8::Bgr ? 4 : format < Rgb8::Bgr565 ? 3 : 2;
}

// Packed RGB of 16-bit components.
enum class Rgb16 { Bgra, Abgr, Rgba, Argb, Bgr, Rgb };
inline constexpr std::size_t kRgb16s = 6;
constexpr unsigned bytesPerPixel(Rgb16 format) {
    return format < Rgb16::Bgr ? 8 : 6;
}

// A row of a coefficient table in fixed point: R = (Y - yo) ys + (Cr - 128) rv, G = ... - gv - gu, B = ... + bu.
struct ToRgbRow {
    std::int32_t yo, ys, rv, gv, gu, bu;
};

// The same in floating point, for the converters that are defined by it.
struct ToRgbFloatRow {
    double yo, ys, rv, gv, gu, bu;
};

// Convert `pairs` pairs of pixels.
template <class Row>
using ToRgbKernel = void (*)(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                             std::size_t pairs, const Row& row);
template <class Row>
using ToPlanesKernel = void (*)(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y,
                                const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pairs, const Row& row);

template <class Kernel, std::size_t kFormats>
using PerSourceAndFormat = std::array<std::array<Kernel, kFormats>, kSamples8>;

struct ToRgb8Kernels {
    // Scale 10000, truncated, limited to 0..255.
    PerSourceAndFormat<ToRgbKernel<ToRgbRow>, kRgb8s> toRgb;
    // The same past the cache, where `dst` begins a cache line. finishStreaming() follows.
    PerSourceAndFormat<ToRgbKernel<ToRgbRow>, kRgb8s> toRgbPast;
    std::array<ToPlanesKernel<ToRgbRow>, kSamples8> toPlanes;
    // Double precision, truncated, limited to 0..255, in rows of words.
    std::array<ToPlanesKernel<ToRgbFloatRow>, kSamples8> toWordsFloat;
    // Scale 10000 with R and B one above the quotient, limited to 0..65535.
    PerSourceAndFormat<ToRgbKernel<ToRgbRow>, kRgb16s> toRgb16;
    std::array<ToPlanesKernel<ToRgbRow>, kSamples8> toPlanes16;
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
ToRgb8Kernels toRgb8Kernels(Level level);

} // namespace fikleipa::simd
