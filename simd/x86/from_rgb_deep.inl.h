// RGB to 16-bit samples of YCbCr.
//
// Components are 16-bit words with a sign, and so are their coefficients. The sums are formed exactly in 32-bit
// integers that start from what rounding and the offset add, both times the divisor: what is left is to round
// downwards, since results below zero are 0. Only a sum below zero, which is to be truncated upwards, gets more.
//  - Components of 16 bits are taken less 2^15.
//  - Factors of two that a row has in common with its divisor are taken out of both. Coefficients that still exceed 16
//    bits are split in 32 times an upper part and a lower one, for components of 10 bits.
//  - Sums of 8-bit components are float32s as they are. Those of chroma start from zero, so that their conversion
//    truncates quotients towards it; the centre is added to them.
//  - To divide others, the divisor's other factors of two are shifted out of the sum, which leaves 625 or 15625. A
//    conversion to float32 that rounds towards zero spares the shift: of a sum within the limit it drops less than
//    those factors, of others not enough to bring them below it.
//  - For results of 12 bits at most the quotient is the sum as a float32, times 1 / divisor as one, truncated, exactly
//    as simd/x86/to_rgb_deep.inl.h explains: (max + 1) x divisor is below 2^24, and 1 / divisor is more than what the
//    factor and the rounding add. For 16 bits it is a product with the reciprocal in integers.
// The tests divide every sum by every divisor.
namespace {

#include "simd/x86/from_rgb_pixels.inl.h"

constexpr std::size_t kBlock = V::kBytes / 2; // pixels

// Two words of each pixel in every integer, and the others. Which components they are says positionOf(); in place of
// the fourth one that it does not have, a pixel of three 10-bit ones has the middle one times 32.
struct Words {
    V::Bytes first, second;
};

struct Block {
    Words even, odd; // pixels
};

template <RgbSource kSource>
[[gnu::always_inline]] inline Words wordsOf(V::Bytes pixels) {
    if constexpr (kSource == RgbSource::Three10) {
        Words words;
        V::splitTens(pixels, words.first, words.second);
        return words;
    } else {
        return {V::bitAnd(pixels, V::repeat32(0xFF00FF)), V::right16<8>(pixels)};
    }
}

template <RgbSource kSource>
[[gnu::always_inline]] inline Words wordsOf(V::Bytes first, V::Bytes second) {
    if constexpr (isUpper10(kSource)) return {V::right16<6>(first), V::right16<6>(second)};
    const V::Bytes top = V::repeat16(0x8000);
    return {V::bitXor(first, top), V::bitXor(second, top)};
}

template <RgbSource kSource>
[[gnu::always_inline]] inline Block loadBlock(const std::uint8_t* src) {
    if constexpr (isWide(kSource)) {
        const Pixels16 p = loadPixels16<bytesPerPixel(kSource)>(src);
        return {wordsOf<kSource>(p.even01, p.even23), wordsOf<kSource>(p.odd01, p.odd23)};
    } else {
        const Pixels8 p = loadPixels8<bytesPerPixel(kSource)>(src);
        return {wordsOf<kSource>(p.even), wordsOf<kSource>(p.odd)};
    }
}

// Where component `at` of a pixel is among the words: lower and upper of the first, lower and upper of the second.
template <RgbSource kSource>
unsigned positionOf(unsigned at) {
    return isWide(kSource) ? at : at % 2 * 2 + at / 2;
}

template <RgbSource kSource>
inline constexpr bool kSplit = isUpper10(kSource) || kSource == RgbSource::Three10;
template <RgbSource kSource>
inline constexpr bool kLessHalf = isWide(kSource) && !isUpper10(kSource);

// The factors of two that everything has in common, as a number of bits.
inline int commonBits(const FromRgbDeepRow& row) {
    std::uint32_t all = row.divisor;
    for (const RgbWeights& k : {row.k.y, row.k.cb, row.k.cr}) all |= static_cast<std::uint32_t>(k.r | k.g | k.b);
    return __builtin_ctz(all);
}

// How one of Y, Cb and Cr is made.
template <RgbSource kSource>
struct Sum {
    V::Bytes first, second; // coefficients
    V::Bytes firstUpper, secondUpper;
    V::Bytes start;
    V::Bytes zero;  // what a sum of zero comes to
    V::Bytes below; // what a sum below zero gets more

