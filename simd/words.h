// Row kernels that move bytes within words. Both libraries use them.
#pragma once

#include "simd/level.h"

#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// `dst` may be `src`. Buffers that overlap otherwise get what a walk from the first byte to the last gives.
using SwapKernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);

// Swaps the two bytes of each of `count` 16-bit words.
SwapKernel swap16(Level level);

// Exchanges bytes 1 and 3 of each of `count` four-byte groups.
SwapKernel swap13(Level level);

} // namespace fikleipa::simd
