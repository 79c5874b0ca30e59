#include "simd/rgb_words.h"

#include "simd/rgb_pixels.h"

#include <utility>

namespace fikleipa::simd {
namespace {

unsigned word(const std::uint8_t* row, std::size_t i) {
    return loadWord<std::uint16_t>(row + 2 * i);
}

template <class Format>
void toPacked(std::uint8_t* dst, const std::uint8_t* r, const std::uint8_t* g, const std::uint8_t* b,
              std::size_t pixels) {
    for (std::size_t x = 0; x < pixels; ++x) {
        const Pixel pixel{static_cast<int>(word(r, x)), static_cast<int>(word(g, x)), static_cast<int>(word(b, x))};
        Format::store(dst + x * Format::kBytes, pixel);
    }
}

void toBytes(std::uint8_t* dst, const std::uint8_t* src, std::size_t words) {
    for (std::size_t i = 0; i < words; ++i) dst[i] = static_cast<std::uint8_t>(word(src, i));
}

template <std::size_t... kFormats>
constexpr RgbWordsKernels portableKernels(std::index_sequence<kFormats...> /*formats*/) {
    return {{toPacked<Packed8<static_cast<Rgb8>(kFormats)>>...}, toBytes};
}

constexpr RgbWordsKernels kPortable = portableKernels(std::make_index_sequence<kRgb8s>());

} // namespace
} // namespace fikleipa::simd

#define FIKLEIPA_KERNELS "simd/x86/rgb_words.inl.h"
#include "simd/each_level.h"
#include "simd/overwrite.inl.h"

namespace fikleipa::simd {

RgbWordsKernels rgbWordsKernels(Level level) {
    return overwritten(kPortable, level);
}

} // namespace fikleipa::simd
