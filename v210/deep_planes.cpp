// v210 to planes of 16-bit samples, each plane with the pitch that its caller gives.
#include "core/processor.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/row_unpack.h"
#include "v210/unpack16.h"

namespace {

using namespace fikleipa;

simd::UnpackKernel unpackKernel(simd::Justify justify, simd::Samples16 samples) {
    return simd::kernels().v210.unpack16[static_cast<unsigned>(justify)][static_cast<unsigned>(samples)];
}

// Row by row, with the zeros that the row kernels leave behind each.
void unpackRows(const Planes16& dst, const V210Rows& src, unsigned width, simd::Justify justify) {
    if (width == 0) return;
    const simd::UnpackKernel unpack = unpackKernel(justify, simd::Samples16::Planar);
    const std::size_t groups = v210Groups(width);
    const std::size_t pairs = groups * simd::kV210GroupPairs;
    const std::size_t withZeros = pairs + 1;
    const std::size_t lasting = dst.lastingPairs(withZeros);
    writeRows(src.height, withZeros, lasting, dst.goPastCache(src.height, src.height, lasting),
              [&](unsigned first, unsigned end, std::size_t written, bool past) {
                  RowUnpacker rows(unpack, kPlanar16, past);
                  for (unsigned r = first; r < end; ++r) {
                      const Planes row = dst.row(r, r);
                      const bool zerosToo = written > pairs;
                      rows.row(row, src.row(r), zerosToo ? pairs - simd::kV210GroupPairs : written);
                      if (zerosToo) unpackLastGroup16(row, src.row(r), groups, unpack);
                  }
              });
}

} // namespace

unsigned int cycbcr_012v_to_yuv422p10(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                      unsigned int width, unsigned int height, unsigned int yPitch,
                                      unsigned int chromaPitch, unsigned int srcPitch) {
    probeProcessorLevel();
    // It is the luma pitch that the natural one is held against: deliberate.
    const unsigned natural = naturalV210Pitch(width);
    const V210Rows source{src, height, natural > yPitch ? natural : srcPitch};
    const Planes16 dst{{y, cb, cr}, yPitch, chromaPitch, v210Groups(width) * simd::kV210GroupPixels};
    if (2 * chromaPitch == yPitch) {
        unpackRows(dst, source, width, simd::Justify::Right);
    } else {
        unpack422(dst, source, simd::Justify::Right);
    }
    return (yPitch + 2 * chromaPitch) * height;
}

unsigned int cycbcr_012v_to_yuv422p16(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                      unsigned int width, unsigned int height, unsigned int yPitch,
                                      unsigned int srcPitch) {
    probeProcessorLevel();
    // The last row is left as it was: deliberate.
    const unsigned rows = height == 0 ? 0 : height - 1;
    const Planes16 dst{{y, cb, cr}, yPitch, yPitch / 2, v210Groups(width) * simd::kV210GroupPixels};
    unpackRows(dst, {src, rows, v210Pitch(width, srcPitch)}, width, simd::Justify::Left);
    return yPitch * height;
}

unsigned int cycbcr_012v_to_yuv420p10(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                      unsigned int width, unsigned int height, unsigned int /*yPitch*/,
                                      unsigned int /*chromaPitch*/, unsigned int srcPitch) {
    probeProcessorLevel();
    // Whole words of the pitch as passed, also where rows do not fit into it: deliberate.
    unpack420(tightPlanes({y, cb, cr}, width), {src, height, srcPitch / 4 * 4}, simd::Justify::Right);
    return 3 * width * height;
}

unsigned int cycbcr_012v_to_yuv444p10(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                      unsigned int width, unsigned int height, unsigned int yPitch,
                                      unsigned int chromaPitch, unsigned int srcPitch) {
    probeProcessorLevel();
    const Planes16 dst{{y, cb, cr}, yPitch, chromaPitch, 0};
    const V210Rows source{src, height, v210Pitch(width, srcPitch)};
    const std::size_t groups = v210Groups(width);
    const SampleRows written{dst.start, yPitch, chromaPitch, height, height};
    const std::size_t pairs = groups * simd::kV210GroupPairs;
    const std::size_t lasting = written.lastingPairs(pairs, kPlanar444);
    const bool pastCache =
        yPitch % 2 == 0 && chromaPitch % 2 == 0 && goesPastCache(written.pairSpans(lasting, kPlanar444));
    const unsigned rows = pairs == 0 ? 0 : height;
    writeRows(rows, pairs, lasting, pastCache, [&](unsigned first, unsigned end, std::size_t count, bool past) {
        RowUnpacker unpacker(unpackKernel(simd::Justify::Right, simd::Samples16::Planar444), kPlanar444, past);
        for (unsigned r = first; r < end; ++r) unpacker.row(dst.row(r, r), source.row(r), count);
    });
    // Luma's pitch counts twice, not chroma's: deliberate.
    return (chromaPitch + 2 * yPitch) * height;
}
