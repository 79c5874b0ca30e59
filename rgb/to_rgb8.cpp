#include "rgb/to_rgb8.h"

#include "core/planes.h"
#include "rgb/layout.h"
#include "rgb/matrix.h"
#include "simd/apart.h"
#include "simd/kernels.h"

#include <algorithm>
#include <array>

namespace fikleipa {

simd::Samples8 SourceFrame8::samples() const {
    if (planar) return biPlanar ? simd::Samples8::BiPlanar : simd::Samples8::Planar;

    return simd::packedSamples(y, cb, cr);
}

namespace {

struct Destination {
    unsigned pitch;
    bool bottomUp;
    unsigned pairBytes; // in each plane
    // Where kernels do not go past the cache themselves, chunks may. There arithmetic and memory take turns, which pays
    // where the row above is next, or where rows begin within cache lines.
    bool byChunks = bottomUp;
};

// Has fill(to, y, cb, cr, count) write `count` pairs of rows to pointers of theirs.
template <std::size_t kPlanes, class Fill>
void eachRow(const std::array<std::uint8_t*, kPlanes>& planes, const Destination& dst, const SourceFrame8& s,
             Fill fill) {
    if (s.empty()) return;
    std::array<RowSpan, kPlanes> written;
    std::array<unsigned, kPlanes> pairBytes;
    pairBytes.fill(dst.pairBytes);
    for (std::size_t p = 0; p < kPlanes; ++p) written[p] = {planes[p], s.pairs() * dst.pairBytes, dst.pitch, s.height};
    RowWriter<kPlanes> rows(dst.byChunks && goesPastCache(written), pairBytes);
    const simd::PairBytes step = simd::pairBytes(s.samples());
    eachSourceRow(s, [&](unsigned r, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) {
        auto row = planes;
        for (std::uint8_t*& plane : row) plane += destinationOffset(r, s.height, dst.pitch, dst.bottomUp);
        rows.write(row, s.pairs(), [&](const auto& to, std::size_t first, std::size_t count) {
            fill(to, y + first * step.luma, cb + first * step.chroma, cr + first * step.chroma, count);
        });
    });
}

void toPacked(std::uint8_t* start, const Destination& dst, const SourceFrame8& s,
              simd::ToRgbKernel<simd::ToRgbRow> kernel, const simd::ToRgbRow& coefficients) {
    eachRow<1>({start}, dst, s,
               [&](const auto& to, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                   std::size_t count) { kernel(to[0], y, cb, cr, count, coefficients); });
}

// By a kernel of the level in use. With an odd width the surplus of a plane of one row may lie on the row in hand of
// the next plane. What comes to be there shows in which order pairs are written, so that such rows are the portable
// kernel's.
template <class Kernels>
unsigned toPlanes(const RgbPlanes& dst, unsigned dstPitch, PXYCBCRRgbType rgbType, const SourceFrame8& s,
                  unsigned sampleBytes, Kernels simd::ToRgb8Kernels::*kernels, const simd::ToRgbRow& coefficients) {
    const std::size_t rowBytes = 2 * sampleBytes * s.pairs();
    const bool apart = simd::allApart({{dst.r, rowBytes}, {dst.g, rowBytes}, {dst.b, rowBytes}});
    const simd::Level level = apart ? simd::activeLevel() : simd::Level::Portable;
    const auto kernel = (simd::kernelsAt(level).rgb8.*kernels)[static_cast<unsigned>(s.samples())];
    eachRow<3>({dst.r, dst.g, dst.b}, {dstPitch, isBottomUp(rgbType), 2 * sampleBytes}, s,
               [&](const auto& to, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                   std::size_t count) { kernel(to[0], to[1], to[2], y, cb, cr, count, coefficients); });
    return nominalSize(s.width, s.height, 1);
}

// In double precision rows go by chunks of words, which stay in the first-level cache, to what is made of words.
class FloatRows {
public:
    FloatRows(const SourceFrame8& source, PXYCBCRMatrix matrix)
        : toWords_(simd::kernels().rgb8.toWordsFloat[static_cast<unsigned>(source.samples())]),
          row_(toRgb8FloatRow(matrix)), steps_(simd::pairBytes(source.samples())) {}

    // Calls put(x, pixels, r, g, b) with the words from pixel x of `pairs` pairs on.
    template <class Put>
    void eachChunk(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pairs, Put put) {
        for (std::size_t i = 0; i < pairs; i += kChunkPairs) {
            const std::size_t count = std::min(kChunkPairs, pairs - i);
            toWords_(r_.data(), g_.data(), b_.data(), y + i * steps_.luma, cb + i * steps_.chroma,
                     cr + i * steps_.chroma, count, row_);
            put(2 * i, 2 * count, r_.data(), g_.data(), b_.data());
        }
    }

private:
    static constexpr std::size_t kChunkPairs = 512;
    using Words = std::array<std::uint8_t, 4 * kChunkPairs>;

