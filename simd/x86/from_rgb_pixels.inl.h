// Loading blocks of RGB pixels. Included by kernels, inside a namespace of simd/each_level.h and one without a name.
//
// A block is half as many pixels as a vector has bytes. Its even and its odd pixels come apart, each in their order, a
// pixel to a 32-bit integer. Components stay where they stand in memory, lowest address first: it is for coefficients
// to be put in their order. The fourth component of a pixel of three is anything, except that bytes of 16-bit
// components have the next pixel's first one there, for which converters ask.

constexpr std::size_t kBlockPairs = V::kBytes / 4;

// How many bytes loadPixels8() touches from a block's first one on: where it has the next pixel's first component, a
// few beyond the block.
constexpr std::size_t blockReach(unsigned pixelBytes) {
    return kBlockPairs * 2 * pixelBytes + (pixelBytes == 6 ? 4 : 0);
}

// Four bytes to a pixel.
struct Pixels8 {
    V::Bytes even, odd;
};

// Lane i gets four pixels of 16-bit components from p + 8 i pixels on, of which the upper bytes.
template <unsigned kPixelBytes>
[[gnu::always_inline]] inline V::Bytes loadFours(const std::uint8_t* p) {
    constexpr std::size_t kApart = std::size_t{8} * kPixelBytes;
    if constexpr (kPixelBytes == 6) {
        constexpr std::uint8_t kNone = 0x80;
        static constexpr std::uint8_t kFirst[16] = {1,     3,     5,     7,     7,     9,     11,    13,
                                                    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone};
        static constexpr std::uint8_t kLast[16] = {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
                                                   1,     3,     5,     7,     7,     9,     11,    13};
        return V::bitOr(V::shuffle(V::loadLanesApart(p, kApart), V::repeat(kFirst)),
                        V::shuffle(V::loadLanesApart(p + 12, kApart), V::repeat(kLast)));
    } else {
        return V::packUnsigned16(V::right16<8>(V::loadLanesApart(p, kApart)),
                                 V::right16<8>(V::loadLanesApart(p + 16, kApart)));
    }
}

template <unsigned kPixelBytes>
[[gnu::always_inline]] inline Pixels8 loadPixels8(const std::uint8_t* p) {
    if constexpr (kPixelBytes <= 4) {
        Pixels8 pixels;
        kPixelBytes == 3 ? V::unzipThrees(p, pixels.even, pixels.odd) : V::unzipFours(p, pixels.even, pixels.odd);
        return pixels;
    } else {
        const V::Bytes a = loadFours<kPixelBytes>(p);
        const V::Bytes b = loadFours<kPixelBytes>(p + 4 * kPixelBytes);
        return {V::unzipEven32(a, b), V::unzipOdd32(a, b)};
    }
}

// Four 16-bit words to a pixel, the first two apart from the last two.
struct Pixels16 {
    V::Bytes even01, even23, odd01, odd23;
};

template <unsigned kPixelBytes>
[[gnu::always_inline]] inline Pixels16 loadPixels16(const std::uint8_t* p) {
    Pixels16 pixels;
    if constexpr (kPixelBytes == 8) {
        V::unzipEights(p, pixels.even01, pixels.even23, pixels.odd01, pixels.odd23);
    } else {
        V::unzipSixes(p, pixels.even01, pixels.even23, pixels.odd01, pixels.odd23);
    }
    return pixels;
}
