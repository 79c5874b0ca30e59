// Alpha of RGB frames as planes of its own.
#include "fikleipa.h"
#include "rgb/layout.h"
#include "simd/kernels.h"

#include <cstddef>

namespace {

using namespace fikleipa;

constexpr unsigned kVideoRange = 1; // of the flags

} // namespace

unsigned int cycbcr_RGB32_to_uyvy_Alpha(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                        unsigned int /*dstPitch*/, unsigned int srcPitch, unsigned int flags,
                                        PXYCBCRRgbType rgbType) {
    const auto& kernels = simd::kernels().fromRgb8;
    const simd::AlphaKernel convert = (flags & kVideoRange) != 0 ? kernels.scaledAlpha : kernels.alpha;
    const auto pitch = static_cast<std::ptrdiff_t>(srcPitch);
    for (unsigned r = 0; r < height; ++r) {
        convert(dst + r * width, src + (isBottomUp(rgbType) ? height - 1 - r : r) * srcPitch, width,
                isBottomUp(rgbType) ? -pitch : pitch);
    }
    return width * height;
}
