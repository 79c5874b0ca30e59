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

// What a converter writes: packed pixels of a depth or planes, with components of 8 or 16 bits.
enum class To { Pixels, Words10, Planes }; // Words10 for pixels that are one word, whatever the depth
struct Format {
    unsigned bits; // of a pixel or, in planes, of a sample
    bool wide = false;
    To to = To::Pixels;
};
Converter toRgbConverter(const std::string& name, ToRgb arithmetic, const Source& source, const Format& format,
                         Conversion convert);

} // namespace fikleipa::tests
