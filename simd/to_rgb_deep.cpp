#include "simd/to_rgb_deep.h"

#include "simd/rgb_pixels.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace fikleipa::simd {
namespace {

struct Chroma {
    int cb, cr;
    int crOfRed;
};

// Samples may have all their 16 bits, whose sums need more than 32.
struct Integer {
    using Row = DeepRow;

    static int quotient(std::int64_t sum, const Row& row) {
        // Limited before the division, which is then a short one.
        const std::int64_t top = std::int64_t{row.max} * row.divisor;
        return static_cast<int>(static_cast<std::uint32_t>(std::clamp<std::int64_t>(sum, 0, top)) / row.divisor);
    }

    static Pixel convert(int y, Chroma chroma, const Row& row) {
        const ToRgbRow& k = row.k;
        const std::int64_t luma = std::int64_t{y - k.yo} * k.ys;
        const std::int64_t u = chroma.cb - row.centre;
        const std::int64_t v = chroma.cr - row.centre;
        const std::int64_t vOfRed = chroma.crOfRed - row.centre;
        return {quotient(luma + vOfRed * k.rv, row), quotient(luma - v * k.gv - u * k.gu, row),
                quotient(luma + u * k.bu, row)};
    }
};

struct Double {
    using Row = ToRgbFloatRow;

    static int limited(double value) { return std::clamp(static_cast<int>(value), 0, 255); }

    static Pixel convert(int y, Chroma chroma, const Row& k) {
        const double luma = k.ys * (y - k.yo);
        const int u = chroma.cb - 512;
        const int v = chroma.cr - 512;
        return {limited(luma + k.rv * (chroma.crOfRed - 512)), limited(luma - k.gv * v - k.gu * u),
                limited(luma + k.bu * u)};
    }
};

int sample(const std::uint8_t* row, std::size_t i) {
    return loadWord<std::uint16_t>(row + 2 * i);
}

template <OddPixel kOdd>
Chroma oddChroma(const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pair) {
    const int u = sample(cb, pair);
    const int v = sample(cr, pair);
    if constexpr (kOdd == OddPixel::Own) return {u, v, v};
    const int average = (v + sample(cr, pair + 1)) >> 1;
    return {(u + sample(cb, pair + 1)) >> 1, average, kOdd == OddPixel::AverageButRed ? v : average};
}

// Calls put(x, pixel) for the pixels of a row in turn.
template <class Arithmetic, OddPixel kOdd, class Put>
void eachPixel(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pixels,
               const typename Arithmetic::Row& row, Put put) {
    for (std::size_t x = 0; x < pixels; x += 2) {
        put(x, Arithmetic::convert(sample(y, x), oddChroma<OddPixel::Own>(cb, cr, x / 2), row));
        if (x + 1 == pixels) return;
        put(x + 1, Arithmetic::convert(sample(y, x + 1), oddChroma<kOdd>(cb, cr, x / 2), row));
    }
}

template <OddPixel kOdd>
void toBytePlanes(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
                  const std::uint8_t* cr, std::size_t pixels, const DeepRow& row) {
    eachPixel<Integer, kOdd>(y, cb, cr, pixels, row, [=](std::size_t x, Pixel p) {
        r[x] = static_cast<std::uint8_t>(p.r);
        g[x] = static_cast<std::uint8_t>(p.g);
        b[x] = static_cast<std::uint8_t>(p.b);
    });
}

template <OddPixel kOdd>
void toWordPlanes(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
                  const std::uint8_t* cr, std::size_t pixels, const DeepRow& row) {
    eachPixel<Integer, kOdd>(y, cb, cr, pixels, row, [=](std::size_t x, Pixel p) {
        storeWord<std::uint16_t>(r + 2 * x, static_cast<unsigned>(p.r));
        storeWord<std::uint16_t>(g + 2 * x, static_cast<unsigned>(p.g));
        storeWord<std::uint16_t>(b + 2 * x, static_cast<unsigned>(p.b));
    });
}

template <Rgb8 kFormat>
struct LowerBytes {
    static constexpr unsigned kBytes = Packed8<kFormat>::kBytes;

    static void store(std::uint8_t* dst, Pixel p) { Packed8<kFormat>::store(dst, {p.r & 255, p.g & 255, p.b & 255}); }
};

struct Packed10 {
    static constexpr unsigned kBytes = 4;

    static void store(std::uint8_t* dst, Pixel p) {
        storeWord<std::uint32_t>(
            dst, packRgb10(static_cast<unsigned>(p.r), static_cast<unsigned>(p.g), static_cast<unsigned>(p.b)));
    }
};

template <class Arithmetic, OddPixel kOdd, class Format>
void toPacked(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
              std::size_t pixels, const typename Arithmetic::Row& row) {
    eachPixel<Arithmetic, kOdd>(y, cb, cr, pixels, row,
                                [=](std::size_t x, Pixel p) { Format::store(dst + x * Format::kBytes, p); });
}

template <OddPixel kOdd, std::size_t... kFormats8, std::size_t... kFormats16>
constexpr DeepKernels portableKernels(std::index_sequence<kFormats8...> /*formats*/,
                                      std::index_sequence<kFormats16...> /*formats*/) {
    return {toBytePlanes<kOdd>,
            toWordPlanes<kOdd>,
            {toPacked<Integer, kOdd, LowerBytes<static_cast<Rgb8>(kFormats8)>>...},
            {toPacked<Integer, kOdd, Packed16<static_cast<Rgb16>(kFormats16)>>...},
            toPacked<Integer, kOdd, Packed10>,
            {toPacked<Integer, kOdd, LowerBytes<static_cast<Rgb8>(kFormats8)>>...},
            {toPacked<Integer, kOdd, Packed16<static_cast<Rgb16>(kFormats16)>>...},
            toPacked<Integer, kOdd, Packed10>};
}

template <OddPixel kOdd>
constexpr DeepKernels kOf = portableKernels<kOdd>(std::make_index_sequence<kRgb8s>(),
                                                  std::make_index_sequence<kRgb16s>());

template <std::size_t... kFormats>
constexpr ToRgbDeepKernels portable(std::index_sequence<kFormats...> /*formats*/) {
    return {{kOf<OddPixel::Own>, kOf<OddPixel::Average>, kOf<OddPixel::AverageButRed>},
            {toPacked<Double, OddPixel::AverageButRed, Packed8<static_cast<Rgb8>(kFormats)>>...},
            {}};
}

constexpr ToRgbDeepKernels kPortable = portable(std::make_index_sequence<kRgb8s>());

} // namespace
} // namespace fikleipa::simd

#define FIKLEIPA_KERNELS "simd/x86/to_rgb_deep.inl.h"
#include "simd/each_level.h"
#include "simd/overwrite.inl.h"

namespace fikleipa::simd {

ToRgbDeepKernels toRgbDeepKernels(Level level) {
    return overwritten(kPortable, level);
}

} // namespace fikleipa::simd
