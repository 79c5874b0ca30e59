// What the row kernels from RGB have in common: pixels and rows of coefficients.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// Pixels of three or four components, of a byte each or of a little-endian 16-bit word each.
enum class RgbPixel { Bytes3, Bytes4, Words3, Words4 };
inline constexpr std::size_t kRgbPixels = 4;
constexpr unsigned componentBytes(RgbPixel pixel) {
    return pixel < RgbPixel::Words3 ? 1 : 2;
}
constexpr unsigned bytesPerPixel(RgbPixel pixel) {
    return (pixel == RgbPixel::Bytes3 || pixel == RgbPixel::Words3 ? 3 : 4) * componentBytes(pixel);
}

// Which component of a pixel each of them is, counted from the lowest address.
struct RgbOrder {
    unsigned r, g, b;
};

// A row of a coefficient table in fixed point: Y = yo + r R + g G + b B, Cb and Cr the same without an offset.
struct RgbWeights {
    std::int32_t r, g, b;
};
struct FromRgbRow {
    std::int32_t yo;
    RgbWeights y, cb, cr;
};

} // namespace fikleipa::simd
