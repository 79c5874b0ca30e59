// The table of conversions.
#include "adapters.h"
#include "conversions.h"

#include <array>

namespace fikleipa::tool {
namespace {

constexpr std::string_view kFields = "chroma rows go by fields, as those of interlaced frames";
constexpr std::string_view kChromaStays =
    "by way of uyvy, as the direct way changes the chroma of the source; chroma rows go by fields";
constexpr std::string_view kExchanged = "by way of yuy2, as the direct way exchanges Cb and Cr";
constexpr std::string_view kTopFirst = "by way of uyvy, as the direct way puts the top row first";
constexpr std::string_view kOtherOrder = "by way of uyvy, as the direct way stores Y Cb Y Cr; chroma rows go by fields";
constexpr std::string_view kWraps =
    "by way of v210, as the direct way stores 0 or 1 for components near full brightness";
constexpr std::string_view kPaleEdge =
    "the two leftmost pixels of a row are paler, as what lies left of them counts as grey";
constexpr std::string_view kLifted = "black is lifted from 64 of 65535, where the converter has it, to 4096";

// 8-bit 4:2:0 to packed 4:2:2, where four rows take turns with two rows of chroma.
constexpr Conversion byFields(std::string_view from, std::string_view to) {
    return {from, to, nullptr, kFields, Room::None, {1, 4}};
}

constexpr Conversion byWayOf(std::string_view via, std::string_view from, std::string_view to, std::string_view note) {
    return {from, to, nullptr, note, Room::None, {1, 1}, via};
}

// RGB to v210, of whose last group the converters write two pixels at most.
constexpr Conversion toGroups(std::string_view from, void (*function)(const Task&)) {
    return {from, "v210", function, kPaleEdge, Room::None, {6, 1}};
}

constexpr std::array kConversions{
    Conversion{"uyvy", "uyvy", nullptr},
    Conversion{"uyvy", "yuy2", nullptr},
    byWayOf("yuy2", "uyvy", "yvyu", kExchanged),
    Conversion{"uyvy", "cyuv", nullptr},
    Conversion{"uyvy", "i420", nullptr, kFields},
    Conversion{"uyvy", "yv12", nullptr, kFields},
    Conversion{"uyvy", "p422", nullptr},
    Conversion{"uyvy", "rgb32", nullptr},
    Conversion{"uyvy", "rgb24", wholeFrameByMatrix<cycbcr_uyvy_to_rgb24>},
    Conversion{"uyvy", "rgb565", wholeFrameByMatrix<cycbcr_uyvy_to_rgb565>},
    Conversion{"uyvy", "rgb555", wholeFrameByMatrix<cycbcr_uyvy_to_rgb555>},
    Conversion{"uyvy", "v210", wholeFrame<cycbcr_uyvy_to_012v>},
    Conversion{"uyvy", "yuv444p10", toPlanes<cycbcr_uyvy_to_yuv444p10>},
    Conversion{"uyvy", "yuv422p16", toPlanesByFlag<cycbcr_uyvyto_planar16>},
    Conversion{"uyvy", "yuv420p16", toPlanesByFlag<cycbcr_uyvyto_planar16>},

    Conversion{"yuy2", "uyvy", nullptr},
    Conversion{"yuy2", "yuy2", nullptr},
    Conversion{"yuy2", "yvyu", nullptr},
    Conversion{"yuy2", "cyuv", nullptr},
    Conversion{"yuy2", "i420", nullptr, kFields},
    Conversion{"yuy2", "yv12", nullptr, kFields},
    Conversion{"yuy2", "p422", nullptr},
    Conversion{"yuy2", "rgb32", nullptr},
    Conversion{"yuy2", "rgb24", wholeFrameByMatrix<cycbcr_yuy2_to_rgb24>},
    Conversion{"yuy2", "rgb565", wholeFrameByMatrix<cycbcr_yuy2_to_rgb565>},
    Conversion{"yuy2", "rgb555", wholeFrameByMatrix<cycbcr_yuy2_to_rgb555>},
    Conversion{"yuy2", "v210", wholeFrame<cycbcr_yuy2_to_012v>, {}, Room::Source},

    byWayOf("yuy2", "yvyu", "uyvy", kExchanged),
    Conversion{"yvyu", "yuy2", nullptr},
    Conversion{"yvyu", "yvyu", nullptr},
    byWayOf("yuy2", "yvyu", "cyuv", kExchanged),
    Conversion{"yvyu", "i420", nullptr, kFields},
    Conversion{"yvyu", "yv12", nullptr, kFields},
    Conversion{"yvyu", "p422", nullptr},
    Conversion{"yvyu", "rgb32", nullptr},
    Conversion{"yvyu", "rgb24", wholeFrameByMatrix<cycbcr_yvyu_to_rgb24>},
    Conversion{"yvyu", "rgb565", wholeFrameByMatrix<cycbcr_yvyu_to_rgb565>},
    Conversion{"yvyu", "rgb555", wholeFrameByMatrix<cycbcr_yvyu_to_rgb555>},
    Conversion{"yvyu", "v210", wholeFrame<cycbcr_yvyu_to_012v>, {}, Room::Source},

    Conversion{"cyuv", "uyvy", nullptr},
    Conversion{"cyuv", "yuy2", nullptr},
    byWayOf("yuy2", "cyuv", "yvyu", kExchanged),
    Conversion{"cyuv", "cyuv", nullptr},
    Conversion{"cyuv", "i420", nullptr, kFields},
    Conversion{"cyuv", "yv12", nullptr, kFields},
    Conversion{"cyuv", "p422", nullptr},
    Conversion{"cyuv", "rgb32", nullptr},
    Conversion{"cyuv", "rgb24", wholeFrameByMatrix<cycbcr_cyuv_to_rgb24>},
    Conversion{"cyuv", "rgb565", wholeFrameByMatrix<cycbcr_cyuv_to_rgb565>},
    Conversion{"cyuv", "rgb555", wholeFrameByMatrix<cycbcr_cyuv_to_rgb555>},
    Conversion{"cyuv", "v210", wholeFrame<cycbcr_cyuv_to_012v>, {}, Room::Source},

    byFields("i420", "uyvy"),
    byFields("i420", "yuy2"),
    byFields("i420", "yvyu"),
    byWayOf("uyvy", "i420", "cyuv", kFields),
    Conversion{"i420", "i420", nullptr},
    Conversion{"i420", "yv12", nullptr},
    byWayOf("uyvy", "i420", "p422", kChromaStays),
    Conversion{"i420", "rgb32", nullptr},
    Conversion{"i420", "rgb24", wholeFrameByMatrix<cycbcr_i420_to_rgb24>},
    Conversion{"i420", "rgb565", wholeFrameByMatrix<cycbcr_i420_to_rgb565>},
    Conversion{"i420", "rgb555", wholeFrameByMatrix<cycbcr_i420_to_rgb555>},
    Conversion{"i420", "v210", wholeFrame<cycbcr_i420_to_012v>},

    byFields("yv12", "uyvy"),
    byFields("yv12", "yuy2"),
    byFields("yv12", "yvyu"),
    byWayOf("uyvy", "yv12", "cyuv", kOtherOrder),
    Conversion{"yv12", "i420", nullptr},
    Conversion{"yv12", "yv12", nullptr},
    byWayOf("uyvy", "yv12", "p422", kChromaStays),
    Conversion{"yv12", "rgb32", nullptr},
    Conversion{"yv12", "rgb24", wholeFrameByMatrix<cycbcr_yv12_to_rgb24>},
    Conversion{"yv12", "rgb565", wholeFrameByMatrix<cycbcr_yv12_to_rgb565>},
    Conversion{"yv12", "rgb555", wholeFrameByMatrix<cycbcr_yv12_to_rgb555>},
    Conversion{"yv12", "v210", wholeFrame<cycbcr_yv12_to_012v>},

    Conversion{"p422", "uyvy", nullptr},
    Conversion{"p422", "yuy2", nullptr},
    Conversion{"p422", "yvyu", nullptr},
    Conversion{"p422", "cyuv", nullptr},
    byWayOf("uyvy", "p422", "i420", kChromaStays),
    byWayOf("uyvy", "p422", "yv12", kChromaStays),
    Conversion{"p422", "p422", nullptr},
    Conversion{"p422", "rgb32", nullptr},
    Conversion{"p422", "rgb24", wholeFrameByMatrix<cycbcr_p422_to_rgb24>},
    Conversion{"p422", "rgb565", wholeFrameByMatrix<cycbcr_p422_to_rgb565>},
    Conversion{"p422", "rgb555", wholeFrameByMatrix<cycbcr_p422_to_rgb555>},
    Conversion{"p422", "v210", wholeFrame<cycbcr_p422_to_012v>},

    Conversion{"nv12", "rgb32", wholeFrameByMatrix<cycbcr_nv12_to_rgb32>},

    Conversion{"v210", "v210", wholeFrame<cycbcr_012v_to_012v>},
    Conversion{"v210", "uyvy", wholeFrame<cycbcr_012v_to_uyvy>},
    Conversion{"v210", "yuy2", wholeFrame<cycbcr_012v_to_yuy2>},
    Conversion{"v210", "yvyu", wholeFrame<cycbcr_012v_to_yvyu>},
    byWayOf("uyvy", "v210", "cyuv", kTopFirst),
    Conversion{"v210", "i420", wholeFrame<cycbcr_012v_to_i420>, {}, Room::Destination},
    Conversion{"v210", "yv12", wholeFrame<cycbcr_012v_to_yv12>, {}, Room::Destination},
    Conversion{"v210", "p422", wholeFrame<cycbcr_012v_to_p422>, {}, Room::Destination},
    Conversion{"v210", "yuv420p10", toPlanesByFlag<cycbcr_v210to_planar>},
    Conversion{"v210", "yuv422p10", toPlanes<cycbcr_012v_to_yuv422p10>, {}, Room::Destination},
    Conversion{"v210", "yuv444p10", toPlanes<cycbcr_012v_to_yuv444p10>, {}, Room::Destination},
    Conversion{"v210", "yuv420p16", toPlanesByFlag<cycbcr_v210to_planar16>},
    Conversion{"v210", "yuv422p16", toPlanesByFlag<cycbcr_v210to_planar16>},
    Conversion{"v210", "rgb64", v210ToRgb<cycbcr_v210ToRGBInt16, 64>},
    Conversion{"v210", "rgb48", v210ToRgb<cycbcr_v210ToRGBInt16, 48>},
    Conversion{"v210", "rgb32", v210ToRgb<cycbcr_v210ToRGB, 32>},
    Conversion{"v210", "rgb24", v210ToRgb<cycbcr_v210ToRGB, 24>},
    Conversion{"v210", "rgb565", v210ToRgb<cycbcr_v210ToRGB, 16>},
    Conversion{"v210", "rgb555", v210ToRgb<cycbcr_v210ToRGB, 15>},

    Conversion{"yuv420p10", "yuv420p10", copyFrame},
    Conversion{"yuv420p10", "v210", fromPlanes<cycbcr_yuv420p10_to_012v>},
    Conversion{"yuv420p10", "uyvy", fromPlanes<cycbcr_yuv420p10_to_uyvy>},
    Conversion{"yuv420p10", "rgb64", planesToRgb<cycbcr_10ToRGBInt16, 64>},
    Conversion{"yuv420p10", "rgb48", planesToRgb<cycbcr_10ToRGBInt16, 48>},
    Conversion{"yuv420p10", "rgb10", planesToRgb<cycbcr_10ToRGBInt10, 32>},
    Conversion{"yuv420p10", "rgb32", planesToRgb<planar10ToRGBInt, 32>},
    Conversion{"yuv420p10", "rgb24", planesToRgb<planar10ToRGBInt, 24>},
    Conversion{"yuv420p10", "rgb565", planesToRgb<planar10ToRGBInt, 16>},
    Conversion{"yuv420p10", "rgb555", planesToRgb<planar10ToRGBInt, 15>},

    Conversion{"yuv422p10", "yuv422p10", copyFrame},
    Conversion{"yuv422p10", "v210", fromPlanes<cycbcr_yuv422p10_to_012v_internal>},
    Conversion{"yuv422p10", "uyvy", fromPlanes<cycbcr_yuv422p10_to_uyvy_internal>},
    Conversion{"yuv422p10", "rgb64", planesToRgb<cycbcr_10ToRGBInt16, 64>},
    Conversion{"yuv422p10", "rgb48", planesToRgb<cycbcr_10ToRGBInt16, 48>},
    Conversion{"yuv422p10", "rgb10", planesToRgb<cycbcr_10ToRGBInt10, 32>},
    Conversion{"yuv422p10", "rgb32", planesToRgb<planar10ToRGBInt, 32>},
    Conversion{"yuv422p10", "rgb24", planesToRgb<planar10ToRGBInt, 24>},
    Conversion{"yuv422p10", "rgb565", planesToRgb<planar10ToRGBInt, 16>},
    Conversion{"yuv422p10", "rgb555", planesToRgb<planar10ToRGBInt, 15>},

    Conversion{"yuv444p10", "yuv444p10", copyFrame},
    Conversion{"yuv444p10", "v210", fromPlanes<cycbcr_yuv444p10_to_012v>},

    Conversion{"yuv420p12", "yuv420p12", copyFrame},
    Conversion{"yuv420p12", "v210", fromSharedChroma<cycbcr_yuv422p12_to_012v_internal>},
    Conversion{"yuv420p12", "rgb64", planesToRgb<cycbcr_12ToRGBInt16, 64>},
    Conversion{"yuv420p12", "rgb48", planesToRgb<cycbcr_12ToRGBInt16, 48>},
    byWayOf("v210", "yuv420p12", "rgb32", kWraps),
    byWayOf("v210", "yuv420p12", "rgb24", kWraps),
    byWayOf("v210", "yuv420p12", "rgb565", kWraps),
    byWayOf("v210", "yuv420p12", "rgb555", kWraps),

    Conversion{"yuv422p12", "yuv422p12", copyFrame},
    Conversion{"yuv422p12", "v210", fromPlanes<cycbcr_yuv422p12_to_012v_internal>},
    Conversion{"yuv422p12", "rgb64", planesToRgb<cycbcr_12ToRGBInt16, 64>},
    Conversion{"yuv422p12", "rgb48", planesToRgb<cycbcr_12ToRGBInt16, 48>},
    byWayOf("v210", "yuv422p12", "rgb32", kWraps),
    byWayOf("v210", "yuv422p12", "rgb24", kWraps),
    byWayOf("v210", "yuv422p12", "rgb565", kWraps),
    byWayOf("v210", "yuv422p12", "rgb555", kWraps),

    Conversion{"yuv444p12", "yuv444p12", copyFrame},
    Conversion{"yuv444p12", "v210", fromPlanes<cycbcr_yuv444p12_to_012v_internal>},

    Conversion{"yuv420p16", "yuv420p16", copyFrame},
    Conversion{"yuv420p16", "v210", halfPlanesToV210},
    Conversion{"yuv420p16", "uyvy", fromHalfPlanes<cycbcr_yuv420p16_to_uyvy>},
    Conversion{"yuv420p16", "rgb32", planesToRgb<cycbcr_16ToRGB8, 32>},
    Conversion{"yuv420p16", "rgb24", planesToRgb<cycbcr_16ToRGB8, 24>},
    Conversion{"yuv420p16", "rgb565", planesToRgb<cycbcr_16ToRGB8, 16>},
    Conversion{"yuv420p16", "rgb555", planesToRgb<cycbcr_16ToRGB8, 15>},

    Conversion{"yuv422p16", "yuv422p16", copyFrame},
    Conversion{"yuv422p16", "v210", fromPlanes<cycbcr_yuv422p16_to_012v>},
    Conversion{"yuv422p16", "rgb32", planesToRgb<cycbcr_16ToRGB8, 32>},
    Conversion{"yuv422p16", "rgb24", planesToRgb<cycbcr_16ToRGB8, 24>},
    Conversion{"yuv422p16", "rgb565", planesToRgb<cycbcr_16ToRGB8, 16>},
    Conversion{"yuv422p16", "rgb555", planesToRgb<cycbcr_16ToRGB8, 15>},

    Conversion{"p010", "p010", copyFrame},
    Conversion{"p010", "v210", halfPlanesToV210},
    Conversion{"p010", "uyvy", fromHalfPlanes<cycbcr_yuv420p16_to_uyvy>},

    Conversion{"rgb32", "uyvy", nullptr},
    Conversion{"rgb32", "yuy2", nullptr},
    Conversion{"rgb32", "yvyu", nullptr},
    Conversion{"rgb32", "cyuv", nullptr},
    Conversion{"rgb32", "i420", nullptr, kFields},
    Conversion{"rgb32", "yv12", nullptr, kFields},
    Conversion{"rgb32", "p422", nullptr},
    toGroups("rgb32", nullptr),
    Conversion{"rgb32", "yuv444p10", rgbToPlanes<cycbcr_RGB32_to_yuv444p10, 32>},

    Conversion{"rgb24", "uyvy", wholeFrameByMatrix<cycbcr_RGB24_to_uyvy>},
    Conversion{"rgb24", "yuy2", wholeFrameByMatrix<cycbcr_RGB24_to_yuy2>},
    Conversion{"rgb24", "yvyu", wholeFrameByMatrix<cycbcr_RGB24_to_yvyu>},
    Conversion{"rgb24", "cyuv", wholeFrameByMatrix<cycbcr_RGB24_to_cyuv>},
    Conversion{"rgb24", "i420", wholeFrameByMatrix<cycbcr_RGB24_to_i420>, kFields},
    Conversion{"rgb24", "yv12", wholeFrameByMatrix<cycbcr_RGB24_to_yv12>, kFields},
    Conversion{"rgb24", "p422", wholeFrameByMatrix<cycbcr_RGB24_to_p422>},
    toGroups("rgb24", wholeFrameByMatrix<cycbcr_RGB24_to_012v>),
    Conversion{"rgb24", "yuv444p10", rgbToPlanes<cycbcr_RGB32_to_yuv444p10, 24>},

    Conversion{"rgb64", "uyvy", wholeFrameOfBits<cycbcr_RGB64_to_uyvy, 64>},
    Conversion{"rgb64", "p422", wholeFrameByMatrix<cycbcr_RGB64_to_p422>},
    toGroups("rgb64", wholeFrameOfBits<cycbcr_RGB64_to_012v, 64>),
    Conversion{"rgb64", "yuv444p10", rgbToPlanes<cycbcr_RGB64_to_yuv444p10, 64>},
    Conversion{"rgb64", "yuv422p12", rgbToPlanes<cycbcr_RGB64_to_yuv422p12, 64>},
    Conversion{"rgb64", "yuv422p16", deepRgbToPlanes16<64>, kLifted},

    Conversion{"rgb48", "uyvy", wholeFrameOfBits<cycbcr_RGB64_to_uyvy, 48>},
    Conversion{"rgb48", "p422", wholeFrameByMatrix<cycbcr_RGB64_to_p422>},
    toGroups("rgb48", wholeFrameOfBits<cycbcr_RGB64_to_012v, 48>),
    Conversion{"rgb48", "yuv444p10", rgbToPlanes<cycbcr_RGB64_to_yuv444p10, 48>},
    Conversion{"rgb48", "yuv422p12", rgbToPlanes<cycbcr_RGB64_to_yuv422p12, 48>},
    Conversion{"rgb48", "yuv422p16", deepRgbToPlanes16<48>, kLifted},

    toGroups("rgb30", wholeFrameByMatrix<cycbcr_RGB10_to_012v>),
    Conversion{"rgb30", "yuv422p16", tenBitRgbToPlanes16},
};

} // namespace

std::span<const Conversion> conversions() {
    return kConversions;
}

} // namespace fikleipa::tool
