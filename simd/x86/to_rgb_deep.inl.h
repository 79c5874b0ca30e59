// 16-bit samples of YCbCr to rows of R, G and B words, for the integer arithmetic.
//
// Samples below 2^15 and the coefficients are 16-bit words with a sign, so the sums are formed exactly in 32-bit
// integers, from pairs of a luma and a chroma sample. A block with a higher sample is left to the portable kernel.
//
// The quotient is the sum as a float32, times the smallest float32 that is not below 1 / divisor, truncated. While
// sums do not exceed (max + 1) x divisor and that is at most 2^23.4, this is exact: the sum is a float32; a multiple of
// the divisor gives no less than its quotient, and one less than a multiple is 1 / divisor short of it, which is more
// than what the factor (a relative 2^-23) and the rounding of the product (2^-24) add. Higher sums stay above the
// limit. Below zero truncation may give 0 or less, and so does the limit. A product of max + 1 and divisor that is
// larger has a divisor that is a multiple of four, so two bits are dropped from the sum and from the divisor first.
namespace {

constexpr std::size_t kBlock = V::kBytes / 2;    // pixels
constexpr std::size_t kBlockChroma = kBlock / 2; // samples

constexpr std::uint64_t kMostExact = 11'000'000; // below 2^23.4

struct Coefficients {
    V::Bytes redY, greenY, blueY, greenCb; // a coefficient for luma in the lower word, for chroma in the upper
    V::Bytes r, g, b;                      // what the sums start from
    V::Bytes max;
    float factor;
    bool drop;

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
        drop = (std::uint64_t{row.max} + 1) * row.divisor > kMostExact;
        factor = notBelowInverse(drop ? row.divisor / 4 : row.divisor);
    }

private:
    static V::Bytes words(int luma, int chroma) { return V::repeat32(chroma * 65536 + (luma & 0xFFFF)); }

    static float notBelowInverse(std::uint32_t divisor) {
        const float nearest = 1.0F / static_cast<float>(divisor);
        // Exact: a float32 times a divisor of 17 bits.
        if (static_cast<double>(nearest) * divisor >= 1.0) return nearest;
        std::uint32_t bits;
        __builtin_memcpy(&bits, &nearest, sizeof bits);
        ++bits;
        float next;
        __builtin_memcpy(&next, &bits, sizeof next);
        return next;
    }
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

// Luma and chroma times their coefficients, added to `start`; with more of chroma added for G.
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

template <OddPixel kOdd, bool kDrop>
[[gnu::always_inline]] inline void convertBlock(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b,
                                                const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                                                const Coefficients& k, const DeepRow& row) {
    const V::Bytes luma = V::load(y);
    const BlockChroma u = loadChroma<kOdd>(cb);
    const BlockChroma v = loadChroma<kOdd>(cr);
    if (V::anyNegative16(V::bitOr(luma, V::bitOr(u.averaged, v.averaged)))) {
        kPortable.toWords[static_cast<unsigned>(kOdd)](r, g, b, y, cb, cr, kBlock, row);
        return;
    }
    const V::Bytes crOfRed = kOdd == OddPixel::AverageButRed ? v.own : v.averaged;
    V::store(r, component<kDrop>(k.r, luma, crOfRed, k.redY, k));
    V::store(g, green<kDrop>(luma, u.averaged, v.averaged, k));
    V::store(b, component<kDrop>(k.b, luma, u.averaged, k.blueY, k));
}

// The rest of a row, less than a block: its samples, and no byte beyond them, are copied to where a block can be read.
template <OddPixel kOdd, bool kDrop>
void convertRest(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
                 const std::uint8_t* cr, std::size_t pixels, const Coefficients& k, const DeepRow& row) {
    const std::size_t chromaBytes = 2 * (kOdd == OddPixel::Own ? (pixels + 1) / 2 : pixels / 2 + 1);
    std::uint8_t luma[V::kBytes] = {};
    std::uint8_t first[V::kBytes] = {};
    std::uint8_t second[V::kBytes] = {};
    std::uint8_t out[3][V::kBytes];
    __builtin_memcpy(luma, y, 2 * pixels);
    __builtin_memcpy(first, cb, chromaBytes);
    __builtin_memcpy(second, cr, chromaBytes);
    convertBlock<kOdd, kDrop>(out[0], out[1], out[2], luma, first, second, k, row);
    __builtin_memcpy(r, out[0], 2 * pixels);
    __builtin_memcpy(g, out[1], 2 * pixels);
    __builtin_memcpy(b, out[2], 2 * pixels);
}

template <OddPixel kOdd, bool kDrop>
void convertRow(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
                const std::uint8_t* cr, std::size_t pixels, const Coefficients& k, const DeepRow& row) {
    std::size_t x = 0;
    for (; x + kBlock <= pixels; x += kBlock) {
        convertBlock<kOdd, kDrop>(r + 2 * x, g + 2 * x, b + 2 * x, y + 2 * x, cb + x, cr + x, k, row);
    }
    if (x != pixels) {
        convertRest<kOdd, kDrop>(r + 2 * x, g + 2 * x, b + 2 * x, y + 2 * x, cb + x, cr + x, pixels - x, k, row);
    }
}

template <OddPixel kOdd>
void toWords(std::uint8_t* r, std::uint8_t* g, std::uint8_t* b, const std::uint8_t* y, const std::uint8_t* cb,
             const std::uint8_t* cr, std::size_t pixels, const DeepRow& row) {
    const Coefficients k(row);
    if (k.drop) {
        convertRow<kOdd, true>(r, g, b, y, cb, cr, pixels, k, row);
    } else {
        convertRow<kOdd, false>(r, g, b, y, cb, cr, pixels, k, row);
    }
}

void overwrite(ToRgbDeepKernels& kernels) {
    kernels.toWords = {toWords<OddPixel::Own>, toWords<OddPixel::Average>, toWords<OddPixel::AverageButRed>};
}

} // namespace