    [[gnu::always_inline]] Sum(const RgbWeights& k, const RgbOrder& order, std::int32_t offset,
                               const Rounding& rounding, std::uint32_t divisor, int common) {
        const auto unit = static_cast<std::int32_t>(divisor);
        int weights[4] = {};
        weights[positionOf<kSource>(order.r)] = k.r >> common;
        weights[positionOf<kSource>(order.g)] = k.g >> common;
        weights[positionOf<kSource>(order.b)] = k.b >> common;
        const int atZero = (offset * unit + rounding.up) >> common;
        const int belowZero = (offset * unit + unit - 1 - rounding.down) >> common;
        const int bias = kLessHalf<kSource> ? 32768 * (weights[0] + weights[1] + weights[2] + weights[3]) : 0;
        start = V::repeat32(atZero + bias);
        zero = V::repeat32(atZero);
        below = V::repeat32(belowZero - atZero);
        if constexpr (kSplit<kSource>) {
            first = words(weights[0] & 31, weights[1] & 31);
            second = words(weights[2] & 31, weights[3] & 31);
            firstUpper = words(weights[0] >> 5, weights[1] >> 5);
            secondUpper = words(weights[2] >> 5, weights[3] >> 5);
            if constexpr (kSource == RgbSource::Three10) second = words(weights[2] & 31, weights[2] >> 5);
        } else {
            first = words(weights[0], weights[1]);
            second = words(weights[2], weights[3]);
        }
    }

    [[gnu::always_inline]] V::Bytes of(const Words& w) const {
        const V::Bytes sum = V::dot(V::dot(start, w.first, first), w.second, second);
        if constexpr (!kSplit<kSource>) return sum;
        const V::Bytes more = V::dot(sum, V::left16<5>(w.first), firstUpper);
        if constexpr (kSource == RgbSource::Three10) return more;
        return V::dot(more, V::left16<5>(w.second), secondUpper);
    }
    // For sums that may be below zero; those of 8-bit components are truncated when they are divided.
    [[gnu::always_inline]] V::Bytes ofSigned(const Words& w) const {
        return isOf8(kSource) ? of(w) : V::addBelow32(of(w), zero, below);
    }

private:
    static V::Bytes words(int lower, int upper) {
        return V::repeat32(
            static_cast<int>(static_cast<unsigned>(upper) << 16 | (static_cast<unsigned>(lower) & 0xFFFF)));
    }
};

// How Y, Cb and Cr are made.
template <RgbSource kSource>
struct Sums {
    Sum<kSource> y, cb, cr;
    std::uint32_t divisor;
    int max;
    int centre;

    [[gnu::always_inline]] Sums(const RgbOrder& order, const FromRgbDeepRow& row, int common)
        : y(row.k.y, order, row.k.yo, row.luma, row.divisor, common),
          cb(row.k.cb, order, startOfChroma(row), row.cb, row.divisor, common),
          cr(row.k.cr, order, startOfChroma(row), row.cr, row.divisor, common), divisor(row.divisor >> common),
          max(static_cast<int>(row.max)), centre(max / 2 + 1) {}

private:
    static std::int32_t startOfChroma(const FromRgbDeepRow& row) {
        return isOf8(kSource) ? 0 : static_cast<std::int32_t>(row.max / 2 + 1);
    }
};

// Samples of 12 bits at most. A block of them is luma, and Cb and Cr in turns, of even pixels and of odd ones.
struct Samples {
    V::Bytes y, even, odd;
};

template <RgbSource kSource>
class Narrow {
public:
    using Row = FromRgbDeepRow;
    static constexpr std::size_t kPixelBytes = bytesPerPixel(kSource);

