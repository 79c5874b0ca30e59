// v210 to RGB without rows of samples in between, for vectors that take bytes from any place.
//
// A block is 32 pixels, 16 pairs: their Cb and Cr, those of the pairs behind them, and the luma of both pixels are
// words in the order of the pairs. Sums of the even and of the odd pixels are formed and divided as in
// simd/x86/to_rgb_deep.inl.h.
//
// A word of chroma is 1023 less the sample, which costs no more than the sample: the one instruction there is for
// averages rounds up, and so it rounds samples down.

// Two words of every pair of a block: which bytes they are taken from, and how far right they then are.
template <class Vector>
struct Taking {
    alignas(Vector::kBytes) std::uint8_t from[Vector::kBytes]{};
    alignas(Vector::kBytes) std::uint8_t right[Vector::kBytes]{}; // words

    // The components that the first pair's are, from the start of the piece.
    constexpr Taking(std::size_t block, unsigned first, unsigned second) {
        const std::size_t start = kComponents * block / 3;
        for (unsigned pair = 0; pair < Vector::kBytes / 4; ++pair) {
            word(2 * pair, kComponents * block + 4 * pair + first, start);
            word(2 * pair + 1, kComponents * block + 4 * pair + second, start);
        }
    }

    static constexpr std::size_t kComponents = Vector::kBytes; // of a block
    // Where the second vector begins behind the first one, so that it ends with the next pair's Cr.
    static constexpr std::size_t kSecond = 28;

private:
    constexpr void word(unsigned at, std::size_t component, std::size_t start) {
        for (unsigned i = 0; i < 2; ++i) {
            const std::size_t byte = 4 * (component / 3 - start) + component % 3 + i;
            from[2 * at + i] =
                static_cast<std::uint8_t>(byte < Vector::kBytes ? byte : byte - kSecond + Vector::kBytes);
        }
        right[2 * at] = static_cast<std::uint8_t>(2 * (component % 3));
    }
};

// Of each block of a piece, which are 64 words of v210.
template <class Vector>
constexpr Taking<Vector> kChroma[3] = {{0, 0, 2}, {1, 0, 2}, {2, 0, 2}};
template <class Vector>
constexpr Taking<Vector> kNextChroma[3] = {{0, 4, 6}, {1, 4, 6}, {2, 4, 6}};
template <class Vector>
constexpr Taking<Vector> kLumaOfPairs[3] = {{0, 1, 3}, {1, 1, 3}, {2, 1, 3}};

template <class Vector, Division kDivision, class Result>
struct FromV210 {
    using Bytes = typename Vector::Bytes;

    Coefficients<kDivision> k;
    Bytes red, green, blue; // for chroma
    Bytes even, odd;        // for luma
    Bytes r, g, b;          // what the sums start from

    [[gnu::always_inline]] explicit FromV210(const DeepRow& row) : k(row, Result::kMostQuotient) {
        const ToRgbRow& c = row.k;
        red = Vector::repeat32(-c.rv * 65536);
        green = Vector::repeat32(c.gv * 65536 + (c.gu & 0xFFFF));
        blue = Vector::repeat32(-c.bu & 0xFFFF);
        even = Vector::repeat32(c.ys);
        odd = Vector::repeat32(c.ys * 65536);
        r = Vector::add32(k.r.even, Vector::repeat32(kHighest * c.rv));
        g = Vector::add32(k.g.even, Vector::repeat32(-kHighest * (c.gu + c.gv)));
        b = Vector::add32(k.b.even, Vector::repeat32(kHighest * c.bu));
    }

    template <std::size_t kNumber>
    [[gnu::always_inline]] Block block(const std::uint8_t* piece) const {
        const std::uint8_t* const start = piece + Taking<Vector>::kComponents * kNumber / 3 * 4;
        const Bytes highest = Vector::repeat16(kHighest);
        const Bytes own = Vector::bitAndNot(highest, taken(start, kChroma<Vector>[kNumber]));
        const Bytes next = Vector::bitAndNot(highest, taken(start, kNextChroma<Vector>[kNumber]));
        const Bytes luma = Vector::bitAnd(highest, taken(start, kLumaOfPairs<Vector>[kNumber]));
        const Bytes between = Vector::averageUp16(own, next);
        const Halves y{Vector::dot(luma, even), Vector::dot(luma, odd)};
        const Bytes redOfBoth = Vector::dot(r, own, red);
        return {divided(y, redOfBoth, redOfBoth),
                divided(y, Vector::dot(g, own, green), Vector::dot(g, between, green)),
                divided(y, Vector::dot(b, own, blue), Vector::dot(b, between, blue))};
    }

private:
    static constexpr int kHighest = 1023;

