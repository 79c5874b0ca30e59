// The converters between planes and v210 or UYVY whose callers pick the arrangement by flags.
#include "core/processor.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/unpack16.h"

namespace {

using namespace fikleipa;

constexpr unsigned char kHalfChromaRows = 1; // in the first flag byte
constexpr unsigned char kNoPitch = 1;        // in the second one

Planes16 planes16(const Planes& start, unsigned width, unsigned dstPitch, std::size_t rowPixels, unsigned char flags) {
    if ((flags & kNoPitch) != 0) return tightPlanes(start, width);
    return {start, dstPitch, dstPitch / 2, rowPixels};
}

struct Flags {
    unsigned char chroma;
    unsigned char planes;
};

unsigned unpackV210(const Planes& dst, unsigned char* src, unsigned width, unsigned height, unsigned dstPitch,
                    unsigned srcPitch, Flags flags, simd::Justify justify) {
    probeProcessorLevel();
    const std::size_t rowPixels = v210Groups(width) * simd::kV210GroupPixels;
    const auto unpack = (flags.chroma & kHalfChromaRows) != 0 ? unpack420 : unpack422;
    unpack(planes16(dst, width, dstPitch, rowPixels, flags.planes), {src, height, v210Pitch(width, srcPitch)}, justify);
    return dstPitch * height;
}

// An odd last pixel has luma alone.
void splitUyvy(simd::SplitPairsKernel split, const Planes& dst, const unsigned char* src, std::size_t pixels) {
    const std::size_t pairs = pixels / 2;
    split(dst.y, dst.cb, dst.cr, src, pairs);
    if (pixels % 2 == 0) return;
    dst.y[4 * pairs] = 0;
    dst.y[4 * pairs + 1] = src[4 * pairs + 1];
}

} // namespace

unsigned int cycbcr_planar_to_012v(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                   unsigned int width, unsigned int height, unsigned int dstPitch, unsigned int ignored,
                                   int is422) {
    return Tov210(dst, y, cb, cr, width, height, dstPitch, ignored, is422, 1);
}

unsigned int cycbcr_planar_16_to_012v(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                      unsigned int width, unsigned int height, unsigned int dstPitch,
                                      unsigned int /*ignored*/, int is422) {
    probeProcessorLevel();
    const auto& kernels = simd::kernels().v210.pack16[static_cast<unsigned>(simd::Reduce::Low10)];
    const std::size_t groups = v210Groups(width);
    const V210Rows to{dst, height, v210Pitch(width, dstPitch)};
    const Planes from{y, cb, cr};
    RowPacker rows(kernels[static_cast<unsigned>(simd::Chroma::Half)], kPlanar16, goesPastCache(to.spans(groups)));
    for (unsigned r = 0; groups != 0 && r < height; ++r) {
        const unsigned chromaRow = is422 != 0 ? r : r / 2;
        rows.row(to.row(r), from.at(2 * width * r, width / 2 * 2 * chromaRow), groups);
    }
    return naturalV210Pitch(width) * height;
}

unsigned int cycbcr_v210to_planar(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                  unsigned int width, unsigned int height, unsigned int dstPitch, unsigned int srcPitch,
                                  unsigned char chromaFlags, unsigned char planeFlags) {
    return unpackV210({y, cb, cr}, src, width, height, dstPitch, srcPitch, {chromaFlags, planeFlags},
                      simd::Justify::Right);
}

unsigned int cycbcr_v210to_planar16(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                    unsigned int width, unsigned int height, unsigned int dstPitch,
                                    unsigned int srcPitch, unsigned char chromaFlags, unsigned char planeFlags) {
    return unpackV210({y, cb, cr}, src, width, height, dstPitch, srcPitch, {chromaFlags, planeFlags},
                      simd::Justify::Left);
}

unsigned int cycbcr_uyvyto_planar16(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                    unsigned int width, unsigned int height, unsigned int dstPitch,
                                    unsigned int srcPitch, unsigned char chromaFlags, unsigned char planeFlags) {
    probeProcessorLevel();
    const unsigned pitch = uyvyPitch(width, srcPitch);
    const Planes16 dst = planes16({y, cb, cr}, width, dstPitch, 2 * pixelPairs(width), planeFlags);
    const bool halfRows = (chromaFlags & kHalfChromaRows) != 0;
    const simd::SplitPairsKernel split = simd::kernels().v210.uyvyTo16;
    for (unsigned r = 0; width != 0 && r < height; ++r) {
        // The later of two rows that share a chroma row leaves its own there.
        splitUyvy(split, dst.row(r, halfRows ? r / 2 : r), src + r * pitch, dst.rowPixels);
    }
    return dstPitch * height;
}
