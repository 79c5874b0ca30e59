#include "conversions.h"

#include "error.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace fikleipa::tool {
namespace {

constexpr unsigned int kRefused = 0xFFFFFFFF;

constexpr std::string_view kExchanged = "Cb and Cr come out exchanged";

// A planar frame as it is, to change its container or its padding: luma of width x height, `kHalfPlanes` half as large.
template <unsigned int kHalfPlanes>
unsigned int copyPlanes(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                        unsigned int /*dstPitch*/, unsigned int /*srcPitch*/, PXYCBCRMatrix /*matrix*/,
                        PXYCBCRRgbType /*rgbType*/) {
    const unsigned int luma = width * height;
    const unsigned int bytes = luma + luma / 2 * kHalfPlanes;
    std::memcpy(dst, src, bytes);
    return bytes;
}

constexpr std::array kConversions{
    Conversion{"uyvy", "uyvy", nullptr},
    Conversion{"uyvy", "yuy2", nullptr},
    Conversion{"uyvy", "yvyu", nullptr, kExchanged},
    Conversion{"uyvy", "cyuv", nullptr},
    Conversion{"uyvy", "rgb32", nullptr},
    Conversion{"uyvy", "rgb24", cycbcr_uyvy_to_rgb24},
    Conversion{"uyvy", "rgb565", cycbcr_uyvy_to_rgb565},
    Conversion{"uyvy", "rgb555", cycbcr_uyvy_to_rgb555},

    Conversion{"yuy2", "uyvy", nullptr},
    Conversion{"yuy2", "yuy2", nullptr},
    Conversion{"yuy2", "yvyu", nullptr},
    Conversion{"yuy2", "cyuv", nullptr},
    Conversion{"yuy2", "rgb32", nullptr},
    Conversion{"yuy2", "rgb24", cycbcr_yuy2_to_rgb24},
    Conversion{"yuy2", "rgb565", cycbcr_yuy2_to_rgb565},
    Conversion{"yuy2", "rgb555", cycbcr_yuy2_to_rgb555},

    Conversion{"yvyu", "uyvy", nullptr, kExchanged},
    Conversion{"yvyu", "yuy2", nullptr},
    Conversion{"yvyu", "yvyu", nullptr},
    Conversion{"yvyu", "cyuv", nullptr, kExchanged},
    Conversion{"yvyu", "rgb32", nullptr},
    Conversion{"yvyu", "rgb24", cycbcr_yvyu_to_rgb24},
    Conversion{"yvyu", "rgb565", cycbcr_yvyu_to_rgb565},
    Conversion{"yvyu", "rgb555", cycbcr_yvyu_to_rgb555},

    Conversion{"cyuv", "uyvy", nullptr},
    Conversion{"cyuv", "yuy2", nullptr},
    Conversion{"cyuv", "yvyu", nullptr, kExchanged},
    Conversion{"cyuv", "cyuv", nullptr},
    Conversion{"cyuv", "rgb32", nullptr},
    Conversion{"cyuv", "rgb24", cycbcr_cyuv_to_rgb24},
    Conversion{"cyuv", "rgb565", cycbcr_cyuv_to_rgb565},
    Conversion{"cyuv", "rgb555", cycbcr_cyuv_to_rgb555},

    Conversion{"i420", "i420", copyPlanes<1>},
    Conversion{"i420", "rgb32", nullptr},
    Conversion{"i420", "rgb24", cycbcr_i420_to_rgb24},
    Conversion{"i420", "rgb565", cycbcr_i420_to_rgb565},
    Conversion{"i420", "rgb555", cycbcr_i420_to_rgb555},

    Conversion{"yv12", "rgb32", nullptr},
    Conversion{"yv12", "rgb24", cycbcr_yv12_to_rgb24},
    Conversion{"yv12", "rgb565", cycbcr_yv12_to_rgb565},
    Conversion{"yv12", "rgb555", cycbcr_yv12_to_rgb555},

    Conversion{"p422", "p422", copyPlanes<2>},
    Conversion{"p422", "rgb32", nullptr},
    Conversion{"p422", "rgb24", cycbcr_p422_to_rgb24},
    Conversion{"p422", "rgb565", cycbcr_p422_to_rgb565},
    Conversion{"p422", "rgb555", cycbcr_p422_to_rgb555},

    Conversion{"nv12", "rgb32", cycbcr_nv12_to_rgb32},
};

} // namespace

std::span<const Conversion> conversions() {
    return kConversions;
}

const Conversion& findConversion(const Layout& from, const Layout& to) {
    const auto found = std::find_if(kConversions.begin(), kConversions.end(), [&](const Conversion& each) {
        return each.from == from.name && each.to == to.name;
    });
    if (found == kConversions.end())
        fail("{} to {} is not converted; 'fikleipa formats' lists the pairs that are", from.name, to.name);
    return *found;
}

FrameConverter::FrameConverter(const Layout& from, const Layout& to, Size size, ColourOptions colour)
    : conversion_(&findConversion(from, to)), size_(size), colour_(colour), source_(frameGeometry(from, size)),
      destination_(frameGeometry(to, size)) {}

void FrameConverter::convert(unsigned char* dst, unsigned char* src) const {
    const auto [width, height] = size_;
    const std::uint32_t dstPitch = destination_.pitch();
    const std::uint32_t srcPitch = source_.pitch();
    const auto [matrix, rgbType] = colour_;
    const unsigned int result =
        conversion_->function != nullptr
            ? conversion_->function(dst, src, width, height, dstPitch, srcPitch, matrix, rgbType)
            : cycbcr_transcode(dst, src, width, height, dstPitch, srcPitch, matrix, rgbType,
                               layoutNamed(conversion_->to).codes.front(),
                               layoutNamed(conversion_->from).codes.front());
    if (result == kRefused) fail("the library refused to convert {} to {}", conversion_->from, conversion_->to);
}

} // namespace fikleipa::tool
