#include "simd/stream.h"

#include <algorithm>
#include <cstring>

#define FIKLEIPA_KERNELS "simd/x86/stream.inl.h"
#include "simd/each_level.h"

namespace fikleipa::simd {

// With 16 bytes at a time it takes longer than by way of the cache.
const std::array<StreamKernel, kLevels.size()> streamKernels {
    nullptr,
#if defined(__x86_64__)
        nullptr, avx2::streamLines, avx512::streamLines,
#endif
};

void streamBytes(StreamKernel stream, std::uint8_t* dst, const std::uint8_t* src, std::size_t bytes) {
    // Only whole lines are written without being read first.
    const std::size_t head = std::min(bytes, -reinterpret_cast<std::uintptr_t>(dst) % kCacheLine);
    const std::size_t lines = (bytes - head) / kCacheLine;
    const std::size_t done = head + lines * kCacheLine;
    std::memcpy(dst, src, head);
    stream(dst + head, src + head, lines);
    std::memcpy(dst + done, src + done, bytes - done);
}

void finishStreaming() {
#if defined(__x86_64__)
    _mm_sfence();
#endif
}

} // namespace fikleipa::simd
