// RGB to 8-bit YCbCr.
//
// Sums are formed with coefficients of the scale 2^30 in place of 1 000 000, each rounded to the nearest. Three
// components of 255 make them wrong by 0.36 of a millionth at most; and since the sums proper are whole millionths,
// half a millionth on top brings every one of them to the right side of every threshold.
//
// A coefficient is a signed upper word of scale 2^14 and a signed lower word. A pixel is a 32-bit integer, whose bytes
// become two pairs of words, so that two dot products make a sum of each. What the lower sum, with the bias that rounds
// it, has above its lowest word is added to the upper sum; that shifted down is the quotient, rounded down.
//
// Rounding by sign takes two biases. The upper sum's sign will do to pick one: it is wrong only within 0.03 of zero,
// where both biases give zero.
//
// Luma less 128 and chroma not yet centred are limited alike when they are packed into signed bytes; inverting the
// highest bit then adds 128 to both.
namespace {

#include "simd/x86/from_rgb_pixels.inl.h"

constexpr int kUpperBits = 14;
constexpr int kLowerBits = 16;
constexpr double kUnits = static_cast<double>(1 << (kUpperBits + kLowerBits)) / kFromRgb8Scale; // of a millionth

// Of scale 2^30.
inline int scaled(double millionths) {
    const double value = millionths * kUnits;
    return static_cast<int>(value < 0 ? value - 0.5 : value + 0.5);
}

// A quotient rounded up from remainders above `threshold`, or down from those below -threshold.
inline V::Bytes biasUp(int threshold) {
    return V::repeat32(scaled(kFromRgb8Scale - 1 - threshold + 0.5));
}
inline V::Bytes biasDown(int threshold) {
    return V::repeat32(scaled(threshold + 0.5));
}

// The words of a pixel's components 0 and 2, and 1 and 3.
struct Words {
    V::Bytes c02, c13;

    [[gnu::always_inline]] explicit Words(V::Bytes pixels)
        : c02(V::bitAnd(pixels, V::repeat16(0xFF))), c13(V::right16<8>(pixels)) {}
};

struct Weights {
    V::Bytes upper02, upper13, lower02, lower13;

    Weights(const RgbWeights& k, const RgbOrder& order) {
        int of[4]{};
        of[order.r] = scaled(k.r);
        of[order.g] = scaled(k.g);
        of[order.b] = scaled(k.b);
        upper02 = words(upper(of[0]), upper(of[2]));
        upper13 = words(upper(of[1]), upper(of[3]));
        lower02 = words(of[0], of[2]);
        lower13 = words(of[1], of[3]);
    }

    [[gnu::always_inline]] V::Bytes upperSum(V::Bytes start, const Words& p) const {
        return V::dot(V::dot(start, p.c02, upper02), p.c13, upper13);
    }
    [[gnu::always_inline]] V::Bytes upperSum(const Words& p) const {
        return V::dot(V::dot(p.c02, upper02), p.c13, upper13);
    }
    [[gnu::always_inline]] V::Bytes lowerSum(V::Bytes bias, const Words& p) const {
        return V::rightSigned32<kLowerBits>(V::dot(V::dot(bias, p.c02, lower02), p.c13, lower13));
    }

private:
    // What the signed lower word leaves.
    static int upper(int value) { return (value + (1 << (kLowerBits - 1))) >> kLowerBits; }
    static V::Bytes words(int first, int second) {
        return V::repeat32(
            static_cast<int>(static_cast<unsigned>(second) << 16 | (static_cast<unsigned>(first) & 0xFFFF)));
    }
};

enum class OddLuma { Rounded, Truncated };

struct Coefficients {
    Weights y, cb, cr;
    V::Bytes offset, firstLuma, secondLuma;
    V::Bytes cbUp, cbDown, crUp, crDown;

    Coefficients(const FromRgbRow& row, const RgbOrder& order, OddLuma odd, int centre)
        : y(row.y, order), cb(row.cb, order), cr(row.cr, order),
          offset(V::repeat32((row.yo - centre) * (1 << kUpperBits))), firstLuma(biasUp(kLumaRounding)),
          secondLuma(odd == OddLuma::Rounded ? firstLuma : biasUp(kFromRgb8Scale - 1)),
          cbUp(biasUp(kCbRounding.positive)), cbDown(biasDown(kCbRounding.negative)),
          crUp(biasUp(kCrRounding.positive)), crDown(biasDown(kCrRounding.negative)) {}

    [[gnu::always_inline]] V::Bytes luma(const Words& p, V::Bytes bias) const {
        return V::rightSigned32<kUpperBits>(y.upperSum(V::add32(offset, y.lowerSum(bias, p)), p));
    }
    [[gnu::always_inline]] static V::Bytes chroma(const Words& p, const Weights& k, V::Bytes up, V::Bytes down) {
        const V::Bytes sum = k.upperSum(p);
        return V::rightSigned32<kUpperBits>(V::add32(sum, k.lowerSum(V::pickBySign32(sum, up, down), p)));
    }

