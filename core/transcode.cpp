#include "core/fourcc.h"
#include "core/frame.h"
#include "core/processor.h"
#include "fikleipa.h"

namespace {

using fikleipa::kLayouts;
using fikleipa::Layout;
using fikleipa::RgbFrame;

constexpr unsigned kUnhandled = 0xFFFFFFFF;

using Cell = unsigned (*)(const RgbFrame&);

template <PXConvertFrame* kConvert>
unsigned to(const RgbFrame& f) {
    return kConvert(f.dst, f.src, f.width, f.height, f.dstPitch, f.srcPitch);
}

// The one cell that swallows what its converter throws.
template <PXConvertFrame* kConvert>
unsigned guarded(const RgbFrame& f) {
    try {
        return to<kConvert>(f);
    } catch (...) {
        return kUnhandled;
    }
}

template <PXConvertRgbFrame* kConvert>
unsigned rgb(const RgbFrame& f) {
    return kConvert(f.dst, f.src, f.width, f.height, f.dstPitch, f.srcPitch, f.matrix, f.rgbType);
}

constexpr Cell none = nullptr;

// clang-format off
// A row for each source, a column for each destination, both in the order of Layout.
constexpr Cell kCells[kLayouts][kLayouts] = {
    // UYVY                         YUY2                          YVYU                       cyuv                       I420                       YV12                       P422                       v210                         RGB32
    {to<cycbcr_uyvy_to_uyvy>,     guarded<cycbcr_uyvy_to_yuy2>, to<cycbcr_uyvy_to_yvyu>,   to<cycbcr_uyvy_to_cyuv>,   to<cycbcr_uyvy_to_i420>,   to<cycbcr_uyvy_to_yv12>,   to<cycbcr_uyvy_to_p422>,   to<cycbcr_uyvy_to_012v_opt>, rgb<cycbcr_uyvy_to_rgb32>}, // UYVY
    {to<cycbcr_yuy2_to_uyvy>,     to<cycbcr_yuy2_to_yuy2>,      to<cycbcr_yuy2_to_yvyu>,   to<cycbcr_yuy2_to_cyuv>,   to<cycbcr_yuy2_to_i420>,   to<cycbcr_yuy2_to_yv12>,   to<cycbcr_yuy2_to_p422>,   to<cycbcr_yuy2_to_012v>,     rgb<cycbcr_yuy2_to_rgb32>}, // YUY2
    {to<cycbcr_yvyu_to_uyvy>,     to<cycbcr_yvyu_to_yuy2>,      to<cycbcr_yvyu_to_yvyu>,   to<cycbcr_yvyu_to_cyuv>,   to<cycbcr_yvyu_to_i420>,   to<cycbcr_yvyu_to_yv12>,   to<cycbcr_yvyu_to_p422>,   to<cycbcr_yvyu_to_012v>,     rgb<cycbcr_yvyu_to_rgb32>}, // YVYU
    {to<cycbcr_uyvy_to_cyuv>,     to<cycbcr_cyuv_to_yuy2>,      to<cycbcr_cyuv_to_yvyu>,   to<cycbcr_cyuv_to_cyuv>,   to<cycbcr_cyuv_to_i420>,   to<cycbcr_cyuv_to_yv12>,   to<cycbcr_cyuv_to_p422>,   to<cycbcr_cyuv_to_012v>,     rgb<cycbcr_cyuv_to_rgb32>}, // cyuv
    {to<cycbcr_i420_to_uyvy>,     to<cycbcr_i420_to_yuy2>,      to<cycbcr_i420_to_yvyu>,   to<cycbcr_i420_to_cyuv>,   to<cycbcr_i420_to_i420>,   to<cycbcr_i420_to_yv12>,   to<cycbcr_i420_to_p422>,   to<cycbcr_i420_to_012v>,     rgb<cycbcr_i420_to_rgb32>}, // I420
    {to<cycbcr_yv12_to_uyvy>,     to<cycbcr_yv12_to_yuy2>,      to<cycbcr_yv12_to_yvyu>,   to<cycbcr_yv12_to_cyuv>,   to<cycbcr_yv12_to_i420>,   to<cycbcr_yv12_to_yv12>,   to<cycbcr_yv12_to_p422>,   to<cycbcr_yv12_to_012v>,     rgb<cycbcr_yv12_to_rgb32>}, // YV12
    {to<cycbcr_p422_to_uyvy>,     to<cycbcr_p422_to_yuy2>,      to<cycbcr_p422_to_yvyu>,   to<cycbcr_p422_to_cyuv>,   to<cycbcr_p422_to_i420>,   to<cycbcr_p422_to_yv12>,   to<cycbcr_p422_to_p422>,   to<cycbcr_p422_to_012v>,     rgb<cycbcr_p422_to_rgb32>}, // P422
    {to<cycbcr_012v_to_uyvy_opt>, to<cycbcr_012v_to_yuy2>,      to<cycbcr_012v_to_yvyu>,   to<cycbcr_012v_to_cyuv>,   to<cycbcr_012v_to_i420>,   to<cycbcr_012v_to_yv12>,   to<cycbcr_012v_to_p422>,   to<cycbcr_012v_to_012v>,     rgb<cycbcr_012v_to_rgb32>}, // v210
    {rgb<cycbcr_RGB32_to_uyvy>,   rgb<cycbcr_RGB32_to_yuy2>,    rgb<cycbcr_RGB32_to_yvyu>, rgb<cycbcr_RGB32_to_cyuv>, rgb<cycbcr_RGB32_to_i420>, rgb<cycbcr_RGB32_to_yv12>, rgb<cycbcr_RGB32_to_p422>, rgb<cycbcr_RGB32_to_012v>,   none},                      // RGB32
};
// clang-format on

} // namespace

unsigned int cycbcr_transcode(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                              unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                              PXYCBCRRgbType rgbType, int dstFourCC, int srcFourCC) {
    fikleipa::probeProcessorLevel();
    _fixPitch(static_cast<unsigned>(srcFourCC), width, srcPitch);
    _fixPitch(static_cast<unsigned>(dstFourCC), width, dstPitch);

    // "422P" is known here alone, as a source, and its pitch has not been corrected: deliberate.
    const auto from = srcFourCC == PX_FOURCC_422P ? Layout::P422 : fikleipa::layoutOf(srcFourCC);
    const auto onto = fikleipa::layoutOf(dstFourCC);
    if (!from || !onto) return kUnhandled;

    const Cell cell = kCells[static_cast<unsigned>(*from)][static_cast<unsigned>(*onto)];
    if (cell == none) return kUnhandled;
    return cell({{dst, src, width, height, dstPitch, srcPitch}, matrix, rgbType});
}

int cycbcr_can_transcode(int fourccA, int fourccB) {
    return fikleipa::layoutOf(fourccB).has_value() && fikleipa::layoutOf(fourccA).has_value() ? 1 : 0;
}
