// Between v210 and samples, and between samples of different depth.
//
// A lane holds a group. To unpack, a shuffle brings the two bytes that hold a component into a word, and a product
// moves it to the word's top; what is left below it is foreign. To pack, shuffles bring the first two components of a
// 32-bit word into its halves, where a dot product puts them side by side, and the third one to its upper end.
//
// Vectors reach up to kSpare groups beyond their block, which are the row's. Its last groups, a block and kSpare at
// most, are loaded and stored in part, or left to the portable kernels where the level has no such loads.
namespace {

constexpr std::size_t kLanes = V::kBytes / 16;
constexpr std::size_t kSpare = (2 * kLanes + 2) / 3;

// Which components the words of a lane get.
struct Gather {
    std::uint8_t from[16]{};
    std::uint8_t scale[16]{};

    constexpr explicit Gather(const unsigned (&components)[8]) {
        for (unsigned i = 0; i < 8; ++i) {
            const unsigned field = components[i] % 3;
            from[2 * i] = static_cast<std::uint8_t>(components[i] / 3 * 4 + field);
            from[2 * i + 1] = static_cast<std::uint8_t>(from[2 * i] + 1);
            scale[2 * i] = static_cast<std::uint8_t>(field == 0 ? 64 : field == 1 ? 16 : 4);
        }
    }
};

// Words that nobody looks at get component 0.
constexpr Gather kLuma({1, 3, 5, 7, 9, 11, 0, 0});
constexpr Gather kCbCr({0, 2, 4, 6, 8, 10, 0, 0});
constexpr Gather kCrCb({2, 0, 6, 4, 10, 8, 0, 0});
constexpr Gather kCbThenCr({0, 4, 8, 0, 2, 6, 10, 0});
constexpr Gather kCbTwice({0, 0, 4, 4, 8, 8, 0, 0});
constexpr Gather kCrTwice({2, 2, 6, 6, 10, 10, 0, 0});

[[gnu::always_inline]] inline V::Bytes gather(V::Bytes groups, const Gather& g) {
    return V::multiply16(V::shuffle(groups, V::repeat(g.from)), V::repeat(g.scale));
}

// Where a component's sample is among the twelve of a packed group.
constexpr unsigned packedAt(Group g, unsigned component) {
    const unsigned inPair[4] = {g.cb, g.y, g.cr, g.y + 2};
    return component / 4 * 4 + inPair[component % 4];
}

// From which sample of a lane each component comes; kNowhere if from none.
constexpr unsigned kNowhere = 0x80;
struct Fields {
    std::uint8_t firstTwo[16]{};
    std::uint8_t third[16]{};

