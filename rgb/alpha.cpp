#include "core/frame.h"
#include "core/rows.h"
#include "fikleipa.h"
#include "rgb/layout.h"
#include "simd/kernels.h"
#include "simd/unaligned.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

using namespace fikleipa;

// Odd matrices keep studio levels, which are expanded.
bool expands(PXYCBCRMatrix matrix) {
    return static_cast<unsigned>(matrix) % 2 != 0;
}

// Calls merge(r, to) with the pixels that source row r goes to.
template <class Merge>
void eachRow(const RgbFrame& f, Merge merge) {
    if (f.width == 0) return;
    for (unsigned r = 0; r < f.height; ++r) {
        merge(r, f.dst + destinationOffset(r, f.height, f.dstPitch, isBottomUp(f.rgbType)));
    }
}

constexpr std::size_t kChunkPixels = 768; // whole groups of v210
using Words = std::array<std::uint8_t, 2 * kChunkPixels>;

// Three samples to a 32-bit word, from its lowest bits on, to words.
void unpack(std::uint8_t* words, const std::uint8_t* packed, std::size_t pixels) {
    constexpr std::size_t kGroup = 12;
    // The components of v210 in their order, as the packed layouts have them.
    const auto unpackGroups =
        simd::kernels()
            .v210.unpack16[static_cast<unsigned>(simd::Justify::Right)][static_cast<unsigned>(simd::Samples16::Packed)];
    const std::size_t groups = pixels / kGroup;
    unpackGroups(words + 2, words, words + 4, packed, groups);
    for (std::size_t x = groups * kGroup; x < pixels; ++x) {
        // Sample i of a word lies in its bytes i and i + 1, from bit 2 i on; no other byte is looked at.
        const std::size_t i = x % 3;
        const unsigned bits = simd::loadWord<std::uint16_t>(packed + x / 3 * 4 + i);
        simd::storeWord<std::uint16_t>(words + 2 * x, bits >> 2 * i & 0x3FF);
    }
}

} // namespace

unsigned int cycbcr_uyvy_to_rgb32_Alpha(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                        unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                        PXYCBCRRgbType rgbType) {
    const simd::AlphaKernels& kernels = simd::kernels().alpha;
    const auto merge = expands(matrix) ? kernels.expandedBytes : kernels.bytes;
    eachRow({{dst, src, width, height, dstPitch, srcPitch}, matrix, rgbType},
            [&](unsigned r, std::uint8_t* to) { merge(to, src + r * width, width); });
    return width * height;
}

unsigned int cycbcr_012v_to_rgb32_Alpha(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                        unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                        PXYCBCRRgbType rgbType) {
    const simd::AlphaKernels& kernels = simd::kernels().alpha;
    const auto merge = expands(matrix) ? kernels.expandedWords : kernels.words;
    alignas(64) Words words;
    eachRow({{dst, src, width, height, dstPitch, srcPitch}, matrix, rgbType}, [&](unsigned r, std::uint8_t* to) {
        const std::uint8_t* const row = src + width * 4 * r / 3;
        for (std::size_t x = 0; x < width; x += kChunkPixels) {
            const std::size_t count = std::min<std::size_t>(kChunkPixels, width - x);
            unpack(words.data(), row + x / 3 * 4, count);
            merge(to + 4 * x, words.data(), count);
        }
    });
    return width * 4 * height / 3;
}
