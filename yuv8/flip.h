// Frames that are converted and turned over in one pass.
#pragma once

#include "core/rows.h"

#include <cstdint>

namespace fikleipa {

struct FlipFrame {
    std::uint8_t* dst;
    unsigned height;
    unsigned dstPitch;
    std::uint64_t rowBytes; // what the conversion writes of each destination row

    RowSpan rows() const { return {dst, rowBytes, dstPitch, height}; }
};

// Whether writing each row straight to its mirrored place gives what converting top-down and then flipping gives: rows
// must neither lie on one another nor wrap around.
bool canFlipWhileConverting(const FlipFrame& frame);

// The other part of the flip: exchanges what the destination's rows hold beyond `rowBytes`.
void flipPadding(const FlipFrame& frame);

} // namespace fikleipa
