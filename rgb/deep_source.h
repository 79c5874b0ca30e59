// Sources of more than 8 bits, a chunk of a row at a time as rows of 16-bit samples.
#pragma once

#include "core/rows.h"
#include "simd/to_rgb_deep.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa {

// Samples that are unpacked go in chunks that stay in the first-level cache. A chunk is whole groups of v210 and whole
// vectors. A row of v210 has few, since most levels unpack the groups that each ends in without vectors; planes
// measurably do better in smaller ones.
inline constexpr std::size_t kWholePixels = simd::kV210PiecePixels;
inline constexpr std::size_t kChunkPixels = 20 * kWholePixels;
inline constexpr std::size_t kPlanesChunkPixels = 8 * kWholePixels;
using ChunkRow = std::array<std::uint8_t, 2 * kChunkPixels>;

// Where the samples of a chunk are: as many as simd::DeepToRgbKernel reads.
struct ChunkSamples {
    const std::uint8_t* y;
    const std::uint8_t* cb;
    const std::uint8_t* cr;
};

// Room for samples that do not lie in the source as rows. Chroma has half as many, and one.
struct ChunkRoom {
    alignas(64) ChunkRow y;
    alignas(64) ChunkRow cb;
    alignas(64) ChunkRow cr;
};

// An odd last pixel is left out.
struct V210Source {
    const std::uint8_t* src;
    unsigned width;
    unsigned height;
    unsigned pitch;

    static constexpr simd::OddPixel oddPixel() { return simd::OddPixel::AverageButRed; }
    std::size_t pixels() const { return width / 2 * 2; }
    static std::size_t chunk(std::size_t left) { return std::min(left, kChunkPixels); }
    ChunkSamples samples(unsigned r, std::size_t x, std::size_t count, ChunkRoom& room) const;
    // From a pixel that begins a group on.
    const std::uint8_t* groups(unsigned r, std::size_t x) const;
};

// Planes of 16-bit samples, or, without `planar`, one buffer with luma every two samples and chroma every four.
struct DeepSource {
    const std::uint8_t* y;
    const std::uint8_t* cb;
    const std::uint8_t* cr;
    unsigned width;
    unsigned height;
    unsigned lumaPitch;
    unsigned chromaPitch;
    bool fullChromaRows;
    bool planar;
    bool highBytes = false; // only the high byte of every sample counts

    simd::OddPixel oddPixel() const { return fullChromaRows ? simd::OddPixel::Average : simd::OddPixel::Own; }
    std::size_t pixels() const { return width; }
    // How many of the pixels left in a row go at once. Samples are taken from where they lie, but for the last ones,
    // which may need a chroma sample more than there is.
    std::size_t chunk(std::size_t left) const {
        if (!planar || highBytes) return std::min(left, kPlanesChunkPixels);
        return left <= kPlanesChunkPixels ? left : (left - 1) / kPlanesChunkPixels * kPlanesChunkPixels;
    }
    ChunkSamples samples(unsigned r, std::size_t x, std::size_t count, ChunkRoom& room) const;
};

} // namespace fikleipa
