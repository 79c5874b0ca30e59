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

struct RgbBytes {
    unsigned char red;
    unsigned char green;
    unsigned char blue;
};

// How pixels of an RGB layout of that many bits lie in memory for an order of components; alpha is opaque when written
// and ignored when read.
class RgbPixels {
public:
    RgbPixels(std::uint32_t bits, PXYCBCRRgbType type);

    bool bottomUp() const { return bottomUp_; }

    void write(unsigned char* row, std::size_t x, const Rgb& colour) const;
    RgbBytes read(const unsigned char* row, std::size_t x) const;

private:
    // In bytes for 24 and 32 bits, in bits from the lowest on for 15 and 16.
    struct Places {
        unsigned int red, green, blue, alpha;
    };

    bool isWord() const { return bits_ < 24; }

    std::uint32_t bits_;
    bool bottomUp_;
    Places places_{};
};

} // namespace fikleipa::tool
