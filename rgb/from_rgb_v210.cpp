// The converters from RGB to v210.
#include "core/frame.h"
#include "core/processor.h"
#include "fikleipa.h"
#include "rgb/from_rgb_deep.h"
#include "rgb/from_rgb_deep_matrix.h"
#include "simd/kernels.h"
#include "simd/unaligned.h"

#include <algorithm>
#include <array>

namespace {

using namespace fikleipa;
using simd::kV210GroupBytes;
using simd::kV210GroupPixels;

// How a pair takes its chroma: by a filter of four taps, or that of its first pixel.
enum class PairChroma { Filtered, First };

constexpr unsigned kNeutral = 512;

// Rows go in pieces of so many pixels, whose samples stay in the first-level cache. The filter looks a pixel ahead, so
// a group more is converted.
constexpr std::size_t kPiecePixels = 1920;
constexpr std::size_t kRoomPixels = kPiecePixels + kV210GroupPixels;

// 16-bit samples, of which the one ahead of the first is there too.
class SampleRow {
public:
    std::uint8_t* data() { return bytes_.data() + kAhead; }
    [[nodiscard]] unsigned at(std::size_t i) const {
        return simd::loadWord<std::uint16_t>(bytes_.data() + kAhead + 2 * i);
    }
    void put(std::size_t i, unsigned sample) { simd::storeWord<std::uint16_t>(data() + 2 * i, sample); }
    void putAhead(unsigned sample) { simd::storeWord<std::uint16_t>(data() - 2, sample); }

private:
    static constexpr std::size_t kAhead = 64;
    alignas(64) std::array<std::uint8_t, kAhead + 2 * kRoomPixels + 2> bytes_; // NOLINT(*-member-init): room
};

// Chroma for pixels, and what it comes to for pairs, a sample of every two.
struct ChromaRow {
    SampleRow pixels;
    SampleRow pairs;
};

class V210FromRgb {
public:
    V210FromRgb(const RgbLayout& layout, const simd::FromRgbDeepRow& row, PairChroma chroma)
        : layout_(layout), row_(row), chroma_(chroma),
          convert_(simd::kernels().fromRgbDeep.full[static_cast<unsigned>(layout.source)]),
          filter_(simd::kernels().fromRgbDeep.filterChroma),
          pack_(simd::kernels().v210.pack16[static_cast<unsigned>(simd::Reduce::Low10)]
                                           [static_cast<unsigned>(simd::Chroma::Full)]) {}

    void convertRow(std::uint8_t* dst, const std::uint8_t* src, std::size_t width) {
        cb_.pixels.putAhead(kNeutral);
        cr_.pixels.putAhead(kNeutral);
        for (; width > kRoomPixels; width -= kPiecePixels) {
            convertPixels(src, kRoomPixels);
            packGroups(dst, kPiecePixels / kV210GroupPixels);
            cb_.pixels.putAhead(cb_.pixels.at(kPiecePixels - 1));
            cr_.pixels.putAhead(cr_.pixels.at(kPiecePixels - 1));
            src += kPiecePixels * bytesPerPixel(layout_.source);
            dst += kPiecePixels / kV210GroupPixels * kV210GroupBytes;
        }
        convertPixels(src, width);
        packEnd(dst, width);
    }

private:
    void convertPixels(const std::uint8_t* src, std::size_t pixels) {
        convert_(y_.data(), cb_.pixels.data(), cr_.pixels.data(), src, pixels, layout_.order, row_);
    }

    // The chroma of pairs from pixel x on.
    std::uint8_t* chromaOf(ChromaRow& row, std::size_t x, std::size_t pairs) {
        if (chroma_ == PairChroma::First) return row.pixels.data() + 2 * x;
        filter_(row.pairs.data(), row.pixels.data() + 2 * x, pairs);
        return row.pairs.data();
    }

