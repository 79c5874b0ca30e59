// A v210 row into 16-bit planes, as px_v210_planar_unpack_unaligned_ssse3() and its three companions do it.
#pragma once

#include "core/planes.h"
#include "simd/v210.h"
#include "v210/pitch.h"

#include <cstdint>

namespace fikleipa {

// The same bytes on every processor: the whole groups of a row of `width` pixels, then two luma samples and one of each
// chroma as 0.
void unpackRow16(const Planes& dst, const std::uint8_t* src, unsigned width, simd::Justify justify);

// For rows whose other groups are unpacked already: the last of `groups`, at least one, with what is stored behind it.
void unpackLastGroup16(const Planes& row, const std::uint8_t* src, std::size_t groups, simd::UnpackKernel unpack);

} // namespace fikleipa
