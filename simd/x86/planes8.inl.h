// Between planes and packed rows. A block is a vector of luma, and two of the packed row.
//
// Planes whose rows lie on one another are the portable kernels', and so is what is left behind the last block.
namespace {

constexpr std::size_t kBlock = V::kBytes / 2; // pairs

// With several rows read and written at once the processor does not look early enough for what comes next. So that is
// asked for, at every kStep-th pair, with which cache lines of all rows begin: what is read but once, and what is
// written.
constexpr std::size_t kStep = 64;
template <std::size_t kPairBytes>
[[gnu::always_inline]] inline void expectRead(const std::uint8_t* src) {
    fetchAhead<0, 0>(src, 4096, kStep * kPairBytes);
}
template <std::size_t kPairBytes>
[[gnu::always_inline]] inline void expectWrite(const std::uint8_t* dst) {
    fetchAhead<1>(dst, 1024, kStep * kPairBytes);
}

// Every kChromaStep-th sample of both chroma rows, in turn.
template <std::size_t kChromaStep>
[[gnu::always_inline]] inline V::Bytes zippedChroma(const std::uint8_t* first, const std::uint8_t* second) {
    if constexpr (kChromaStep == 1) return V::loadZipped8(first, second);
    return V::orMasked(V::left16<8>(V::load(second)), V::load(first), V::repeat16(0xFF));
}

// Planes are read without help.
template <Samples8 kTo, std::size_t kChromaStep>
void joinBlocks(std::uint8_t* dstY, std::uint8_t* dstCb, std::uint8_t* dstCr, const std::uint8_t* y,
                const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pairs) {
    constexpr Group kGroup = kGroups[static_cast<unsigned>(kTo)];
    // The chroma sample of the last odd pixel is not to be read.
    constexpr std::size_t kUnread = kChromaStep - 1;
    std::uint8_t* const dst = dstY - kGroup.y;
    const std::uint8_t* const first = kGroup.cb < kGroup.cr ? cb : cr;
    const std::uint8_t* const second = kGroup.cb < kGroup.cr ? cr : cb;
    std::size_t i = 0;
    for (; i + kBlock + kUnread <= pairs; i += kBlock) {
        if (i % kStep == 0) expectWrite<4>(dst + 4 * i);
        const V::Bytes luma = V::load(y + 2 * i);
        const V::Bytes chroma = zippedChroma<kChromaStep>(first + kChromaStep * i, second + kChromaStep * i);
        V::storeZipped8(dst + 4 * i, kGroup.y == 0 ? luma : chroma, kGroup.y == 0 ? chroma : luma);
    }
    V::leave();
    join<kChromaStep>(dstY + 4 * i, dstCb + 4 * i, dstCr + 4 * i, y + 2 * i, cb + kChromaStep * i, cr + kChromaStep * i,
                      pairs - i);
}

// The luma and the chroma of a block of a packed row.
template <Samples8 kFrom>
constexpr bool kLumaFirst = kGroups[static_cast<unsigned>(kFrom)].y == 0;
template <Samples8 kFrom>
[[gnu::always_inline]] inline V::Bytes lumaOf(V::Bytes a, V::Bytes b) {
    return kLumaFirst<kFrom> ? V::evenBytes(a, b) : V::oddBytes(a, b);
}
template <Samples8 kFrom>
[[gnu::always_inline]] inline V::Bytes chromaOf(V::Bytes a, V::Bytes b) {
    return kLumaFirst<kFrom> ? V::oddBytes(a, b) : V::evenBytes(a, b);
}

template <Samples8 kFrom>
void splitBlocks(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* srcY,
                 const std::uint8_t* srcCb, const std::uint8_t* srcCr, std::size_t pairs) {
    constexpr Group kGroup = kGroups[static_cast<unsigned>(kFrom)];
    const std::uint8_t* const src = srcY - kGroup.y;
    std::uint8_t* const first = kGroup.cb < kGroup.cr ? cb : cr;
    std::uint8_t* const second = kGroup.cb < kGroup.cr ? cr : cb;
    std::size_t i = 0;
    if (allApart({{y, 2 * pairs}, {cb, pairs}, {cr, pairs}})) {
        for (; i + kBlock <= pairs; i += kBlock) {
            if (i % kStep == 0) expectRead<4>(src + 4 * i);
            const V::Bytes a = V::load(src + 4 * i);
            const V::Bytes b = V::load(src + 4 * i + V::kBytes);
            V::store(y + 2 * i, lumaOf<kFrom>(a, b));
            V::storeUnzipped8(first + i, second + i, chromaOf<kFrom>(a, b));
        }
        V::leave();
    }
    split(y + 2 * i, cb + i, cr + i, srcY + 4 * i, srcCb + 4 * i, srcCr + 4 * i, pairs - i);
}

void averageBlocks(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    std::size_t i = 0;
    for (; i + V::kBytes <= samples; i += V::kBytes) V::store(dst + i, V::average8(V::load(a + i), V::load(b + i)));
    V::leave();
    average(dst + i, a + i, b + i, samples - i);
}

template <Samples8 kSamples>
void overwritePacked(Planes8Kernels& kernels) {
    constexpr auto kAt = static_cast<unsigned>(kSamples);
    kernels.join[kAt] = joinBlocks<kSamples, 1>;
    // With three full planes 64-byte vectors are slower.
    if constexpr (V::kBytes < 64) kernels.join444[kAt] = joinBlocks<kSamples, 2>;
    kernels.split[kAt] = splitBlocks<kSamples>;
}

void overwrite(Planes8Kernels& kernels) {
    overwritePacked<Samples8::Yuy2>(kernels);
    overwritePacked<Samples8::Yvyu>(kernels);
    overwritePacked<Samples8::Uyvy>(kernels);
    kernels.average = averageBlocks;
}

} // namespace
