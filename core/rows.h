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

// Rows that a conversion reads or writes, as many bytes of each from `start` on.
struct RowSpan {
    const std::uint8_t* start;
    std::uint64_t rowBytes;
    std::uint64_t pitch;
    std::uint64_t rows;

    std::uint64_t bytes() const { return rows == 0 ? 0 : (rows - 1) * pitch + rowBytes; }
    simd::Span span() const { return {start, bytes()}; }
};

// Whether rows are to be written past the cache. They are if they take enough of it; but rows that lie on one another
// or on what is read, or wrap around, are written in the order that shows in the result.
inline bool goesPastCache(std::span<const RowSpan> written, std::span<const RowSpan> read) {
    if (simd::streamKernel() == nullptr) return false;
    const auto wraps = [](const RowSpan& rows) { return rows.bytes() > UINT32_MAX; };
    if (std::any_of(read.begin(), read.end(), wraps)) return false;
    std::uint64_t total = 0;
    for (auto rows = written.begin(); rows != written.end(); ++rows) {
        if (wraps(*rows) || (rows->rows > 1 && rows->pitch < rows->rowBytes)) return false;
        const auto apartFromRows = [&](const RowSpan& other) { return simd::apart(rows->span(), other.span()); };
        if (!std::all_of(written.begin(), rows, apartFromRows)) return false;
        if (!std::all_of(read.begin(), read.end(), apartFromRows)) return false;
        total += rows->rowBytes * rows->rows;
    }
    return total >= simd::kBeyondCache;
}
inline bool goesPastCache(std::initializer_list<RowSpan> written, std::span<const RowSpan> read) {
    return goesPastCache(std::span(written.begin(), written.size()), read);
}
inline bool goesPastCache(std::initializer_list<RowSpan> written, std::initializer_list<RowSpan> read) {
    return goesPastCache(written, std::span(read.begin(), read.size()));
}

} // namespace fikleipa
