// 8-bit YCbCr to RGB of 8- and 16-bit precision.
//
// A sample v stands in a 32-bit integer twice, as the 16-bit words 256 (v - 128) and v, and is multiplied by a
// coefficient's upper part and by its lower eight bits at once, for coefficients have more than 16 bits. The constant
// that this brings in is taken out beforehand.
//
// A block is as many pixels as half a vector has bytes. Chroma is computed once for the pairs; the luma of the even and
// of the odd pixels is added to it apart, and the two are zipped into words in the order of the pixels.
namespace {

#include "simd/x86/rgb_pixels.h"

template <Samples8 kSource>
struct Samples {
    static constexpr bool kPacked = kSource < Samples8::Packed;
    static constexpr Group kGroup = kGroups[kPacked ? static_cast<unsigned>(kSource) : 0];
    static constexpr unsigned kPairs = V::kBytes / 4;
    static constexpr std::size_t kLumaBytes = pairBytes(kSource).luma;
    static constexpr std::size_t kChromaBytes = pairBytes(kSource).chroma;

    // Where pair i's samples stand in what is loaded.
    static constexpr unsigned evenAt(unsigned i) { return kPacked ? kGroup.y + 4 * i : 2 * i; }
    static constexpr unsigned oddAt(unsigned i) { return kPacked ? kGroup.y + 2 + 4 * i : 2 * i + 1; }
    static constexpr unsigned cbAt(unsigned i) { return kPacked ? kGroup.cb + 4 * i : kChromaBytes * i; }
    static constexpr unsigned crAt(unsigned i) {
        return kPacked ? kGroup.cr + 4 * i : kSource == Samples8::Planar ? i : 2 * i + 1;
    }

    V::Bytes even, odd, cb, cr;

    [[gnu::always_inline]] Samples(const std::uint8_t* y, const std::uint8_t* u, const std::uint8_t* v) {
        V::Bytes luma;
        if constexpr (kPacked) {
            luma = V::load(y - kGroup.y);
            cb = cr = V::load(u - kGroup.cb);
        } else if constexpr (kSource == Samples8::Planar) {
            luma = V::loadHalf(y);
            cb = V::loadQuarter(u);
            cr = V::loadQuarter(v);
        } else {
            luma = V::loadHalf(y);
            cb = cr = V::loadHalf(u);
        }
        even = expand<evenAt>(luma);
        odd = expand<oddAt>(luma);
        cb = expand<cbAt>(cb);
        cr = expand<crAt>(cr);
    }

    // The words 256 (v - 128) and v.
    template <unsigned (*kAt)(unsigned)>
    [[gnu::always_inline]] static V::Bytes expand(V::Bytes loaded) {
        static constexpr Positions<kAt> kPositions;
        static constexpr V::Expansion kExpansion(kPositions.at);
        return V::bitXor(V::expand(loaded, kExpansion), V::repeat32(0x8000));
    }

private:
    template <unsigned (*kAt)(unsigned)>
    struct Positions {
        std::uint8_t at[kPairs]{};
        constexpr Positions() {
            for (unsigned i = 0; i < kPairs; ++i) at[i] = static_cast<std::uint8_t>(kAt(i));
        }
    };
};

// Words in the order of the pixels.
struct Block {
    V::Bytes r, g, b;
};

// A coefficient of any scale.
struct Coefficient {
    int value;

    int upper() const { return value >> 8; }
    int lower() const { return value & 0xFF; }
    // What the two words' products add up to beyond the coefficient times v, and times v - 128.
    int excess() const { return -32768 * upper(); }
    int centredExcess() const { return 128 * lower(); }
    V::Bytes words() const { return V::repeat32(lower() * 65536 + (upper() & 0xFFFF)); }
};

// The sums of every pixel, of a scale that is that of the coefficients.
struct Sums {
    V::Bytes ys, rv, gv, gu, bu;
    V::Bytes r, g, b; // what they start from

    // `redBlue` and `green` are added to the sums.
    [[gnu::always_inline]] Sums(int yo, Coefficient luma, Coefficient redCr, Coefficient greenCr, Coefficient greenCb,
                                Coefficient blueCb, int redBlue, int green)
        : ys(luma.words()), rv(redCr.words()), gv(greenCr.words()), gu(greenCb.words()), bu(blueCb.words()) {
        const int start = -yo * luma.value - luma.excess();
        r = V::repeat32(start + redBlue - redCr.centredExcess());
        g = V::repeat32(start + green - greenCr.centredExcess() - greenCb.centredExcess());
        b = V::repeat32(start + redBlue - blueCb.centredExcess());
    }

