// How far cycbcr_transcode() reaches into its two buffers, as fikleipa.h says it: written from the header and not from
// the code, so that a byte too far is either the code's fault or the header's.
#pragma once

#include <cstdint>

namespace fikleipa::fuzz {

struct Call {
    unsigned width, height, dstPitch, srcPitch;
    unsigned matrix, rgbType;
    int dstFourCC, srcFourCC;
};

struct Reach {
    std::uint64_t dst = 0, src = 0; // in bytes from the start of each buffer
    std::uint64_t touched = 0;      // bytes, and rows, counted as often as they are read or written
    std::uint64_t scratch = 0;      // bytes that a flip takes beside them
    bool writesSource = false;
};

Reach reachOf(Call call);

} // namespace fikleipa::fuzz