    [[gnu::always_inline]] static Bytes taken(const std::uint8_t* start, const Taking<Vector>& taking) {
        const Bytes words = Vector::permute8(Vector::load(start), Vector::load(start + Taking<Vector>::kSecond),
                                             Vector::load(taking.from));
        return Vector::rightEach16(words, Vector::load(taking.right));
    }
    [[gnu::always_inline]] Bytes divided(const Halves& y, Bytes evenChroma, Bytes oddChroma) const {
        return Result::divided(Halves{Vector::add32(y.even, evenChroma), Vector::add32(y.odd, oddChroma)}, k);
    }
};

// Quotients with 8 bits in the upper bytes of words, limited as they are packed, and in the lower ones what they would
// go on with. The order is that of V::packUnsigned32().
struct ToUpperBytes {
    static constexpr std::int64_t kMostQuotient = ToBytes::kMostQuotient;

    [[gnu::always_inline]] static V::Bytes divided(const Halves& sums, const Coefficients<Division::OfBits>& k) {
        const float factor = k.factor * 256;
        return V::packUnsigned32(V::scaleBits32(sums.even, factor), V::scaleBits32(sums.odd, factor));
    }
};

// Pixels of 15 and 16 bits from those.
template <Rgb8 kFormat>
struct PixelsOfUpperBytes {
    std::uint8_t* dst;

    [[gnu::always_inline]] void store(std::size_t x, const Block& block) const {
        constexpr bool kBlueFirst = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Bgr555;
        constexpr bool k565 = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Rgb565;
        const V::Bytes first = V::right16 < k565 ? 0 : 1 > (kBlueFirst ? block.b : block.r);
        const V::Bytes last = V::right16<11>(kBlueFirst ? block.r : block.b);
        const V::Bytes twoOfThem =
            V::orMasked(last, V::right16 < k565 ? 5 : 6 > (block.g), V::repeat16(k565 ? 0x07E0 : 0x03E0));
        const V::Bytes pixels = V::orMasked(twoOfThem, first, V::repeat16(k565 ? 0xF800 : 0x7C00));
        V::store(dst + 2 * x, V::shuffle(pixels, V::repeat(kInTurn)));
    }
};

template <Rgb8 kFormat>
void storeRest(const PixelsOfUpperBytes<kFormat>& to, std::size_t x, const Block& block, std::size_t pixels) {
    std::uint8_t rest[2 * kBlock];
    PixelsOfUpperBytes<kFormat>{rest}.store(0, block);
    __builtin_memcpy(to.dst + 2 * x, rest, 2 * pixels);
}

// A block of a piece that has but `pixels` pixels, which are from number x on of the row.
template <std::size_t kNumber, class Arithmetic, class Out>
[[gnu::always_inline]] inline void convertInRest(const Arithmetic& arithmetic, const Out& out,
                                                 const std::uint8_t* piece, std::size_t x, std::size_t pixels) {
    constexpr std::size_t kFirst = kNumber * kBlock;
    if (pixels <= kFirst) return;
    const Block block = arithmetic.template block<kNumber>(piece);
    if (pixels < kFirst + kBlock) {
        storeRest(out, x + kFirst, block, pixels - kFirst);
    } else {
        out.store(x + kFirst, block);
    }
}

template <class Arithmetic, class Out>
[[gnu::always_inline]] inline void convertRest(const Arithmetic& arithmetic, const Out& out, const std::uint8_t* src,
                                               std::size_t x, std::size_t pixels) {
    const std::size_t next = pixels % kV210GroupPixels != 0 ? kV210GroupBytes : 4;
    std::uint8_t piece[kV210PieceBytes + 4] = {};
    __builtin_memcpy(piece, src, pixels / kV210GroupPixels * kV210GroupBytes + next);
    convertInRest<0>(arithmetic, out, piece, x, pixels);
    convertInRest<1>(arithmetic, out, piece, x, pixels);
    convertInRest<2>(arithmetic, out, piece, x, pixels);
}