    constexpr Fields(unsigned sampleBytes, const unsigned (&at)[12]) {
        for (unsigned i = 0; i < 16; ++i) firstTwo[i] = third[i] = kNowhere;
        for (unsigned c = 0; c < 12; ++c) {
            if (at[c] == kNowhere) continue;
            std::uint8_t* const field =
                c % 3 == 2 ? third + c / 3 * 4 + 4 - sampleBytes : firstTwo + c / 3 * 4 + c % 3 * 2;
            for (unsigned i = 0; i < sampleBytes; ++i) field[i] = static_cast<std::uint8_t>(at[c] * sampleBytes + i);
        }
    }
};

constexpr Fields packedFields(Group g) {
    unsigned at[12]{};
    for (unsigned c = 0; c < 12; ++c) at[c] = packedAt(g, c);
    return {1, at};
}

constexpr unsigned kNo = kNowhere;
constexpr Fields kLumaFields(2, {kNo, 0, kNo, 1, kNo, 2, kNo, 3, kNo, 4, kNo, 5});
constexpr Fields kCbCrFields(2, {0, kNo, 1, kNo, 2, kNo, 3, kNo, 4, kNo, 5, kNo});
constexpr Fields kCbThenCrFields(2, {0, kNo, 4, kNo, 1, kNo, 5, kNo, 2, kNo, 6, kNo});

// Twelve bytes of a lane to a group.
[[gnu::always_inline]] inline V::Bytes packed(V::Bytes samples, const Fields& fields) {
    return V::dot(V::right32<2>(V::shuffle(samples, V::repeat(fields.third))),
                  V::shuffle(samples, V::repeat(fields.firstTwo)), V::repeat32(1 << 28 | 4));
}

// The words' upper bytes in turn.
[[gnu::always_inline]] inline V::Bytes upperBytes(V::Bytes first, V::Bytes second) {
    return V::orMasked(V::right16<8>(first), second, V::repeat16(0xFF00));
}

template <Justify kJustify>
[[gnu::always_inline]] inline V::Bytes justified(V::Bytes words) {
    return kJustify == Justify::Left ? V::bitAnd(words, V::repeat16(0xFFC0)) : V::right16<6>(words);
}

template <Reduce kReduce>
[[gnu::always_inline]] inline V::Bytes reduced(V::Bytes words) {
    if constexpr (kReduce == Reduce::Low10) return V::bitAnd(words, V::repeat16(0x3FF));
    if constexpr (kReduce == Reduce::From16Unmasked) return words;
    if constexpr (kReduce == Reduce::From12) words = V::left16<4>(words);
    return V::right16<6>(words);
}

// Writing to three planes at once, or past the cache, keeps the processor from looking early enough for the source, so
// what lies this far ahead of a block is asked for.
template <std::size_t kGroups>
[[gnu::always_inline]] inline void prefetch(const std::uint8_t* src) {
    fetchAhead(src, 4096, kGroups * kV210GroupBytes);
}

// The same of three planes, which pays where chroma has half the samples.
template <Chroma kChroma>
[[gnu::always_inline]] inline void prefetchPlanes(const std::uint8_t* y, const std::uint8_t* cb,
                                                  const std::uint8_t* cr) {
    if constexpr (kChroma == Chroma::Half) {
        constexpr std::ptrdiff_t kAhead = 2048;
        fetchAhead(y, 2 * kAhead);
        fetchAhead(cb, kAhead);
        fetchAhead(cr, kAhead);
    }
}

// What follows is by the block: how many units it has, which are groups or pairs of pixels, how many beyond it vectors
// reach, what a unit takes up packed, as luma and as each chroma, whether those are planes, and what turns a block's
// bytes into the others. A count of units comes with a block of which only the first ones are there.
struct GroupBlock {
    static constexpr bool kPlanes = true;
    static constexpr std::size_t kUnits = kLanes;
    static constexpr std::size_t kBeyond = kSpare;
    static constexpr std::size_t kPackedBytes = kV210GroupBytes;
};

template <Samples8 kSamples>
struct Packed8 : GroupBlock {
    static constexpr bool kPlanes = false;
    static constexpr Group kGroup = simd::kGroups[static_cast<unsigned>(kSamples)];
    static constexpr std::size_t kLumaBytes = 12;
    static constexpr std::size_t kChromaBytes = 12;

    [[gnu::always_inline]] static V::Bytes ordered(V::Bytes luma, V::Bytes chroma) {
        return kGroup.y == 0 ? upperBytes(luma, chroma) : upperBytes(chroma, luma);
    }
    template <class... Count>
    [[gnu::always_inline]] static void unpack(std::uint8_t* y, std::uint8_t* /*cb*/, std::uint8_t* /*cr*/,
                                              const std::uint8_t* src, Count... count) {
        prefetch<kLanes>(src);
        const V::Bytes groups = V::load(src, 16 * count...);
        const V::Bytes chroma = gather(groups, kGroup.cb < kGroup.cr ? kCbCr : kCrCb);
        V::storeTwelves(y - kGroup.y, ordered(gather(groups, kLuma), chroma), 12 * count...);
    }
    template <class... Count>
    [[gnu::always_inline]] static void pack(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* /*cb*/,
                                            const std::uint8_t* /*cr*/, Count... count) {
        static constexpr Fields kFields = packedFields(kGroup);
        prefetch<kUnits>(y);
        V::store(dst, packed(V::loadTwelves(y - kGroup.y, 12 * count...), kFields), 16 * count...);
    }
};

// Two groups share a lane of samples.
struct Planar8 : GroupBlock {
    static constexpr std::size_t kUnits = 2 * kLanes;
    static constexpr std::size_t kLumaBytes = 6;
    static constexpr std::size_t kChromaBytes = 3;

