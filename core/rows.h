// Destinations whose rows may run upwards.
#pragma once

#include "simd/stream.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa {

// Where row r of a source goes: the offset of its destination row.
constexpr unsigned destinationOffset(unsigned r, unsigned height, unsigned dstPitch, bool bottomUp) {
    return (bottomUp ? height - 1 - r : r) * dstPitch;
}

// What no cache near the processor holds.
inline constexpr std::size_t kFrameBeyondCache = std::size_t{2} << 20;

// In which order rows are written, of a source that is read from the top.
enum class RowOrder { TopDown, BottomUp, LinesExchanged };

// Vectors that do not write rows from the first to the last wait for memory at every row. So a row
// of a frame that no cache near the processor holds is filled in one that stays in cache, and is written past the cache
// from there.
class RowWriter {
public:
    // `otherBytes`: of the frame's other planes.
    RowWriter(std::uint8_t* dst, unsigned dstPitch, RowOrder order, std::size_t rowBytes, unsigned height,
              std::size_t otherBytes = 0)
        : dst_(dst), rowBytes_(rowBytes), dstPitch_(dstPitch), height_(height), order_(order),
          beyondCache_(order != RowOrder::TopDown && rowBytes <= kCachedRowBytes &&
                       rowBytes * height + otherBytes >= kFrameBeyondCache) {}
    RowWriter(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, std::size_t rowBytes, unsigned height,
              std::size_t otherBytes = 0)
        : RowWriter(dst, dstPitch, bottomUp ? RowOrder::BottomUp : RowOrder::TopDown, rowBytes, height, otherBytes) {}
    ~RowWriter() {
        if (beyondCache_) simd::finishStreaming();
    }
    RowWriter(const RowWriter&) = delete;
    RowWriter(RowWriter&&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;
    RowWriter& operator=(RowWriter&&) = delete;

    // Has fill(row) write the whole of source row r.
    template <class Fill>
    void write(unsigned r, Fill fill) {
        std::uint8_t* const to = dst_ + offset(r);
        if (!beyondCache_) {
            fill(to);
            return;
        }
        fill(row_.data());
        simd::streamBytes(to, row_.data(), rowBytes_);
    }

private:
    unsigned offset(unsigned r) const {
        if (order_ == RowOrder::LinesExchanged) return (r ^ 1) * dstPitch_;
        return destinationOffset(r, height_, dstPitch_, order_ == RowOrder::BottomUp);
    }

    static constexpr std::size_t kCachedRowBytes = 32768;

    std::uint8_t* dst_;
    std::size_t rowBytes_;
    unsigned dstPitch_;
    unsigned height_;
    RowOrder order_;
    bool beyondCache_;
    std::array<std::uint8_t, kCachedRowBytes> row_; // NOLINT(*-member-init): most frames do without it
};

} // namespace fikleipa