    void packGroups(std::uint8_t* dst, std::size_t groups) {
        const std::size_t pairs = groups * kV210GroupPixels / 2;
        pack_(dst, y_.data(), chromaOf(cb_, 0, pairs), chromaOf(cr_, 0, pairs), groups);
    }

    // The end of a row: of what does not fill a group, two pixels take the first two words of another one.
    void packEnd(std::uint8_t* dst, std::size_t pixels) {
        const std::size_t groups = pixels / kV210GroupPixels;
        const std::size_t x = groups * kV210GroupPixels;
        if (pixels - x >= 2) {
            repeatLast(x + 2, pixels);
            storePair(dst + groups * kV210GroupBytes, x);
        }
        // The last whole group does not look beyond itself even where pixels follow: deliberate.
        repeatLast(x, x);
        packGroups(dst, groups);
    }

    // Sample x is that before it if there are but `pixels`.
    void repeatLast(std::size_t x, std::size_t pixels) {
        if (x == 0 || x < pixels) return;
        cb_.pixels.put(x, cb_.pixels.at(x - 1));
        cr_.pixels.put(x, cr_.pixels.at(x - 1));
    }

    void storePair(std::uint8_t* dst, std::size_t x) {
        const unsigned cb = simd::loadWord<std::uint16_t>(chromaOf(cb_, x, 1));
        const unsigned cr = simd::loadWord<std::uint16_t>(chromaOf(cr_, x, 1));
        simd::storeWord<std::uint32_t>(dst, cb | y_.at(x) << 10 | cr << 20);
        simd::storeWord<std::uint32_t>(dst + 4, y_.at(x + 1));
    }

    RgbLayout layout_;
    simd::FromRgbDeepRow row_;
    PairChroma chroma_;
    simd::FromRgbDeepKernel convert_;
    simd::FilterChromaKernel filter_;
    simd::PackKernel pack_;
    SampleRow y_;
    ChromaRow cb_, cr_;
};

unsigned toV210(const Frame& f, const RgbLayout& layout, const simd::FromRgbDeepRow& row,
                PairChroma chroma = PairChroma::Filtered) {
    const RgbRows src{f.src, f.height, f.srcPitch, layout};
    V210FromRgb conversion(layout, row, chroma);
    for (unsigned r = 0; r < f.height; ++r) conversion.convertRow(f.dst + r * f.dstPitch, src.row(r), f.width);
    return f.dstPitch * f.height;
}

} // namespace

unsigned int v210FromRGB(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                         unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                         unsigned int bitsPerPixel) {
    return toV210({dst, src, width, height, dstPitch, srcPitch}, rgb8Source(rgbType, bitsPerPixel), rgb8To10(matrix));
}

unsigned int v210FromRGBNoFilter(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                 unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                 PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    return toV210({dst, src, width, height, dstPitch, srcPitch}, rgb8Source(rgbType, bitsPerPixel), rgb8To10(matrix),
                  PairChroma::First);
}

unsigned int cycbcr_RGB24_to_012v(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                  PXYCBCRRgbType rgbType) {
    probeProcessorLevel();
    return v210FromRGB(dst, src, width, height, dstPitch, srcPitch, matrix, rgbType, 24);
}

unsigned int cycbcr_RGB32_to_012v(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                  PXYCBCRRgbType rgbType) {
    probeProcessorLevel();
    return v210FromRGB(dst, src, width, height, dstPitch, srcPitch, matrix, rgbType, 32);
}

unsigned int cycbcr_RGB64_to_012v(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                  PXYCBCRRgbType rgbType, unsigned int bitsPerPixel) {
    return toV210({dst, src, width, height, dstPitch, srcPitch}, rgb16Source(rgbType, bitsPerPixel), rgb16To10(matrix));
}

unsigned int cycbcr_RGB10_to_012v(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                  PXYCBCRRgbType rgbType) {
    return toV210({dst, src, width, height, dstPitch, srcPitch}, rgb10Source(rgbType), rgb10To10(matrix));
}
