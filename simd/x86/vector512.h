// The 64-byte vector; simd/x86/vector128.h says what the operations do.

#define FIKLEIPA_INLINE [[gnu::always_inline]] static inline

struct V512 {
    using Bytes = __m512i;

    static constexpr std::size_t kBytes = 64;

    FIKLEIPA_INLINE __m128i load16(const std::uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    FIKLEIPA_INLINE Bytes load(const std::uint8_t* p) { return _mm512_loadu_si512(p); }
    FIKLEIPA_INLINE void store(std::uint8_t* p, Bytes v) { _mm512_storeu_si512(p, v); }

    FIKLEIPA_INLINE Bytes repeat(const std::uint8_t (&bytes)[16]) { return _mm512_broadcast_i32x4(load16(bytes)); }
    FIKLEIPA_INLINE Bytes repeat8(int value) { return _mm512_set1_epi8(static_cast<char>(value)); }
    FIKLEIPA_INLINE Bytes repeat16(int value) { return _mm512_set1_epi16(static_cast<short>(value)); }
    FIKLEIPA_INLINE Bytes repeat32(int value) { return _mm512_set1_epi32(value); }

    FIKLEIPA_INLINE Bytes shuffle(Bytes v, Bytes mask) { return _mm512_shuffle_epi8(v, mask); }

    FIKLEIPA_INLINE Bytes bitAnd(Bytes a, Bytes b) { return _mm512_and_si512(a, b); }
    FIKLEIPA_INLINE Bytes bitOr(Bytes a, Bytes b) { return _mm512_or_si512(a, b); }
    // 0xF8: a | (b & c)
    FIKLEIPA_INLINE Bytes orMasked(Bytes sum, Bytes v, Bytes mask) {
        return _mm512_ternarylogic_epi32(sum, v, mask, 0xF8);
    }
    FIKLEIPA_INLINE Bytes bitXor(Bytes a, Bytes b) { return _mm512_xor_si512(a, b); }
    template <unsigned kBits>
    FIKLEIPA_INLINE Bytes left16(Bytes v) {
        return _mm512_slli_epi16(v, kBits);
    }
    template <unsigned kBits>
    FIKLEIPA_INLINE Bytes right16(Bytes v) {
        return _mm512_srli_epi16(v, kBits);
    }
    template <unsigned kBits>
    FIKLEIPA_INLINE Bytes rightSigned16(Bytes v) {
        return _mm512_srai_epi16(v, kBits);
    }
    FIKLEIPA_INLINE Bytes min16(Bytes a, Bytes b) { return _mm512_min_epi16(a, b); }
    FIKLEIPA_INLINE Bytes max16(Bytes a, Bytes b) { return _mm512_max_epi16(a, b); }

    FIKLEIPA_INLINE Bytes packUnsigned16(Bytes a, Bytes b) { return _mm512_packus_epi16(a, b); }

    FIKLEIPA_INLINE Bytes add32(Bytes a, Bytes b) { return _mm512_add_epi32(a, b); }
    FIKLEIPA_INLINE Bytes dot(Bytes a, Bytes b) { return _mm512_madd_epi16(a, b); }
    FIKLEIPA_INLINE Bytes dot(Bytes sum, Bytes a, Bytes b) { return _mm512_dpwssd_epi32(sum, a, b); }
    FIKLEIPA_INLINE Bytes zipUpperHalves(Bytes a, Bytes b) {
        alignas(kBytes) static constexpr std::uint16_t kUpper[32] = {1,  33, 3,  35, 5,  37, 7,  39, 9,  41, 11,
                                                                     43, 13, 45, 15, 47, 17, 49, 19, 51, 21, 53,
                                                                     23, 55, 25, 57, 27, 59, 29, 61, 31, 63};
        return _mm512_permutex2var_epi16(a, _mm512_load_si512(kUpper), b);
    }

    FIKLEIPA_INLINE Bytes loadHalf(const std::uint8_t* p) {
        return _mm512_zextsi256_si512(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
    }
    FIKLEIPA_INLINE Bytes loadQuarter(const std::uint8_t* p) { return _mm512_zextsi128_si512(load16(p)); }
    struct Expansion {
        alignas(kBytes) std::uint8_t index[kBytes]{};
        constexpr explicit Expansion(const std::uint8_t (&from)[kBytes / 4]) {
            for (unsigned i = 0; i < kBytes; ++i) index[i] = from[i / 4];
        }
    };
    FIKLEIPA_INLINE Bytes expand(Bytes v, const Expansion& e) {
        return _mm512_maskz_permutexvar_epi8(0x6666666666666666, load(e.index), v);
    }

    // Where the bytes of pixels come from: bytes 0 to 63 are those of c02, 64 to 127 those of c13.
    template <unsigned kPixelBytes>
    struct Pixels {
        alignas(kBytes) std::uint8_t from[2 * kBytes]{};
        constexpr Pixels() {
            for (unsigned i = 0; i < kBytes / 2 * kPixelBytes; ++i) {
                const unsigned pixel = i / kPixelBytes;
                const unsigned component = i % kPixelBytes;
                from[i] =
                    static_cast<std::uint8_t>(component % 2 * 64 + pixel / 8 * 16 + component / 2 * 8 + pixel % 8);
            }
        }
    };
    FIKLEIPA_INLINE void storePixels32(std::uint8_t* p, Bytes c02, Bytes c13) {
        static constexpr Pixels<4> kPixels;
        store(p, _mm512_permutex2var_epi8(c02, load(kPixels.from), c13));
        store(p + kBytes, _mm512_permutex2var_epi8(c02, load(kPixels.from + kBytes), c13));
    }
    FIKLEIPA_INLINE void storePixels24(std::uint8_t* p, Bytes c02, Bytes c13) {
        static constexpr Pixels<3> kPixels;
        store(p, _mm512_permutex2var_epi8(c02, load(kPixels.from), c13));
        const Bytes rest = _mm512_permutex2var_epi8(c02, load(kPixels.from + kBytes), c13);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p + kBytes), _mm512_castsi512_si256(rest));
    }
};