    template <class... Count>
    [[gnu::always_inline]] static void unpack(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr,
                                              const std::uint8_t* src, Count... count) {
        static constexpr std::uint8_t kLumaFrom[16] = {0, 2, 4, 6, 8, 10, 1, 3, 5, 7, 9, 11};
        static constexpr std::uint8_t kChromaFrom[16] = {0, 4, 8, 1, 5, 9, 0, 0, 2, 6, 10, 3, 7, 11};
        prefetch<kUnits>(src);
        V::Bytes even;
        V::Bytes odd;
        V::loadLanePairs(src, even, odd, 16 * count...);
        const V::Bytes luma = upperBytes(gather(even, kLuma), gather(odd, kLuma));
        const V::Bytes chroma = upperBytes(gather(even, kCbCr), gather(odd, kCbCr));
        V::storeTwelves(y, V::shuffle(luma, V::repeat(kLumaFrom)), 6 * count...);
        V::storeSixes(cb, cr, V::shuffle(chroma, V::repeat(kChromaFrom)), 3 * count...);
    }
    template <class... Count>
    [[gnu::always_inline]] static void pack(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb,
                                            const std::uint8_t* cr, Count... count) {
        static constexpr std::uint8_t kLumaFrom[16] = {0, 1, 2, 3, 4, 5, 0, 0, 6, 7, 8, 9, 10, 11};
        static constexpr std::uint8_t kChromaFrom[16] = {0, 8, 1, 9, 2, 10, 0, 0, 3, 11, 4, 12, 5, 13};
        static constexpr Fields kFields = packedFields({1, 0, 2});
        const V::Bytes luma = V::shuffle(V::loadTwelves(y, 6 * count...), V::repeat(kLumaFrom));
        const V::Bytes chroma = V::shuffle(V::loadSixes(cb, cr, 3 * count...), V::repeat(kChromaFrom));
        V::storeLanePairs(dst, packed(V::zipLower8(chroma, luma), kFields), packed(V::zipUpper8(chroma, luma), kFields),
                          16 * count...);
    }
};

template <Justify kJustify>
struct UnpackPlanar16 : GroupBlock {
    static constexpr std::size_t kLumaBytes = 12;
    static constexpr std::size_t kChromaBytes = 6;

    template <class... Count>
    [[gnu::always_inline]] static void unpack(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr,
                                              const std::uint8_t* src, Count... count) {
        prefetch<kUnits>(src);
        const V::Bytes groups = V::load(src, 16 * count...);
        V::storeTwelves(y, justified<kJustify>(gather(groups, kLuma)), 12 * count...);
        V::storeSixes(cb, cr, justified<kJustify>(gather(groups, kCbThenCr)), 6 * count...);
    }
};

template <Justify kJustify>
struct UnpackPlanar444 : GroupBlock {
    static constexpr std::size_t kLumaBytes = 12;
    static constexpr std::size_t kChromaBytes = 12;

    template <class... Count>
    [[gnu::always_inline]] static void unpack(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr,
                                              const std::uint8_t* src, Count... count) {
        const V::Bytes groups = V::load(src, 16 * count...);
        V::storeTwelves(y, justified<kJustify>(gather(groups, kLuma)), 12 * count...);
        V::storeTwelves(cb, justified<kJustify>(gather(groups, kCbTwice)), 12 * count...);
        V::storeTwelves(cr, justified<kJustify>(gather(groups, kCrTwice)), 12 * count...);
    }
};

// The first and the last eight of a group's twelve words.
template <Samples8 kSamples, Justify kJustify>
struct UnpackPacked16 : GroupBlock {
    static constexpr bool kPlanes = false;
    static constexpr Group kGroup = simd::kGroups[static_cast<unsigned>(kSamples)];
    static constexpr std::size_t kLumaBytes = 24;
    static constexpr std::size_t kChromaBytes = 24;

