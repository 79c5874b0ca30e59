// Between planes of 16-bit samples and UYVY.
#include "core/processor.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/bands.h"
#include "v210/pitch.h"

namespace {

using namespace fikleipa;

constexpr unsigned kInterleavedChroma = 2; // in the flag word

unsigned toUyvy(const PlanarFrame& f, simd::PairsKernel convert, unsigned chromaPitch, unsigned lumaRowsPerChromaRow) {
    probeProcessorLevel();
    const unsigned pitch = uyvyPitch(f.width, f.dstPitch);
    for (unsigned r = 0; r < f.height; ++r) {
        const unsigned chroma = r / lumaRowsPerChromaRow * chromaPitch;
        convert(f.dst + r * pitch, f.y + r * evenPitch(f.srcPitch), f.cb + chroma, f.cr + chroma, pixelPairs(f.width));
    }
    return pitch * f.height;
}

} // namespace

unsigned int cycbcr_yuv422p10_to_uyvy_internal(unsigned char* dst, unsigned char* y, unsigned char* cb,
                                               unsigned char* cr, unsigned int width, unsigned int rows,
                                               unsigned int dstPitch, unsigned int srcPitch) {
    return toUyvy({dst, y, cb, cr, width, rows, dstPitch, srcPitch}, simd::kernels().v210.uyvyFrom10,
                  evenPitch(srcPitch / 2), 1);
}

unsigned int cycbcr_yuv420p10_to_uyvy(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                      unsigned int width, unsigned int height, unsigned int dstPitch,
                                      unsigned int srcPitch) {
    return toUyvy({dst, y, cb, cr, width, height, dstPitch, srcPitch}, simd::kernels().v210.uyvyFrom10,
                  evenPitch(srcPitch / 2), 2);
}

unsigned int cycbcr_yuv420p16_to_uyvy(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                      unsigned int width, unsigned int height, unsigned int dstPitch,
                                      unsigned int srcPitch, unsigned int flags) {
    const simd::V210Kernels& kernels = simd::kernels().v210;
    return toUyvy({dst, y, cb, cr, width, height, dstPitch, srcPitch},
                  (flags & kInterleavedChroma) != 0 ? kernels.uyvyFrom16BiPlanar : kernels.uyvyFrom16,
                  evenPitch(srcPitch), 2);
}

unsigned int cycbcr_uyvy_to_yuv444p10(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                      unsigned int width, unsigned int height, unsigned int yPitch,
                                      unsigned int chromaPitch, unsigned int srcPitch) {
    probeProcessorLevel();
    const simd::SplitPairsKernel split = simd::kernels().v210.uyvyTo10Planar444;
    for (unsigned r = 0; r < height; ++r) {
        const unsigned chroma = evenOffset(r, chromaPitch);
        split(y + evenOffset(r, yPitch), cb + chroma, cr + chroma, src + r * srcPitch, pixelPairs(width));
    }
    // Luma's pitch counts twice, not chroma's: deliberate.
    return (chromaPitch + 2 * yPitch) * height;
}
