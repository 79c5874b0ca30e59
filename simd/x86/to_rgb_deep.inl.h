// 16-bit samples of YCbCr to R, G and B of 8 and 16 bits, in pixels and in planes.
//
// Low samples and the coefficients are 16-bit words with a sign, so the sums are formed exactly in 32-bit integers,
// from pairs of a luma and a chroma sample. The even pixels are in one vector and the odd ones in another, luma where
// it was loaded: in the lower words here, in the upper words there. A block with a higher sample is left to the
// portable kernel.
//
// The quotient is the sum as a float32, times 1 / divisor as one, truncated. While sums do not exceed (max + 1) x
// divisor and that is at most 2^23.4, this is exact: the sum is a float32; the factor is off by less than 2^-25 of
// itself for every divisor in use, so a multiple of the divisor gives its quotient once the product is rounded; and one
// less than a multiple is 1 / divisor short of it, which is more than what the factor and the rounding (2^-24) add.
// Higher sums stay above the limit. Below zero truncation may give 0 or less, and so does the limit. The tests divide
// every sum by every divisor.
//
// Where (max + 1) x divisor is at most 2^23, sums are formed as the bits of the float32 that is 2^23 more, and need no
// conversion. Those below zero have the bits of something less than 2^23, and higher ones those of something more.
// Where (max + 1) x divisor is too large, the divisor is a multiple of four, so two bits are dropped from the sum and
// from the divisor first.
namespace {

#include "simd/x86/rgb_pixels.h"

constexpr std::size_t kBlock = V::kBytes / 2; // pixels

enum class Division { OfBits, OfIntegers, LessTwoBits };

constexpr int kBitsOf2To23 = 0x4B000000;

// What sums may be that count, and one.
inline std::uint64_t range(const DeepRow& row) {
    return (std::uint64_t{row.max} + 1) * row.divisor;
}

// Something for the even and for the odd pixels.
struct Halves {
    V::Bytes even, odd;
};

[[gnu::always_inline]] inline Halves dot(const Halves& sums, const Halves& samples, const Halves& coefficients) {
    return {V::dot(sums.even, samples.even, coefficients.even), V::dot(sums.odd, samples.odd, coefficients.odd)};
}

template <Division kDivision>
struct Coefficients {
    Halves redY, greenY, blueY, greenCb; // for luma and a chroma sample
    Halves r, g, b;                      // what the sums start from
    V::Bytes high;                       // bits that too high a sample has
    V::Bytes max;
    float factor;

    // A block whose quotients may exceed the one given has too high a sample.
    [[gnu::always_inline]] Coefficients(const DeepRow& row, std::int64_t mostQuotient) {
        const ToRgbRow& k = row.k;
        redY = words(k.ys, k.rv);
        greenY = words(k.ys, -k.gv);
        greenCb = words(0, -k.gu);
        blueY = words(k.ys, k.bu);
        const int offset = -k.yo * k.ys + (kDivision == Division::OfBits ? kBitsOf2To23 : 0);
        r = both(offset - row.centre * k.rv);
        g = both(offset + row.centre * (k.gv + k.gu));
        b = both(offset - row.centre * k.bu);
        high = V::repeat16(-lowSamples(row, mostQuotient));
        max = V::repeat16(static_cast<int>(row.max));
        const std::uint32_t divisor = kDivision == Division::LessTwoBits ? row.divisor / 4 : row.divisor;
        factor = 1.0F / static_cast<float>(divisor);
    }

private:
    static Halves both(int value) { return {V::repeat32(value), V::repeat32(value)}; }
    static Halves words(int luma, int chroma) {
        return {V::repeat32(chroma * 65536 + (luma & 0xFFFF)), V::repeat32(luma * 65536 + (chroma & 0xFFFF))};
    }
    // What samples have to be below, a power of two. The bits of a float32 stand for what is no more than four times
    // the sum while that is below 2^25.
    static int lowSamples(const DeepRow& row, std::int64_t mostQuotient) {
        const std::int64_t most = kDivision == Division::OfBits ? 1 << 25 : mostQuotient * row.divisor;
        const int chroma = row.k.rv < row.k.bu ? row.k.bu : row.k.rv;
        int samples = 32768;
        while (std::int64_t{samples} * (row.k.ys + chroma) > most) samples /= 2;
        return samples;
    }
};

// Luma with a chroma of each pixel.
template <OddPixel kOdd>
struct Pairs {
    Halves cb, cr;
    V::Bytes oddCrOfRed;
    V::Bytes all; // the bits of all samples

