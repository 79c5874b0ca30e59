// v210 to RGB without rows of samples in between, for vectors that take bytes from any place and from any bit.
//
// A vector has 16 pixels, eight pairs, in their order. The eight bytes from where a pair's Cb begins reach as far as
// the next pair's Cb, and those from where its Cr begins as far as the next pair's Cr. From these words are taken: a
// pixel's luma with its pair's chroma, and with what an odd pixel averages that with.
//
// A word is 1023 less the sample, which costs no more than the sample: the one instruction there is for averages rounds
// up, and so it rounds samples down. Sums and quotients are those of simd/x86/to_rgb_deep.inl.h.

// Which bytes eight pairs are taken from, and from which bit of eight bytes each byte of a word is.
template <class Vector>
struct Taking {
    alignas(Vector::kBytes) std::uint8_t fromCb[Vector::kBytes]{};
    alignas(Vector::kBytes) std::uint8_t fromCr[Vector::kBytes]{};
    alignas(Vector::kBytes) std::uint8_t cb[Vector::kBytes]{};
    alignas(Vector::kBytes) std::uint8_t nextCb[Vector::kBytes]{};
    alignas(Vector::kBytes) std::uint8_t cr[Vector::kBytes]{};
    alignas(Vector::kBytes) std::uint8_t nextCr[Vector::kBytes]{};

    // The first component is that number `field` of its 32-bit word.
    constexpr explicit Taking(unsigned field) {
        for (unsigned pair = 0; pair < Vector::kBytes / 8; ++pair) {
            const unsigned c = field + 4 * pair;
            const unsigned cbByte = bit(c) / 8;
            const unsigned crByte = bit(c + 2) / 8;
            for (unsigned i = 0; i < 8; ++i) {
                fromCb[8 * pair + i] = static_cast<std::uint8_t>(cbByte + i);
                fromCr[8 * pair + i] = static_cast<std::uint8_t>(crByte + i);
            }
            words(cb + 8 * pair, cbByte, {c + 1, c, c + 3, c});
            words(nextCb + 8 * pair, cbByte, {c + 1, c, c + 3, c + 4});
            words(cr + 8 * pair, cbByte, {c + 1, c + 2, c + 3, c + 2});
            words(nextCr + 8 * pair, crByte, {c + 2, c + 2, c + 2, c + 6}); // without luma
        }
    }

private:
    static constexpr unsigned bit(unsigned component) { return component / 3 * 32 + component % 3 * 10; }
    static constexpr void words(std::uint8_t* at, unsigned byte, const unsigned (&components)[4]) {
        for (unsigned i = 0; i < 4; ++i) {
            at[2 * i] = static_cast<std::uint8_t>(bit(components[i]) - 8 * byte);
            at[2 * i + 1] = static_cast<std::uint8_t>(at[2 * i] + 8);
        }
    }
};

// Of a piece of 96 pixels, or 64 words of v210, every vector begins within word 32 i / 3.
template <class Vector>
constexpr Taking<Vector> kTaking[3] = {Taking<Vector>(0), Taking<Vector>(2), Taking<Vector>(1)};

template <class Vector, Division kDivision, class Result>
struct FromV210 {
    using Bytes = typename Vector::Bytes;

    Coefficients<kDivision> k;
    Bytes red, greenCb, greenCr, blue; // for luma and chroma
    Bytes r, g, b;                     // what the sums start from

    [[gnu::always_inline]] explicit FromV210(const DeepRow& row) : k(row, Result::kMostQuotient) {
        const ToRgbRow& c = row.k;
        red = Vector::repeat32(-c.rv * 65536 + (-c.ys & 0xFFFF));
        greenCb = Vector::repeat32(c.gu * 65536 + (-c.ys & 0xFFFF));
        greenCr = Vector::repeat32(c.gv * 65536);
        blue = Vector::repeat32(-c.bu * 65536 + (-c.ys & 0xFFFF));
        r = Vector::add32(k.r.even, Vector::repeat32(kHighest * (c.ys + c.rv)));
        g = Vector::add32(k.g.even, Vector::repeat32(kHighest * (c.ys - c.gu - c.gv)));
        b = Vector::add32(k.b.even, Vector::repeat32(kHighest * (c.ys + c.bu)));
    }

    struct Sums {
        Bytes r, g, b;
    };