    [[gnu::always_inline]] Narrow(const RgbOrder& order, const FromRgbDeepRow& row)
        : sums(order, row, commonBits(row)), divisor_(V::divisor(sums.divisor)) {}

    [[gnu::always_inline]] Samples samples(const std::uint8_t* src) const {
        const Block block = loadBlock<kSource>(src);
        return {luma(block), chroma(sums.cb.ofSigned(block.even), sums.cr.ofSigned(block.even)),
                chroma(sums.cb.ofSigned(block.odd), sums.cr.ofSigned(block.odd))};
    }

protected:
    [[gnu::always_inline]] V::Bytes luma(const Block& block) const {
        return V::min16(words(sums.y.of(block.even), sums.y.of(block.odd)), V::repeat16(sums.max));
    }
    // Words of two vectors of sums in turn, divided and limited.
    [[gnu::always_inline]] V::Bytes chroma(V::Bytes first, V::Bytes second) const {
        const V::Bytes quotients = words(first, second);
        if constexpr (isOf8(kSource)) {
            const V::Bytes raised = V::addLimitedSigned16(quotients, V::repeat16(32767 - sums.max + sums.centre));
            return V::subtractLimited16(raised, V::repeat16(32767 - sums.max));
        }
        return V::max16(V::min16(quotients, V::repeat16(sums.max)), V::repeat16(0));
    }

    Sums<kSource> sums;

private:
    [[gnu::always_inline]] V::Bytes words(V::Bytes first, V::Bytes second) const {
        return V::zipLowerHalves(quotients(first), quotients(second));
    }
    [[gnu::always_inline]] V::Bytes quotients(V::Bytes v) const {
        if constexpr (isOf8(kSource)) return V::scale32(v, 1.0F / static_cast<float>(sums.divisor));
        return V::quotients(v, divisor_);
    }

    V::Divisor divisor_;
};

// A chroma sample for each pixel.
template <RgbSource kSource>
class Full : public Narrow<kSource> {
public:
    [[gnu::always_inline]] Full(const RgbOrder& order, const FromRgbDeepRow& row) : Narrow<kSource>(order, row) {}

    static constexpr std::size_t cbBytes(std::size_t pixels) { return 2 * pixels; }
    static constexpr std::size_t crBytes(std::size_t pixels) { return 2 * pixels; }

    [[gnu::always_inline]] void convert(std::uint8_t* toY, std::uint8_t* toCb, std::uint8_t* toCr,
                                        const std::uint8_t* src) const {
        const Block block = loadBlock<kSource>(src);
        V::store(toY, this->luma(block));
        V::store(toCb, this->chroma(this->sums.cb.ofSigned(block.even), this->sums.cb.ofSigned(block.odd)));
        V::store(toCr, this->chroma(this->sums.cr.ofSigned(block.even), this->sums.cr.ofSigned(block.odd)));
    }
};

// Cb and Cr in turns, of even pixels and of odd ones.
template <RgbSource kSource>
class ForV210 : public Narrow<kSource> {
public:
    [[gnu::always_inline]] ForV210(const RgbOrder& order, const FromRgbDeepRow& row) : Narrow<kSource>(order, row) {}

    static constexpr std::size_t cbBytes(std::size_t pixels) { return (pixels + 1) / 2 * 4; }
    static constexpr std::size_t crBytes(std::size_t pixels) { return pixels / 2 * 4; }

    [[gnu::always_inline]] void convert(std::uint8_t* toY, std::uint8_t* toEven, std::uint8_t* toOdd,
                                        const std::uint8_t* src) const {
        const Samples block = this->samples(src);
        V::store(toY, block.y);
        V::store(toEven, block.even);
        V::store(toOdd, block.odd);
    }
};

// A chroma sample for each pair.
template <RgbSource kSource>
class Halved : public Narrow<kSource> {
public:
    [[gnu::always_inline]] Halved(const RgbOrder& order, const FromRgbDeepRow& row) : Narrow<kSource>(order, row) {}

