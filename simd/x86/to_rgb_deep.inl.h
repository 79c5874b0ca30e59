// 16-bit samples of YCbCr to R, G and B of 8 and 16 bits, in pixels and in rows of words.
//
// Samples below 2^15 and the coefficients are 16-bit words with a sign, so the sums are formed exactly in 32-bit
// integers, from pairs of a luma and a chroma sample. A block with a higher sample is left to the portable kernel.
//
// The quotient is the sum as a float32, times 1 / divisor as one, truncated. While sums do not exceed (max + 1) x
// divisor and that is at most 2^23.4, this is exact: the sum is a float32; the factor is off by less than 2^-25 of
// itself for every divisor in use, so a multiple of the divisor gives its quotient once the product is rounded; and one
// less than a multiple is 1 / divisor short of it, which is more than what the factor and the rounding (2^-24) add.
// Higher sums stay above the limit. Below zero truncation may give 0 or less, and so does the limit. A product of max +
// 1 and divisor that is larger has a divisor that is a multiple of four, so two bits are dropped from the sum and from
// the divisor first. The tests divide every sum by every divisor.
namespace {

#include "simd/x86/rgb_pixels.h"

constexpr std::size_t kBlock = V::kBytes / 2; // pixels

constexpr std::uint64_t kMostExact = 11'000'000; // below 2^23.4

inline bool dropsBits(const DeepRow& row) {
    return (std::uint64_t{row.max} + 1) * row.divisor > kMostExact;
}

struct Coefficients {
    V::Bytes redY, greenY, blueY, greenCb; // a coefficient for luma in the lower word, for chroma in the upper
    V::Bytes r, g, b;                      // what the sums start from
    V::Bytes max;
    float factor;

    [[gnu::always_inline]] explicit Coefficients(const DeepRow& row) {
        const ToRgbRow& k = row.k;
        redY = words(k.ys, k.rv);
        greenY = words(k.ys, -k.gv);
        greenCb = words(0, -k.gu);
        blueY = words(k.ys, k.bu);
        const int offset = -k.yo * k.ys;
        r = V::repeat32(offset - row.centre * k.rv);
        g = V::repeat32(offset + row.centre * (k.gv + k.gu));
        b = V::repeat32(offset - row.centre * k.bu);
        max = V::repeat16(static_cast<int>(row.max));
        factor = 1.0F / static_cast<float>(dropsBits(row) ? row.divisor / 4 : row.divisor);
    }

private:
    static V::Bytes words(int luma, int chroma) { return V::repeat32(chroma * 65536 + (luma & 0xFFFF)); }
};

// A chroma sample for each pixel.
struct BlockChroma {
    V::Bytes own;
    V::Bytes averaged;
};

template <OddPixel kOdd>
[[gnu::always_inline]] inline BlockChroma loadChroma(const std::uint8_t* p) {
    const V::Bytes even = V::widen16(p);
    const V::Bytes own = V::bitOr(even, V::left32<16>(even));
    if constexpr (kOdd == OddPixel::Own) return {own, own};
    // The sum has 17 bits; its lowest falls out on the way to the upper word.
    const V::Bytes sum = V::add32(even, V::widen16(p + 2));
    return {own, V::orMasked(even, V::left32<15>(sum), V::repeat32(-65536))};
}

template <bool kDrop>
[[gnu::always_inline]] inline V::Bytes quotients(V::Bytes lower, V::Bytes upper, const Coefficients& k) {
    if constexpr (kDrop) {
        lower = V::rightSigned32<2>(lower);
        upper = V::rightSigned32<2>(upper);
    }
    return V::minUnsigned16(V::packUnsigned32(V::scale32(lower, k.factor), V::scale32(upper, k.factor)), k.max);
}

// Luma and one chroma times their coefficients, added to `start`. G takes both chromas.
template <bool kDrop>
[[gnu::always_inline]] inline V::Bytes component(V::Bytes start, V::Bytes y, V::Bytes chroma, V::Bytes coefficients,
                                                 const Coefficients& k) {
    return quotients<kDrop>(V::dot(start, V::zipLower16(y, chroma), coefficients),
                            V::dot(start, V::zipUpper16(y, chroma), coefficients), k);
}

template <bool kDrop>
[[gnu::always_inline]] inline V::Bytes green(V::Bytes y, V::Bytes cb, V::Bytes cr, const Coefficients& k) {
    const V::Bytes lower = V::dot(k.g, V::zipLower16(y, cr), k.greenY);
    const V::Bytes upper = V::dot(k.g, V::zipUpper16(y, cr), k.greenY);
    return quotients<kDrop>(V::dot(lower, V::zipLower16(y, cb), k.greenCb),
                            V::dot(upper, V::zipUpper16(y, cb), k.greenCb), k);
}

// Words.
struct Block {
    V::Bytes r, g, b;
};

template <OddPixel kOdd>
[[gnu::noinline]] Block convertPortably(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                                        const DeepRow& row) {
    std::uint8_t words[3][V::kBytes];
    kOf<kOdd>.toWords(words[0], words[1], words[2], y, cb, cr, kBlock, row);
    return {V::load(words[0]), V::load(words[1]), V::load(words[2])};
}

template <OddPixel kOddPixel, bool kDrop>
struct Integers {
    using Row = DeepRow;
    static constexpr OddPixel kOdd = kOddPixel;

