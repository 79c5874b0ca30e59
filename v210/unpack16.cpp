#include "v210/unpack16.h"

#include "simd/kernels.h"

#include <array>
#include <cstring>

namespace fikleipa {
namespace {

using simd::kV210GroupPairs;

simd::UnpackKernel unpackKernel(simd::Justify justify) {
    const auto& kernels = simd::kernels().v210.unpack16[static_cast<unsigned>(justify)];
    return kernels[static_cast<unsigned>(simd::Samples16::Planar)];
}

// The luma of a row's odd last pixel.
void unpackOdd(simd::UnpackKernel unpack, const Planes& dst, const unsigned char* src, std::size_t pixels) {
    if (pixels % 2 == 0) return;
    const std::size_t pairs = pixels / 2;
    std::array<unsigned char, kPlanar16.luma> y;
    std::array<unsigned char, kPlanar16.chroma> cb;
    std::array<unsigned char, kPlanar16.chroma> cr;
    unpack(y.data(), cb.data(), cr.data(), groupOf(src, pairs), 1);
    std::memcpy(dst.y + pairs * kPlanar16.lumaOfPair(), &y[pairs % kV210GroupPairs * kPlanar16.lumaOfPair()], 2);
}

// Unpacks two rows at a time, which share the mean of their chroma.
class PairAverager {
public:
    PairAverager(simd::UnpackKernel unpack, std::size_t pairs, bool pastCache)
        : unpack_(unpack, kPlanar16, pastCache), pairs_(pairs),
          rows_(pastCache, {kPlanar16.lumaOfPair(), kPlanar16.chromaOfPair(), kPlanar16.chromaOfPair()},
                kUnpackedPairs) {}

    // Of the upper row, luma alone is written.
    void rows(const Planes& upper, const Planes& lower, const unsigned char* upperSrc, const unsigned char* lowerSrc) {
        for (std::size_t i = 0; i < pairs_; i += kPiecePairs) {
            const std::size_t count = std::min(pairs_ - i, kPiecePairs);
            unpackUpper(unpack_.behind(upper, i).y, groupOf(upperSrc, i), count);
            unpackLower(unpack_.behind(lower, i), groupOf(lowerSrc, i), count);
        }
    }

private:
    void unpackUpper(unsigned char* luma, const unsigned char* src, std::size_t pairs) {
        rows_.write({luma, nullptr, nullptr}, pairs, [&](const auto& to, std::size_t first, std::size_t count) {
            const std::size_t at = first * kPlanar16.chromaOfPair();
            unpack_({to[0], &upperCb_[at], &upperCr_[at]}, groupOf(src, first), count);
        });
    }

    void unpackLower(const Planes& dst, const unsigned char* src, std::size_t pairs) {
        rows_.write({dst.y, dst.cb, dst.cr}, pairs, [&](const auto& to, std::size_t first, std::size_t count) {
            const std::size_t at = first * kPlanar16.chromaOfPair();
            unpack_({to[0], lowerCb_.data(), lowerCr_.data()}, groupOf(src, first), count);
            average_(to[1], &upperCb_[at], lowerCb_.data(), count);
            average_(to[2], &upperCr_[at], lowerCr_.data(), count);
        });
    }

    // Chroma that stays in cache.
    static constexpr std::size_t kPiecePairs = std::size_t{1280} * kV210GroupPairs;
    using Chroma = std::array<unsigned char, kPiecePairs * kPlanar16.chromaOfPair()>;

    PairsUnpacker unpack_;
    simd::AverageKernel average_ = simd::kernels().v210.average16;
    std::size_t pairs_;
    RowWriter<3> rows_;
    Chroma upperCb_{}, upperCr_{}, lowerCb_{}, lowerCr_{};
};

} // namespace

void unpack422(const Planes16& dst, const V210Rows& src, simd::Justify justify) {
    if (dst.rowPixels == 0) return;
    const simd::UnpackKernel unpack = unpackKernel(justify);
    const std::size_t lasting = dst.lastingPairs(dst.pairs());
    writeRows(src.height, dst.pairs(), lasting, dst.goPastCache(src.height, src.height, lasting),
              [&](unsigned first, unsigned end, std::size_t pairs, bool past) {
                  RowUnpacker rows(unpack, kPlanar16, past);
                  for (unsigned r = first; r < end; ++r) {
                      rows.row(dst.row(r, r), src.row(r), pairs);
                      unpackOdd(unpack, dst.row(r, r), src.row(r), dst.rowPixels);
                  }
              });
}

void unpack420(const Planes16& dst, const V210Rows& src, simd::Justify justify) {
    if (dst.rowPixels == 0) return;
    const simd::UnpackKernel unpack = unpackKernel(justify);
    const std::size_t lasting = dst.lastingPairs(dst.pairs());
    writeRows(src.height / 2, dst.pairs(), lasting, dst.goPastCache(src.height, halfRows(src.height), lasting),
              [&](unsigned first, unsigned end, std::size_t pairs, bool past) {
                  PairAverager averager(unpack, pairs, past);
                  for (unsigned r = 2 * first; r < 2 * end; r += 2) {
                      const Planes upper = dst.row(r, r / 2);
                      const Planes lower = dst.row(r + 1, r / 2);
                      averager.rows(upper, lower, src.row(r), src.row(r + 1));
                      unpackOdd(unpack, upper, src.row(r), dst.rowPixels);
                      unpackOdd(unpack, lower, src.row(r + 1), dst.rowPixels);
                  }
              });
    if (src.height % 2 != 0) {
        const unsigned last = src.height - 1;
        unpack422({dst.row(last, last / 2), dst.lumaPitch, dst.chromaPitch, dst.rowPixels},
                  {src.row(last), 1, src.pitch}, justify);
    }
}

} // namespace fikleipa
