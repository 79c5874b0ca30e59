#include "simd/from_rgb_deep.h"

#include "simd/unaligned.h"

#include <algorithm>
#include <utility>

namespace fikleipa::simd {
namespace {

template <class Component>
struct Rgb {
    Component r, g, b;
};

constexpr bool isWide(RgbSource source) {
    return bytesPerPixel(source) > 4;
}
template <RgbSource kSource>
std::int32_t component(const std::uint8_t* pixel, unsigned at) {
    if constexpr (kSource == RgbSource::Three10) {
        return static_cast<std::int32_t>(loadWord<std::uint32_t>(pixel) >> (2 + 10 * at) & 0x3FF);
    } else if constexpr (isWide(kSource)) {
        return loadWord<std::uint16_t>(pixel + 2 * at) >> (isUpper10(kSource) ? 6 : 0);
    } else {
        return pixel[at];
    }
}

template <RgbSource kSource>
Rgb<std::int32_t> load(const std::uint8_t* src, std::size_t x, const RgbOrder& order) {
    const std::uint8_t* const pixel = src + x * bytesPerPixel(kSource);
    return {component<kSource>(pixel, order.r), component<kSource>(pixel, order.g), component<kSource>(pixel, order.b)};
}

// From left to right, which tells where the sum is rounded.
template <class Component, class Weights>
Component dot(const Rgb<Component>& rgb, const Weights& k) {
    return k.r * rgb.r + k.g * rgb.g + k.b * rgb.b;
}

struct Ycc {
    unsigned y, cb, cr;
};

unsigned sample(std::int32_t offset, std::int32_t sum, const Rounding& rounding, const FromRgbDeepRow& row) {
    const std::int32_t rounded = sum < 0 ? sum - rounding.down : sum + rounding.up;
    const auto max = static_cast<std::int32_t>(row.max);
    return static_cast<unsigned>(std::clamp(offset + rounded / static_cast<std::int32_t>(row.divisor), 0, max));
}

template <RgbSource kSource>
Ycc convert(const std::uint8_t* src, std::size_t x, const RgbOrder& order, const FromRgbDeepRow& row) {
    const Rgb<std::int32_t> rgb = load<kSource>(src, x, order);
    const auto centre = static_cast<std::int32_t>(row.max / 2 + 1);
    return {sample(row.k.yo, dot(rgb, row.k.y), row.luma, row), sample(centre, dot(rgb, row.k.cb), row.cb, row),
            sample(centre, dot(rgb, row.k.cr), row.cr, row)};
}

void put(std::uint8_t* samples, std::size_t i, unsigned sample) {
    storeWord<std::uint16_t>(samples + 2 * i, sample);
}

template <RgbSource kSource>
void full(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, std::size_t pixels,
          const RgbOrder& order, const FromRgbDeepRow& row) {
    for (std::size_t x = 0; x < pixels; ++x) {
        const Ycc c = convert<kSource>(src, x, order, row);
        put(y, x, c.y);
        put(cb, x, c.cb);
        put(cr, x, c.cr);
    }
}

template <RgbSource kSource>
void halved(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, std::size_t pixels,
            const RgbOrder& order, const FromRgbDeepRow& row) {
    constexpr unsigned kLeft = kSource == RgbSource::Three10 ? 6 : 0;
    for (std::size_t x = 0; x < pixels; x += 2) {
        const bool alone = x + 1 == pixels;
        const Ycc first = convert<kSource>(src, x, order, row);
        const Ycc second = alone ? first : convert<kSource>(src, x + 1, order, row);
        put(y, x, first.y << kLeft);
        if (!alone) put(y, x + 1, second.y << kLeft);
        put(cb, x / 2, ((first.cb + second.cb) << kLeft) >> 1);
        put(cr, x / 2, ((first.cr + second.cr) << kLeft) >> 1);
    }
}

unsigned floatSample(int offset, double value, double least, double most) {
    // Truncated, which below zero is not the nearest: deliberate.
    const double raised = std::clamp(value, least, most) * 1023 + 0.5;
    return static_cast<unsigned>(offset + static_cast<int>(raised));
}

template <RgbSource kSource>
void fullFloat(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, std::size_t pixels,
               const RgbOrder& order, const FromRgbFloatRow& row) {
    for (std::size_t x = 0; x < pixels; ++x) {
        const Rgb<std::int32_t> rgb = load<kSource>(src, x, order);
        const Rgb<double> parts{rgb.r / 65535.0, rgb.g / 65535.0, rgb.b / 65535.0};
        put(y, x, floatSample(row.yo, dot(parts, row.y), 0, 1));
        put(cb, x, floatSample(512, dot(parts, row.cb), -0.5, 0.5));
        put(cr, x, floatSample(512, dot(parts, row.cr), -0.5, 0.5));
    }
}

#include "simd/row_to_v210.inl.h"

// Of Cb and Cr in turns, sample i of a pair's from `even` and `odd` on.
unsigned filtered(const std::uint8_t* even, const std::uint8_t* odd, std::size_t i) {
    const auto at = [](const std::uint8_t* samples) { return unsigned{loadWord<std::uint16_t>(samples)}; };
    even += 2 * i;
    odd += 2 * i;
    return (at(odd - 4) + 2 * at(even) + 2 * at(odd) + at(even + 4)) / 6;
}
unsigned ofEven(const std::uint8_t* even, const std::uint8_t* /*odd*/, std::size_t i) {
    return loadWord<std::uint16_t>(even + 2 * i);
}

template <unsigned (*kChroma)(const std::uint8_t*, const std::uint8_t*, std::size_t)>
void packPairs(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* even, const std::uint8_t* odd,
               std::size_t groups) {
    for (; groups != 0; --groups) {
        // Cb0 Y0 Cr0 Y1 Cb1 Y2 and so on.
        std::array<unsigned, 12> c{};
        for (std::size_t i = 0; i < 6; ++i) {
            c[2 * i] = kChroma(even, odd, i);
            c[2 * i + 1] = loadWord<std::uint16_t>(y + 2 * i);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            storeWord<std::uint32_t>(dst + 4 * i, c[3 * i] | c[3 * i + 1] << 10 | c[3 * i + 2] << 20);
        }
        dst += 16;
        y += 12;
        even += 12;
        odd += 12;
    }
}

template <RgbSource kSource, unsigned (*kChroma)(const std::uint8_t*, const std::uint8_t*, std::size_t)>
struct ByPairs {
    static constexpr std::size_t kPixelBytes = bytesPerPixel(kSource);