    Coefficients k;
    const DeepRow& row;

    [[gnu::always_inline]] explicit Integers(const DeepRow& of) : k(of), row(of) {}

    [[gnu::always_inline]] Block convert(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) const {
        const V::Bytes luma = V::load(y);
        const BlockChroma u = loadChroma<kOdd>(cb);
        const BlockChroma v = loadChroma<kOdd>(cr);
        if constexpr (kOdd == OddPixel::AverageButRed) {
            return {component<kDrop>(k.r, luma, v.own, k.redY, k), green<kDrop>(luma, u.averaged, v.averaged, k),
                    component<kDrop>(k.b, luma, u.averaged, k.blueY, k)};
        }
        if (V::anyNegative16(V::bitOr(luma, V::bitOr(u.averaged, v.averaged)))) {
            return convertPortably<kOdd>(y, cb, cr, row);
        }
        return {component<kDrop>(k.r, luma, v.averaged, k.redY, k), green<kDrop>(luma, u.averaged, v.averaged, k),
                component<kDrop>(k.b, luma, u.averaged, k.blueY, k)};
    }
};

// The arithmetic of double precision, by the operations of the portable kernel in its order.
struct Doubles {
    using Row = ToRgbFloatRow;
    static constexpr OddPixel kOdd = OddPixel::AverageButRed;

    V::Doubles yo, centre, ys, rv, gv, gu, bu;

    [[gnu::always_inline]] explicit Doubles(const Row& k)
        : yo(V::repeatDouble(-k.yo)), centre(V::repeatDouble(-512)), ys(V::repeatDouble(k.ys)),
          rv(V::repeatDouble(k.rv)), gv(V::repeatDouble(-k.gv)), gu(V::repeatDouble(-k.gu)), bu(V::repeatDouble(k.bu)) {
    }

    // A block's words as numbers, a quarter of it at a time: in each lane first the lower words.
    struct Quarters {
        V::Doubles at[4];

        [[gnu::always_inline]] Quarters(V::Bytes words, V::Doubles offset) {
            const V::Bytes zero = V::repeat16(0);
            const V::Bytes lower = V::zipLower16(words, zero);
            const V::Bytes upper = V::zipUpper16(words, zero);
            at[0] = V::add(V::lowerDoubles(lower), offset);
            at[1] = V::add(V::upperDoubles(lower), offset);
            at[2] = V::add(V::lowerDoubles(upper), offset);
            at[3] = V::add(V::upperDoubles(upper), offset);
        }
        [[gnu::always_inline]] Quarters times(V::Doubles k) const {
            Quarters product = *this;
            for (V::Doubles& quarter : product.at) quarter = V::multiply(quarter, k);
            return product;
        }
        [[gnu::always_inline]] Quarters plus(const Quarters& other) const {
            Quarters sum = *this;
            for (unsigned i = 0; i < 4; ++i) sum.at[i] = V::add(sum.at[i], other.at[i]);
            return sum;
        }
        [[gnu::always_inline]] V::Bytes words() const {
            return V::minUnsigned16(V::packUnsigned32(V::truncated(at[0], at[1]), V::truncated(at[2], at[3])),
                                    V::repeat16(255));
        }
    };

    [[gnu::always_inline]] Block convert(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) const {
        const BlockChroma u = loadChroma<kOdd>(cb);
        const BlockChroma v = loadChroma<kOdd>(cr);
        const Quarters luma = Quarters(V::load(y), yo).times(ys);
        const Quarters blue(u.averaged, centre);
        const Quarters green(v.averaged, centre);
        return {luma.plus(Quarters(v.own, centre).times(rv)).words(),
                luma.plus(green.times(gv)).plus(blue.times(gu)).words(), luma.plus(blue.times(bu)).words()};
    }
};

// Where blocks go: rows of words, or pixels.
struct WordRows {
    std::uint8_t* r;
    std::uint8_t* g;
    std::uint8_t* b;

    [[gnu::always_inline]] void store(std::size_t x, const Block& block) const {
        V::store(r + 2 * x, block.r);
        V::store(g + 2 * x, block.g);
        V::store(b + 2 * x, block.b);
    }

    void storeRest(std::size_t x, const Block& block, std::size_t pixels) const {
        std::uint8_t rest[3][V::kBytes];
        WordRows{rest[0], rest[1], rest[2]}.store(0, block);
        __builtin_memcpy(r + 2 * x, rest[0], 2 * pixels);
        __builtin_memcpy(g + 2 * x, rest[1], 2 * pixels);
        __builtin_memcpy(b + 2 * x, rest[2], 2 * pixels);
    }
};

template <class Store>
struct Pixels {
    std::uint8_t* dst;

