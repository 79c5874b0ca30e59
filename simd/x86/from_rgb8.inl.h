// RGB to 8-bit YCbCr.
//
// A pixel is a 32-bit integer, whose bytes become two pairs of words, so that two dot products make a sum. Rounding by
// sign takes two biases, one of which is picked by the sum before it. Two arithmetics give the same, that of the fewer
// rows of coefficients in fewer steps; the tests try every colour of every row.
namespace {

#include "simd/x86/from_rgb_pixels.inl.h"

// The words of a pixel's components 0 and 2, and 1 and 3.
struct Words {
    V::Bytes c02, c13;

    [[gnu::always_inline]] explicit Words(V::Bytes pixels)
        : c02(V::bitAnd(pixels, V::repeat16(0xFF))), c13(V::right16<8>(pixels)) {}
};

// A signed word for each component: the lowest of what is given.
struct WordWeights {
    V::Bytes k02, k13;

    [[gnu::always_inline]] WordWeights(const RgbOrder& order, int r, int g, int b) {
        int of[4]{};
        of[order.r] = r;
        of[order.g] = g;
        of[order.b] = b;
        k02 = words(of[0], of[2]);
        k13 = words(of[1], of[3]);
    }

    [[gnu::always_inline]] V::Bytes sum(const Words& p) const { return V::dot(V::dot(p.c02, k02), p.c13, k13); }
    [[gnu::always_inline]] V::Bytes sum(V::Bytes start, const Words& p) const {
        return V::dot(V::dot(start, p.c02, k02), p.c13, k13);
    }

private:
    static V::Bytes words(int first, int second) {
        return V::repeat32(
            static_cast<int>(static_cast<unsigned>(second) << 16 | (static_cast<unsigned>(first) & 0xFFFF)));
    }
};

// For coefficients that are whole thousandths: their sums fit 19 bits, and what is left of them after a division by 8
// fits an unsigned word, to be divided by 125. A product of 33555 / 2^22 does that for anything below 58 000.
class Thousandths {
public:
    static bool takes(const FromRgbRow& row) { return takes(row.y) && takes(row.cb) && takes(row.cr); }

    struct Weights : WordWeights {
        [[gnu::always_inline]] Weights(const RgbWeights& k, const RgbOrder& order)
            : WordWeights(order, k.r / kUnit, k.g / kUnit, k.b / kUnit) {}
    };

    // What quotients are rounded by, up from remainders above a threshold of `up` and down from those below -down, and
    // what is added to them.
    struct Bias {
        V::Bytes positive, negative;

        [[gnu::always_inline]] Bias(int up, int down, int added)
            : positive(V::repeat32(kDivisor * (added + 1) - 1 - up / kUnit)),
              negative(V::repeat32(kDivisor * added + down / kUnit)) {}
    };

    [[gnu::always_inline]] static V::Bytes luma(const Weights& k, const Words& p, const Bias& bias) {
        return V::rightSigned32<3>(k.sum(bias.positive, p));
    }
    [[gnu::always_inline]] static V::Bytes chroma(const Weights& k, const Words& p, const Bias& bias) {
        const V::Bytes sum = k.sum(p);
        return V::rightSigned32<3>(V::add32(sum, V::pickBySign32(sum, bias.positive, bias.negative)));
    }

    [[gnu::always_inline]] static V::Bytes quotients(V::Bytes words) {
        return V::right16<6>(V::multiplyUpper16(words, V::repeat16(33555)));
    }

private:
    static constexpr int kUnit = 1000;
    static constexpr int kDivisor = kFromRgb8Scale / kUnit;

    static bool takes(const RgbWeights& k) { return k.r % kUnit == 0 && k.g % kUnit == 0 && k.b % kUnit == 0; }
};

// For any coefficients: they have the scale 2^30 in place of 1 000 000, each rounded to the nearest. Three components
// of 255 make the sums wrong by 0.36 of a millionth at most; and since the sums proper are whole millionths, half a
// millionth on top brings every one of them to the right side of every threshold.
//
// A coefficient is a signed upper word of scale 2^14 and a signed lower word, which make a sum each. What the lower
// one, with its bias, has above its lowest word is added to the upper one; that shifted down is the quotient, rounded
// down. The upper sum's sign will do to pick a bias: it is wrong only within 0.03 of zero, where both biases give zero.
class Millionths {
public:
    struct Weights {
        WordWeights upper, lower;

        [[gnu::always_inline]] Weights(const RgbWeights& k, const RgbOrder& order)
            : upper(order, upperWord(k.r), upperWord(k.g), upperWord(k.b)),
              lower(order, scaled(k.r), scaled(k.g), scaled(k.b)) {}
    };

    struct Bias {
        V::Bytes positive, negative, added;

