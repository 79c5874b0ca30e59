#include "simd/stream.h"

#include <algorithm>
#include <cstring>

#if defined(__x86_64__)
#include <emmintrin.h>
#endif

namespace fikleipa::simd {

#if defined(__x86_64__)

void streamBytes(std::uint8_t* dst, const std::uint8_t* src, std::size_t bytes) {
    constexpr std::size_t kLine = kStreamAlignment;
    // Only whole cache lines are written past the cache without being read first.
    const std::size_t head = std::min(bytes, -reinterpret_cast<std::uintptr_t>(dst) % kLine);
    std::memcpy(dst, src, head);
    std::size_t i = head;
    for (; i + kLine <= bytes; i += kLine) {
        for (std::size_t j = i; j < i + kLine; j += 16) {
            _mm_stream_si128(reinterpret_cast<__m128i*>(dst + j),
                             _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + j)));
        }
    }
    std::memcpy(dst + i, src + i, bytes - i);
}

void finishStreaming() {
    _mm_sfence();
}

#else

void streamBytes(std::uint8_t* dst, const std::uint8_t* src, std::size_t bytes) {
    std::memcpy(dst, src, bytes);
}

void finishStreaming() {}

#endif

} // namespace fikleipa::simd