    [[gnu::always_inline]] void store(std::size_t x, const Block& block) const {
        Store::block(dst + Store::kPixelBytes * x, block.r, block.g, block.b);
    }

    void storeRest(std::size_t x, const Block& block, std::size_t pixels) const {
        std::uint8_t rest[Store::kPixelBytes * kBlock];
        Pixels{rest}.store(0, block);
        __builtin_memcpy(dst + Store::kPixelBytes * x, rest, Store::kPixelBytes * pixels);
    }
};

// Pixels take more bytes than their samples, and writing them keeps the processor from looking early enough for three
// rows at once; so what lies a little ahead is asked for. Samples from v210 are in cache already.
template <OddPixel kOdd>
[[gnu::always_inline]] inline void prefetch(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) {
    if constexpr (kOdd != OddPixel::AverageButRed) {
        constexpr std::size_t kAhead = 2048; // pixels
        __builtin_prefetch(y + 2 * kAhead);
        __builtin_prefetch(cb + kAhead);
        __builtin_prefetch(cr + kAhead);
    }
}

template <class Arithmetic, class Out>
void convertRow(const Out& out, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                std::size_t pixels, const typename Arithmetic::Row& row) {
    constexpr OddPixel kOdd = Arithmetic::kOdd;
    const Arithmetic arithmetic(row);
    std::size_t x = 0;
    for (; x + kBlock <= pixels; x += kBlock) {
        prefetch<kOdd>(y + 2 * x, cb + x, cr + x);
        out.store(x, arithmetic.convert(y + 2 * x, cb + x, cr + x));
    }
    if (x == pixels) return;
    // Less than a block is left: its samples, and no byte beyond them, are copied to where a block can be read.
    const std::size_t rest = pixels - x;
    const std::size_t chromaBytes = 2 * (kOdd == OddPixel::Own ? (rest + 1) / 2 : rest / 2 + 1);
    std::uint8_t luma[V::kBytes] = {};
    std::uint8_t first[V::kBytes] = {};
    std::uint8_t second[V::kBytes] = {};
    __builtin_memcpy(luma, y + 2 * x, 2 * rest);
    __builtin_memcpy(first, cb + x, chromaBytes);
    __builtin_memcpy(second, cr + x, chromaBytes);
    out.storeRest(x, arithmetic.convert(luma, first, second), rest);
}

template <OddPixel kOdd>
void toWords(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
             const std::uint8_t* cr, std::size_t pixels, const DeepRow& row) {
    if (dropsBits(row)) {
        convertRow<Integers<kOdd, true>>(WordRows{r, g, b}, y, cb, cr, pixels, row);
    } else {
        convertRow<Integers<kOdd, false>>(WordRows{r, g, b}, y, cb, cr, pixels, row);
    }
}

void toWordsFloat(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
                  const std::uint8_t* cr, std::size_t pixels, const ToRgbFloatRow& row) {
    convertRow<Doubles>(WordRows{r, g, b}, y, cb, cr, pixels, row);
}

template <OddPixel kOdd, Rgb8 kFormat>
void toRgb8(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
            std::size_t pixels, const DeepRow& row) {
    convertRow<Integers<kOdd, false>>(Pixels<Store8<kFormat>>{dst}, y, cb, cr, pixels, row);
}

template <OddPixel kOdd, Rgb16 kFormat>
void toRgb16(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
             std::size_t pixels, const DeepRow& row) {
    if (dropsBits(row)) {
        convertRow<Integers<kOdd, true>>(Pixels<Store16<kFormat>>{dst}, y, cb, cr, pixels, row);
    } else {
        convertRow<Integers<kOdd, false>>(Pixels<Store16<kFormat>>{dst}, y, cb, cr, pixels, row);
    }
}

template <OddPixel kOdd, std::size_t... kFormats8, std::size_t... kFormats16>
void overwrite(ToRgbDeepKernels& kernels, std::index_sequence<kFormats8...> /*formats*/,
               std::index_sequence<kFormats16...> /*formats*/) {
    kernels.integer[static_cast<unsigned>(kOdd)] = {toWords<kOdd>,
                                                    {toRgb8<kOdd, static_cast<Rgb8>(kFormats8)>...},
                                                    {toRgb16<kOdd, static_cast<Rgb16>(kFormats16)>...}};
}

void overwrite(ToRgbDeepKernels& kernels) {
    constexpr std::make_index_sequence<kRgb8s> kFormats8;
    constexpr std::make_index_sequence<kRgb16s> kFormats16;
    overwrite<OddPixel::Own>(kernels, kFormats8, kFormats16);
    overwrite<OddPixel::Average>(kernels, kFormats8, kFormats16);
    overwrite<OddPixel::AverageButRed>(kernels, kFormats8, kFormats16);
    kernels.toWordsFloat = toWordsFloat;
}

} // namespace
