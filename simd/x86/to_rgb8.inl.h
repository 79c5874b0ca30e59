// 8-bit YCbCr to RGB of 8-bit precision, for the integer arithmetic of scale 10000.
//
// The sums are formed in 32-bit integers whose coefficients have the scale 2^21 in place of 10000, rounded to the
// nearest; a bias of 96, less than half of 2^21 / 10000, takes the place of exactness. Shifted down and limited to
// 0..255 the sums are those of scale 10000, for every luma, Cb and Cr and every row of coefficients: the tests try them
// all. Shifting rounds down where the quotient of scale 10000 rounds to zero, which the limit hides.
//
// Coefficients have more than 16 bits, so a sample v stands in a 32-bit integer twice, as the 16-bit words 256 (v -
// 128) and v, and is multiplied by the coefficient's upper part and by its lower eight bits at once. The constant that
// this brings in is taken out beforehand.
//
// A block is as many pixels as half a vector has bytes. Chroma is computed once for the pairs; the luma of the even and
// of the odd pixels is added to it apart, and the upper halves of the two sums, zipped, are the pixels in order: words
// with five bits behind the point.
namespace {

#include "simd/x86/rgb_pixels.h"

constexpr int kScaleBits = 21;
constexpr int kFractionBits = kScaleBits - 16;
constexpr int kBias = 96;

template <Samples8 kSource>
struct Samples {
    static constexpr bool kPacked = kSource < Samples8::Packed;
    static constexpr Group kGroup = kGroups[kPacked ? static_cast<unsigned>(kSource) : 0];
    static constexpr unsigned kPairs = V::kBytes / 4;
    static constexpr std::size_t kLumaBytes = kPacked ? 4 : 2; // a pair
    static constexpr std::size_t kChromaBytes = kPacked ? 4 : kSource == Samples8::Planar ? 1 : 2;

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

struct Coefficient {
    int value; // of scale 2^21

    explicit constexpr Coefficient(int of10000)
        : value(static_cast<int>((of10000 * (1LL << kScaleBits) + (of10000 < 0 ? -5000 : 5000)) / 10000)) {}
    int upper() const { return value >> 8; }
    int lower() const { return value & 0xFF; }
    // What the two words' products add up to beyond the coefficient times v, and times v - 128.
    int excess() const { return -32768 * upper(); }
    int centredExcess() const { return 128 * lower(); }
    V::Bytes words() const { return V::repeat32(lower() * 65536 + (upper() & 0xFFFF)); }
};

struct Coefficients {
    V::Bytes ys, rv, gv, gu, bu;
    V::Bytes r, g, b; // what the sums start from