        [[gnu::always_inline]] Bias(int up, int down, int whole)
            : positive(V::repeat32(scaled(kFromRgb8Scale - 1 - up + 0.5))), negative(V::repeat32(scaled(down + 0.5))),
              added(V::repeat32(whole * (1 << kUpperBits))) {}
    };

    [[gnu::always_inline]] static V::Bytes luma(const Weights& k, const Words& p, const Bias& bias) {
        return V::rightSigned32<kUpperBits>(k.upper.sum(carried(k, p, bias.positive, bias.added), p));
    }
    [[gnu::always_inline]] static V::Bytes chroma(const Weights& k, const Words& p, const Bias& bias) {
        const V::Bytes sum = k.upper.sum(p);
        const V::Bytes picked = V::pickBySign32(sum, bias.positive, bias.negative);
        return V::rightSigned32<kUpperBits>(V::add32(sum, carried(k, p, picked, bias.added)));
    }

    [[gnu::always_inline]] static V::Bytes quotients(V::Bytes words) { return words; }

private:
    static constexpr int kUpperBits = 14;
    static constexpr int kLowerBits = 16;
    static constexpr double kUnits = static_cast<double>(1 << (kUpperBits + kLowerBits)) / kFromRgb8Scale;

    static int scaled(double millionths) {
        const double value = millionths * kUnits;
        return static_cast<int>(value < 0 ? value - 0.5 : value + 0.5);
    }
    // What the signed lower word leaves.
    static int upperWord(int millionths) { return (scaled(millionths) + (1 << (kLowerBits - 1))) >> kLowerBits; }

    [[gnu::always_inline]] static V::Bytes carried(const Weights& k, const Words& p, V::Bytes bias, V::Bytes added) {
        return V::add32(added, V::rightSigned32<kLowerBits>(k.lower.sum(bias, p)));
    }
};

enum class OddLuma { Rounded, Truncated };

template <class Arithmetic>
struct Coefficients {
    typename Arithmetic::Weights y, cb, cr;
    typename Arithmetic::Bias evenLuma, oddLuma, forCb, forCr;

    [[gnu::always_inline]] Coefficients(const FromRgbRow& row, const RgbOrder& order, OddLuma odd)
        : y(row.y, order), cb(row.cb, order), cr(row.cr, order), evenLuma(kLumaRounding, 0, row.yo),
          oddLuma(odd == OddLuma::Rounded ? kLumaRounding : kFromRgb8Scale - 1, 0, row.yo),
          forCb(kCbRounding.positive, kCbRounding.negative, 128),
          forCr(kCrRounding.positive, kCrRounding.negative, 128) {}

    // In each lane four bytes each of Cb, Y0, Cr and Y1. Packing limits them.
    [[gnu::always_inline]] V::Bytes samples(const Pixels8& pixels) const {
        const Words even(pixels.even);
        const Words odd(pixels.odd);
        const V::Bytes first =
            V::packUnsigned32(Arithmetic::chroma(cb, even, forCb), Arithmetic::luma(y, even, evenLuma));
        const V::Bytes second =
            V::packUnsigned32(Arithmetic::chroma(cr, even, forCr), Arithmetic::luma(y, odd, oddLuma));
        return V::packUnsigned16(Arithmetic::quotients(first), Arithmetic::quotients(second));
    }

    // Words of luma in order, not yet limited.
    [[gnu::always_inline]] V::Bytes luma(const Pixels8& pixels) const {
        const V::Bytes even = Arithmetic::luma(y, Words(pixels.even), evenLuma);
        const V::Bytes odd = Arithmetic::luma(y, Words(pixels.odd), oddLuma);
        return Arithmetic::quotients(V::bitOr(even, V::left32<16>(odd)));
    }
};

// Where blocks go, by the number of their first pair.
template <Samples8 kTo>
struct PackedRow {
    static constexpr Group kGroup = kGroups[static_cast<unsigned>(kTo)];
    static constexpr OddLuma kOddLuma = OddLuma::Rounded;

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

    template <class Coefficients>
    [[gnu::always_inline]] void store(std::size_t pair, const Pixels8& pixels, const Coefficients& k) const {
        static constexpr Order kOrder;
        V::store(dst + 4 * pair, V::shuffle(k.samples(pixels), V::repeat(kOrder.from)));
    }
    template <class Coefficients>
    void storeRest(std::size_t pair, const Pixels8& pixels, const Coefficients& k, std::size_t pairs) const {
        std::uint8_t rest[V::kBytes];
        PackedRow{rest}.store(0, pixels, k);
        __builtin_memcpy(dst + 4 * pair, rest, 4 * pairs);
    }
};

struct PlanarRows {
    static constexpr OddLuma kOddLuma = OddLuma::Truncated;

    std::uint8_t* y;
    std::uint8_t* cb;
    std::uint8_t* cr;

