// The 32-byte vector; simd/x86/vector128.h says what the operations do.

#define FIKLEIPA_INLINE [[gnu::always_inline]] static inline

struct V256 {
    using Bytes = __m256i;

    static constexpr std::size_t kBytes = 32;
    static constexpr bool kPartial = false;

    FIKLEIPA_INLINE __m128i load16(const std::uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    FIKLEIPA_INLINE Bytes load(const std::uint8_t* p) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
    }
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void store(std::uint8_t* p, Bytes v) {
        if constexpr (kWrites == Writes::PastCache) {
            _mm256_stream_si256(reinterpret_cast<__m256i*>(p), v);
        } else {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
        }
    }

    FIKLEIPA_INLINE void leave() { _mm256_zeroupper(); }

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
    template <int kBits>
    FIKLEIPA_INLINE Bytes left32(Bytes v) {
        return _mm256_slli_epi32(v, kBits);
    }
    template <int kBits>
    FIKLEIPA_INLINE Bytes right32(Bytes v) {
        return _mm256_srli_epi32(v, kBits);
    }
    FIKLEIPA_INLINE Bytes min16(Bytes a, Bytes b) { return _mm256_min_epi16(a, b); }
    FIKLEIPA_INLINE Bytes max16(Bytes a, Bytes b) { return _mm256_max_epi16(a, b); }
    FIKLEIPA_INLINE Bytes minUnsigned16(Bytes a, Bytes b) { return _mm256_min_epu16(a, b); }
    FIKLEIPA_INLINE Bytes multiplyUpper16(Bytes a, Bytes b) { return _mm256_mulhi_epu16(a, b); } // unsigned
    FIKLEIPA_INLINE bool anyOf(Bytes v, Bytes bits) { return _mm256_testz_si256(v, bits) == 0; }

    FIKLEIPA_INLINE Bytes packUnsigned16(Bytes a, Bytes b) { return _mm256_packus_epi16(a, b); }

