// Rows that a conversion fills, by way of the cache or past it.
#pragma once

#include "simd/prefetch.h"
#include "simd/stream.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <numeric>

namespace fikleipa::simd {

// What a row is made of: so many bytes of a source's row. The next row's begin so far from them.
struct SourceRow {
    const std::uint8_t* begin;
    std::size_t bytes;
    std::ptrdiff_t next;
};

// Copies rows that need no conversion.
class RowCopy {
public:
    using Copy = void (*)(void* destination, const void* source, std::size_t bytes);

    RowCopy(bool pastCache, Copy viaCache) : stream_(pastCache ? streamKernel() : nullptr), viaCache_(viaCache) {}
    ~RowCopy() {
        if (stream_ != nullptr) finishStreaming();
    }
    RowCopy(const RowCopy&) = delete;
    RowCopy(RowCopy&&) = delete;
    RowCopy& operator=(const RowCopy&) = delete;
    RowCopy& operator=(RowCopy&&) = delete;

    void operator()(std::uint8_t* dst, const std::uint8_t* src, std::size_t bytes) const {
        stream_ != nullptr ? streamBytes(stream_, dst, src, bytes) : viaCache_(dst, src, bytes);
    }

    // The next row lies `next` bytes behind it, which memory does not expect by itself.
    void operator()(std::uint8_t* dst, const SourceRow& from) const {
        if (stream_ != nullptr) fetchAhead(from.begin, from.next, from.bytes);
        (*this)(dst, from.begin, from.bytes);
    }

private:
    StreamKernel stream_;
    Copy viaCache_;
};

// Has rows filled, of one plane or of several at a time.
//
// To write past the cache, a conversion fills chunks that stay in the first-level cache. From there whole cache lines
// go out, which costs less than a second way for every kernel to write and asks for no alignment.
template <std::size_t kPlanes>
class RowWriter {
public:
    using Rows = std::array<std::uint8_t*, kPlanes>;

    static constexpr std::size_t kBehind = kCacheLine;

    // A row is units, such as pairs of pixels, which take so many bytes in each plane. A chunk is whole multiples of
    // `granularity` units, one of which fits into a chunk and is whole cache lines.
    RowWriter(bool pastCache, const std::array<unsigned, kPlanes>& unitBytes, std::size_t granularity = 64)
        : stream_(pastCache ? streamKernel() : nullptr) {
        const auto bytes = std::accumulate(unitBytes.begin() + 1, unitBytes.end(), std::size_t{unitBytes.front()});
        chunk_ = std::max(kChunkBytes / bytes / granularity, std::size_t{1}) * granularity;
        std::uint8_t* room = room_.data();
        for (std::size_t p = 0; p < kPlanes; ++p) {
            planes_[p] = {room, unitBytes[p]};
            room += chunk_ * unitBytes[p] + kBeside;
        }
    }
    ~RowWriter() {
        if (stream_ == nullptr) return;
        for (Plane& plane : planes_) plane.finish();
        finishStreaming();
    }
    RowWriter(const RowWriter&) = delete;
    RowWriter(RowWriter&&) = delete;
    RowWriter& operator=(const RowWriter&) = delete;
    RowWriter& operator=(RowWriter&&) = delete;

    // Has fill(to, first, count) write `count` units from number `first` on of a row, those of a plane to to[plane].
    // What a plane without a row gets is dropped, as are, past the cache, up to kBehind bytes behind those units. The
    // end of a row may wait for the next one that shares its last line, or for the destructor.
    template <class Fill>
    void write(const Rows& row, std::size_t units, Fill fill) {
        if (stream_ == nullptr && std::find(row.begin(), row.end(), nullptr) == row.end()) {
            fill(row, std::size_t{0}, units);
            return;
        }
        for (std::size_t p = 0; p < kPlanes; ++p) planes_[p].begin(row[p], stream_);
        for (std::size_t first = 0; first < units; first += chunk_) {
            const std::size_t count = std::min(chunk_, units - first);
            Rows to;
            for (std::size_t p = 0; p < kPlanes; ++p) to[p] = planes_[p].next();
            fill(static_cast<const Rows&>(to), first, count);
            for (Plane& plane : planes_) plane.add(count);
        }
    }

    // The same, and also prefetches the source; pays for one packed row, not for three planes.
    template <class Fill>
    void write(const Rows& row, const SourceRow& from, std::size_t units, Fill fill) {
        write(row, units, [&](const Rows& to, std::size_t first, std::size_t count) {
            fill(to, first, count);
            if (stream_ != nullptr) expect(from, first + count, units);
        });
    }

private:
    // Prefetches what the next chunk is made of, or the next row's first one.
    [[gnu::always_inline]] void expect(const SourceRow& from, std::size_t first, std::size_t units) const {
        const std::size_t bytes = chunk_ < units ? from.bytes * chunk_ / units : from.bytes;
        fetchAhead(from.begin, first < units ? static_cast<std::ptrdiff_t>(from.bytes * first / units) : from.next,
                   bytes);
    }

    // The part of a row that has yet to be written. In its room it lies to cache lines as in the row.
    class Plane {
    public:
        Plane() = default;
        Plane(std::uint8_t* room, std::size_t unitBytes) : room_(room), unitBytes_(unitBytes) {}

        void begin(std::uint8_t* row, StreamKernel stream) {
            written_ = row != nullptr;
            if (!written_ || row == row_ + (end_ - begin_)) return;
            if (stream != nullptr) finish();
            row_ = row;
            stream_ = stream;
            begin_ = end_ = stream == nullptr ? 0 : reinterpret_cast<std::uintptr_t>(row) % kCacheLine;
        }

        // Where to put what comes next.
        std::uint8_t* next() const { return written_ && stream_ == nullptr ? row_ : room_ + end_; }

        void add(std::size_t units) {
            const std::size_t bytes = units * unitBytes_;
            if (!written_) return;
            if (stream_ == nullptr) {
                row_ += bytes;
            } else if (end_ += bytes; end_ >= kCacheLine) {
                writeLines();
            }
        }

        void finish() {
            if (end_ != begin_) put(end_ - begin_);
        }

    private:
        void put(std::size_t bytes) {
            std::memcpy(row_, room_ + begin_, bytes);
            row_ += bytes;
            begin_ += bytes;
        }

        void writeLines() {
            if (begin_ != 0) put(kCacheLine - begin_);
            const std::size_t lines = (end_ - begin_) / kCacheLine;
            stream_(row_, room_ + begin_, lines);
            const std::size_t bytes = lines * kCacheLine;
            row_ += bytes;
            end_ -= begin_ + bytes;
            if (end_ != 0) std::memcpy(room_, room_ + begin_ + bytes, kCacheLine);
            begin_ = 0;
        }

        std::uint8_t* room_ = nullptr;
        std::size_t unitBytes_ = 0;
        StreamKernel stream_ = nullptr;
        bool written_ = false;        // whether the row at hand is
        std::uint8_t* row_ = nullptr; // where the first of what waits goes
        std::size_t begin_ = 0;       // from the start of the room
        std::size_t end_ = 0;
    };

    static constexpr std::size_t kChunkBytes = 4096;
    static constexpr std::size_t kBeside = 3 * kCacheLine; // what does not make a line, before and after

    StreamKernel stream_;
    std::size_t chunk_ = 0; // units
    std::array<Plane, kPlanes> planes_;
    alignas(kCacheLine) std::array<
        std::uint8_t, kChunkBytes + kPlanes * kBeside> room_; // NOLINT(*-member-init): written before it is read
};

} // namespace fikleipa::simd
