// The converters from v210 to RGB.
#include "core/processor.h"
#include "fikleipa.h"
#include "rgb/deep_to_rgb.h"
#include "rgb/layout.h"
#include "rgb/matrix.h"

namespace {

using namespace fikleipa;

const simd::DeepKernels& kernels() {
    return simd::kernels().rgbDeep.of(V210Source::oddPixel());
}

const simd::V210ToRgbKernels& ofV210() {
    return simd::kernels().rgbDeep.v210;
}

unsigned toWordPlanes(const RgbPlanes& dst, unsigned dstPitch, const V210Source& source, PXYCBCRMatrix matrix,
                      PXYCBCRRgbType rgbType) {
    DeepToRgb(source, row10To16(matrix))
        .toPlanes(dst, dstPitch, isBottomUp(rgbType), 2, {kernels().toWordPlanes, ofV210().toWordPlanes});
    return nominalSize(source.width, source.height, 1);
}

// Nothing is known of the alignment of samples.
std::uint8_t* bytes(unsigned short* samples) {
    return reinterpret_cast<std::uint8_t*>(samples);
}

} // namespace

unsigned int cycbcr_v210ToRGBInt(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                 unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                 PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    const V210Source source{src, width, height, srcPitch};
    if (const auto format = rgb8Layout(rgbType, bitsPerPixel)) {
        const auto index = static_cast<unsigned>(*format);
        DeepToRgb(source, row10To8(matrix))
            .toPixels(dst, dstPitch, isBottomUp(rgbType), bytesPerPixel(*format),
                      {kernels().toRgb8[index], ofV210().toRgb8[index]},
                      {kernels().toRgb8Past[index], ofV210().toRgb8Past[index]});
    }
    return nominalSize(width, height, nominalBytes8(bitsPerPixel));
}

unsigned int cycbcr_v210ToRGB(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                              unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                              PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    probeProcessorLevel();
    return cycbcr_v210ToRGBInt(dst, src, width, height, dstPitch, srcPitch, matrix, rgbType, bitsPerPixel);
}

unsigned int cycbcr_v210ToRGBFloat(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                   unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                   PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    const V210Source source{src, width, height, srcPitch};
    if (const auto format = rgb8Layout(rgbType, bitsPerPixel)) {
        DeepToRgb(source, row10To8Float(matrix))
            .toPixels(dst, dstPitch, isBottomUp(rgbType), bytesPerPixel(*format),
                      {simd::kernels().rgbDeep.toRgb8Float[static_cast<unsigned>(*format)]});
    }
    return nominalSize(width, height, nominalBytes8(bitsPerPixel));
}

unsigned int cycbcr_v210ToRGBInt16(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                   unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                   PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    const V210Source source{src, width, height, srcPitch};
    if (const auto format = rgb16Layout(rgbType, bitsPerPixel)) {
        const auto index = static_cast<unsigned>(*format);
        DeepToRgb(source, row10To16(matrix))
            .toPixels(dst, dstPitch, isBottomUp(rgbType), bytesPerPixel(*format),
                      {kernels().toRgb16[index], ofV210().toRgb16[index]},
                      {kernels().toRgb16Past[index], ofV210().toRgb16Past[index]});
    }
    return nominalSize(width, height, nominalBytes16(bitsPerPixel));
}

// Both forms find the fastest kernels that the processor has; the names are kept for callers that pick one.
unsigned int cycbcr_v210ToRGBPlanarC16(unsigned short* r, unsigned short* g, unsigned short* b, unsigned char* src,
                                       unsigned int width, unsigned int height, unsigned int dstPitch,
                                       unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType) {
    return toWordPlanes({bytes(r), bytes(g), bytes(b)}, dstPitch, {src, width, height, srcPitch}, matrix, rgbType);
}

#if defined(__x86_64__)
unsigned int cycbcr_v210ToRGBPlanarSSE16(unsigned short* r, unsigned short* g, unsigned short* b, unsigned char* src,
                                         unsigned int width, unsigned int height, unsigned int dstPitch,
                                         unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType) {
    return toWordPlanes({bytes(r), bytes(g), bytes(b)}, dstPitch, {src, width, height, srcPitch}, matrix, rgbType);
}
#endif

unsigned int cycbcr_v210ToRGBPlanarInt16(unsigned short* r, unsigned short* g, unsigned short* b, unsigned char* src,
                                         unsigned int width, unsigned int height, unsigned int dstPitch,
                                         unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType) {
#if defined(__x86_64__)
    return cycbcr_v210ToRGBPlanarSSE16(r, g, b, src, width, height, dstPitch, srcPitch, matrix, rgbType);
#else
    return cycbcr_v210ToRGBPlanarC16(r, g, b, src, width, height, dstPitch, srcPitch, matrix, rgbType);
#endif
}

#define V210_TO_RGB(name, bitsPerPixel)                                                                                \
    unsigned int name(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,                 \
                      unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType) {    \
        return cycbcr_v210ToRGB(dst, src, width, height, dstPitch, srcPitch, matrix, rgbType, bitsPerPixel);           \
    }

V210_TO_RGB(cycbcr_012v_to_rgb555, 15)
V210_TO_RGB(cycbcr_012v_to_rgb565, 16)
V210_TO_RGB(cycbcr_012v_to_rgb24, 24)
V210_TO_RGB(cycbcr_012v_to_rgb32, 32)

#undef V210_TO_RGB
