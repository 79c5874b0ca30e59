// RGB to more than 8 bits, pixel by pixel.
#pragma once

#include "tests/rgb/pixels.h"

namespace fikleipa::tests {

// Named by the bits of components and of samples; Upper takes the upper ten of 16.
enum class FromRgb { From8To10, From16To10, From10To10, From16To16, UpperTo10, UpperTo12, Double };

struct Ycc {
    unsigned y, cb, cr;
};
Ycc fromRgb(FromRgb arithmetic, unsigned matrix, const Colour& rgb);

// Colours of which luma, Cb or Cr lies on or beside a place where the sample takes a step: two or more for each place
// that has any.
std::vector<Colour> coloursAtSteps(FromRgb arithmetic, unsigned matrix);

} // namespace fikleipa::tests