    static constexpr Gather eightFrom(unsigned first) {
        unsigned components[8]{};
        for (unsigned c = 0; c < 12; ++c) {
            const unsigned at = packedAt(kGroup, c);
            if (at >= first && at < first + 8) components[at - first] = c;
        }
        return Gather(components);
    }
    template <class... Count>
    [[gnu::always_inline]] static void unpack(std::uint8_t* y, std::uint8_t* /*cb*/, std::uint8_t* /*cr*/,
                                              const std::uint8_t* src, Count... count) {
        static constexpr Gather kFirst = eightFrom(0);
        static constexpr Gather kLast = eightFrom(4);
        const V::Bytes groups = V::load(src, 16 * count...);
        V::storeTwentyFours(y - std::size_t{2} * kGroup.y, justified<kJustify>(gather(groups, kFirst)),
                            justified<kJustify>(gather(groups, kLast)), 24 * count...);
    }
};

template <Reduce kReduce, Chroma kChroma, Writes kWrites>
struct Pack16 : GroupBlock {
    static constexpr bool kFull = kChroma != Chroma::Half;
    static constexpr std::size_t kLumaBytes = 12;
    static constexpr std::size_t kChromaBytes = kFull ? 12 : 6;

    template <class... Count>
    [[gnu::always_inline]] static V::Bytes loadChroma(const std::uint8_t* cb, const std::uint8_t* cr, Count... count) {
        if constexpr (kChroma == Chroma::InTurns) {
            return V::loadTwelves(cb, 12 * count...);
        } else if constexpr (kFull) {
            // Without the last odd one, which interleaved chroma does not have.
            return V::orMasked(V::left32<16>(V::loadTwelves(cr, 12 * count - 2 ...)),
                               V::loadTwelves(cb, 12 * count - 2 ...), V::repeat32(0xFFFF));
        } else {
            return V::loadSixes(cb, cr, 6 * count...);
        }
    }
    template <class... Count>
    [[gnu::always_inline]] static void pack(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb,
                                            const std::uint8_t* cr, Count... count) {
        constexpr const Fields& kChromaFields = kFull ? kCbCrFields : kCbThenCrFields;
        prefetchPlanes<kChroma>(y, cb, cr);
        const V::Bytes luma = reduced<kReduce>(V::loadTwelves(y, 12 * count...));
        const V::Bytes chroma = reduced<kReduce>(loadChroma(cb, cr, count...));
        const V::Bytes firstTwo = V::bitOr(V::shuffle(luma, V::repeat(kLumaFields.firstTwo)),
                                           V::shuffle(chroma, V::repeat(kChromaFields.firstTwo)));
        const V::Bytes third = V::bitOr(V::shuffle(luma, V::repeat(kLumaFields.third)),
                                        V::shuffle(chroma, V::repeat(kChromaFields.third)));
        if constexpr (kReduce == Reduce::From16Unmasked) {
            const V::Bytes upperTwo =
                V::orMasked(V::right32<2>(third), V::right32<12>(firstTwo), V::repeat32(0xFFFF << 4));
            V::store<kWrites>(dst, V::orMasked(upperTwo, V::right32<6>(firstTwo), V::repeat32(0x3FF)), 16 * count...);
        } else {
            V::store<kWrites>(dst, V::dot(V::left32<4>(third), firstTwo, V::repeat32(1 << 26 | 1)), 16 * count...);
        }
    }
};

// Shifted left by kLeft, a sample's byte is its upper one. Chroma for each pixel is read with the sample behind it,
// which the last pair may not have.
template <unsigned kLeft, Chroma kChroma, Writes kWrites = Writes::ToCache>
struct ToUyvy {
    static constexpr std::size_t kUnits = V::kBytes / 4;
    static constexpr std::size_t kBeyond = kChroma == Chroma::Full ? 1 : 0;
    static constexpr std::size_t kPackedBytes = 4;
    static constexpr std::size_t kLumaBytes = 4;
    static constexpr std::size_t kChromaBytes = kChroma == Chroma::Half ? 2 : 4;

