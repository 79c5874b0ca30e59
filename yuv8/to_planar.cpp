// From packed 8-bit 4:2:2 to planes.
#include "core/frame.h"
#include "core/planes.h"
#include "core/processor.h"
#include "core/rows.h"
#include "fikleipa.h"
#include "simd/apart.h"
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

    Planes rows(const Rows& r) const { return at.at(r.luma * pitch, r.chroma.value_or(0) * (pitch / 2)); }

    bool isApartFrom(const Source& src, unsigned height) const {
        const std::size_t pairs = src.pairs();
        const simd::Span luma{at.y, std::max<std::size_t>(pitch, 2 * pairs) * (height + height % 2)};
        const std::size_t chroma = std::size_t{pitch / 2} * (height / 2 + 1) + pairs;
        const simd::Span read{std::min({src.at.y, src.at.cb, src.at.cr}, std::less<>()),
                              std::size_t{src.pitch} * height + 4 * pairs};
        return simd::apart(luma, {at.cb, chroma}) && simd::apart(luma, {at.cr, chroma}) && simd::apart(luma, read);
    }
};

// Chroma samples that stay in cache.
constexpr std::size_t kPiece = 1024;
struct ChromaPiece {
    std::array<unsigned char, kPiece> cb{};
    std::array<unsigned char, kPiece> cr{};
};

// Calls convert(first, count) for the pairs of a row by pieces.
template <class Convert>
void eachPiece(std::size_t pairs, Convert convert) {
    for (std::size_t i = 0; i < pairs; i += kPiece) convert(i, std::min(kPiece, pairs - i));
}

class Splitter {
public:
    explicit Splitter(const Source& src)
        : src_(src),
          split_(simd::kernels()
                     .planes8.split[static_cast<unsigned>(simd::packedSamples(src.at.y, src.at.cb, src.at.cr))]) {}

    void row(unsigned y, const Planes& dst, bool withChroma) {
        const Planes from = src_.row(y);
        if (withChroma) {
            split_(dst.y, dst.cb, dst.cr, from.y, from.cb, from.cr, src_.pairs());
            return;
        }
        // Memory takes this better than luma alone, as fast as that could be read.
        eachPiece(src_.pairs(), [&](std::size_t i, std::size_t count) {
            const Planes at = from.at(4 * i, 4 * i);
            split_(dst.y + 2 * i, unseen_.cb.data(), unseen_.cr.data(), at.y, at.cb, at.cr, count);
        });
    }

private:
    const Source& src_;
    simd::SplitKernel split_;
    ChromaPiece unseen_;
};

void average(unsigned char* dst, const std::array<unsigned char, kPiece>& a, const std::array<unsigned char, kPiece>& b,
             std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) dst[i] = static_cast<unsigned char>((a[i] + b[i] + 1) / 2);
}

// The size of 4:2:0 whatever the planes: deliberate.
unsigned planarSize(unsigned lumaBytes) {
    return lumaBytes + (lumaBytes / 2 & ~1U);
}

template <RowsOf kRows>
unsigned splitFrame(const Destination& dst, const Source& src, unsigned height) {
    constexpr RowOrder kOrder = kRows == exchangedRows ? RowOrder::LinesExchanged : RowOrder::TopDown;
    Splitter splitter(src);
    const std::size_t rowBytes = 2 * src.pairs();
    const bool viaCache = kOrder != RowOrder::TopDown && dst.isApartFrom(src, height);
    RowWriter luma(dst.at.y, dst.pitch, kOrder, viaCache ? rowBytes : SIZE_MAX, height, rowBytes * height / 2);
    for (unsigned y = 0; y < height; ++y) {
        const Rows rows = kRows(y, dst.fullChromaRows);
        luma.write(y, [&](unsigned char* to) {
            const Planes at = dst.rows(rows);
            splitter.row(y, {to, at.cb, at.cr}, rows.chroma.has_value());
        });
    }
    return planarSize(dst.pitch * height);
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
        const std::uint64_t srcBytes = std::uint64_t{f.srcPitch} * (f.height - 1) + 4 * pairs;
        const unsigned chromaRows = dst.fullChromaRows ? f.height : f.height / 2;
        y = {dst.at.y, f.src, srcBytes, f.height, dst.pitch, 2 * pairs};
        cb = {dst.at.cb, f.src, srcBytes, chromaRows, dst.pitch / 2, pairs};
        cr = {dst.at.cr, f.src, srcBytes, chromaRows, dst.pitch / 2, pairs};
    }

    // Beside what holds for every plane, planes must not wrap onto one another, and no chroma row may lie past the
    // last, as one does where a frame's last row is the first of four.
    bool canFlipWhileConverting() const {
        const bool wraps = std::uint64_t{y.dstPitch} * y.height > UINT32_MAX / 2;
        return !wraps && (cb.height == y.height || y.height % 4 != 1) && fikleipa::canFlipWhileConverting(y) &&
               fikleipa::canFlipWhileConverting(cb) && fikleipa::canFlipWhileConverting(cr);
    }

    RowWriter writer(const FlipFrame& plane) const {
        const auto bytes = [](const FlipFrame& of) { return static_cast<std::size_t>(of.rowBytes * of.height); };
        const auto rowBytes = static_cast<std::size_t>(plane.rowBytes);
        const std::size_t otherBytes = bytes(y) + bytes(cb) + bytes(cr) - bytes(plane);
        return {plane.dst, plane.dstPitch, true, rowBytes, plane.height, otherBytes};
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
    Splitter splitter(src);
    RowWriter y = planes.writer(planes.y);
    RowWriter cb = planes.writer(planes.cb);
    RowWriter cr = planes.writer(planes.cr);
    for (unsigned r = 0; r < f.height; ++r) {
        const auto chroma = fieldRows(r, dst.fullChromaRows).chroma;
        y.write(r, [&](unsigned char* toY) {
            if (!chroma) {
                splitter.row(r, {toY, nullptr, nullptr}, false);
                return;
            }
            cb.write(*chroma, [&](unsigned char* toCb) {
                cr.write(*chroma, [&](unsigned char* toCr) { splitter.row(r, {toY, toCb, toCr}, true); });
            });
        });
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
    const Planes src = uyvy(0).in(std::min({y, cb, cr}, std::less<>()));
    const Planes dst{dstY, dstCb, dstCr};
    const unsigned srcRow = 2 * srcPitch;
    const simd::SplitKernel split = simd::kernels().planes8.split[static_cast<unsigned>(simd::Samples8::Uyvy)];
    ChromaPiece upper;
    ChromaPiece lower;
    for (unsigned r = 0; r < height; r += 2) {
        eachPiece(pairs, [&](std::size_t i, std::size_t count) {
            for (const unsigned row : {r, r + 1}) {
                const Planes from = src.at(row * srcRow + 4 * i, row * srcRow + 4 * i);
                ChromaPiece& chroma = row == r ? upper : lower;
                split(dstY + row * dstPitch + 2 * i, chroma.cb.data(), chroma.cr.data(), from.y, from.cb, from.cr,
                      count);
            }
            const Planes to = dst.at(0, r / 2 * (dstPitch / 2) + i);
            average(to.cb, upper.cb, lower.cb, count);
            average(to.cr, upper.cr, lower.cr, count);
        });
    }
    return dstPitch * height;
}
