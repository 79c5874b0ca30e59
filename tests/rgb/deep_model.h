// YCbCr of more than 8 bits to RGB spelled out one sample at a time: the equations on tables of its own.
#pragma once

#include "tests/rgb/model.h"

namespace fikleipa::tests {

// By the bits of source and result. From10To8By8 is the one with the rows for 8 bits.
enum class Deep { From10To8, From10To8By8, From10To8Double, From10To10, From10To16, From12To8, From12To16, From16To8 };

struct Yuv {
    unsigned y, cb, cr;
    unsigned crOfRed;
};

Colour convert(Deep arithmetic, unsigned matrix, const Yuv& pixel);

// A frame of 16-bit samples in one buffer, by the byte offsets of its first ones.
struct DeepModel {
    unsigned width;
    unsigned height;
    unsigned y, cb, cr;
    unsigned lumaPitch;
    unsigned chromaPitch;
    bool planar;
    bool fullChromaRows;
};

// Planes one after the other, or one packed buffer, without padding behind the last sample. The first sample lies at
// the odd address 1.
DeepModel deepModel(unsigned width, unsigned height, bool planar, bool fullChromaRows);

// Noise of as many bytes as the frame needs, its samples of `bits` bits.
Bytes sourceFor(const DeepModel& model, unsigned bits);

// The samples that the pixel in row r and column x is made of.
Yuv yuvAt(const DeepModel& model, const Bytes& src, unsigned r, unsigned x);
Yuv yuvAtV210(const unsigned char* row, unsigned x);

} // namespace fikleipa::tests
