// RGB pixels, and those of more than 8 bits of YCbCr that they become.
#pragma once

#include "tests/rgb/models.h"

namespace fikleipa::tests {

// Named by their components.
enum class RgbIn { Four16, Three16, Packed10, Four8, Three8 };
constexpr unsigned bytesOfPixel(RgbIn layout) {
    constexpr unsigned kBytes[] = {8, 6, 4, 4, 3};
    return kBytes[static_cast<unsigned>(layout)];
}

// Pixels are read whole.
inline Colour loadPixel(At pixel, RgbIn layout, unsigned type) {
    const unsigned order = type & ~kBottomUp;
    const bool redFirst = order == 2 || order == 3;
    static_cast<void>(pixel[bytesOfPixel(layout) - 1]);
    if (layout == RgbIn::Packed10) {
        const unsigned word = loadWord(pixel);
        const unsigned low = word >> 2 & 0x3FF;
        return {redFirst ? word >> 22 : low, word >> 12 & 0x3FF, redFirst ? low : word >> 22};
    }
    const bool of8 = layout == RgbIn::Four8 || layout == RgbIn::Three8;
    const bool four = layout == RgbIn::Four8 || layout == RgbIn::Four16;
    const unsigned first = four && (order == 1 || order == 3) ? 1 : 0;
    const auto at = [&](unsigned i) { return of8 ? unsigned{pixel[first + i]} : load16(pixel + 2 * (first + i)); };
    return {at(redFirst ? 0 : 2), at(1), at(redFirst ? 2 : 0)};
}

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
