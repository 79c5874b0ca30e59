// Rows of R, G and B words to pixels, and words to words. A block is a vector of words.
namespace {

#include "simd/x86/rgb_pixels.h"

constexpr std::size_t kBlock = V::kBytes / 2; // pixels

template <class Store>
void toPacked(std::uint8_t* dst, const std::uint8_t* r, const std::uint8_t* g, const std::uint8_t* b,
              std::size_t pixels) {
    std::size_t x = 0;
    for (; x + kBlock <= pixels; x += kBlock) {
        Store::block(dst + Store::kPixelBytes * x, V::load(r + 2 * x), V::load(g + 2 * x), V::load(b + 2 * x));
    }
    if (x == pixels) return;
    // Less than a block is left: its words, and no byte beyond them, are copied to where a block can be read.
    const std::size_t rest = pixels - x;
    std::uint8_t in[3][V::kBytes] = {};
    std::uint8_t out[Store::kPixelBytes * kBlock];
    __builtin_memcpy(in[0], r + 2 * x, 2 * rest);
    __builtin_memcpy(in[1], g + 2 * x, 2 * rest);
    __builtin_memcpy(in[2], b + 2 * x, 2 * rest);
    Store::block(out, V::load(in[0]), V::load(in[1]), V::load(in[2]));
    __builtin_memcpy(dst + Store::kPixelBytes * x, out, Store::kPixelBytes * rest);
}

void toBytes(std::uint8_t* dst, const std::uint8_t* src, std::size_t words) {
    std::size_t i = 0;
    for (; i + kBlock <= words; i += kBlock) V::storeLowerBytes(dst + i, V::load(src + 2 * i));
    kPortable.toBytes(dst + i, src + 2 * i, words - i);
}

template <std::size_t... kFormats>
void overwrite(RgbWordsKernels& kernels, std::index_sequence<kFormats...> /*formats*/) {
    kernels = {{toPacked<Store8<static_cast<Rgb8>(kFormats)>>...}, toBytes};
}

void overwrite(RgbWordsKernels& kernels) {
    overwrite(kernels, std::make_index_sequence<kRgb8s>());
}

} // namespace
