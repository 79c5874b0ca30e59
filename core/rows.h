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

// Vectors that write rows from the last to the first wait for memory at every row. So a row of a frame that no cache
// near the processor holds is filled in one that stays in cache, and is written past the cache from there.
class RowWriter {
public:
    // `otherBytes`: of the frame's other planes.
    RowWriter(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, std::size_t rowBytes, unsigned height,
              std::size_t otherBytes = 0)
        : dst_(dst), rowBytes_(rowBytes), dstPitch_(dstPitch), height_(height), bottomUp_(bottomUp),
          beyondCache_(bottomUp && rowBytes <= kCachedRowBytes && rowBytes * height + otherBytes >= kFrameBeyondCache) {
    }
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
        std::uint8_t* const to = dst_ + destinationOffset(r, height_, dstPitch_, bottomUp_);
        if (!beyondCache_) {
            fill(to);
            return;
        }
        fill(row_.data());
        simd::streamBytes(to, row_.data(), rowBytes_);
    }

private:
    static constexpr std::size_t kFrameBeyondCache = std::size_t{2} << 20;
    static constexpr std::size_t kCachedRowBytes = 32768;

    std::uint8_t* dst_;
    std::size_t rowBytes_;
    unsigned dstPitch_;
    unsigned height_;
    bool bottomUp_;
    bool beyondCache_;
    std::array<std::uint8_t, kCachedRowBytes> row_; // NOLINT(*-member-init): most frames do without it
};

} // namespace fikleipa
