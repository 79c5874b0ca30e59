#include "core/frame.h"
#include "core/processor.h"
#include "core/rows.h"
#include "fikleipa.h"
#include "pxutil/pxutil.h"
#include "simd/kernels.h"
#include "yuv8/flip.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

using namespace fikleipa;

// Row offsets are 32-bit products.
unsigned char* srcRow(const Frame& f, unsigned y) {
    return f.src + y * f.srcPitch;
}
unsigned smallerPitch(const Frame& f) {
    return std::min(f.dstPitch, f.srcPitch);
}
unsigned frameBytes(const Frame& f) {
    return f.dstPitch * f.height;
}

bool goesPastCache(const Frame& f, std::uint64_t rowBytes) {
    return fikleipa::goesPastCache({{f.dst, rowBytes, f.dstPitch, f.height}});
}

// Reads forwards also where it writes backwards, which memory takes better than the opposite.
unsigned copyRows(const Frame& f, bool bottomUp) {
    if (smallerPitch(f) == 0) return frameBytes(f);
    const simd::RowCopy copyRow(goesPastCache(f, smallerPitch(f)), CopyMemoryFast);
    for (unsigned y = 0; y < f.height; ++y) {
        copyRow(f.dst + destinationOffset(y, f.height, f.dstPitch, bottomUp), srcRow(f, y), smallerPitch(f));
    }
    return frameBytes(f);
}

unsigned copy(const Frame& f) {
    if (f.dstPitch != f.srcPitch) return copyRows(f, false);
    CopyMemoryFast(f.dst, f.src, frameBytes(f));
    return frameBytes(f);
}

unsigned reverse(const Frame& f) {
    return copyRows(f, true);
}

using Shuffle = void (*)(unsigned char* dst, const unsigned char* src, std::size_t units);

// Converts the first `units` units of every row.
void shuffleRows(const Frame& f, Shuffle shuffle, std::size_t units, unsigned unitBytes, bool bottomUp = false) {
    if (units == 0) return;
    RowWriter<1> rows(goesPastCache(f, units * unitBytes), {unitBytes});
    for (unsigned y = 0; y < f.height; ++y) {
        const unsigned char* const from = srcRow(f, y);
        rows.write({f.dst + destinationOffset(y, f.height, f.dstPitch, bottomUp)},
                   simd::SourceRow{from, units * unitBytes, f.srcPitch}, units,
                   [&](const auto& to, std::size_t first, std::size_t count) {
                       shuffle(to[0], from + first * unitBytes, count);
                   });
    }
}

constexpr unsigned kWord = 2;
constexpr unsigned kGroup = 4;

// The platform library's swap, and our own.
void swapByPlatform(unsigned char* dst, const unsigned char* src, std::size_t words) {
    EndianConvertWord(dst, src, words);
}

void swapByKernel(unsigned char* dst, const unsigned char* src, std::size_t words) {
    simd::swap16(simd::activeLevel())(dst, src, words);
}

// The platform library swaps whole pitches, whatever the width.
unsigned swapPitches(const Frame& f) {
    if (f.dstPitch == f.srcPitch) {
        swapByPlatform(f.dst, f.src, frameBytes(f) / kWord);
    } else {
        shuffleRows(f, swapByPlatform, smallerPitch(f) / kWord, kWord);
    }
    return frameBytes(f);
}

// We swap the width's whole groups.
unsigned swapGroups(const Frame& f) {
    shuffleRows(f, swapByKernel, std::size_t{f.width / 2} * 2, kWord);
    return frameBytes(f);
}

unsigned exchangeChroma(const Frame& f) {
    shuffleRows(f, simd::kernels().swap13, f.width / 2, kGroup);
    return frameBytes(f);
}

