// The converters from RGB to v210.
#include "core/frame.h"
#include "core/processor.h"
#include "fikleipa.h"
#include "rgb/from_rgb_deep.h"
#include "rgb/from_rgb_deep_matrix.h"
#include "simd/kernels.h"
#include "simd/unaligned.h"
#include "simd/v210.h"

#include <array>

namespace {

using namespace fikleipa;
using simd::kV210GroupBytes;
using simd::kV210GroupPixels;

// How a pair takes its chroma: by a filter of four taps, or that of its first pixel.
enum class PairChroma { Filtered, First };

constexpr unsigned kNeutral = 512 | 512 << 16; // Cb and Cr

// Rows go in pieces of so many pixels, which leave the first-level cache to the rest and memory little time to rest.
// The filter looks a pixel ahead, so more is converted: whole vectors.
constexpr std::size_t kPiecePixels = 384;
constexpr std::size_t kRoomPixels = kPiecePixels + 32;

// A sample, or one of Cb and one of Cr, for each of `kCount`, and one more ahead of the first.
template <class Sample, std::size_t kCount>
class SampleRow {
public:
    std::uint8_t* data() { return bytes_.data() + kAhead; }
    [[nodiscard]] Sample at(std::size_t i) const {
        return simd::loadWord<Sample>(bytes_.data() + kAhead + i * sizeof(Sample));
    }
    void put(std::size_t i, Sample sample) { simd::storeWord<Sample>(data() + i * sizeof(Sample), sample); }
    void putAhead(Sample sample) { simd::storeWord<Sample>(data() - sizeof(Sample), sample); }

private:
    static constexpr std::size_t kAhead = 64;
    // NOLINTNEXTLINE(*-member-init): room
    alignas(64) std::array<std::uint8_t, kAhead + kCount * sizeof(Sample) + simd::kPackReach> bytes_;
};
using ChromaRow = SampleRow<std::uint32_t, kRoomPixels / 2>;

class V210FromRgb {
public:
    V210FromRgb(const RgbLayout& layout, const simd::FromRgbDeepRow& row, PairChroma chroma)
        : layout_(layout), row_(row), convert_(simd::kernels().fromRgbDeep.of(layout.source).forV210),
          pack_(chroma == PairChroma::Filtered ? simd::kernels().fromRgbDeep.packFiltered
                                               : simd::kernels().fromRgbDeep.packEven) {}

    void convertRow(std::uint8_t* dst, const std::uint8_t* src, std::size_t width) {
        odd_.putAhead(kNeutral);
        for (; width > kRoomPixels; width -= kPiecePixels) {
            convertPixels(src, kRoomPixels);
            packGroups(dst, kPiecePixels / kV210GroupPixels);
            odd_.putAhead(odd_.at(kPiecePixels / 2 - 1));
            src += kPiecePixels * bytesPerPixel(layout_.source);
            dst += kPiecePixels / kV210GroupPixels * kV210GroupBytes;
        }
        convertPixels(src, width);
        packEnd(dst, width);
    }

private:
    void convertPixels(const std::uint8_t* src, std::size_t pixels) {
        convert_(y_.data(), even_.data(), odd_.data(), src, pixels, layout_.order, row_);
    }

    void packGroups(std::uint8_t* dst, std::size_t groups) { pack_(dst, y_.data(), even_.data(), odd_.data(), groups); }

    // The end of a row: of what does not fill a group, two pixels take the first two words of another one.
    void packEnd(std::uint8_t* dst, std::size_t pixels) {
        const std::size_t groups = pixels / kV210GroupPixels;
        const std::size_t pair = groups * kV210GroupPixels / 2;
        const std::size_t left = pixels % kV210GroupPixels;
        if (left >= 2) {
            if (left == 2) repeatLast(pair + 1);
            storePair(dst + groups * kV210GroupBytes, pair);
        }
        if (groups == 0) return;
        // The last whole group does not look beyond itself even where pixels follow: deliberate.
        repeatLast(pair);
        packGroups(dst, groups);
    }

    // The pixel ahead of a pair is what the one before it knows as its neighbour.
    void repeatLast(std::size_t pair) { even_.put(pair, odd_.at(pair - 1)); }

    void storePair(std::uint8_t* dst, std::size_t pair) {
        std::array<std::uint8_t, kV210GroupBytes> group{};
        pack_(group.data(), y_.data() + 4 * pair, even_.data() + 4 * pair, odd_.data() + 4 * pair, 1);
        simd::storeWord<std::uint32_t>(dst, simd::loadWord<std::uint32_t>(group.data()));
        simd::storeWord<std::uint32_t>(dst + 4, y_.at(2 * pair + 1));
    }

    RgbLayout layout_;
    simd::FromRgbDeepRow row_;
    simd::FromRgbForV210Kernel convert_;
    simd::PackPairsKernel pack_;
    SampleRow<std::uint16_t, kRoomPixels> y_;
    ChromaRow even_, odd_;
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
