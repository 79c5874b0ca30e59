// The converters of one named 8-bit layout to one depth of RGB: they place pointers and pick flags.
#include "core/frame.h"
#include "core/planes.h"
#include "core/processor.h"
#include "fikleipa.h"
#include "rgb/layout.h"
#include "rgb/to_rgb8.h"
#include "yuv8/flip.h"

namespace {

using namespace fikleipa;
using namespace fikleipa::placement;

constexpr Placement nv12(unsigned area) {
    return {0, area, area + 1, true, false};
}

// Planes are placed by width and height, whatever the pitch.
template <PlacementOf kPlacement, PXToRgb* kConvert = cycbcr_ToRGBInt>
unsigned convert(const RgbFrame& f, unsigned bitsPerPixel) {
    const Placement at = kPlacement(f.width * f.height);
    return kConvert(f.dst, f.src + at.y, f.src + at.cb, f.src + at.cr, f.width, f.height, f.dstPitch, f.srcPitch,
                    f.matrix, f.rgbType, at.fullChromaRows ? 1 : 0, at.planar ? 1 : 0, bitsPerPixel, 0);
}

// As UYVY, and the destination turned over: in one pass where that comes to the same.
unsigned convertCyuv(const RgbFrame& f, unsigned bitsPerPixel) {
    const SourceFrame8 source{f.src + 1, f.src, f.src + 2, f.width, f.height, false, true};
    const simd::Rgb8 format = *rgb8Layout(f.rgbType, bitsPerPixel);
    const std::uint64_t pixels = 2 * source.pairs();
    const FlipFrame flip{f.dst, f.height, f.dstPitch, pixels * bytesPerPixel(format)};
    if (!canFlipWhileConverting(flip)) {
        const unsigned size = convert<uyvy>(f, bitsPerPixel);
        cycbcr_invert(f.dst, f.dstPitch, f.height);
        return size;
    }
    toRgb8(f.dst, f.dstPitch, !isBottomUp(f.rgbType), source, f.matrix, format);
    flipPadding(flip);
    return f.width * f.height * bytesPerPixel(format);
}

} // namespace

#define TO_RGB(name, converter, bitsPerPixel)                                                                          \
    unsigned int name(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,                 \
                      unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType) {    \
        probeProcessorLevel();                                                                                         \
        return converter({{dst, src, width, height, dstPitch, srcPitch}, matrix, rgbType}, bitsPerPixel);              \
    }
#define TO_RGB_AT_EVERY_DEPTH(layout, converter)                                                                       \
    TO_RGB(cycbcr_##layout##_to_rgb555, converter, 15)                                                                 \
    TO_RGB(cycbcr_##layout##_to_rgb565, converter, 16)                                                                 \
    TO_RGB(cycbcr_##layout##_to_rgb24, converter, 24)                                                                  \
    TO_RGB(cycbcr_##layout##_to_rgb32, converter, 32)

TO_RGB_AT_EVERY_DEPTH(yuy2, convert<yuy2>)
TO_RGB_AT_EVERY_DEPTH(yvyu, convert<yvyu>)
TO_RGB_AT_EVERY_DEPTH(uyvy, convert<uyvy>)
TO_RGB_AT_EVERY_DEPTH(cyuv, convertCyuv)
TO_RGB_AT_EVERY_DEPTH(i420, convert<i420>)
TO_RGB_AT_EVERY_DEPTH(yv12, convert<yv12>)
TO_RGB_AT_EVERY_DEPTH(p422, convert<p422>)

unsigned int cycbcr_nv12_to_rgb32(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                  PXYCBCRRgbType rgbType) {
    probeProcessorLevel();
    return convert<nv12, cycbcrBi_ToRGBInt>({{dst, src, width, height, dstPitch, srcPitch}, matrix, rgbType}, 32);
}

#undef TO_RGB_AT_EVERY_DEPTH
#undef TO_RGB
