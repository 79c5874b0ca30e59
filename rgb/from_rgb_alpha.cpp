// Alpha of RGB frames as planes of its own.
#include "core/rows.h"
#include "fikleipa.h"
#include "rgb/layout.h"
#include "simd/kernels.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

using namespace fikleipa;

constexpr unsigned kVideoRange = 1; // of the flags
constexpr unsigned kWordBytes = 4;  // three samples

constexpr unsigned sourceRow(unsigned r, unsigned height, PXYCBCRRgbType type) {
    return isBottomUp(type) ? height - 1 - r : r;
}

} // namespace

unsigned int cycbcr_RGB32_to_uyvy_Alpha(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                        unsigned int /*dstPitch*/, unsigned int srcPitch, unsigned int flags,
                                        PXYCBCRRgbType rgbType) {
    const auto& kernels = simd::kernels().fromRgb8;
    const simd::AlphaKernel convert = (flags & kVideoRange) != 0 ? kernels.scaledAlpha : kernels.alpha;
    if (width == 0) return 0;
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
    const auto& kernels = simd::kernels().fromRgbDeep;
    const simd::AlphaTo10Kernel convert = (flags & kVideoRange) != 0 ? kernels.scaledAlpha : kernels.alpha;
    if (width == 0) return 0;
    const std::size_t words = (std::size_t{width} + 2) / 3;
    const auto next = isBottomUp(rgbType) ? -static_cast<std::ptrdiff_t>(srcPitch) : std::ptrdiff_t{srcPitch};
    RowWriter<1> rows(goesPastCache({{dst, kWordBytes * words, width * kWordBytes / 3, height}}), {kWordBytes});
    for (unsigned r = 0; r < height; ++r) {
        const unsigned char* const from = src + sourceRow(r, height, rgbType) * srcPitch;
        rows.write({dst + r * width * kWordBytes / 3}, {from, std::size_t{4} * width, next}, words,
                   [&](const auto& to, std::size_t first, std::size_t count) {
                       convert(to[0], from + 12 * first, std::min(3 * count, width - 3 * first));
                   });
    }
    return width * 4 * height / 3;
}