    template <class... Count>
    [[gnu::always_inline]] static V::Bytes loadChroma(const std::uint8_t* cb, const std::uint8_t* cr, Count... count) {
        if constexpr (kChroma == Chroma::InTurns) {
            return V::load(cb, 4 * count...);
        } else if constexpr (kChroma == Chroma::Full) {
            return V::orMasked(V::left32<16>(V::load(cr, 4 * count - 2 ...)), V::load(cb, 4 * count - 2 ...),
                               V::repeat32(0xFFFF));
        } else {
            return V::bitOr(V::left32<16>(V::widen16(cr, 2 * count...)), V::widen16(cb, 2 * count...));
        }
    }
    template <class... Count>
    [[gnu::always_inline]] static void pack(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb,
                                            const std::uint8_t* cr, Count... count) {
        prefetchPlanes<kChroma>(y, cb, cr);
        const V::Bytes luma = V::load(y, 4 * count...);
        const V::Bytes chroma = loadChroma(cb, cr, count...);
        V::store<kWrites>(dst, upperBytes(V::left16<kLeft>(chroma), V::left16<kLeft>(luma)), 4 * count...);
    }
};

struct UyvyTo16 {
    static constexpr bool kPlanes = true;
    static constexpr std::size_t kUnits = V::kBytes / 4;
    static constexpr std::size_t kBeyond = 0;
    static constexpr std::size_t kPackedBytes = 4;
    static constexpr std::size_t kLumaBytes = 4;
    static constexpr std::size_t kChromaBytes = 2;

    template <class... Count>
    [[gnu::always_inline]] static void unpack(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr,
                                              const std::uint8_t* src, Count... count) {
        const V::Bytes bytes = V::load(src, 4 * count...);
        V::store(y, V::bitAnd(bytes, V::repeat16(0xFF00)), 4 * count...);
        V::storeUnzipped16(cb, cr, V::left16<8>(bytes), 2 * count...);
    }
};

struct UyvyTo10Planar444 : UyvyTo16 {
    static constexpr std::size_t kChromaBytes = 4;

