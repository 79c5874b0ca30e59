// Storing blocks of pixels from vectors of words. Included by kernels, inside a namespace of simd/each_level.h and one
// without a name.

// Words of four components, whole numbers not yet limited, into pixels.
template <Rgb8 kFormat, Writes kWrites = Writes::ToCache>
[[gnu::always_inline]] inline void storeBytes(std::uint8_t* dst, V::Bytes c0, V::Bytes c1, V::Bytes c2, V::Bytes c3) {
    const V::Bytes c02 = V::packUnsigned16(c0, c2);
    const V::Bytes c13 = V::packUnsigned16(c1, c3);
    if constexpr (bytesPerPixel(kFormat) == 4) {
        V::storePixels32<kWrites>(dst, c02, c13);
    } else {
        V::storePixels24(dst, c02, c13);
    }
}

template <Rgb8 kFormat, Writes kWrites = Writes::ToCache>
[[gnu::always_inline]] inline void storeComponents(std::uint8_t* dst, V::Bytes r, V::Bytes g, V::Bytes b) {
    const V::Bytes a = V::repeat16(255);
    if constexpr (kFormat == Rgb8::Bgra || kFormat == Rgb8::Bgr) storeBytes<kFormat, kWrites>(dst, b, g, r, a);
    if constexpr (kFormat == Rgb8::Rgba || kFormat == Rgb8::Rgb) storeBytes<kFormat, kWrites>(dst, r, g, b, a);
    if constexpr (kFormat == Rgb8::Abgr) storeBytes<kFormat, kWrites>(dst, a, b, g, r);
    if constexpr (kFormat == Rgb8::Argb) storeBytes<kFormat, kWrites>(dst, a, r, g, b);
}

// Pixels of words of 0..255.
template <Rgb8 kFormat>
struct Store8 {
    static constexpr std::size_t kPixelBytes = bytesPerPixel(kFormat);

    [[gnu::always_inline]] static void block(std::uint8_t* dst, V::Bytes r, V::Bytes g, V::Bytes b) {
        if constexpr (kPixelBytes == 2) {
            constexpr bool kBlueFirst = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Bgr555;
            constexpr bool k565 = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Rgb565;
            const V::Bytes first = V::left16 < k565 ? 8 : 7 > (kBlueFirst ? b : r);
            const V::Bytes last = V::right16<3>(kBlueFirst ? r : b);
            const V::Bytes twoOfThem =
                V::orMasked(last, V::left16 < k565 ? 3 : 2 > (g), V::repeat16(k565 ? 0x07E0 : 0x03E0));
            V::store(dst, V::orMasked(twoOfThem, first, V::repeat16(k565 ? 0xF800 : 0x7C00)));
        } else {
            storeComponents<kFormat>(dst, r, g, b);
        }
    }
};

// Pixels of any words.
template <Rgb16 kFormat>
struct Store16 {
    static constexpr std::size_t kPixelBytes = bytesPerPixel(kFormat);

    [[gnu::always_inline]] static void block(std::uint8_t* dst, V::Bytes r, V::Bytes g, V::Bytes b) {
        const V::Bytes a = V::repeat16(65535);
        if constexpr (kFormat == Rgb16::Bgra) V::storePixels64(dst, b, g, r, a);
        if constexpr (kFormat == Rgb16::Abgr) V::storePixels64(dst, a, b, g, r);
        if constexpr (kFormat == Rgb16::Rgba) V::storePixels64(dst, r, g, b, a);
        if constexpr (kFormat == Rgb16::Argb) V::storePixels64(dst, a, r, g, b);
        if constexpr (kFormat == Rgb16::Bgr) V::storePixels48(dst, b, g, r);
        if constexpr (kFormat == Rgb16::Rgb) V::storePixels48(dst, r, g, b);
    }
};
