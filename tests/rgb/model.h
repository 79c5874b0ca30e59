// 8-bit YCbCr to RGB spelled out one sample at a time: the equations on a table of its own, frames walked by indices.
#pragma once

#include "fikleipa.h"

#include <cstdint>
#include <vector>

namespace fikleipa::tests {

using Bytes = std::vector<unsigned char>;

enum class Arithmetic { Integer, Double, Integer16 };

struct Colour {
    unsigned r, g, b;
};

// One pixel by the equations.
Colour convert(Arithmetic arithmetic, unsigned matrix, int y, int cb, int cr);

// Pixels of the converters to RGB, with components of 8 or 16 bits. `rgbType` gives their order.
unsigned pixelBytes(unsigned bitsPerPixel, bool wide);
void storePixel(unsigned char* pixel, const Colour& colour, unsigned rgbType, unsigned bitsPerPixel, bool wide);
unsigned nominalSize(unsigned width, unsigned height, unsigned bitsPerPixel, bool wide);

// A source in one buffer, by the offsets of its first samples.
struct Model {
    unsigned width;
    unsigned height;
    unsigned y, cb, cr;
    bool planar;
    bool fullChromaRows;
    bool biPlanar;
    unsigned matrix;
    unsigned rgbType;
};

// The source bytes of a model's frame, noise of as many bytes as the last sample needs.
Bytes sourceFor(const Model& model);

// The pixel that row r and column x of the source give. x may be the column after the last of an odd width.
Colour pixelAt(const Model& model, Arithmetic arithmetic, const Bytes& src, unsigned r, unsigned x);

// Converts into `dst` as the general converters do, whose result it returns.
unsigned toRgb(const Model& model, Arithmetic arithmetic, const Bytes& src, Bytes& dst, unsigned dstPitch,
               unsigned bitsPerPixel);

} // namespace fikleipa::tests
