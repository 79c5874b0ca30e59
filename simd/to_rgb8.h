// Row kernels from 8-bit YCbCr to RGB.
#pragma once

#include "simd/level.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// Where a row's samples lie from the pointers to its first Y, Cb and Cr on. In the packed layouts luma comes every 2
// bytes and chroma every 4; the named ones say besides where a group's bytes lie from its start, and hold for luma and
// chroma apart, which may belong to different groups.
enum class Source8 { Yuy2, Yvyu, Uyvy, Packed, Planar, BiPlanar };
inline constexpr std::size_t kSources8 = 6;

struct Group {
    unsigned y, cb, cr;
};
inline constexpr std::array kGroups{Group{0, 1, 3}, Group{0, 3, 1}, Group{1, 0, 2}}; // Yuy2, Yvyu, Uyvy

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
using PerSourceAndFormat = std::array<std::array<Kernel, kFormats>, kSources8>;

struct ToRgb8Kernels {
    // Scale 10000, truncated, limited to 0..255.
    PerSourceAndFormat<ToRgbKernel<ToRgbRow>, kRgb8s> toRgb;
    std::array<ToPlanesKernel<ToRgbRow>, kSources8> toPlanes;
    // Double precision, truncated, limited to 0..255.
    PerSourceAndFormat<ToRgbKernel<ToRgbFloatRow>, kRgb8s> toRgbFloat;
    std::array<ToPlanesKernel<ToRgbFloatRow>, kSources8> toPlanesFloat;
    // Scale 10000 with R and B one above the quotient, limited to 0..65535.
    PerSourceAndFormat<ToRgbKernel<ToRgbRow>, kRgb16s> toRgb16;
    std::array<ToPlanesKernel<ToRgbRow>, kSources8> toPlanes16;
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
ToRgb8Kernels toRgb8Kernels(Level level);

} // namespace fikleipa::simd
