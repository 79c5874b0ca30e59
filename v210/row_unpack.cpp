#include "v210/row_unpack.h"

#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/rows.h"

#include <cstddef>
#include <cstring>

namespace fikleipa {
namespace {

using simd::Justify;

// What is stored for a group: 16-bit samples, of which the last two of luma and the last of chroma are 0.
constexpr std::size_t kLumaStored = 16;
constexpr std::size_t kChromaStored = 8;

} // namespace

// The row kernels do not write beyond the last group.
void unpackLastGroup16(const Planes& row, const std::uint8_t* src, std::size_t groups, simd::UnpackKernel unpack) {
    std::uint8_t y[kLumaStored] = {};
    std::uint8_t cb[kChromaStored] = {};
    std::uint8_t cr[kChromaStored] = {};
    const std::size_t before = groups - 1;
    unpack(y, cb, cr, src + before * simd::kV210GroupBytes, 1);
    const Planes last = row.at(before * kPlanar16.luma, before * kPlanar16.chroma);
    std::memcpy(last.y, y, sizeof y);
    std::memcpy(last.cb, cb, sizeof cb);
    std::memcpy(last.cr, cr, sizeof cr);
}

void unpackRow16(const Planes& dst, const std::uint8_t* src, unsigned width, Justify justify) {
    if (width == 0) return;
    const auto unpack =
        simd::kernels().v210.unpack16[static_cast<unsigned>(justify)][static_cast<unsigned>(simd::Samples16::Planar)];
    const std::size_t groups = v210Groups(width);
    unpack(dst.y, dst.cb, dst.cr, src, groups - 1);
    unpackLastGroup16(dst, src, groups, unpack);
}

} // namespace fikleipa

#if defined(__x86_64__)

// All of them find the fastest kernel that the processor has, which needs no alignment; the names are kept for callers
// that pick one.
#define ROW_UNPACK(name, justify)                                                                                      \
    void name(unsigned char* src, unsigned short* y, unsigned short* cb, unsigned short* cr, unsigned int width) {     \
        fikleipa::unpackRow16({reinterpret_cast<std::uint8_t*>(y), reinterpret_cast<std::uint8_t*>(cb),                \
                               reinterpret_cast<std::uint8_t*>(cr)},                                                   \
                              src, width, fikleipa::simd::Justify::justify);                                           \
    }

ROW_UNPACK(px_v210_planar_unpack_aligned_ssse3, Right)
ROW_UNPACK(px_v210_planar_unpack_unaligned_ssse3, Right)
ROW_UNPACK(px_v210_planar16_unpack_aligned_ssse3, Left)
ROW_UNPACK(px_v210_planar16_unpack_unaligned_ssse3, Left)

#undef ROW_UNPACK

#endif
