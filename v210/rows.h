// Rows of v210 by way of the kernels that pack and unpack them, past the cache where they go there.
#pragma once

#include "core/planes.h"
#include "core/rows.h"
#include "simd/v210.h"

#include <array>
#include <cstddef>
#include <cstdint>

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

    std::array<RowSpan, 3> spans(std::size_t groups, const GroupBytes& bytes) const {
        return {{{start.y, groups * bytes.luma, lumaPitch, height},
                 {start.cb, groups * bytes.chroma, chromaPitch, chromaRows},
                 {start.cr, groups * bytes.chroma, chromaPitch, chromaRows}}};
    }
};

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

// Into planes. A plane whose pointer is null is left out.
class RowUnpacker {
public:
    RowUnpacker(simd::UnpackKernel unpack, const GroupBytes& bytes, bool pastCache)
        : unpack_(unpack), rows_(pastCache, {bytes.luma, bytes.chroma, bytes.chroma}) {}

    void row(const Planes& dst, const unsigned char* src, std::size_t groups) {
        rows_.write({dst.y, dst.cb, dst.cr}, groups, [&](const auto& to, std::size_t first, std::size_t count) {
            unpack_(to[0], to[1], to[2], src + first * simd::kV210GroupBytes, count);
        });
    }

private:
    simd::UnpackKernel unpack_;
    RowWriter<3> rows_;
};

} // namespace fikleipa