    // Zip::zip() makes words of the sums of the even and of the odd pixels.
    template <class Zip, Samples8 kSource>
    [[gnu::always_inline]] Block of(const Samples<kSource>& s) const {
        const V::Bytes red = V::dot(r, s.cr, rv);
        const V::Bytes green = V::dot(V::dot(g, s.cr, gv), s.cb, gu);
        const V::Bytes blue = V::dot(b, s.cb, bu);
        const V::Bytes even = V::dot(s.even, ys);
        const V::Bytes odd = V::dot(s.odd, ys);
        return {Zip::zip(V::add32(red, even), V::add32(red, odd)),
                Zip::zip(V::add32(green, even), V::add32(green, odd)),
                Zip::zip(V::add32(blue, even), V::add32(blue, odd))};
    }
};

// Precision of 8 bits. The coefficients have the scale 2^21 in place of 10000, rounded to the nearest; a bias of 96,
// less than half of 2^21 / 10000, takes the place of exactness. Shifted down and limited to 0..255 the sums are those
// of scale 10000, for every luma, Cb and Cr and every row of coefficients: the tests try them all. Shifting rounds down
// where the quotient of scale 10000 rounds to zero, which the limit hides.
//
// The upper halves of the sums are words with five bits behind the point.
constexpr int kFractionBits = 5;

struct Fractions8 {
    using Row = ToRgbRow;
    static constexpr int kScaleBits = 16 + kFractionBits;
    static constexpr int kBias = 96;

    Sums sums;

    static Coefficient scaled(int of10000) {
        const long long half = of10000 < 0 ? -5000 : 5000;
        return {static_cast<int>((of10000 * (1LL << kScaleBits) + half) / 10000)};
    }
    [[gnu::always_inline]] explicit Fractions8(const Row& k)
        : sums(k.yo, scaled(k.ys), scaled(k.rv), scaled(-k.gv), scaled(-k.gu), scaled(k.bu), kBias, kBias) {}

    [[gnu::always_inline]] static V::Bytes zip(V::Bytes even, V::Bytes odd) { return V::zipUpperHalves(even, odd); }

    template <Samples8 kSource>
    [[gnu::always_inline]] Block convert(const Samples<kSource>& s) const {
        return sums.of<Fractions8>(s);
    }
};

template <int kMax>
[[gnu::always_inline]] inline V::Bytes limited(V::Bytes words) {
    return V::max16(V::min16(words, V::repeat16(kMax)), V::repeat16(0));
}

[[gnu::always_inline]] inline V::Bytes limitedFractions(V::Bytes words) {
    return limited<(256 << kFractionBits) - 1>(words);
}

// The same without what is behind the point.
struct Words8 {
    using Row = ToRgbRow;

    Fractions8 fractions;

    [[gnu::always_inline]] explicit Words8(const Row& k) : fractions(k) {}

    template <Samples8 kSource>
    [[gnu::always_inline]] Block convert(const Samples<kSource>& s) const {
        const Block f = fractions.convert(s);
        return {V::right16<kFractionBits>(limitedFractions(f.r)), V::right16<kFractionBits>(limitedFractions(f.g)),
                V::right16<kFractionBits>(limitedFractions(f.b))};
    }
};

// Precision of 16 bits: exact sums of scale 10000, below 2^31. 3518437209 is 2^45 / 10000 and 0.12, so that times a sum
// it exceeds the multiple of 2^45 that the quotient is by less than 2^45 / 10000.
struct Words16 {
    using Row = ToRgbRow;

    Sums sums;

    [[gnu::always_inline]] explicit Words16(const Row& k)
        : sums(k.yo, {k.ys}, {k.rv}, {-k.gv}, {-k.gu}, {k.bu}, 10000, 0) {}

    [[gnu::always_inline]] static V::Bytes quotients(V::Bytes sums) {
        const V::Bytes inverse = V::repeat32(static_cast<int>(3518437209U));
        const V::Bytes product = V::multiplyUpper32(V::max32(sums, V::repeat32(0)), inverse);
        return V::min32(V::right32<13>(product), V::repeat32(65535));
    }
    [[gnu::always_inline]] static V::Bytes zip(V::Bytes even, V::Bytes odd) {
        return V::bitOr(quotients(even), V::left32<16>(quotients(odd)));
    }

    template <Samples8 kSource>
    [[gnu::always_inline]] Block convert(const Samples<kSource>& s) const {
        return sums.of<Words16>(s);
    }
};

// Double precision, by the operations of the portable kernel in its order. What is below zero is rounded down, or
// truncated, which the limit hides.
struct WordsDouble {
    using Row = ToRgbFloatRow;
    struct Halves {
        V::Doubles lower, upper;
    };

