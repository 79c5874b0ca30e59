#include "v210/row_unpack.h"

#include "fikleipa.h"
#include "simd/kernels.h"

#include <cstddef>
#include <cstring>

namespace fikleipa {
namespace {

using simd::Justify;

// What is stored for a group: 16-bit samples, of which the last two of luma and the last of chroma are 0.
constexpr std::size_t kLumaStored = 16;
constexpr std::size_t kChromaStored = 8;
constexpr std::size_t kLumaStep = 12;
constexpr std::size_t kChromaStep = 6;

constexpr std::size_t groupsOf(unsigned width) {
    return (width + simd::kV210GroupPixels - 1) / simd::kV210GroupPixels;
}

} // namespace

// The row kernels do not write beyond the last group, so that one is stored with what is stored behind it.
void unpackRow16(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, unsigned width,
                 Justify justify) {
    if (width == 0) return;
    const auto unpack =
        simd::kernels().v210.unpack16[static_cast<unsigned>(justify)][static_cast<unsigned>(simd::Samples16::Planar)];
    const std::size_t before = groupsOf(width) - 1;
    unpack(y, cb, cr, src, before);

    std::uint8_t luma[kLumaStored] = {};
    std::uint8_t chroma[2][kChromaStored] = {};
    unpack(luma, chroma[0], chroma[1], src + before * simd::kV210GroupBytes, 1);
    std::memcpy(y + before * kLumaStep, luma, sizeof luma);
    std::memcpy(cb + before * kChromaStep, chroma[0], sizeof chroma[0]);
    std::memcpy(cr + before * kChromaStep, chroma[1], sizeof chroma[1]);
}

} // namespace fikleipa

#if defined(__x86_64__)

// All of them find the fastest kernel that the processor has, which needs no alignment; the names are kept for callers
// that pick one.
#define ROW_UNPACK(name, justify)                                                                                      \
    void name(unsigned char* src, unsigned short* y, unsigned short* cb, unsigned short* cr, unsigned int width) {     \
        fikleipa::unpackRow16(reinterpret_cast<std::uint8_t*>(y), reinterpret_cast<std::uint8_t*>(cb),                 \
                              reinterpret_cast<std::uint8_t*>(cr), src, width, fikleipa::simd::Justify::justify);      \
    }

ROW_UNPACK(px_v210_planar_unpack_aligned_ssse3, Right)
ROW_UNPACK(px_v210_planar_unpack_unaligned_ssse3, Right)
ROW_UNPACK(px_v210_planar16_unpack_aligned_ssse3, Left)
ROW_UNPACK(px_v210_planar16_unpack_unaligned_ssse3, Left)

#undef ROW_UNPACK

#endif