    template <class Coefficients>
    [[gnu::always_inline]] void store(std::size_t pair, const Pixels8& pixels, const Coefficients& k) const {
        static constexpr std::uint8_t kFrom[16] = {4, 12, 5, 13, 6, 14, 7, 15, 0, 1, 2, 3, 8, 9, 10, 11};
        V::storeEightsAndFours(y + 2 * pair, cb + pair, cr + pair, V::shuffle(k.samples(pixels), V::repeat(kFrom)));
    }
    template <class Coefficients>
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

    std::uint8_t* y;

    template <class Coefficients>
    [[gnu::always_inline]] void store(std::size_t pair, const Pixels8& pixels, const Coefficients& k) const {
        V::storeLimitedBytes(y + 2 * pair, k.luma(pixels));
    }
    template <class Coefficients>
    void storeRest(std::size_t pair, const Pixels8& pixels, const Coefficients& k, std::size_t pairs) const {
        std::uint8_t rest[2 * kBlockPairs];
        LumaRow{rest}.store(0, pixels, k);
        __builtin_memcpy(y + 2 * pair, rest, 2 * pairs);
    }
};

template <RgbPixel kPixel, class Arithmetic, class Out>
void convertRowBy(const Out& out, const RgbPairs& from, const FromRgbRow& row) {
    constexpr unsigned kPixelBytes = bytesPerPixel(kPixel);
    constexpr std::size_t kBlockBytes = kBlockPairs * 2 * kPixelBytes;
    const Coefficients<Arithmetic> k(row, from.order, Out::kOddLuma);
    const std::uint8_t* src = from.src;
    std::size_t pair = 0;
    std::size_t bytes = from.pairs * 2 * kPixelBytes;
    for (; bytes >= blockReach(kPixelBytes); bytes -= kBlockBytes) {
        // Writing keeps the processor from looking early enough for the source, and where rows run upwards it does not
        // find the next one at all.
        fetchAhead(src, from.ahead, kBlockBytes);
        out.store(pair, loadPixels8<kPixelBytes>(src), k);
        src += kBlockBytes;
        pair += kBlockPairs;
    }
    if (pair == from.pairs) return;
    // Less than a block is left, or one that cannot be loaded: its bytes, and no others, are copied to where it can be.
    constexpr unsigned kComponents = kPixelBytes / componentBytes(kPixel);
    const bool namesNext = from.order.r == kComponents || from.order.b == kComponents;
    std::uint8_t rest[blockReach(kPixelBytes)] = {};
    __builtin_memcpy(rest, src, bytes + (namesNext ? componentBytes(kPixel) : 0));
    out.storeRest(pair, loadPixels8<kPixelBytes>(rest), k, from.pairs - pair);
}

template <RgbPixel kPixel, class Out>
void convertRow(const Out& out, const RgbPairs& from, const FromRgbRow& row) {
    if (Thousandths::takes(row)) {
        convertRowBy<kPixel, Thousandths>(out, from, row);
    } else {
        convertRowBy<kPixel, Millionths>(out, from, row);
    }
}

template <RgbPixel kPixel, Samples8 kTo>
void toPacked(std::uint8_t* y, std::uint8_t* /*cb*/, std::uint8_t* /*cr*/, const RgbPairs& from,
              const FromRgbRow& row) {
    convertRow<kPixel>(PackedRow<kTo>{y - PackedRow<kTo>::kGroup.y}, from, row);
}

template <RgbPixel kPixel>
void toPlanes(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const RgbPairs& from, const FromRgbRow& row) {
    if (allApart({{y, 2 * from.pairs}, {cb, from.pairs}, {cr, from.pairs}})) {
        convertRow<kPixel>(PlanarRows{y, cb, cr}, from, row);
    } else {
        simd::convert<kPixel, Samples8::Planar>(y, cb, cr, from, row);
    }
}

template <RgbPixel kPixel>
void toLuma(std::uint8_t* y, const RgbPairs& from, const FromRgbRow& row) {
    convertRow<kPixel>(LumaRow{y}, from, row);
}

template <bool kScaled>
void alphaBytes(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, std::ptrdiff_t ahead) {
    constexpr std::size_t kBlock = 2 * kBlockPairs;
    for (; pixels >= kBlock; pixels -= kBlock) {
        fetchAhead(src, ahead, 4 * kBlock);
        const Pixels8 p = loadPixels8<4>(src);
        V::Bytes words = V::bitOr(V::right32<24>(p.even), V::left32<16>(V::right32<24>(p.odd)));
        if constexpr (kScaled) {
            // Times 219, and divided by 255 as a product of 32897 / 2^23.
            const V::Bytes product = V::multiplyUpper16(V::multiply16(words, V::repeat16(219)), V::repeat16(32897));
            words = V::add16(V::right16<7>(product), V::repeat16(16));
        }
        V::storeLimitedBytes(dst, words);
        src += 4 * kBlock;
        dst += kBlock;
    }
    V::leave();
    kScaled ? scaledAlpha(dst, src, pixels, ahead) : alpha(dst, src, pixels, ahead);
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
