// Writing to memory past the cache.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// What vectors of every level are aligned to.
inline constexpr std::size_t kStreamAlignment = 64;

// Copies without bringing the destination into cache, on processors that can; other threads see the bytes only after
// finishStreaming().
void streamBytes(std::uint8_t* dst, const std::uint8_t* src, std::size_t bytes);
void finishStreaming();

} // namespace fikleipa::simd
