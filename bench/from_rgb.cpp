#include "bench/converters.h"
#include "fikleipa.h"

namespace fikleipa::bench {
namespace {

struct PairEntry {
    const char* name;
    PXConvertRgbFrame* convert;
    unsigned read;
    double written;
    unsigned pitch; // of the destination, in widths
    PXYCBCRMatrix matrix = PX_MATRIX_BT709;
};

#define ENTRIES(layout, ...)                                                                                           \
    {"RGB24_to_" #layout, cycbcr_RGB24_to_##layout, 3, __VA_ARGS__}, {                                                 \
        "RGB32_to_" #layout, cycbcr_RGB32_to_##layout, 4, __VA_ARGS__                                                  \
    }
constexpr PairEntry kPairs[] = {
    ENTRIES(uyvy, 2, 2),
    ENTRIES(yuy2, 2, 2),
    ENTRIES(yvyu, 2, 2),
    ENTRIES(cyuv, 2, 2),
    ENTRIES(p422, 2, 1),
    ENTRIES(i420, 1.5, 1),
    ENTRIES(yv12, 1.5, 1),
    {"RGB64_to_p422", cycbcr_RGB64_to_p422, 8, 2, 1},
    // Coefficients of six digits take longer than those of three.
    {"RGB24_to_uyvy(BT.2020)", cycbcr_RGB24_to_uyvy, 3, 2, 2, PX_MATRIX_BT2020},
    {"RGB32_to_uyvy(BT.2020)", cycbcr_RGB32_to_uyvy, 4, 2, 2, PX_MATRIX_BT2020},
    {"RGB32_to_i420(BT.2020)", cycbcr_RGB32_to_i420, 4, 1.5, 1, PX_MATRIX_BT2020},
};

constexpr double kV210 = 16.0 / 6; // bytes a pixel

struct V210Entry {
    const char* name;
    PXRgbToV210* convert;
    unsigned bitsPerPixel;
};
constexpr V210Entry kToV210[] = {
    {"RGB24_to_012v", v210FromRGB, 24},
    {"RGB32_to_012v", v210FromRGB, 32},
    {"v210FromRGBNoFilter(32)", v210FromRGBNoFilter, 32},
    {"RGB64_to_012v(48)", cycbcr_RGB64_to_012v, 48},
    {"RGB64_to_012v(64)", cycbcr_RGB64_to_012v, 64},
};

// Into planes of 16-bit samples with so much chroma against luma.
struct PlanesEntry {
    const char* name;
    PXRgbToPlanes* convert;
    unsigned bitsPerPixel;
    double chroma;
};
constexpr PlanesEntry kToPlanes[] = {
    {"RGB32_to_yuv444p10(24)", cycbcr_RGB32_to_yuv444p10, 24, 1},
    {"RGB32_to_yuv444p10(32)", cycbcr_RGB32_to_yuv444p10, 32, 1},
    {"RGB64_to_yuv444p10(48)", cycbcr_RGB64_to_yuv444p10, 48, 1},
    {"RGB64_to_yuv444p10(64)", cycbcr_RGB64_to_yuv444p10, 64, 1},
    {"RGB64_to_yuv444p10_float(64)", cycbcr_RGB64_to_yuv444p10_float_BAD_ONLY_LUMA_WORKS, 64, 1},
    {"RGB64_to_yuv422p12(48)", cycbcr_RGB64_to_yuv422p12, 48, 0.5},
    {"RGB64_to_yuv422p12(64)", cycbcr_RGB64_to_yuv422p12, 64, 0.5},
};

struct Planes {
    std::uint8_t* y;
    std::uint8_t* cb;
    std::uint8_t* cr;
};

Planes planesOf(std::uint8_t* frame, const FrameSize& f, double chroma) {
    const std::size_t luma = std::size_t{2} * f.width * f.height;
    const auto plane = static_cast<std::size_t>(static_cast<double>(luma) * chroma);
    return {frame, frame + luma, frame + luma + plane};
}

void registerDeep(const Context& context) {
    for (const V210Entry& entry : kToV210) {
        context.add(entry.name, {entry.bitsPerPixel / 8.0, kV210},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        entry.convert(dst, src, f.width, f.height, f.width / 6 * 16, entry.bitsPerPixel / 8 * f.width,
                                      PX_MATRIX_BT709, PX_RGB_BGRA, entry.bitsPerPixel);
                    });
    }
    context.add("RGB10_to_012v", {4, kV210}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        cycbcr_RGB10_to_012v(dst, src, f.width, f.height, f.width / 6 * 16, 4 * f.width, PX_MATRIX_BT709, PX_RGB_BGRA);
    });
    for (const unsigned flags : {0U, 1U}) {
        context.add(flags == 0 ? "RGB32_to_012v_Alpha" : "RGB32_to_012v_Alpha(scaled)", {4, 4.0 / 3},
                    [flags](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        cycbcr_RGB32_to_012v_Alpha(dst, src, f.width, f.height, 0, 4 * f.width, flags, PX_RGB_BGRA);
                    });
    }
    for (const PlanesEntry& entry : kToPlanes) {
        context.add(entry.name, {entry.bitsPerPixel / 8.0, 2 + 4 * entry.chroma},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        const Planes planes = planesOf(dst, f, entry.chroma);
                        const unsigned chromaPitch = entry.chroma == 1 ? 2 * f.width : f.width;
                        entry.convert(planes.y, planes.cb, planes.cr, src, f.width, f.height, 2 * f.width, chromaPitch,
                                      entry.bitsPerPixel / 8 * f.width, PX_MATRIX_BT709, PX_RGB_BGRA,
                                      entry.bitsPerPixel);
                    });
    }
    for (const unsigned bitsPerPixel : {48U, 64U}) {
        const std::string name = "RGB64_to_YCbCrPlanar16(" + std::to_string(bitsPerPixel) + ")";
        context.add(
            name, {bitsPerPixel / 8.0, 4}, [bitsPerPixel](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                const Planes planes = planesOf(dst, f, 0.5);
                cycbcr_RGB64_to_YCbCrPlanar16(planes.y, planes.cb, planes.cr, src, f.width, f.height, 2 * f.width,
                                              bitsPerPixel / 8 * f.width, PX_MATRIX_BT709, PX_RGB_BGRA, bitsPerPixel);
            });
    }
    context.add("RGB10_to_YCbCrPlanar16", {4, 4}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        const Planes planes = planesOf(dst, f, 0.5);
        cycbcr_RGB10_to_YCbCrPlanar16(planes.y, planes.cb, planes.cr, src, f.width, f.height, 2 * f.width, 4 * f.width,
                                      PX_MATRIX_BT709, PX_RGB_BGRA);
    });
}

} // namespace

