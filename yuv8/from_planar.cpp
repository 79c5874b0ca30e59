// From planes to packed 8-bit 4:2:2.
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

namespace {

using namespace fikleipa;
using namespace fikleipa::placement;

// How chroma belongs to rows of luma. Other than in 4:2:0 a row's samples begin where those of the row before it ended,
// whatever the pitch.
enum class Chroma { Fields420, RunOn422, RunOn444 };

// The even rows of 4:2:0 chroma are the top field's, the odd ones the bottom field's.
constexpr unsigned fieldChromaRow(unsigned y) {
    return y % 2 == 0 ? y / 2 & ~1U : y / 2 | 1U;
}

constexpr std::size_t pairsOf(unsigned width) {
    return (std::size_t{width} + 1) / 2;
}

struct Source {
    Planes at;
    unsigned pitch;
    std::size_t pairs;
    Chroma chroma;
    bool lumaRunsOn;

    Planes row(unsigned y) const {
        const std::size_t luma = lumaRunsOn ? 2 * pairs * y : y * pitch;
        switch (chroma) {
        case Chroma::Fields420:
            return at.at(luma, fieldChromaRow(y) * (pitch / 2));
        case Chroma::RunOn444:
            return at.at(luma, 2 * pairs * y);
        case Chroma::RunOn422:
            break;
        }
        return at.at(luma, pairs * y);
    }
};

enum class RowOrder { TopDown, BottomUp, LinesExchanged };

struct Destination {
    Planes at;
    unsigned pitch;
    RowOrder order = RowOrder::TopDown;

    unsigned offset(unsigned y, unsigned height) const {
        if (order == RowOrder::LinesExchanged) return (y ^ 1) * pitch;
        return destinationOffset(y, height, pitch, order == RowOrder::BottomUp);
    }
};

constexpr unsigned kPairBytes = 4;

// Writes the rows of a destination: calls fill(y, to, first, count) for `count` pairs of row y from pair `first` on.
template <class Fill>
void eachRow(const Destination& dst, const Source& src, unsigned height, Fill fill) {
    if (src.pairs == 0) return;
    const auto order = simd::packedSamples(dst.at.y, dst.at.cb, dst.at.cr);
    if (order == simd::Samples8::Packed) {
        // Pointers of no known order may be any distance apart, so that a row is no row of bytes.
        for (unsigned y = 0; y < height; ++y) {
            const unsigned offset = dst.offset(y, height);
            fill(y, dst.at.at(offset, offset), std::size_t{0}, src.pairs);
        }
        return;
    }
    const Placement at = placementOf(order);
    unsigned char* const start = dst.at.y - at.y;
    const unsigned lines = dst.order == RowOrder::LinesExchanged ? height + height % 2 : height;
    RowWriter<1> rows(goesPastCache({{start, kPairBytes * src.pairs, dst.pitch, lines}}), {kPairBytes});
    for (unsigned y = 0; y < height; ++y) {
        rows.write({start + dst.offset(y, height)}, src.pairs,
                   [&](const auto& to, std::size_t first, std::size_t count) { fill(y, at.in(to[0]), first, count); });
    }
}

simd::JoinKernel joinKernel(const Planes& dst, Chroma chroma) {
    const auto& kernels = simd::kernels().planes8;
    const auto samples = static_cast<unsigned>(simd::packedSamples(dst.y, dst.cb, dst.cr));
    return (chroma == Chroma::RunOn444 ? kernels.join444 : kernels.join)[samples];
}

void joinFrame(const Destination& dst, const Source& src, unsigned height) {
    const simd::JoinKernel join = joinKernel(dst.at, src.chroma);
    const std::size_t chromaBytes = src.chroma == Chroma::RunOn444 ? 2 : 1;
    eachRow(dst, src, height, [&](unsigned y, const Planes& to, std::size_t first, std::size_t count) {
        const Planes from = src.row(y).at(2 * first, chromaBytes * first);
        join(to.y, to.cb, to.cr, from.y, from.cb, from.cr, count);
    });
}

// Rows whose chroma moves on by a sample behind groups 0, 2, 4 and so on, so that a sample serves two groups.
class SlowChroma {
public:
    explicit SlowChroma(const Planes& dst) : join_(joinKernel(dst, Chroma::RunOn422)) {}

    void joinRow(Planes dst, Planes src, std::size_t pairs) {
        while (pairs != 0) {
            const std::size_t piece = std::min(kPiece, pairs);
            stretch(cb_, src.cb, piece);
            stretch(cr_, src.cr, piece);
            join_(dst.y, dst.cb, dst.cr, src.y, cb_.data(), cr_.data(), piece);
            dst = dst.at(4 * piece, 4 * piece);
            src = src.at(2 * piece, piece / 2);
            pairs -= piece;
        }
    }

    static std::size_t samples(std::size_t pairs) { return (pairs + 1) / 2; }

private:
    static constexpr std::size_t kPiece = 1024; // even, so that every piece begins like a row
    using Piece = std::array<std::uint8_t, kPiece + 1>;

    static void stretch(Piece& to, const std::uint8_t* from, std::size_t count) {
        to[0] = from[0];
        for (std::size_t i = 1; i <= count / 2; ++i) to[2 * i - 1] = to[2 * i] = from[i];
    }

