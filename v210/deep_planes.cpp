// v210 to planes of 16-bit samples, each plane with the pitch that its caller gives.
#include "core/processor.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/row_unpack.h"
#include "v210/unpack16.h"

namespace {

using namespace fikleipa;

// Row by row, with the zeros that the row kernels leave behind each.
void unpackRows(const Planes16& dst, const V210Rows& src, unsigned width, simd::Justify justify) {
    for (unsigned r = 0; r < src.height; ++r) {
        const Planes row = dst.row(r, r);
        unpackRow16(row.y, row.cb, row.cr, src.row(r), width, justify);
    }
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
    unpackRows({{y, cb, cr}, yPitch, yPitch / 2, 0}, {src, rows, v210Pitch(width, srcPitch)}, width,
               simd::Justify::Left);
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
    const auto& kernels = simd::kernels().v210.unpack16[static_cast<unsigned>(simd::Justify::Right)];
    const simd::UnpackKernel unpack = kernels[static_cast<unsigned>(simd::Samples16::Planar444)];
    const Planes16 dst{{y, cb, cr}, yPitch, chromaPitch, 0};
    const V210Rows source{src, height, v210Pitch(width, srcPitch)};
    for (unsigned r = 0; r < height; ++r) {
        const Planes row = dst.row(r, r);
        unpack(row.y, row.cb, row.cr, source.row(r), v210Groups(width));
    }
    // Luma's pitch counts twice, not chroma's: deliberate.
    return (chromaPitch + 2 * yPitch) * height;
}
