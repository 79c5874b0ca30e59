#include "fikleipa.h"
#include "rgb/layout.h"
#include "rgb/to_rgb8.h"

#include <array>
#include <cstdint>

namespace {

using Levels = std::array<std::uint8_t, 256>;

constexpr Levels makeLevels(bool expand) {
    Levels levels{};
    for (unsigned a = 0; a < levels.size(); ++a) {
        const unsigned expanded = a <= 16 ? 0 : a >= 235 ? 255 : (a * 255 - 4080) / 219;
        levels[a] = static_cast<std::uint8_t>(expand ? expanded : a);
    }
    return levels;
}

constexpr Levels kCopied = makeLevels(false);
constexpr Levels kExpanded = makeLevels(true);

} // namespace

unsigned int cycbcr_uyvy_to_rgb32_Alpha(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                        unsigned int dstPitch, unsigned int /*srcPitch*/, PXYCBCRMatrix matrix,
                                        PXYCBCRRgbType rgbType) {
    // The odd matrices keep studio levels.
    const Levels& levels = static_cast<unsigned>(matrix) % 2 != 0 ? kExpanded : kCopied;
    const bool bottomUp = fikleipa::isBottomUp(rgbType);
    for (unsigned r = 0; r < height; ++r) {
        const std::uint8_t* const alpha = src + r * width;
        std::uint8_t* const row = dst + fikleipa::destinationOffset(r, height, dstPitch, bottomUp);
        for (std::size_t x = 0; x < width; ++x) row[4 * x + 3] = levels[alpha[x]];
    }
    return width * height;
}
