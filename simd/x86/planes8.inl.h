// Between planes and packed rows. A block is a vector of luma, and two of the packed row.
//
// Rows that lie on one another are the portable kernels', and so is what is left behind the last block.
namespace {

constexpr std::size_t kBlock = V::kBytes / 2; // pairs

// Several rows written or read at once keep the processor from looking early enough for the source, so what lies this
// far ahead of a block is asked for.
template <std::size_t kBytes>
[[gnu::always_inline]] inline void prefetch(const std::uint8_t* src) {
    constexpr std::size_t kAhead = 4096;
    for (std::size_t i = 0; i < kBytes; i += 64) __builtin_prefetch(src + kAhead + i);
}

// Every kChromaStep-th sample of both chroma rows, in turn.
template <std::size_t kChromaStep>
[[gnu::always_inline]] inline V::Bytes zippedChroma(const std::uint8_t* first, const std::uint8_t* second) {
    if constexpr (kChromaStep == 1) return V::loadZipped8(first, second);
    return V::orMasked(V::left16<8>(V::load(second)), V::load(first), V::repeat16(0xFF));
}

template <Samples8 kTo, std::size_t kChromaStep>
void joinBlocks(std::uint8_t* dstY, std::uint8_t* dstCb, std::uint8_t* dstCr, const std::uint8_t* y,
                const std::uint8_t* cb, const std::uint8_t* cr, std::size_t pairs) {
    constexpr Group kGroup = kGroups[static_cast<unsigned>(kTo)];
    // The chroma sample of the last odd pixel is not to be read.
    constexpr std::size_t kLeft = kChromaStep - 1;
    if (allApart({{dstY - kGroup.y, 4 * pairs}},
                 {{y, 2 * pairs}, {cb, kChromaStep * pairs}, {cr, kChromaStep * pairs}})) {
        for (; pairs >= kBlock + kLeft; pairs -= kBlock) {
            prefetch<2 * kBlock>(y);
            prefetch<kChromaStep * kBlock>(cb);
            prefetch<kChromaStep * kBlock>(cr);
            const V::Bytes luma = V::load(y);
            const V::Bytes chroma =
                kGroup.cb < kGroup.cr ? zippedChroma<kChromaStep>(cb, cr) : zippedChroma<kChromaStep>(cr, cb);
            V::storeZipped8(dstY - kGroup.y, kGroup.y == 0 ? luma : chroma, kGroup.y == 0 ? chroma : luma);
            dstY += 4 * kBlock;
            dstCb += 4 * kBlock;
            dstCr += 4 * kBlock;
            y += 2 * kBlock;
            cb += kChromaStep * kBlock;
            cr += kChromaStep * kBlock;
        }
        V::leave();
    }
    join<kChromaStep>(dstY, dstCb, dstCr, y, cb, cr, pairs);
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
    if (allApart({{y, 2 * pairs}, {cb, pairs}, {cr, pairs}}, {{srcY - kGroup.y, 4 * pairs}})) {
        for (; pairs >= kBlock; pairs -= kBlock) {
            prefetch<4 * kBlock>(srcY);
            const V::Bytes a = V::load(srcY - kGroup.y);
            const V::Bytes b = V::load(srcY - kGroup.y + V::kBytes);
            V::store(y, lumaOf<kFrom>(a, b));
            V::storeUnzipped8(kGroup.cb < kGroup.cr ? cb : cr, kGroup.cb < kGroup.cr ? cr : cb, chromaOf<kFrom>(a, b));
            y += 2 * kBlock;
            cb += kBlock;
            cr += kBlock;
            srcY += 4 * kBlock;
            srcCb += 4 * kBlock;
            srcCr += 4 * kBlock;
        }
        V::leave();
    }
    split(y, cb, cr, srcY, srcCb, srcCr, pairs);
}

template <Samples8 kFrom>
void splitLumaBlocks(std::uint8_t* y, const std::uint8_t* srcY, std::size_t pairs) {
    constexpr Group kGroup = kGroups[static_cast<unsigned>(kFrom)];
    if (allApart({{y, 2 * pairs}}, {{srcY - kGroup.y, 4 * pairs}})) {
        for (; pairs >= kBlock; pairs -= kBlock) {
            prefetch<4 * kBlock>(srcY);
            const std::uint8_t* const src = srcY - kGroup.y;
            V::store(y, lumaOf<kFrom>(V::load(src), V::load(src + V::kBytes)));
            y += 2 * kBlock;
            srcY += 4 * kBlock;
        }
        V::leave();
    }
    splitLuma(y, srcY, pairs);
}

void splitAveragedBlocks(const AveragedRows& rows, std::size_t steps) {
    constexpr std::size_t kSteps = kBlock / kAveragedPairs;
    const std::size_t pairs = kAveragedPairs * steps;
    AveragedRows r = rows;
    if (allApart({{r.y[0], 2 * pairs}, {r.y[1], 2 * pairs}, {r.cb, pairs}, {r.cr, pairs}},
                 {{r.src[0], 4 * pairs}, {r.src[1], 4 * pairs}})) {
        for (; steps >= kSteps; steps -= kSteps) {
            V::Bytes chroma[2];
            for (unsigned row = 0; row < 2; ++row) {
                prefetch<4 * kBlock>(r.src[row]);
                const V::Bytes a = V::load(r.src[row]);
                const V::Bytes b = V::load(r.src[row] + V::kBytes);
                V::store(r.y[row], V::oddBytes(a, b));
                chroma[row] = V::evenBytes(a, b);
            }
            V::storeUnzipped8(r.cb, r.cr, V::average8(chroma[0], chroma[1]));
            r = r.at(kBlock);
        }
        V::leave();
    }
    splitAveraged(r, steps);
}

template <Samples8 kSamples>
void overwritePacked(Planes8Kernels& kernels) {
    constexpr auto kAt = static_cast<unsigned>(kSamples);
    kernels.join[kAt] = joinBlocks<kSamples, 1>;
    kernels.join444[kAt] = joinBlocks<kSamples, 2>;
    kernels.split[kAt] = splitBlocks<kSamples>;
    kernels.splitLuma[kAt] = splitLumaBlocks<kSamples>;
}

void overwrite(Planes8Kernels& kernels) {
    overwritePacked<Samples8::Yuy2>(kernels);
    overwritePacked<Samples8::Yvyu>(kernels);
    overwritePacked<Samples8::Uyvy>(kernels);
    kernels.splitAveraged = splitAveragedBlocks;
}

} // namespace
