// From packed 8-bit 4:2:2 to planes.
#include "core/frame.h"
#include "core/planes.h"
#include "core/processor.h"
#include "core/rows.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "yuv8/flip.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>

namespace {

using namespace fikleipa;
using namespace fikleipa::placement;

// Where the luma and the chroma of a source row go, the latter if anywhere.
struct Rows {
    unsigned luma;
    std::optional<unsigned> chroma;
};
using RowsOf = Rows (*)(unsigned y, bool fullChromaRows);

// In 4:2:0 each field keeps chroma of its own: rows 0, 3, 4, 7, 8 and so on give theirs.
Rows fieldRows(unsigned y, bool fullChromaRows) {
    if (fullChromaRows) return {y, y};
    const bool hasChroma = y % 4 == 0 || y % 4 == 3;
    return {y, hasChroma ? std::optional(y / 2) : std::nullopt};
}

// The lines of a pair change places. In 4:2:2 the odd row's chroma follows the even one's to the same row: deliberate.
Rows exchangedRows(unsigned y, bool fullChromaRows) {
    return {y ^ 1, fullChromaRows || y % 2 == 0 ? std::optional(y / 2) : std::nullopt};
}

struct Source {
    Planes at;
    unsigned width;
    unsigned pitch;

    std::size_t pairs() const { return width / 2; }
    // Rows that follow one another without a gap begin where the last group of the one before it ended: with an odd
    // width they drift.
    Planes row(unsigned y) const {
        const std::size_t offset = pitch == 2 * width ? 4 * pairs() * y : y * pitch;
        return at.at(offset, offset);
    }
};

struct Destination {
    Planes at;
    unsigned pitch;
    bool fullChromaRows;

    // Without chroma, its pointers are null.
    Planes rows(const Rows& r) const {
        if (!r.chroma) return {at.y + r.luma * pitch, nullptr, nullptr};
        return at.at(r.luma * pitch, *r.chroma * (pitch / 2));
    }
};

// Writes the rows of three planes by way of what reads the source.
class Splitter {
public:
    Splitter(const Source& src, std::initializer_list<RowSpan> written)
        : src_(src),
          split_(simd::kernels()
                     .planes8.split[static_cast<unsigned>(simd::packedSamples(src.at.y, src.at.cb, src.at.cr))]),
          rows_(goesPastCache(written), {2, 1, 1}) {}

    // Chroma without a row is left out.
    void row(unsigned y, const Planes& dst) {
        const Planes row = src_.row(y);
        rows_.write({dst.y, dst.cb, dst.cr}, simd::SourceRow{row.y, 4 * src_.pairs(), src_.pitch}, src_.pairs(),
                    [&](const auto& to, std::size_t first, std::size_t count) {
                        const Planes from = row.at(4 * first, 4 * first);
                        split_(to[0], to[1], to[2], from.y, from.cb, from.cr, count);
                    });
    }

private:
    const Source& src_;
    simd::SplitKernel split_;
    RowWriter<3> rows_;
};

// Chroma samples that stay in cache.
constexpr std::size_t kPiece = 4096;
struct ChromaPiece {
    std::array<unsigned char, kPiece> cb{};
    std::array<unsigned char, kPiece> cr{};
};

// Calls convert(first, count) for the pairs of a row by pieces.
template <class Convert>
void eachPiece(std::size_t pairs, Convert convert) {
    for (std::size_t i = 0; i < pairs; i += kPiece) convert(i, std::min(kPiece, pairs - i));
}

// Rows of UYVY as they lie.
struct UyvyRows {
    std::uint8_t* start;
    std::size_t pairs;
    unsigned pitch;
};

// Splits two rows at a time, which share the mean of their chroma.
class PairAverager {
public:
    PairAverager(const UyvyRows& src, const Destination& dst, unsigned height)
        : src_(src), dst_(dst), rows_(pastCache(src.pairs, dst, halfRows(height)), {2, 1, 1}) {}

