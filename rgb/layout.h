// What a PXYCBCRRgbType and a depth stand for.
#pragma once

#include "fikleipa.h"
#include "simd/from_rgb.h"
#include "simd/to_rgb8.h"

#include <cstdint>
#include <optional>

namespace fikleipa {

struct RgbPlanes {
    std::uint8_t* r;
    std::uint8_t* g;
    std::uint8_t* b;
};

constexpr bool isBottomUp(PXYCBCRRgbType type) {
    return (static_cast<unsigned>(type) & PX_RGB_BOTTOM_UP) != 0;
}

// The component order of an RGB destination: 0 to 3, anything higher counts as 2.
constexpr unsigned destinationOrder(PXYCBCRRgbType type) {
    const unsigned order = static_cast<unsigned>(type) & ~static_cast<unsigned>(PX_RGB_BOTTOM_UP);
    return order <= 3 ? order : 2;
}

// The packed layout that converters to RGB write; none for a depth that they do not have.
constexpr std::optional<simd::Rgb8> rgb8Layout(PXYCBCRRgbType type, unsigned bitsPerPixel) {
    using simd::Rgb8;
    const unsigned order = destinationOrder(type);
    const bool blueFirst = order < 2;
    switch (bitsPerPixel) {
    case 15:
        return blueFirst ? Rgb8::Bgr555 : Rgb8::Rgb555;
    case 16:
        return blueFirst ? Rgb8::Bgr565 : Rgb8::Rgb565;
    case 24:
        return blueFirst ? Rgb8::Bgr : Rgb8::Rgb;
    case 32:
        return static_cast<Rgb8>(order);
    default:
        return std::nullopt;
    }
}

// The same for 16-bit components, where the depths of 8-bit pixels mean twice their size.
constexpr std::optional<simd::Rgb16> rgb16Layout(PXYCBCRRgbType type, unsigned bitsPerPixel) {
    using simd::Rgb16;
    const unsigned order = destinationOrder(type);
    switch (bitsPerPixel) {
    case 24:
    case 48:
        return order < 2 ? Rgb16::Bgr : Rgb16::Rgb;
    case 32:
    case 64:
        return static_cast<Rgb16>(order);
    default:
        return std::nullopt;
    }
}

// Where an RGB source of three or of four components has them. Anything above 3 counts as 0 with four; with three the
// lowest bit does not count, and anything above 3 is blue first.
constexpr simd::RgbOrder threeComponents(PXYCBCRRgbType type) {
    constexpr unsigned kIgnored = PX_RGB_BOTTOM_UP | 1U;
    if ((static_cast<unsigned>(type) & ~kIgnored) == PX_RGB_RGBA) return {0, 1, 2};
    return {2, 1, 0};
}
constexpr simd::RgbOrder fourComponents(PXYCBCRRgbType type) {
    switch (static_cast<unsigned>(type) & ~static_cast<unsigned>(PX_RGB_BOTTOM_UP)) {
    case PX_RGB_ABGR:
        return {3, 2, 1};
    case PX_RGB_RGBA:
        return {0, 1, 2};
    case PX_RGB_ARGB:
        return {1, 2, 3};
    default:
        return {2, 1, 0};
    }
}

// Sizes that the general converters return, which count components where those are wider than a byte.
constexpr unsigned nominalSize(unsigned width, unsigned height, unsigned bytesPerPixel) {
    return width * height * bytesPerPixel;
}

constexpr unsigned nominalBytes8(unsigned bitsPerPixel) {
    switch (bitsPerPixel) {
    case 15:
    case 16:
        return 2;
    case 24:
        return 3;
    default:
        return 4;
    }
}

constexpr unsigned nominalBytes16(unsigned bitsPerPixel) {
    return bitsPerPixel == 48 ? 3 : nominalBytes8(bitsPerPixel);
}

} // namespace fikleipa