    static constexpr std::size_t cbBytes(std::size_t pixels) { return (pixels + 1) / 2 * 2; }
    static constexpr std::size_t crBytes(std::size_t pixels) { return (pixels + 1) / 2 * 2; }

    [[gnu::always_inline]] void convert(std::uint8_t* toY, std::uint8_t* toCb, std::uint8_t* toCr,
                                        const std::uint8_t* src) const {
        const Samples block = this->samples(src);
        const V::Bytes both = V::add16(block.even, block.odd);
        if constexpr (kSource == RgbSource::Three10) {
            V::store(toY, V::left16<6>(block.y));
            V::storeUnzipped16(toCb, toCr, V::left16<5>(both));
        } else {
            V::store(toY, block.y);
            V::storeUnzipped16(toCb, toCr, V::right16<1>(both));
        }
    }
};

// The same of 16 bits.
template <RgbSource kSource>
class Halved16 {
public:
    using Row = FromRgbDeepRow;
    static constexpr std::size_t kPixelBytes = bytesPerPixel(kSource);
    static constexpr std::size_t cbBytes(std::size_t pixels) { return (pixels + 1) / 2 * 2; }
    static constexpr std::size_t crBytes(std::size_t pixels) { return (pixels + 1) / 2 * 2; }

    [[gnu::always_inline]] Halved16(const RgbOrder& order, const FromRgbDeepRow& row)
        : sums_(order, row, commonBits(row)), twos_(V::count(__builtin_ctz(sums_.divisor))),
          odd_(sums_.divisor >> __builtin_ctz(sums_.divisor)) {}

    [[gnu::always_inline]] void convert(std::uint8_t* toY, std::uint8_t* toCb, std::uint8_t* toCr,
                                        const std::uint8_t* src) const {
        const Block block = loadBlock<kSource>(src);
        V::store(toY, V::zipLowerHalves(limited(sums_.y.of(block.even)), limited(sums_.y.of(block.odd))));
        V::storeUnzipped16(toCb, toCr, V::zipLowerHalves(averaged(sums_.cb, block), averaged(sums_.cr, block)));
    }

private:
    // Sums below zero become zero.
    [[gnu::always_inline]] V::Bytes limited(V::Bytes sums) const {
        // Rounded upwards, which sums below 2^31 do not notice. It has 32 bits for 625.
        constexpr int kMoreBits = 9;
        const std::uint64_t reciprocal = ((std::uint64_t{1} << (32 + kMoreBits)) + odd_ - 1) / odd_;
        const V::Bytes rest = V::rightSigned32(V::max32(sums, V::repeat32(0)), twos_);
        const V::Bytes quotients =
            V::right32<kMoreBits>(V::multiplyUpper32(rest, V::repeat32(static_cast<int>(reciprocal))));
        return V::min32(quotients, V::repeat32(sums_.max));
    }
    [[gnu::always_inline]] V::Bytes averaged(const Sum<kSource>& chroma, const Block& block) const {
        return V::right32<1>(V::add32(limited(chroma.ofSigned(block.even)), limited(chroma.ofSigned(block.odd))));
    }

    Sums<kSource> sums_;
    V::Count twos_;
    std::uint32_t odd_;
};

// R, G or B of as many pixels as there are doubles in two vectors, in 0..1.
struct Parts {
    V::Doubles lower, upper;
};

template <RgbSource kSource>
class FullFloat {
public:
    using Row = FromRgbFloatRow;
    static constexpr std::size_t kPixelBytes = bytesPerPixel(kSource);
    static constexpr std::size_t cbBytes(std::size_t pixels) { return 2 * pixels; }
    static constexpr std::size_t crBytes(std::size_t pixels) { return 2 * pixels; }

    [[gnu::always_inline]] FullFloat(const RgbOrder& order, const FromRgbFloatRow& row) : order_(order), row_(row) {}

