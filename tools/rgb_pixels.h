// Single pixels of the RGB layouts, for drawing and viewing.
#pragma once

#include "fikleipa.h"
#include "layouts.h"

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

// How pixels of an RGB layout lie in memory for an order of components; alpha is opaque when written and ignored when
// read.
class RgbPixels {
public:
    RgbPixels(const Layout& layout, PXYCBCRRgbType type);

    bool bottomUp() const { return bottomUp_; }

    // Of what read() returns: 8 or 16.
    unsigned int sampleBits() const { return bits_ == 30 || bits_ > 32 ? 16 : 8; }

    void write(unsigned char* row, std::size_t x, const Rgb& colour) const;
    RgbSamples read(const unsigned char* row, std::size_t x) const;

private:
    // In components; in bits from the lowest on for pixels of one word.
    struct Places {
        unsigned int red, green, blue, alpha;
    };

    // Whether a pixel is one word of three fields.
    bool isWord() const { return bits_ < 24 || bits_ == 30; }
    std::size_t wordBytes() const { return bits_ < 24 ? 2 : 4; }
    unsigned int highestGreen() const { return bits_ == 16 ? 63 : highest(); }
    unsigned int highest() const { return isWord() ? (1U << bits_ / 3) - 1 : (1U << sampleBits()) - 1; }

    std::uint32_t bits_;
    bool hasAlpha_;
    bool bottomUp_;
    Places places_{};
};

} // namespace fikleipa::tool
