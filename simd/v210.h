// Row kernels between v210 and planar or packed samples, and between samples of different depth.
//
// A v210 group is four 32-bit words of little-endian order that hold six pixels, three 10-bit components a word from
// the lowest bits on: Cb0 Y0 Cr0, Y1 Cb1 Y2, Cr1 Y3 Cb2, Y4 Cr2 Y5. The two highest bits are written as 0 and not read.
//
// 16-bit samples are given by byte pointers, since nothing is known of their alignment.
#pragma once

#include "simd/level.h"
#include "simd/samples.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

inline constexpr std::size_t kV210GroupBytes = 16;
inline constexpr std::size_t kV210GroupPixels = 6;
inline constexpr unsigned kV210GroupPairs = 3;

// Where 16-bit samples lie, counted in samples: luma every 2 and chroma every 4; planes with half the chroma; planes
// with a chroma sample for each pixel, both of a pair the same.
enum class Samples16 { Packed, Planar, Planar444 };
inline constexpr std::size_t kSamples16 = 3;

// What becomes of a 10-bit component in a 16-bit sample: as it is, or left-justified.
enum class Justify { Right, Left };

// How a 16-bit sample becomes 10 bits: its low ten, (s & 0xFFC) >> 2, s >> 6; or the last with the six bits that are
// left over in the highest of the component below, by way of an or.
enum class Reduce { Low10, From12, From16, From16Unmasked };
inline constexpr std::size_t kReductions = 4;

// Whether a source has a chroma sample for each pair; for each pixel, of which the even ones are taken; or Cb and Cr in
// turns in one row, which the pointer to Cr is one sample further in.
enum class Chroma { Half, Full, InTurns };
inline constexpr std::size_t kChromas = 3;
inline Chroma chromaOf(bool interleaved, const std::uint8_t* cb, const std::uint8_t* cr) {
    if (!interleaved) return Chroma::Half;
    return cr == cb + 2 ? Chroma::InTurns : Chroma::Full;
}

// `groups` whole groups: exactly their bytes are read, exactly their samples written.
using UnpackKernel = void (*)(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src,
                              std::size_t groups);
using PackKernel = void (*)(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                            std::size_t groups);

// `pairs` pairs of pixels. A v210 source is read in whole groups.
using UnpackPairsKernel = void (*)(std::uint8_t* dst, const std::uint8_t* src, std::size_t pairs);
using PairsKernel = void (*)(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                             std::size_t pairs);
using SplitPairsKernel = void (*)(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src,
                                  std::size_t pairs);

// dst[i] = (a[i] + b[i]) >> 1 for 16-bit samples, the sum formed without overflow. `dst` may be `a` or `b`.
using AverageKernel = void (*)(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples);

struct V210Kernels {
    // To bytes, truncated; BiPlanar is not there.
    std::array<UnpackKernel, kSamples8 - 1> unpack8;
    // To the bytes Cb Y0 Cr Y1, each rounded: min(255, (v + 2) >> 2).
    UnpackPairsKernel unpackUyvy;
    // [Justify][Samples16]
    std::array<std::array<UnpackKernel, kSamples16>, 2> unpack16;

    // From bytes, shifted left by 2; BiPlanar is not there.
    std::array<PackKernel, kSamples8 - 1> pack8;
    // From planes of 16-bit samples. [Reduce][Chroma]
    std::array<std::array<PackKernel, kChromas>, kReductions> pack16;
    // The same past the cache. `dst` is aligned to kCacheLine, and finishStreaming() follows.
    std::array<std::array<PackKernel, kChromas>, kReductions> pack16Past;

    // Planes of 16-bit samples to the bytes Cb Y0 Cr Y1: of 10 bits, (s & 0x3FC) >> 2, and of 16, s >> 8. [Chroma]
    PairsKernel uyvyFrom10;
    PairsKernel uyvyFrom10Past;
    std::array<PairsKernel, kChromas> uyvyFrom16;

    // The bytes Cb Y0 Cr Y1 to planes of 16-bit samples, s << 8; to planes of 10-bit ones, s << 2, with a chroma sample
    // for each pixel.
    SplitPairsKernel uyvyTo16;
    SplitPairsKernel uyvyTo10Planar444;

    AverageKernel average16;
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
V210Kernels v210Kernels(Level level);

} // namespace fikleipa::simd