    V::Doubles yo, centre, ys, rv, gv, gu, bu;

    [[gnu::always_inline]] explicit WordsDouble(const Row& k)
        : yo(V::addend(-k.yo)), centre(V::addend(-128)), ys(V::repeatDouble(k.ys)), rv(V::repeatDouble(k.rv)),
          gv(V::repeatDouble(-k.gv)), gu(V::repeatDouble(-k.gu)), bu(V::repeatDouble(k.bu)) {}

    [[gnu::always_inline]] static Halves less(V::Bytes expanded, V::Doubles offset) {
        const V::Bytes v = V::right32<16>(expanded);
        return {V::lowerSums(v, offset), V::upperSums(v, offset)};
    }
    [[gnu::always_inline]] static Halves times(const Halves& a, V::Doubles k) {
        return {V::multiply(a.lower, k), V::multiply(a.upper, k)};
    }
    [[gnu::always_inline]] static Halves sum(const Halves& a, const Halves& b) {
        return {V::add(a.lower, b.lower), V::add(a.upper, b.upper)};
    }
    [[gnu::always_inline]] static V::Bytes words(const Halves& even, const Halves& odd) {
        const V::Bytes upper = V::left32<16>(V::floors(odd.lower, odd.upper));
        return limited<255>(V::orMasked(upper, V::floors(even.lower, even.upper), V::repeat32(0xFFFF)));
    }

    template <Samples8 kSource>
    [[gnu::always_inline]] Block convert(const Samples<kSource>& s) const {
        const Halves even = times(less(s.even, yo), ys);
        const Halves odd = times(less(s.odd, yo), ys);
        const Halves u = less(s.cb, centre);
        const Halves v = less(s.cr, centre);
        const Halves red = times(v, rv);
        const Halves greenCr = times(v, gv);
        const Halves greenCb = times(u, gu);
        const Halves blue = times(u, bu);
        return {words(sum(even, red), sum(odd, red)),
                words(sum(sum(even, greenCr), greenCb), sum(sum(odd, greenCr), greenCb)),
                words(sum(even, blue), sum(odd, blue))};
    }
};

// Pixels of words with bits behind the point. The highest bits of the limited words are moved to their places.
template <Rgb8 kFormat>
struct StoreFractions {
    static constexpr std::size_t kPixelBytes = bytesPerPixel(kFormat);

    template <Writes kWrites = Writes::ToCache>
    [[gnu::always_inline]] static void block(std::uint8_t* dst, V::Bytes r, V::Bytes g, V::Bytes b) {
        if constexpr (kPixelBytes != 2) {
            storeComponents<kFormat, kWrites>(dst, V::rightSigned16<kFractionBits>(r),
                                              V::rightSigned16<kFractionBits>(g), V::rightSigned16<kFractionBits>(b));
        } else {
            constexpr bool kBlueFirst = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Bgr555;
            constexpr bool k565 = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Rgb565;
            constexpr int kTop = 8 + kFractionBits;
            const V::Bytes first = V::left16<(k565 ? 16 : 15) - kTop>(limitedFractions(kBlueFirst ? b : r));
            const V::Bytes middle = V::right16<kTop - (k565 ? 11 : 10)>(limitedFractions(g));
            const V::Bytes last = V::right16<kTop - 5>(limitedFractions(kBlueFirst ? r : b));
            const V::Bytes twoOfThem = V::orMasked(last, middle, V::repeat16(k565 ? 0x07E0 : 0x03E0));
            V::store<kWrites>(dst, V::orMasked(twoOfThem, first, V::repeat16(k565 ? 0xF800 : 0x7C00)));
        }
    }
};

// Where blocks go: pixels, or planes of samples.
constexpr std::size_t kBlock = V::kBytes / 2; // pixels

template <class Store>
struct Pixels {
    static constexpr std::size_t kBlocksAtOnce = 1;
    static constexpr bool kReadsAhead = Store::kPixelBytes == 2;

    std::uint8_t* dst;