    simd::ToPlanesKernel<simd::ToRgbFloatRow> toWords_;
    const simd::ToRgbFloatRow& row_;
    simd::PairBytes steps_;
    alignas(64) Words r_; // NOLINT(*-member-init): written before it is read
    alignas(64) Words g_; // NOLINT(*-member-init)
    alignas(64) Words b_; // NOLINT(*-member-init)
};

template <class Format>
unsigned index(Format format) {
    return static_cast<unsigned>(format);
}

} // namespace

void toRgb8(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, const SourceFrame8& source, PXYCBCRMatrix matrix,
            simd::Rgb8 format) {
    const simd::ToRgb8Kernels& kernels = simd::kernels().rgb8;
    const unsigned pixelBytes = bytesPerPixel(format);
    const unsigned pairBytes = 2 * pixelBytes;
    // Pixels of two bytes only gain where the row above is next.
    const bool gains = pixelBytes > 2 || bottomUp;
    const bool aligned = (reinterpret_cast<std::uintptr_t>(dst) | dstPitch) % simd::kCacheLine == 0;
    const bool pastCache = gains && aligned && !source.empty() &&
                           goesPastCache({{dst, source.pairs() * pairBytes, dstPitch, source.height}});
    const auto kernel = (pastCache ? kernels.toRgbPast : kernels.toRgb)[index(source.samples())][index(format)];
    toPacked(dst, {dstPitch, bottomUp, pairBytes, gains && !aligned}, source, kernel, toRgb8Row(matrix));
    if (pastCache) simd::finishStreaming();
}

} // namespace fikleipa

using namespace fikleipa;

unsigned int cycbcr_ToRGBInt(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                             unsigned int width, unsigned int height, unsigned int dstPitch, unsigned int /*srcPitch*/,
                             PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType, int fullChromaRows, int planar,
                             unsigned int bitsPerPixel, unsigned int /*reserved*/) {
    const SourceFrame8 source{y, cb, cr, width, height, planar != 0, fullChromaRows != 0};
    if (const auto format = rgb8Layout(rgbType, bitsPerPixel)) {
        toRgb8(dst, dstPitch, isBottomUp(rgbType), source, matrix, *format);
    }
    return nominalSize(width, height, nominalBytes8(bitsPerPixel));
}

unsigned int cycbcr_ToRGB(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                          unsigned int width, unsigned int height, unsigned int dstPitch, unsigned int srcPitch,
                          PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType, int fullChromaRows, int planar,
                          unsigned int bitsPerPixel, unsigned int reserved) {
    return cycbcr_ToRGBInt(dst, y, cb, cr, width, height, dstPitch, srcPitch, matrix, rgbType, fullChromaRows, planar,
                           bitsPerPixel, reserved);
}

unsigned int cycbcrBi_ToRGBInt(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                               unsigned int width, unsigned int height, unsigned int dstPitch,
                               unsigned int /*srcPitch*/, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                               int fullChromaRows, int planar, unsigned int bitsPerPixel, unsigned int /*reserved*/) {
    const SourceFrame8 source{y, cb, cr, width, height, planar != 0, fullChromaRows != 0, true};
    if (const auto format = rgb8Layout(rgbType, bitsPerPixel)) {
        toRgb8(dst, dstPitch, isBottomUp(rgbType), source, matrix, *format);
    }
    return nominalSize(width, height, nominalBytes8(bitsPerPixel));
}

unsigned int cycbcr_ToRGBFloat(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                               unsigned int width, unsigned int height, unsigned int dstPitch,
                               unsigned int /*srcPitch*/, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                               int fullChromaRows, int planar, unsigned int bitsPerPixel, unsigned int /*reserved*/) {
    const SourceFrame8 source{y, cb, cr, width, height, planar != 0, fullChromaRows != 0};
    if (const auto format = rgb8Layout(rgbType, bitsPerPixel)) {
        const unsigned pixelBytes = bytesPerPixel(*format);
        const auto pack = simd::kernels().rgbWords.toRgb8[index(*format)];
        FloatRows rows(source, matrix);
        eachRow<1>({dst}, {dstPitch, isBottomUp(rgbType), 2 * pixelBytes}, source,
                   [&](const auto& to, const std::uint8_t* fromY, const std::uint8_t* u, const std::uint8_t* v,
                       std::size_t pairs) {
                       rows.eachChunk(fromY, u, v, pairs,
                                      [&](std::size_t x, std::size_t pixels, const std::uint8_t* r,
                                          const std::uint8_t* g,
                                          const std::uint8_t* b) { pack(to[0] + x * pixelBytes, r, g, b, pixels); });
                   });
    }
    return nominalSize(width, height, nominalBytes8(bitsPerPixel));
}