    [[gnu::always_inline]] void convert(std::uint8_t* toY, std::uint8_t* toCb, std::uint8_t* toCr,
                                        const std::uint8_t* src) const {
        const Pixels16 p = loadPixels16<kPixelBytes>(src);
        const Pixel even(order_, p.even01, p.even23);
        const Pixel odd(order_, p.odd01, p.odd23);
        V::store(toY, samples(even, odd, row_.y, row_.yo, 0, 1));
        V::store(toCb, samples(even, odd, row_.cb, 512, -0.5, 0.5));
        V::store(toCr, samples(even, odd, row_.cr, 512, -0.5, 0.5));
    }

private:
    struct Pixel {
        Parts r, g, b;

        [[gnu::always_inline]] Pixel(const RgbOrder& order, V::Bytes first, V::Bytes second)
            : r(parts(order.r, first, second)), g(parts(order.g, first, second)), b(parts(order.b, first, second)) {}

        [[gnu::always_inline]] static Parts parts(unsigned at, V::Bytes first, V::Bytes second) {
            const V::Bytes words = at < 2 ? first : second;
            const V::Bytes component = at % 2 == 0 ? V::bitAnd(words, V::repeat32(0xFFFF)) : V::right32<16>(words);
            const V::Doubles most = V::repeatDouble(65535.0);
            return {V::divide(V::lowerDoubles(component), most), V::divide(V::upperDoubles(component), most)};
        }
    };

    // In the order of the portable kernel, which tells where the sum is rounded.
    [[gnu::always_inline]] static V::Doubles scaled(V::Doubles r, V::Doubles g, V::Doubles b, const RgbFloatWeights& k,
                                                    double least, double most) {
        const V::Doubles two = V::add(V::multiply(V::repeatDouble(k.r), r), V::multiply(V::repeatDouble(k.g), g));
        const V::Doubles sum = V::add(two, V::multiply(V::repeatDouble(k.b), b));
        const V::Doubles limited = V::max(V::min(sum, V::repeatDouble(most)), V::repeatDouble(least));
        return V::add(V::multiply(limited, V::repeatDouble(1023)), V::repeatDouble(0.5));
    }
    [[gnu::always_inline]] static V::Bytes integers(const Pixel& p, const RgbFloatWeights& k, int offset, double least,
                                                    double most) {
        return V::add32(V::truncated(scaled(p.r.lower, p.g.lower, p.b.lower, k, least, most),
                                     scaled(p.r.upper, p.g.upper, p.b.upper, k, least, most)),
                        V::repeat32(offset));
    }
    [[gnu::always_inline]] static V::Bytes samples(const Pixel& even, const Pixel& odd, const RgbFloatWeights& k,
                                                   int offset, double least, double most) {
        return V::bitOr(integers(even, k, offset, least, most), V::left32<16>(integers(odd, k, offset, least, most)));
    }