    void rows(unsigned first) {
        eachPiece(src_.pairs, [&](std::size_t piece, std::size_t count) {
            Planes to = dst_.rows({first, std::nullopt}).at(2 * piece, 0);
            write(to, first, piece, count, [&](const auto& luma, const Planes& from, std::size_t i, std::size_t n) {
                split_(luma[0], &upper_.cb[i], &upper_.cr[i], from.y, from.cb, from.cr, n);
            });
            to = dst_.rows({first + 1, first / 2}).at(2 * piece, piece);
            write(to, first + 1, piece, count, [&](const auto& out, const Planes& from, std::size_t i, std::size_t n) {
                split_(out[0], lower_.cb.data(), lower_.cr.data(), from.y, from.cb, from.cr, n);
                average_(out[1], &upper_.cb[i], lower_.cb.data(), n);
                average_(out[2], &upper_.cr[i], lower_.cr.data(), n);
            });
        });
    }

private:
    static bool pastCache(std::size_t pairs, const Destination& dst, unsigned pairsOfRows) {
        return goesPastCache({{dst.at.y, 2 * pairs, dst.pitch, 2 * pairsOfRows},
                              {dst.at.cb, pairs, dst.pitch / 2, pairsOfRows},
                              {dst.at.cr, pairs, dst.pitch / 2, pairsOfRows}});
    }

    template <class Fill>
    void write(const Planes& to, unsigned row, std::size_t piece, std::size_t count, Fill fill) {
        std::uint8_t* const from = src_.start + row * src_.pitch + 4 * piece;
        rows_.write({to.y, to.cb, to.cr}, simd::SourceRow{from, 4 * count, src_.pitch}, count,
                    [&](const auto& out, std::size_t i, std::size_t n) { fill(out, uyvy(0).in(from + 4 * i), i, n); });
    }

    UyvyRows src_;
    Destination dst_;
    RowWriter<3> rows_;
    simd::SplitKernel split_ = simd::kernels().planes8.split[static_cast<unsigned>(simd::Samples8::Uyvy)];
    simd::AverageBytesKernel average_ = simd::kernels().planes8.average;
    ChromaPiece upper_;
    ChromaPiece lower_;
};

// The size of 4:2:0 whatever the planes: deliberate.
unsigned planarSize(unsigned lumaBytes) {
    return lumaBytes + (lumaBytes / 2 & ~1U);
}

template <RowsOf kRows>
unsigned splitFrame(const Destination& dst, const Source& src, unsigned height) {
    constexpr bool kExchanged = kRows == exchangedRows;
    const unsigned lines = kExchanged ? height + height % 2 : height;
    const unsigned chromaRows = dst.fullChromaRows && !kExchanged ? height : halfRows(height);
    const std::size_t pairs = src.pairs();
    const unsigned size = planarSize(dst.pitch * height);
    if (pairs == 0) return size;
    Splitter splitter(src, {{dst.at.y, 2 * pairs, dst.pitch, lines},
                            {dst.at.cb, pairs, dst.pitch / 2, chromaRows},
                            {dst.at.cr, pairs, dst.pitch / 2, chromaRows}});
    for (unsigned y = 0; y < height; ++y) splitter.row(y, dst.rows(kRows(y, dst.fullChromaRows)));
    return size;
}

template <PlacementOf kTo>
Destination destinationOf(const Frame& f) {
    const Placement at = kTo(f.dstPitch * f.height);
    return {at.in(f.dst), f.dstPitch, at.fullChromaRows};
}

template <PlacementOf kFrom, PlacementOf kTo>
unsigned convert(const Frame& f) {
    return splitFrame<fieldRows>(destinationOf<kTo>(f), {kFrom(0).in(f.src), f.width, f.srcPitch}, f.height);
}

// The planes of a frame as they are turned over.
struct FlipPlanes {
    FlipFrame y, cb, cr;

    FlipPlanes(const Frame& f, const Destination& dst) : y{}, cb{}, cr{} {
        const std::uint64_t pairs = f.width / 2;
        const unsigned chromaRows = dst.fullChromaRows ? f.height : f.height / 2;
        y = {dst.at.y, f.height, dst.pitch, 2 * pairs};
        cb = {dst.at.cb, chromaRows, dst.pitch / 2, pairs};
        cr = {dst.at.cr, chromaRows, dst.pitch / 2, pairs};
    }

    // Beside what holds for every plane, planes must not wrap onto one another, and no chroma row may lie past the
    // last, as one does where a frame's last row is the first of four.
    bool canFlipWhileConverting() const {
        const bool wraps = std::uint64_t{y.dstPitch} * y.height > UINT32_MAX / 2;
        return !wraps && (cb.height == y.height || y.height % 4 != 1) && fikleipa::canFlipWhileConverting(y) &&
               fikleipa::canFlipWhileConverting(cb) && fikleipa::canFlipWhileConverting(cr);
    }

