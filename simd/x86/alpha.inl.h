// Alpha samples into 32-bit pixels, a vector of pixels at a time.
namespace {

constexpr std::size_t kBlock = V::kBytes / 4; // pixels

// A sample in every 32-bit integer: a byte in its two middle ones, a word in the lower one.
template <Sample kSample>
[[gnu::always_inline]] inline V::Bytes loadSamples(const std::uint8_t* alpha) {
    if constexpr (kSample == Sample::Word) {
        return V::widen16(alpha);
    } else {
        struct Positions {
            std::uint8_t at[kBlock]{};
            constexpr Positions() {
                for (unsigned i = 0; i < kBlock; ++i) at[i] = static_cast<std::uint8_t>(i);
            }
        };
        static constexpr Positions kPositions;
        static constexpr V::Expansion kExpansion(kPositions.at);
        return V::expand(V::loadQuarter(alpha), kExpansion);
    }
}

// Samples from `high` on are moved to where the line is beyond 255. The products are exact as float32, and the factor
// divides them right: the tests try every sample.
[[gnu::always_inline]] inline V::Bytes expanded(V::Bytes a, const AlphaLevels& levels) {
    constexpr int kFarBelow = 2048;
    const V::Bytes belowHigh = V::addBelow32(a, V::repeat32(levels.high), V::repeat32(-kFarBelow));
    const V::Bytes above = V::max32(V::add32(belowHigh, V::repeat32(kFarBelow - levels.low)), V::repeat32(0));
    const V::Bytes line = V::scale32(V::dot(above, V::repeat32(255)), 1.0000001F / static_cast<float>(levels.range));
    return V::min32(line, V::repeat32(255));
}

template <Sample kSample, Levels kAs>
void mergeBlocks(std::uint8_t* dst, const std::uint8_t* alpha, std::size_t pixels) {
    constexpr std::size_t kBytes = kSample == Sample::Byte ? 1 : 2;
    constexpr int kUpper = kSample == Sample::Byte ? 8 : 22; // what the upper eight bits are short of the top
    std::size_t x = 0;
    for (; x + kBlock <= pixels; x += kBlock) {
        const V::Bytes a = loadSamples<kSample>(alpha + kBytes * x);
        V::Bytes top;
        if constexpr (kAs == Levels::AsTheyAre) {
            top = V::bitAnd(V::left32<kUpper>(a), V::repeat32(-(1 << 24)));
        } else {
            top = V::left32<24>(expanded(kSample == Sample::Byte ? V::right32<16>(a) : a, kLevelsOf<kSample>));
        }
        V::store(dst + 4 * x, V::orMasked(top, V::load(dst + 4 * x), V::repeat32(0x00FFFFFF)));
    }
    merge<kSample, kAs>(dst + 4 * x, alpha + kBytes * x, pixels - x);
}

void overwrite(AlphaKernels& kernels) {
    kernels = {mergeBlocks<Sample::Byte, Levels::AsTheyAre>, mergeBlocks<Sample::Byte, Levels::Expanded>,
               mergeBlocks<Sample::Word, Levels::AsTheyAre>, mergeBlocks<Sample::Word, Levels::Expanded>};
}

} // namespace
