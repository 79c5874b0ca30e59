// Writing to memory past the cache. Both libraries do.
#pragma once

#include "simd/level.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

inline constexpr std::size_t kCacheLine = 64;

// What is written to more bytes than these goes past the cache: they would not stay in what is near a processor.
inline constexpr std::size_t kBeyondCache = std::size_t{1} << 20;

// Copies whole cache lines past the cache; `dst` begins one. Other threads see them only after finishStreaming().
using StreamKernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t lines);

// Null where it gains nothing.
extern const std::array<StreamKernel, kLevels.size()> streamKernels;

inline StreamKernel streamKernel() {
    return streamKernels[static_cast<unsigned>(activeLevel())];
}

// Copies by such a kernel.
void streamBytes(StreamKernel stream, std::uint8_t* dst, const std::uint8_t* src, std::size_t bytes);

void finishStreaming();

} // namespace fikleipa::simd
