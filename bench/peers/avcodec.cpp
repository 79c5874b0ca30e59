// libavcodec's v210, on one thread, from and to the buffers of the benchmark.
#include "bench/peers/peers.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/imgutils.h>
}

#include <memory>
#include <stdexcept>

namespace fikleipa::bench {
namespace {

// A buffer of the benchmark, which nobody but the benchmark frees.
AVBufferRef* borrowed(std::uint8_t* data, std::size_t size) {
    return av_buffer_create(
        data, size, [](void*, std::uint8_t*) {}, nullptr, 0);
}

int fill(AVFrame& frame, std::uint8_t* data) {
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const int size = av_image_fill_arrays(frame.data, frame.linesize, data, format, frame.width, frame.height, 1);
    frame.buf[0] = borrowed(data, static_cast<std::size_t>(size));
    return 0;
}

// A codec that puts its results where the benchmark wants them; `opaque` says where.
struct Codec {
    AVCodecContext* context;
    AVFrame* frame = av_frame_alloc();
    AVPacket* packet = av_packet_alloc();

    Codec(const AVCodec* codec, AVPixelFormat format, const FrameSize& f) : context(avcodec_alloc_context3(codec)) {
        context->width = static_cast<int>(f.width);
        context->height = static_cast<int>(f.height);
        context->pix_fmt = format;
        context->time_base = {1, 25};
        context->thread_count = 1;
        context->thread_type = FF_THREAD_SLICE;
        context->get_buffer2 = [](AVCodecContext* self, AVFrame* result, int /*flags*/) {
            return fill(*result, static_cast<std::uint8_t*>(self->opaque));
        };
        context->get_encode_buffer = [](AVCodecContext* self, AVPacket* result, int /*flags*/) {
            result->data = static_cast<std::uint8_t*>(self->opaque);
            result->buf = borrowed(result->data, static_cast<std::size_t>(result->size));
            return 0;
        };
        if (avcodec_open2(context, codec, nullptr) < 0) throw std::runtime_error("libavcodec has no v210");
    }
    ~Codec() {
        av_packet_free(&packet);
        av_frame_free(&frame);
        avcodec_free_context(&context);
    }
    Codec(const Codec&) = delete;
    Codec(Codec&&) = delete;
    Codec& operator=(const Codec&) = delete;
    Codec& operator=(Codec&&) = delete;
};

Convert encode(AVPixelFormat format) {
    return [format, codec = std::shared_ptr<Codec>(), width = 0U](std::uint8_t* dst, std::uint8_t* src,
                                                                  const FrameSize& f) mutable {
        if (width != f.width) {
            codec = std::make_shared<Codec>(avcodec_find_encoder(AV_CODEC_ID_V210), format, f);
            width = f.width;
        }
        AVFrame& frame = *codec->frame;
        frame.format = format;
        frame.width = static_cast<int>(f.width);
        frame.height = static_cast<int>(f.height);
        fill(frame, src);
        codec->context->opaque = dst;
        if (avcodec_send_frame(codec->context, &frame) < 0 ||
            avcodec_receive_packet(codec->context, codec->packet) < 0 || codec->packet->data != dst) {
            throw std::runtime_error("libavcodec did not encode where it was to");
        }
        av_packet_unref(codec->packet);
        av_frame_unref(&frame);
    };
}

Convert decode() {
    return [codec = std::shared_ptr<Codec>(), width = 0U](std::uint8_t* dst, std::uint8_t* src,
                                                          const FrameSize& f) mutable {
        if (width != f.width) {
            codec = std::make_shared<Codec>(avcodec_find_decoder(AV_CODEC_ID_V210), AV_PIX_FMT_YUV422P10LE, f);
            width = f.width;
        }
        const std::size_t size = std::size_t{f.width} / 6 * 16 * f.height;
        codec->packet->data = src;
        codec->packet->size = static_cast<int>(size);
        codec->packet->buf = borrowed(src, size);
        codec->context->opaque = dst;
        if (avcodec_send_packet(codec->context, codec->packet) < 0 ||
            avcodec_receive_frame(codec->context, codec->frame) < 0 || codec->frame->data[0] != dst) {
            throw std::runtime_error("libavcodec did not decode where it was to");
        }
        av_frame_unref(codec->frame);
        av_packet_unref(codec->packet);
    };
}

const Peer kAvcodec("avcodec", {
                                   {"yuv422p10_to_012v", encode(AV_PIX_FMT_YUV422P10LE)},
                                   {"p422_to_012v", encode(AV_PIX_FMT_YUV422P)},
                                   {"012v_to_yuv422p10", decode()},
                               });

} // namespace
} // namespace fikleipa::bench