    [[gnu::always_inline]] Pairs(const std::uint8_t* y, const std::uint8_t* cbs, const std::uint8_t* crs) {
        const V::Bytes luma = V::load(y);
        all = luma;
        cb = with(luma, cbs);
        cr = with(luma, crs);
        oddCrOfRed = kOdd == OddPixel::AverageButRed ? V::withEvenWords(luma, V::loadHalf(crs)) : cr.odd;
    }

private:
    [[gnu::always_inline]] Halves with(V::Bytes luma, const std::uint8_t* chroma) {
        const V::Bytes own = V::loadHalf(chroma);
        all = V::bitOr(all, own);
        V::Bytes odd = own;
        if constexpr (kOdd != OddPixel::Own) {
            const V::Bytes next = V::loadHalf(chroma + 2);
            all = V::bitOr(all, next);
            odd = V::right16<1>(V::add16(own, next));
        }
        return {V::withOddWords(luma, own), V::withEvenWords(luma, odd)};
    }
};

// Words of the pixels in their order.
struct Block {
    V::Bytes r, g, b;
};

// Quotients with 8 bits: words which V::packUnsigned16() limits to 0..255, or lower bytes. Those of the odd pixels are
// formed 2^16 times as large, which is in their place.
struct ToBytes {
    static constexpr std::int64_t kMostQuotient = 32767;

    template <Division kDivision>
    [[gnu::always_inline]] static V::Bytes divided(const Halves& sums, const Coefficients<kDivision>& k) {
        const float oddFactor = k.factor * 65536;
        if constexpr (kDivision == Division::OfBits) {
            return V::alternate16(V::scaleBits32(sums.even, k.factor), V::scaleBits32(sums.odd, oddFactor));
        } else if constexpr (kDivision == Division::OfIntegers) {
            return V::alternate16(V::scale32(sums.even, k.factor), V::scale32(sums.odd, oddFactor));
        } else {
            return limited(V::alternate16(V::scale32(V::rightSigned32<2>(sums.even), k.factor),
                                          V::scale32(V::rightSigned32<2>(sums.odd), oddFactor)),
                           k);
        }
    }

private:
    [[gnu::always_inline]] static V::Bytes limited(V::Bytes words, const Coefficients<Division::LessTwoBits>& k) {
        return V::bitAnd(V::min16(V::max16(words, V::repeat16(0)), k.max), V::repeat16(255));
    }
};

// What V::packUnsigned32() made of even and odd pixels, in their order.
constexpr std::uint8_t kInTurn[16] = {0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15};

// Quotients limited to 0..65535.
struct ToWords {
    static constexpr std::int64_t kMostQuotient = 1 << 30;

    template <Division kDivision>
    [[gnu::always_inline]] static V::Bytes divided(const Halves& sums, const Coefficients<kDivision>& k) {
        Halves s = sums;
        if constexpr (kDivision == Division::LessTwoBits) {
            s = {V::rightSigned32<2>(sums.even), V::rightSigned32<2>(sums.odd)};
        }
        const V::Bytes words = V::packUnsigned32(V::scale32(s.even, k.factor), V::scale32(s.odd, k.factor));
        return V::shuffle(words, V::repeat(kInTurn));
    }
};

template <OddPixel kOdd, class Result>
[[gnu::noinline]] Block convertPortably(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                                        const DeepRow& row) {
    std::uint8_t words[3][V::kBytes];
    kOf<kOdd>.toWordPlanes(words[0], words[1], words[2], y, cb, cr, kBlock, row);
    const V::Bytes kept = V::repeat16(std::is_same_v<Result, ToBytes> ? 255 : 65535);
    return {V::bitAnd(V::load(words[0]), kept), V::bitAnd(V::load(words[1]), kept), V::bitAnd(V::load(words[2]), kept)};
}

template <OddPixel kOddPixel, Division kDivision, class Result>
struct Integers {
    using Row = DeepRow;
    static constexpr OddPixel kOdd = kOddPixel;

    Coefficients<kDivision> k;
    const DeepRow& row;

    [[gnu::always_inline]] explicit Integers(const DeepRow& of) : k(of, Result::kMostQuotient), row(of) {}

