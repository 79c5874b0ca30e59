// The two converters between v210 and UYVY that walk rows by rules of their own, and the copy.
#include "core/frame.h"
#include "core/planes.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/pitch.h"
#include "v210/rows.h"
#include "yuv8/flip.h"

namespace {

using namespace fikleipa;

unsigned toUyvy(const Frame& f) {
    // Without a pitch the groups of a row follow those of the row before it, however many there are.
    const std::size_t rowBytes = v210Groups(f.width) * simd::kV210GroupBytes;
    const unsigned srcPitch = v210Pitch(f.width, f.srcPitch);
    const simd::UnpackPairsKernel unpack = simd::kernels().v210.unpackUyvy;
    const std::size_t pairs = pixelPairs(f.width);
    RowWriter<1> rows(goesPastCache({{f.dst, 4 * pairs, f.dstPitch, f.height}}), {4}, kUnpackedPairs);
    for (unsigned r = 0; pairs != 0 && r < f.height; ++r) {
        const unsigned char* const row = f.src + (f.srcPitch == 0 ? r * rowBytes : std::size_t{r * srcPitch});
        rows.write({f.dst + r * f.dstPitch}, pairs, [&](const auto& to, std::size_t first, std::size_t count) {
            unpack(to[0], groupOf(row, first), count);
        });
    }
    return f.dstPitch * f.height;
}

// Rows are rounded up to 64 bytes, not to 48 pixels: deliberate.
constexpr unsigned pitchFromUyvy(unsigned width, unsigned dstPitch) {
    return std::max((width * 16 / 6 + 63) / 64 * 64, dstPitch);
}

unsigned fromUyvy(const Frame& f) {
    const unsigned dstPitch = pitchFromUyvy(f.width, f.dstPitch);
    const unsigned srcPitch = uyvyPitch(f.width, f.srcPitch);
    const std::size_t groups = v210Groups(f.width);
    const std::size_t rowBytes = groups * simd::kV210GroupBytes;
    if (groups == 0) return f.dstPitch * f.height;
    RowPacker rows(simd::kernels().v210.pack8[static_cast<unsigned>(simd::Samples8::Uyvy)], kPacked8,
                   goesPastCache({{f.dst, rowBytes, dstPitch, f.height}}));
    const auto packRow = [&](unsigned r) {
        rows.row(f.dst + r * dstPitch, placement::uyvy(0).in(f.src + r * srcPitch), groups);
    };
    // Rows go from the last to the first. The opposite is faster, and where no row is written over another it comes to
    // the same.
    if (canFlipWhileConverting({f.dst, f.height, dstPitch, rowBytes})) {
        for (unsigned r = 0; r < f.height; ++r) packRow(r);
    } else {
        for (unsigned r = f.height; r-- != 0;) packRow(r);
    }
    return f.dstPitch * f.height;
}

} // namespace

#define V210_UYVY(name, converter)                                                                                     \
    unsigned int name(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,                 \
                      unsigned int dstPitch, unsigned int srcPitch) {                                                  \
        return converter({dst, src, width, height, dstPitch, srcPitch});                                               \
    }

V210_UYVY(cycbcr_012v_to_uyvy, toUyvy)
V210_UYVY(cycbcr_012v_to_uyvy_opt, toUyvy)
V210_UYVY(cycbcr_uyvy_to_012v, fromUyvy)
V210_UYVY(cycbcr_uyvy_to_012v_opt, fromUyvy)

#undef V210_UYVY

unsigned int cycbcr_012v_to_012v(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                 unsigned int dstPitch, unsigned int srcPitch) {
    return cycbcr_interleaved_copy(dst, src, width, height, dstPitch, srcPitch);
}
