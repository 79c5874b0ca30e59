#include "core/processor.h"
#include "fikleipa.h"
#include "pxutil/pxutil.h"
#include "yuv8/flip.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace fikleipa {
namespace {

constexpr std::size_t kLocalScratch = 5461;

using Byte = unsigned char;

// Exchanges `bytes` bytes of two rows through a scratch row of at least as many.
void exchange(Byte* upper, Byte* lower, Byte* scratch, std::size_t bytes) {
    CopyMemoryFast(scratch, upper, bytes);
    CopyMemoryFast(upper, lower, bytes);
    CopyMemoryFast(lower, scratch, bytes);
}

// Exchanges rows i and height - 1 - i of every pair, `bytes` bytes from `buffer` on.
void exchangeRows(Byte* buffer, unsigned pitch, unsigned height, std::size_t bytes, Byte* scratch,
                  std::size_t scratchBytes) {
    for (unsigned i = 0; i < height / 2; ++i) {
        Byte* const upper = buffer + i * pitch;
        Byte* const lower = buffer + (height - 1 - i) * pitch;
        for (std::size_t done = 0; done < bytes; done += scratchBytes) {
            exchange(upper + done, lower + done, scratch, std::min(scratchBytes, bytes - done));
        }
    }
}

void flip(Byte* buffer, unsigned pitch, unsigned height, std::size_t bytes) {
    std::array<Byte, kLocalScratch> local;
    exchangeRows(buffer, pitch, height, bytes, local.data(), local.size());
}

} // namespace

bool canFlipWhileConverting(const FlipFrame& frame) {
    const std::uint64_t dstBytes = std::uint64_t{frame.dstPitch} * frame.height;
    const auto dst = reinterpret_cast<std::uintptr_t>(frame.dst);
    const auto src = reinterpret_cast<std::uintptr_t>(frame.src);
    return frame.rowBytes <= frame.dstPitch && dstBytes <= UINT32_MAX && frame.srcBytes <= UINT32_MAX &&
           (dst + dstBytes <= src || src + frame.srcBytes <= dst);
}

void flipPadding(const FlipFrame& frame) {
    const auto rowBytes = static_cast<std::size_t>(frame.rowBytes);
    if (rowBytes < frame.dstPitch) flip(frame.dst + rowBytes, frame.dstPitch, frame.height, frame.dstPitch - rowBytes);
}

} // namespace fikleipa

void cycbcr_invert(unsigned char* buffer, unsigned int pitch, unsigned int height) {
    using namespace fikleipa;
    probeProcessorLevel();

    Byte* scratch = pitch > kLocalScratch ? static_cast<Byte*>(PXAlloc(pitch)) : nullptr;
    if (scratch == nullptr) {
        flip(buffer, pitch, height, pitch);
        return;
    }
    exchangeRows(buffer, pitch, height, pitch, scratch, pitch);
    PXFree(scratch);
}
