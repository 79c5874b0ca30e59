// Row kernels from RGB to 16-bit samples of YCbCr of 10, 12 and 16 bits.
//
// Samples are given by byte pointers, since nothing is known of their alignment.
#pragma once

#include "simd/from_rgb.h"
#include "simd/level.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// What a pixel is: components of 8 or of 16 bits, four or three; three of 10 bits in a 32-bit word from its bit 2 on,
// counted from the lowest; or the upper ten bits of 16.
enum class RgbSource { Four8, Three8, Four16, Three16, Three10, Four16Upper10, Three16Upper10 };
inline constexpr std::size_t kRgbSources = 7;
constexpr unsigned bytesPerPixel(RgbSource source) {
    constexpr std::array<unsigned, kRgbSources> kBytes{4, 3, 8, 6, 4, 8, 6};
    return kBytes[static_cast<unsigned>(source)];
}
constexpr bool isOf8(RgbSource source) {
    return source == RgbSource::Four8 || source == RgbSource::Three8;
}
constexpr bool isUpper10(RgbSource source) {
    return source == RgbSource::Four16Upper10 || source == RgbSource::Three16Upper10;
}

// What is added to the magnitude of a sum before it is divided and truncated: of a sum not below zero, and of one
// below.
struct Rounding {
    std::int32_t up, down;
};

// Luma is `yo` plus the rounded quotient, chroma half of max + 1 plus it; both are limited to 0..max. Sums and what is
// added to them stay below 2^31, those of luma are not below zero.
struct FromRgbDeepRow {
    FromRgbRow k;
    std::uint32_t divisor;
    std::uint32_t max;
    Rounding luma, cb, cr;
};

// Convert `pixels` pixels to samples.
using FromRgbDeepKernel = void (*)(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src,
                                   std::size_t pixels, const RgbOrder& order, const FromRgbDeepRow& row);

// Convert a row of `pixels` pixels to v210, whole groups of six. Of what is left two pixels become the first two words
// of another group, the second of which has Y alone; others, or a single one, are dropped.
using RgbToV210Kernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const RgbOrder& order,
                                 const FromRgbDeepRow& row);

// The chroma of a pair: (c[-1] + 2 c[0] + 2 c[1] + c[2]) / 6 of the pixels from its first one on, or that of its first.
// Ahead of the row c is 512. For the last whole group, and where no pixel is left, c[2] is c[1].
enum class PairChroma { Filtered, First };

// In double precision, of 16-bit components divided by 65535: luma `yo` plus the sum, limited to 0..1, times 1023, plus
// 0.5, truncated; chroma the same with limits of -0.5..0.5 and 512 for `yo`.
struct RgbFloatWeights {
    double r, g, b;
};
struct FromRgbFloatRow {
    std::int32_t yo;
    RgbFloatWeights y, cb, cr;
};
using FromRgbFloatKernel = void (*)(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src,
                                    std::size_t pixels, const RgbOrder& order, const FromRgbFloatRow& row);

// Alpha, the fourth of four bytes, of a row of pixels to words of three 10-bit samples each, the first one lowest; what
// the last word has no pixel for is 0. A sample is four times alpha, or alpha x 876 / 255 + 64, truncated.
using AlphaTo10Kernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels);

// What a source becomes; nothing where no converter asks for it.
struct FromRgbDeepOfSource {
    // A chroma sample for each pixel. Of 8-bit components, truncated, and of the upper ten bits of 16.
    FromRgbDeepKernel full;
    // One for each pair, the average (a + b) >> 1 of its pixels', an odd last pixel being a pair of its own. Of 16-bit
    // components to 16 bits, of their upper ten to 12; of 10-bit ones to 10, which are shifted left by 6.
    FromRgbDeepKernel halved;
    // To 10 bits, truncated from 8-bit components. [PairChroma]
    std::array<RgbToV210Kernel, 2> toV210;
};

struct FromRgbDeepKernels {
    std::array<FromRgbDeepOfSource, kRgbSources> bySource;
    std::array<FromRgbFloatKernel, 2> fullFloat; // Four16, Three16
    AlphaTo10Kernel alpha;
    AlphaTo10Kernel scaledAlpha;

    const FromRgbDeepOfSource& of(RgbSource source) const { return bySource[static_cast<unsigned>(source)]; }
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
FromRgbDeepKernels fromRgbDeepKernels(Level level);

} // namespace fikleipa::simd
