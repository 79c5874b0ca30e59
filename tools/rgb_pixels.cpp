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

std::uint16_t widened(unsigned int value, unsigned int highest) {
    return static_cast<std::uint16_t>((value * 255 + highest / 2) / highest);
}

constexpr unsigned int kFive = 31;
constexpr unsigned int kSix = 63;

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

RgbPixels::RgbPixels(std::uint32_t bits, PXYCBCRRgbType type) : bits_(bits), bottomUp_((type & PX_RGB_BOTTOM_UP) != 0) {
    const unsigned int order = type & ~static_cast<unsigned int>(PX_RGB_BOTTOM_UP);
    const bool blueFirst = order == PX_RGB_BGRA || order == PX_RGB_ABGR;
    const bool alphaFirst = hasAlpha() && (order == PX_RGB_ABGR || order == PX_RGB_ARGB);
    if (isWord()) {
        // Blue first means blue in the highest bits here.
        places_ = {bits == 16 ? 11U : 10U, 5, 0, 15};
    } else {
        const unsigned int first = alphaFirst ? 1 : 0;
        places_ = {first, first + 1, first + 2, alphaFirst ? 0U : 3U};
    }
    if (blueFirst) std::swap(places_.red, places_.blue);
}

void RgbPixels::write(unsigned char* row, std::size_t x, const Rgb& colour) const {
    if (isWord()) {
        const auto word =
            static_cast<std::uint16_t>(quantised(colour.red, kFive) << places_.red |
                                       quantised(colour.green, bits_ == 16 ? kSix : kFive) << places_.green |
                                       quantised(colour.blue, kFive) << places_.blue);
        std::memcpy(row + x * sizeof word, &word, sizeof word);
        return;
    }
    unsigned char* pixel = row + x * (bits_ / 8);
    const std::size_t bytes = sampleBits() / 8;
    const unsigned int highest = (1U << sampleBits()) - 1;
    store(pixel, places_.red, bytes, quantised(colour.red, highest));
    store(pixel, places_.green, bytes, quantised(colour.green, highest));
    store(pixel, places_.blue, bytes, quantised(colour.blue, highest));
    if (hasAlpha()) store(pixel, places_.alpha, bytes, static_cast<std::uint16_t>(highest));
}

RgbSamples RgbPixels::read(const unsigned char* row, std::size_t x) const {
    if (isWord()) {
        std::uint16_t word = 0;
        std::memcpy(&word, row + x * sizeof word, sizeof word);
        const unsigned int greenMask = bits_ == 16 ? kSix : kFive;
        return {widened(word >> places_.red & kFive, kFive), widened(word >> places_.green & greenMask, greenMask),
                widened(word >> places_.blue & kFive, kFive)};
    }
    const unsigned char* pixel = row + x * (bits_ / 8);
    const std::size_t bytes = sampleBits() / 8;
    return {load(pixel, places_.red, bytes), load(pixel, places_.green, bytes), load(pixel, places_.blue, bytes)};
}

} // namespace fikleipa::tool