void registerFromRgb(simd::Level level, const FrameSize& size) {
    const Context context{level, size};
    for (const PairEntry& entry : kPairs) {
        context.add(entry.name, {static_cast<double>(entry.read), entry.written},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        entry.convert(dst, src, f.width, f.height, entry.pitch * f.width, entry.read * f.width,
                                      entry.matrix, PX_RGB_BGRA);
                    });
    }
    for (const unsigned bitsPerPixel : {48U, 64U}) {
        const std::string name = "RGB64_to_uyvy(" + std::to_string(bitsPerPixel) + ")";
        context.add(name, {bitsPerPixel / 8.0, 2},
                    [bitsPerPixel](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        cycbcr_RGB64_to_uyvy(dst, src, f.width, f.height, 2 * f.width, bitsPerPixel / 8 * f.width,
                                             PX_MATRIX_BT709, PX_RGB_BGRA, bitsPerPixel);
                    });
    }
    for (const unsigned flags : {0U, 1U}) {
        context.add(flags == 0 ? "RGB32_to_uyvy_Alpha" : "RGB32_to_uyvy_Alpha(scaled)", {4, 1},
                    [flags](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        cycbcr_RGB32_to_uyvy_Alpha(dst, src, f.width, f.height, 0, 4 * f.width, flags, PX_RGB_BGRA);
                    });
    }
    registerDeep(context);
}

} // namespace fikleipa::bench