    // In each lane four bytes each of Cb, Y0, Cr and Y1.
    [[gnu::always_inline]] V::Bytes samples(const Pixels8& pixels) const {
        const Words even(pixels.even);
        const V::Bytes first = V::packSigned32(chroma(even, cb, cbUp, cbDown), luma(even, firstLuma));
        const V::Bytes second = V::packSigned32(chroma(even, cr, crUp, crDown), luma(Words(pixels.odd), secondLuma));
        return V::bitXor(V::packSigned16(first, second), V::repeat8(0x80));
    }
};

// Where blocks go, by the number of their first pair.
template <Samples8 kTo>
struct PackedRow {
    static constexpr Group kGroup = kGroups[static_cast<unsigned>(kTo)];
    static constexpr OddLuma kOddLuma = OddLuma::Rounded;
    static constexpr int kCentre = 128;

    std::uint8_t* dst;

    struct Order {
        std::uint8_t from[16]{};
        constexpr Order() {
            for (unsigned i = 0; i < 4; ++i) {
                from[4 * i + kGroup.cb] = static_cast<std::uint8_t>(i);
                from[4 * i + kGroup.y] = static_cast<std::uint8_t>(4 + i);
                from[4 * i + kGroup.cr] = static_cast<std::uint8_t>(8 + i);
                from[4 * i + kGroup.y + 2] = static_cast<std::uint8_t>(12 + i);
            }
        }
    };

    [[gnu::always_inline]] void store(std::size_t pair, const Pixels8& pixels, const Coefficients& k) const {
        static constexpr Order kOrder;
        V::store(dst + 4 * pair, V::shuffle(k.samples(pixels), V::repeat(kOrder.from)));
    }
    void storeRest(std::size_t pair, const Pixels8& pixels, const Coefficients& k, std::size_t pairs) const {
        std::uint8_t rest[V::kBytes];
        PackedRow{rest}.store(0, pixels, k);
        __builtin_memcpy(dst + 4 * pair, rest, 4 * pairs);
    }
};

struct PlanarRows {
    static constexpr OddLuma kOddLuma = OddLuma::Truncated;
    static constexpr int kCentre = 128;

    std::uint8_t* y;
    std::uint8_t* cb;
    std::uint8_t* cr;

    [[gnu::always_inline]] void store(std::size_t pair, const Pixels8& pixels, const Coefficients& k) const {
        static constexpr std::uint8_t kFrom[16] = {4, 12, 5, 13, 6, 14, 7, 15, 0, 1, 2, 3, 8, 9, 10, 11};
        V::storeEightsAndFours(y + 2 * pair, cb + pair, cr + pair, V::shuffle(k.samples(pixels), V::repeat(kFrom)));
    }
    void storeRest(std::size_t pair, const Pixels8& pixels, const Coefficients& k, std::size_t pairs) const {
        std::uint8_t rest[3][2 * kBlockPairs];
        PlanarRows{rest[0], rest[1], rest[2]}.store(0, pixels, k);
        __builtin_memcpy(y + 2 * pair, rest[0], 2 * pairs);
        __builtin_memcpy(cb + pair, rest[1], pairs);
        __builtin_memcpy(cr + pair, rest[2], pairs);
    }
};

struct LumaRow {
    static constexpr OddLuma kOddLuma = OddLuma::Truncated;
    static constexpr int kCentre = 0;

    std::uint8_t* y;

