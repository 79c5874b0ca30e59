// The engine behind every converter to RGB from YCbCr of more than 8 bits.
//
// A row goes in chunks: samples of any source where they lie, or unpacked into the first-level cache, then pixels. v210
// becomes pixels without samples in between where there are kernels for that.
#pragma once

#include "core/rows.h"
#include "rgb/deep_source.h"
#include "rgb/layout.h"
#include "simd/kernels.h"

#include <array>
#include <type_traits>

namespace fikleipa {

template <std::size_t kPlanes>
using Pointers = std::array<std::uint8_t*, kPlanes>;

template <class Source, class Row>
class DeepToRgb {
public:
    DeepToRgb(const Source& source, const Row& row) : source_(source), row_(row) {}

    // What converts samples and, where there is something, v210 itself.
    struct Kernels {
        simd::DeepToRgbKernel<Row> ofSamples;
        simd::V210ToRgbKernel<Row> ofV210 = nullptr;

        void convert(const Pointers<1>& to, const ChunkSamples& s, std::size_t pixels, const Row& row) const {
            ofSamples(to[0], s.y, s.cb, s.cr, pixels, row);
        }
        void convert(const Pointers<1>& to, const std::uint8_t* v210, std::size_t pixels, const Row& row) const {
            ofV210(to[0], v210, pixels, row);
        }
    };
    struct PlanesKernels {
        simd::DeepToPlanesKernel ofSamples;
        simd::V210ToPlanesKernel ofV210 = nullptr;

        void convert(const Pointers<3>& to, const ChunkSamples& s, std::size_t pixels, const Row& row) const {
            ofSamples(to[0], to[1], to[2], s.y, s.cb, s.cr, pixels, row);
        }
        void convert(const Pointers<3>& to, const std::uint8_t* v210, std::size_t pixels, const Row& row) const {
            ofV210(to[0], to[1], to[2], v210, pixels, row);
        }
    };

    void toPixels(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, std::size_t pixelBytes, const Kernels& kernels) {
        eachChunk<1>({dst}, dstPitch, bottomUp, pixelBytes, kernels);
    }

    // With kernels for large frames whose rows begin cache lines, as its chunks then do.
    void toPixels(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, std::size_t pixelBytes, const Kernels& kernels,
                  const Kernels& pastCache) {
        const bool aligned = (reinterpret_cast<std::uintptr_t>(dst) | dstPitch) % simd::kCacheLine == 0;
        if (bottomUp || !aligned || !goesPastCache({{dst, source_.pixels() * pixelBytes, dstPitch, source_.height}})) {
            toPixels(dst, dstPitch, bottomUp, pixelBytes, kernels);
            return;
        }
        toPixels(dst, dstPitch, bottomUp, pixelBytes, pastCache);
        simd::finishStreaming();
    }

    void toPlanes(const RgbPlanes& dst, unsigned dstPitch, bool bottomUp, std::size_t sampleBytes,
                  const PlanesKernels& kernels) {
        eachChunk<3>({dst.r, dst.g, dst.b}, dstPitch, bottomUp, sampleBytes, kernels);
    }

private:
    template <std::size_t kPlanes, class AnyKernels>
    void eachChunk(const Pointers<kPlanes>& planes, unsigned dstPitch, bool bottomUp, std::size_t pixelBytes,
                   const AnyKernels& kernels) {
        if (source_.pixels() == 0) return;
        std::array<RowSpan, kPlanes> written;
        std::array<unsigned, kPlanes> unitBytes;
        unitBytes.fill(static_cast<unsigned>(pixelBytes));
        for (std::size_t p = 0; p < kPlanes; ++p) {
            written[p] = {planes[p], source_.pixels() * pixelBytes, dstPitch, source_.height};
        }
        RowWriter<kPlanes> rows(bottomUp && goesPastCache(written), unitBytes, 4 * kWholePixels);
        for (unsigned r = 0; r < source_.height; ++r) {
            auto row = planes;
            for (std::uint8_t*& plane : row) plane += destinationOffset(r, source_.height, dstPitch, bottomUp);
            rows.write(row, source_.pixels(), [&](const auto& to, std::size_t first, std::size_t pixels) {
                for (std::size_t x = 0; x < pixels;) {
                    auto at = to;
                    for (std::uint8_t*& plane : at) plane += x * pixelBytes;
                    x += convertChunk(at, r, first + x, pixels - x, kernels);
                }
            });
        }
    }

    // Converts some of the pixels that are left from pixel x of a row on, and returns how many.
    template <std::size_t kPlanes, class AnyKernels>
    std::size_t convertChunk(const Pointers<kPlanes>& to, unsigned r, std::size_t x, std::size_t left,
                             const AnyKernels& kernels) {
        if constexpr (std::is_same_v<Source, V210Source>) {
            if (kernels.ofV210 != nullptr) {
                kernels.convert(to, source_.groups(r, x), left, row_);
                return left;
            }
        }
        const std::size_t count = source_.chunk(left);
        kernels.convert(to, source_.samples(r, x, count, room_), count, row_);
        return count;
    }

    Source source_;
    Row row_;
    ChunkRoom room_; // NOLINT(*-member-init): written before it is read
};

} // namespace fikleipa
