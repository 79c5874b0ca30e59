// Single pixels of the RGB layouts, for drawing and viewing.
#pragma once

#include "fikleipa.h"

#include <cstddef>
#include <cstdint>

namespace fikleipa::tool {

// Components from 0 to 1.
struct Rgb {
    float red = 0;
    float green = 0;
    float blue = 0;
};

struct RgbSamples {
    std::uint16_t red;
    std::uint16_t green;
    std::uint16_t blue;
};

// How pixels of an RGB layout of that many bits lie in memory for an order of components; alpha is opaque when written
// and ignored when read.
class RgbPixels {
public:
    RgbPixels(std::uint32_t bits, PXYCBCRRgbType type);

    bool bottomUp() const { return bottomUp_; }

    // Of what read() returns: 8 or 16.
    unsigned int sampleBits() const { return bits_ > 32 ? 16 : 8; }

    void write(unsigned char* row, std::size_t x, const Rgb& colour) const;
    RgbSamples read(const unsigned char* row, std::size_t x) const;

private:
    // In components for 24 bits and more, in bits from the lowest on for 15 and 16.
    struct Places {
        unsigned int red, green, blue, alpha;
    };

    bool isWord() const { return bits_ < 24; }
    bool hasAlpha() const { return bits_ == 32 || bits_ == 64; }

    std::uint32_t bits_;
    bool bottomUp_;
    Places places_{};
};

} // namespace fikleipa::tool
