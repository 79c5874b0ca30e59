// Row kernels between 8-bit planes and packed 8-bit 4:2:2.
#pragma once

#include "simd/level.h"
#include "simd/samples.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// `pairs` pairs: two luma samples and one of each chroma.
using JoinKernel = void (*)(std::uint8_t* dstY, std::uint8_t* dstCb, std::uint8_t* dstCr, const std::uint8_t* y,
                            const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pairs);
// The rows that a split writes may lie on one another: they get what a walk from the first pair to the last gives which
// writes Y0, Y1, Cb, Cr.
using SplitKernel = void (*)(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* srcY,
                             const std::uint8_t* srcCb, const std::uint8_t* srcCr, std::size_t pairs);

// dst[i] = (a[i] + b[i] + 1) / 2.
using AverageBytesKernel = void (*)(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b,
                                    std::size_t samples);

// By the packed side: Yuy2, Yvyu, Uyvy or Packed.
template <class Kernel>
using PerPacked = std::array<Kernel, 4>;

struct Planes8Kernels {
    PerPacked<JoinKernel> join;
    // Chroma planes have a sample for each pixel, of which the even ones are taken and the last odd one is not read.
    PerPacked<JoinKernel> join444;
    PerPacked<SplitKernel> split;
    AverageBytesKernel average;
};

// The kernels of a level: the portable ones, overwritten where the level has something faster.
Planes8Kernels planes8Kernels(Level level);

} // namespace fikleipa::simd
