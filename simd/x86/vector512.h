// The 64-byte vector; simd/x86/vector128.h says what the operations do.

#define FIKLEIPA_INLINE [[gnu::always_inline]] static inline

struct V512 {
    using Bytes = __m512i;
    using Floats = __m512;

    static constexpr std::size_t kBytes = 64;

    FIKLEIPA_INLINE __m128i load16(const std::uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    FIKLEIPA_INLINE __m256i load32(const std::uint8_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    FIKLEIPA_INLINE Bytes load(const std::uint8_t* p) { return _mm512_loadu_si512(p); }
    FIKLEIPA_INLINE void store(std::uint8_t* p, Bytes v) { _mm512_storeu_si512(p, v); }

    FIKLEIPA_INLINE Bytes repeat(const std::uint8_t (&bytes)[16]) { return _mm512_broadcast_i32x4(load16(bytes)); }
    FIKLEIPA_INLINE Bytes repeat8(int value) { return _mm512_set1_epi8(static_cast<char>(value)); }
    FIKLEIPA_INLINE Bytes repeat16(int value) { return _mm512_set1_epi16(static_cast<short>(value)); }
    FIKLEIPA_INLINE Floats repeatFloat(float value) { return _mm512_set1_ps(value); }

    FIKLEIPA_INLINE Bytes shuffle(Bytes v, Bytes mask) { return _mm512_shuffle_epi8(v, mask); }

    FIKLEIPA_INLINE Bytes bitAnd(Bytes a, Bytes b) { return _mm512_and_si512(a, b); }
    FIKLEIPA_INLINE Bytes bitOr(Bytes a, Bytes b) { return _mm512_or_si512(a, b); }
    FIKLEIPA_INLINE Bytes bitXor(Bytes a, Bytes b) { return _mm512_xor_si512(a, b); }
    template <unsigned kBits>
    FIKLEIPA_INLINE Bytes left16(Bytes v) {
        return _mm512_slli_epi16(v, kBits);
    }
    template <unsigned kBits>
    FIKLEIPA_INLINE Bytes right16(Bytes v) {
        return _mm512_srli_epi16(v, kBits);
    }
    FIKLEIPA_INLINE Bytes minUnsigned16(Bytes a, Bytes b) { return _mm512_min_epu16(a, b); }

    FIKLEIPA_INLINE Bytes packSigned32(Bytes a, Bytes b) { return _mm512_packs_epi32(a, b); }
    FIKLEIPA_INLINE Bytes packUnsigned32(Bytes a, Bytes b) { return _mm512_packus_epi32(a, b); }
    FIKLEIPA_INLINE Bytes packUnsigned16(Bytes a, Bytes b) { return _mm512_packus_epi16(a, b); }
    FIKLEIPA_INLINE Bytes zipLow8(Bytes a, Bytes b) { return _mm512_unpacklo_epi8(a, b); }
    FIKLEIPA_INLINE Bytes zipHigh8(Bytes a, Bytes b) { return _mm512_unpackhi_epi8(a, b); }
    FIKLEIPA_INLINE Bytes zipLow16(Bytes a, Bytes b) { return _mm512_unpacklo_epi16(a, b); }
    FIKLEIPA_INLINE Bytes zipHigh16(Bytes a, Bytes b) { return _mm512_unpackhi_epi16(a, b); }

    FIKLEIPA_INLINE Floats toFloat(Bytes v) { return _mm512_cvtepi32_ps(v); }
    FIKLEIPA_INLINE Bytes truncate(Floats v) { return _mm512_cvttps_epi32(v); }
    FIKLEIPA_INLINE Floats multiplyAdd(Floats a, Floats b, Floats c) { return _mm512_fmadd_ps(a, b, c); }

    FIKLEIPA_INLINE Bytes deal(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* c) {
        Bytes abc = _mm512_castsi256_si512(load32(a));
        abc = _mm512_inserti32x4(abc, load16(b), 2);
        abc = _mm512_inserti32x4(abc, load16(c), 3);
        return _mm512_permutexvar_epi32(_mm512_setr_epi32(0, 1, 8, 12, 2, 3, 9, 13, 4, 5, 10, 14, 6, 7, 11, 15), abc);
    }
    FIKLEIPA_INLINE Bytes deal(const std::uint8_t* a, const std::uint8_t* b) {
        const Bytes ab = _mm512_inserti64x4(_mm512_castsi256_si512(load32(a)), load32(b), 1);
        return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), ab);
    }

    FIKLEIPA_INLINE void storeLanes(std::uint8_t* p, Bytes a, Bytes b) {
        store(p, _mm512_permutex2var_epi64(a, _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11), b));
        store(p + kBytes, _mm512_permutex2var_epi64(a, _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15), b));
    }

    // Where byte i of storeLanesOf3() comes from: bytes 0 to 63 are a's, 64 to 127 b's.
    struct Of3 {
        std::uint8_t from[96];
        constexpr Of3() : from{} {
            for (unsigned i = 0; i < 96; ++i) {
                const unsigned pixel = i / 3;
                const unsigned lane = pixel / 8;
                from[i] = static_cast<std::uint8_t>((pixel / 4 % 2) * 64 + lane * 16 + pixel % 4 * 4 + i % 3);
            }
        }
    };
    FIKLEIPA_INLINE void storeLanesOf3(std::uint8_t* p, Bytes a, Bytes b) {
        static constexpr Of3 kOf3;
        store(p, _mm512_permutex2var_epi8(a, load(kOf3.from), b));
        const Bytes rest = _mm512_permutex2var_epi8(a, _mm512_castsi256_si512(load32(kOf3.from + 64)), b);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p + kBytes), _mm512_castsi512_si256(rest));
    }
};