    template <class... Count>
    [[gnu::always_inline]] static void unpack(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr,
                                              const std::uint8_t* src, Count... count) {
        static constexpr std::uint8_t kCb[16] = {0, kNo, 0, kNo, 4, kNo, 4, kNo, 8, kNo, 8, kNo, 12, kNo, 12, kNo};
        static constexpr std::uint8_t kCr[16] = {2, kNo, 2, kNo, 6, kNo, 6, kNo, 10, kNo, 10, kNo, 14, kNo, 14, kNo};
        const V::Bytes bytes = V::load(src, 4 * count...);
        V::store(y, V::left16<2>(V::right16<8>(bytes)), 4 * count...);
        V::store(cb, V::left16<2>(V::shuffle(bytes, V::repeat(kCb))), 4 * count...);
        V::store(cr, V::left16<2>(V::shuffle(bytes, V::repeat(kCr))), 4 * count...);
    }
};

// The planes of a frame of few pixels may be so close that rows of them lie on one another. What comes to be there
// shows in which order groups are written, so that such rows are the portable kernel's.
template <class Block, UnpackKernel kRest>
void unpackBlocks(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, std::size_t units) {
    if constexpr (Block::kPlanes) {
        const std::size_t chroma = Block::kChromaBytes * units;
        if (!allApart({{y, Block::kLumaBytes * units}, {cb, chroma}, {cr, chroma}})) {
            return kRest(y, cb, cr, src, units);
        }
    }
    const auto advance = [&] {
        src += Block::kUnits * Block::kPackedBytes;
        y += Block::kUnits * Block::kLumaBytes;
        cb += Block::kUnits * Block::kChromaBytes;
        cr += Block::kUnits * Block::kChromaBytes;
    };
    for (; units >= Block::kUnits + Block::kBeyond; units -= Block::kUnits) {
        Block::unpack(y, cb, cr, src);
        advance();
    }
    if constexpr (V::kPartial) {
        for (; units > Block::kUnits; units -= Block::kUnits) {
            Block::unpack(y, cb, cr, src, Block::kUnits);
            advance();
        }
        if (units != 0) Block::unpack(y, cb, cr, src, units);
    }
    V::leave();
    if constexpr (!V::kPartial) kRest(y, cb, cr, src, units);
}

template <class Block, PackKernel kRest>
void packBlocks(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
                std::size_t units) {
    const auto advance = [&] {
        dst += Block::kUnits * Block::kPackedBytes;
        y += Block::kUnits * Block::kLumaBytes;
        cb += Block::kUnits * Block::kChromaBytes;
        cr += Block::kUnits * Block::kChromaBytes;
    };
    for (; units >= Block::kUnits + Block::kBeyond; units -= Block::kUnits) {
        Block::pack(dst, y, cb, cr);
        advance();
    }
    if constexpr (V::kPartial) {
        for (; units > Block::kUnits; units -= Block::kUnits) {
            Block::pack(dst, y, cb, cr, Block::kUnits);
            advance();
        }
        if (units != 0) Block::pack(dst, y, cb, cr, units);
    }
    V::leave();
    if constexpr (!V::kPartial) kRest(dst, y, cb, cr, units);
}

// Where the pointers are those of no known group, the row is the portable kernel's.
template <Justify kJustify>
void unpackPacked16(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, std::size_t groups) {
    constexpr UnpackKernel kRest = simd::unpack<Justified16<kJustify>, kPacked>;
    switch (packedSamples(y, cb, cr, 2)) {
    case Samples8::Yuy2:
        return unpackBlocks<UnpackPacked16<Samples8::Yuy2, kJustify>, kRest>(y, cb, cr, src, groups);
    case Samples8::Yvyu:
        return unpackBlocks<UnpackPacked16<Samples8::Yvyu, kJustify>, kRest>(y, cb, cr, src, groups);
    case Samples8::Uyvy:
        return unpackBlocks<UnpackPacked16<Samples8::Uyvy, kJustify>, kRest>(y, cb, cr, src, groups);
    default:
        return kRest(y, cb, cr, src, groups);
    }
}

template <class... Count>
[[gnu::always_inline]] inline void unpackUyvyBlock(std::uint8_t* dst, const std::uint8_t* src, Count... pairs) {
    const V::Bytes half = V::repeat16(2 << 6);
    prefetch<kLanes>(src);
    const V::Bytes groups = V::load(src, (pairs + 2) / 3 * 16 ...);
    const V::Bytes luma = V::addLimited16(gather(groups, kLuma), half);
    const V::Bytes chroma = V::addLimited16(gather(groups, kCbCr), half);
    V::storeTwelves(dst, upperBytes(chroma, luma), 4 * pairs...);
}

void unpackUyvy(std::uint8_t* dst, const std::uint8_t* src, std::size_t pairs) {
    constexpr std::size_t kPairs = 3 * kLanes;
    for (; pairs >= kPairs + 3 * kSpare; pairs -= kPairs) {
        unpackUyvyBlock(dst, src);
        src += V::kBytes;
        dst += 4 * kPairs;
    }
    if constexpr (V::kPartial) {
        for (; pairs > kPairs; pairs -= kPairs) {
            unpackUyvyBlock(dst, src, kPairs);
            src += V::kBytes;
            dst += 4 * kPairs;
        }
        if (pairs != 0) unpackUyvyBlock(dst, src, pairs);
    }
    V::leave();
    if constexpr (!V::kPartial) simd::unpackUyvy(dst, src, pairs);
}

template <class... Count>
[[gnu::always_inline]] inline void averageBlock16(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b,
                                                  Count... bytes) {
    const V::Bytes first = V::load(a, bytes...);
    const V::Bytes second = V::load(b, bytes...);
    V::store(dst, V::add16(V::bitAnd(first, second), V::right16<1>(V::bitXor(first, second))), bytes...);
}

void average16(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    for (; samples >= V::kBytes / 2; samples -= V::kBytes / 2) {
        averageBlock16(dst, a, b);
        dst += V::kBytes;
        a += V::kBytes;
        b += V::kBytes;
    }
    if constexpr (V::kPartial) {
        if (samples != 0) averageBlock16(dst, a, b, 2 * samples);
    }
    V::leave();
    if constexpr (!V::kPartial) simd::average16(dst, a, b, samples);
}

template <Samples8 kSamples>
void overwritePacked8(V210Kernels& kernels) {
    using Block = Packed8<kSamples>;
    kernels.unpack8[static_cast<unsigned>(kSamples)] = unpackBlocks<Block, unpack<Truncated8, kPacked>>;
    kernels.pack8[static_cast<unsigned>(kSamples)] = packBlocks<Block, pack<Truncated8, kPacked>>;
}

template <Justify kJustify>
void overwriteUnpack16(V210Kernels& kernels) {
    using Sample = Justified16<kJustify>;
    kernels.unpack16[static_cast<unsigned>(kJustify)] = {
        unpackPacked16<kJustify>, unpackBlocks<UnpackPlanar16<kJustify>, unpack<Sample, kPlanar>>,
        unpackBlocks<UnpackPlanar444<kJustify>, unpack<Sample, kPlanar444>>};
}

template <Reduce kReduce, Writes kWrites>
constexpr std::array<PackKernel, kChromas> kPack16{
    packBlocks<Pack16<kReduce, Chroma::Half, kWrites>, pack<Reduced16<kReduce>, kPlanar>>,
    packBlocks<Pack16<kReduce, Chroma::Full, kWrites>, pack<Reduced16<kReduce>, kEveryOther>>,
    packBlocks<Pack16<kReduce, Chroma::InTurns, kWrites>, pack<Reduced16<kReduce>, kEveryOther>>};

template <Reduce kReduce>
void overwritePack16(V210Kernels& kernels) {
    kernels.pack16[static_cast<unsigned>(kReduce)] = kPack16<kReduce, Writes::ToCache>;
    kernels.pack16Past[static_cast<unsigned>(kReduce)] = kPack16<kReduce, Writes::PastCache>;
}

void overwrite(V210Kernels& kernels) {
    overwritePacked8<Samples8::Yuy2>(kernels);
    overwritePacked8<Samples8::Yvyu>(kernels);
    overwritePacked8<Samples8::Uyvy>(kernels);
    kernels.unpack8[static_cast<unsigned>(Samples8::Planar)] = unpackBlocks<Planar8, unpack<Truncated8, kPlanar>>;
    kernels.pack8[static_cast<unsigned>(Samples8::Planar)] = packBlocks<Planar8, pack<Truncated8, kPlanar>>;
    kernels.unpackUyvy = unpackUyvy;
    overwriteUnpack16<Justify::Right>(kernels);
    overwriteUnpack16<Justify::Left>(kernels);
    overwritePack16<Reduce::Low10>(kernels);
    overwritePack16<Reduce::From12>(kernels);
    overwritePack16<Reduce::From16>(kernels);
    overwritePack16<Reduce::From16Unmasked>(kernels);
    kernels.uyvyFrom10 = packBlocks<ToUyvy<6, Chroma::Half>, toUyvy<2, kPlanar>>;
    kernels.uyvyFrom10Past = packBlocks<ToUyvy<6, Chroma::Half, Writes::PastCache>, toUyvy<2, kPlanar>>;
    kernels.uyvyFrom16 = {packBlocks<ToUyvy<0, Chroma::Half>, toUyvy<8, kPlanar>>,
                          packBlocks<ToUyvy<0, Chroma::Full>, toUyvy<8, kEveryOther>>,
                          packBlocks<ToUyvy<0, Chroma::InTurns>, toUyvy<8, kEveryOther>>};
    kernels.uyvyTo16 = unpackBlocks<UyvyTo16, fromUyvy<8, kPlanar>>;
    kernels.uyvyTo10Planar444 = unpackBlocks<UyvyTo10Planar444, fromUyvy<2, kPlanar444>>;
    kernels.average16 = average16;
}

} // namespace
