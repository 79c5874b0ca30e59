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
};

#define ENTRIES(layout, ...)                                                                                           \
    {"RGB24_to_" #layout, cycbcr_RGB24_to_##layout, 3, __VA_ARGS__}, {                                                 \
        "RGB32_to_" #layout, cycbcr_RGB32_to_##layout, 4, __VA_ARGS__                                                  \
    }
constexpr PairEntry kPairs[] = {
    ENTRIES(uyvy, 2, 2), ENTRIES(yuy2, 2, 2),   ENTRIES(yvyu, 2, 2),   ENTRIES(cyuv, 2, 2),
    ENTRIES(p422, 2, 1), ENTRIES(i420, 1.5, 1), ENTRIES(yv12, 1.5, 1), {"RGB64_to_p422", cycbcr_RGB64_to_p422, 8, 2, 1},
};

} // namespace

void registerFromRgb(simd::Level level, const FrameSize& size) {
    const Context context{level, size};
    for (const PairEntry& entry : kPairs) {
        context.add(entry.name, {static_cast<double>(entry.read), entry.written},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        entry.convert(dst, src, f.width, f.height, entry.pitch * f.width, entry.read * f.width,
                                      PX_MATRIX_BT709, PX_RGB_BGRA);
                    });
    }
    for (const unsigned bitsPerPixel : {48U, 64U}) {
        const std::string name = "RGB64_to_uyvy(" + std::to_string(bitsPerPixel) + ")";
        context.add(name.c_str(), {bitsPerPixel / 8.0, 2},
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
}

} // namespace fikleipa::bench
