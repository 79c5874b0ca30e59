// The 32-byte vector; simd/x86/vector128.h says what the operations do.

#define FIKLEIPA_INLINE [[gnu::always_inline]] static inline

struct V256 {
    using Bytes = __m256i;

    static constexpr std::size_t kBytes = 32;

    FIKLEIPA_INLINE __m128i load16(const std::uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    FIKLEIPA_INLINE Bytes load(const std::uint8_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    FIKLEIPA_INLINE void store(std::uint8_t* p, Bytes v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

    FIKLEIPA_INLINE Bytes repeat(const std::uint8_t (&bytes)[16]) { return _mm256_broadcastsi128_si256(load16(bytes)); }
    FIKLEIPA_INLINE Bytes repeat8(int value) { return _mm256_set1_epi8(static_cast<char>(value)); }
    FIKLEIPA_INLINE Bytes repeat16(int value) { return _mm256_set1_epi16(static_cast<short>(value)); }
    FIKLEIPA_INLINE Bytes repeat32(int value) { return _mm256_set1_epi32(value); }

    FIKLEIPA_INLINE Bytes shuffle(Bytes v, Bytes mask) { return _mm256_shuffle_epi8(v, mask); }

    FIKLEIPA_INLINE Bytes bitAnd(Bytes a, Bytes b) { return _mm256_and_si256(a, b); }
    FIKLEIPA_INLINE Bytes bitOr(Bytes a, Bytes b) { return _mm256_or_si256(a, b); }
    FIKLEIPA_INLINE Bytes orMasked(Bytes sum, Bytes v, Bytes mask) { return bitOr(sum, bitAnd(v, mask)); }
    FIKLEIPA_INLINE Bytes bitXor(Bytes a, Bytes b) { return _mm256_xor_si256(a, b); }
    template <int kBits>
    FIKLEIPA_INLINE Bytes left16(Bytes v) {
        return _mm256_slli_epi16(v, kBits);
    }
    template <int kBits>
    FIKLEIPA_INLINE Bytes right16(Bytes v) {
        return _mm256_srli_epi16(v, kBits);
    }
    template <int kBits>
    FIKLEIPA_INLINE Bytes rightSigned16(Bytes v) {
        return _mm256_srai_epi16(v, kBits);
    }
    FIKLEIPA_INLINE Bytes min16(Bytes a, Bytes b) { return _mm256_min_epi16(a, b); }
    FIKLEIPA_INLINE Bytes max16(Bytes a, Bytes b) { return _mm256_max_epi16(a, b); }

    FIKLEIPA_INLINE Bytes packUnsigned16(Bytes a, Bytes b) { return _mm256_packus_epi16(a, b); }

    FIKLEIPA_INLINE Bytes add32(Bytes a, Bytes b) { return _mm256_add_epi32(a, b); }
    FIKLEIPA_INLINE Bytes dot(Bytes a, Bytes b) { return _mm256_madd_epi16(a, b); }
    FIKLEIPA_INLINE Bytes dot(Bytes sum, Bytes a, Bytes b) { return add32(sum, dot(a, b)); }
    FIKLEIPA_INLINE Bytes zipUpperHalves(Bytes a, Bytes b) {
        return _mm256_blend_epi16(_mm256_srli_epi32(a, 16), b, 0xAA);
    }

    // Both lanes get the same bytes and pick their own.
    FIKLEIPA_INLINE Bytes loadHalf(const std::uint8_t* p) { return _mm256_broadcastsi128_si256(load16(p)); }
    FIKLEIPA_INLINE Bytes loadQuarter(const std::uint8_t* p) {
        return _mm256_broadcastq_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
    }
    struct Expansion {
        alignas(kBytes) std::uint8_t mask[kBytes]{};
        constexpr explicit Expansion(const std::uint8_t (&from)[kBytes / 4]) {
            for (unsigned i = 0; i < kBytes; ++i) {
                mask[i] = static_cast<std::uint8_t>(i % 4 == 1 || i % 4 == 2 ? from[i / 4] % 16 : 0x80);
            }
        }
    };
    FIKLEIPA_INLINE Bytes expand(Bytes v, const Expansion& e) { return shuffle(v, load(e.mask)); }

    FIKLEIPA_INLINE void storePixels32(std::uint8_t* p, Bytes c02, Bytes c13) {
        const Bytes c01 = _mm256_unpacklo_epi8(c02, c13);
        const Bytes c23 = _mm256_unpackhi_epi8(c02, c13);
        const Bytes a = _mm256_unpacklo_epi16(c01, c23);
        const Bytes b = _mm256_unpackhi_epi16(c01, c23);
        store(p, _mm256_permute2x128_si256(a, b, 0x20));
        store(p + kBytes, _mm256_permute2x128_si256(a, b, 0x31));
    }
    FIKLEIPA_INLINE void storePixels24(std::uint8_t* p, Bytes c02, Bytes c13) {
        const Bytes c01 = _mm256_unpacklo_epi8(c02, c13);
        const Bytes c23 = _mm256_unpackhi_epi8(c02, c13);
        // Twelve bytes of each lane are kept, three 32-bit units; the units are then put where they belong.
        const Bytes drop =
            _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
        const Bytes a12 = shuffle(_mm256_unpacklo_epi16(c01, c23), drop);
        const Bytes b12 = shuffle(_mm256_unpackhi_epi16(c01, c23), drop);
        const Bytes a8 = _mm256_permutevar8x32_epi32(a12, _mm256_setr_epi32(0, 1, 2, 0, 0, 0, 4, 5));
        const Bytes b8 = _mm256_permutevar8x32_epi32(b12, _mm256_setr_epi32(0, 0, 0, 0, 1, 2, 0, 0));
        store(p, _mm256_blend_epi32(a8, b8, 0b00111000));
        const __m128i a4 = _mm_srli_si128(_mm256_extracti128_si256(a12, 1), 8);
        const __m128i b4 = _mm_slli_si128(_mm256_extracti128_si256(b12, 1), 4);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p + kBytes), _mm_or_si128(a4, b4));
    }
};