// Swaps and then flips the destination, in one pass where that comes to the same. `bytes` is what the swap writes of
// each row.
template <unsigned (*kConvert)(const Frame&), Shuffle kSwap>
unsigned swapAndFlip(const Frame& f, std::uint64_t bytes) {
    const FlipFrame flip{f.dst, f.height, f.dstPitch, bytes};
    // With an odd pitch words straddle rows, or the last byte of each row is left alone.
    if (bytes % kWord == 0 && canFlipWhileConverting(flip)) {
        shuffleRows(f, kSwap, bytes / kWord, kWord, true);
        flipPadding(flip);
    } else {
        kConvert(f);
        cycbcr_invert(f.dst, f.dstPitch, f.height);
    }
    return frameBytes(f);
}

unsigned swapPitchesAndFlip(const Frame& f) {
    return swapAndFlip<swapPitches, swapByPlatform>(f, smallerPitch(f));
}

unsigned swapGroupsAndFlip(const Frame& f) {
    return swapAndFlip<swapGroups, swapByKernel>(f, std::uint64_t{f.width / 2} * 4);
}

// Not all of these have ever probed the processor level; a host can tell.
enum class Probe { No, Yes };

template <unsigned (*kConvert)(const Frame&), Probe kProbe = Probe::Yes>
unsigned converter(const Frame& f) {
    if constexpr (kProbe == Probe::Yes) probeProcessorLevel();
    return kConvert(f);
}

} // namespace

#define PACKED_CONVERTER(name, ...)                                                                                    \
    unsigned int name(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,                 \
                      unsigned int dstPitch, unsigned int srcPitch) {                                                  \
        return converter<__VA_ARGS__>({dst, src, width, height, dstPitch, srcPitch});                                  \
    }

PACKED_CONVERTER(cycbcr_yuy2_to_yuy2, copy)
PACKED_CONVERTER(cycbcr_yvyu_to_yvyu, copy)
PACKED_CONVERTER(cycbcr_uyvy_to_uyvy, copy)
PACKED_CONVERTER(cycbcr_cyuv_to_cyuv, copy)
PACKED_CONVERTER(cycbcr_interleaved_copy, copy, Probe::No)
PACKED_CONVERTER(cycbcr_yuy2_to_uyvy, swapPitches)
PACKED_CONVERTER(cycbcr_uyvy_to_yuy2, swapPitches)
PACKED_CONVERTER(cycbcr_yvyu_to_uyvy, swapGroups, Probe::No) // chroma comes out exchanged: deliberate
PACKED_CONVERTER(cycbcr_uyvy_to_yvyu, swapGroups, Probe::No) // chroma comes out exchanged: deliberate
PACKED_CONVERTER(cycbcr_yuy2_to_yvyu, exchangeChroma)
PACKED_CONVERTER(cycbcr_yvyu_to_yuy2, exchangeChroma)
PACKED_CONVERTER(cycbcr_yuy2_to_cyuv, swapPitchesAndFlip)
PACKED_CONVERTER(cycbcr_cyuv_to_yuy2, swapPitchesAndFlip)
PACKED_CONVERTER(cycbcr_yvyu_to_cyuv, swapGroupsAndFlip)
PACKED_CONVERTER(cycbcr_cyuv_to_yvyu, swapGroupsAndFlip)
PACKED_CONVERTER(cycbcr_uyvy_to_cyuv, reverse)
PACKED_CONVERTER(cycbcr_cyuv_to_uyvy, reverse)

#undef PACKED_CONVERTER

// The unit of eight bytes and its zeroed half are deliberate: this overload is no frame converter.
unsigned long cycbcr_yuy2_to_yvyu(unsigned char* dst, unsigned char* src, unsigned long a, unsigned long b,
                                  unsigned long /*unused*/) {
    constexpr unsigned kUnit = 8;
    const unsigned long n = a * b;
    const std::size_t bytes = kUnit * (n / 2);
    const simd::SwapKernel convert = simd::kernels().swap13Of8;
    RowWriter<1> units(goesPastCache({{dst, bytes, bytes, 1}}), {kUnit});
    units.write(
        {dst}, simd::SourceRow{src, bytes, 0}, n / 2,
        [&](const auto& to, std::size_t first, std::size_t count) { convert(to[0], src + kUnit * first, count); });
    return n;
}
