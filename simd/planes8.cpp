#include "simd/planes8.h"

#include "simd/apart.h"

namespace fikleipa::simd {
namespace {

template <std::size_t kChromaStep>
void join(std::uint8_t* dstY, std::uint8_t* dstCb, std::uint8_t* dstCr, const std::uint8_t* y, const std::uint8_t* cb,
          const std::uint8_t* cr, std::size_t pairs) {
    for (std::size_t i = 0; i < pairs; ++i) {
        dstY[4 * i] = y[2 * i];
        dstY[4 * i + 2] = y[2 * i + 1];
        dstCb[4 * i] = cb[kChromaStep * i];
        dstCr[4 * i] = cr[kChromaStep * i];
    }
}

void split(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* srcY, const std::uint8_t* srcCb,
           const std::uint8_t* srcCr, std::size_t pairs) {
    for (std::size_t i = 0; i < pairs; ++i) {
        y[2 * i] = srcY[4 * i];
        y[2 * i + 1] = srcY[4 * i + 2];
        cb[i] = srcCb[4 * i];
        cr[i] = srcCr[4 * i];
    }
}

void average(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    for (std::size_t i = 0; i < samples; ++i) dst[i] = static_cast<std::uint8_t>((a[i] + b[i] + 1) / 2);
}

constexpr Planes8Kernels kPortable{
    {join<1>, join<1>, join<1>, join<1>}, {join<2>, join<2>, join<2>, join<2>}, {split, split, split, split}, average};

} // namespace
} // namespace fikleipa::simd

#define FIKLEIPA_KERNELS "simd/x86/planes8.inl.h"
#include "simd/each_level.h"
#include "simd/overwrite.inl.h"

namespace fikleipa::simd {

Planes8Kernels planes8Kernels(Level level) {
    return overwritten(kPortable, level);
}

} // namespace fikleipa::simd
