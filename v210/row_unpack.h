// A v210 row into 16-bit planes, as px_v210_planar_unpack_unaligned_ssse3() and its three companions do it.
#pragma once

#include "simd/v210.h"

#include <cstdint>

namespace fikleipa {

// The same bytes on every processor: the whole groups of a row of `width` pixels, then two luma samples and one of each
// chroma as 0.
void unpackRow16(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, unsigned width,
                 simd::Justify justify);

} // namespace fikleipa
