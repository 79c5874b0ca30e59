// Row kernels that move bytes within words. Both libraries use them.
#pragma once

#include "simd/level.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// `dst` may be `src`; otherwise they lie apart.
using SwapKernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);

struct WordKernels {
    SwapKernel swap16;    // swaps the two bytes of each of `count` 16-bit words
    SwapKernel swap13;    // exchanges bytes 1 and 3 of each of `count` four-byte groups
    SwapKernel swap13Of8; // the same in the first half of each of `count` eight-byte groups; the other becomes 0
};

extern const std::array<WordKernels, kLevels.size()> wordKernels;

inline SwapKernel swap16(Level level) {
    return wordKernels[static_cast<unsigned>(level)].swap16;
}
inline SwapKernel swap13(Level level) {
    return wordKernels[static_cast<unsigned>(level)].swap13;
}
inline SwapKernel swap13Of8(Level level) {
    return wordKernels[static_cast<unsigned>(level)].swap13Of8;
}

} // namespace fikleipa::simd
