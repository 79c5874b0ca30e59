#include "simd/from_rgb8.h"

#include "simd/apart.h"

#include <algorithm>
#include <utility>

namespace fikleipa::simd {
namespace {

// The sum of a pixel's components. The largest rows keep it below 4.1e8.
template <RgbPixel kPixel>
int weighed(const std::uint8_t* pixel, const RgbOrder& order, const RgbWeights& k) {
    constexpr unsigned kBytes = componentBytes(kPixel);
    const auto component = [pixel](unsigned i) { return pixel[i * kBytes + kBytes - 1]; };
    return k.r * component(order.r) + k.g * component(order.g) + k.b * component(order.b);
}

std::uint8_t luma(int sum, int yo, bool rounded) {
    const int up = rounded && sum % kFromRgb8Scale > kLumaRounding ? 1 : 0;
    return static_cast<std::uint8_t>(std::min(sum / kFromRgb8Scale + up + yo, 255));
}

std::uint8_t chroma(int sum, const ChromaRounding& rounding) {
    const int remainder = sum % kFromRgb8Scale;
    const int step = remainder > rounding.positive ? 1 : remainder < -rounding.negative ? -1 : 0;
    return static_cast<std::uint8_t>(std::clamp(sum / kFromRgb8Scale + step, -128, 127) + 128);
}

template <RgbPixel kPixel, Samples8 kTo>
void convert(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const RgbPairs& from, const FromRgbRow& row) {
    constexpr bool kPlanar = kTo == Samples8::Planar;
    constexpr std::size_t kLumaStep = kPlanar ? 1 : 2;
    constexpr std::size_t kChromaStep = kPlanar ? 1 : 4;
    for (std::size_t i = 0; i < from.pairs; ++i) {
        const std::uint8_t* const first = from.src + i * 2 * bytesPerPixel(kPixel);
        const int y0 = weighed<kPixel>(first, from.order, row.y);
        const int y1 = weighed<kPixel>(first + bytesPerPixel(kPixel), from.order, row.y);
        const int u = weighed<kPixel>(first, from.order, row.cb);
        const int v = weighed<kPixel>(first, from.order, row.cr);
        y[2 * i * kLumaStep] = luma(y0, row.yo, true);
        y[(2 * i + 1) * kLumaStep] = luma(y1, row.yo, !kPlanar);
        cb[i * kChromaStep] = chroma(u, kCbRounding);
        cr[i * kChromaStep] = chroma(v, kCrRounding);
    }
}

template <RgbPixel kPixel>
void planarLuma(std::uint8_t* y, const RgbPairs& from, const FromRgbRow& row) {
    for (std::size_t i = 0; i < from.pairs; ++i) {
        const std::uint8_t* const first = from.src + i * 2 * bytesPerPixel(kPixel);
        const int y0 = weighed<kPixel>(first, from.order, row.y);
        const int y1 = weighed<kPixel>(first + bytesPerPixel(kPixel), from.order, row.y);
        y[2 * i] = luma(y0, row.yo, true);
        y[2 * i + 1] = luma(y1, row.yo, false);
    }
}

void alpha(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, std::ptrdiff_t /*ahead*/) {
    for (std::size_t x = 0; x < pixels; ++x) dst[x] = src[4 * x + 3];
}

void scaledAlpha(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, std::ptrdiff_t /*ahead*/) {
    constexpr unsigned kScale = 7'204'443; // 219 / 255 of 2^23
    for (std::size_t x = 0; x < pixels; ++x) dst[x] = static_cast<std::uint8_t>((src[4 * x + 3] * kScale >> 23) + 16);
}

template <RgbPixel kPixel, std::size_t... kTo>
constexpr auto eachSamples(std::index_sequence<kTo...> /*samples*/) {
    return std::array{convert<kPixel, static_cast<Samples8>(kTo)>...};
}

template <std::size_t... kPixels>
constexpr FromRgb8Kernels portableKernels(std::index_sequence<kPixels...> /*pixels*/) {
    constexpr std::make_index_sequence<kSamples8 - 1> kTo;
    return {{eachSamples<static_cast<RgbPixel>(kPixels)>(kTo)...},
            {planarLuma<static_cast<RgbPixel>(kPixels)>...},
            alpha,
            scaledAlpha};
}

constexpr FromRgb8Kernels kPortable = portableKernels(std::make_index_sequence<kRgbPixels>());

} // namespace
} // namespace fikleipa::simd

#define FIKLEIPA_KERNELS "simd/x86/from_rgb8.inl.h"
#include "simd/each_level.h"
#include "simd/overwrite.inl.h"

namespace fikleipa::simd {

FromRgb8Kernels fromRgb8Kernels(Level level) {
    return overwritten(kPortable, level);
}

} // namespace fikleipa::simd
