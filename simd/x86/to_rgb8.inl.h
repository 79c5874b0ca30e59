// 8-bit YCbCr to RGB of 8-bit precision, for the integer arithmetic of scale 10000.
//
// The integers are computed in single precision. With the coefficients divided by 10000, luma plus offset is formed
// once and the chroma products are added to it; the offset carries 0.00005, half of the smallest step between two sums,
// so that rounding cannot carry a sum across a whole number. Truncated and limited to 0..255 the result is that of the
// integers for every luma, Cb and Cr and every row of coefficients, whether or not products are rounded on their own;
// the tests try them all. Truncation and the integer quotient differ below zero only in ways that the limit hides.
//
// A block is as many pixels as half a vector has bytes. The samples of a block are brought into lanes of eight pixels;
// the unit of arithmetic is then half a lane, pixels 0 to 3 or 4 to 7 of each, so that nothing crosses lanes before the
// store. Luma is expanded into the lowest byte of a 32-bit integer. Chroma, its top bit inverted to make it signed,
// goes into the highest, which saves the shift: the factor 2^24 is divided out of the coefficients, exactly.
namespace {

template <Source8 kSource>
struct Samples {
    static constexpr bool kPacked = kSource < Source8::Packed;
    static constexpr Group kGroup = kGroups[kPacked ? static_cast<unsigned>(kSource) : 0];
    static constexpr std::size_t kPairs = V::kBytes / 4;
    static constexpr std::size_t kLumaBytes = kPacked ? 4 : 2; // a pair
    static constexpr std::size_t kChromaBytes = kPacked ? 4 : kSource == Source8::Planar ? 1 : 2;

    // Where a lane holds the luma of a pixel and the chroma of a pair.
    static constexpr unsigned yAt(unsigned pixel) { return kPacked ? kGroup.y + 2 * pixel : pixel; }
    static constexpr unsigned cbAt(unsigned pair) {
        return kPacked ? kGroup.cb + 4 * pair : kSource == Source8::Planar ? 8 + pair : 8 + 2 * pair;
    }
    static constexpr unsigned crAt(unsigned pair) {
        return kPacked ? kGroup.cr + 4 * pair : kSource == Source8::Planar ? 12 + pair : 9 + 2 * pair;
    }

    V::Bytes luma;
    V::Bytes chroma;

    [[gnu::always_inline]] Samples(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr) {
        if constexpr (kPacked) {
            luma = V::load(y - kGroup.y);
            chroma = V::load(cb - kGroup.cb);
        } else if constexpr (kSource == Source8::Planar) {
            luma = chroma = V::deal(y, cb, cr);
        } else {
            luma = chroma = V::deal(y, cb);
        }
        chroma = V::bitXor(chroma, V::repeat8(0x80));
    }
};

// The shuffles that expand four pixels of each lane into 32-bit integers.
template <Source8 kSource, unsigned kUnit>
struct Expand {
    std::uint8_t y[16]{};
    std::uint8_t cb[16]{};
    std::uint8_t cr[16]{};

    constexpr Expand() {
        using S = Samples<kSource>;
        for (unsigned i = 0; i < 16; ++i) {
            const unsigned pixel = 4 * kUnit + i / 4;
            y[i] = static_cast<std::uint8_t>(i % 4 == 0 ? S::yAt(pixel) : 0x80);
            cb[i] = static_cast<std::uint8_t>(i % 4 == 3 ? S::cbAt(pixel / 2) : 0x80);
            cr[i] = static_cast<std::uint8_t>(i % 4 == 3 ? S::crAt(pixel / 2) : 0x80);
        }
    }
};

struct Coefficients {
    V::Floats base, ys, rv, gv, gu, bu;

