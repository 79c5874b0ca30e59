#include "simd/to_rgb8.h"

#include "simd/rgb_pixels.h"

#include <algorithm>
#include <utility>

#define FIKLEIPA_KERNELS "simd/x86/to_rgb8.inl.h"
#include "simd/each_level.h"
#include "simd/overwrite.inl.h"

namespace fikleipa::simd {
namespace {

int limited(int value, int max) {
    return std::clamp(value, 0, max);
}

// The three arithmetics. Integer sums stay below 1.4e9 with the largest rows.
struct Integer8 {
    using Row = ToRgbRow;
    static Pixel convert(int y, int cb, int cr, const Row& k) {
        const int luma = (y - k.yo) * k.ys;
        return {limited((luma + (cr - 128) * k.rv) / 10000, 255),
                limited((luma - (cr - 128) * k.gv - (cb - 128) * k.gu) / 10000, 255),
                limited((luma + (cb - 128) * k.bu) / 10000, 255)};
    }
};

struct Double8 {
    using Row = ToRgbFloatRow;
    static Pixel convert(int y, int cb, int cr, const Row& k) {
        const double luma = k.ys * (y - k.yo);
        return {limited(static_cast<int>(luma + k.rv * (cr - 128)), 255),
                limited(static_cast<int>(luma - k.gv * (cr - 128) - k.gu * (cb - 128)), 255),
                limited(static_cast<int>(luma + k.bu * (cb - 128)), 255)};
    }
};

struct Integer16 {
    using Row = ToRgbRow;
    static Pixel convert(int y, int cb, int cr, const Row& k) {
        const int luma = (y - k.yo) * k.ys;
        // One more than the quotient, but not for G: deliberate.
        return {limited((luma + (cr - 128) * k.rv + 10000) / 10000, 65535),
                limited((luma - (cr - 128) * k.gv - (cb - 128) * k.gu) / 10000, 65535),
                limited((luma + (cb - 128) * k.bu + 10000) / 10000, 65535)};
    }
};

// Calls put(x, pixel) for the pixels of a row in turn.
template <Samples8 kSource, class Arithmetic, class Put>
void eachPixel(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pairs,
               const typename Arithmetic::Row& row, Put put) {
    constexpr PairBytes kBytes = pairBytes(kSource);
    for (std::size_t i = 0; i < pairs; ++i) {
        const int u = cb[i * kBytes.chroma];
        const int v = cr[i * kBytes.chroma];
        put(2 * i, Arithmetic::convert(y[i * kBytes.luma], u, v, row));
        put(2 * i + 1, Arithmetic::convert(y[i * kBytes.luma + kBytes.luma / 2], u, v, row));
    }
}

template <Samples8 kSource, class Arithmetic, class Format>
void toPacked(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
              std::size_t pairs, const typename Arithmetic::Row& row) {
    eachPixel<kSource, Arithmetic>(y, cb, cr, pairs, row,
                                   [=](std::size_t x, Pixel p) { Format::store(dst + x * Format::kBytes, p); });
}

template <Samples8 kSource>
void toPlanes(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
              const std::uint8_t* cr, std::size_t pairs, const ToRgbRow& row) {
    eachPixel<kSource, Integer8>(y, cb, cr, pairs, row, [=](std::size_t x, Pixel p) {
        r[x] = static_cast<std::uint8_t>(p.r);
        g[x] = static_cast<std::uint8_t>(p.g);
        b[x] = static_cast<std::uint8_t>(p.b);
    });
}

template <Samples8 kSource, class Arithmetic>
void toWords(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
             const std::uint8_t* cr, std::size_t pairs, const typename Arithmetic::Row& row) {
    eachPixel<kSource, Arithmetic>(y, cb, cr, pairs, row, [=](std::size_t x, Pixel p) {
        storeWord<std::uint16_t>(r + 2 * x, static_cast<unsigned>(p.r));
        storeWord<std::uint16_t>(g + 2 * x, static_cast<unsigned>(p.g));
        storeWord<std::uint16_t>(b + 2 * x, static_cast<unsigned>(p.b));
    });
}

template <Samples8 kSource, std::size_t... kFormats>
constexpr auto packed8Row(std::index_sequence<kFormats...>) {
    return std::array{toPacked<kSource, Integer8, Packed8<static_cast<Rgb8>(kFormats)>>...};
}

template <Samples8 kSource, std::size_t... kFormats>
constexpr auto packed16Row(std::index_sequence<kFormats...>) {
    return std::array{toPacked<kSource, Integer16, Packed16<static_cast<Rgb16>(kFormats)>>...};
}

template <std::size_t... kSources>
constexpr ToRgb8Kernels portableKernels(std::index_sequence<kSources...>) {
    constexpr std::make_index_sequence<kRgb8s> kFormats8;
    constexpr std::make_index_sequence<kRgb16s> kFormats16;
    return {{packed8Row<static_cast<Samples8>(kSources)>(kFormats8)...},
            {packed8Row<static_cast<Samples8>(kSources)>(kFormats8)...},
            {toPlanes<static_cast<Samples8>(kSources)>...},
            {toWords<static_cast<Samples8>(kSources), Double8>...},
            {packed16Row<static_cast<Samples8>(kSources)>(kFormats16)...},
            {toWords<static_cast<Samples8>(kSources), Integer16>...}};
}

} // namespace

ToRgb8Kernels toRgb8Kernels(Level level) {
    return overwritten(portableKernels(std::make_index_sequence<kSamples8>()), level);
}

} // namespace fikleipa::simd