    [[gnu::always_inline]] void store(std::size_t x, const Block& block) const {
        Store::block(dst + Store::kPixelBytes * x, block.r, block.g, block.b);
    }
    void storeRest(std::size_t x, const Block& block, std::size_t pixels) const {
        std::uint8_t rest[Store::kPixelBytes * kBlock];
        Store::block(rest, block.r, block.g, block.b);
        __builtin_memcpy(dst + Store::kPixelBytes * x, rest, Store::kPixelBytes * pixels);
    }
};

// The same past the cache, as many blocks at once as fill vectors.
template <Rgb8 kFormat, class Vector = V>
struct PixelsPastCache : Pixels<StoreFractions<kFormat>> {
    static constexpr unsigned kPixelBytes = bytesPerPixel(kFormat);
    static constexpr std::size_t kBlocksAtOnce = kPixelBytes == 3 ? 2 : 1;
    static constexpr bool kReadsAhead = true;

    using Pixels<StoreFractions<kFormat>>::dst;

    [[gnu::always_inline]] static PixelBytes bytes(const Block& block) {
        return pixelBytes<kFormat>(V::rightSigned16<kFractionBits>(block.r), V::rightSigned16<kFractionBits>(block.g),
                                   V::rightSigned16<kFractionBits>(block.b));
    }
    [[gnu::always_inline]] void store(std::size_t x, const Block& block) const {
        using Store = StoreFractions<kFormat>;
        Store::template block<Writes::PastCache>(dst + kPixelBytes * x, block.r, block.g, block.b);
    }
    [[gnu::always_inline]] void store(std::size_t x, const Block& first, const Block& second) const {
        const PixelBytes a = bytes(first);
        const PixelBytes b = bytes(second);
        Vector::streamPixels24(dst + kPixelBytes * x, a.c02, a.c13, b.c02, b.c13);
    }
};

template <std::size_t kSampleBytes>
struct Planes {
    static constexpr std::size_t kBlocksAtOnce = 1;
    static constexpr bool kReadsAhead = true;

    std::uint8_t* r;
    std::uint8_t* g;
    std::uint8_t* b;

    [[gnu::always_inline]] static void store(std::uint8_t* dst, V::Bytes words) {
        if constexpr (kSampleBytes == 1) {
            V::storeLowerBytes(dst, words);
        } else {
            V::store(dst, words);
        }
    }
    [[gnu::always_inline]] void store(std::size_t x, const Block& block) const {
        store(r + kSampleBytes * x, block.r);
        store(g + kSampleBytes * x, block.g);
        store(b + kSampleBytes * x, block.b);
    }
    void storeRest(std::size_t x, const Block& block, std::size_t pixels) const {
        std::uint8_t rest[3][kSampleBytes * kBlock];
        Planes{rest[0], rest[1], rest[2]}.store(0, block);
        __builtin_memcpy(r + kSampleBytes * x, rest[0], kSampleBytes * pixels);
        __builtin_memcpy(g + kSampleBytes * x, rest[1], kSampleBytes * pixels);
        __builtin_memcpy(b + kSampleBytes * x, rest[2], kSampleBytes * pixels);
    }
};

// The rest of a row, a block at most: its samples, and no byte beyond them, are copied to where a block can be read.
template <Samples8 kSource, class Arithmetic, class Out>
void convertRest(const Out& out, std::size_t x, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                 std::size_t pairs, const Arithmetic& arithmetic) {
    using S = Samples<kSource>;
    std::uint8_t luma[V::kBytes] = {};
    std::uint8_t first[V::kBytes] = {};
    std::uint8_t second[V::kBytes] = {};
    if constexpr (S::kPacked) {
        constexpr unsigned kChroma = S::kGroup.cb < S::kGroup.cr ? S::kGroup.cb : S::kGroup.cr;
        __builtin_memcpy(luma + S::kGroup.y, y, 4 * pairs - 1);
        __builtin_memcpy(first + kChroma, kChroma == S::kGroup.cb ? cb : cr, 4 * pairs - 1);
        out.storeRest(x, arithmetic.convert(S(luma + S::kGroup.y, first + S::kGroup.cb, first + S::kGroup.cr)),
                      2 * pairs);
    } else {
        __builtin_memcpy(luma, y, 2 * pairs);
        __builtin_memcpy(first, cb, S::kChromaBytes * pairs);
        if constexpr (kSource == Samples8::Planar) __builtin_memcpy(second, cr, pairs);
        out.storeRest(x, arithmetic.convert(S(luma, first, second)), 2 * pairs);
    }
}

// What is left to be converted of a row.
template <Samples8 kSource>
struct RowSource {
    using S = Samples<kSource>;

    const std::uint8_t* y;
    const std::uint8_t* cb;
    const std::uint8_t* cr;
    std::size_t pairs;
    std::size_t x = 0;

    [[gnu::always_inline]] void advance(std::size_t count) {
        y += count * S::kLumaBytes;
        cb += count * S::kChromaBytes;
        cr += count * S::kChromaBytes;
        pairs -= count;
        x += 2 * count;
    }