    simd::JoinKernel join_;
    Piece cb_{}, cr_{};
};

// In 4:2:0, chroma is looked for at odd rows alone and runs on at even ones; otherwise it runs on through the frame.
// Deliberate.
void joinFrameSlowly(const Destination& dst, const Source& src, unsigned height, bool runsOn) {
    SlowChroma chroma(dst.at);
    std::size_t position = 0;
    eachRow(dst, src, height, [&](unsigned y, const Planes& to, std::size_t first, std::size_t count) {
        if (!runsOn && y % 2 != 0 && first == 0) position = y / 2 * (src.pitch / 2);
        chroma.joinRow(to, {src.row(y).y + 2 * first, src.at.cb + position, src.at.cr + position}, count);
        position += SlowChroma::samples(count);
    });
}

// Planes of a frame are placed by width and height, whatever the pitch.
template <PlacementOf kFrom>
Source sourceOf(const Frame& f) {
    const Placement at = kFrom(f.width * f.height);
    return {at.in(f.src), f.srcPitch, pairsOf(f.width), at.fullChromaRows ? Chroma::RunOn422 : Chroma::Fields420,
            false};
}

template <PlacementOf kFrom, PlacementOf kTo>
unsigned convert(const Frame& f) {
    joinFrame({kTo(0).in(f.dst), f.dstPitch}, sourceOf<kFrom>(f), f.height);
    return f.dstPitch * f.height;
}

// The destination is turned over afterwards: in one pass where that comes to the same.
template <PlacementOf kFrom, PlacementOf kTo>
unsigned convertAndFlip(const Frame& f) {
    const unsigned size = f.dstPitch * f.height;
    if (f.width == 0 || f.height == 0) return size;

    const Source src = sourceOf<kFrom>(f);
    const std::size_t rowBytes = 4 * src.pairs;
    const FlipFrame flip{f.dst, f.height, f.dstPitch, rowBytes};
    if (!canFlipWhileConverting(flip)) {
        convert<kFrom, kTo>(f);
        cycbcr_invert(f.dst, f.dstPitch, f.height);
        return size;
    }
    joinFrame({kTo(0).in(f.dst), f.dstPitch, RowOrder::BottomUp}, src, f.height);
    flipPadding(flip);
    return size;
}

Chroma chromaOf(unsigned mode) {
    const unsigned format = mode & 15;
    return format == 0 ? Chroma::Fields420 : format == 2 ? Chroma::RunOn444 : Chroma::RunOn422;
}

} // namespace

#define FROM_PLANAR(name, converter, ...)                                                                              \
    unsigned int name(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,                 \
                      unsigned int dstPitch, unsigned int srcPitch) {                                                  \
        probeProcessorLevel();                                                                                         \
        return converter<__VA_ARGS__>({dst, src, width, height, dstPitch, srcPitch});                                  \
    }

FROM_PLANAR(cycbcr_i420_to_yuy2, convert, i420, yuy2)
FROM_PLANAR(cycbcr_i420_to_yvyu, convert, i420, yvyu)
FROM_PLANAR(cycbcr_i420_to_uyvy, convert, i420, uyvy)
FROM_PLANAR(cycbcr_i420_to_cyuv, convertAndFlip, i420, uyvy)
FROM_PLANAR(cycbcr_yv12_to_yuy2, convert, yv12, yuy2)
FROM_PLANAR(cycbcr_yv12_to_yvyu, convert, yv12, yvyu)
FROM_PLANAR(cycbcr_yv12_to_uyvy, convert, yv12, uyvy)
FROM_PLANAR(cycbcr_yv12_to_cyuv, convertAndFlip, yv12, yuy2) // not in UYVY's order: deliberate
FROM_PLANAR(cycbcr_p422_to_yuy2, convert, p422, yuy2)
FROM_PLANAR(cycbcr_p422_to_yvyu, convert, p422, yvyu)
FROM_PLANAR(cycbcr_p422_to_uyvy, convert, p422, uyvy)
FROM_PLANAR(cycbcr_p422_to_cyuv, convertAndFlip, p422, uyvy)

#undef FROM_PLANAR

unsigned int cycbcr_fromplanar(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* dstY,
                               unsigned char* dstCb, unsigned char* dstCr, unsigned int width, unsigned int height,
                               unsigned int dstPitch, unsigned int srcPitch, unsigned int mode) {
    probeProcessorLevel();
    joinFrame({{dstY, dstCb, dstCr}, dstPitch},
              {{y, cb, cr}, srcPitch, pairsOf(width), chromaOf(mode), srcPitch == width}, height);
    return dstPitch * height;
}

unsigned int cycbcr_fromplanar_fieldinvert(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* dstY,
                                           unsigned char* dstCb, unsigned char* dstCr, unsigned int width,
                                           unsigned int height, unsigned int dstPitch, unsigned int srcPitch,
                                           unsigned int mode) {
    probeProcessorLevel();
    const Destination dst{{dstY, dstCb, dstCr}, dstPitch, RowOrder::LinesExchanged};
    const Source src{{y, cb, cr}, srcPitch, pairsOf(width), chromaOf(mode), srcPitch == width};
    const unsigned format = mode & 15;
    if (format == 1 || format == 2) {
        joinFrame(dst, src, height);
    } else {
        joinFrameSlowly(dst, src, height, format != 0);
    }
    return dstPitch * height;
}