    const RgbOrder& order;
    const FromRgbDeepRow& row;

    void convert(std::uint8_t* y, std::uint8_t* even, std::uint8_t* odd, const std::uint8_t* src, std::size_t count,
                 std::size_t /*left*/) const {
        for (std::size_t x = 0; x < count; ++x) {
            const Ycc c = simd::convert<kSource>(src, x, order, row);
            put(y, x, c.y);
            storeWord<std::uint32_t>((x % 2 == 0 ? even : odd) + x / 2 * 4, c.cb | c.cr << 16);
        }
    }
    static void pack(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* even, const std::uint8_t* odd,
                     std::size_t groups) {
        packPairs<kChroma>(dst, y, even, odd, groups);
    }
};

template <RgbSource kSource, unsigned (*kChroma)(const std::uint8_t*, const std::uint8_t*, std::size_t)>
void toV210(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const RgbOrder& order,
            const FromRgbDeepRow& row) {
    PieceOfSamples piece;
    piece.beginRow();
    rowToV210(ByPairs<kSource, kChroma>{order, row}, piece, dst, src, pixels);
}

template <bool kScaled>
void alphaTo10(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels) {
    const auto sample = [&](std::size_t x) {
        const unsigned alpha = x < pixels ? src[4 * x + 3] : 0U;
        return kScaled && x < pixels ? alpha * 876 / 255 + 64 : alpha << 2;
    };
    for (std::size_t x = 0; x < pixels; x += 3) {
        storeWord<std::uint32_t>(dst + x / 3 * 4, sample(x) | sample(x + 1) << 10 | sample(x + 2) << 20);
    }
}

template <RgbSource kSource>
constexpr FromRgbDeepOfSource ofSource() {
    FromRgbDeepOfSource kernels{};
    if constexpr (isOf8(kSource) || isUpper10(kSource)) kernels.full = full<kSource>;
    if constexpr (!isOf8(kSource)) kernels.halved = halved<kSource>;
    if constexpr (!isUpper10(kSource)) kernels.toV210 = {toV210<kSource, filtered>, toV210<kSource, ofEven>};
    return kernels;
}

template <std::size_t... kSources>
constexpr FromRgbDeepKernels portableKernels(std::index_sequence<kSources...> /*sources*/) {
    return {{ofSource<static_cast<RgbSource>(kSources)>()...},
            {fullFloat<RgbSource::Four16>, fullFloat<RgbSource::Three16>},
            alphaTo10<false>,
            alphaTo10<true>};
}

constexpr FromRgbDeepKernels kPortable = portableKernels(std::make_index_sequence<kRgbSources>());

} // namespace
} // namespace fikleipa::simd

#define FIKLEIPA_KERNELS "simd/x86/from_rgb_deep.inl.h"
#include "simd/each_level.h"
#include "simd/overwrite.inl.h"

namespace fikleipa::simd {

FromRgbDeepKernels fromRgbDeepKernels(Level level) {
    return overwritten(kPortable, level);
}

} // namespace fikleipa::simd
