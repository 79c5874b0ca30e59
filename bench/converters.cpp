#include "bench/converters.h"
#include "fikleipa.h"

namespace fikleipa::bench {
namespace {

struct PackedEntry {
    const char* name;
    PXConvertFrame* convert;
};

#define ENTRY(name)                                                                                                    \
    { #name, cycbcr_##name }
constexpr PackedEntry kPacked[] = {
    ENTRY(yuy2_to_yuy2), ENTRY(yvyu_to_yvyu), ENTRY(uyvy_to_uyvy), ENTRY(cyuv_to_cyuv), ENTRY(interleaved_copy),
    ENTRY(yuy2_to_uyvy), ENTRY(uyvy_to_yuy2), ENTRY(yvyu_to_uyvy), ENTRY(uyvy_to_yvyu), ENTRY(yuy2_to_yvyu),
    ENTRY(yvyu_to_yuy2), ENTRY(yuy2_to_cyuv), ENTRY(yvyu_to_cyuv), ENTRY(uyvy_to_cyuv), ENTRY(cyuv_to_uyvy),
    ENTRY(cyuv_to_yuy2), ENTRY(cyuv_to_yvyu),
};

struct RgbEntry {
    const char* name;
    PXConvertRgbFrame* convert;
    double read;
    unsigned written;
};

#define RGB_ENTRY(name, read, written)                                                                                 \
    { #name, cycbcr_##name, read, written }
#define RGB_ENTRIES(layout, read)                                                                                      \
    RGB_ENTRY(layout##_to_rgb555, read, 2), RGB_ENTRY(layout##_to_rgb565, read, 2),                                    \
        RGB_ENTRY(layout##_to_rgb24, read, 3), RGB_ENTRY(layout##_to_rgb32, read, 4)
constexpr RgbEntry kRgb[] = {
    RGB_ENTRIES(yuy2, 2),
    RGB_ENTRIES(yvyu, 2),
    RGB_ENTRIES(uyvy, 2),
    RGB_ENTRIES(cyuv, 2),
    RGB_ENTRIES(i420, 1.5),
    RGB_ENTRIES(yv12, 1.5),
    RGB_ENTRIES(p422, 2),
    RGB_ENTRY(nv12_to_rgb32, 1.5, 4),
    RGB_ENTRY(uyvy_to_rgb32_Alpha, 1 + 4, 4), // the pixels are read as well
    RGB_ENTRIES(012v, 16.0 / 6),
    RGB_ENTRY(012v_to_rgb32_Alpha, 4.0 / 3 + 4, 4),
};

struct GeneralEntry {
    const char* name;
    PXToRgb* convert;
    unsigned bitsPerPixel;
    unsigned written;
};

constexpr GeneralEntry kGeneral[] = {
    {"ToRGBFloat(32)", cycbcr_ToRGBFloat, 32, 4},
    {"ToRGBInt16(48)", cycbcr_ToRGBInt16, 48, 6},
    {"ToRGBInt16(64)", cycbcr_ToRGBInt16, 64, 8},
};

struct PlanesEntry {
    const char* name;
    PXToRgbPlanes* convert;
    unsigned written; // bytes of a sample
};

constexpr PlanesEntry kPlanes[] = {
    {"ToRGBPlanarInt", cycbcr_ToRGBPlanarInt, 1},
    {"ToRGBPlanarFloat", cycbcr_ToRGBPlanarFloat, 1},
    {"ToRGBPlanarInt16", cycbcr_ToRGBPlanarInt16, 2},
};

} // namespace

void registerConverters8(simd::Level level, const FrameSize& size) {
    const Context context{level, size};

    for (const PackedEntry& entry : kPacked) {
        context.add(entry.name, {2, 2},
                    [convert = entry.convert](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        convert(dst, src, f.width, f.height, 2 * f.width, 2 * f.width);
                    });
    }
    context.add("yuy2_to_yvyu(units)", {4, 4}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        cycbcr_yuy2_to_yvyu(dst, src, f.width, f.height, 0);
    });
    context.add("invert", {2, 2}, [](std::uint8_t* dst, std::uint8_t* /*src*/, const FrameSize& f) {
        cycbcr_invert(dst, 2 * f.width, f.height);
    });
    for (const RgbEntry& entry : kRgb) {
        context.add(entry.name, {entry.read, static_cast<double>(entry.written)},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        entry.convert(dst, src, f.width, f.height, entry.written * f.width,
                                      static_cast<unsigned>(entry.read * f.width), PX_MATRIX_BT709, PX_RGB_BGRA);
                    });
    }
    for (const GeneralEntry& entry : kGeneral) {
        context.add(entry.name, {2, static_cast<double>(entry.written)},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        entry.convert(dst, src + 1, src, src + 2, f.width, f.height, entry.written * f.width, 0,
                                      PX_MATRIX_BT709, PX_RGB_BGRA, 1, 0, entry.bitsPerPixel, 0);
                    });
    }
    for (const PlanesEntry& entry : kPlanes) {
        context.add(entry.name, {2, 3.0 * entry.written},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        const unsigned pitch = entry.written * f.width;
                        const std::size_t plane = std::size_t{pitch} * f.height;
                        entry.convert(dst, dst + plane, dst + 2 * plane, src + 1, src, src + 2, f.width, f.height,
                                      pitch, 0, PX_MATRIX_BT709, PX_RGB_BGRA, 1, 0, 0);
                    });
    }
}

} // namespace fikleipa::bench
