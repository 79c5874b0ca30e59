// Planes of 16-bit samples to v210.
#include "v210/deep.h"

#include "core/processor.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/bands.h"
#include "v210/pitch.h"
#include "v210/rows.h"

#include <array>
#include <cstring>

namespace {

using namespace fikleipa;
using simd::kV210GroupBytes;
using simd::kV210GroupPixels;

// How much chroma a source has, by which the ends of rows differ as well.
enum class Sampling { Yuv422, Yuv420, Yuv444 };

unsigned chromaPitch(const PlanarFrame& f, Sampling sampling) {
    return evenPitch(sampling == Sampling::Yuv444 ? f.srcPitch : f.srcPitch / 2);
}

Planes sourceRow(const PlanarFrame& f, Sampling sampling, unsigned r) {
    const Planes planes{f.y, f.cb, f.cr};
    const unsigned chromaRow = sampling == Sampling::Yuv420 ? r / 2 : r;
    return planes.at(r * evenPitch(f.srcPitch), chromaRow * chromaPitch(f, sampling));
}

// Rows of 4:2:0 go on while the group's start is below the width and five more: deliberate.
std::size_t groupsOfRow(unsigned width, Sampling sampling) {
    return v210Groups(std::size_t{width} + (sampling == Sampling::Yuv420 ? 5 : 0));
}

enum class Extent { Frame, Band };

constexpr std::size_t kExtraBytes = 8;

// Writes up to the first two words of the group behind a row, and reads no more than the three pixels that they hold.
void packExtraWords(simd::PackKernel pack, unsigned char* dst, const Planes& behind, std::size_t bytes) {
    std::array<unsigned char, 2 * kV210GroupPixels> y{};
    std::array<unsigned char, kV210GroupPixels> cb{};
    std::array<unsigned char, kV210GroupPixels> cr{};
    std::memcpy(y.data(), behind.y, 6);
    std::memcpy(cb.data(), behind.cb, 4);
    std::memcpy(cr.data(), behind.cr, 2);
    std::array<unsigned char, kV210GroupBytes> group;
    pack(group.data(), y.data(), cb.data(), cr.data(), 1);
    std::memcpy(dst, group.data(), bytes);
}

unsigned toV210(const PlanarFrame& f, simd::Reduce reduce, Sampling sampling, Extent extent) {
    probeProcessorLevel();
    const unsigned pitch = v210Pitch(f.width, f.dstPitch);
    if (f.width == 0) return pitch * f.height;

    const std::size_t groups = groupsOfRow(f.width, sampling);
    const bool fullChroma = sampling == Sampling::Yuv444;
    const GroupBytes bytes = fullChroma ? kPlanar444 : kPlanar16;
    const V210Rows dst{f.dst, f.height, pitch};
    const bool byKernel = extent == Extent::Band && kernelWritesPastCache(f.dst, pitch, f.height);
    const simd::V210Kernels& kernels = simd::kernels().v210;
    const simd::PackKernel pack =
        (byKernel ? kernels.pack16Past : kernels.pack16)[static_cast<unsigned>(reduce)][fullChroma ? 1 : 0];
    RowPacker rows(pack, bytes, !byKernel && goesPastCache(dst.spans(groups)));

    const std::size_t groupBytes = groups * kV210GroupBytes;
    // They may reach into the next row, which overwrites them: deliberate, as is that the last row's remain.
    const bool hasExtraWords = sampling == Sampling::Yuv422 && f.width % kV210GroupPixels != 0;
    const std::size_t extraBytes = extent == Extent::Frame ? kExtraBytes : std::min(kExtraBytes, pitch - groupBytes);
    for (unsigned r = 0; r < f.height; ++r) {
        const Planes row = sourceRow(f, sampling, r);
        rows.row(dst.row(r), row, groups);
        if (hasExtraWords) {
            packExtraWords(pack, dst.row(r) + groupBytes, row.at(groups * bytes.luma, groups * bytes.chroma),
                           extraBytes);
        }
    }
    if (byKernel) simd::finishStreaming();
    return pitch * f.height;
}

} // namespace

#define TO_V210(name, reduce, sampling, extent)                                                                        \
    unsigned int name(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned int width,  \
                      unsigned int height, unsigned int dstPitch, unsigned int srcPitch) {                             \
        return toV210({dst, y, cb, cr, width, height, dstPitch, srcPitch}, simd::Reduce::reduce, Sampling::sampling,   \
                      Extent::extent);                                                                                 \
    }

TO_V210(cycbcr_yuv422p10_to_012v_internal, Low10, Yuv422, Frame)
TO_V210(cycbcr_yuv422p12_to_012v_internal, From12, Yuv422, Frame)
TO_V210(cycbcr_yuv444p12_to_012v_internal, From12, Yuv444, Frame)
TO_V210(cycbcr_yuv444p10_to_012v, Low10, Yuv444, Frame)
TO_V210(cycbcr_yuv420p10_to_012v, Low10, Yuv420, Frame)
TO_V210(cycbcr_yuv422p16_to_012v, From16, Yuv422, Frame)

namespace fikleipa {

TO_V210(yuv422p10ToV210Band, Low10, Yuv422, Band)
TO_V210(yuv422p12ToV210Band, From12, Yuv422, Band)
TO_V210(yuv444p12ToV210Band, From12, Yuv444, Band)

} // namespace fikleipa

#undef TO_V210
