#include "core/frame.h"
#include "core/rows.h"
#include "fikleipa.h"
#include "rgb/layout.h"
#include "simd/unaligned.h"

#include <array>
#include <cstdint>

namespace {

using namespace fikleipa;

// What an alpha sample of so many bits becomes, for even matrices and for odd ones, which keep studio levels.
template <unsigned kBits>
struct Levels {
    std::array<std::uint8_t, 1U << kBits> copied{};
    std::array<std::uint8_t, 1U << kBits> expanded{};

    // Expansion of `low` and less to 0, of `high` and more to 255, of the rest on a line that may fall short of that.
    constexpr Levels(unsigned low, unsigned high, unsigned range) {
        for (unsigned a = 0; a < copied.size(); ++a) {
            const unsigned level = a <= low ? 0 : a >= high ? 255 : (a - low) * 255 / range;
            copied[a] = static_cast<std::uint8_t>(a >> (kBits - 8));
            expanded[a] = static_cast<std::uint8_t>(level);
        }
    }

    const auto& of(PXYCBCRMatrix matrix) const { return static_cast<unsigned>(matrix) % 2 != 0 ? expanded : copied; }
};

constexpr Levels<8> kLevels8(16, 235, 219);
// 876 where the range ends at 940. Deliberate.
constexpr Levels<10> kLevels10(64, 876, 876);

// Stores alpha(r, x) in the fourth byte of every pixel.
template <class Alpha>
void storeAlpha(const RgbFrame& f, Alpha alpha) {
    for (unsigned r = 0; r < f.height; ++r) {
        std::uint8_t* const row = f.dst + destinationOffset(r, f.height, f.dstPitch, isBottomUp(f.rgbType));
        for (std::size_t x = 0; x < f.width; ++x) row[4 * x + 3] = alpha(r, x);
    }
}

} // namespace

unsigned int cycbcr_uyvy_to_rgb32_Alpha(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                        unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                        PXYCBCRRgbType rgbType) {
    const auto& levels = kLevels8.of(matrix);
    storeAlpha({{dst, src, width, height, dstPitch, srcPitch}, matrix, rgbType},
               [&](unsigned r, std::size_t x) { return levels[(src + r * width)[x]]; });
    return width * height;
}

unsigned int cycbcr_012v_to_rgb32_Alpha(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                        unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                        PXYCBCRRgbType rgbType) {
    const auto& levels = kLevels10.of(matrix);
    storeAlpha({{dst, src, width, height, dstPitch, srcPitch}, matrix, rgbType}, [&](unsigned r, std::size_t x) {
        // Sample i of a word lies in its bytes i and i + 1, from bit 2 i on; no other byte is looked at.
        const std::size_t i = x % 3;
        const std::uint8_t* const word = src + width * 4 * r / 3 + x / 3 * 4;
        return levels[unsigned{simd::loadWord<std::uint16_t>(word + i)} >> 2 * i & 0x3FF];
    });
    return width * 4 * height / 3;
}
