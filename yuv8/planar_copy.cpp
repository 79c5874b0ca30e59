// From planes to planes: copies, and the transfer between 4:2:2 and 4:2:0.
#include "core/frame.h"
#include "core/planes.h"
#include "core/processor.h"
#include "core/rows.h"
#include "fikleipa.h"
#include "pxutil/pxutil.h"
#include "simd/apart.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace {

using namespace fikleipa;
using namespace fikleipa::placement;

struct PlanarFrame {
    Planes at;
    unsigned pitch;

    unsigned char* luma(unsigned row) const { return at.y + row * pitch; }
    Planes chroma(unsigned row) const { return at.at(0, row * (pitch / 2)); }
};

void copyPlanes(const Planes& dst, const Planes& src, unsigned lumaBytes, unsigned chromaBytes) {
    CopyMemoryFast(dst.y, src.y, lumaBytes);
    CopyMemoryFast(dst.cb, src.cb, chromaBytes);
    CopyMemoryFast(dst.cr, src.cr, chromaBytes);
}

unsigned copy420(const PlanarFrame& dst, const PlanarFrame& src, unsigned height) {
    const unsigned lumaBytes = dst.pitch * height;
    if (dst.pitch == src.pitch) {
        copyPlanes(dst.at, src.at, lumaBytes, lumaBytes / 4);
    } else if (src.pitch != 0) {
        // Luma rows are the source's, also where they are longer than the destination's: deliberate.
        for (unsigned y = 0; y < height; ++y) CopyMemoryFast(dst.luma(y), src.luma(y), src.pitch);
        const unsigned chromaBytes = std::min(dst.pitch, src.pitch) / 2;
        for (unsigned k = 0; k < height / 2; ++k) {
            const unsigned to = k * dst.pitch / 2;
            const unsigned from = k * src.pitch / 2;
            CopyMemoryFast(dst.at.cb + to, src.at.cb + from, chromaBytes);
            CopyMemoryFast(dst.at.cr + to, src.at.cr + from, chromaBytes);
        }
    }
    return lumaBytes + lumaBytes / 2;
}

// Whatever the source's pitch.
unsigned copy422(const PlanarFrame& dst, const PlanarFrame& src, unsigned height) {
    const unsigned lumaBytes = dst.pitch * height;
    copyPlanes(dst.at, src.at, lumaBytes, lumaBytes / 2);
    return lumaBytes * 2;
}

// The two frames of a transfer.
struct Transfer {
    PlanarFrame dst, src;
    unsigned width;
    unsigned height;
    bool dstIs422;

    unsigned chromaRows() const { return halfRows(height); }
    // From where on the next row of chroma is written.
    unsigned chromaStep() const { return src.pitch / 2 * (dstIs422 ? 1 : 2); }

    // Whether neither frame's planes lie on one another, but for what the last rows of chroma hold beyond their planes.
    bool planesLieApart() const {
        if (height == 0) return true;
        const auto bytes = [&](std::uint64_t pitch, unsigned rows) { return pitch * (rows - 1) + width; };
        const simd::Span luma{dst.at.y, bytes(dst.pitch, height)};
        const simd::Span lumaFrom{src.at.y, bytes(src.pitch, height)};
        if (std::max(luma.bytes, lumaFrom.bytes) > UINT32_MAX) return false;
        const std::uint64_t from = bytes(dst.pitch / 2, dstIs422 ? height : chromaRows());
        const std::uint64_t to = bytes(chromaStep(), chromaRows());
        const std::uint64_t toPlane = std::uint64_t{chromaStep()} * chromaRows();
        return simd::apart(luma, {dst.at.cb, from}) && simd::apart(luma, {dst.at.cr, from}) &&
               simd::apart(lumaFrom, {src.at.cb, to}) && simd::apart(lumaFrom, {src.at.cr, to}) &&
               simd::apart({src.at.cb, toPlane}, {src.at.cr, toPlane});
    }
};

// Luma goes from the source to the destination, but chroma the other way: the destination's is written into the
// source's, and by the width, which is twice what a chroma row holds. Deliberate.
void transferRows(const Transfer& t) {
    for (unsigned y = 0; y < t.height; ++y) {
        CopyMemoryFast(t.dst.luma(y), t.src.luma(y), t.width);
        if (!t.dstIs422 && y % 2 != 0) continue;
        const Planes from = t.dst.chroma(t.dstIs422 ? y : y / 2);
        const Planes to = t.src.chroma(t.dstIs422 ? y / 2 : y);
        CopyMemoryFast(to.cb, from.cb, t.width);
        CopyMemoryFast(to.cr, from.cr, t.width);
    }
}