    [[gnu::always_inline]] Block convert(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) const {
        const Pairs<kOdd> s(y, cb, cr);
        if constexpr (kOdd != OddPixel::AverageButRed) {
            if (V::anyOf(s.all, k.high)) return convertPortably<kOdd, Result>(y, cb, cr, row);
        }
        return {Result::divided(dot(k.r, {s.cr.even, s.oddCrOfRed}, k.redY), k),
                Result::divided(dot(dot(k.g, s.cr, k.greenY), s.cb, k.greenCb), k),
                Result::divided(dot(k.b, s.cb, k.blueY), k)};
    }
};

// The arithmetic of double precision, by the operations of the portable kernel in its order. Samples less their offsets
// are whole numbers, so that these are subtracted first. What is below zero is rounded down, which storing hides.
struct DoubleArithmetic {
    using Row = ToRgbFloatRow;
    static constexpr OddPixel kOdd = OddPixel::AverageButRed;

    V::Doubles yo, centre, ys, rv, gv, gu, bu;

    [[gnu::always_inline]] explicit DoubleArithmetic(const Row& k)
        : yo(V::addend(-k.yo)), centre(V::addend(-512)), ys(V::repeatDouble(k.ys)), rv(V::repeatDouble(k.rv)),
          gv(V::repeatDouble(-k.gv)), gu(V::repeatDouble(-k.gu)), bu(V::repeatDouble(k.bu)) {}

    // Of the even or of the odd pixels.
    struct Numbers {
        V::Doubles lower, upper;

        [[gnu::always_inline]] static Numbers of(V::Bytes samples, V::Doubles offset) {
            return {V::lowerSums(samples, offset), V::upperSums(samples, offset)};
        }
        [[gnu::always_inline]] Numbers times(V::Doubles k) const {
            return {V::multiply(lower, k), V::multiply(upper, k)};
        }
        [[gnu::always_inline]] Numbers plus(const Numbers& other) const {
            return {V::add(lower, other.lower), V::add(upper, other.upper)};
        }
        [[gnu::always_inline]] V::Bytes floors() const { return V::floors(lower, upper); }
    };

    [[gnu::always_inline]] static V::Bytes words(const Numbers& even, const Numbers& odd) {
        return V::alternate16(even.floors(), V::left32<16>(odd.floors()));
    }

    [[gnu::always_inline]] Block convert(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) const {
        const V::Bytes zero = V::repeat16(0);
        const V::Bytes luma = V::load(y);
        const V::Bytes u = V::withEvenWords(zero, V::loadHalf(cb));
        const V::Bytes v = V::withEvenWords(zero, V::loadHalf(cr));
        const V::Bytes nextU = V::withEvenWords(zero, V::loadHalf(cb + 2));
        const V::Bytes nextV = V::withEvenWords(zero, V::loadHalf(cr + 2));
        const Numbers even = Numbers::of(V::alternate16(luma, zero), yo).times(ys);
        const Numbers odd = Numbers::of(V::right32<16>(luma), yo).times(ys);
        const Numbers evenU = Numbers::of(u, centre);
        const Numbers evenV = Numbers::of(v, centre);
        const Numbers oddU = Numbers::of(V::right32<1>(V::add32(u, nextU)), centre);
        const Numbers oddV = Numbers::of(V::right32<1>(V::add32(v, nextV)), centre);
        const Numbers red = evenV.times(rv);
        return {words(even.plus(red), odd.plus(red)),
                words(even.plus(evenV.times(gv)).plus(evenU.times(gu)), odd.plus(oddV.times(gv)).plus(oddU.times(gu))),
                words(even.plus(evenU.times(bu)), odd.plus(oddU.times(bu)))};
    }
};

[[gnu::always_inline]] inline V::Bytes limited(V::Bytes words) {
    return V::min16(V::max16(words, V::repeat16(0)), V::repeat16(255));
}

// Where blocks go: planes, or pixels.
struct BytePlanes {
    static constexpr std::size_t kSampleBytes = 1;

    std::uint8_t* r;
    std::uint8_t* g;
    std::uint8_t* b;

    [[gnu::always_inline]] void store(std::size_t x, const Block& block) const {
        V::storeLowerBytes(r + x, limited(block.r));
        V::storeLowerBytes(g + x, limited(block.g));
        V::storeLowerBytes(b + x, limited(block.b));
    }
};

struct WordPlanes {
    static constexpr std::size_t kSampleBytes = 2;

    std::uint8_t* r;
    std::uint8_t* g;
    std::uint8_t* b;
    V::Bytes max;

