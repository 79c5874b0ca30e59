// The converters of RGB of one depth to one named 8-bit layout: they place pointers and pick flags.
#include "core/frame.h"
#include "core/planes.h"
#include "core/processor.h"
#include "fikleipa.h"
#include "yuv8/flip.h"

#include <cstdint>

namespace {

using namespace fikleipa;
using namespace fikleipa::placement;

// Planes are placed by pitch and height, whatever the width.
template <PlacementOf kPlacement>
unsigned convert(const RgbFrame& f, unsigned bitsPerPixel) {
    const Placement at = kPlacement(f.dstPitch * f.height);
    const Planes dst = at.in(f.dst);
    return FromRGBInt(dst.y, dst.cb, dst.cr, f.src, f.width, f.height, f.dstPitch, f.srcPitch, f.matrix, f.rgbType,
                      at.fullChromaRows ? 1 : 0, at.planar ? 1 : 0, bitsPerPixel, f.dstPitch / 2);
}

// As UYVY, and the destination turned over: where that comes to the same, by reading the source the other way.
unsigned convertCyuv(RgbFrame f, unsigned bitsPerPixel) {
    const FlipFrame flip{f.dst, f.height, f.dstPitch, std::uint64_t{f.width / 2} * 4};
    if (!canFlipWhileConverting(flip)) {
        const unsigned size = convert<uyvy>(f, bitsPerPixel);
        cycbcr_invert(f.dst, f.dstPitch, f.height);
        return size;
    }
    probeProcessorLevel();
    f.rgbType = static_cast<PXYCBCRRgbType>(static_cast<unsigned>(f.rgbType) ^ PX_RGB_BOTTOM_UP);
    const unsigned size = convert<uyvy>(f, bitsPerPixel);
    flipPadding(flip);
    return size;
}

} // namespace

#define FROM_RGB(name, converter, bitsPerPixel)                                                                        \
    unsigned int name(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,                 \
                      unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType) {    \
        return converter({{dst, src, width, height, dstPitch, srcPitch}, matrix, rgbType}, bitsPerPixel);              \
    }
#define FROM_RGB_24_AND_32(layout, converter)                                                                          \
    FROM_RGB(cycbcr_RGB24_to_##layout, converter, 24)                                                                  \
    FROM_RGB(cycbcr_RGB32_to_##layout, converter, 32)

FROM_RGB_24_AND_32(yuy2, convert<yuy2>)
FROM_RGB_24_AND_32(yvyu, convert<yvyu>)
FROM_RGB_24_AND_32(uyvy, convert<uyvy>)
FROM_RGB_24_AND_32(cyuv, convertCyuv)
FROM_RGB_24_AND_32(i420, convert<i420>)
FROM_RGB_24_AND_32(yv12, convert<yv12>)
FROM_RGB_24_AND_32(p422, convert<p422>)
// The depth is what the pitch leaves for a pixel. A width of 0 has none.
FROM_RGB(cycbcr_RGB64_to_p422, convert<p422>, width == 0 ? 0 : srcPitch / width * 8)

#undef FROM_RGB_24_AND_32
#undef FROM_RGB

unsigned int cycbcr_RGB64_to_uyvy(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                  PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    return convert<uyvy>({{dst, src, width, height, dstPitch, srcPitch}, matrix, rgbType}, bitsPerPixel);
}