    const RgbOrder order_;
    const FromRgbFloatRow row_;
};

// Less than a block, not all of which may be read or written: its pixels are copied to where a block can be read, its
// samples from where one can be written.
template <class Block>
[[gnu::noinline]] void convertRest(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src,
                                   std::size_t pixels, Block block) {
    std::uint8_t in[kBlock * Block::kPixelBytes] = {};
    std::uint8_t out[3][V::kBytes];
    __builtin_memcpy(in, src, pixels * Block::kPixelBytes);
    // An odd last pixel is the second one of its pair as well.
    if (pixels % 2 != 0) {
        __builtin_memcpy(in + pixels * Block::kPixelBytes, src + (pixels - 1) * Block::kPixelBytes, Block::kPixelBytes);
    }
    block.convert(out[0], out[1], out[2], in);
    __builtin_memcpy(y, out[0], 2 * pixels);
    __builtin_memcpy(cb, out[1], Block::cbBytes(pixels));
    __builtin_memcpy(cr, out[2], Block::crBytes(pixels));
}

// Writing several rows, or packing them in between, keeps the processor from looking early enough for the source.
template <std::size_t kPixelBytes>
[[gnu::always_inline]] inline void prefetch(const std::uint8_t* src) {
    constexpr std::ptrdiff_t kAhead = 4096;
    fetchAhead(src, kAhead, kBlock * kPixelBytes);
}

// Converts `count` pixels of those that are left, or more of them: whole blocks, where there is room for these.
template <class Block>
[[gnu::always_inline]] inline void convertPixels(const Block& block, std::uint8_t* y, std::uint8_t* cb,
                                                 std::uint8_t* cr, const std::uint8_t* src, std::size_t count,
                                                 std::size_t left) {
    constexpr std::size_t kPixelBytes = Block::kPixelBytes;
    std::size_t x = 0;
    for (; x < count && left - x >= kBlock; x += kBlock) {
        prefetch<kPixelBytes>(src + kPixelBytes * x);
        block.convert(y + 2 * x, cb + Block::cbBytes(x), cr + Block::crBytes(x), src + kPixelBytes * x);
    }
    if (x >= count) return;
    convertRest(y + 2 * x, cb + Block::cbBytes(x), cr + Block::crBytes(x), src + kPixelBytes * x, count - x, block);
}

template <class Block>
void convertRow(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, std::size_t pixels,
                const RgbOrder& order, const typename Block::Row& row) {
    convertPixels(Block(order, row), y, cb, cr, src, pixels, pixels);
}

#include "simd/row_to_v210.inl.h"

// Which words of a lane's luma, and behind these of its Cb and Cr in turns, a group is made of: the first two
// components of its 32-bit integers, and the third in the lower half, with anything in the upper one.
constexpr unsigned kY = 0;
constexpr unsigned kCb = 6;
constexpr unsigned kCr = 7;
constexpr V::Merge kFirstTwo({kCb, kY, kY + 1, kCb + 2, kCr + 2, kY + 3, kY + 4, kCr + 4});
constexpr V::Merge kThird({kCr, kCr, kY + 2, kY + 2, kCb + 4, kCb + 4, kY + 5, kY + 5});

constexpr std::size_t kLanes = V::kBytes / 16; // groups of a block

// Chroma of pairs, from that of their pixels and of the odd pixels ahead and the even ones behind.
struct Filtered {
    [[gnu::always_inline]] static V::Bytes chroma(V::Bytes ahead, V::Bytes even, V::Bytes odd, V::Bytes behind) {
        const V::Bytes own = V::add16(even, odd);
        // x 43691 >> 18 is / 6.
        const V::Bytes sum = V::add16(V::add16(own, own), V::add16(ahead, behind));
        return V::right16<2>(V::multiplyUpper16(sum, V::repeat16(43691)));
    }
};

struct OfEven {
    [[gnu::always_inline]] static V::Bytes chroma(V::Bytes /*ahead*/, V::Bytes even, V::Bytes /*odd*/,
                                                  V::Bytes /*behind*/) {
        return even;
    }
};

// The first groups of luma and of chroma.
[[gnu::always_inline]] inline V::Bytes packedGroups(V::Bytes luma, V::Bytes chroma) {
    return V::dot(V::left32<20>(V::merge(luma, chroma, kThird)), V::merge(luma, chroma, kFirstTwo),
                  V::repeat32(1 << 26 | 1));
}

// Three blocks are four vectors of groups.
constexpr std::size_t kStretch = 3 * kBlock;
constexpr int kIntegers = V::kBytes / 4;

// The chroma of a block's pairs, between the odd pixels of the block before and the even ones of the next.
template <class Pairs>
[[gnu::always_inline]] inline V::Bytes chromaOf(V::Bytes oddBefore, const Samples& block, V::Bytes evenBehind) {
    return Pairs::chroma(V::joined32<kIntegers - 1>(oddBefore, block.odd), block.even, block.odd,
                         V::joined32<1>(block.even, evenBehind));
}

template <class Pairs>
[[gnu::always_inline]] inline void packStretch(std::uint8_t* dst, V::Bytes oddBefore, const Samples& a,
                                               const Samples& b, const Samples& c, V::Bytes evenBehind) {
    constexpr int kQuarter = kIntegers / 4;
    const V::Bytes ofA = chromaOf<Pairs>(oddBefore, a, b.even);
    const V::Bytes ofB = chromaOf<Pairs>(a.odd, b, c.even);
    const V::Bytes ofC = chromaOf<Pairs>(b.odd, c, evenBehind);
    V::store(dst, packedGroups(a.y, ofA));
    V::store(dst + V::kBytes, packedGroups(V::joined32<3 * kQuarter>(a.y, b.y), V::joined32<3 * kQuarter>(ofA, ofB)));
    V::store(dst + 2 * V::kBytes,
             packedGroups(V::joined32<2 * kQuarter>(b.y, c.y), V::joined32<2 * kQuarter>(ofB, ofC)));
    V::store(dst + 3 * V::kBytes, packedGroups(V::joined32<kQuarter>(c.y, c.y), V::joined32<kQuarter>(ofC, ofC)));
}

// Converts what of a row is whole stretches, and leaves the odd pixel ahead of the rest in `piece`. The result is how
// many pixels these are.
template <class Pairs, class Block>
[[gnu::always_inline]] inline std::size_t stretchesToV210(const Block& block, PieceOfSamples& piece, std::uint8_t* dst,
                                                          const std::uint8_t* src, std::size_t pixels) {
    constexpr std::size_t kBytes = kBlock * Block::kPixelBytes; // of a block
    if (pixels < kStretch) return 0;
    V::Bytes oddBefore = V::repeat32(512 | 512 << 16);
    Samples a = block.samples(src);
    std::size_t left = pixels;
    for (; left >= kStretch + kBlock; left -= kStretch) {
        for (std::size_t i = 0; i < 3; ++i) prefetch<Block::kPixelBytes>(src + i * kBytes);
        const Samples b = block.samples(src + kBytes);
        const Samples c = block.samples(src + 2 * kBytes);
        const Samples d = block.samples(src + 3 * kBytes);
        packStretch<Pairs>(dst, oddBefore, a, b, c, d.even);
        oddBefore = c.odd;
        a = d;
        src += 3 * kBytes;
        dst += 4 * V::kBytes;
    }
    if (left == kStretch) {
        const Samples b = block.samples(src + kBytes);
        const Samples c = block.samples(src + 2 * kBytes);
        // The last pair knows its own second pixel for its neighbour.
        packStretch<Pairs>(dst, oddBefore, a, b, c, V::joined32<kIntegers - 1>(c.odd, c.odd));
        return pixels;
    }
    V::store(piece.odd() - V::kBytes, oddBefore);
    return pixels - left;
}

template <RgbSource kSource, class Pairs>
class ByPairs {
public:
    static constexpr std::size_t kPixelBytes = bytesPerPixel(kSource);