    [[gnu::always_inline]] void store(std::size_t x, const Block& block) const {
        V::store(r + 2 * x, V::minUnsigned16(block.r, max));
        V::store(g + 2 * x, V::minUnsigned16(block.g, max));
        V::store(b + 2 * x, V::minUnsigned16(block.b, max));
    }
};

template <class Planes>
void storeRest(const Planes& to, std::size_t x, const Block& block, std::size_t pixels) {
    std::uint8_t rest[3][V::kBytes];
    Planes room = to;
    room.r = rest[0];
    room.g = rest[1];
    room.b = rest[2];
    room.store(0, block);
    __builtin_memcpy(to.r + Planes::kSampleBytes * x, rest[0], Planes::kSampleBytes * pixels);
    __builtin_memcpy(to.g + Planes::kSampleBytes * x, rest[1], Planes::kSampleBytes * pixels);
    __builtin_memcpy(to.b + Planes::kSampleBytes * x, rest[2], Planes::kSampleBytes * pixels);
}

template <class Store, Writes kWrites = Writes::ToCache>
struct Pixels {
    std::uint8_t* dst;

    [[gnu::always_inline]] void store(std::size_t x, const Block& block) const {
        if constexpr (Store::kPixelBytes == 2) {
            Store::block(dst + 2 * x, limited(block.r), limited(block.g), limited(block.b));
        } else {
            Store::template block<kWrites>(dst + Store::kPixelBytes * x, block.r, block.g, block.b);
        }
    }
};

template <class Store, Writes kWrites>
void storeRest(const Pixels<Store, kWrites>& to, std::size_t x, const Block& block, std::size_t pixels) {
    std::uint8_t rest[Store::kPixelBytes * kBlock];
    Pixels<Store>{rest}.store(0, block);
    __builtin_memcpy(to.dst + Store::kPixelBytes * x, rest, Store::kPixelBytes * pixels);
}

// The expression of packRgb10(), its lower and its upper words.
struct Store10 {
    static constexpr std::size_t kPixelBytes = 4;

