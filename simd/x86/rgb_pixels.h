// Storing blocks of pixels from vectors of words. Included by kernels, inside a namespace of simd/each_level.h and one
// without a name.

// The bytes of pixels: components 0 and 2 in turns of eight, and components 1 and 3.
struct PixelBytes {
    V::Bytes c02, c13;
};

// From words of components, whole numbers not yet limited.
template <Rgb8 kFormat>
[[gnu::always_inline]] inline PixelBytes pixelBytes(V::Bytes r, V::Bytes g, V::Bytes b) {
    constexpr bool kAlphaFirst = kFormat == Rgb8::Abgr || kFormat == Rgb8::Argb;
    constexpr bool kBlueFirst = kFormat == Rgb8::Bgra || kFormat == Rgb8::Bgr || kFormat == Rgb8::Abgr;
    const V::Bytes first = kBlueFirst ? b : r;
    const V::Bytes last = kBlueFirst ? r : b;
    const V::Bytes a = V::repeat16(255);
    if constexpr (kAlphaFirst) {
        return {V::packUnsigned16(a, g), V::packUnsigned16(first, last)};
    } else {
        return {V::packUnsigned16(first, last), V::packUnsigned16(g, a)};
    }
}

template <Rgb8 kFormat, Writes kWrites = Writes::ToCache>
[[gnu::always_inline]] inline void storeComponents(std::uint8_t* dst, V::Bytes r, V::Bytes g, V::Bytes b) {
    const PixelBytes pixels = pixelBytes<kFormat>(r, g, b);
    if constexpr (bytesPerPixel(kFormat) == 4) {
        V::storePixels32<kWrites>(dst, pixels.c02, pixels.c13);
    } else {
        V::storePixels24(dst, pixels.c02, pixels.c13);
    }
}

// Pixels of words of 0..255.
template <Rgb8 kFormat>
struct Store8 {
    static constexpr std::size_t kPixelBytes = bytesPerPixel(kFormat);

    template <Writes kWrites = Writes::ToCache>
    [[gnu::always_inline]] static void block(std::uint8_t* dst, V::Bytes r, V::Bytes g, V::Bytes b) {
        if constexpr (kPixelBytes == 2) {
            constexpr bool kBlueFirst = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Bgr555;
            constexpr bool k565 = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Rgb565;
            const V::Bytes first = V::left16 < k565 ? 8 : 7 > (kBlueFirst ? b : r);
            const V::Bytes last = V::right16<3>(kBlueFirst ? r : b);
            const V::Bytes twoOfThem =
                V::orMasked(last, V::left16 < k565 ? 3 : 2 > (g), V::repeat16(k565 ? 0x07E0 : 0x03E0));
            V::store<kWrites>(dst, V::orMasked(twoOfThem, first, V::repeat16(k565 ? 0xF800 : 0x7C00)));
        } else {
            storeComponents<kFormat, kWrites>(dst, r, g, b);
        }
    }
};

// Pixels of any words.
template <Rgb16 kFormat>
struct Store16 {
    static constexpr std::size_t kPixelBytes = bytesPerPixel(kFormat);

    template <Writes kWrites = Writes::ToCache>
    [[gnu::always_inline]] static void block(std::uint8_t* dst, V::Bytes r, V::Bytes g, V::Bytes b) {
        const V::Bytes a = V::repeat16(65535);
        if constexpr (kFormat == Rgb16::Bgra) V::storePixels64<kWrites>(dst, b, g, r, a);
        if constexpr (kFormat == Rgb16::Abgr) V::storePixels64<kWrites>(dst, a, b, g, r);
        if constexpr (kFormat == Rgb16::Rgba) V::storePixels64<kWrites>(dst, r, g, b, a);
        if constexpr (kFormat == Rgb16::Argb) V::storePixels64<kWrites>(dst, a, r, g, b);
        if constexpr (kFormat == Rgb16::Bgr) V::storePixels48(dst, b, g, r);
        if constexpr (kFormat == Rgb16::Rgb) V::storePixels48(dst, r, g, b);
    }
};
