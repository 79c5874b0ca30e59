// Three planes, or three pointers into one packed buffer, as one thing, and where the named layouts have them.
#pragma once

#include "simd/samples.h"

#include <cstddef>

namespace fikleipa {

struct Planes {
    unsigned char* y;
    unsigned char* cb;
    unsigned char* cr;

    Planes at(std::size_t luma, std::size_t chroma) const { return {y + luma, cb + chroma, cr + chroma}; }
};

// How many rows of chroma go with so many of luma where it has half as many: the last of an odd number has one too.
constexpr unsigned halfRows(unsigned rows) {
    return rows / 2 + rows % 2;
}

// Where a layout's samples begin in its frame.
struct Placement {
    unsigned y, cb, cr;
    bool planar;
    bool fullChromaRows;

    Planes in(unsigned char* frame) const { return {frame + y, frame + cb, frame + cr}; }
};

// Where a packed row of a named order, so many bytes a sample, has its first samples.
constexpr Placement placementOf(simd::Samples8 order, unsigned sampleBytes = 1) {
    const simd::Group& group = simd::kGroups[static_cast<unsigned>(order)];
    return {group.y * sampleBytes, group.cb * sampleBytes, group.cr * sampleBytes, false, true};
}

// Planes follow one another by the bytes of the luma plane: a 32-bit product of the height and of what the conversion
// takes for the pitch.
using PlacementOf = Placement (*)(unsigned lumaBytes);

namespace placement {

constexpr Placement yuy2(unsigned /*lumaBytes*/) {
    return {0, 1, 3, false, true};
}
constexpr Placement yvyu(unsigned /*lumaBytes*/) {
    return {0, 3, 1, false, true};
}
constexpr Placement uyvy(unsigned /*lumaBytes*/) {
    return {1, 0, 2, false, true};
}
constexpr Placement i420(unsigned lumaBytes) {
    return {0, lumaBytes, lumaBytes + lumaBytes / 4, true, false};
}
constexpr Placement yv12(unsigned lumaBytes) {
    return {0, lumaBytes + lumaBytes / 4, lumaBytes, true, false};
}
constexpr Placement p422(unsigned lumaBytes) {
    return {0, lumaBytes, lumaBytes + lumaBytes / 2, true, true};
}

} // namespace placement
} // namespace fikleipa
