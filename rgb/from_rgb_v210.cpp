// The converters from RGB to v210.
#include "core/frame.h"
#include "core/processor.h"
#include "fikleipa.h"
#include "rgb/from_rgb_deep.h"
#include "rgb/from_rgb_deep_matrix.h"
#include "simd/kernels.h"

namespace {

using namespace fikleipa;
using simd::PairChroma;

unsigned toV210(const Frame& f, const RgbLayout& layout, const simd::FromRgbDeepRow& row,
                PairChroma chroma = PairChroma::Filtered) {
    const RgbRows src{f.src, f.height, f.srcPitch, layout};
    const auto& kernels = simd::kernels().fromRgbDeep.of(layout.source).toV210;
    const simd::RgbToV210Kernel convert = kernels[static_cast<unsigned>(chroma)];
    // A rest of one pixel is dropped.
    const unsigned rows = f.width < 2 ? 0 : f.height;
    for (unsigned r = 0; r < rows; ++r) convert(f.dst + r * f.dstPitch, src.row(r), f.width, layout.order, row);
    return f.dstPitch * f.height;
}

} // namespace

unsigned int v210FromRGB(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                         unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                         unsigned int bitsPerPixel) {
    return toV210({dst, src, width, height, dstPitch, srcPitch}, rgb8Source(rgbType, bitsPerPixel), rgb8To10(matrix));
}

unsigned int v210FromRGBNoFilter(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                 unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                 PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    return toV210({dst, src, width, height, dstPitch, srcPitch}, rgb8Source(rgbType, bitsPerPixel), rgb8To10(matrix),
                  PairChroma::First);
}

unsigned int cycbcr_RGB24_to_012v(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                  PXYCBCRRgbType rgbType) {
    probeProcessorLevel();
    return v210FromRGB(dst, src, width, height, dstPitch, srcPitch, matrix, rgbType, 24);
}

unsigned int cycbcr_RGB32_to_012v(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                  PXYCBCRRgbType rgbType) {
    probeProcessorLevel();
    return v210FromRGB(dst, src, width, height, dstPitch, srcPitch, matrix, rgbType, 32);
}

unsigned int cycbcr_RGB64_to_012v(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                  PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    return toV210({dst, src, width, height, dstPitch, srcPitch}, rgb16Source(rgbType, bitsPerPixel), rgb16To10(matrix));
}

unsigned int cycbcr_RGB10_to_012v(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                  PXYCBCRRgbType rgbType) {
    return toV210({dst, src, width, height, dstPitch, srcPitch}, rgb10Source(rgbType), rgb10To10(matrix));
}
