#include "core/frame.h"
#include "core/processor.h"
#include "fikleipa.h"
#include "pxutil/pxutil.h"
#include "simd/kernels.h"
#include "yuv8/flip.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace {

using fikleipa::FlipFrame;
using fikleipa::Frame;
using fikleipa::probeProcessorLevel;

// Row offsets are 32-bit products.
unsigned char* dstRow(const Frame& f, unsigned y) {
    return f.dst + y * f.dstPitch;
}
unsigned char* srcRow(const Frame& f, unsigned y) {
    return f.src + y * f.srcPitch;
}
unsigned smallerPitch(const Frame& f) {
    return std::min(f.dstPitch, f.srcPitch);
}
unsigned frameBytes(const Frame& f) {
    return f.dstPitch * f.height;
}

unsigned copy(const Frame& f) {
    if (f.dstPitch == f.srcPitch) {
        CopyMemoryFast(f.dst, f.src, frameBytes(f));
    } else {
        for (unsigned y = 0; y < f.height; ++y) CopyMemoryFast(dstRow(f, y), srcRow(f, y), smallerPitch(f));
    }
    return frameBytes(f);
}

// Reads forwards and writes backwards, which memory takes better than the opposite.
unsigned reverse(const Frame& f) {
    for (unsigned y = 0; y < f.height; ++y) CopyMemoryFast(dstRow(f, f.height - 1 - y), srcRow(f, y), smallerPitch(f));
    return frameBytes(f);
}

// The platform library's swap, and our own.
void swapByPlatform(unsigned char* dst, const unsigned char* src, std::size_t words) {
    EndianConvertWord(dst, src, words);
}

void swapByKernel(unsigned char* dst, const unsigned char* src, std::size_t words) {
    fikleipa::simd::swap16(fikleipa::simd::activeLevel())(dst, src, words);
}

// The platform library swaps whole pitches, whatever the width.
unsigned swapPitches(const Frame& f) {
    if (f.dstPitch == f.srcPitch) {
        swapByPlatform(f.dst, f.src, frameBytes(f) / 2);
    } else {
        for (unsigned y = 0; y < f.height; ++y) swapByPlatform(dstRow(f, y), srcRow(f, y), smallerPitch(f) / 2);
    }
    return frameBytes(f);
}

// We swap the width's whole groups.
unsigned swapGroups(const Frame& f) {
    for (unsigned y = 0; y < f.height; ++y) swapByKernel(dstRow(f, y), srcRow(f, y), std::size_t{f.width / 2} * 2);
    return frameBytes(f);
}

unsigned exchangeChroma(const Frame& f) {
    const auto swap13 = fikleipa::simd::kernels().swap13;
    for (unsigned y = 0; y < f.height; ++y) swap13(dstRow(f, y), srcRow(f, y), f.width / 2);
    return frameBytes(f);
}

using Swap = void (*)(unsigned char* dst, const unsigned char* src, std::size_t words);

constexpr std::size_t kCacheLine = 64;
using CachedRow = std::array<unsigned char, 16384>;

// Swaps the first `bytes` bytes of every row, an even number, into the rows of the flipped destination.
//
// Vectors that write rows from the last to the first wait for memory at every row. So a row is swapped into one that
// stays in cache, the next is fetched, and a bulk copy meanwhile writes it.
template <Swap kSwap>
void swapRowsFlipped(const Frame& f, std::size_t bytes) {
    alignas(kCacheLine) CachedRow row;
    const unsigned char* src = f.src;
    for (unsigned char* dst = dstRow(f, f.height); dst != f.dst;) {
        dst -= f.dstPitch;
        kSwap(row.data(), src, bytes / 2);
        src += f.srcPitch;
        for (std::size_t i = 0; i < bytes; i += kCacheLine) __builtin_prefetch(src + i);
        CopyMemoryFast(dst, row.data(), bytes);
    }
}

// Swaps and then flips the destination, in one pass where that comes to the same. `bytes` is what the swap writes of
// each row.
template <unsigned (*kConvert)(const Frame&), Swap kSwap>
unsigned swapAndFlip(const Frame& f, std::uint64_t bytes) {
    const FlipFrame flip{f.dst, f.src, std::uint64_t{f.srcPitch} * f.height, f.height, f.dstPitch, bytes};
    // With an odd pitch words straddle rows, or the last byte of each row is left alone.
    if (bytes % 2 == 0 && bytes <= std::tuple_size_v<CachedRow> && bytes <= f.srcPitch &&
        fikleipa::canFlipWhileConverting(flip)) {
        swapRowsFlipped<kSwap>(f, static_cast<std::size_t>(bytes));
        fikleipa::flipPadding(flip);
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
    const unsigned long n = a * b;
    for (unsigned long i = 0; i < n / 2; ++i) {
        const unsigned char* const s = src + 8 * i;
        const unsigned char unit[8] = {s[0], s[3], s[2], s[1], 0, 0, 0, 0};
        std::copy_n(unit, 8, dst + 8 * i);
    }
    return n;
}
