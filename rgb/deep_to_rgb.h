// The engine behind every converter to RGB from YCbCr of more than 8 bits.
//
// A chunk of a row goes through row kernels that pass it on in the first-level cache: samples of any source, then
// pixels of the common layouts or words of R, G and B, then what is made of words.
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
    DeepToRgb(const Source& source, simd::ToWordsKernel<Row> toWords, const Row& row)
        : source_(source), toWords_(toWords), row_(row) {}

    // Has words divided by 255, of which the low byte is taken.
    void divideBy255() { divided_ = true; }

    void toPixels(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, std::size_t pixelBytes,
                  simd::DeepToRgbKernel kernel) {
        eachChunk<1>({dst}, dstPitch, bottomUp, pixelBytes,
                     [&](const auto& to, unsigned r, std::size_t x, std::size_t count) {
                         const ChunkSamples s = source_.samples(r, x, count, room_);
                         kernel(to[0], s.y, s.cb, s.cr, count, row_);
                     });
    }

    // With a kernel for the pixels of words.
    void toPixelsByWords(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, std::size_t pixelBytes,
                         simd::PackRgbKernel pack) {
        eachChunk<1>({dst}, dstPitch, bottomUp, pixelBytes,
                     [&](const auto& to, unsigned r, std::size_t x, std::size_t count) {
                         makeWords(r, x, count);
                         pack(to[0], words_[0].data(), words_[1].data(), words_[2].data(), count);
                     });
    }

    void toBytePlanes(const RgbPlanes& dst, unsigned dstPitch, bool bottomUp) {
        const auto toBytes = simd::kernels().rgbWords.toBytes;
        eachChunk<3>({dst.r, dst.g, dst.b}, dstPitch, bottomUp, 1,
                     [&](const auto& to, unsigned r, std::size_t x, std::size_t count) {
                         makeWords(r, x, count);
                         for (std::size_t p = 0; p < to.size(); ++p) toBytes(to[p], words_[p].data(), count);
                     });
    }

    void toWordPlanes(const RgbPlanes& dst, unsigned dstPitch, bool bottomUp) {
        eachChunk<3>({dst.r, dst.g, dst.b}, dstPitch, bottomUp, 2,
                     [&](const auto& to, unsigned r, std::size_t x, std::size_t count) {
                         const ChunkSamples s = source_.samples(r, x, count, room_);
                         toWords_(to[0], to[1], to[2], s.y, s.cb, s.cr, count, row_);
                     });
    }

private:
    // Has convert(to, r, x, count) write `count` pixels of source row r from pixel x on.
    template <std::size_t kPlanes, class Convert>
    void eachChunk(const std::array<std::uint8_t*, kPlanes>& planes, unsigned dstPitch, bool bottomUp,
                   std::size_t pixelBytes, Convert convert) const {
        if (source_.pixels() == 0) return;
        std::array<RowSpan, kPlanes> written;
        std::array<unsigned, kPlanes> unitBytes;
        unitBytes.fill(static_cast<unsigned>(pixelBytes));
        for (std::size_t p = 0; p < kPlanes; ++p) {
            written[p] = {planes[p], source_.pixels() * pixelBytes, dstPitch, source_.height};
        }
        RowWriter<kPlanes> rows(bottomUp && goesPastCache(written, source_.read()), unitBytes, kChunkPixels / 2);
        for (unsigned r = 0; r < source_.height; ++r) {
            auto row = planes;
            for (std::uint8_t*& plane : row) plane += destinationOffset(r, source_.height, dstPitch, bottomUp);
            rows.write(row, source_.pixels(), [&](const auto& to, std::size_t first, std::size_t pixels) {
                for (std::size_t x = 0; x < pixels; x += kChunkPixels) {
                    auto at = to;
                    for (std::uint8_t*& plane : at) plane += x * pixelBytes;
                    convert(at, r, first + x, std::min(kChunkPixels, pixels - x));
                }
            });
        }
    }

    void makeWords(unsigned r, std::size_t x, std::size_t count) {
        const ChunkSamples s = source_.samples(r, x, count, room_);
        toWords_(words_[0].data(), words_[1].data(), words_[2].data(), s.y, s.cb, s.cr, count, row_);
        if (!divided_) return;
        const auto divide255 = simd::kernels().rgbWords.divide255;
        for (ChunkRow& words : words_) divide255(words.data(), words.data(), count);
    }

    Source source_;
    simd::ToWordsKernel<Row> toWords_;
    Row row_;
    bool divided_ = false;
    ChunkRoom room_;                            // NOLINT(*-member-init): written before it is read
    alignas(64) std::array<ChunkRow, 3> words_; // NOLINT(*-member-init)
};

} // namespace fikleipa
