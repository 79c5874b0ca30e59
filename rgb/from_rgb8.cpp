// The engine behind every converter from RGB to 8-bit YCbCr.
#include "core/frame.h"
#include "core/planes.h"
#include "core/rows.h"
#include "fikleipa.h"
#include "rgb/from_rgb_matrix.h"
#include "rgb/layout.h"
#include "simd/kernels.h"

#include <cstddef>
#include <optional>

namespace {

using namespace fikleipa;

struct SourceLayout {
    simd::RgbPixel pixel;
    simd::RgbOrder order;
};

// None for a depth that pixels do not have.
std::optional<SourceLayout> sourceLayout(PXYCBCRRgbType type, unsigned bitsPerPixel) {
    using simd::RgbPixel;
    switch (bitsPerPixel / 8) {
    case 3:
        return SourceLayout{RgbPixel::Bytes3, threeComponents(type)};
    case 4:
        return SourceLayout{RgbPixel::Bytes4, fourComponents(type)};
    case 6:
        // The orders of four components, which with 1 and 3 reach into the next pixel: deliberate.
        return SourceLayout{RgbPixel::Words3, fourComponents(type)};
    case 8:
        return SourceLayout{RgbPixel::Words4, fourComponents(type)};
    default:
        return std::nullopt;
    }
}

constexpr unsigned kPairBytes = 4; // of a packed destination

struct Samples {
    Planes planes;
    bool planar;
    bool fullChromaRows;
    unsigned chromaPitch;

    // The rows of a field take turns to give chroma: of every four rows the first and the last do.
    bool hasChroma(unsigned r) const { return !planar || fullChromaRows || r % 4 == 0 || r % 4 == 3; }

    Planes row(unsigned r, unsigned pitch) const {
        if (!planar) return planes.at(r * pitch, r * pitch);
        return planes.at(r * pitch, (fullChromaRows ? r : r / 2) * chromaPitch);
    }

    simd::Samples8 order() const {
        return planar ? simd::Samples8::Planar : simd::packedSamples(planes.y, planes.cb, planes.cr);
    }
};

// Rows of RGB from the bottom to the top are read as memory has them, the last row of the picture first, where large
// packed frames can be written past the cache; otherwise the order of the rows shows, or costs less.
bool startsAtBottom(const Samples& dst, const RgbFrame& f) {
    if (!isBottomUp(f.rgbType) || dst.order() >= simd::Samples8::Packed) return false;
    return goesPastCache({{dst.planes.y, kPairBytes * std::uint64_t{f.width / 2}, f.dstPitch, f.height}});
}

void convert(const Samples& dst, const RgbFrame& f, const SourceLayout& layout) {
    const auto pixel = static_cast<std::size_t>(layout.pixel);
    const simd::FromRgb8Kernel convertPairs =
        simd::kernels().fromRgb8.convert[pixel][static_cast<std::size_t>(dst.order())];
    const simd::LumaFromRgb8Kernel convertLuma = simd::kernels().fromRgb8.luma[pixel];
    const simd::FromRgbRow& coefficients = fromRgb8Row(f.matrix);
    const bool bottomUp = isBottomUp(f.rgbType);
    const bool fromBottom = startsAtBottom(dst, f);
    const std::size_t pairs = f.width / 2;
    const auto pitch = static_cast<std::ptrdiff_t>(f.srcPitch);
    RowWriter<1> packedRows(fromBottom, {kPairBytes});
    for (unsigned i = 0; i < f.height; ++i) {
        const unsigned r = fromBottom ? f.height - 1 - i : i;
        const unsigned char* const src = f.src + (bottomUp ? f.height - 1 - r : r) * f.srcPitch;
        const simd::RgbPairs from{src, pairs, bottomUp == fromBottom ? pitch : -pitch, layout.order};
        const Planes row = dst.row(r, f.dstPitch);
        if (!dst.hasChroma(r)) {
            convertLuma(row.y, from, coefficients);
        } else if (!fromBottom) {
            convertPairs(row.y, row.cb, row.cr, from, coefficients);
        } else {
            const Placement at = placementOf(dst.order());
            packedRows.write({row.y - at.y}, pairs, [&](const auto& to, std::size_t first, std::size_t count) {
                const Planes out = at.in(to[0]);
                convertPairs(out.y, out.cb, out.cr,
                             {src + first * 2 * bytesPerPixel(layout.pixel), count, from.ahead, layout.order},
                             coefficients);
            });
        }
    }
}

} // namespace

unsigned int FromRGBInt(unsigned char* luma, unsigned char* cb, unsigned char* cr, unsigned char* src,
                        unsigned int width, unsigned int height, unsigned int dstPitch, unsigned int srcPitch,
                        PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType, int chroma422, int planar,
                        unsigned int bitsPerPixel, unsigned int chromaPitch) {
    const Samples dst{{luma, cb, cr}, planar != 0, chroma422 != 0, chromaPitch};
    const auto layout = sourceLayout(rgbType, bitsPerPixel);
    if (layout && width >= 2) {
        convert(dst, {{luma, src, width, height, dstPitch, srcPitch}, matrix, rgbType}, *layout);
    }
    const unsigned area = width * height;
    return chroma422 != 0 ? area * 2 : area + area / 4 * 2;
}

unsigned int FromRGB(unsigned char* luma, unsigned char* cb, unsigned char* cr, unsigned char* src, unsigned int width,
                     unsigned int height, unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                     PXYCBCRRgbType rgbType, int chroma422, int planar, unsigned int bitsPerPixel,
                     unsigned int chromaPitch) {
    return FromRGBInt(luma, cb, cr, src, width, height, dstPitch, srcPitch, matrix, rgbType, chroma422, planar,
                      bitsPerPixel, chromaPitch);
}

unsigned int cycbcr_RGB32_to_planar(unsigned char* luma, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                    unsigned int width, unsigned int height, unsigned int dstPitch,
                                    unsigned int chromaPitch, int chroma422, unsigned int srcPitch,
                                    PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType) {
    return FromRGBInt(luma, cb, cr, src, width, height, dstPitch, srcPitch, matrix, rgbType, chroma422, 1, 32,
                      chromaPitch);
}
