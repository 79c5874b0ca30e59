// The 16-byte vector. One of the three files that give kernels their vector type; all three offer the same operations,
// and what they say of lanes is always of lanes of 16 bytes. Included inside a namespace of simd/each_level.h.

#define FIKLEIPA_INLINE [[gnu::always_inline]] static inline

struct V128 {
    using Bytes = __m128i; // bytes, 16-bit words or 32-bit integers

    static constexpr std::size_t kBytes = 16;

    FIKLEIPA_INLINE Bytes load(const std::uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    FIKLEIPA_INLINE void store(std::uint8_t* p, Bytes v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

    // The same 16 bytes in every lane.
    FIKLEIPA_INLINE Bytes repeat(const std::uint8_t (&bytes)[16]) { return load(bytes); }
    FIKLEIPA_INLINE Bytes repeat8(int value) { return _mm_set1_epi8(static_cast<char>(value)); }
    FIKLEIPA_INLINE Bytes repeat16(int value) { return _mm_set1_epi16(static_cast<short>(value)); }
    FIKLEIPA_INLINE Bytes repeat32(int value) { return _mm_set1_epi32(value); }

    // Within each lane: byte i is byte mask[i] of v, or 0 where mask[i] is 0x80 or more.
    FIKLEIPA_INLINE Bytes shuffle(Bytes v, Bytes mask) { return _mm_shuffle_epi8(v, mask); }

    FIKLEIPA_INLINE Bytes bitAnd(Bytes a, Bytes b) { return _mm_and_si128(a, b); }
    FIKLEIPA_INLINE Bytes bitOr(Bytes a, Bytes b) { return _mm_or_si128(a, b); }
    // sum | (v & mask)
    FIKLEIPA_INLINE Bytes orMasked(Bytes sum, Bytes v, Bytes mask) { return bitOr(sum, bitAnd(v, mask)); }
    FIKLEIPA_INLINE Bytes bitXor(Bytes a, Bytes b) { return _mm_xor_si128(a, b); }
    template <int kBits>
    FIKLEIPA_INLINE Bytes left16(Bytes v) {
        return _mm_slli_epi16(v, kBits);
    }
    template <int kBits>
    FIKLEIPA_INLINE Bytes right16(Bytes v) {
        return _mm_srli_epi16(v, kBits);
    }
    template <int kBits>
    FIKLEIPA_INLINE Bytes rightSigned16(Bytes v) {
        return _mm_srai_epi16(v, kBits);
    }
    FIKLEIPA_INLINE Bytes min16(Bytes a, Bytes b) { return _mm_min_epi16(a, b); }
    FIKLEIPA_INLINE Bytes max16(Bytes a, Bytes b) { return _mm_max_epi16(a, b); }

    // Narrowing with saturation; in each lane the results of a come before those of b.
    FIKLEIPA_INLINE Bytes packUnsigned16(Bytes a, Bytes b) { return _mm_packus_epi16(a, b); }

    FIKLEIPA_INLINE Bytes add32(Bytes a, Bytes b) { return _mm_add_epi32(a, b); }
    // In every 32-bit integer the sum of the products of the two signed 16-bit halves; the second form adds it to sum.
    FIKLEIPA_INLINE Bytes dot(Bytes a, Bytes b) { return _mm_madd_epi16(a, b); }
    FIKLEIPA_INLINE Bytes dot(Bytes sum, Bytes a, Bytes b) { return add32(sum, dot(a, b)); }
    // 16-bit words: the upper halves of the 32-bit integers of a and of b in turn.
    FIKLEIPA_INLINE Bytes zipUpperHalves(Bytes a, Bytes b) { return _mm_blend_epi16(_mm_srli_epi32(a, 16), b, 0xAA); }

    // kBytes / 2 or kBytes / 4 bytes, for expand() alone.
    FIKLEIPA_INLINE Bytes loadHalf(const std::uint8_t* p) {
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
    }
    FIKLEIPA_INLINE Bytes loadQuarter(const std::uint8_t* p) {
        std::int32_t bytes;
        __builtin_memcpy(&bytes, p, sizeof bytes);
        return _mm_cvtsi32_si128(bytes);
    }
    // Brings byte from[i] of what was loaded into the two middle bytes of 32-bit integer i and clears the outer ones.
    // A byte must not leave its lane, unless it was loaded by loadHalf() or loadQuarter().
    struct Expansion {
        alignas(kBytes) std::uint8_t mask[kBytes]{};
        constexpr explicit Expansion(const std::uint8_t (&from)[kBytes / 4]) {
            for (unsigned i = 0; i < kBytes; ++i) {
                mask[i] = static_cast<std::uint8_t>(i % 4 == 1 || i % 4 == 2 ? from[i / 4] % 16 : 0x80);
            }
        }
    };
    FIKLEIPA_INLINE Bytes expand(Bytes v, const Expansion& e) { return shuffle(v, load(e.mask)); }

    // Stores 32-bit pixels. Of their bytes, in every lane eight of the first come before eight of the third in c02, and
    // eight of the second before eight of the fourth in c13.
    FIKLEIPA_INLINE void storePixels32(std::uint8_t* p, Bytes c02, Bytes c13) {
        const Bytes c01 = _mm_unpacklo_epi8(c02, c13);
        const Bytes c23 = _mm_unpackhi_epi8(c02, c13);
        store(p, _mm_unpacklo_epi16(c01, c23));
        store(p + kBytes, _mm_unpackhi_epi16(c01, c23));
    }
    // The same without the fourth byte.
    FIKLEIPA_INLINE void storePixels24(std::uint8_t* p, Bytes c02, Bytes c13) {
        const Bytes c01 = _mm_unpacklo_epi8(c02, c13);
        const Bytes c23 = _mm_unpackhi_epi8(c02, c13);
        const Bytes drop = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
        const Bytes a12 = shuffle(_mm_unpacklo_epi16(c01, c23), drop);
        const Bytes b12 = shuffle(_mm_unpackhi_epi16(c01, c23), drop);
        store(p, bitOr(a12, _mm_slli_si128(b12, 12)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 16), _mm_srli_si128(b12, 4));
    }
};
