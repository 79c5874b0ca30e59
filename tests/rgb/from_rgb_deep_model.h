// What the converters from RGB to more than 8 bits are to give, pixel by pixel and to the letter, in 64-bit integers.
#pragma once

#include <cstdint>
#include <vector>

namespace fikleipa::tests {

// Named by the bits of components and of samples; Upper takes the upper ten of 16.
enum class FromRgb { From8To10, From16To10, From10To10, From16To16, UpperTo10, UpperTo12, Double };
unsigned componentBits(FromRgb arithmetic);

struct RgbColour {
    unsigned r, g, b;
};
struct YccSamples {
    unsigned y, cb, cr;
};
YccSamples fromRgb(FromRgb arithmetic, unsigned matrix, RgbColour rgb);

// Colours of which luma, Cb or Cr lies on or beside a place where the sample takes a step: two or more for each place
// that has any.
std::vector<RgbColour> coloursAtSteps(FromRgb arithmetic, unsigned matrix);

// A row of v210 of such samples, as many bytes as are written, with chroma filtered or of even pixels.
std::vector<std::uint8_t> v210Row(const std::vector<YccSamples>& row, bool filtered);

// Pixels in memory. What has no component is noise.
enum class RgbIn { Four16, Three16, Packed10, Four8, Three8 };
unsigned bytesOf(RgbIn layout);
void storeRgb(std::uint8_t* pixel, RgbIn layout, unsigned rgbType, RgbColour rgb);

} // namespace fikleipa::tests
