// Between planes of 16-bit samples and UYVY.
#include "core/planes.h"
#include "core/processor.h"
#include "core/rows.h"
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

enum class PastCache { ByWriter, ByKernel }; // if at all

unsigned toUyvy(const PlanarFrame& f, simd::PairsKernel convert, const Chroma& chroma,
                PastCache pastCache = PastCache::ByWriter) {
    probeProcessorLevel();
    const Planes planes{f.y, f.cb, f.cr};
    const unsigned pitch = uyvyPitch(f.width, f.dstPitch);
    const std::size_t pairs = pixelPairs(f.width);
    // An odd width takes the pixel after it along as far as the pitch has room, so that no row reaches into the next,
    // which another thread may be at.
    const std::size_t whole = std::min<std::size_t>(pairs, pitch / 4);
    RowWriter<1> rows(pastCache == PastCache::ByWriter && goesPastCache({{f.dst, 4 * whole, pitch, f.height}}), {4});
    for (unsigned r = 0; pairs != 0 && r < f.height; ++r) {
        const Planes row = planes.at(r * evenPitch(f.srcPitch), r / chroma.lumaRows * chroma.pitch);
        unsigned char* const dst = f.dst + r * pitch;
        rows.write({dst}, whole, [&](const auto& to, std::size_t first, std::size_t count) {
            const Planes from = row.at(4 * first, chroma.pairBytes * first);
            convert(to[0], from.y, from.cb, from.cr, count);
        });
        if (whole == pairs) continue;
        std::array<unsigned char, 4> last;
        const Planes from = row.at(4 * whole, chroma.pairBytes * whole);
        convert(last.data(), from.y, from.cb, from.cr, 1);
        std::memcpy(dst + 4 * whole, last.data(), pitch % 4);
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
    if (!kernelWritesPastCache(dst, uyvyPitch(width, dstPitch), rows)) {
        return cycbcr_yuv422p10_to_uyvy_internal(dst, y, cb, cr, width, rows, dstPitch, srcPitch);
    }
    const unsigned size = toUyvy({dst, y, cb, cr, width, rows, dstPitch, srcPitch}, simd::kernels().v210.uyvyFrom10Past,
                                 {evenPitch(srcPitch / 2), 1}, PastCache::ByKernel);
    simd::finishStreaming();
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
                  kernels.uyvyFrom16[static_cast<unsigned>(simd::chromaOf(interleaved, cb, cr))],
                  {evenPitch(srcPitch), 2, interleaved ? 4U : 2U});
}

unsigned int cycbcr_uyvy_to_yuv444p10(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                      unsigned int width, unsigned int height, unsigned int yPitch,
                                      unsigned int chromaPitch, unsigned int srcPitch) {
    probeProcessorLevel();
    const simd::SplitPairsKernel split = simd::kernels().v210.uyvyTo10Planar444;
    for (unsigned r = 0; width != 0 && r < height; ++r) {
        const unsigned chroma = evenOffset(r, chromaPitch);
        split(y + evenOffset(r, yPitch), cb + chroma, cr + chroma, src + r * srcPitch, pixelPairs(width));
    }
    // Luma's pitch counts twice, not chroma's: deliberate.
    return (chromaPitch + 2 * yPitch) * height;
}
