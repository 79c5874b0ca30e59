// Storing blocks of three- and four-byte pixels. Included by kernels, inside a namespace of simd/each_level.h and one
// without a name.

// Words of four components, whole numbers not yet limited, into pixels.
template <Rgb8 kFormat>
[[gnu::always_inline]] inline void storeBytes(std::uint8_t* dst, V::Bytes c0, V::Bytes c1, V::Bytes c2, V::Bytes c3) {
    const V::Bytes c02 = V::packUnsigned16(c0, c2);
    const V::Bytes c13 = V::packUnsigned16(c1, c3);
    if constexpr (bytesPerPixel(kFormat) == 4) {
        V::storePixels32(dst, c02, c13);
    } else {
        V::storePixels24(dst, c02, c13);
    }
}

template <Rgb8 kFormat>
[[gnu::always_inline]] inline void storeComponents(std::uint8_t* dst, V::Bytes r, V::Bytes g, V::Bytes b) {
    const V::Bytes a = V::repeat16(255);
    if constexpr (kFormat == Rgb8::Bgra || kFormat == Rgb8::Bgr) storeBytes<kFormat>(dst, b, g, r, a);
    if constexpr (kFormat == Rgb8::Rgba || kFormat == Rgb8::Rgb) storeBytes<kFormat>(dst, r, g, b, a);
    if constexpr (kFormat == Rgb8::Abgr) storeBytes<kFormat>(dst, a, b, g, r);
    if constexpr (kFormat == Rgb8::Argb) storeBytes<kFormat>(dst, a, r, g, b);
}
