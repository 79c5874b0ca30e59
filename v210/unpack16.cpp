#include "v210/unpack16.h"

#include "simd/kernels.h"

#include <array>
#include <cstring>

namespace fikleipa {
namespace {

using simd::kV210GroupBytes;
using simd::kV210GroupPixels;

simd::UnpackKernel unpackKernel(simd::Justify justify) {
    const auto& kernels = simd::kernels().v210.unpack16[static_cast<unsigned>(justify)];
    return kernels[static_cast<unsigned>(simd::Samples16::Planar)];
}

Planes behind(const Planes& row, std::size_t groups) {
    return row.at(groups * kPlanar16.luma, groups * kPlanar16.chroma);
}

// A group of which not all pixels are wanted goes by way of a whole one.
void unpackPart(simd::UnpackKernel unpack, const Planes& dst, const unsigned char* src, std::size_t pixels) {
    if (pixels == 0) return;
    std::array<unsigned char, kPlanar16.luma> y;
    std::array<unsigned char, kPlanar16.chroma> cb;
    std::array<unsigned char, kPlanar16.chroma> cr;
    unpack(y.data(), cb.data(), cr.data(), src, 1);
    std::memcpy(dst.y, y.data(), 2 * pixels);
    std::memcpy(dst.cb, cb.data(), pixels / 2 * 2);
    std::memcpy(dst.cr, cr.data(), pixels / 2 * 2);
}

// Unpacks two rows at a time, which share the mean of their chroma.
class PairAverager {
public:
    PairAverager(simd::UnpackKernel unpack, std::size_t pixels, bool pastCache)
        : unpack_(unpack), pixels_(pixels), rows_(pastCache, {kPlanar16.luma, kPlanar16.chroma, kPlanar16.chroma}) {}

    // Of the upper row, luma alone is written.
    void rows(const Planes& upper, const Planes& lower, const unsigned char* upperSrc, const unsigned char* lowerSrc) {
        const std::size_t groups = pixels_ / kV210GroupPixels;
        for (std::size_t i = 0; i < groups; i += kPieceGroups) {
            const std::size_t count = std::min(groups - i, kPieceGroups);
            unpackUpper(behind(upper, i).y, upperSrc + i * kV210GroupBytes, count);
            unpackLower(behind(lower, i), lowerSrc + i * kV210GroupBytes, count);
        }
        const std::size_t rest = pixels_ % kV210GroupPixels;
        if (rest == 0) return;
        const Planes end = behind(lower, groups);
        const std::size_t offset = groups * kV210GroupBytes;
        unpackPart(unpack_, {behind(upper, groups).y, upperCb_.data(), upperCr_.data()}, upperSrc + offset, rest);
        unpackPart(unpack_, {end.y, lowerCb_.data(), lowerCr_.data()}, lowerSrc + offset, rest);
        average_(end.cb, upperCb_.data(), lowerCb_.data(), rest / 2);
        average_(end.cr, upperCr_.data(), lowerCr_.data(), rest / 2);
    }

private:
    void unpackUpper(unsigned char* luma, const unsigned char* src, std::size_t groups) {
        rows_.write({luma, nullptr, nullptr}, groups, [&](const auto& to, std::size_t first, std::size_t count) {
            const std::size_t at = first * kPlanar16.chroma;
            unpack_(to[0], &upperCb_[at], &upperCr_[at], src + first * kV210GroupBytes, count);
        });
    }

    void unpackLower(const Planes& dst, const unsigned char* src, std::size_t groups) {
        rows_.write({dst.y, dst.cb, dst.cr}, groups, [&](const auto& to, std::size_t first, std::size_t count) {
            const std::size_t at = first * kPlanar16.chroma;
            const std::size_t samples = count * kPlanar16.chroma / 2;
            unpack_(to[0], lowerCb_.data(), lowerCr_.data(), src + first * kV210GroupBytes, count);
            average_(to[1], &upperCb_[at], lowerCb_.data(), samples);
            average_(to[2], &upperCr_[at], lowerCr_.data(), samples);
        });
    }

    // Chroma that stays in cache.
    static constexpr std::size_t kPieceGroups = 1280;
    using Chroma = std::array<unsigned char, kPieceGroups * kPlanar16.chroma>;

    simd::UnpackKernel unpack_;
    simd::AverageKernel average_ = simd::kernels().v210.average16;
    std::size_t pixels_;
    RowWriter<3> rows_;
    Chroma upperCb_{}, upperCr_{}, lowerCb_{}, lowerCr_{};
};

} // namespace

void unpack422(const Planes16& dst, const V210Rows& src, simd::Justify justify) {
    const simd::UnpackKernel unpack = unpackKernel(justify);
    const std::size_t whole = dst.rowPixels / kV210GroupPixels;
    const std::size_t rest = dst.rowPixels % kV210GroupPixels;
    RowUnpacker rows(unpack, kPlanar16, dst.goPastCache(src, src.height));
    for (unsigned r = 0; r < src.height; ++r) {
        const Planes row = dst.row(r, r);
        rows.row(row, src.row(r), whole);
        unpackPart(unpack, behind(row, whole), src.row(r) + whole * kV210GroupBytes, rest);
    }
}

void unpack420(const Planes16& dst, const V210Rows& src, simd::Justify justify) {
    PairAverager pairs(unpackKernel(justify), dst.rowPixels, dst.goPastCache(src, halfRows(src.height)));
    for (unsigned r = 1; r < src.height; r += 2) {
        pairs.rows(dst.row(r - 1, r / 2), dst.row(r, r / 2), src.row(r - 1), src.row(r));
    }
    if (src.height % 2 != 0) {
        const unsigned last = src.height - 1;
        unpack422({dst.row(last, last / 2), dst.lumaPitch, dst.chromaPitch, dst.rowPixels},
                  {src.row(last), 1, src.pitch}, justify);
    }
}

} // namespace fikleipa