    [[gnu::always_inline]] void store(std::size_t pair, const Pixels8& pixels, const Coefficients& k) const {
        const V::Bytes even = k.luma(Words(pixels.even), k.firstLuma);
        const V::Bytes odd = k.luma(Words(pixels.odd), k.secondLuma);
        V::storeLowerBytes(y + 2 * pair, V::min16(V::bitOr(even, V::left32<16>(odd)), V::repeat16(255)));
    }
    void storeRest(std::size_t pair, const Pixels8& pixels, const Coefficients& k, std::size_t pairs) const {
        std::uint8_t rest[2 * kBlockPairs];
        LumaRow{rest}.store(0, pixels, k);
        __builtin_memcpy(y + 2 * pair, rest, 2 * pairs);
    }
};

// Writing less than is read, or to three planes, keeps the processor from looking early enough for the source, so what
// lies this far ahead of a block is asked for.
template <std::size_t kBytes>
[[gnu::always_inline]] inline void prefetch(const std::uint8_t* src) {
    constexpr std::size_t kAhead = 4096;
    for (std::size_t i = 0; i < kBytes; i += 64) __builtin_prefetch(src + kAhead + i);
}

template <RgbPixel kPixel, class Out>
void convertRow(const Out& out, const std::uint8_t* src, std::size_t pairs, const RgbOrder& order,
                const FromRgbRow& row) {
    constexpr unsigned kPixelBytes = bytesPerPixel(kPixel);
    constexpr std::size_t kBlockBytes = kBlockPairs * 2 * kPixelBytes;
    const Coefficients k(row, order, Out::kOddLuma, Out::kCentre);
    std::size_t pair = 0;
    std::size_t bytes = pairs * 2 * kPixelBytes;
    for (; bytes >= blockReach(kPixelBytes); bytes -= kBlockBytes) {
        prefetch<kBlockBytes>(src);
        out.store(pair, loadPixels8<kPixelBytes>(src), k);
        src += kBlockBytes;
        pair += kBlockPairs;
    }
    if (pair == pairs) return;
    // Less than a block is left, or one that cannot be loaded: its bytes, and no others, are copied to where it can be.
    std::uint8_t rest[blockReach(kPixelBytes)] = {};
    const bool beyond =
        order.r * componentBytes(kPixel) == kPixelBytes || order.b * componentBytes(kPixel) == kPixelBytes;
    __builtin_memcpy(rest, src, bytes + (beyond ? componentBytes(kPixel) : 0));
    out.storeRest(pair, loadPixels8<kPixelBytes>(rest), k, pairs - pair);
}

template <RgbPixel kPixel, Samples8 kTo>
void toPacked(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, std::size_t pairs,
              const RgbOrder& order, const FromRgbRow& row) {
    std::uint8_t* const dst = y - PackedRow<kTo>::kGroup.y;
    if (allApart({{dst, 4 * pairs}}, {{src, 2 * pairs * bytesPerPixel(kPixel)}})) {
        convertRow<kPixel>(PackedRow<kTo>{dst}, src, pairs, order, row);
    } else {
        simd::convert<kPixel, kTo>(y, cb, cr, src, pairs, order, row);
    }
}

template <RgbPixel kPixel>
void toPlanes(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, std::size_t pairs,
              const RgbOrder& order, const FromRgbRow& row) {
    if (allApart({{y, 2 * pairs}, {cb, pairs}, {cr, pairs}}, {{src, 2 * pairs * bytesPerPixel(kPixel)}})) {
        convertRow<kPixel>(PlanarRows{y, cb, cr}, src, pairs, order, row);
    } else {
        simd::convert<kPixel, Samples8::Planar>(y, cb, cr, src, pairs, order, row);
    }
}

template <RgbPixel kPixel>
void toLuma(std::uint8_t* y, const std::uint8_t* src, std::size_t pairs, const RgbOrder& order, const FromRgbRow& row) {
    if (allApart({{y, 2 * pairs}}, {{src, 2 * pairs * bytesPerPixel(kPixel)}})) {
        convertRow<kPixel>(LumaRow{y}, src, pairs, order, row);
    } else {
        planarLuma<kPixel>(y, src, pairs, order, row);
    }
}

template <bool kScaled>
void alphaBytes(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels) {
    constexpr std::size_t kBlock = V::kBytes / 2;
    if (allApart({{dst, pixels}}, {{src, 4 * pixels}})) {
        for (; pixels >= kBlock; pixels -= kBlock) {
            prefetch<4 * kBlock>(src);
            const Pixels8 p = loadPixels8<4>(src);
            V::Bytes words = V::bitOr(V::right32<24>(p.even), V::left32<16>(V::right32<24>(p.odd)));
            if constexpr (kScaled) {
                // A product of 219 and then, for 255 divided out, of 32897 / 2^23.
                const V::Bytes product = V::multiplyUpper16(V::multiply16(words, V::repeat16(219)), V::repeat16(32897));
                words = V::add16(V::right16<7>(product), V::repeat16(16));
            }
            V::storeLowerBytes(dst, words);
            src += 4 * kBlock;
            dst += kBlock;
        }
        V::leave();
    }
    kScaled ? scaledAlpha(dst, src, pixels) : alpha(dst, src, pixels);
}

template <RgbPixel kPixel>
void overwrite(FromRgb8Kernels& kernels) {
    auto& convert = kernels.convert[static_cast<unsigned>(kPixel)];
    convert[static_cast<unsigned>(Samples8::Yuy2)] = toPacked<kPixel, Samples8::Yuy2>;
    convert[static_cast<unsigned>(Samples8::Yvyu)] = toPacked<kPixel, Samples8::Yvyu>;
    convert[static_cast<unsigned>(Samples8::Uyvy)] = toPacked<kPixel, Samples8::Uyvy>;
    convert[static_cast<unsigned>(Samples8::Planar)] = toPlanes<kPixel>;
    kernels.luma[static_cast<unsigned>(kPixel)] = toLuma<kPixel>;
}

void overwrite(FromRgb8Kernels& kernels) {
    overwrite<RgbPixel::Bytes3>(kernels);
    overwrite<RgbPixel::Bytes4>(kernels);
    overwrite<RgbPixel::Words3>(kernels);
    overwrite<RgbPixel::Words4>(kernels);
    kernels.alpha = alphaBytes<false>;
    kernels.scaledAlpha = alphaBytes<true>;
}

} // namespace
