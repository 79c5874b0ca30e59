// Between planes of 16-bit samples and UYVY.
#include "core/planes.h"
#include "core/processor.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/bands.h"
#include "v210/deep.h"
#include "v210/pitch.h"

#include <array>
#include <cstring>

namespace {

using namespace fikleipa;

constexpr unsigned kInterleavedChroma = 2; // in the flag word

// Where a source's chroma lies.
struct Chroma {
    unsigned pitch;
    unsigned lumaRows; // for each of its own
    unsigned pairBytes = 2;
};

// An odd width takes the pixel after it along as far as the pitch has room, so that no row reaches into the next, which
// another thread may be at.
void convertRow(simd::PairsKernel convert, unsigned char* dst, const Planes& src, std::size_t pairs, std::size_t pitch,
                unsigned chromaPairBytes) {
    const std::size_t whole = std::min(pairs, pitch / 4);
    convert(dst, src.y, src.cb, src.cr, whole);
    if (whole == pairs) return;

    std::array<unsigned char, 4> last;
    const Planes at = src.at(whole * 4, whole * chromaPairBytes);
    convert(last.data(), at.y, at.cb, at.cr, 1);
    std::memcpy(dst + 4 * whole, last.data(), pitch % 4);
}

unsigned toUyvy(const PlanarFrame& f, simd::PairsKernel convert, const Chroma& chroma) {
    probeProcessorLevel();
    const Planes planes{f.y, f.cb, f.cr};
    const unsigned pitch = uyvyPitch(f.width, f.dstPitch);
    for (unsigned r = 0; r < f.height; ++r) {
        const Planes row = planes.at(r * evenPitch(f.srcPitch), r / chroma.lumaRows * chroma.pitch);
        convertRow(convert, f.dst + r * pitch, row, pixelPairs(f.width), pitch, chroma.pairBytes);
    }
    return pitch * f.height;
}

} // namespace

unsigned int cycbcr_yuv422p10_to_uyvy_internal(unsigned char* dst, unsigned char* y, unsigned char* cb,
                                               unsigned char* cr, unsigned int width, unsigned int rows,
                                               unsigned int dstPitch, unsigned int srcPitch) {
    return toUyvy({dst, y, cb, cr, width, rows, dstPitch, srcPitch}, simd::kernels().v210.uyvyFrom10,
                  {evenPitch(srcPitch / 2), 1});
}

unsigned fikleipa::yuv422p10ToUyvyBand(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                       unsigned width, unsigned rows, unsigned dstPitch, unsigned srcPitch) {
    const simd::V210Kernels& kernels = simd::kernels().v210;
    const bool pastCache = bandGoesPastCache(dst, uyvyPitch(width, dstPitch), rows);
    const unsigned size = toUyvy({dst, y, cb, cr, width, rows, dstPitch, srcPitch},
                                 pastCache ? kernels.uyvyFrom10Past : kernels.uyvyFrom10, {evenPitch(srcPitch / 2), 1});
    if (pastCache) simd::finishStreaming();
    return size;
}

unsigned int cycbcr_yuv420p10_to_uyvy(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                      unsigned int width, unsigned int height, unsigned int dstPitch,
                                      unsigned int srcPitch) {
    return toUyvy({dst, y, cb, cr, width, height, dstPitch, srcPitch}, simd::kernels().v210.uyvyFrom10,
                  {evenPitch(srcPitch / 2), 2});
}

unsigned int cycbcr_yuv420p16_to_uyvy(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                      unsigned int width, unsigned int height, unsigned int dstPitch,
                                      unsigned int srcPitch, unsigned int flags) {
    const simd::V210Kernels& kernels = simd::kernels().v210;
    const bool interleaved = (flags & kInterleavedChroma) != 0;
    return toUyvy({dst, y, cb, cr, width, height, dstPitch, srcPitch},
                  interleaved ? kernels.uyvyFrom16BiPlanar : kernels.uyvyFrom16,
                  {evenPitch(srcPitch), 2, interleaved ? 4U : 2U});
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
