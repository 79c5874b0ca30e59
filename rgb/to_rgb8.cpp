#include "rgb/to_rgb8.h"

#include "core/rows.h"
#include "rgb/layout.h"
#include "rgb/matrix.h"
#include "simd/kernels.h"

#include <algorithm>
#include <array>

namespace fikleipa {

simd::Samples8 SourceFrame8::samples() const {
    if (planar) return biPlanar ? simd::Samples8::BiPlanar : simd::Samples8::Planar;

    return simd::packedSamples(y, cb, cr);
}

namespace {

// Has fill(to, y, cb, cr) write every row.
template <class Fill>
void eachPackedRow(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, const SourceFrame8& s, unsigned pixelBytes,
                   Fill fill) {
    if (s.empty()) return;
    RowWriter rows(dst, dstPitch, bottomUp, 2 * s.pairs() * pixelBytes, s.height);
    eachSourceRow(s, [&](unsigned r, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) {
        rows.write(r, [&](std::uint8_t* to) { fill(to, y, cb, cr); });
    });
}

void toPacked(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, const SourceFrame8& s, unsigned pixelBytes,
              simd::ToRgbKernel<simd::ToRgbRow> kernel, const simd::ToRgbRow& coefficients) {
    eachPackedRow(dst, dstPitch, bottomUp, s, pixelBytes,
                  [&](std::uint8_t* to, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) {
                      kernel(to, y, cb, cr, s.pairs(), coefficients);
                  });
}

// Likewise for planes.
template <class Fill>
unsigned eachRowOfPlanes(const RgbPlanes& dst, unsigned dstPitch, PXYCBCRRgbType rgbType, const SourceFrame8& s,
                         Fill fill) {
    if (!s.empty()) {
        const bool bottomUp = isBottomUp(rgbType);
        eachSourceRow(s, [&](unsigned r, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) {
            const unsigned offset = destinationOffset(r, s.height, dstPitch, bottomUp);
            fill(RgbPlanes{dst.r + offset, dst.g + offset, dst.b + offset}, y, cb, cr);
        });
    }
    return nominalSize(s.width, s.height, 1);
}

unsigned toPlanes(const RgbPlanes& dst, unsigned dstPitch, PXYCBCRRgbType rgbType, const SourceFrame8& s,
                  simd::ToPlanesKernel<simd::ToRgbRow> kernel, const simd::ToRgbRow& coefficients) {
    return eachRowOfPlanes(
        dst, dstPitch, rgbType, s,
        [&](const RgbPlanes& to, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) {
            kernel(to.r, to.g, to.b, y, cb, cr, s.pairs(), coefficients);
        });
}

// In double precision rows go by chunks of words, which stay in the first-level cache, to what is made of words.
class FloatRows {
public:
    FloatRows(const SourceFrame8& source, PXYCBCRMatrix matrix)
        : toWords_(simd::kernels().rgb8.toWordsFloat[static_cast<unsigned>(source.samples())]),
          row_(toRgb8FloatRow(matrix)), steps_(simd::pairBytes(source.samples())), pairs_(source.pairs()) {}

    // Calls put(x, pixels, r, g, b) with the words from pixel x of a row on.
    template <class Put>
    void eachChunk(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr, Put put) {
        for (std::size_t i = 0; i < pairs_; i += kChunkPairs) {
            const std::size_t count = std::min(kChunkPairs, pairs_ - i);
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
    std::size_t pairs_;
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
    const auto& kernels = simd::kernels().rgb8.toRgb;
    toPacked(dst, dstPitch, bottomUp, source, bytesPerPixel(format), kernels[index(source.samples())][index(format)],
             toRgb8Row(matrix));
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
        eachPackedRow(dst, dstPitch, isBottomUp(rgbType), source, pixelBytes,
                      [&](std::uint8_t* to, const std::uint8_t* fromY, const std::uint8_t* u, const std::uint8_t* v) {
                          rows.eachChunk(fromY, u, v,
                                         [&](std::size_t x, std::size_t pixels, const std::uint8_t* r,
                                             const std::uint8_t* g,
                                             const std::uint8_t* b) { pack(to + x * pixelBytes, r, g, b, pixels); });
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
        toPacked(dst, dstPitch, isBottomUp(rgbType), source, bytesPerPixel(*format),
                 kernels[index(source.samples())][index(*format)], toRgb16Row(matrix));
    }
    return nominalSize(width, height, nominalBytes16(bitsPerPixel));
}

unsigned int cycbcr_ToRGBPlanarInt(unsigned char* r, unsigned char* g, unsigned char* b, unsigned char* y,
                                   unsigned char* cb, unsigned char* cr, unsigned int width, unsigned int height,
                                   unsigned int dstPitch, unsigned int /*ignored*/, PXYCBCRMatrix matrix,
                                   PXYCBCRRgbType rgbType, int fullChromaRows, int planar, unsigned int /*reserved*/) {
    const SourceFrame8 source{y, cb, cr, width, height, planar != 0, fullChromaRows != 0};
    return toPlanes({r, g, b}, dstPitch, rgbType, source, simd::kernels().rgb8.toPlanes[index(source.samples())],
                    toRgb8Row(matrix));
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
    return eachRowOfPlanes(
        {r, g, b}, dstPitch, rgbType, source,
        [&](const RgbPlanes& to, const std::uint8_t* fromY, const std::uint8_t* u, const std::uint8_t* v) {
            rows.eachChunk(fromY, u, v,
                           [&](std::size_t x, std::size_t pixels, const std::uint8_t* red, const std::uint8_t* green,
                               const std::uint8_t* blue) {
                               toBytes(to.r + x, red, pixels);
                               toBytes(to.g + x, green, pixels);
                               toBytes(to.b + x, blue, pixels);
                           });
        });
}

unsigned int cycbcr_ToRGBPlanarInt16(unsigned char* r, unsigned char* g, unsigned char* b, unsigned char* y,
                                     unsigned char* cb, unsigned char* cr, unsigned int width, unsigned int height,
                                     unsigned int dstPitch, unsigned int /*ignored*/, PXYCBCRMatrix matrix,
                                     PXYCBCRRgbType rgbType, int fullChromaRows, int planar,
                                     unsigned int /*reserved*/) {
    const SourceFrame8 source{y, cb, cr, width, height, planar != 0, fullChromaRows != 0};
    return toPlanes({r, g, b}, dstPitch, rgbType, source, simd::kernels().rgb8.toPlanes16[index(source.samples())],
                    toRgb16Row(matrix));
}
