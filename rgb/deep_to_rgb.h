// The engine behind every converter to RGB from YCbCr of more than 8 bits.
//
// A row goes in chunks: samples of any source where they lie, or unpacked into the first-level cache, then pixels.
#pragma once

#include "core/rows.h"
#include "rgb/deep_source.h"
#include "rgb/layout.h"
#include "simd/kernels.h"

#include <algorithm>

namespace fikleipa {

template <class Source, class Row>
class DeepToRgb {
public:
    DeepToRgb(const Source& source, const Row& row) : source_(source), row_(row) {}

    using Kernel = simd::DeepToRgbKernel<Row>;

    void toPixels(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, std::size_t pixelBytes, Kernel kernel) {
        eachChunk<1>({dst}, dstPitch, bottomUp, pixelBytes,
                     [&](const auto& to, const ChunkSamples& s, std::size_t count) {
                         kernel(to[0], s.y, s.cb, s.cr, count, row_);
                     });
    }

    // With a kernel for large frames whose rows begin cache lines, as its chunks then do.
    void toPixels(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, std::size_t pixelBytes, Kernel kernel,
                  Kernel pastCache) {
        const std::array written{RowSpan{dst, source_.pixels() * pixelBytes, dstPitch, source_.height}};
        const bool aligned = (reinterpret_cast<std::uintptr_t>(dst) | dstPitch) % simd::kCacheLine == 0;
        if (bottomUp || !aligned || !goesPastCache(written, source_.read())) {
            toPixels(dst, dstPitch, bottomUp, pixelBytes, kernel);
            return;
        }
        toPixels(dst, dstPitch, bottomUp, pixelBytes, pastCache);
        simd::finishStreaming();
    }

    void toPlanes(const RgbPlanes& dst, unsigned dstPitch, bool bottomUp, std::size_t sampleBytes,
                  simd::DeepToPlanesKernel kernel) {
        eachChunk<3>({dst.r, dst.g, dst.b}, dstPitch, bottomUp, sampleBytes,
                     [&](const auto& to, const ChunkSamples& s, std::size_t count) {
                         kernel(to[0], to[1], to[2], s.y, s.cb, s.cr, count, row_);
                     });
    }

private:
    // Has convert(to, samples, count) write `count` pixels of a chunk.
    template <std::size_t kPlanes, class Convert>
    void eachChunk(const std::array<std::uint8_t*, kPlanes>& planes, unsigned dstPitch, bool bottomUp,
                   std::size_t pixelBytes, Convert convert) {
        if (source_.pixels() == 0) return;
        std::array<RowSpan, kPlanes> written;
        std::array<unsigned, kPlanes> unitBytes;
        unitBytes.fill(static_cast<unsigned>(pixelBytes));
        for (std::size_t p = 0; p < kPlanes; ++p) {
            written[p] = {planes[p], source_.pixels() * pixelBytes, dstPitch, source_.height};
        }
        RowWriter<kPlanes> rows(bottomUp && goesPastCache(written, source_.read()), unitBytes, 4 * kWholePixels);
        for (unsigned r = 0; r < source_.height; ++r) {
            auto row = planes;
            for (std::uint8_t*& plane : row) plane += destinationOffset(r, source_.height, dstPitch, bottomUp);
            rows.write(row, source_.pixels(), [&](const auto& to, std::size_t first, std::size_t pixels) {
                for (std::size_t x = 0; x < pixels;) {
                    const std::size_t count = source_.chunk(pixels - x);
                    auto at = to;
                    for (std::uint8_t*& plane : at) plane += x * pixelBytes;
                    convert(at, source_.samples(r, first + x, count, room_), count);
                    x += count;
                }
            });
        }
    }

    Source source_;
    Row row_;
    ChunkRoom room_; // NOLINT(*-member-init): written before it is read
};

} // namespace fikleipa
