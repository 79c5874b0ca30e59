// Rows of frames: in which order they are written, and whether past the cache.
#pragma once

#include "simd/apart.h"
#include "simd/row_writer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace fikleipa {

using simd::RowWriter;

// Where row r of a source goes: the offset of its destination row.
constexpr unsigned destinationOffset(unsigned r, unsigned height, unsigned dstPitch, bool bottomUp) {
    return (bottomUp ? height - 1 - r : r) * dstPitch;
}

// Rows that a conversion writes, as many bytes of each from `start` on.
struct RowSpan {
    const std::uint8_t* start;
    std::uint64_t rowBytes;
    std::uint64_t pitch;
    std::uint64_t rows;

    std::uint64_t bytes() const { return rows == 0 ? 0 : (rows - 1) * pitch + rowBytes; }
    simd::Span span() const { return {start, bytes()}; }
};

// Whether rows are to be written past the cache: if they take enough of it, and no row lies on another one or wraps
// around, since then the order of writing shows in the result.
inline bool goesPastCache(std::span<const RowSpan> written) {
    if (simd::streamKernel() == nullptr) return false;
    std::uint64_t total = 0;
    for (auto rows = written.begin(); rows != written.end(); ++rows) {
        if (rows->bytes() > UINT32_MAX || (rows->rows > 1 && rows->pitch < rows->rowBytes)) return false;
        const auto apartFromRows = [&](const RowSpan& other) { return simd::apart(rows->span(), other.span()); };
        if (!std::all_of(written.begin(), rows, apartFromRows)) return false;
        total += rows->rowBytes * rows->rows;
    }
    return total >= simd::kBeyondCache;
}
inline bool goesPastCache(std::initializer_list<RowSpan> written) {
    return goesPastCache(std::span(written.begin(), written.size()));
}

} // namespace fikleipa
