// RGB frames that become YCbCr of more than 8 bits.
#pragma once

#include "rgb/layout.h"
#include "simd/from_rgb_deep.h"

namespace fikleipa {

// What a pixel is and where it has its components.
struct RgbLayout {
    simd::RgbSource source;
    simd::RgbOrder order;
    bool bottomUp;
};

struct RgbRows {
    const unsigned char* start;
    unsigned height;
    unsigned pitch;
    RgbLayout layout;

    const unsigned char* row(unsigned r) const { return start + (layout.bottomUp ? height - 1 - r : r) * pitch; }
};

// 8-bit components: four for a depth of 32, else three.
constexpr RgbLayout rgb8Source(PXYCBCRRgbType type, unsigned bitsPerPixel) {
    using simd::RgbSource;
    return bitsPerPixel == 32 ? RgbLayout{RgbSource::Four8, fourComponents(type), isBottomUp(type)}
                              : RgbLayout{RgbSource::Three8, threeComponents(type), isBottomUp(type)};
}

// 16-bit components, taken whole: four for the depths of 32 and 64, else three.
constexpr RgbLayout rgb16Source(PXYCBCRRgbType type, unsigned bitsPerPixel) {
    using simd::RgbSource;
    return bitsPerPixel == 32 || bitsPerPixel == 64
               ? RgbLayout{RgbSource::Four16, fourComponents(type), isBottomUp(type)}
               : RgbLayout{RgbSource::Three16, threeComponents(type), isBottomUp(type)};
}

// The same, of which the upper ten bits are taken.
constexpr RgbLayout rgbUpper10Source(PXYCBCRRgbType type, unsigned bitsPerPixel) {
    using simd::RgbSource;
    RgbLayout layout = rgb16Source(type, bitsPerPixel);
    layout.source = layout.source == RgbSource::Four16 ? RgbSource::Four16Upper10 : RgbSource::Three16Upper10;
    return layout;
}

// 32-bit words of three 10-bit components: R is the lowest unless the order is 2 or 3.
constexpr RgbLayout rgb10Source(PXYCBCRRgbType type) {
    const simd::RgbOrder order = threeComponents(type);
    return {simd::RgbSource::Three10, {order.b, order.g, order.r}, isBottomUp(type)};
}

} // namespace fikleipa
