#include "simd/planes8.h"

#include "simd/apart.h"

#include <algorithm>

namespace fikleipa::simd {
namespace {

template <std::size_t kChromaStep>
void join(std::uint8_t* dstY, std::uint8_t* dstCb, std::uint8_t* dstCr, const std::uint8_t* y, const std::uint8_t* cb,
          const std::uint8_t* cr, std::size_t pairs) {
    for (std::size_t i = 0; i < pairs; ++i) {
        const std::uint8_t pair[4] = {y[2 * i], y[2 * i + 1], cb[kChromaStep * i], cr[kChromaStep * i]};
        dstY[4 * i] = pair[0];
        dstY[4 * i + 2] = pair[1];
        dstCb[4 * i] = pair[2];
        dstCr[4 * i] = pair[3];
    }
}

void split(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* srcY, const std::uint8_t* srcCb,
           const std::uint8_t* srcCr, std::size_t pairs) {
    for (std::size_t i = 0; i < pairs; ++i) {
        const std::uint8_t pair[4] = {srcY[4 * i], srcY[4 * i + 2], srcCb[4 * i], srcCr[4 * i]};
        y[2 * i] = pair[0];
        y[2 * i + 1] = pair[1];
        cb[i] = pair[2];
        cr[i] = pair[3];
    }
}

void splitLuma(std::uint8_t* y, const std::uint8_t* srcY, std::size_t pairs) {
    for (std::size_t i = 0; i < pairs; ++i) {
        const std::uint8_t pair[2] = {srcY[4 * i], srcY[4 * i + 2]};
        y[2 * i] = pair[0];
        y[2 * i + 1] = pair[1];
    }
}

void splitAveragedStep(const AveragedRows& rows) {
    constexpr std::size_t kBytes = 4 * kAveragedPairs;
    std::uint8_t bytes[2][kBytes];
    std::copy_n(rows.src[0], kBytes, bytes[0]);
    std::copy_n(rows.src[1], kBytes, bytes[1]);
    const auto average = [&](std::size_t at) {
        return static_cast<std::uint8_t>((bytes[0][at] + bytes[1][at] + 1) / 2);
    };
    for (unsigned row = 0; row < 2; ++row) {
        for (std::size_t i = 0; i < 2 * kAveragedPairs; ++i) rows.y[row][i] = bytes[row][2 * i + 1];
    }
    for (std::size_t i = 0; i < kAveragedPairs; ++i) rows.cb[i] = average(4 * i);
    for (std::size_t i = 0; i < kAveragedPairs; ++i) rows.cr[i] = average(4 * i + 2);
}

void splitAveraged(const AveragedRows& rows, std::size_t steps) {
    for (std::size_t i = 0; i < steps; ++i) splitAveragedStep(rows.at(kAveragedPairs * i));
}

constexpr Planes8Kernels kPortable{{join<1>, join<1>, join<1>, join<1>},
                                   {join<2>, join<2>, join<2>, join<2>},
                                   {split, split, split, split},
                                   {splitLuma, splitLuma, splitLuma, splitLuma},
                                   splitAveraged};

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
