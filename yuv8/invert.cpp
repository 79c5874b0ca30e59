#include "core/processor.h"
#include "fikleipa.h"
#include "pxutil/pxutil.h"
#include "simd/prefetch.h"
#include "yuv8/flip.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace fikleipa {
namespace {

// From this pitch on, a flip takes a scratch row from the platform library.
constexpr unsigned kLongRow = 5462;

using Byte = unsigned char;

// Rows change places in pieces that stay in the first-level cache on their way through the scratch row.
constexpr std::size_t kPiece = 1024;

void exchange(Byte* upper, Byte* lower, Byte* scratch, std::size_t bytes) {
    CopyMemoryFast(scratch, upper, bytes);
    CopyMemoryFast(upper, lower, bytes);
    CopyMemoryFast(lower, scratch, bytes);
}

// Exchanges `bytes` bytes of rows i and height - 1 - i of every pair, through a scratch row or without one.
void exchangeRows(Byte* buffer, unsigned pitch, unsigned height, std::size_t bytes, Byte* scratchRow) {
    if (bytes == 0) return;
    std::array<Byte, kPiece> local;
    for (unsigned i = 0; i < height / 2; ++i) {
        Byte* const upper = buffer + i * pitch;
        Byte* const lower = buffer + (height - 1 - i) * pitch;
        const Byte* const nextLower = buffer + (height - 2 - i) * pitch;
        for (std::size_t done = 0; done < bytes; done += kPiece) {
            const std::size_t piece = std::min(kPiece, bytes - done);
            // The lower rows are walked towards the start of the frame, where no processor fetches ahead by itself.
            simd::fetchAhead<1, 2>(nextLower + done, 0, piece);
            exchange(upper + done, lower + done, scratchRow != nullptr ? scratchRow + done : local.data(), piece);
        }
    }
}

} // namespace

bool canFlipWhileConverting(const FlipFrame& frame) {
    return frame.rowBytes <= frame.dstPitch && std::uint64_t{frame.dstPitch} * frame.height <= UINT32_MAX;
}

void flipPadding(const FlipFrame& frame) {
    const auto rowBytes = static_cast<std::size_t>(frame.rowBytes);
    if (rowBytes < frame.dstPitch) {
        exchangeRows(frame.dst + rowBytes, frame.dstPitch, frame.height, frame.dstPitch - rowBytes, nullptr);
    }
}

} // namespace fikleipa

void cycbcr_invert(unsigned char* buffer, unsigned int pitch, unsigned int height) {
    using namespace fikleipa;
    probeProcessorLevel();

    // Without memory the flip does without.
    Byte* const scratchRow = pitch >= kLongRow ? static_cast<Byte*>(PXAlloc(pitch)) : nullptr;
    exchangeRows(buffer, pitch, height, pitch, scratchRow);
    if (scratchRow != nullptr) PXFree(scratchRow);
}
