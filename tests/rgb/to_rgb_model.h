// YCbCr to RGB spelled out one pixel at a time.
#pragma once

#include "tests/rgb/models.h"

namespace fikleipa::tests {

// By the bits of source and result. From10To8By8 is the one with the rows for 8 bits.
enum class ToRgb {
    From8To8,
    From8To8Double,
    From8To16,
    From10To8,
    From10To8By8,
    From10To8Double,
    From10To10,
    From10To16,
    From12To8,
    From12To16
};

struct Samples {
    unsigned y, cb, cr;
    unsigned crOfRed;
};

// The samples that pixel x of row r is made of, and how many pixels of a row are converted.
struct Source {
    std::function<Samples(const Places& src, const Geometry& g, unsigned r, unsigned x)> at;
    unsigned (*pixels)(unsigned width);
    RowBytes rowBytes;
    unsigned sampleBits = 16;
};

// A converter to pixels of a depth, with components of 8 or 16 bits, and one to planes.
constexpr unsigned kOneWord = 1 << 8; // with a depth that counts for the result alone, of pixels that are one word
Converter toPixels(std::string name, ToRgb arithmetic, const Source& source, unsigned bitsPerPixel, bool wide,
                   Conversion convert);
Converter toPlanes(std::string name, ToRgb arithmetic, const Source& source, unsigned sampleBytes, Conversion convert);

} // namespace fikleipa::tests