    [[gnu::always_inline]] explicit ByPairs(const ForV210<kSource>& block) : block_(block) {}

    [[gnu::always_inline]] void convert(std::uint8_t* y, std::uint8_t* even, std::uint8_t* odd, const std::uint8_t* src,
                                        std::size_t count, std::size_t left) const {
        convertPixels(block_, y, even, odd, src, count, left);
    }
    [[gnu::always_inline]] static void pack(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* even,
                                            const std::uint8_t* odd, std::size_t groups) {
        for (; groups >= kLanes; groups -= kLanes) {
            V::store(dst, firstGroups(y, even, odd));
            dst += V::kBytes;
            y += 12 * kLanes;
            even += 12 * kLanes;
            odd += 12 * kLanes;
        }
        if (groups == 0) return;
        std::uint8_t rest[V::kBytes];
        V::store(rest, firstGroups(y, even, odd));
        __builtin_memcpy(dst, rest, 16 * groups);
    }

private:
    [[gnu::always_inline]] static V::Bytes firstGroups(const std::uint8_t* y, const std::uint8_t* even,
                                                       const std::uint8_t* odd) {
        return packedGroups(V::load(y),
                            Pairs::chroma(V::load(odd - 4), V::load(even), V::load(odd), V::load(even + 4)));
    }

