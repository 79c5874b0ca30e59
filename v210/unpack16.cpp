#include "v210/unpack16.h"

#include "core/rows.h"
#include "simd/kernels.h"

#include <array>
#include <cstring>

namespace fikleipa {
namespace {

using simd::kV210GroupBytes;
using simd::kV210GroupPixels;

constexpr std::size_t kLumaGroup = 2 * kV210GroupPixels;
constexpr std::size_t kChromaGroup = kV210GroupPixels;

simd::UnpackKernel unpackKernel(simd::Justify justify) {
    const auto& kernels = simd::kernels().v210.unpack16[static_cast<unsigned>(justify)];
    return kernels[static_cast<unsigned>(simd::Samples16::Planar)];
}

// A group of which not all pixels are wanted goes by way of a whole one.
void unpackPixels(simd::UnpackKernel unpack, const Planes& dst, const unsigned char* src, std::size_t pixels) {
    const std::size_t whole = pixels / kV210GroupPixels;
    const std::size_t rest = pixels % kV210GroupPixels;
    unpack(dst.y, dst.cb, dst.cr, src, whole);
    if (rest == 0) return;

    std::array<unsigned char, kLumaGroup> y;
    std::array<unsigned char, kChromaGroup> cb;
    std::array<unsigned char, kChromaGroup> cr;
    unpack(y.data(), cb.data(), cr.data(), src + whole * kV210GroupBytes, 1);
    const Planes behind = dst.at(whole * kLumaGroup, whole * kChromaGroup);
    std::memcpy(behind.y, y.data(), 2 * rest);
    std::memcpy(behind.cb, cb.data(), rest / 2 * 2);
    std::memcpy(behind.cr, cr.data(), rest / 2 * 2);
}

// As many groups as a second row's chroma is unpacked of at a time, to be averaged while it is in cache.
constexpr std::size_t kPieceGroups = 640;
constexpr std::size_t kPiecePixels = kPieceGroups * kV210GroupPixels;
using ChromaPiece = std::array<unsigned char, kPieceGroups * kChromaGroup>;

// Adds a second row to planes whose chroma row holds that of the first.
void unpackSecondRow(simd::UnpackKernel unpack, const Planes& dst, const unsigned char* src, std::size_t pixels) {
    const simd::AverageKernel average = simd::kernels().v210.average16;
    ChromaPiece cb;
    ChromaPiece cr;
    for (std::size_t x = 0; x < pixels; x += kPiecePixels) {
        const Planes at = dst.at(2 * x, x);
        const std::size_t piece = std::min(pixels - x, kPiecePixels);
        unpackPixels(unpack, {at.y, cb.data(), cr.data()}, src, piece);
        average(at.cb, at.cb, cb.data(), piece / 2);
        average(at.cr, at.cr, cr.data(), piece / 2);
        src += kPieceGroups * kV210GroupBytes;
    }
}

} // namespace

void unpack422(const Planes16& dst, const V210Rows& src, simd::Justify justify) {
    const simd::UnpackKernel unpack = unpackKernel(justify);
    for (unsigned r = 0; r < src.height; ++r) unpackPixels(unpack, dst.row(r, r), src.row(r), dst.rowPixels);
}

void unpack420(const Planes16& dst, const V210Rows& src, simd::Justify justify) {
    const simd::UnpackKernel unpack = unpackKernel(justify);
    const unsigned chromaRows = (src.height + 1) / 2;
    const bool pastCache =
        goesPastCache({{dst.start.y, 2 * dst.rowPixels, dst.lumaPitch, src.height},
                       {dst.start.cb, dst.rowPixels, dst.chromaPitch, chromaRows},
                       {dst.start.cr, dst.rowPixels, dst.chromaPitch, chromaRows}},
                      {{src.start, v210Groups(dst.rowPixels) * kV210GroupBytes, src.pitch, src.height}});
    // Chroma is read again.
    RowWriter<1> luma(pastCache, {2}, 64 * kV210GroupPixels / 2);
    for (unsigned r = 0; r < src.height; ++r) {
        const auto unpackRow = r % 2 == 0 ? unpackPixels : unpackSecondRow;
        const Planes row = dst.row(r, r / 2);
        luma.write({row.y}, dst.rowPixels, [&](const auto& to, std::size_t first, std::size_t pixels) {
            unpackRow(unpack, {to[0], row.cb + first, row.cr + first},
                      src.row(r) + first / kV210GroupPixels * kV210GroupBytes, pixels);
        });
    }
}

} // namespace fikleipa
