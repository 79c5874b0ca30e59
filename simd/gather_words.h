// Row kernels that gather 16-bit samples that lie apart.
#pragma once

#include "simd/level.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// Gather `count` words to a row of their own; nothing behind the last one is read.
using GatherKernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);

// Of a row every word, every second and every fourth.
inline constexpr unsigned kMostApart = 3; // the distance is 1 << apart

struct GatherWordsKernels {
    std::array<GatherKernel, kMostApart> words;
    std::array<GatherKernel, kMostApart> upperBytes; // words >> 8
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
GatherWordsKernels gatherWordsKernels(Level level);

} // namespace fikleipa::simd