    template <class Arithmetic, class Out>
    void convertCarefully(const Out& out, const Arithmetic& arithmetic) {
        while (pairs != 0) {
            const std::size_t piece = pairs < S::kPairs ? pairs : S::kPairs;
            convertRest<kSource>(out, x, y, cb, cr, piece, arithmetic);
            advance(piece);
        }
    }
};

template <Samples8 kSource, class Arithmetic, class Out>
void convertRow(const Out& out, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                std::size_t pairs, const typename Arithmetic::Row& row) {
    using S = Samples<kSource>;
    constexpr std::size_t kStep = Out::kBlocksAtOnce * S::kPairs;
    const Arithmetic arithmetic(row);
    // Where luma and chroma of a packed row belong to different groups, the last group of one may end in a byte that
    // is not the row's; the last pairs are then left to the careful end.
    const bool apart = S::kPacked && y - S::kGroup.y != cb - S::kGroup.cb;
    const std::size_t careful = apart ? 1 : 0;
    RowSource<kSource> from{y, cb, cr, pairs};
    while (from.pairs >= kStep + careful) {
        // Where the source is half of what moves, there are three destinations or none in the cache, the processor by
        // itself does not look early enough for the source.
        if constexpr (Out::kReadsAhead) fetchAhead(from.y, 4096);
        const Block block = arithmetic.convert(S(from.y, from.cb, from.cr));
        if constexpr (Out::kBlocksAtOnce == 1) {
            out.store(from.x, block);
        } else {
            RowSource<kSource> next = from;
            next.advance(S::kPairs);
            if constexpr (S::kPacked) fetchAhead(next.y, 4096);
            out.store(from.x, block, arithmetic.convert(S(next.y, next.cb, next.cr)));
        }
        from.advance(kStep);
    }
    from.convertCarefully(out, arithmetic);
}

template <Samples8 kSource, class Arithmetic, class Store>
void toPixels(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
              std::size_t pairs, const typename Arithmetic::Row& row) {
    convertRow<kSource, Arithmetic>(Pixels<Store>{dst}, y, cb, cr, pairs, row);
}

template <Samples8 kSource, Rgb8 kFormat>
void toPixelsPastCache(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                       std::size_t pairs, const ToRgbRow& row) {
    convertRow<kSource, Fractions8>(PixelsPastCache<kFormat>{{dst}}, y, cb, cr, pairs, row);
}

template <Samples8 kSource, class Arithmetic, std::size_t kSampleBytes>
void toPlanes(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
              const std::uint8_t* cr, std::size_t pairs, const typename Arithmetic::Row& row) {
    convertRow<kSource, Arithmetic>(Planes<kSampleBytes>{r, g, b}, y, cb, cr, pairs, row);
}

template <Samples8 kSource, std::size_t... kFormats8, std::size_t... kFormats16>
void overwriteSource(ToRgb8Kernels& kernels, std::index_sequence<kFormats8...> /*formats*/,
                     std::index_sequence<kFormats16...> /*formats*/) {
    constexpr auto kAt = static_cast<unsigned>(kSource);
    kernels.toRgb[kAt] = {toPixels<kSource, Fractions8, StoreFractions<static_cast<Rgb8>(kFormats8)>>...};
    // Narrower vectors are bound by arithmetic.
    if constexpr (V::kBytes == 64) {
        kernels.toRgbPast[kAt] = {toPixelsPastCache<kSource, static_cast<Rgb8>(kFormats8)>...};
    } else {
        kernels.toRgbPast[kAt] = kernels.toRgb[kAt];
    }
    kernels.toPlanes[kAt] = toPlanes<kSource, Words8, 1>;
    kernels.toWordsFloat[kAt] = toPlanes<kSource, WordsDouble, 2>;
    kernels.toRgb16[kAt] = {toPixels<kSource, Words16, Store16<static_cast<Rgb16>(kFormats16)>>...};
    kernels.toPlanes16[kAt] = toPlanes<kSource, Words16, 2>;
}

template <Samples8... kSources>
void overwriteSources(ToRgb8Kernels& kernels) {
    (overwriteSource<kSources>(kernels, std::make_index_sequence<kRgb8s>(), std::make_index_sequence<kRgb16s>()), ...);
}

void overwrite(ToRgb8Kernels& kernels) {
    overwriteSources<Samples8::Yuy2, Samples8::Yvyu, Samples8::Uyvy, Samples8::Planar, Samples8::BiPlanar>(kernels);
}

} // namespace