    template <class Turn>
    void each(Turn turn) const {
        for (const FlipFrame* plane : {&y, &cb, &cr}) turn(*plane);
    }
};

// As UYVY, and the planes turned over afterwards: in one pass where that comes to the same.
template <PlacementOf kTo>
unsigned convertCyuv(const Frame& f) {
    const unsigned size = planarSize(f.dstPitch * f.height);
    if (f.width < 2 || f.height == 0) return size;

    const Destination dst = destinationOf<kTo>(f);
    const FlipPlanes planes(f, dst);
    if (!planes.canFlipWhileConverting()) {
        convert<uyvy, kTo>(f);
        planes.each([](const FlipFrame& plane) { cycbcr_invert(plane.dst, plane.dstPitch, plane.height); });
        return size;
    }
    const Source src{uyvy(0).in(f.src), f.width, f.srcPitch};
    Splitter splitter(src, {planes.y.rows(), planes.cb.rows(), planes.cr.rows()});
    for (unsigned r = 0; r < f.height; ++r) {
        Rows rows = fieldRows(r, dst.fullChromaRows);
        rows.luma = planes.y.height - 1 - rows.luma;
        if (rows.chroma) rows.chroma = planes.cb.height - 1 - *rows.chroma;
        splitter.row(r, dst.rows(rows));
    }
    planes.each(flipPadding);
    return size;
}

} // namespace

#define TO_PLANAR(name, converter, ...)                                                                                \
    unsigned int name(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,                 \
                      unsigned int dstPitch, unsigned int srcPitch) {                                                  \
        probeProcessorLevel();                                                                                         \
        return converter<__VA_ARGS__>({dst, src, width, height, dstPitch, srcPitch});                                  \
    }

TO_PLANAR(cycbcr_yuy2_to_i420, convert, yuy2, i420)
TO_PLANAR(cycbcr_yuy2_to_yv12, convert, yuy2, yv12)
TO_PLANAR(cycbcr_yuy2_to_p422, convert, yuy2, p422)
TO_PLANAR(cycbcr_yvyu_to_i420, convert, yvyu, i420)
TO_PLANAR(cycbcr_yvyu_to_yv12, convert, yvyu, yv12)
TO_PLANAR(cycbcr_yvyu_to_p422, convert, yvyu, p422)
TO_PLANAR(cycbcr_uyvy_to_i420, convert, uyvy, i420)
TO_PLANAR(cycbcr_uyvy_to_yv12, convert, uyvy, yv12)
TO_PLANAR(cycbcr_uyvy_to_p422, convert, uyvy, p422)
TO_PLANAR(cycbcr_cyuv_to_i420, convertCyuv, i420)
TO_PLANAR(cycbcr_cyuv_to_yv12, convertCyuv, yv12)
TO_PLANAR(cycbcr_cyuv_to_p422, convertCyuv, p422)

#undef TO_PLANAR

unsigned int cycbcr_toplanar(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* dstY,
                             unsigned char* dstCb, unsigned char* dstCr, unsigned int width, unsigned int height,
                             unsigned int dstPitch, unsigned int srcPitch, int is422) {
    probeProcessorLevel();
    return splitFrame<fieldRows>({{dstY, dstCb, dstCr}, dstPitch, is422 != 0}, {{y, cb, cr}, width, srcPitch}, height);
}

unsigned int cycbcr_toplanar_fieldinvert(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* dstY,
                                         unsigned char* dstCb, unsigned char* dstCr, unsigned int width,
                                         unsigned int height, unsigned int dstPitch, unsigned int srcPitch, int is422) {
    probeProcessorLevel();
    return splitFrame<exchangedRows>({{dstY, dstCb, dstCr}, dstPitch, is422 != 0}, {{y, cb, cr}, width, srcPitch},
                                     height);
}

// Whole steps are converted, one at least, and the rows of a pair always both.
unsigned int cycbcr_toplanar_sse2(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* dstY,
                                  unsigned char* dstCb, unsigned char* dstCr, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, int /*ignored*/) {
    probeProcessorLevel();
    constexpr std::size_t kStepPixels = 8;
    const std::size_t pairs = std::max<std::size_t>(1, (width + kStepPixels - 1) / kStepPixels) * kStepPixels / 2;
    PairAverager averager({std::min({y, cb, cr}, std::less<>()), pairs, 2 * srcPitch},
                          {{dstY, dstCb, dstCr}, dstPitch, false}, height);
    for (unsigned r = 0; r < height; r += 2) averager.rows(r);
    return dstPitch * height;
}