unsigned int cycbcr_ToRGBInt16(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                               unsigned int width, unsigned int height, unsigned int dstPitch,
                               unsigned int /*srcPitch*/, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                               int fullChromaRows, int planar, unsigned int bitsPerPixel, unsigned int /*reserved*/) {
    const SourceFrame8 source{y, cb, cr, width, height, planar != 0, fullChromaRows != 0};
    if (const auto format = rgb16Layout(rgbType, bitsPerPixel)) {
        const auto& kernels = simd::kernels().rgb8.toRgb16;
        toPacked(dst, {dstPitch, isBottomUp(rgbType), 2 * bytesPerPixel(*format)}, source,
                 kernels[index(source.samples())][index(*format)], toRgb16Row(matrix));
    }
    return nominalSize(width, height, nominalBytes16(bitsPerPixel));
}

unsigned int cycbcr_ToRGBPlanarInt(unsigned char* r, unsigned char* g, unsigned char* b, unsigned char* y,
                                   unsigned char* cb, unsigned char* cr, unsigned int width, unsigned int height,
                                   unsigned int dstPitch, unsigned int /*ignored*/, PXYCBCRMatrix matrix,
                                   PXYCBCRRgbType rgbType, int fullChromaRows, int planar, unsigned int /*reserved*/) {
    const SourceFrame8 source{y, cb, cr, width, height, planar != 0, fullChromaRows != 0};
    return toPlanes({r, g, b}, dstPitch, rgbType, source, 1, &simd::ToRgb8Kernels::toPlanes, toRgb8Row(matrix));
}

unsigned int cycbcr_ToRGBPlanar(unsigned char* r, unsigned char* g, unsigned char* b, unsigned char* y,
                                unsigned char* cb, unsigned char* cr, unsigned int width, unsigned int height,
                                unsigned int dstPitch, unsigned int ignored, PXYCBCRMatrix matrix,
                                PXYCBCRRgbType rgbType, int fullChromaRows, int planar, unsigned int reserved) {
    return cycbcr_ToRGBPlanarInt(r, g, b, y, cb, cr, width, height, dstPitch, ignored, matrix, rgbType, fullChromaRows,
                                 planar, reserved);
}

unsigned int cycbcr_ToRGBPlanarFloat(unsigned char* r, unsigned char* g, unsigned char* b, unsigned char* y,
                                     unsigned char* cb, unsigned char* cr, unsigned int width, unsigned int height,
                                     unsigned int dstPitch, unsigned int /*ignored*/, PXYCBCRMatrix matrix,
                                     PXYCBCRRgbType rgbType, int fullChromaRows, int planar,
                                     unsigned int /*reserved*/) {
    const SourceFrame8 source{y, cb, cr, width, height, planar != 0, fullChromaRows != 0};
    const auto toBytes = simd::kernels().rgbWords.toBytes;
    FloatRows rows(source, matrix);
    eachRow<3>({r, g, b}, {dstPitch, isBottomUp(rgbType), 2}, source,
               [&](const auto& to, const std::uint8_t* fromY, const std::uint8_t* u, const std::uint8_t* v,
                   std::size_t pairs) {
                   rows.eachChunk(fromY, u, v, pairs,
                                  [&](std::size_t x, std::size_t pixels, const std::uint8_t* red,
                                      const std::uint8_t* green, const std::uint8_t* blue) {
                                      toBytes(to[0] + x, red, pixels);
                                      toBytes(to[1] + x, green, pixels);
                                      toBytes(to[2] + x, blue, pixels);
                                  });
               });
    return nominalSize(width, height, 1);
}

unsigned int cycbcr_ToRGBPlanarInt16(unsigned char* r, unsigned char* g, unsigned char* b, unsigned char* y,
                                     unsigned char* cb, unsigned char* cr, unsigned int width, unsigned int height,
                                     unsigned int dstPitch, unsigned int /*ignored*/, PXYCBCRMatrix matrix,
                                     PXYCBCRRgbType rgbType, int fullChromaRows, int planar,
                                     unsigned int /*reserved*/) {
    const SourceFrame8 source{y, cb, cr, width, height, planar != 0, fullChromaRows != 0};
    return toPlanes({r, g, b}, dstPitch, rgbType, source, 2, &simd::ToRgb8Kernels::toPlanes16, toRgb16Row(matrix));
}