    [[gnu::always_inline]] explicit Coefficients(const ToRgbRow& k) {
        const Coefficient luma(k.ys);
        const Coefficient redCr(k.rv);
        const Coefficient greenCr(-k.gv);
        const Coefficient greenCb(-k.gu);
        const Coefficient blueCb(k.bu);
        ys = luma.words();
        rv = redCr.words();
        gv = greenCr.words();
        gu = greenCb.words();
        bu = blueCb.words();
        const int start = kBias - k.yo * luma.value - luma.excess();
        r = V::repeat32(start - redCr.centredExcess());
        g = V::repeat32(start - greenCr.centredExcess() - greenCb.centredExcess());
        b = V::repeat32(start - blueCb.centredExcess());
    }
};

// 16-bit words, not yet limited, with kFractionBits behind the point.
struct Block {
    V::Bytes r, g, b;
};

template <Samples8 kSource>
[[gnu::always_inline]] inline Block convert(const Samples<kSource>& s, const Coefficients& k) {
    const V::Bytes r = V::dot(k.r, s.cr, k.rv);
    const V::Bytes g = V::dot(V::dot(k.g, s.cr, k.gv), s.cb, k.gu);
    const V::Bytes b = V::dot(k.b, s.cb, k.bu);
    const V::Bytes even = V::dot(s.even, k.ys);
    const V::Bytes odd = V::dot(s.odd, k.ys);
    return {V::zipUpperHalves(V::add32(r, even), V::add32(r, odd)),
            V::zipUpperHalves(V::add32(g, even), V::add32(g, odd)),
            V::zipUpperHalves(V::add32(b, even), V::add32(b, odd))};
}

[[gnu::always_inline]] inline V::Bytes limited(V::Bytes words) {
    return V::max16(V::min16(words, V::repeat16((256 << kFractionBits) - 1)), V::repeat16(0));
}

// The highest bits of the limited words are moved to their places in the pixel.
template <Rgb8 kFormat>
[[gnu::always_inline]] inline void storeWords(std::uint8_t* dst, const Block& block) {
    constexpr bool kBlueFirst = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Bgr555;
    constexpr bool k565 = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Rgb565;
    constexpr int kTop = 8 + kFractionBits;
    const V::Bytes first = V::left16<(k565 ? 16 : 15) - kTop>(limited(kBlueFirst ? block.b : block.r));
    const V::Bytes g = V::right16<kTop - (k565 ? 11 : 10)>(limited(block.g));
    const V::Bytes last = V::right16<kTop - 5>(limited(kBlueFirst ? block.r : block.b));
    const V::Bytes twoOfThem = V::orMasked(last, g, V::repeat16(k565 ? 0x07E0 : 0x03E0));
    V::store(dst, V::orMasked(twoOfThem, first, V::repeat16(k565 ? 0xF800 : 0x7C00)));
}

template <Rgb8 kFormat>
[[gnu::always_inline]] inline void storeBlock(std::uint8_t* dst, const Block& block) {
    if constexpr (bytesPerPixel(kFormat) == 2) {
        storeWords<kFormat>(dst, block);
    } else {
        const V::Bytes r = V::rightSigned16<kFractionBits>(block.r);
        const V::Bytes g = V::rightSigned16<kFractionBits>(block.g);
        const V::Bytes b = V::rightSigned16<kFractionBits>(block.b);
        storeComponents<kFormat>(dst, r, g, b);
    }
}

template <Samples8 kSource, Rgb8 kFormat>
[[gnu::always_inline]] inline void convertBlock(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb,
                                                const std::uint8_t* cr, const Coefficients& k) {
    storeBlock<kFormat>(dst, convert(Samples<kSource>(y, cb, cr), k));
}

// The rest of a row, a block at most: its samples, and no byte beyond them, are copied to where a block can be read.
template <Samples8 kSource, Rgb8 kFormat>
void convertRest(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                 std::size_t pairs, const Coefficients& k) {
    using S = Samples<kSource>;
    std::uint8_t luma[V::kBytes] = {};
    std::uint8_t first[V::kBytes] = {};
    std::uint8_t second[V::kBytes] = {};
    std::uint8_t out[V::kBytes / 2 * bytesPerPixel(kFormat)];
    if constexpr (S::kPacked) {
        constexpr unsigned kChroma = S::kGroup.cb < S::kGroup.cr ? S::kGroup.cb : S::kGroup.cr;
        __builtin_memcpy(luma + S::kGroup.y, y, 4 * pairs - 1);
        __builtin_memcpy(first + kChroma, kChroma == S::kGroup.cb ? cb : cr, 4 * pairs - 1);
        convertBlock<kSource, kFormat>(out, luma + S::kGroup.y, first + S::kGroup.cb, first + S::kGroup.cr, k);
    } else {
        __builtin_memcpy(luma, y, 2 * pairs);
        __builtin_memcpy(first, cb, S::kChromaBytes * pairs);
        if constexpr (kSource == Samples8::Planar) __builtin_memcpy(second, cr, pairs);
        convertBlock<kSource, kFormat>(out, luma, first, second, k);
    }
    __builtin_memcpy(dst, out, 2 * pairs * bytesPerPixel(kFormat));
}

template <Samples8 kSource, Rgb8 kFormat>
void toRgb(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pairs,
           const ToRgbRow& row) {
    using S = Samples<kSource>;
    const Coefficients k(row);
    // Where luma and chroma of a packed row belong to different groups, the last group of one may end in a byte that
    // is not the row's; the last pairs are then left to the careful end.
    const bool apart = S::kPacked && y - S::kGroup.y != cb - S::kGroup.cb;
    const std::size_t careful = apart ? 1 : 0;
    while (pairs >= S::kPairs + careful) {
        // Where the source is half of what moves, the processor by itself does not look early enough for it.
        if constexpr (bytesPerPixel(kFormat) == 2) __builtin_prefetch(y + 4096);
        convertBlock<kSource, kFormat>(dst, y, cb, cr, k);
        dst += 2 * S::kPairs * bytesPerPixel(kFormat);
        y += S::kPairs * S::kLumaBytes;
        cb += S::kPairs * S::kChromaBytes;
        cr += S::kPairs * S::kChromaBytes;
        pairs -= S::kPairs;
    }
    if (pairs != 0) convertRest<kSource, kFormat>(dst, y, cb, cr, pairs, k);
}

template <Samples8 kSource, std::size_t... kFormats>
void overwriteSource(ToRgb8Kernels& kernels, std::index_sequence<kFormats...> /*formats*/) {
    kernels.toRgb[static_cast<unsigned>(kSource)] = {toRgb<kSource, static_cast<Rgb8>(kFormats)>...};
}

void overwrite(ToRgb8Kernels& kernels) {
    constexpr std::make_index_sequence<kRgb8s> kFormats;
    overwriteSource<Samples8::Yuy2>(kernels, kFormats);
    overwriteSource<Samples8::Yvyu>(kernels, kFormats);
    overwriteSource<Samples8::Uyvy>(kernels, kFormats);
    overwriteSource<Samples8::Planar>(kernels, kFormats);
    overwriteSource<Samples8::BiPlanar>(kernels, kFormats);
}

} // namespace
