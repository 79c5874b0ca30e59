// The frames are those of our converters; what libyuv calls ARGB lies in memory as B, G, R, A.
#include "bench/peers/peers.h"

#include <libyuv.h>

namespace fikleipa::bench {
namespace {

using Bytes = std::uint8_t;

struct Size {
    int width, height;
    explicit Size(const FrameSize& f) : width(static_cast<int>(f.width)), height(static_cast<int>(f.height)) {}
};

using Planes = PeerPlanes (*)(Bytes*, const FrameSize&);

PeerPlanes p422(Bytes* frame, const FrameSize& f) {
    return planes422(frame, f);
}

// One packed plane to three and the other way round, as most of libyuv's functions are made.
template <int (*kConvert)(const Bytes*, int, Bytes*, int, Bytes*, int, Bytes*, int, int, int), int kPixelBytes,
          Planes kPlanes>
void split(Bytes* dst, Bytes* src, const FrameSize& f) {
    const Size size(f);
    const PeerPlanes to = kPlanes(dst, f);
    kConvert(src, size.width * kPixelBytes, to.y, to.pitch, to.cb, to.chromaPitch, to.cr, to.chromaPitch, size.width,
             size.height);
}

template <int (*kConvert)(const Bytes*, int, const Bytes*, int, const Bytes*, int, Bytes*, int, int, int),
          int kPixelBytes, Planes kPlanes>
void join(Bytes* dst, Bytes* src, const FrameSize& f) {
    const Size size(f);
    const PeerPlanes from = kPlanes(src, f);
    kConvert(from.y, from.pitch, from.cb, from.chromaPitch, from.cr, from.chromaPitch, dst, size.width * kPixelBytes,
             size.width, size.height);
}

template <int (*kConvert)(const Bytes*, int, Bytes*, int, int, int), int kFromBytes, int kToBytes>
void packed(Bytes* dst, Bytes* src, const FrameSize& f) {
    const Size size(f);
    kConvert(src, size.width * kFromBytes, dst, size.width * kToBytes, size.width, size.height);
}

template <int (*kCopy)(const Bytes*, int, const Bytes*, int, const Bytes*, int, Bytes*, int, Bytes*, int, Bytes*, int,
                       int, int),
          Planes kPlanes>
void copy(Bytes* dst, Bytes* src, const FrameSize& f) {
    const Size size(f);
    const PeerPlanes from = kPlanes(src, f);
    const PeerPlanes to = kPlanes(dst, f);
    kCopy(from.y, from.pitch, from.cb, from.chromaPitch, from.cr, from.chromaPitch, to.y, to.pitch, to.cb,
          to.chromaPitch, to.cr, to.chromaPitch, size.width, size.height);
}

void nv12ToRgb32(Bytes* dst, Bytes* src, const FrameSize& f) {
    const Size size(f);
    const std::size_t luma = std::size_t{f.width} * f.height;
    libyuv::NV12ToARGB(src, size.width, src + luma, size.width, dst, 4 * size.width, size.width, size.height);
}

// Planes of 10 bits, whose pitches libyuv counts in samples.
template <int (*kConvert)(const std::uint16_t*, int, const std::uint16_t*, int, const std::uint16_t*, int, Bytes*, int,
                          int, int)>
void joinDeep(Bytes* dst, Bytes* src, const FrameSize& f) {
    const Size size(f);
    const PeerPlanes from = planes422(src, f, 2);
    const auto samples = [](Bytes* plane) { return reinterpret_cast<const std::uint16_t*>(plane); };
    kConvert(samples(from.y), size.width, samples(from.cb), size.width / 2, samples(from.cr), size.width / 2, dst,
             4 * size.width, size.width, size.height);
}

const Peer kLibyuv("libyuv", {
                                 {"yuy2_to_i420", split<libyuv::YUY2ToI420, 2, planes420>},
                                 {"uyvy_to_i420", split<libyuv::UYVYToI420, 2, planes420>},
                                 {"yuy2_to_p422", split<libyuv::YUY2ToI422, 2, p422>},
                                 {"uyvy_to_p422", split<libyuv::UYVYToI422, 2, p422>},
                                 {"i420_to_yuy2", join<libyuv::I420ToYUY2, 2, planes420>},
                                 {"i420_to_uyvy", join<libyuv::I420ToUYVY, 2, planes420>},
                                 {"p422_to_yuy2", join<libyuv::I422ToYUY2, 2, p422>},
                                 {"p422_to_uyvy", join<libyuv::I422ToUYVY, 2, p422>},
                                 {"i420_to_i420", copy<libyuv::I420Copy, planes420>},
                                 {"p422_to_p422", copy<libyuv::I422Copy, p422>},
                                 {"yuy2_to_rgb32", packed<libyuv::YUY2ToARGB, 2, 4>},
                                 {"uyvy_to_rgb32", packed<libyuv::UYVYToARGB, 2, 4>},
                                 {"i420_to_rgb32", join<libyuv::H420ToARGB, 4, planes420>},
                                 {"p422_to_rgb32", join<libyuv::H422ToARGB, 4, p422>},
                                 {"nv12_to_rgb32", nv12ToRgb32},
                                 {"i420_to_rgb24", join<libyuv::H420ToRGB24, 3, planes420>},
                                 {"p422_to_rgb24", join<libyuv::I422ToRGB24, 3, p422>},
                                 {"i420_to_rgb565", join<libyuv::H420ToRGB565, 2, planes420>},
                                 {"p422_to_rgb565", join<libyuv::I422ToRGB565, 2, p422>},
                                 {"i420_to_rgb555", join<libyuv::I420ToARGB1555, 2, planes420>},
                                 {"RGB32_to_i420", split<libyuv::ARGBToI420, 4, planes420>},
                                 {"RGB24_to_i420", split<libyuv::RGB24ToI420, 3, planes420>},
                                 {"RGB32_to_p422", split<libyuv::ARGBToI422, 4, p422>},
                                 {"RGB32_to_yuy2", packed<libyuv::ARGBToYUY2, 4, 2>},
                                 {"RGB32_to_uyvy", packed<libyuv::ARGBToUYVY, 4, 2>},
                                 {"RGB32_to_uyvy_Alpha", packed<libyuv::ARGBExtractAlpha, 4, 1>},
                                 {"10ToRGBInt(32)", joinDeep<libyuv::H210ToARGB>},
                                 {"10ToRGBInt10", joinDeep<libyuv::H210ToAR30>},
                             });

} // namespace
} // namespace fikleipa::bench
