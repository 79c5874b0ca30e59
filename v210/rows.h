// Rows of v210 by way of the kernels that pack and unpack them, past the cache where they go there.
#pragma once

#include "core/planes.h"
#include "core/rows.h"
#include "simd/v210.h"
#include "v210/pitch.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace fikleipa {

struct V210Rows {
    unsigned char* start;
    unsigned height;
    unsigned pitch;

    unsigned char* row(unsigned r) const { return start + r * pitch; }

    std::array<RowSpan, 1> spans(std::size_t groups) const {
        return {{{start, groups * simd::kV210GroupBytes, pitch, height}}};
    }
};

// What the samples of a group take up in a row of luma and in each of chroma.
struct GroupBytes {
    unsigned luma;
    unsigned chroma;

    constexpr unsigned lumaOfPair() const { return luma / simd::kV210GroupPairs; }
    constexpr unsigned chromaOfPair() const { return chroma / simd::kV210GroupPairs; }
};
inline constexpr GroupBytes kPacked8{12, 12};
inline constexpr GroupBytes kPlanar8{6, 3};
inline constexpr GroupBytes kPacked16{24, 24};
inline constexpr GroupBytes kPlanar16{12, 6};
inline constexpr GroupBytes kPlanar444{12, 12};

// Rows of three planes.
struct SampleRows {
    Planes start;
    unsigned lumaPitch;
    unsigned chromaPitch;
    unsigned height;
    unsigned chromaRows;

    std::array<RowSpan, 3> pairSpans(std::size_t pairs, const GroupBytes& bytes) const {
        return {{{start.y, pairs * bytes.lumaOfPair(), lumaPitch, height},
                 {start.cb, pairs * bytes.chromaOfPair(), chromaPitch, chromaRows},
                 {start.cr, pairs * bytes.chromaOfPair(), chromaPitch, chromaRows}}};
    }

    // Of so many pairs that a row is given, those that the next row does not overwrite.
    std::size_t lastingPairs(std::size_t pairs, const GroupBytes& bytes) const {
        const std::size_t fit = lumaPitch / bytes.lumaOfPair();
        const bool exact = fit * bytes.lumaOfPair() == lumaPitch && fit * bytes.chromaOfPair() == chromaPitch;
        return exact && fit < pairs && pairs <= 2 * fit ? fit : pairs;
    }
};

// Has rows written: calls write(first, end, pairs, pastCache) for those from `first` to before `end`. Past the cache go
// the pairs that last, which by themselves lie apart from all else. What the last row has beyond them may lie on the
// start of another plane, so that row is written after all others.
template <class Write>
void writeRows(unsigned rows, std::size_t pairs, std::size_t lasting, bool pastCache, Write write) {
    if (!pastCache || lasting == pairs) {
        write(0U, rows, pairs, pastCache);
        return;
    }
    write(0U, rows - 1, lasting, true);
    write(rows - 1, rows, pairs, false);
}

// Where row r of a packed 8-bit source of Tov210() begins. Rows that follow one another without a gap are not looked
// for by their number: each begins where the last group of the one before it ended, so that they drift where the width
// is not a multiple of six. Deliberate.
constexpr std::size_t packedOffset(unsigned r, unsigned width, unsigned srcPitch) {
    return srcPitch == 2 * width ? r * v210Groups(width) * kPacked8.luma : std::size_t{r * srcPitch};
}

class RowPacker {
public:
    RowPacker(simd::PackKernel pack, const GroupBytes& bytes, bool pastCache)
        : pack_(pack), bytes_(bytes), rows_(pastCache, {simd::kV210GroupBytes}) {}

    void row(unsigned char* dst, const Planes& src, std::size_t groups) {
        rows_.write({dst}, groups, [&](const auto& to, std::size_t first, std::size_t count) {
            const Planes from = src.at(first * bytes_.luma, first * bytes_.chroma);
            pack_(to[0], from.y, from.cb, from.cr, count);
        });
    }

private:
    simd::PackKernel pack_;
    GroupBytes bytes_;
    RowWriter<1> rows_;
};

// The groups that hold `pairs` pairs of pixels, and where a pair's group begins in a row.
constexpr std::size_t groupsOf(std::size_t pairs) {
    return (pairs + simd::kV210GroupPairs - 1) / simd::kV210GroupPairs;
}
inline const unsigned char* groupOf(const unsigned char* row, std::size_t pair) {
    return row + pair / simd::kV210GroupPairs * simd::kV210GroupBytes;
}

static_assert(kPacked16.luma <= RowWriter<1>::kBehind); // the room that a last group has past the cache

// Unpacks pairs of pixels into planes, from the start of a group on.
class PairsUnpacker {
public:
    // A RowWriter's chunks past the cache have room for the whole of a last group.
    PairsUnpacker(simd::UnpackKernel unpack, const GroupBytes& bytes, bool pastCache)
        : unpack_(unpack), bytes_(bytes), roomBehind_(pastCache) {}

    void operator()(const Planes& dst, const unsigned char* src, std::size_t pairs) const {
        const std::size_t groups = roomBehind_ ? groupsOf(pairs) : pairs / simd::kV210GroupPairs;
        unpack_(dst.y, dst.cb, dst.cr, src, groups);
        const std::size_t done = groups * simd::kV210GroupPairs;
        if (done < pairs) unpackPart(behind(dst, done), groupOf(src, done), pairs - done);
    }

    Planes behind(const Planes& row, std::size_t pairs) const {
        return row.at(pairs * bytes_.lumaOfPair(), pairs * bytes_.chromaOfPair());
    }

private:
    // A group of which not all is wanted goes by way of a whole one.
    void unpackPart(const Planes& dst, const unsigned char* src, std::size_t pairs) const {
        std::array<unsigned char, kPlanar444.luma> y;
        std::array<unsigned char, kPlanar444.chroma> cb;
        std::array<unsigned char, kPlanar444.chroma> cr;
        unpack_(y.data(), cb.data(), cr.data(), src, 1);
        std::memcpy(dst.y, y.data(), pairs * bytes_.lumaOfPair());
        std::memcpy(dst.cb, cb.data(), pairs * bytes_.chromaOfPair());
        std::memcpy(dst.cr, cr.data(), pairs * bytes_.chromaOfPair());
    }

    simd::UnpackKernel unpack_;
    GroupBytes bytes_;
    bool roomBehind_;
};

// Chunks of as many pairs, or of multiples, are whole groups.
inline constexpr std::size_t kUnpackedPairs = simd::kV210GroupPairs * simd::kCacheLine;

// Into planes. A plane whose pointer is null is left out.
class RowUnpacker {
public:
    RowUnpacker(simd::UnpackKernel unpack, const GroupBytes& bytes, bool pastCache)
        : unpack_(unpack, bytes, pastCache),
          rows_(pastCache, {bytes.lumaOfPair(), bytes.chromaOfPair(), bytes.chromaOfPair()}, kUnpackedPairs) {}

    void row(const Planes& dst, const unsigned char* src, std::size_t pairs) {
        rows_.write({dst.y, dst.cb, dst.cr}, pairs, [&](const auto& to, std::size_t first, std::size_t count) {
            unpack_({to[0], to[1], to[2]}, groupOf(src, first), count);
        });
    }

private:
    PairsUnpacker unpack_;
    RowWriter<3> rows_;
};

} // namespace fikleipa
