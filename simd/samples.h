// Where the 8-bit samples of a row lie.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// Where samples lie from the pointers to a row's first Y, Cb and Cr on. In the packed layouts luma comes every 2 bytes
// and chroma every 4; the named ones say besides where a group's bytes lie from its start, and hold for luma and chroma
// apart, which may belong to different groups.
enum class Samples8 { Yuy2, Yvyu, Uyvy, Packed, Planar, BiPlanar };
inline constexpr std::size_t kSamples8 = 6;

// How many bytes a pair's luma samples take of its row, and each of its chroma samples.
struct PairBytes {
    unsigned luma, chroma;
};
constexpr PairBytes pairBytes(Samples8 samples) {
    if (samples < Samples8::Planar) return {4, 4};
    return {2, samples == Samples8::BiPlanar ? 2U : 1U};
}

struct Group {
    unsigned y, cb, cr;
};
inline constexpr std::array kGroups{Group{0, 1, 3}, Group{0, 3, 1}, Group{1, 0, 2}}; // Yuy2, Yvyu, Uyvy

// The named layout that the three pointers of a packed row are those of, or Packed.
Samples8 packedSamples(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr, unsigned sampleBytes = 1);

} // namespace fikleipa::simd
