// Alpha of RGB frames as planes of its own.
#include "fikleipa.h"
#include "rgb/layout.h"
#include "simd/kernels.h"
#include "simd/unaligned.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace {

using namespace fikleipa;

constexpr unsigned kVideoRange = 1; // of the flags

// What an alpha byte becomes in 10 bits.
struct Levels10 {
    std::array<std::uint16_t, 256> full{};
    std::array<std::uint16_t, 256> video{};

    constexpr Levels10() {
        for (unsigned a = 0; a < 256; ++a) {
            full[a] = static_cast<std::uint16_t>(a << 2);
            video[a] = static_cast<std::uint16_t>(a * 876 / 255 + 64);
        }
    }
};
constexpr Levels10 kLevels10;

constexpr unsigned sourceRow(unsigned r, unsigned height, PXYCBCRRgbType type) {
    return isBottomUp(type) ? height - 1 - r : r;
}

// Three samples to a word, from its lowest bits on. The last word of a row may hold fewer, with 0 for the others.
void packAlpha(unsigned char* dst, const unsigned char* src, std::size_t width,
               const std::array<std::uint16_t, 256>& levels) {
    if (width == 0) return;
    const unsigned char* alpha = src + 3;
    std::size_t left = width;
    for (; left >= 3; left -= 3) {
        const unsigned lowerTwo = levels[alpha[0]] | unsigned{levels[alpha[4]]} << 10;
        simd::storeWord<std::uint32_t>(dst, lowerTwo | unsigned{levels[alpha[8]]} << 20);
        alpha += 12;
        dst += 4;
    }
    if (left == 0) return;
    const unsigned second = left == 2 ? levels[alpha[4]] : 0U;
    simd::storeWord<std::uint32_t>(dst, levels[alpha[0]] | second << 10);
}

} // namespace

unsigned int cycbcr_RGB32_to_uyvy_Alpha(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                        unsigned int /*dstPitch*/, unsigned int srcPitch, unsigned int flags,
                                        PXYCBCRRgbType rgbType) {
    const auto& kernels = simd::kernels().fromRgb8;
    const simd::AlphaKernel convert = (flags & kVideoRange) != 0 ? kernels.scaledAlpha : kernels.alpha;
    const auto pitch = static_cast<std::ptrdiff_t>(srcPitch);
    for (unsigned r = 0; r < height; ++r) {
        convert(dst + r * width, src + sourceRow(r, height, rgbType) * srcPitch, width,
                isBottomUp(rgbType) ? -pitch : pitch);
    }
    return width * height;
}

unsigned int cycbcr_RGB32_to_012v_Alpha(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                        unsigned int /*dstPitch*/, unsigned int srcPitch, unsigned int flags,
                                        PXYCBCRRgbType rgbType) {
    const auto& levels = (flags & kVideoRange) != 0 ? kLevels10.video : kLevels10.full;
    for (unsigned r = 0; r < height; ++r) {
        packAlpha(dst + r * width * 4 / 3, src + sourceRow(r, height, rgbType) * srcPitch, width, levels);
    }
    return width * 4 * height / 3;
}