    [[gnu::always_inline]] explicit Coefficients(const ToRgbRow& k) {
        constexpr float kChroma = 1.0F / 16777216;
        constexpr double kHalfStep = 0.00005;
        base = V::repeatFloat(static_cast<float>(kHalfStep - k.yo * k.ys / 10000.0));
        ys = V::repeatFloat(static_cast<float>(k.ys) / 10000);
        rv = V::repeatFloat(static_cast<float>(k.rv) / 10000 * kChroma);
        gv = V::repeatFloat(static_cast<float>(-k.gv) / 10000 * kChroma);
        gu = V::repeatFloat(static_cast<float>(-k.gu) / 10000 * kChroma);
        bu = V::repeatFloat(static_cast<float>(k.bu) / 10000 * kChroma);
    }
};

// Four pixels of each lane, 32-bit integers that are not yet limited.
struct Unit {
    V::Bytes r, g, b;
};

template <Source8 kSource, unsigned kUnit>
[[gnu::always_inline]] inline Unit convertUnit(const Samples<kSource>& s, const Coefficients& k) {
    static constexpr Expand<kSource, kUnit> kExpand;
    const V::Floats y = V::toFloat(V::shuffle(s.luma, V::repeat(kExpand.y)));
    const V::Floats cb = V::toFloat(V::shuffle(s.chroma, V::repeat(kExpand.cb)));
    const V::Floats cr = V::toFloat(V::shuffle(s.chroma, V::repeat(kExpand.cr)));
    const V::Floats luma = V::multiplyAdd(y, k.ys, k.base);
    return {V::truncate(V::multiplyAdd(cr, k.rv, luma)),
            V::truncate(V::multiplyAdd(cb, k.gu, V::multiplyAdd(cr, k.gv, luma))),
            V::truncate(V::multiplyAdd(cb, k.bu, luma))};
}

// Bytes of four components into pixels of 32 bits, and those of 24 with the fourth one dropped.
template <bool k24>
[[gnu::always_inline]] inline void storeBytes(std::uint8_t* dst, V::Bytes c0, V::Bytes c1, V::Bytes c2, V::Bytes c3) {
    const V::Bytes c02 = V::packUnsigned16(c0, c2);
    const V::Bytes c13 = V::packUnsigned16(c1, c3);
    const V::Bytes low = V::zipLow8(c02, c13);
    const V::Bytes high = V::zipHigh8(c02, c13);
    if constexpr (k24) {
        V::storeLanesOf3(dst, V::zipLow16(low, high), V::zipHigh16(low, high));
    } else {
        V::storeLanes(dst, V::zipLow16(low, high), V::zipHigh16(low, high));
    }
}

[[gnu::always_inline]] inline V::Bytes limitedWords(V::Bytes low, V::Bytes high) {
    return V::minUnsigned16(V::packUnsigned32(low, high), V::repeat16(255));
}

template <Rgb8 kFormat>
[[gnu::always_inline]] inline void storeWords(std::uint8_t* dst, const Unit& low, const Unit& high) {
    const V::Bytes r = limitedWords(low.r, high.r);
    const V::Bytes g = limitedWords(low.g, high.g);
    const V::Bytes b = limitedWords(low.b, high.b);
    constexpr bool kBlueFirst = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Bgr555;
    constexpr bool k565 = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Rgb565;
    const V::Bytes top = V::left16 < k565 ? 8 : 7 > (V::bitAnd(kBlueFirst ? b : r, V::repeat16(0xF8)));
    const V::Bytes middle = V::left16 < k565 ? 3 : 2 > (V::bitAnd(g, V::repeat16(k565 ? 0xFC : 0xF8)));
    V::store(dst, V::bitOr(V::bitOr(top, middle), V::right16<3>(kBlueFirst ? r : b)));
}

template <Rgb8 kFormat>
[[gnu::always_inline]] inline void storeBlock(std::uint8_t* dst, const Unit& low, const Unit& high) {
    if constexpr (bytesPerPixel(kFormat) == 2) {
        storeWords<kFormat>(dst, low, high);
    } else {
        const V::Bytes r = V::packSigned32(low.r, high.r);
        const V::Bytes g = V::packSigned32(low.g, high.g);
        const V::Bytes b = V::packSigned32(low.b, high.b);
        const V::Bytes a = V::repeat16(255);
        if constexpr (kFormat == Rgb8::Bgra) storeBytes<false>(dst, b, g, r, a);
        if constexpr (kFormat == Rgb8::Abgr) storeBytes<false>(dst, a, b, g, r);
        if constexpr (kFormat == Rgb8::Rgba) storeBytes<false>(dst, r, g, b, a);
        if constexpr (kFormat == Rgb8::Argb) storeBytes<false>(dst, a, r, g, b);
        if constexpr (kFormat == Rgb8::Bgr) storeBytes<true>(dst, b, g, r, a);
        if constexpr (kFormat == Rgb8::Rgb) storeBytes<true>(dst, r, g, b, a);
    }
}

template <Source8 kSource, Rgb8 kFormat>
[[gnu::always_inline]] inline void convertBlock(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb,
                                                const std::uint8_t* cr, const Coefficients& k) {
    const Samples<kSource> samples(y, cb, cr);
    storeBlock<kFormat>(dst, convertUnit<kSource, 0>(samples, k), convertUnit<kSource, 1>(samples, k));
}

// The rest of a row, a block at most: its samples, and no byte beyond them, are copied to where a block can be read.
template <Source8 kSource, Rgb8 kFormat>
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
        if constexpr (kSource == Source8::Planar) __builtin_memcpy(second, cr, pairs);
        convertBlock<kSource, kFormat>(out, luma, first, second, k);
    }
    __builtin_memcpy(dst, out, 2 * pairs * bytesPerPixel(kFormat));
}

template <Source8 kSource, Rgb8 kFormat>
void toRgb(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pairs,
           const ToRgbRow& row) {
    using S = Samples<kSource>;
    const Coefficients k(row);
    // Where luma and chroma of a packed row belong to different groups, the last group of one may end in a byte that
    // is not the row's; the last pairs are then left to the careful end.
    const bool apart = S::kPacked && y - S::kGroup.y != cb - S::kGroup.cb;
    const std::size_t careful = apart ? 1 : 0;
    while (pairs >= S::kPairs + careful) {
        convertBlock<kSource, kFormat>(dst, y, cb, cr, k);
        dst += 2 * S::kPairs * bytesPerPixel(kFormat);
        y += S::kPairs * S::kLumaBytes;
        cb += S::kPairs * S::kChromaBytes;
        cr += S::kPairs * S::kChromaBytes;
        pairs -= S::kPairs;
    }
    if (pairs != 0) convertRest<kSource, kFormat>(dst, y, cb, cr, pairs, k);
}

template <Source8 kSource, std::size_t... kFormats>
void overwriteSource(ToRgb8Kernels& kernels, std::index_sequence<kFormats...> /*formats*/) {
    kernels.toRgb[static_cast<unsigned>(kSource)] = {toRgb<kSource, static_cast<Rgb8>(kFormats)>...};
}

void overwrite(ToRgb8Kernels& kernels) {
    constexpr std::make_index_sequence<kRgb8s> kFormats;
    overwriteSource<Source8::Yuy2>(kernels, kFormats);
    overwriteSource<Source8::Yvyu>(kernels, kFormats);
    overwriteSource<Source8::Uyvy>(kernels, kFormats);
    overwriteSource<Source8::Planar>(kernels, kFormats);
    overwriteSource<Source8::BiPlanar>(kernels, kFormats);
}

} // namespace
