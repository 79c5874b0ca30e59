// The 64-byte vector; simd/x86/vector128.h says what the operations do.

#define FIKLEIPA_INLINE [[gnu::always_inline]] static inline

struct V512 {
    using Bytes = __m512i;

    static constexpr std::size_t kBytes = 64;
    static constexpr bool kPartial = true;

    FIKLEIPA_INLINE __m128i load16(const std::uint8_t* p) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    }
    FIKLEIPA_INLINE Bytes load(const std::uint8_t* p) { return _mm512_loadu_si512(p); }
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void store(std::uint8_t* p, Bytes v) {
        if constexpr (kWrites == Writes::PastCache) {
            _mm512_stream_si512(reinterpret_cast<__m512i*>(p), v);
        } else {
            _mm512_storeu_si512(p, v);
        }
    }

    FIKLEIPA_INLINE __mmask64 first(std::size_t bytes) {
        return bytes >= kBytes ? ~__mmask64{0} : (__mmask64{1} << bytes) - 1;
    }
    FIKLEIPA_INLINE Bytes load(const std::uint8_t* p, std::size_t bytes) {
        return _mm512_maskz_loadu_epi8(first(bytes), p);
    }
    // A part goes by way of the cache in any case.
    template <Writes kIgnored = Writes::ToCache>
    FIKLEIPA_INLINE void store(std::uint8_t* p, Bytes v, std::size_t bytes) {
        _mm512_mask_storeu_epi8(p, first(bytes), v);
    }

    FIKLEIPA_INLINE void leave() { _mm256_zeroupper(); }

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
    template <unsigned kBits>
    FIKLEIPA_INLINE Bytes left32(Bytes v) {
        return _mm512_slli_epi32(v, kBits);
    }
    template <unsigned kBits>
    FIKLEIPA_INLINE Bytes right32(Bytes v) {
        return _mm512_srli_epi32(v, kBits);
    }
    FIKLEIPA_INLINE Bytes min16(Bytes a, Bytes b) { return _mm512_min_epi16(a, b); }
    FIKLEIPA_INLINE Bytes max16(Bytes a, Bytes b) { return _mm512_max_epi16(a, b); }
    FIKLEIPA_INLINE Bytes minUnsigned16(Bytes a, Bytes b) { return _mm512_min_epu16(a, b); }
    FIKLEIPA_INLINE Bytes multiplyUpper16(Bytes a, Bytes b) { return _mm512_mulhi_epu16(a, b); } // unsigned
    FIKLEIPA_INLINE bool anyOf(Bytes v, Bytes bits) { return _mm512_test_epi32_mask(v, bits) != 0; }

    FIKLEIPA_INLINE Bytes packUnsigned16(Bytes a, Bytes b) { return _mm512_packus_epi16(a, b); }

    template <unsigned kBits>
    FIKLEIPA_INLINE Bytes rightSigned32(Bytes v) {
        return _mm512_srai_epi32(v, kBits);
    }
    FIKLEIPA_INLINE Bytes scale32(Bytes v, float factor) {
        return _mm512_cvttps_epi32(_mm512_mul_ps(_mm512_cvtepi32_ps(v), _mm512_set1_ps(factor)));
    }
    FIKLEIPA_INLINE Bytes scaleBits32(Bytes v, float factor) {
        const __m512 excess = _mm512_set1_ps(8388608.0F * factor);
        return _mm512_cvttps_epi32(_mm512_fmsub_ps(_mm512_castsi512_ps(v), _mm512_set1_ps(factor), excess));
    }
    FIKLEIPA_INLINE Bytes alternate16(Bytes even, Bytes odd) { return _mm512_mask_blend_epi16(0xAAAAAAAA, even, odd); }
    FIKLEIPA_INLINE Bytes twice16() {
        alignas(kBytes) static constexpr std::uint16_t kFrom[32] = {
            0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13, 14, 14, 15, 15};
        return _mm512_load_si512(kFrom);
    }
    FIKLEIPA_INLINE Bytes withEvenWords(Bytes v, Bytes half) {
        return _mm512_mask_permutexvar_epi16(v, 0x55555555, twice16(), half);
    }
    FIKLEIPA_INLINE Bytes withOddWords(Bytes v, Bytes half) {
        return _mm512_mask_permutexvar_epi16(v, 0xAAAAAAAA, twice16(), half);
    }
    FIKLEIPA_INLINE Bytes zipLower16(Bytes a, Bytes b) { return _mm512_unpacklo_epi16(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper16(Bytes a, Bytes b) { return _mm512_unpackhi_epi16(a, b); }
    FIKLEIPA_INLINE Bytes packUnsigned32(Bytes a, Bytes b) { return _mm512_packus_epi32(a, b); }

    FIKLEIPA_INLINE Bytes multiply16(Bytes a, Bytes b) { return _mm512_mullo_epi16(a, b); }
    FIKLEIPA_INLINE Bytes add16(Bytes a, Bytes b) { return _mm512_add_epi16(a, b); }
    FIKLEIPA_INLINE Bytes addLimited16(Bytes a, Bytes b) { return _mm512_adds_epu16(a, b); }
    FIKLEIPA_INLINE Bytes add32(Bytes a, Bytes b) { return _mm512_add_epi32(a, b); }
    FIKLEIPA_INLINE Bytes dot(Bytes a, Bytes b) { return _mm512_madd_epi16(a, b); }
    FIKLEIPA_INLINE Bytes dot(Bytes sum, Bytes a, Bytes b) { return _mm512_dpwssd_epi32(sum, a, b); }
    FIKLEIPA_INLINE Bytes zipUpperHalves(Bytes a, Bytes b) {
        alignas(kBytes) static constexpr std::uint16_t kUpper[32] = {1,  33, 3,  35, 5,  37, 7,  39, 9,  41, 11,
                                                                     43, 13, 45, 15, 47, 17, 49, 19, 51, 21, 53,
                                                                     23, 55, 25, 57, 27, 59, 29, 61, 31, 63};
        return _mm512_permutex2var_epi16(a, _mm512_load_si512(kUpper), b);
    }
    FIKLEIPA_INLINE Bytes zipLowerHalves(Bytes a, Bytes b) {
        alignas(kBytes) static constexpr std::uint16_t kLower[32] = {0,  32, 2,  34, 4,  36, 6,  38, 8,  40, 10,
                                                                     42, 12, 44, 14, 46, 16, 48, 18, 50, 20, 52,
                                                                     22, 54, 24, 56, 26, 58, 28, 60, 30, 62};
        return _mm512_permutex2var_epi16(a, _mm512_load_si512(kLower), b);
    }
    template <int kFrom>
    FIKLEIPA_INLINE Bytes joined32(Bytes a, Bytes b) {
        return _mm512_alignr_epi32(b, a, kFrom);
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
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void storePixels32(std::uint8_t* p, Bytes c02, Bytes c13) {
        static constexpr Pixels<4> kPixels;
        store<kWrites>(p, _mm512_permutex2var_epi8(c02, load(kPixels.from), c13));
        store<kWrites>(p + kBytes, _mm512_permutex2var_epi8(c02, load(kPixels.from + kBytes), c13));
    }
    FIKLEIPA_INLINE void storePixels24(std::uint8_t* p, Bytes c02, Bytes c13) {
        static constexpr Pixels<3> kPixels;
        store(p, _mm512_permutex2var_epi8(c02, load(kPixels.from), c13));
        const Bytes rest = _mm512_permutex2var_epi8(c02, load(kPixels.from + kBytes), c13);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p + kBytes), _mm512_castsi512_si256(rest));
    }

    // Two blocks of pixels, to whole vectors past the cache.
    FIKLEIPA_INLINE void streamPixels24(std::uint8_t* p, Bytes a02, Bytes a13, Bytes b02, Bytes b13) {
        static constexpr Pixels<3> kPixels;
        const Bytes rest = _mm512_permutex2var_epi8(a02, load(kPixels.from + kBytes), a13);
        const Bytes head = _mm512_permutex2var_epi8(b02, load(kPixels.from), b13);
        store<Writes::PastCache>(p, _mm512_permutex2var_epi8(a02, load(kPixels.from), a13));
        store<Writes::PastCache>(p + kBytes, _mm512_inserti64x4(rest, _mm512_castsi512_si256(head), 1));
        store<Writes::PastCache>(p + 2 * kBytes, _mm512_permutex2var_epi8(b02, load(kPixels.from + kBytes / 2), b13));
    }

    FIKLEIPA_INLINE void storeLowerBytes(std::uint8_t* p, Bytes v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_cvtepi16_epi8(v));
    }

    // Units of two vectors, or of their halves, in turn.
    template <class Unit, unsigned kUnits = kBytes / sizeof(Unit)>
    struct Zip {
        alignas(kBytes) Unit from[2 * kUnits]{};
        constexpr Zip() {
            for (unsigned i = 0; i < 2 * kUnits; ++i) from[i] = static_cast<Unit>(i / 2 + i % 2 * kUnits);
        }
    };
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void storePixels64(std::uint8_t* p, Bytes c0, Bytes c1, Bytes c2, Bytes c3) {
        static constexpr Zip<std::uint16_t> kWords;
        static constexpr Zip<std::uint32_t> kPairs;
        const Bytes firstWords = _mm512_load_si512(kWords.from);
        const Bytes lastWords = _mm512_load_si512(kWords.from + 32);
        const Bytes firstPairs = _mm512_load_si512(kPairs.from);
        const Bytes lastPairs = _mm512_load_si512(kPairs.from + 16);
        const Bytes first01 = _mm512_permutex2var_epi16(c0, firstWords, c1);
        const Bytes first23 = _mm512_permutex2var_epi16(c2, firstWords, c3);
        const Bytes last01 = _mm512_permutex2var_epi16(c0, lastWords, c1);
        const Bytes last23 = _mm512_permutex2var_epi16(c2, lastWords, c3);
        store<kWrites>(p, _mm512_permutex2var_epi32(first01, firstPairs, first23));
        store<kWrites>(p + kBytes, _mm512_permutex2var_epi32(first01, lastPairs, first23));
        store<kWrites>(p + 2 * kBytes, _mm512_permutex2var_epi32(last01, firstPairs, last23));
        store<kWrites>(p + 3 * kBytes, _mm512_permutex2var_epi32(last01, lastPairs, last23));
    }

    // Where the words of pixels of three come from: words 0 to 31 are the first component's, 32 to 63 the second's;
    // those of the third, marked in `third`, have their own index.
    struct Pixels48 {
        alignas(kBytes) std::uint16_t from[96]{};
        std::uint32_t third[3]{};
        constexpr Pixels48() {
            for (unsigned i = 0; i < 96; ++i) {
                from[i] = static_cast<std::uint16_t>(i / 3 + (i % 3 == 1 ? 32 : 0));
                if (i % 3 == 2) third[i / 32] |= 1U << i % 32;
            }
        }
    };
    FIKLEIPA_INLINE void storePixels48(std::uint8_t* p, Bytes c0, Bytes c1, Bytes c2) {
        static constexpr Pixels48 kPixels;
        for (unsigned i = 0; i < 3; ++i) {
            const Bytes from = _mm512_load_si512(kPixels.from + 32 * i);
            const Bytes two = _mm512_permutex2var_epi16(c0, from, c1);
            store(p + i * kBytes, _mm512_mask_permutexvar_epi16(two, kPixels.third[i], from, c2));
        }
    }

    FIKLEIPA_INLINE Bytes zipLower8(Bytes a, Bytes b) { return _mm512_unpacklo_epi8(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper8(Bytes a, Bytes b) { return _mm512_unpackhi_epi8(a, b); }

    FIKLEIPA_INLINE Bytes loadHalf(const std::uint8_t* p, std::size_t bytes) {
        return _mm512_zextsi256_si512(_mm256_maskz_loadu_epi8(static_cast<__mmask32>(first(bytes)), p));
    }
    FIKLEIPA_INLINE void storeHalf(std::uint8_t* p, Bytes v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_castsi512_si256(v));
    }
    FIKLEIPA_INLINE void storeHalf(std::uint8_t* p, Bytes v, std::size_t bytes) {
        _mm256_mask_storeu_epi8(p, static_cast<__mmask32>(first(bytes)), _mm512_castsi512_si256(v));
    }
    template <class... Count>
    FIKLEIPA_INLINE Bytes loadHalves(const std::uint8_t* p, const std::uint8_t* q, Count... bytes) {
        return _mm512_inserti64x4(loadHalf(p, bytes...), _mm512_castsi512_si256(loadHalf(q, bytes...)), 1);
    }
    template <class... Count>
    FIKLEIPA_INLINE void storeHalves(std::uint8_t* p, std::uint8_t* q, Bytes v, Count... bytes) {
        storeHalf(p, v, bytes...);
        storeHalf(q, _mm512_castsi256_si512(_mm512_extracti64x4_epi64(v, 1)), bytes...);
    }

    template <class... Count>
    FIKLEIPA_INLINE Bytes loadTwelves(const std::uint8_t* p, Count... bytes) {
        const Bytes from = _mm512_setr_epi32(0, 1, 2, 0, 3, 4, 5, 0, 6, 7, 8, 0, 9, 10, 11, 0);
        return _mm512_permutexvar_epi32(from, load(p, bytes...));
    }
    template <class... Count>
    FIKLEIPA_INLINE void storeTwelves(std::uint8_t* p, Bytes v, Count... bytes) {
        const Bytes from = _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 0, 0, 0, 0);
        store(p, _mm512_permutexvar_epi32(from, v), bytes...);
    }
    template <class... Count>
    FIKLEIPA_INLINE Bytes loadSixes(const std::uint8_t* p, const std::uint8_t* q, Count... bytes) {
        alignas(kBytes) static constexpr std::uint16_t kFrom[32] = {0,  1,  2,  0,  16, 17, 18, 0,  3,  4,  5,
                                                                    0,  19, 20, 21, 0,  6,  7,  8,  0,  22, 23,
                                                                    24, 0,  9,  10, 11, 0,  25, 26, 27, 0};
        return _mm512_permutexvar_epi16(_mm512_load_si512(kFrom), loadHalves(p, q, bytes...));
    }
    template <class... Count>
    FIKLEIPA_INLINE void storeSixes(std::uint8_t* p, std::uint8_t* q, Bytes v, Count... bytes) {
        alignas(kBytes) static constexpr std::uint16_t kFrom[32] = {0,  1,  2,  8,  9,  10, 16, 17, 18, 24, 25,
                                                                    26, 0,  0,  0,  0,  4,  5,  6,  12, 13, 14,
                                                                    20, 21, 22, 28, 29, 30, 0,  0,  0,  0};
        storeHalves(p, q, _mm512_permutexvar_epi16(_mm512_load_si512(kFrom), v), bytes...);
    }

    FIKLEIPA_INLINE void loadTwo(const std::uint8_t* p, Bytes& a, Bytes& b) {
        a = load(p);
        b = load(p + kBytes);
    }
    FIKLEIPA_INLINE void loadTwo(const std::uint8_t* p, Bytes& a, Bytes& b, std::size_t bytes) {
        a = load(p, bytes);
        b = load(p + kBytes, bytes > kBytes ? bytes - kBytes : 0);
    }
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void storeTwo(std::uint8_t* p, Bytes a, Bytes b) {
        store<kWrites>(p, a);
        store<kWrites>(p + kBytes, b);
    }
    template <Writes kIgnored = Writes::ToCache>
    FIKLEIPA_INLINE void storeTwo(std::uint8_t* p, Bytes a, Bytes b, std::size_t bytes) {
        store(p, a, bytes);
        store(p + kBytes, b, bytes > kBytes ? bytes - kBytes : 0);
    }
    template <class... Count>
    FIKLEIPA_INLINE void loadLanePairs(const std::uint8_t* p, Bytes& even, Bytes& odd, Count... bytes) {
        Bytes a;
        Bytes b;
        loadTwo(p, a, b, bytes...);
        even = _mm512_shuffle_i64x2(a, b, _MM_SHUFFLE(2, 0, 2, 0));
        odd = _mm512_shuffle_i64x2(a, b, _MM_SHUFFLE(3, 1, 3, 1));
    }
    template <Writes kWrites = Writes::ToCache, class... Count>
    FIKLEIPA_INLINE void storeLanePairs(std::uint8_t* p, Bytes even, Bytes odd, Count... bytes) {
        const Bytes first = _mm512_setr_epi64(0, 1, 8, 9, 2, 3, 10, 11);
        const Bytes second = _mm512_setr_epi64(4, 5, 12, 13, 6, 7, 14, 15);
        storeTwo<kWrites>(p, _mm512_permutex2var_epi64(even, first, odd), _mm512_permutex2var_epi64(even, second, odd),
                          bytes...);
    }
    FIKLEIPA_INLINE void storeThreeHalves(std::uint8_t* p, Bytes a, Bytes b) {
        store(p, a);
        storeHalf(p + kBytes, b);
    }
    FIKLEIPA_INLINE void storeThreeHalves(std::uint8_t* p, Bytes a, Bytes b, std::size_t bytes) {
        storeTwo(p, a, b, bytes);
    }
    template <class... Count>
    FIKLEIPA_INLINE void storeTwentyFours(std::uint8_t* p, Bytes first, Bytes last, Count... bytes) {
        const Bytes from = _mm512_setr_epi64(0, 1, 9, 2, 3, 11, 4, 5);
        const Bytes behind = _mm512_setr_epi64(5, 8 + 6, 8 + 7, 7, 0, 0, 0, 0);
        storeThreeHalves(p, _mm512_permutex2var_epi64(first, from, last),
                         _mm512_permutex2var_epi64(last, behind, first), bytes...);
    }

    template <class... Count>
    FIKLEIPA_INLINE Bytes widen16(const std::uint8_t* p, Count... bytes) {
        return _mm512_cvtepu16_epi32(_mm512_castsi512_si256(loadHalf(p, bytes...)));
    }
    template <class... Count>
    FIKLEIPA_INLINE void storeUnzipped16(std::uint8_t* p, std::uint8_t* q, Bytes v, Count... bytes) {
        alignas(kBytes) static constexpr std::uint16_t kFrom[32] = {0,  2,  4,  6,  8,  10, 12, 14, 16, 18, 20,
                                                                    22, 24, 26, 28, 30, 1,  3,  5,  7,  9,  11,
                                                                    13, 15, 17, 19, 21, 23, 25, 27, 29, 31};
        storeHalves(p, q, _mm512_permutexvar_epi16(_mm512_load_si512(kFrom), v), bytes...);
    }

    FIKLEIPA_INLINE Bytes loadLanesApart(const std::uint8_t* p, std::size_t apart) {
        const Bytes two = _mm512_inserti32x4(_mm512_castsi128_si512(load16(p)), load16(p + apart), 1);
        const Bytes three = _mm512_inserti32x4(two, load16(p + 2 * apart), 2);
        return _mm512_inserti32x4(three, load16(p + 3 * apart), 3);
    }
    FIKLEIPA_INLINE Bytes unzipEven32(Bytes a, Bytes b) {
        return _mm512_castps_si512(
            _mm512_shuffle_ps(_mm512_castsi512_ps(a), _mm512_castsi512_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
    }
    FIKLEIPA_INLINE Bytes unzipOdd32(Bytes a, Bytes b) {
        return _mm512_castps_si512(
            _mm512_shuffle_ps(_mm512_castsi512_ps(a), _mm512_castsi512_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
    }
    FIKLEIPA_INLINE Bytes zipLower32(Bytes a, Bytes b) { return _mm512_unpacklo_epi32(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper32(Bytes a, Bytes b) { return _mm512_unpackhi_epi32(a, b); }
    FIKLEIPA_INLINE Bytes zipLower64(Bytes a, Bytes b) { return _mm512_unpacklo_epi64(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper64(Bytes a, Bytes b) { return _mm512_unpackhi_epi64(a, b); }
    FIKLEIPA_INLINE Bytes packSigned32(Bytes a, Bytes b) { return _mm512_packs_epi32(a, b); }
    FIKLEIPA_INLINE Bytes packSigned16(Bytes a, Bytes b) { return _mm512_packs_epi16(a, b); }
    FIKLEIPA_INLINE Bytes pickBySign32(Bytes v, Bytes positive, Bytes negative) {
        return _mm512_mask_blend_epi32(_mm512_movepi32_mask(v), positive, negative);
    }

    FIKLEIPA_INLINE Bytes loadZipped8(const std::uint8_t* p, const std::uint8_t* q) {
        static constexpr Zip<std::uint8_t, kBytes / 2> kHalves;
        return _mm512_permutexvar_epi8(load(kHalves.from), loadHalves(p, q));
    }
    FIKLEIPA_INLINE void storeZipped8(std::uint8_t* p, Bytes a, Bytes b) {
        static constexpr Zip<std::uint8_t> kBoth;
        store(p, _mm512_permutex2var_epi8(a, load(kBoth.from), b));
        store(p + kBytes, _mm512_permutex2var_epi8(a, load(kBoth.from + kBytes), b));
    }
    template <unsigned kFirst>
    struct EveryOther {
        alignas(kBytes) std::uint8_t from[kBytes]{};
        constexpr EveryOther() {
            for (unsigned i = 0; i < kBytes; ++i) from[i] = static_cast<std::uint8_t>(2 * i + kFirst);
        }
    };
    FIKLEIPA_INLINE Bytes evenBytes(Bytes a, Bytes b) {
        static constexpr EveryOther<0> kEven;
        return _mm512_permutex2var_epi8(a, load(kEven.from), b);
    }
    FIKLEIPA_INLINE Bytes oddBytes(Bytes a, Bytes b) {
        static constexpr EveryOther<1> kOdd;
        return _mm512_permutex2var_epi8(a, load(kOdd.from), b);
    }
    FIKLEIPA_INLINE Bytes evenWords(Bytes a, Bytes b) {
        alignas(kBytes) static constexpr std::uint16_t kEven[32] = {0,  2,  4,  6,  8,  10, 12, 14, 16, 18, 20,
                                                                    22, 24, 26, 28, 30, 32, 34, 36, 38, 40, 42,
                                                                    44, 46, 48, 50, 52, 54, 56, 58, 60, 62};
        return _mm512_permutex2var_epi16(a, _mm512_load_si512(kEven), b);
    }
    FIKLEIPA_INLINE void storeUnzipped8(std::uint8_t* p, std::uint8_t* q, Bytes v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_cvtepi16_epi8(v));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(q), _mm512_cvtepi16_epi8(right16<8>(v)));
    }
    // Bytes of two vectors, words by as many bits each, and from which bit on of eight bytes each byte is.
    FIKLEIPA_INLINE Bytes permute8(Bytes a, Bytes b, Bytes from) { return _mm512_permutex2var_epi8(a, from, b); }
    FIKLEIPA_INLINE Bytes rightEach16(Bytes v, Bytes by) { return _mm512_srlv_epi16(v, by); }
    FIKLEIPA_INLINE Bytes bytesFromBits(Bytes v, Bytes from) { return _mm512_multishift_epi64_epi8(from, v); }
    FIKLEIPA_INLINE Bytes bitAndNot(Bytes v, Bytes without) { return _mm512_andnot_si512(without, v); }
    FIKLEIPA_INLINE Bytes averageUp16(Bytes a, Bytes b) { return _mm512_avg_epu16(a, b); }
    FIKLEIPA_INLINE Bytes average8(Bytes a, Bytes b) { return _mm512_avg_epu8(a, b); }

    FIKLEIPA_INLINE void storeEightsAndFours(std::uint8_t* p, std::uint8_t* q, std::uint8_t* r, Bytes v) {
        const Bytes from = _mm512_setr_epi32(0, 1, 4, 5, 8, 9, 12, 13, 2, 6, 10, 14, 3, 7, 11, 15);
        const Bytes ordered = _mm512_permutexvar_epi32(from, v);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_castsi512_si256(ordered));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(q), _mm512_extracti32x4_epi32(ordered, 2));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(r), _mm512_extracti32x4_epi32(ordered, 3));
    }

    using Count = __m128i;
    FIKLEIPA_INLINE Count count(int bits) { return _mm_cvtsi32_si128(bits); }
    FIKLEIPA_INLINE Bytes rightSigned32(Bytes v, Count bits) { return _mm512_sra_epi32(v, bits); }
    // What the conversion drops is less than the divisor's factors of two.
    using Divisor = float;
    FIKLEIPA_INLINE Divisor divisor(std::uint32_t d) { return 1.0F / static_cast<float>(d); }
    FIKLEIPA_INLINE Bytes quotients(Bytes v, Divisor factor) {
        const __m512 floats = _mm512_cvt_roundepi32_ps(v, _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC);
        return _mm512_cvttps_epi32(_mm512_mul_ps(floats, _mm512_set1_ps(factor)));
    }
    FIKLEIPA_INLINE Bytes min32(Bytes a, Bytes b) { return _mm512_min_epi32(a, b); }
    FIKLEIPA_INLINE Bytes max32(Bytes a, Bytes b) { return _mm512_max_epi32(a, b); }
    FIKLEIPA_INLINE Bytes addBelow32(Bytes v, Bytes limit, Bytes more) {
        return _mm512_mask_add_epi32(v, _mm512_cmplt_epi32_mask(v, limit), v, more);
    }
    FIKLEIPA_INLINE Bytes multiplyUpper32(Bytes a, Bytes b) {
        const Bytes even = _mm512_srli_epi64(_mm512_mul_epu32(a, b), 32);
        const Bytes odd = _mm512_mul_epu32(_mm512_srli_epi64(a, 32), _mm512_srli_epi64(b, 32));
        return _mm512_mask_blend_epi32(0xAAAA, even, odd);
    }

    using Doubles = __m512d;
    FIKLEIPA_INLINE Doubles repeatDouble(double value) { return _mm512_set1_pd(value); }
    FIKLEIPA_INLINE Doubles lowerDoubles(Bytes v) { return _mm512_cvtepi32_pd(_mm512_castsi512_si256(v)); }
    FIKLEIPA_INLINE Doubles upperDoubles(Bytes v) { return _mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(v, 1)); }
    FIKLEIPA_INLINE Bytes truncated(Doubles lower, Doubles upper) {
        return _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvttpd_epi32(lower)), _mm512_cvttpd_epi32(upper), 1);
    }
    FIKLEIPA_INLINE Doubles add(Doubles a, Doubles b) { return _mm512_add_pd(a, b); }
    FIKLEIPA_INLINE Doubles multiply(Doubles a, Doubles b) { return _mm512_mul_pd(a, b); }
    static constexpr double kWholes = 0x1p52;
    static constexpr double kWholeOnes = 0x1.8p52; // with room for numbers below 0
    FIKLEIPA_INLINE Doubles addend(double k) { return repeatDouble(k - kWholes); }
    FIKLEIPA_INLINE Doubles lowerSums(Bytes v, Doubles k) {
        return add(_mm512_castsi512_pd(_mm512_unpacklo_epi32(v, repeat32(0x43300000))), k);
    }
    FIKLEIPA_INLINE Doubles upperSums(Bytes v, Doubles k) {
        return add(_mm512_castsi512_pd(_mm512_unpackhi_epi32(v, repeat32(0x43300000))), k);
    }
    FIKLEIPA_INLINE Bytes floors(Doubles lower, Doubles upper) {
        const Doubles one = _mm512_set1_pd(kWholeOnes);
        constexpr int kDown = _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC;
        const __m512 a = _mm512_castpd_ps(_mm512_add_round_pd(lower, one, kDown));
        const __m512 b = _mm512_castpd_ps(_mm512_add_round_pd(upper, one, kDown));
        return _mm512_castps_si512(_mm512_shuffle_ps(a, b, 0x88));
    }
    FIKLEIPA_INLINE Doubles divide(Doubles a, Doubles b) { return _mm512_div_pd(a, b); }
    FIKLEIPA_INLINE Doubles min(Doubles a, Doubles b) { return _mm512_min_pd(a, b); }
    FIKLEIPA_INLINE Doubles max(Doubles a, Doubles b) { return _mm512_max_pd(a, b); }

    // Where every other unit of three bytes comes from, in two vectors the second of which begins at byte 32.
    struct Threes {
        alignas(kBytes) std::uint8_t from[kBytes]{};
        constexpr explicit Threes(unsigned first) {
            for (unsigned i = 0; i < kBytes; ++i) {
                const unsigned at = 3 * first + i / 4 * 6 + (i % 4 == 3 ? 2 : i % 4);
                from[i] = static_cast<std::uint8_t>(at < 64 ? at : at + 32);
            }
        }
    };
    FIKLEIPA_INLINE void unzipFours(const std::uint8_t* p, Bytes& even, Bytes& odd) {
        const Bytes evens = _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
        const Bytes odds = _mm512_setr_epi32(1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
        const Bytes a = load(p);
        const Bytes b = load(p + kBytes);
        even = _mm512_permutex2var_epi32(a, evens, b);
        odd = _mm512_permutex2var_epi32(a, odds, b);
    }
    FIKLEIPA_INLINE void unzipThrees(const std::uint8_t* p, Bytes& even, Bytes& odd) {
        static constexpr Threes kEven(0);
        static constexpr Threes kOdd(1);
        const Bytes a = load(p);
        const Bytes b = load(p + 32);
        even = _mm512_permutex2var_epi8(a, load(kEven.from), b);
        odd = _mm512_permutex2var_epi8(a, load(kOdd.from), b);
    }
    // From which bit of 64 on bytes are taken.
    FIKLEIPA_INLINE void splitTens(Bytes pixels, Bytes& outer, Bytes& middle) {
        const Bytes outerFrom = _mm512_set1_epi64(0x3E362A221E160A02);
        const Bytes middleFrom = _mm512_set1_epi64(0x2F27342C0F07140C);
        outer = bitAnd(bytesFromBits(pixels, outerFrom), repeat32(0x03FF03FF));
        middle = bitAnd(bytesFromBits(pixels, middleFrom), repeat32(0x7FE003FF));
    }
    FIKLEIPA_INLINE void storeLimitedBytes(std::uint8_t* p, Bytes v) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_cvtusepi16_epi8(v));
    }

    FIKLEIPA_INLINE Bytes addLimitedSigned16(Bytes a, Bytes b) { return _mm512_adds_epi16(a, b); }
    FIKLEIPA_INLINE Bytes subtractLimited16(Bytes a, Bytes b) { return _mm512_subs_epu16(a, b); }
    struct Merge {
        alignas(kBytes) std::uint16_t from[32]{};
        constexpr explicit Merge(const unsigned (&words)[8]) {
            for (unsigned i = 0; i < 32; ++i) {
                const unsigned word = words[i % 8];
                from[i] = static_cast<std::uint16_t>(i / 8 * 6 + (word < 6 ? word : word - 6 + 32));
            }
        }
    };
    FIKLEIPA_INLINE Bytes merge(Bytes a, Bytes b, const Merge& m) {
        return _mm512_permutex2var_epi16(a, _mm512_load_si512(m.from), b);
    }

    FIKLEIPA_INLINE void unzipEights(const std::uint8_t* p, Bytes& evenLower, Bytes& evenUpper, Bytes& oddLower,
                                     Bytes& oddUpper) {
        const Bytes even64 = _mm512_setr_epi64(0, 2, 4, 6, 8, 10, 12, 14);
        const Bytes odd64 = _mm512_setr_epi64(1, 3, 5, 7, 9, 11, 13, 15);
        const Bytes even32 = _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30);
        const Bytes odd32 = _mm512_setr_epi32(1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31);
        const Bytes a = load(p);
        const Bytes b = load(p + kBytes);
        const Bytes c = load(p + 2 * kBytes);
        const Bytes d = load(p + 3 * kBytes);
        const Bytes evenAB = _mm512_permutex2var_epi64(a, even64, b);
        const Bytes evenCD = _mm512_permutex2var_epi64(c, even64, d);
        const Bytes oddAB = _mm512_permutex2var_epi64(a, odd64, b);
        const Bytes oddCD = _mm512_permutex2var_epi64(c, odd64, d);
        evenLower = _mm512_permutex2var_epi32(evenAB, even32, evenCD);
        evenUpper = _mm512_permutex2var_epi32(evenAB, odd32, evenCD);
        oddLower = _mm512_permutex2var_epi32(oddAB, even32, oddCD);
        oddUpper = _mm512_permutex2var_epi32(oddAB, odd32, oddCD);
    }
    // Where words of eight even pixels come from, and behind them those of eight odd ones, in two vectors the second of
    // which begins at byte 32.
    struct Sixes {
        alignas(kBytes) std::uint16_t from[kBytes / 2]{};
        constexpr explicit Sixes(unsigned first) {
            for (unsigned i = 0; i < kBytes / 2; ++i) {
                const unsigned pixel = i % 16 / 2 * 2 + i / 16;
                const unsigned at = 3 * pixel + (first + i % 2) % 3;
                from[i] = static_cast<std::uint16_t>(at < 32 ? at : at + 16);
            }
        }
    };
    FIKLEIPA_INLINE void unzipSixes(const std::uint8_t* p, Bytes& evenLower, Bytes& evenUpper, Bytes& oddLower,
                                    Bytes& oddUpper) {
        static constexpr Sixes kLower(0);
        static constexpr Sixes kUpper(2);
        const Bytes lower = _mm512_load_si512(kLower.from);
        const Bytes upper = _mm512_load_si512(kUpper.from);
        const Bytes a = load(p);
        const Bytes b = load(p + 32);
        const Bytes c = load(p + 96);
        const Bytes d = load(p + 128);
        const Bytes lowerAB = _mm512_permutex2var_epi16(a, lower, b);
        const Bytes lowerCD = _mm512_permutex2var_epi16(c, lower, d);
        const Bytes upperAB = _mm512_permutex2var_epi16(a, upper, b);
        const Bytes upperCD = _mm512_permutex2var_epi16(c, upper, d);
        evenLower = _mm512_inserti64x4(lowerAB, _mm512_castsi512_si256(lowerCD), 1);
        evenUpper = _mm512_inserti64x4(upperAB, _mm512_castsi512_si256(upperCD), 1);
        oddLower = _mm512_shuffle_i64x2(lowerAB, lowerCD, _MM_SHUFFLE(3, 2, 3, 2));
        oddUpper = _mm512_shuffle_i64x2(upperAB, upperCD, _MM_SHUFFLE(3, 2, 3, 2));
    }
};