    template <Writes kWrites = Writes::ToCache>
    [[gnu::always_inline]] static void block(std::uint8_t* dst, V::Bytes r, V::Bytes g, V::Bytes b) {
        V::Bytes lower = V::orMasked(V::right16<2>(b), r, V::repeat16(0x0003));
        lower = V::orMasked(lower, V::left16<2>(g), V::repeat16(0x000C));
        lower = V::orMasked(lower, V::left16<6>(g), V::repeat16(0xFF00));
        V::Bytes upper = V::bitOr(V::right16<2>(r), V::right16<10>(g));
        upper = V::orMasked(upper, V::left16<12>(b), V::repeat16(0x3000));
        V::storeLanePairs<kWrites>(dst, V::zipLower16(lower, upper), V::zipUpper16(lower, upper));
    }
};

// Pixels take more bytes than their samples, and writing them keeps the processor from looking early enough for three
// rows at once; so what lies a little ahead is asked for. Samples from v210 are in cache already.
template <OddPixel kOdd>
[[gnu::always_inline]] inline void prefetch(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) {
    if constexpr (kOdd != OddPixel::AverageButRed) {
        constexpr std::ptrdiff_t kAhead = 2048; // pixels
        fetchAhead(y, 2 * kAhead);
        fetchAhead(cb, kAhead);
        fetchAhead(cr, kAhead);
    }
}

template <class Arithmetic, class Out>
void convertRow(const Out out, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
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
    storeRest(out, x, arithmetic.convert(luma, first, second), rest);
}

inline Division divisionToBytes(const DeepRow& row) {
    if (row.max != 255) return Division::LessTwoBits;
    return range(row) > 1 << 23 ? Division::OfIntegers : Division::OfBits;
}

inline Division divisionToWords(const DeepRow& row) {
    return range(row) > 11'000'000 ? Division::LessTwoBits : Division::OfIntegers;
}

template <OddPixel kOdd, class Out>
[[gnu::always_inline]] inline void convertToBytes(const Out& out, const std::uint8_t* y, const std::uint8_t* cb,
                                                  const std::uint8_t* cr, std::size_t pixels, const DeepRow& row) {
    switch (divisionToBytes(row)) {
    case Division::LessTwoBits:
        return convertRow<Integers<kOdd, Division::LessTwoBits, ToBytes>>(out, y, cb, cr, pixels, row);
    case Division::OfIntegers:
        return convertRow<Integers<kOdd, Division::OfIntegers, ToBytes>>(out, y, cb, cr, pixels, row);
    case Division::OfBits:
        return convertRow<Integers<kOdd, Division::OfBits, ToBytes>>(out, y, cb, cr, pixels, row);
    }
}

template <OddPixel kOdd, class Out>
[[gnu::always_inline]] inline void convertToWords(const Out& out, const std::uint8_t* y, const std::uint8_t* cb,
                                                  const std::uint8_t* cr, std::size_t pixels, const DeepRow& row) {
    if (divisionToWords(row) == Division::LessTwoBits) {
        convertRow<Integers<kOdd, Division::LessTwoBits, ToWords>>(out, y, cb, cr, pixels, row);
    } else {
        convertRow<Integers<kOdd, Division::OfIntegers, ToWords>>(out, y, cb, cr, pixels, row);
    }
}

template <OddPixel kOdd>
void toBytePlanes(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
                  const std::uint8_t* cr, std::size_t pixels, const DeepRow& row) {
    convertToBytes<kOdd>(BytePlanes{r, g, b}, y, cb, cr, pixels, row);
}

template <OddPixel kOdd>
void toWordPlanes(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
                  const std::uint8_t* cr, std::size_t pixels, const DeepRow& row) {
    convertToWords<kOdd>(WordPlanes{r, g, b, V::repeat16(static_cast<int>(row.max))}, y, cb, cr, pixels, row);
}

template <OddPixel kOdd, Rgb8 kFormat, Writes kWrites = Writes::ToCache>
void toRgb8(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
            std::size_t pixels, const DeepRow& row) {
    convertToBytes<kOdd>(Pixels<Store8<kFormat>, kWrites>{dst}, y, cb, cr, pixels, row);
}

template <OddPixel kOdd, class Store, Writes kWrites = Writes::ToCache>
void toRgb16(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
             std::size_t pixels, const DeepRow& row) {
    convertToWords<kOdd>(Pixels<Store, kWrites>{dst}, y, cb, cr, pixels, row);
}

template <Rgb8 kFormat>
void toRgb8Float(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                 std::size_t pixels, const ToRgbFloatRow& row) {
    convertRow<DoubleArithmetic>(Pixels<Store8<kFormat>>{dst}, y, cb, cr, pixels, row);
}

// Pixels that fill 64-byte vectors go past the cache; the others, and those of narrower vectors, which are bound by
// arithmetic, do not.
constexpr Writes kPast = V::kBytes == 64 ? Writes::PastCache : Writes::ToCache;
template <Rgb8 kFormat>
constexpr Writes kPast8 = bytesPerPixel(kFormat) == 4 ? kPast : Writes::ToCache;
template <Rgb16 kFormat>
constexpr Writes kPast16 = bytesPerPixel(kFormat) == 8 ? kPast : Writes::ToCache;

#include "simd/x86/v210_to_rgb.inl.h"

template <OddPixel kOdd, std::size_t... kFormats8, std::size_t... kFormats16>
void overwrite(ToRgbDeepKernels& kernels, std::index_sequence<kFormats8...> /*formats*/,
               std::index_sequence<kFormats16...> /*formats*/) {
    kernels.integer[static_cast<unsigned>(kOdd)] = {
        toBytePlanes<kOdd>,
        toWordPlanes<kOdd>,
        {toRgb8<kOdd, static_cast<Rgb8>(kFormats8)>...},
        {toRgb16<kOdd, Store16<static_cast<Rgb16>(kFormats16)>>...},
        toRgb16<kOdd, Store10>,
        {toRgb8<kOdd, static_cast<Rgb8>(kFormats8), kPast8<static_cast<Rgb8>(kFormats8)>>...},
        {toRgb16<kOdd, Store16<static_cast<Rgb16>(kFormats16)>, kPast16<static_cast<Rgb16>(kFormats16)>>...},
        toRgb16<kOdd, Store10, kPast>};
    kernels.toRgb8Float = {toRgb8Float<static_cast<Rgb8>(kFormats8)>...};
}

void overwrite(ToRgbDeepKernels& kernels) {
    constexpr std::make_index_sequence<kRgb8s> kFormats8;
    constexpr std::make_index_sequence<kRgb16s> kFormats16;
    overwrite<OddPixel::Own>(kernels, kFormats8, kFormats16);
    overwrite<OddPixel::Average>(kernels, kFormats8, kFormats16);
    overwrite<OddPixel::AverageButRed>(kernels, kFormats8, kFormats16);
    overwriteFromV210<V>(kernels.v210, kFormats8, kFormats16);
}

} // namespace