template <class Arithmetic, class Out>
void convertPieces(const Out out, const std::uint8_t* src, std::size_t pixels, const DeepRow& row) {
    const Arithmetic arithmetic(row);
    std::size_t x = 0;
    for (; x + kV210PiecePixels <= pixels; x += kV210PiecePixels) {
        out.store(x, arithmetic.template block<0>(src));
        out.store(x + kBlock, arithmetic.template block<1>(src));
        out.store(x + 2 * kBlock, arithmetic.template block<2>(src));
        src += kV210PieceBytes;
    }
    if (x < pixels) convertRest(arithmetic, out, src, x, pixels - x);
}

template <class Vector, class Out>
[[gnu::always_inline]] inline void piecesToBytes(const Out& out, const std::uint8_t* src, std::size_t pixels,
                                                 const DeepRow& row) {
    switch (divisionToBytes(row)) {
    case Division::LessTwoBits:
        return convertPieces<FromV210<Vector, Division::LessTwoBits, ToBytes>>(out, src, pixels, row);
    case Division::OfIntegers:
        return convertPieces<FromV210<Vector, Division::OfIntegers, ToBytes>>(out, src, pixels, row);
    case Division::OfBits:
        return convertPieces<FromV210<Vector, Division::OfBits, ToBytes>>(out, src, pixels, row);
    }
}

template <class Vector, class Out>
[[gnu::always_inline]] inline void piecesToWords(const Out& out, const std::uint8_t* src, std::size_t pixels,
                                                 const DeepRow& row) {
    if (divisionToWords(row) == Division::LessTwoBits) {
        return convertPieces<FromV210<Vector, Division::LessTwoBits, ToWords>>(out, src, pixels, row);
    }
    convertPieces<FromV210<Vector, Division::OfIntegers, ToWords>>(out, src, pixels, row);
}

template <class Vector, Rgb8 kFormat, Writes kWrites>
void v210ToRgb8(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const DeepRow& row) {
    if constexpr (bytesPerPixel(kFormat) == 2) {
        if (divisionToBytes(row) == Division::OfBits) {
            using Arithmetic = FromV210<Vector, Division::OfBits, ToUpperBytes>;
            return convertPieces<Arithmetic>(PixelsOfUpperBytes<kFormat>{dst}, src, pixels, row);
        }
    }
    piecesToBytes<Vector>(Pixels<Store8<kFormat>, kWrites>{dst}, src, pixels, row);
}

template <class Vector, Rgb16 kFormat, Writes kWrites>
void v210ToRgb16(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const DeepRow& row) {
    piecesToWords<Vector>(Pixels<Store16<kFormat>, kWrites>{dst}, src, pixels, row);
}

template <class Vector>
void v210ToWordPlanes(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* src, std::size_t pixels,
                      const DeepRow& row) {
    piecesToWords<Vector>(WordPlanes{r, g, b, V::repeat16(static_cast<int>(row.max))}, src, pixels, row);
}

template <class Vector, std::size_t... kFormats8, std::size_t... kFormats16>
void overwriteFromV210(V210ToRgbKernels& kernels, std::index_sequence<kFormats8...> /*formats*/,
                       std::index_sequence<kFormats16...> /*formats*/) {
    if constexpr (Vector::kBytes == 64) {
        kernels = {v210ToWordPlanes<Vector>,
                   {v210ToRgb8<Vector, static_cast<Rgb8>(kFormats8), Writes::ToCache>...},
                   {v210ToRgb16<Vector, static_cast<Rgb16>(kFormats16), Writes::ToCache>...},
                   {v210ToRgb8<Vector, static_cast<Rgb8>(kFormats8), kPast8<static_cast<Rgb8>(kFormats8)>>...},
                   {v210ToRgb16<Vector, static_cast<Rgb16>(kFormats16), kPast16<static_cast<Rgb16>(kFormats16)>>...}};
    }
}