    template <int kBits>
    FIKLEIPA_INLINE Bytes rightSigned32(Bytes v) {
        return _mm256_srai_epi32(v, kBits);
    }
    FIKLEIPA_INLINE Bytes scale32(Bytes v, float factor) {
        return _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(v), _mm256_set1_ps(factor)));
    }
    FIKLEIPA_INLINE Bytes scaleBits32(Bytes v, float factor) {
        const __m256 excess = _mm256_set1_ps(8388608.0F * factor);
        return _mm256_cvttps_epi32(_mm256_fmsub_ps(_mm256_castsi256_ps(v), _mm256_set1_ps(factor), excess));
    }
    FIKLEIPA_INLINE Bytes alternate16(Bytes even, Bytes odd) { return _mm256_blend_epi16(even, odd, 0xAA); }
    FIKLEIPA_INLINE Bytes withEvenWords(Bytes v, Bytes half) {
        return alternate16(_mm256_cvtepu16_epi32(_mm256_castsi256_si128(half)), v);
    }
    FIKLEIPA_INLINE Bytes withOddWords(Bytes v, Bytes half) {
        return alternate16(v, _mm256_slli_epi32(_mm256_cvtepu16_epi32(_mm256_castsi256_si128(half)), 16));
    }
    FIKLEIPA_INLINE Bytes zipLower16(Bytes a, Bytes b) { return _mm256_unpacklo_epi16(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper16(Bytes a, Bytes b) { return _mm256_unpackhi_epi16(a, b); }
    FIKLEIPA_INLINE Bytes packUnsigned32(Bytes a, Bytes b) { return _mm256_packus_epi32(a, b); }
    // What was packed of a and b, that of a and then that of b.
    FIKLEIPA_INLINE Bytes inOrder(Bytes packed) { return _mm256_permute4x64_epi64(packed, _MM_SHUFFLE(3, 1, 2, 0)); }

    FIKLEIPA_INLINE Bytes multiply16(Bytes a, Bytes b) { return _mm256_mullo_epi16(a, b); }
    FIKLEIPA_INLINE Bytes add16(Bytes a, Bytes b) { return _mm256_add_epi16(a, b); }
    FIKLEIPA_INLINE Bytes addLimited16(Bytes a, Bytes b) { return _mm256_adds_epu16(a, b); }
    FIKLEIPA_INLINE Bytes add32(Bytes a, Bytes b) { return _mm256_add_epi32(a, b); }
    FIKLEIPA_INLINE Bytes dot(Bytes a, Bytes b) { return _mm256_madd_epi16(a, b); }
    FIKLEIPA_INLINE Bytes dot(Bytes sum, Bytes a, Bytes b) { return add32(sum, dot(a, b)); }
    FIKLEIPA_INLINE Bytes zipUpperHalves(Bytes a, Bytes b) {
        return _mm256_blend_epi16(_mm256_srli_epi32(a, 16), b, 0xAA);
    }
    FIKLEIPA_INLINE Bytes zipLowerHalves(Bytes a, Bytes b) {
        return _mm256_blend_epi16(a, _mm256_slli_epi32(b, 16), 0xAA);
    }
    template <int kFrom>
    FIKLEIPA_INLINE Bytes joined32(Bytes a, Bytes b) {
        const Bytes middle = _mm256_permute2x128_si256(a, b, 0x21);
        if constexpr (kFrom < 4) {
            return _mm256_alignr_epi8(middle, a, 4 * kFrom);
        } else {
            return _mm256_alignr_epi8(b, middle, 4 * (kFrom - 4));
        }
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

    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void storePixels32(std::uint8_t* p, Bytes c02, Bytes c13) {
        const Bytes c01 = _mm256_unpacklo_epi8(c02, c13);
        const Bytes c23 = _mm256_unpackhi_epi8(c02, c13);
        const Bytes a = _mm256_unpacklo_epi16(c01, c23);
        const Bytes b = _mm256_unpackhi_epi16(c01, c23);
        store<kWrites>(p, _mm256_permute2x128_si256(a, b, 0x20));
        store<kWrites>(p + kBytes, _mm256_permute2x128_si256(a, b, 0x31));
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

    FIKLEIPA_INLINE void storeLowerBytes(std::uint8_t* p, Bytes v) {
        const Bytes bytes = bitAnd(v, repeat16(255));
        const Bytes ordered = _mm256_permute4x64_epi64(_mm256_packus_epi16(bytes, bytes), 0b1000);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(ordered));
    }
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void storePixels64(std::uint8_t* p, Bytes c0, Bytes c1, Bytes c2, Bytes c3) {
        const Bytes low01 = zipLower16(c0, c1);
        const Bytes low23 = zipLower16(c2, c3);
        const Bytes high01 = zipUpper16(c0, c1);
        const Bytes high23 = zipUpper16(c2, c3);
        const Bytes a = _mm256_unpacklo_epi32(low01, low23);
        const Bytes b = _mm256_unpackhi_epi32(low01, low23);
        const Bytes c = _mm256_unpacklo_epi32(high01, high23);
        const Bytes d = _mm256_unpackhi_epi32(high01, high23);
        store<kWrites>(p, _mm256_permute2x128_si256(a, b, 0x20));
        store<kWrites>(p + kBytes, _mm256_permute2x128_si256(c, d, 0x20));
        store<kWrites>(p + 2 * kBytes, _mm256_permute2x128_si256(a, b, 0x31));
        store<kWrites>(p + 3 * kBytes, _mm256_permute2x128_si256(c, d, 0x31));
    }
    FIKLEIPA_INLINE void storePixels48(std::uint8_t* p, Bytes c0, Bytes c1, Bytes c2) {
        const Bytes low01 = zipLower16(c0, c1);
        const Bytes low2 = zipLower16(c2, c2);
        const Bytes high01 = zipUpper16(c0, c1);
        const Bytes high2 = zipUpper16(c2, c2);
        const Bytes drop =
            _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1));
        const Bytes a = shuffle(_mm256_unpacklo_epi32(low01, low2), drop);
        const Bytes b = shuffle(_mm256_unpackhi_epi32(low01, low2), drop);
        const Bytes c = shuffle(_mm256_unpacklo_epi32(high01, high2), drop);
        const Bytes d = shuffle(_mm256_unpackhi_epi32(high01, high2), drop);
        const Bytes first = bitOr(a, _mm256_slli_si256(b, 12));
        const Bytes second = bitOr(_mm256_srli_si256(b, 4), _mm256_slli_si256(c, 8));
        const Bytes third = bitOr(_mm256_srli_si256(c, 8), _mm256_slli_si256(d, 4));
        store(p, _mm256_permute2x128_si256(first, second, 0x20));
        store(p + kBytes, _mm256_permute2x128_si256(third, first, 0x30));
        store(p + 2 * kBytes, _mm256_permute2x128_si256(second, third, 0x31));
    }

    FIKLEIPA_INLINE Bytes zipLower8(Bytes a, Bytes b) { return _mm256_unpacklo_epi8(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper8(Bytes a, Bytes b) { return _mm256_unpackhi_epi8(a, b); }

    FIKLEIPA_INLINE void store16(std::uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
    FIKLEIPA_INLINE Bytes loadLanes(const std::uint8_t* lower, const std::uint8_t* upper) {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(load16(lower)), load16(upper), 1);
    }

    FIKLEIPA_INLINE Bytes loadTwelves(const std::uint8_t* p) { return loadLanes(p, p + 12); }
    FIKLEIPA_INLINE void storeTwelves(std::uint8_t* p, Bytes v) {
        store(p, _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7)));
    }
    FIKLEIPA_INLINE __m128i loadEights(const std::uint8_t* p, const std::uint8_t* q) {
        return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)),
                                  _mm_loadl_epi64(reinterpret_cast<const __m128i*>(q)));
    }
    FIKLEIPA_INLINE void storeEights(std::uint8_t* p, std::uint8_t* q, __m128i v) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(q), _mm_unpackhi_epi64(v, v));
    }
    FIKLEIPA_INLINE Bytes loadSixes(const std::uint8_t* p, const std::uint8_t* q) {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(loadEights(p, q)), loadEights(p + 6, q + 6), 1);
    }
    FIKLEIPA_INLINE void storeSixes(std::uint8_t* p, std::uint8_t* q, Bytes v) {
        storeEights(p, q, _mm256_castsi256_si128(v));
        storeEights(p + 6, q + 6, _mm256_extracti128_si256(v, 1));
    }

    FIKLEIPA_INLINE void loadLanePairs(const std::uint8_t* p, Bytes& even, Bytes& odd) {
        even = loadLanes(p, p + 32);
        odd = loadLanes(p + 16, p + 48);
    }
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void storeLanePairs(std::uint8_t* p, Bytes even, Bytes odd) {
        store<kWrites>(p, _mm256_permute2x128_si256(even, odd, 0x20));
        store<kWrites>(p + kBytes, _mm256_permute2x128_si256(even, odd, 0x31));
    }
    FIKLEIPA_INLINE void storeTwentyFours(std::uint8_t* p, Bytes first, Bytes last) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(first));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 8), _mm256_castsi256_si128(last));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 24), _mm256_extracti128_si256(first, 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 32), _mm256_extracti128_si256(last, 1));
    }

    FIKLEIPA_INLINE Bytes widen16(const std::uint8_t* p) { return _mm256_cvtepu16_epi32(load16(p)); }
    FIKLEIPA_INLINE void storeUnzipped16(std::uint8_t* p, std::uint8_t* q, Bytes v) {
        const Bytes from =
            _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15));
        const Bytes halves = _mm256_permute4x64_epi64(shuffle(v, from), _MM_SHUFFLE(3, 1, 2, 0));
        store16(p, _mm256_castsi256_si128(halves));
        store16(q, _mm256_extracti128_si256(halves, 1));
    }

    FIKLEIPA_INLINE Bytes loadLanesApart(const std::uint8_t* p, std::size_t apart) { return loadLanes(p, p + apart); }
    FIKLEIPA_INLINE Bytes unzipEven32(Bytes a, Bytes b) {
        return _mm256_castps_si256(
            _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
    }
    FIKLEIPA_INLINE Bytes unzipOdd32(Bytes a, Bytes b) {
        return _mm256_castps_si256(
            _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
    }
    FIKLEIPA_INLINE Bytes zipLower32(Bytes a, Bytes b) { return _mm256_unpacklo_epi32(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper32(Bytes a, Bytes b) { return _mm256_unpackhi_epi32(a, b); }
    FIKLEIPA_INLINE Bytes zipLower64(Bytes a, Bytes b) { return _mm256_unpacklo_epi64(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper64(Bytes a, Bytes b) { return _mm256_unpackhi_epi64(a, b); }
    FIKLEIPA_INLINE Bytes packSigned32(Bytes a, Bytes b) { return _mm256_packs_epi32(a, b); }
    FIKLEIPA_INLINE Bytes packSigned16(Bytes a, Bytes b) { return _mm256_packs_epi16(a, b); }
    FIKLEIPA_INLINE Bytes pickBySign32(Bytes v, Bytes positive, Bytes negative) {
        return _mm256_castps_si256(
            _mm256_blendv_ps(_mm256_castsi256_ps(positive), _mm256_castsi256_ps(negative), _mm256_castsi256_ps(v)));
    }

    FIKLEIPA_INLINE Bytes loadZipped8(const std::uint8_t* p, const std::uint8_t* q) {
        const __m128i a = load16(p);
        const __m128i b = load16(q);
        return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_unpacklo_epi8(a, b)), _mm_unpackhi_epi8(a, b), 1);
    }
    FIKLEIPA_INLINE void storeZipped8(std::uint8_t* p, Bytes a, Bytes b) {
        storeLanePairs(p, zipLower8(a, b), zipUpper8(a, b));
    }
    FIKLEIPA_INLINE Bytes evenBytes(Bytes a, Bytes b) {
        return inOrder(packUnsigned16(bitAnd(a, repeat16(0xFF)), bitAnd(b, repeat16(0xFF))));
    }
    FIKLEIPA_INLINE Bytes oddBytes(Bytes a, Bytes b) { return inOrder(packUnsigned16(right16<8>(a), right16<8>(b))); }
    FIKLEIPA_INLINE Bytes evenWords(Bytes a, Bytes b) {
        const Bytes words = packUnsigned32(alternate16(a, repeat16(0)), alternate16(b, repeat16(0)));
        return _mm256_permute4x64_epi64(words, _MM_SHUFFLE(3, 1, 2, 0));
    }
    FIKLEIPA_INLINE void storeUnzipped8(std::uint8_t* p, std::uint8_t* q, Bytes v) {
        const Bytes from =
            _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15));
        const Bytes halves = inOrder(shuffle(v, from));
        store16(p, _mm256_castsi256_si128(halves));
        store16(q, _mm256_extracti128_si256(halves, 1));
    }
    FIKLEIPA_INLINE Bytes average8(Bytes a, Bytes b) { return _mm256_avg_epu8(a, b); }

    FIKLEIPA_INLINE void storeEightsAndFours(std::uint8_t* p, std::uint8_t* q, std::uint8_t* r, Bytes v) {
        const Bytes ordered = _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(0, 1, 4, 5, 2, 6, 3, 7));
        store16(p, _mm256_castsi256_si128(ordered));
        storeEights(q, r, _mm256_extracti128_si256(ordered, 1));
    }

    using Count = __m128i;
    FIKLEIPA_INLINE Count count(int bits) { return _mm_cvtsi32_si128(bits); }
    FIKLEIPA_INLINE Bytes rightSigned32(Bytes v, Count bits) { return _mm256_sra_epi32(v, bits); }
    struct Divisor {
        Count twos;
        float factor;
    };
    FIKLEIPA_INLINE Divisor divisor(std::uint32_t d) {
        const int twos = __builtin_ctz(d);
        return {count(twos), 1.0F / static_cast<float>(d >> twos)};
    }
    FIKLEIPA_INLINE Bytes quotients(Bytes v, const Divisor& d) { return scale32(rightSigned32(v, d.twos), d.factor); }
    FIKLEIPA_INLINE Bytes min32(Bytes a, Bytes b) { return _mm256_min_epi32(a, b); }
    FIKLEIPA_INLINE Bytes max32(Bytes a, Bytes b) { return _mm256_max_epi32(a, b); }
    FIKLEIPA_INLINE Bytes addBelow32(Bytes v, Bytes limit, Bytes more) {
        return add32(v, bitAnd(_mm256_cmpgt_epi32(limit, v), more));
    }
    FIKLEIPA_INLINE Bytes multiplyUpper32(Bytes a, Bytes b) {
        const Bytes even = _mm256_srli_epi64(_mm256_mul_epu32(a, b), 32);
        const Bytes odd = _mm256_mul_epu32(_mm256_srli_epi64(a, 32), _mm256_srli_epi64(b, 32));
        return _mm256_blend_epi32(even, odd, 0xAA);
    }

    using Doubles = __m256d;
    FIKLEIPA_INLINE Doubles repeatDouble(double value) { return _mm256_set1_pd(value); }
    FIKLEIPA_INLINE Doubles lowerDoubles(Bytes v) { return _mm256_cvtepi32_pd(_mm256_castsi256_si128(v)); }
    FIKLEIPA_INLINE Doubles upperDoubles(Bytes v) { return _mm256_cvtepi32_pd(_mm256_extracti128_si256(v, 1)); }
    FIKLEIPA_INLINE Bytes truncated(Doubles lower, Doubles upper) {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm256_cvttpd_epi32(lower)), _mm256_cvttpd_epi32(upper),
                                       1);
    }
    FIKLEIPA_INLINE Doubles add(Doubles a, Doubles b) { return _mm256_add_pd(a, b); }
    FIKLEIPA_INLINE Doubles multiply(Doubles a, Doubles b) { return _mm256_mul_pd(a, b); }
    // Doubles of 2^52 and more are whole, and their lower bits are the number: integers become doubles by getting upper
    // halves, with 2^52 taken off along with the addition. The lower doubles are those of every lane's lower half.
    static constexpr double kWholes = 0x1p52;
    static constexpr double kWholeOnes = 0x1.8p52; // with room for numbers below 0
    FIKLEIPA_INLINE Doubles addend(double k) { return repeatDouble(k - kWholes); }
    FIKLEIPA_INLINE Doubles lowerSums(Bytes v, Doubles k) {
        return add(_mm256_castsi256_pd(_mm256_unpacklo_epi32(v, repeat32(0x43300000))), k);
    }
    FIKLEIPA_INLINE Doubles upperSums(Bytes v, Doubles k) {
        return add(_mm256_castsi256_pd(_mm256_unpackhi_epi32(v, repeat32(0x43300000))), k);
    }
    FIKLEIPA_INLINE Bytes floors(Doubles lower, Doubles upper) {
        const Doubles one = _mm256_set1_pd(kWholeOnes);
        const __m256 a = _mm256_castpd_ps(_mm256_add_pd(_mm256_floor_pd(lower), one));
        const __m256 b = _mm256_castpd_ps(_mm256_add_pd(_mm256_floor_pd(upper), one));
        return _mm256_castps_si256(_mm256_shuffle_ps(a, b, 0x88));
    }
    FIKLEIPA_INLINE Doubles divide(Doubles a, Doubles b) { return _mm256_div_pd(a, b); }
    FIKLEIPA_INLINE Doubles min(Doubles a, Doubles b) { return _mm256_min_pd(a, b); }
    FIKLEIPA_INLINE Doubles max(Doubles a, Doubles b) { return _mm256_max_pd(a, b); }

    FIKLEIPA_INLINE void unzipFours(const std::uint8_t* p, Bytes& even, Bytes& odd) {
        const Bytes a = loadLanes(p, p + 32);
        const Bytes b = loadLanes(p + 16, p + 48);
        even = unzipEven32(a, b);
        odd = unzipOdd32(a, b);
    }
    FIKLEIPA_INLINE void unzipThrees(const std::uint8_t* p, Bytes& even, Bytes& odd) {
        const Bytes first =
            _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 2, 3, 3, 4, 5, 6, 6, 7, 8, 9, 9, 10, 11, 12));
        const Bytes last =
            _mm256_broadcastsi128_si256(_mm_setr_epi8(4, 5, 6, 7, 7, 8, 9, 10, 10, 11, 12, 13, 13, 14, 15, 15));
        const Bytes a = shuffle(loadLanes(p, p + 24), first);
        const Bytes b = shuffle(loadLanes(p + 8, p + 32), last);
        even = unzipEven32(a, b);
        odd = unzipOdd32(a, b);
    }
    FIKLEIPA_INLINE void splitTens(Bytes pixels, Bytes& outer, Bytes& middle) {
        outer = orMasked(bitAnd(right32<2>(pixels), repeat32(0x3FF)), right32<6>(pixels), repeat32(0x3FF0000));
        middle = orMasked(bitAnd(right32<12>(pixels), repeat32(0x3FF)), left32<9>(pixels), repeat32(0x7FE00000));
    }
    FIKLEIPA_INLINE void storeLimitedBytes(std::uint8_t* p, Bytes v) {
        store16(p, _mm256_castsi256_si128(_mm256_permute4x64_epi64(packUnsigned16(v, v), 0b1000)));
    }

    FIKLEIPA_INLINE Bytes addLimitedSigned16(Bytes a, Bytes b) { return _mm256_adds_epi16(a, b); }
    FIKLEIPA_INLINE Bytes subtractLimited16(Bytes a, Bytes b) { return _mm256_subs_epu16(a, b); }
    struct Merge {
        std::uint8_t fromA[16]{};
        std::uint8_t fromB[16]{};
        constexpr explicit Merge(const unsigned (&from)[8]) {
            for (unsigned i = 0; i < 16; ++i) {
                const unsigned word = from[i / 2];
                fromA[i] = static_cast<std::uint8_t>(word < 6 ? 2 * word + i % 2 : 0x80);
                fromB[i] = static_cast<std::uint8_t>(word < 6 ? 0x80 : 2 * (word - 6) + i % 2);
            }
        }
    };
    FIKLEIPA_INLINE Bytes merge(Bytes a, Bytes b, const Merge& m) {
        const Bytes apart = _mm256_setr_epi32(0, 1, 2, 0, 3, 4, 5, 0);
        return bitOr(shuffle(_mm256_permutevar8x32_epi32(a, apart), repeat(m.fromA)),
                     shuffle(_mm256_permutevar8x32_epi32(b, apart), repeat(m.fromB)));
    }

    FIKLEIPA_INLINE void unzipEights(const std::uint8_t* p, Bytes& evenLower, Bytes& evenUpper, Bytes& oddLower,
                                     Bytes& oddUpper) {
        const Bytes a = loadLanes(p, p + 64);
        const Bytes b = loadLanes(p + 16, p + 80);
        const Bytes c = loadLanes(p + 32, p + 96);
        const Bytes d = loadLanes(p + 48, p + 112);
        evenLower = zipLower64(zipLower32(a, b), zipLower32(c, d));
        evenUpper = zipUpper64(zipLower32(a, b), zipLower32(c, d));
        oddLower = zipLower64(zipUpper32(a, b), zipUpper32(c, d));
        oddUpper = zipUpper64(zipUpper32(a, b), zipUpper32(c, d));
    }
    FIKLEIPA_INLINE void unzipSixes(const std::uint8_t* p, Bytes& evenLower, Bytes& evenUpper, Bytes& oddLower,
                                    Bytes& oddUpper) {
        const Bytes first =
            _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 6, 7, 8, 9, 10, 11, 12, 13));
        const Bytes last =
            _mm256_broadcastsi128_si256(_mm_setr_epi8(4, 5, 6, 7, 8, 9, 10, 11, 10, 11, 12, 13, 14, 15, 14, 15));
        const Bytes a = shuffle(loadLanes(p, p + 48), first);
        const Bytes b = shuffle(loadLanes(p + 8, p + 56), last);
        const Bytes c = shuffle(loadLanes(p + 24, p + 72), first);
        const Bytes d = shuffle(loadLanes(p + 32, p + 80), last);
        evenLower = zipLower64(zipLower32(a, b), zipLower32(c, d));
        evenUpper = zipUpper64(zipLower32(a, b), zipLower32(c, d));
        oddLower = zipLower64(zipUpper32(a, b), zipUpper32(c, d));
        oddUpper = zipUpper64(zipUpper32(a, b), zipUpper32(c, d));
    }
};
