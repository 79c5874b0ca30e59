// The converters between v210 and one named 8-bit layout: they place pointers and pick flags.
#include "core/frame.h"
#include "core/planes.h"
#include "core/processor.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/pitch.h"
#include "v210/rows.h"
#include "yuv8/flip.h"

namespace {

using namespace fikleipa;
using namespace fikleipa::placement;

// Planes are placed by pitch and height, whatever the width.
template <PlacementOf kPlacement>
unsigned fromV210(const Frame& f) {
    const Placement at = kPlacement(f.dstPitch * f.height);
    return Fromv210(f.dst + at.y, f.dst + at.cb, f.dst + at.cr, f.src, f.width, f.height, f.dstPitch, f.srcPitch,
                    at.fullChromaRows ? 1 : 0, at.planar ? 1 : 0);
}

template <PlacementOf kPlacement>
unsigned toV210(const Frame& f) {
    const Placement at = kPlacement(f.srcPitch * f.height);
    return Tov210(f.dst, f.src + at.y, f.src + at.cb, f.src + at.cr, f.width, f.height, f.dstPitch, f.srcPitch,
                  at.fullChromaRows ? 1 : 0, at.planar ? 1 : 0);
}

// As UYVY, and the destination turned over by the pitch as it was passed: in one pass where that comes to the same.
unsigned cyuvToV210(const Frame& f) {
    probeProcessorLevel();
    const std::size_t groups = v210Groups(f.width);
    const FlipFrame flip{f.dst, f.height, f.dstPitch, groups * simd::kV210GroupBytes};
    if (f.dstPitch < naturalV210Pitch(f.width) || !canFlipWhileConverting(flip)) {
        const unsigned size = toV210<uyvy>(f);
        cycbcr_invert(f.dst, f.dstPitch, f.height);
        return size;
    }
    RowPacker rows(simd::kernels().v210.pack8[static_cast<unsigned>(simd::Samples8::Uyvy)], kPacked8,
                   goesPastCache({flip.rows()}));
    for (unsigned r = 0; groups != 0 && r < f.height; ++r) {
        unsigned char* const row = f.src + packedOffset(r, f.width, f.srcPitch);
        rows.row(f.dst + destinationOffset(r, f.height, f.dstPitch, true), uyvy(0).in(row), groups);
    }
    flipPadding(flip);
    return naturalV210Pitch(f.width) * f.height;
}

} // namespace

#define V210_PAIR(name, converter)                                                                                     \
    unsigned int name(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,                 \
                      unsigned int dstPitch, unsigned int srcPitch) {                                                  \
        return converter({dst, src, width, height, dstPitch, srcPitch});                                               \
    }

V210_PAIR(cycbcr_012v_to_yuy2, fromV210<yuy2>)
V210_PAIR(cycbcr_012v_to_yvyu, fromV210<yvyu>)
V210_PAIR(cycbcr_012v_to_cyuv, fromV210<uyvy>) // not turned over, unlike the way back: deliberate
V210_PAIR(cycbcr_012v_to_i420, fromV210<i420>)
V210_PAIR(cycbcr_012v_to_yv12, fromV210<yv12>)
V210_PAIR(cycbcr_012v_to_p422, fromV210<p422>)
V210_PAIR(cycbcr_yuy2_to_012v, toV210<yuy2>)
V210_PAIR(cycbcr_yvyu_to_012v, toV210<yvyu>)
V210_PAIR(cycbcr_cyuv_to_012v, cyuvToV210)
V210_PAIR(cycbcr_i420_to_012v, toV210<i420>)
V210_PAIR(cycbcr_yv12_to_012v, toV210<yv12>)
V210_PAIR(cycbcr_p422_to_012v, toV210<p422>)

#undef V210_PAIR

unsigned int cycbcr_012v_to_planar422(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                      unsigned int width, unsigned int height, unsigned int dstPitch,
                                      unsigned int srcPitch) {
    return Fromv210(y, cb, cr, src, width, height, dstPitch, srcPitch, 1, 1);
}

unsigned int cycbcr_012v_to_planar422_16(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                         unsigned int width, unsigned int height, unsigned int dstPitch,
                                         unsigned int srcPitch) {
    return Fromv210_16(y, cb, cr, src, width, height, dstPitch, srcPitch, 1, 1);
}