    template <unsigned kVector>
    [[gnu::always_inline]] Sums sums(const std::uint8_t* piece) const {
        constexpr std::size_t kAt = 32 * kVector / 3 * 4;
        constexpr std::size_t kReach = kV210PieceBytes + 4 - kAt; // as far as the next pair's samples
        const Taking<Vector>& taking = kTaking<Vector>[kVector % 3];
        Bytes bytes;
        if constexpr (kReach < Vector::kBytes) {
            bytes = Vector::load(piece + kAt, kReach);
        } else {
            bytes = Vector::load(piece + kAt);
        }
        const Bytes fromCb = Vector::permute8(bytes, Vector::load(taking.fromCb));
        const Bytes fromCr = Vector::permute8(bytes, Vector::load(taking.fromCr));
        const Bytes ownCb = words(fromCb, taking.cb);
        const Bytes ownCr = words(fromCb, taking.cr);
        const Bytes cb = Vector::averageUp16(ownCb, words(fromCb, taking.nextCb));
        const Bytes cr = Vector::averageUp16(ownCr, words(fromCr, taking.nextCr));
        return {Vector::dot(r, ownCr, red), Vector::dot(Vector::dot(g, cb, greenCb), cr, greenCr),
                Vector::dot(b, cb, blue)};
    }

    // The pixels of the vectors kVector and kVector + 1.
    template <unsigned kVector>
    [[gnu::always_inline]] Block block(const std::uint8_t* piece) const {
        const Sums first = sums<kVector>(piece);
        const Sums second = sums<kVector + 1>(piece);
        return {Result::dividedPixels(first.r, second.r, k), Result::dividedPixels(first.g, second.g, k),
                Result::dividedPixels(first.b, second.b, k)};
    }

private:
    static constexpr int kHighest = 1023;

    [[gnu::always_inline]] static Bytes words(Bytes v, const std::uint8_t (&fromBits)[Vector::kBytes]) {
        return Vector::bitAndNot(Vector::repeat16(kHighest), Vector::bytesFromBits(v, Vector::load(fromBits)));
    }
};

// Quotients with 8 bits in the upper bytes of words, limited as they are packed, and in the lower ones what they would
// go on with. The order is that of V::packUnsigned32().
struct ToUpperBytes {
    static constexpr std::int64_t kMostQuotient = ToBytes::kMostQuotient;

    [[gnu::always_inline]] static V::Bytes dividedPixels(V::Bytes first, V::Bytes second,
                                                         const Coefficients<Division::OfBits>& k) {
        const float factor = k.factor * 256;
        return V::packUnsigned32(V::scaleBits32(first, factor), V::scaleBits32(second, factor));
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
        V::store(dst + 2 * x, V::inOrder(V::orMasked(twoOfThem, first, V::repeat16(k565 ? 0xF800 : 0x7C00))));
    }
};

template <Rgb8 kFormat>
void storeRest(const PixelsOfUpperBytes<kFormat>& to, std::size_t x, const Block& block, std::size_t pixels) {
    std::uint8_t rest[2 * kBlock];
    PixelsOfUpperBytes<kFormat>{rest}.store(0, block);
    __builtin_memcpy(to.dst + 2 * x, rest, 2 * pixels);
}

// The vectors kVector and kVector + 1 of a piece that has but `pixels` pixels, which are from number x on of the row.
template <unsigned kVector, class Arithmetic, class Out>
[[gnu::always_inline]] inline void convertInRest(const Arithmetic& arithmetic, const Out& out,
                                                 const std::uint8_t* piece, std::size_t x, std::size_t pixels) {
    constexpr std::size_t kFirst = kVector / 2 * kBlock;
    if (pixels <= kFirst) return;
    const Block block = arithmetic.template block<kVector>(piece);
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
    convertInRest<2>(arithmetic, out, piece, x, pixels);
    convertInRest<4>(arithmetic, out, piece, x, pixels);
}

template <class Arithmetic, class Out>
void convertPieces(const Out out, const std::uint8_t* src, std::size_t pixels, const DeepRow& row) {
    const Arithmetic arithmetic(row);
    std::size_t x = 0;
    for (; x + kV210PiecePixels <= pixels; x += kV210PiecePixels) {
        out.store(x, arithmetic.template block<0>(src));
        out.store(x + kBlock, arithmetic.template block<2>(src));
        out.store(x + 2 * kBlock, arithmetic.template block<4>(src));
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
