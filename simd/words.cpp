#include "simd/words.h"

namespace fikleipa::simd {
namespace {

// A group is read whole before any of it is written, since it may be converted in place.
void swap16Portable(std::uint8_t* dst, const std::uint8_t* src, std::size_t words) {
    for (std::size_t i = 0; i < 2 * words; i += 2) {
        const std::uint8_t a = src[i];
        const std::uint8_t b = src[i + 1];
        dst[i] = b;
        dst[i + 1] = a;
    }
}

void swap13Portable(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups) {
    for (std::size_t i = 0; i < 4 * groups; i += 4) {
        const std::uint8_t a = src[i];
        const std::uint8_t b = src[i + 1];
        const std::uint8_t c = src[i + 2];
        const std::uint8_t d = src[i + 3];
        dst[i] = a;
        dst[i + 1] = d;
        dst[i + 2] = c;
        dst[i + 3] = b;
    }
}

void swap13Of8Portable(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups) {
    for (std::size_t i = 0; i < 8 * groups; i += 8) {
        const std::uint8_t group[8] = {src[i], src[i + 3], src[i + 2], src[i + 1], 0, 0, 0, 0};
        for (std::size_t k = 0; k < 8; ++k) dst[i + k] = group[k];
    }
}

} // namespace
} // namespace fikleipa::simd

#define FIKLEIPA_KERNELS "simd/x86/words.inl.h"
#include "simd/each_level.h"

namespace fikleipa::simd {

const std::array<WordKernels, kLevels.size()> wordKernels{{
    {swap16Portable, swap13Portable, swap13Of8Portable},
#if defined(__x86_64__)
    {sse41::swap16, sse41::swap13, sse41::swap13Of8},
    {avx2::swap16, avx2::swap13, avx2::swap13Of8},
    {avx512::swap16, avx512::swap13, avx512::swap13Of8},
#endif
}};

} // namespace fikleipa::simd
