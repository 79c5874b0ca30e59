#include "rgb_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace fikleipa::tool {
namespace {

std::uint16_t quantised(float share, unsigned int highest) {
    return static_cast<std::uint16_t>(std::lround(std::clamp(share, 0.0F, 1.0F) * static_cast<float>(highest)));
}

// Components are bytes or 16-bit words.
void store(unsigned char* pixel, unsigned int place, std::size_t bytes, std::uint16_t value) {
    std::memcpy(pixel + place * bytes, &value, bytes);
}

std::uint16_t load(const unsigned char* pixel, unsigned int place, std::size_t bytes) {
    std::uint16_t value = 0;
    std::memcpy(&value, pixel + place * bytes, bytes);
    return value;
}

} // namespace

RgbPixels::RgbPixels(const Layout& layout, PXYCBCRRgbType type)
    : bits_(layout.rgbBits), hasAlpha_(layout.hasAlpha()), bottomUp_((type & PX_RGB_BOTTOM_UP) != 0) {
    const unsigned int order = type & ~static_cast<unsigned int>(PX_RGB_BOTTOM_UP);
    const bool blueFirst = order == PX_RGB_BGRA || order == PX_RGB_ABGR;
    const bool alphaFirst = hasAlpha_ && (order == PX_RGB_ABGR || order == PX_RGB_ARGB);
    if (layout.fieldsOverlap) {
        places_ = {20, 12, 4, 0};
        return;
    }
    if (isWord()) {
        // Blue first means blue in the highest bits here.
        const unsigned int lowest = bits_ == 30 ? 2 : 0;
        const unsigned int green = lowest + bits_ / 3;
        places_ = {green + bits_ / 3 + (bits_ == 16 ? 1U : 0U), green, lowest, 0};
    } else {
        const unsigned int first = alphaFirst ? 1 : 0;
        places_ = {first, first + 1, first + 2, alphaFirst ? 0U : 3U};
    }
    if (blueFirst) std::swap(places_.red, places_.blue);
}

void RgbPixels::write(unsigned char* row, std::size_t x, const Rgb& colour) const {
    if (isWord()) {
        const std::uint32_t word = std::uint32_t{quantised(colour.red, highest())} << places_.red |
                                   std::uint32_t{quantised(colour.green, highestGreen())} << places_.green |
                                   std::uint32_t{quantised(colour.blue, highest())} << places_.blue;
        std::memcpy(row + x * wordBytes(), &word, wordBytes());
        return;
    }
    unsigned char* pixel = row + x * (bits_ / 8);
    const std::size_t bytes = sampleBits() / 8;
    store(pixel, places_.red, bytes, quantised(colour.red, highest()));
    store(pixel, places_.green, bytes, quantised(colour.green, highest()));
    store(pixel, places_.blue, bytes, quantised(colour.blue, highest()));
    if (hasAlpha_) store(pixel, places_.alpha, bytes, static_cast<std::uint16_t>(highest()));
}

RgbSamples RgbPixels::read(const unsigned char* row, std::size_t x) const {
    if (isWord()) {
        std::uint32_t word = 0;
        std::memcpy(&word, row + x * wordBytes(), wordBytes());
        const auto field = [&](unsigned int place, unsigned int most) {
            const unsigned int full = (1U << sampleBits()) - 1;
            return static_cast<std::uint16_t>(((word >> place & most) * full + most / 2) / most);
        };
        return {field(places_.red, highest()), field(places_.green, highestGreen()), field(places_.blue, highest())};
    }
    const unsigned char* pixel = row + x * (bits_ / 8);
    const std::size_t bytes = sampleBits() / 8;
    return {load(pixel, places_.red, bytes), load(pixel, places_.green, bytes), load(pixel, places_.blue, bytes)};
}

} // namespace fikleipa::tool
