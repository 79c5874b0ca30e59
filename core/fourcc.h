// What the FourCC codes stand for. Only this room knows the codes.
#pragma once

#include "fikleipa.h"

#include <array>
#include <optional>

namespace fikleipa {

// Codes that are handled alike everywhere.
enum class Layout { Uyvy, Yuy2, Yvyu, Cyuv, I420, Yv12, P422, V210, Rgb32 };
inline constexpr unsigned kLayouts = 9;

struct Code {
    int fourcc;
    Layout layout;
};

// Every code but "422P", which is known as a source alone.
inline constexpr std::array kCodes{
    Code{PX_FOURCC_YUY2, Layout::Yuy2},     Code{PX_FOURCC_YUNV, Layout::Yuy2},     Code{PX_FOURCC_UYVY, Layout::Uyvy},
    Code{PX_FOURCC_UYNV, Layout::Uyvy},     Code{PX_FOURCC_AJYU, Layout::Uyvy},     Code{PX_FOURCC_2vuy, Layout::Uyvy},
    Code{PX_FOURCC_yuv2, Layout::Uyvy},     Code{PX_FOURCC_2Vuy, Layout::Uyvy},     Code{PX_FOURCC_yuV2, Layout::Uyvy},
    Code{PX_FOURCC_8800001E, Layout::Uyvy}, Code{PX_FOURCC_8810001E, Layout::Uyvy}, Code{PX_FOURCC_YVYU, Layout::Yvyu},
    Code{PX_FOURCC_cyuv, Layout::Cyuv},     Code{PX_FOURCC_I420, Layout::I420},     Code{PX_FOURCC_IYUV, Layout::I420},
    Code{PX_FOURCC_YV12, Layout::Yv12},     Code{PX_FOURCC_P422, Layout::P422},     Code{PX_FOURCC_v210, Layout::V210},
    Code{PX_FOURCC_012v, Layout::V210},     Code{PX_FOURCC_RGB32, Layout::Rgb32},
};

constexpr std::optional<Layout> layoutOf(int fourcc) {
    for (const Code& code : kCodes) {
        if (code.fourcc == fourcc) return code.layout;
    }
    return std::nullopt;
}

} // namespace fikleipa
