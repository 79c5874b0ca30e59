#include "bench/converters.h"
#include "core/fourcc.h"

#include <array>
#include <cctype>

namespace fikleipa::bench {
namespace {

constexpr std::array kOrder{Layout::Uyvy, Layout::Yuy2, Layout::Yvyu, Layout::Cyuv, Layout::I420,
                            Layout::Yv12, Layout::P422, Layout::V210, Layout::Rgb32};

int codeOf(Layout layout) {
    for (const Code& code : kCodes) {
        if (code.layout == layout) return code.fourcc;
    }
    return 0;
}

std::string nameOf(Layout layout) {
    const int code = codeOf(layout);
    if (code == PX_FOURCC_RGB32) return "RGB32";
    std::string name;
    for (int shift = 0; shift < 32; shift += 8) name += static_cast<char>(code >> shift & 0xFF);
    return name;
}

std::string cellName(Layout from, Layout onto) {
    return "transcode/" + nameOf(from) + "/" + nameOf(onto);
}

// Bytes a pixel.
double bytesOf(Layout layout) {
    switch (layout) {
    case Layout::I420:
    case Layout::Yv12:
        return 1.5;
    case Layout::V210:
        return 16.0 / 6;
    case Layout::Rgb32:
        return 4;
    case Layout::Uyvy:
    case Layout::Yuy2:
    case Layout::Yvyu:
    case Layout::Cyuv:
    case Layout::P422:
        break;
    }
    return 2;
}

unsigned pitchOf(Layout layout, unsigned width) {
    const bool planar = layout == Layout::I420 || layout == Layout::Yv12 || layout == Layout::P422;
    return planar ? width : static_cast<unsigned>(bytesOf(layout) * width);
}

unsigned transcode(std::uint8_t* dst, std::uint8_t* src, const FrameSize& f, const Code& from, const Code& onto) {
    return cycbcr_transcode(dst, src, f.width, f.height, pitchOf(onto.layout, f.width), pitchOf(from.layout, f.width),
                            PX_MATRIX_BT709, PX_RGB_BGRA, onto.fourcc, from.fourcc);
}

} // namespace

void registerDispatcher(simd::Level level, const FrameSize& size) {
    const Context context{level, size};
    for (const Layout from : kOrder) {
        for (const Layout onto : kOrder) {
            if (from == Layout::Rgb32 && onto == Layout::Rgb32) continue;
            context.add(cellName(from, onto), {bytesOf(from), bytesOf(onto)},
                        [from, onto](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                            transcode(dst, src, f, {codeOf(from), from}, {codeOf(onto), onto});
                        });
        }
    }
}

std::set<std::string> dispatcherCells() {
    constexpr FrameSize kSmall{"small", 48, 4, 1, 1};
    constexpr std::size_t kRoom = 8192;
    std::vector<std::uint8_t> src(kRoom);
    std::vector<std::uint8_t> dst(kRoom);
    std::set<std::string> cells;
    for (const Code& from : kCodes) {
        for (const Code& onto : kCodes) {
            if (transcode(dst.data(), src.data(), kSmall, from, onto) == 0xFFFFFFFF) continue;
            cells.insert(cellName(from.layout, onto.layout));
        }
    }
    return cells;
}

} // namespace fikleipa::bench
