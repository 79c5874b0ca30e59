// The 16-byte vector. One of the three files that give kernels their vector type; all three offer the same operations,
// and what they say of lanes is always of lanes of 16 bytes. Included inside a namespace of simd/each_level.h.

#define FIKLEIPA_INLINE [[gnu::always_inline]] static inline

struct V128 {
    using Bytes = __m128i; // bytes, 16-bit words or 32-bit integers
    using Floats = __m128;

    static constexpr std::size_t kBytes = 16;

    FIKLEIPA_INLINE Bytes load(const std::uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    FIKLEIPA_INLINE void store(std::uint8_t* p, Bytes v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

    // The same 16 bytes in every lane.
    FIKLEIPA_INLINE Bytes repeat(const std::uint8_t (&bytes)[16]) { return load(bytes); }
    FIKLEIPA_INLINE Bytes repeat8(int value) { return _mm_set1_epi8(static_cast<char>(value)); }
    FIKLEIPA_INLINE Bytes repeat16(int value) { return _mm_set1_epi16(static_cast<short>(value)); }
    FIKLEIPA_INLINE Floats repeatFloat(float value) { return _mm_set1_ps(value); }

    // Within each lane: byte i is byte mask[i] of v, or 0 where mask[i] is 0x80 or more.
    FIKLEIPA_INLINE Bytes shuffle(Bytes v, Bytes mask) { return _mm_shuffle_epi8(v, mask); }

    FIKLEIPA_INLINE Bytes bitAnd(Bytes a, Bytes b) { return _mm_and_si128(a, b); }
    FIKLEIPA_INLINE Bytes bitOr(Bytes a, Bytes b) { return _mm_or_si128(a, b); }
    FIKLEIPA_INLINE Bytes bitXor(Bytes a, Bytes b) { return _mm_xor_si128(a, b); }
    template <int kBits>
    FIKLEIPA_INLINE Bytes left16(Bytes v) {
        return _mm_slli_epi16(v, kBits);
    }
    template <int kBits>
    FIKLEIPA_INLINE Bytes right16(Bytes v) {
        return _mm_srli_epi16(v, kBits);
    }
    FIKLEIPA_INLINE Bytes minUnsigned16(Bytes a, Bytes b) { return _mm_min_epu16(a, b); }

    // Narrowing with saturation; in each lane the results of a come before those of b.
    FIKLEIPA_INLINE Bytes packSigned32(Bytes a, Bytes b) { return _mm_packs_epi32(a, b); }
    FIKLEIPA_INLINE Bytes packUnsigned32(Bytes a, Bytes b) { return _mm_packus_epi32(a, b); }
    FIKLEIPA_INLINE Bytes packUnsigned16(Bytes a, Bytes b) { return _mm_packus_epi16(a, b); }
    // Interleaving of the lower and of the upper half of each lane.
    FIKLEIPA_INLINE Bytes zipLow8(Bytes a, Bytes b) { return _mm_unpacklo_epi8(a, b); }
    FIKLEIPA_INLINE Bytes zipHigh8(Bytes a, Bytes b) { return _mm_unpackhi_epi8(a, b); }
    FIKLEIPA_INLINE Bytes zipLow16(Bytes a, Bytes b) { return _mm_unpacklo_epi16(a, b); }
    FIKLEIPA_INLINE Bytes zipHigh16(Bytes a, Bytes b) { return _mm_unpackhi_epi16(a, b); }

    FIKLEIPA_INLINE Floats toFloat(Bytes v) { return _mm_cvtepi32_ps(v); }
    FIKLEIPA_INLINE Bytes truncate(Floats v) { return _mm_cvttps_epi32(v); }
    // a x b + c; whether the product is rounded on its own depends on the level.
    FIKLEIPA_INLINE Floats multiplyAdd(Floats a, Floats b, Floats c) { return _mm_add_ps(_mm_mul_ps(a, b), c); }

    // kBytes / 2 bytes of a, then kBytes / 4 of b and of c, dealt out so that every lane holds 8, 4 and 4 of them.
    FIKLEIPA_INLINE Bytes deal(const std::uint8_t* a, const std::uint8_t* b, const std::uint8_t* c) {
        std::int32_t b4;
        std::int32_t c4;
        __builtin_memcpy(&b4, b, 4);
        __builtin_memcpy(&c4, c, 4);
        const __m128i bc = _mm_insert_epi32(_mm_cvtsi32_si128(b4), c4, 1);
        return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(a)), bc);
    }
    // kBytes / 2 bytes of a and of b, dealt out so that every lane holds 8 and 8 of them.
    FIKLEIPA_INLINE Bytes deal(const std::uint8_t* a, const std::uint8_t* b) {
        return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(a)),
                                  _mm_loadl_epi64(reinterpret_cast<const __m128i*>(b)));
    }

    // Stores lane 0 of a, lane 0 of b, lane 1 of a, and so on.
    FIKLEIPA_INLINE void storeLanes(std::uint8_t* p, Bytes a, Bytes b) {
        store(p, a);
        store(p + kBytes, b);
    }
    // The same order, of the first three bytes of every four: 3/4 x 2 x kBytes bytes in all.
    FIKLEIPA_INLINE void storeLanesOf3(std::uint8_t* p, Bytes a, Bytes b) {
        const Bytes drop = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
        const Bytes a12 = shuffle(a, drop);
        const Bytes b12 = shuffle(b, drop);
        store(p, bitOr(a12, _mm_slli_si128(b12, 12)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 16), _mm_srli_si128(b12, 4));
    }
};