// One plane after the other. Of what the chroma rows of 4:2:0 are given, that of an even row is overwritten by the odd
// row's; and what a row is given beyond the next one's start, by that. So the last rows alone are given all.
void transferPlanes(const Transfer& t) {
    const simd::RowCopy copy(t.width * std::size_t{t.height} * 3 / 2 >= simd::kBeyondCache, CopyMemoryFast);
    for (unsigned y = 0; y < t.height; ++y) copy(t.dst.luma(y), t.src.luma(y), t.width);
    const auto transferRow = [&](unsigned char* Planes::*plane, unsigned k, unsigned bytes) {
        const Planes from = t.dst.chroma(t.dstIs422 ? std::min(2 * k + 1, t.height - 1) : k);
        const Planes to = t.src.chroma(t.dstIs422 ? k : 2 * k);
        copy(to.*plane, simd::SourceRow{from.*plane, bytes, std::ptrdiff_t{t.dst.pitch} / 2 * (t.dstIs422 ? 2 : 1)});
    };
    constexpr std::array kChroma{&Planes::cb, &Planes::cr};
    const unsigned bytes = std::min(t.width, t.chromaStep());
    for (const auto plane : kChroma) {
        for (unsigned k = 0; k + 1 < t.chromaRows(); ++k) transferRow(plane, k, bytes);
    }
    if (t.height == 0) return;
    for (const auto plane : kChroma) transferRow(plane, t.chromaRows() - 1, t.width);
}

unsigned transfer(const Transfer& t) {
    if (t.width != 0) t.planesLieApart() ? transferPlanes(t) : transferRows(t);
    const unsigned lumaBytes = t.dst.pitch * t.height;
    return t.dstIs422 ? lumaBytes * 2 : lumaBytes + lumaBytes / 2;
}

template <PlacementOf kLayout>
PlanarFrame planarFrame(unsigned char* start, unsigned pitch, unsigned height) {
    return {kLayout(pitch * height).in(start), pitch};
}

template <PlacementOf kFrom, PlacementOf kTo>
unsigned copy(const Frame& f) {
    const auto dst = planarFrame<kTo>(f.dst, f.dstPitch, f.height);
    const auto src = planarFrame<kFrom>(f.src, f.srcPitch, f.height);
    return kTo == p422 ? copy422(dst, src, f.height) : copy420(dst, src, f.height);
}

// I420 stands in for YV12 and the other way round, so that the planes of I420 are paired crosswise: deliberate.
template <PlacementOf kFrom, PlacementOf kTo>
unsigned transfer(const Frame& f) {
    return transfer({planarFrame<kTo>(f.dst, f.dstPitch, f.height), planarFrame<kFrom>(f.src, f.srcPitch, f.height),
                     f.width, f.height, kTo == p422});
}

} // namespace

#define PLANAR_CONVERTER(name, converter, ...)                                                                         \
    unsigned int name(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,                 \
                      unsigned int dstPitch, unsigned int srcPitch) {                                                  \
        probeProcessorLevel();                                                                                         \
        return converter<__VA_ARGS__>({dst, src, width, height, dstPitch, srcPitch});                                  \
    }

PLANAR_CONVERTER(cycbcr_i420_to_i420, copy, i420, i420)
PLANAR_CONVERTER(cycbcr_yv12_to_yv12, copy, yv12, yv12)
PLANAR_CONVERTER(cycbcr_i420_to_yv12, copy, i420, yv12)
PLANAR_CONVERTER(cycbcr_yv12_to_i420, copy, yv12, i420)
PLANAR_CONVERTER(cycbcr_p422_to_p422, copy, p422, p422)
PLANAR_CONVERTER(cycbcr_p422_to_i420, transfer, p422, yv12)
PLANAR_CONVERTER(cycbcr_p422_to_yv12, transfer, p422, i420)
PLANAR_CONVERTER(cycbcr_i420_to_p422, transfer, yv12, p422)
PLANAR_CONVERTER(cycbcr_yv12_to_p422, transfer, i420, p422)

#undef PLANAR_CONVERTER

unsigned int cycbcr_planar_copy(unsigned char* dstY, unsigned char* dst2, unsigned char* dst3, unsigned char* srcY,
                                unsigned char* src2, unsigned char* src3, unsigned int /*width*/, unsigned int height,
                                unsigned int dstPitch, unsigned int srcPitch) {
    probeProcessorLevel();
    return copy420({{dstY, dst2, dst3}, dstPitch}, {{srcY, src2, src3}, srcPitch}, height);
}

unsigned int cycbcr_planar_422_420(unsigned char* dstY, unsigned char* dstCb, unsigned char* dstCr, unsigned char* srcY,
                                   unsigned char* srcCb, unsigned char* srcCr, unsigned int width, unsigned int height,
                                   unsigned int dstPitch, unsigned int srcPitch, int dstIs422, int srcIs422) {
    probeProcessorLevel();
    const PlanarFrame dst{{dstY, dstCb, dstCr}, dstPitch};
    const PlanarFrame src{{srcY, srcCb, srcCr}, srcPitch};
    if ((dstIs422 != 0) != (srcIs422 != 0)) return transfer({dst, src, width, height, dstIs422 != 0});
    if (dstIs422 != 0) return copy422(dst, src, height);
    copy420(dst, src, height);
    return dstPitch * height * 3 / 2;
}
