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

// The expression of packRgb10(), a part of it after another.
void toRgb10(std::uint8_t* dst, const std::uint8_t* r, const std::uint8_t* g, const std::uint8_t* b,
             std::size_t pixels) {
    constexpr std::size_t kPixels = V::kBytes / 4;
    std::size_t x = 0;
    for (; x + kPixels <= pixels; x += kPixels) {
        const V::Bytes red = V::widen16(r + 2 * x);
        const V::Bytes green = V::widen16(g + 2 * x);
        const V::Bytes blue = V::widen16(b + 2 * x);
        const V::Bytes upper = V::bitOr(V::bitOr(red, V::left32<14>(red)), V::left32<28>(blue));
        V::Bytes pixel = V::orMasked(V::right32<2>(blue), upper, V::repeat32(0x3FFF0003));
        pixel = V::orMasked(pixel, V::left32<2>(green), V::repeat32(3 << 2));
        V::store(dst + 4 * x, V::orMasked(pixel, V::left32<6>(green), V::repeat32(0x3FFF00)));
    }
    kPortable.toRgb10(dst + 4 * x, r + 2 * x, g + 2 * x, b + 2 * x, pixels - x);
}

void toBytes(std::uint8_t* dst, const std::uint8_t* src, std::size_t words) {
    std::size_t i = 0;
    for (; i + kBlock <= words; i += kBlock) V::storeLowerBytes(dst + i, V::load(src + 2 * i));
    kPortable.toBytes(dst + i, src + 2 * i, words - i);
}

void divide255(std::uint8_t* dst, const std::uint8_t* src, std::size_t words) {
    std::size_t i = 0;
    for (; i + kBlock <= words; i += kBlock) {
        // word x 0x8081 >> 23 is word / 255 for every word.
        const V::Bytes product = V::multiplyUpper16(V::load(src + 2 * i), V::repeat16(0x8081));
        V::store(dst + 2 * i, V::bitAnd(V::right16<7>(product), V::repeat16(0xFF)));
    }
    kPortable.divide255(dst + 2 * i, src + 2 * i, words - i);
}

template <std::size_t... kFormats>
void overwrite(RgbWordsKernels& kernels, std::index_sequence<kFormats...> /*formats*/) {
    kernels = {{toPacked<Store8<static_cast<Rgb8>(kFormats)>>...}, toRgb10, toBytes, divide255};
}

void overwrite(RgbWordsKernels& kernels) {
    overwrite(kernels, std::make_index_sequence<kRgb8s>());
}

} // namespace
