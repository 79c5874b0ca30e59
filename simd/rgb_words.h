// Row kernels from rows of R, G and B words to pixels, and from words to words.
#pragma once

#include "simd/level.h"
#include "simd/to_rgb8.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

using PackRgbKernel = void (*)(std::uint8_t* dst, const std::uint8_t* r, const std::uint8_t* g, const std::uint8_t* b,
                               std::size_t pixels);
using WordsKernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t words);

struct RgbWordsKernels {
    // Words of 0..255.
    std::array<PackRgbKernel, kRgb8s> toRgb8;
    // One 32-bit word a pixel, of any words: packRgb10().
    PackRgbKernel toRgb10;
    // Words of 0..255 to bytes.
    WordsKernel toBytes;
    // The low byte of word / 255, in a word. `dst` may be `src`.
    WordsKernel divide255;
};

// The fields overlap. Deliberate: B has its upper bits where the lower ones of R and G are.
constexpr std::uint32_t packRgb10(std::uint32_t r, std::uint32_t g, std::uint32_t b) {
    return ((r | r << 14 | b << 28) & 0x3FFF0003) | b >> 2 | (g & 3) << 2 | (g << 6 & 0x3FFF00);
}

// The kernels of a level: the portable ones, overwritten where the level has something faster.
RgbWordsKernels rgbWordsKernels(Level level);

} // namespace fikleipa::simd
