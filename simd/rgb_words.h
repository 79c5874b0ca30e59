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
    // Words of 0..255 to bytes.
    WordsKernel toBytes;
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
RgbWordsKernels rgbWordsKernels(Level level);

} // namespace fikleipa::simd
