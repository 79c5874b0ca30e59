// The converters to and from RGB, and what they are to do, written out one sample at a time on tables of their own.
#pragma once

#include "tests/converters.h"
#include "tests/v210/models.h"

namespace fikleipa::tests {

std::vector<Converter> toRgb8Converters(); // from 8-bit YCbCr
std::vector<Converter> deepToRgbConverters();
std::vector<Converter> fromRgb8Converters(); // to 8-bit YCbCr
std::vector<Converter> fromRgbDeepConverters();
std::vector<Converter> alphaConverters();

template <unsigned kBytes>
unsigned bytesOf(unsigned width) {
    return kBytes * width;
}
// By the bytes of a pixel.
inline constexpr RowBytes kRowBytes[] = {bytesOf<0>, bytesOf<1>, bytesOf<2>, bytesOf<3>, bytesOf<4>,
                                         bytesOf<5>, bytesOf<6>, bytesOf<7>, bytesOf<8>};

constexpr unsigned kBottomUp = 0x8000;

// The row of an RGB frame that row r of the YCbCr one belongs to.
inline unsigned rgbRow(const Geometry& g, unsigned r) {
    return (g.type & kBottomUp) != 0 ? g.height - 1 - r : r;
}

struct Colour {
    unsigned r, g, b;
};

} // namespace fikleipa::tests
