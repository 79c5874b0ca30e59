#include "rgb/to_rgb8.h"

#include "core/rows.h"
#include "rgb/layout.h"
#include "rgb/matrix.h"
#include "simd/kernels.h"

namespace fikleipa {

simd::Samples8 SourceFrame8::samples() const {
    if (planar) return biPlanar ? simd::Samples8::BiPlanar : simd::Samples8::Planar;

    return simd::packedSamples(y, cb, cr);
}

namespace {

template <class Row>
void toPacked(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, const SourceFrame8& s, unsigned pixelBytes,
              simd::ToRgbKernel<Row> kernel, const Row& coefficients) {
    if (s.empty()) return;
    RowWriter rows(dst, dstPitch, bottomUp, 2 * s.pairs() * pixelBytes, s.height);
    eachSourceRow(s, [&](unsigned r, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) {
        rows.write(r, [&](std::uint8_t* to) { kernel(to, y, cb, cr, s.pairs(), coefficients); });
    });
}

template <class Row>
unsigned toPlanes(const RgbPlanes& dst, unsigned dstPitch, PXYCBCRRgbType rgbType, const SourceFrame8& s,
                  simd::ToPlanesKernel<Row> kernel, const Row& coefficients) {
    if (!s.empty()) {
        const bool bottomUp = isBottomUp(rgbType);
        eachSourceRow(s, [&](unsigned r, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) {
            const unsigned offset = destinationOffset(r, s.height, dstPitch, bottomUp);
            kernel(dst.r + offset, dst.g + offset, dst.b + offset, y, cb, cr, s.pairs(), coefficients);
        });
    }
    return nominalSize(s.width, s.height, 1);
}

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
        const auto& kernels = simd::kernels().rgb8.toRgbFloat;
        toPacked(dst, dstPitch, isBottomUp(rgbType), source, bytesPerPixel(*format),
                 kernels[index(source.samples())][index(*format)], toRgb8FloatRow(matrix));
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
    return toPlanes({r, g, b}, dstPitch, rgbType, source, simd::kernels().rgb8.toPlanesFloat[index(source.samples())],
                    toRgb8FloatRow(matrix));
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
