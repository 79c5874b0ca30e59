// libswscale on one thread, with the fastest scaler it offers, though sizes stay as they are.
#include "bench/peers/peers.h"

extern "C" {
#include <libavutil/imgutils.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <stdexcept>

namespace fikleipa::bench {
namespace {

struct FreeContext {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};
using Context = std::unique_ptr<SwsContext, FreeContext>;

// A frame without padding, as the benchmarks have them.
struct Picture {
    std::uint8_t* data[4];
    int pitches[4];

    Picture(std::uint8_t* frame, AVPixelFormat format, const FrameSize& f) {
        av_image_fill_arrays(data, pitches, frame, format, static_cast<int>(f.width), static_cast<int>(f.height), 1);
    }
};

Convert between(AVPixelFormat from, AVPixelFormat to) {
    return [from, to, context = std::shared_ptr<SwsContext>(), width = 0U](std::uint8_t* dst, std::uint8_t* src,
                                                                           const FrameSize& f) mutable {
        const auto w = static_cast<int>(f.width);
        const auto h = static_cast<int>(f.height);
        if (width != f.width) {
            context = Context(sws_getContext(w, h, from, w, h, to, SWS_FAST_BILINEAR, nullptr, nullptr, nullptr));
            if (context == nullptr) throw std::runtime_error("libswscale does not convert that");
            width = f.width;
        }
        const Picture source(src, from, f);
        const Picture destination(dst, to, f);
        sws_scale(context.get(), source.data, source.pitches, 0, h, destination.data, destination.pitches);
    };
}

const Peer kSwscale("swscale", {
                                   {"yuy2_to_uyvy", between(AV_PIX_FMT_YUYV422, AV_PIX_FMT_UYVY422)},
                                   {"uyvy_to_yuy2", between(AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUYV422)},
                                   {"yuy2_to_i420", between(AV_PIX_FMT_YUYV422, AV_PIX_FMT_YUV420P)},
                                   {"uyvy_to_i420", between(AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUV420P)},
                                   {"yuy2_to_p422", between(AV_PIX_FMT_YUYV422, AV_PIX_FMT_YUV422P)},
                                   {"uyvy_to_p422", between(AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUV422P)},
                                   {"i420_to_yuy2", between(AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUYV422)},
                                   {"i420_to_uyvy", between(AV_PIX_FMT_YUV420P, AV_PIX_FMT_UYVY422)},
                                   {"p422_to_yuy2", between(AV_PIX_FMT_YUV422P, AV_PIX_FMT_YUYV422)},
                                   {"p422_to_uyvy", between(AV_PIX_FMT_YUV422P, AV_PIX_FMT_UYVY422)},
                                   {"yuy2_to_rgb32", between(AV_PIX_FMT_YUYV422, AV_PIX_FMT_BGRA)},
                                   {"uyvy_to_rgb32", between(AV_PIX_FMT_UYVY422, AV_PIX_FMT_BGRA)},
                                   {"uyvy_to_rgb24", between(AV_PIX_FMT_UYVY422, AV_PIX_FMT_BGR24)},
                                   {"i420_to_rgb32", between(AV_PIX_FMT_YUV420P, AV_PIX_FMT_BGRA)},
                                   {"i420_to_rgb24", between(AV_PIX_FMT_YUV420P, AV_PIX_FMT_BGR24)},
                                   {"i420_to_rgb565", between(AV_PIX_FMT_YUV420P, AV_PIX_FMT_BGR565LE)},
                                   {"i420_to_rgb555", between(AV_PIX_FMT_YUV420P, AV_PIX_FMT_BGR555LE)},
                                   {"p422_to_rgb32", between(AV_PIX_FMT_YUV422P, AV_PIX_FMT_BGRA)},
                                   {"p422_to_rgb24", between(AV_PIX_FMT_YUV422P, AV_PIX_FMT_BGR24)},
                                   {"p422_to_rgb565", between(AV_PIX_FMT_YUV422P, AV_PIX_FMT_BGR565LE)},
                                   {"p422_to_rgb555", between(AV_PIX_FMT_YUV422P, AV_PIX_FMT_BGR555LE)},
                                   {"nv12_to_rgb32", between(AV_PIX_FMT_NV12, AV_PIX_FMT_BGRA)},
                                   {"RGB32_to_uyvy", between(AV_PIX_FMT_BGRA, AV_PIX_FMT_UYVY422)},
                                   {"RGB32_to_yuy2", between(AV_PIX_FMT_BGRA, AV_PIX_FMT_YUYV422)},
                                   {"RGB32_to_i420", between(AV_PIX_FMT_BGRA, AV_PIX_FMT_YUV420P)},
                                   {"RGB32_to_p422", between(AV_PIX_FMT_BGRA, AV_PIX_FMT_YUV422P)},
                                   {"RGB24_to_uyvy", between(AV_PIX_FMT_BGR24, AV_PIX_FMT_UYVY422)},
                                   {"RGB24_to_i420", between(AV_PIX_FMT_BGR24, AV_PIX_FMT_YUV420P)},
                                   {"RGB24_to_p422", between(AV_PIX_FMT_BGR24, AV_PIX_FMT_YUV422P)},
                                   {"uyvy_to_yuv444p10", between(AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUV444P10LE)},
                                   {"yuv422p10_to_uyvy", between(AV_PIX_FMT_YUV422P10LE, AV_PIX_FMT_UYVY422)},
                                   {"10ToRGBInt(32)", between(AV_PIX_FMT_YUV422P10LE, AV_PIX_FMT_BGRA)},
                                   {"10ToRGBInt16(48)", between(AV_PIX_FMT_YUV422P10LE, AV_PIX_FMT_BGR48LE)},
                                   {"10ToRGBInt16(64)", between(AV_PIX_FMT_YUV422P10LE, AV_PIX_FMT_BGRA64LE)},
                                   {"12ToRGBInt16(48)", between(AV_PIX_FMT_YUV422P12LE, AV_PIX_FMT_BGR48LE)},
                                   {"RGB32_to_yuv444p10(32)", between(AV_PIX_FMT_BGRA, AV_PIX_FMT_YUV444P10LE)},
                                   {"RGB64_to_yuv444p10(64)", between(AV_PIX_FMT_BGRA64LE, AV_PIX_FMT_YUV444P10LE)},
                                   {"RGB64_to_yuv422p12(64)", between(AV_PIX_FMT_BGRA64LE, AV_PIX_FMT_YUV422P12LE)},
                                   {"RGB64_to_YCbCrPlanar16(64)", between(AV_PIX_FMT_BGRA64LE, AV_PIX_FMT_YUV422P16LE)},
                               });

} // namespace
} // namespace fikleipa::bench
