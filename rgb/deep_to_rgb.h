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
        eachPixelsChunk(dst, dstPitch, bottomUp, pixelBytes,
                        [&](std::uint8_t* to, unsigned r, std::size_t x, std::size_t count) {
                            const ChunkSamples s = source_.samples(r, x, count, room_);
                            kernel(to, s.y, s.cb, s.cr, count, row_);
                        });
    }

    // With a kernel for the pixels of words.
    void toPixelsByWords(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, std::size_t pixelBytes,
                         simd::PackRgbKernel pack) {
        eachPixelsChunk(dst, dstPitch, bottomUp, pixelBytes,
                        [&](std::uint8_t* to, unsigned r, std::size_t x, std::size_t count) {
                            makeWords(r, x, count);
                            pack(to, words_[0].data(), words_[1].data(), words_[2].data(), count);
                        });
    }

    void toBytePlanes(const RgbPlanes& dst, unsigned dstPitch, bool bottomUp) {
        const auto toBytes = simd::kernels().rgbWords.toBytes;
        eachPlanesChunk(dst, dstPitch, bottomUp, 1,
                        [&](const RgbPlanes& to, unsigned r, std::size_t x, std::size_t count) {
                            makeWords(r, x, count);
                            toBytes(to.r, words_[0].data(), count);
                            toBytes(to.g, words_[1].data(), count);
                            toBytes(to.b, words_[2].data(), count);
                        });
    }

    void toWordPlanes(const RgbPlanes& dst, unsigned dstPitch, bool bottomUp) {
        eachPlanesChunk(dst, dstPitch, bottomUp, 2,
                        [&](const RgbPlanes& to, unsigned r, std::size_t x, std::size_t count) {
                            const ChunkSamples s = source_.samples(r, x, count, room_);
                            toWords_(to.r, to.g, to.b, s.y, s.cb, s.cr, count, row_);
                        });
    }

private:
    template <class Convert>
    void eachChunk(Convert convert) const {
        for (std::size_t x = 0; x < source_.pixels(); x += kChunkPixels) {
            convert(x, std::min(kChunkPixels, source_.pixels() - x));
        }
    }

    template <class Convert>
    void eachPixelsChunk(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, std::size_t pixelBytes,
                         Convert convert) const {
        if (source_.pixels() == 0) return;
        RowWriter rows(dst, dstPitch, bottomUp, source_.pixels() * pixelBytes, source_.height);
        for (unsigned r = 0; r < source_.height; ++r) {
            rows.write(r, [&](std::uint8_t* to) {
                eachChunk([&](std::size_t x, std::size_t count) { convert(to + x * pixelBytes, r, x, count); });
            });
        }
    }

    template <class Convert>
    void eachPlanesChunk(const RgbPlanes& dst, unsigned dstPitch, bool bottomUp, std::size_t sampleBytes,
                         Convert convert) const {
        for (unsigned r = 0; r < source_.height; ++r) {
            const std::size_t row = destinationOffset(r, source_.height, dstPitch, bottomUp);
            eachChunk([&](std::size_t x, std::size_t count) {
                const std::size_t at = row + x * sampleBytes;
                convert({dst.r + at, dst.g + at, dst.b + at}, r, x, count);
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
