// The converters from RGB to planes of 10, 12 and 16 bits.
#include "rgb/from_rgb_deep.h"
#include "core/planes.h"
#include "fikleipa.h"
#include "rgb/from_rgb_deep_matrix.h"
#include "simd/kernels.h"

namespace {

using namespace fikleipa;

struct PlaneRows {
    Planes start;
    unsigned lumaPitch;
    unsigned chromaPitch;

    Planes row(unsigned r) const { return start.at(r * lumaPitch, r * chromaPitch); }
};

template <class Kernel, class Row>
void convert(const PlaneRows& dst, const RgbRows& src, unsigned width, Kernel kernel, const Row& coefficients) {
    if (width == 0) return;
    for (unsigned r = 0; r < src.height; ++r) {
        const Planes row = dst.row(r);
        kernel(row.y, row.cb, row.cr, src.row(r), width, src.layout.order, coefficients);
    }
}

// A chroma sample for each pixel.
void toPlanes444(const PlaneRows& dst, const RgbRows& src, unsigned width, const simd::FromRgbDeepRow& row) {
    convert(dst, src, width, simd::kernels().fromRgbDeep.of(src.layout.source).full, row);
}

// A chroma sample for each pair, an odd last pixel included.
void toPlanes422(const PlaneRows& dst, const RgbRows& src, unsigned width, const simd::FromRgbDeepRow& row) {
    convert(dst, src, width, simd::kernels().fromRgbDeep.of(src.layout.source).halved, row);
}

} // namespace

unsigned int cycbcr_RGB32_to_yuv444p10(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                       unsigned int width, unsigned int height, unsigned int yPitch,
                                       unsigned int chromaPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                       PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    toPlanes444({{y, cb, cr}, yPitch, chromaPitch}, {src, height, srcPitch, rgb8Source(rgbType, bitsPerPixel)}, width,
                rgb8To10(matrix));
    // Not what the planes take unless pitches are equal, unlike the next: deliberate.
    return (chromaPitch + 2 * yPitch) * height;
}

unsigned int cycbcr_RGB64_to_yuv444p10(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                       unsigned int width, unsigned int height, unsigned int chromaPitch,
                                       unsigned int yPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                       PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    toPlanes444({{y, cb, cr}, yPitch, chromaPitch}, {src, height, srcPitch, rgbUpper10Source(rgbType, bitsPerPixel)},
                width, rgbUpper10To10(matrix));
    return (yPitch + 2 * chromaPitch) * height;
}

unsigned int cycbcr_RGB64_to_yuv422p12(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                       unsigned int width, unsigned int height, unsigned int yPitch,
                                       unsigned int chromaPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                       PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    toPlanes422({{y, cb, cr}, yPitch, chromaPitch}, {src, height, srcPitch, rgbUpper10Source(rgbType, bitsPerPixel)},
                width, rgbUpper10To12(matrix));
    return (chromaPitch + 2 * yPitch) * height;
}

unsigned int cycbcr_RGB64_to_yuv444p10_float_BAD_ONLY_LUMA_WORKS(unsigned char* y, unsigned char* cb, unsigned char* cr,
                                                                 unsigned char* src, unsigned int width,
                                                                 unsigned int height, unsigned int chromaPitch,
                                                                 unsigned int yPitch, unsigned int srcPitch,
                                                                 PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                                                                 unsigned int bitsPerPixel) {
    const RgbLayout layout = rgb16Source(rgbType, bitsPerPixel);
    const simd::FromRgbFloatKernel kernel =
        simd::kernels().fromRgbDeep.fullFloat[layout.source == simd::RgbSource::Four16 ? 0 : 1];
    convert({{y, cb, cr}, yPitch, chromaPitch}, {src, height, srcPitch, layout}, width, kernel, rgb16To10Float(matrix));
    return chromaPitch * height;
}

unsigned int cycbcr_RGB64_to_YCbCrPlanar16(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                           unsigned int width, unsigned int height, unsigned int dstPitch,
                                           unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                                           unsigned int bitsPerPixel) {
    toPlanes422({{y, cb, cr}, dstPitch, dstPitch / 2}, {src, height, srcPitch, rgb16Source(rgbType, bitsPerPixel)},
                width, rgb16To16(matrix));
    return dstPitch * height;
}

unsigned int cycbcr_RGB10_to_YCbCrPlanar16(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                           unsigned int width, unsigned int height, unsigned int dstPitch,
                                           unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType) {
    toPlanes422({{y, cb, cr}, dstPitch, dstPitch / 2}, {src, height, srcPitch, rgb10Source(rgbType)}, width,
                rgb10To10(matrix));
    return dstPitch * height;
}