    const ForV210<kSource>& block_;
};

// By vectors from pixels to groups as far as stretches go, the rest by way of memory.
template <RgbSource kSource, class Pairs>
void toV210(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const RgbOrder& order,
            const FromRgbDeepRow& row) {
    const ForV210<kSource> block(order, row);
    PieceOfSamples piece;
    piece.beginRow();
    const std::size_t done = stretchesToV210<Pairs>(block, piece, dst, src, pixels);
    if (done == pixels) return;
    rowToV210(ByPairs<kSource, Pairs>(block), piece, dst + done / 6 * 16, src + done * block.kPixelBytes,
              pixels - done);
}

// Lane i gets alpha of the twelve pixels from p + 48 i on as bytes.
[[gnu::always_inline]] inline V::Bytes loadAlpha(const std::uint8_t* p) {
    const V::Bytes first = V::right32<24>(V::loadLanesApart(p, 48));
    const V::Bytes second = V::right32<24>(V::loadLanesApart(p + 16, 48));
    const V::Bytes third = V::right32<24>(V::loadLanesApart(p + 32, 48));
    return V::packUnsigned16(V::packUnsigned32(first, second), V::packUnsigned32(third, third));
}

// Words of the bytes at `from`, four times as large or scaled.
template <bool kScaled>
[[gnu::always_inline]] inline V::Bytes alphaSamples(V::Bytes alpha, const std::uint8_t (&from)[16]) {
    const V::Bytes fourTimes = V::left16<2>(V::shuffle(alpha, V::repeat(from)));
    if constexpr (!kScaled) return fourTimes;
    // x 56284 >> 16 is x 219 / 255.
    return V::add16(V::multiplyUpper16(fourTimes, V::repeat16(56284)), V::repeat16(64));
}

template <bool kScaled>
void alphaBlocks(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels) {
    constexpr std::size_t kPixels = 12 * kLanes;
    constexpr std::uint8_t kNo = 0x80;
    static constexpr std::uint8_t kFirstTwoFrom[16] = {0, kNo, 1, kNo, 3, kNo, 4, kNo, 6, kNo, 7, kNo, 9, kNo, 10, kNo};
    static constexpr std::uint8_t kThirdFrom[16] = {2, kNo, kNo, kNo, 5,  kNo, kNo, kNo,
                                                    8, kNo, kNo, kNo, 11, kNo, kNo, kNo};
    for (; pixels >= kPixels; pixels -= kPixels) {
        prefetch<6>(src);
        const V::Bytes alpha = loadAlpha(src);
        V::store(dst, V::dot(V::left32<20>(alphaSamples<kScaled>(alpha, kThirdFrom)),
                             alphaSamples<kScaled>(alpha, kFirstTwoFrom), V::repeat32(1 << 26 | 1)));
        src += 4 * kPixels;
        dst += V::kBytes;
    }
    V::leave();
    alphaTo10<kScaled>(dst, src, pixels);
}

template <RgbSource kSource>
constexpr FromRgbDeepOfSource ofSource() {
    FromRgbDeepOfSource kernels{};
    if constexpr (isOf8(kSource) || isUpper10(kSource)) kernels.full = convertRow<Full<kSource>>;
    if constexpr (isUpper10(kSource) || kSource == RgbSource::Three10) kernels.halved = convertRow<Halved<kSource>>;
    if constexpr (kLessHalf<kSource>) kernels.halved = convertRow<Halved16<kSource>>;
    if constexpr (!isUpper10(kSource)) kernels.toV210 = {toV210<kSource, Filtered>, toV210<kSource, OfEven>};
    return kernels;
}

template <std::size_t... kSources>
void overwrite(FromRgbDeepKernels& kernels, std::index_sequence<kSources...> /*sources*/) {
    kernels = {{ofSource<static_cast<RgbSource>(kSources)>()...},
               {convertRow<FullFloat<RgbSource::Four16>>, convertRow<FullFloat<RgbSource::Three16>>},
               alphaBlocks<false>,
               alphaBlocks<true>};
}

void overwrite(FromRgbDeepKernels& kernels) {
    overwrite(kernels, std::make_index_sequence<kRgbSources>());
}

} // namespace
