// The 16-byte vector. One of the three files that give kernels their vector type; all three offer the same operations,
// and what they say of lanes is always of lanes of 16 bytes. Included inside a namespace of simd/each_level.h.

#define FIKLEIPA_INLINE [[gnu::always_inline]] static inline

struct V128 {
    using Bytes = __m128i; // bytes, 16-bit words or 32-bit integers

    static constexpr std::size_t kBytes = 16;
    // Whether what loads and stores also does so with the first so many bytes alone, at least one, if it is told.
    static constexpr bool kPartial = false;

    FIKLEIPA_INLINE Bytes load(const std::uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void store(std::uint8_t* p, Bytes v) {
        if constexpr (kWrites == Writes::PastCache) {
            _mm_stream_si128(reinterpret_cast<__m128i*>(p), v);
        } else {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v);
        }
    }

    // Ends the use of wide registers ahead of a call. GCC 12 does so itself, but not where it knows that the called
    // function needs no vectors; narrow instructions would then be slow for the caller.
    FIKLEIPA_INLINE void leave() {}

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
    template <int kBits>
    FIKLEIPA_INLINE Bytes left32(Bytes v) {
        return _mm_slli_epi32(v, kBits);
    }
    template <int kBits>
    FIKLEIPA_INLINE Bytes right32(Bytes v) {
        return _mm_srli_epi32(v, kBits);
    }
    FIKLEIPA_INLINE Bytes min16(Bytes a, Bytes b) { return _mm_min_epi16(a, b); }
    FIKLEIPA_INLINE Bytes max16(Bytes a, Bytes b) { return _mm_max_epi16(a, b); }
    FIKLEIPA_INLINE Bytes minUnsigned16(Bytes a, Bytes b) { return _mm_min_epu16(a, b); }
    FIKLEIPA_INLINE Bytes multiplyUpper16(Bytes a, Bytes b) { return _mm_mulhi_epu16(a, b); } // unsigned
    FIKLEIPA_INLINE bool anyOf(Bytes v, Bytes bits) { return _mm_testz_si128(v, bits) == 0; }

    // Narrowing with saturation; in each lane the results of a come before those of b.
    FIKLEIPA_INLINE Bytes packUnsigned16(Bytes a, Bytes b) { return _mm_packus_epi16(a, b); }

    template <int kBits>
    FIKLEIPA_INLINE Bytes rightSigned32(Bytes v) {
        return _mm_srai_epi32(v, kBits);
    }
    // The integers as float32, times the factor, without what is behind the point.
    FIKLEIPA_INLINE Bytes scale32(Bytes v, float factor) {
        return _mm_cvttps_epi32(_mm_mul_ps(_mm_cvtepi32_ps(v), _mm_set1_ps(factor)));
    }
    // The same of integers given as the bits of float32 that are 2^23 more.
    FIKLEIPA_INLINE Bytes scaleBits32(Bytes v, float factor) {
        const __m128 integers = _mm_sub_ps(_mm_castsi128_ps(v), _mm_set1_ps(8388608.0F));
        return _mm_cvttps_epi32(_mm_mul_ps(integers, _mm_set1_ps(factor)));
    }
    // The even words of one and the odd words of the other.
    FIKLEIPA_INLINE Bytes alternate16(Bytes even, Bytes odd) { return _mm_blend_epi16(even, odd, 0xAA); }
    // The even, or the odd, words are the words of a half vector in turn; the others are those of v.
    FIKLEIPA_INLINE Bytes withEvenWords(Bytes v, Bytes half) { return alternate16(_mm_cvtepu16_epi32(half), v); }
    FIKLEIPA_INLINE Bytes withOddWords(Bytes v, Bytes half) {
        return alternate16(v, _mm_slli_epi32(_mm_cvtepu16_epi32(half), 16));
    }
    // Within each lane: words of a and of b in turn, of the lower and of the upper half.
    FIKLEIPA_INLINE Bytes zipLower16(Bytes a, Bytes b) { return _mm_unpacklo_epi16(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper16(Bytes a, Bytes b) { return _mm_unpackhi_epi16(a, b); }
    // Integers to unsigned words with saturation; undoes the order of the two above.
    FIKLEIPA_INLINE Bytes packUnsigned32(Bytes a, Bytes b) { return _mm_packus_epi32(a, b); }

    // The lower halves of products; sums limited to 65535.
    FIKLEIPA_INLINE Bytes multiply16(Bytes a, Bytes b) { return _mm_mullo_epi16(a, b); }
    FIKLEIPA_INLINE Bytes add16(Bytes a, Bytes b) { return _mm_add_epi16(a, b); }
    FIKLEIPA_INLINE Bytes addLimited16(Bytes a, Bytes b) { return _mm_adds_epu16(a, b); }
    FIKLEIPA_INLINE Bytes add32(Bytes a, Bytes b) { return _mm_add_epi32(a, b); }
    // In every 32-bit integer the sum of the products of the two signed 16-bit halves; the second form adds it to sum.
    FIKLEIPA_INLINE Bytes dot(Bytes a, Bytes b) { return _mm_madd_epi16(a, b); }
    FIKLEIPA_INLINE Bytes dot(Bytes sum, Bytes a, Bytes b) { return add32(sum, dot(a, b)); }
    // 16-bit words: the upper halves of the 32-bit integers of a and of b in turn.
    FIKLEIPA_INLINE Bytes zipUpperHalves(Bytes a, Bytes b) { return _mm_blend_epi16(_mm_srli_epi32(a, 16), b, 0xAA); }
    // The same of the lower halves.
    FIKLEIPA_INLINE Bytes zipLowerHalves(Bytes a, Bytes b) { return _mm_blend_epi16(a, _mm_slli_epi32(b, 16), 0xAA); }
    // The 32-bit integers from number kFrom of a on, and then those of b.
    template <int kFrom>
    FIKLEIPA_INLINE Bytes joined32(Bytes a, Bytes b) {
        return _mm_alignr_epi8(b, a, 4 * kFrom);
    }

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
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void storePixels32(std::uint8_t* p, Bytes c02, Bytes c13) {
        const Bytes c01 = _mm_unpacklo_epi8(c02, c13);
        const Bytes c23 = _mm_unpackhi_epi8(c02, c13);
        store<kWrites>(p, _mm_unpacklo_epi16(c01, c23));
        store<kWrites>(p + kBytes, _mm_unpackhi_epi16(c01, c23));
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

    // Stores the lower bytes of words.
    FIKLEIPA_INLINE void storeLowerBytes(std::uint8_t* p, Bytes v) {
        const Bytes bytes = bitAnd(v, repeat16(255));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packus_epi16(bytes, bytes));
    }
    // Stores pixels of four 16-bit components, and of three.
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void storePixels64(std::uint8_t* p, Bytes c0, Bytes c1, Bytes c2, Bytes c3) {
        const Bytes low01 = zipLower16(c0, c1);
        const Bytes low23 = zipLower16(c2, c3);
        const Bytes high01 = zipUpper16(c0, c1);
        const Bytes high23 = zipUpper16(c2, c3);
        store<kWrites>(p, _mm_unpacklo_epi32(low01, low23));
        store<kWrites>(p + kBytes, _mm_unpackhi_epi32(low01, low23));
        store<kWrites>(p + 2 * kBytes, _mm_unpacklo_epi32(high01, high23));
        store<kWrites>(p + 3 * kBytes, _mm_unpackhi_epi32(high01, high23));
    }
    FIKLEIPA_INLINE void storePixels48(std::uint8_t* p, Bytes c0, Bytes c1, Bytes c2) {
        const Bytes low01 = zipLower16(c0, c1);
        const Bytes low2 = zipLower16(c2, c2);
        const Bytes high01 = zipUpper16(c0, c1);
        const Bytes high2 = zipUpper16(c2, c2);
        // Two pixels each, twelve bytes of them kept.
        const Bytes drop = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, -1, -1, -1, -1);
        const Bytes a = shuffle(_mm_unpacklo_epi32(low01, low2), drop);
        const Bytes b = shuffle(_mm_unpackhi_epi32(low01, low2), drop);
        const Bytes c = shuffle(_mm_unpacklo_epi32(high01, high2), drop);
        const Bytes d = shuffle(_mm_unpackhi_epi32(high01, high2), drop);
        store(p, bitOr(a, _mm_slli_si128(b, 12)));
        store(p + kBytes, bitOr(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)));
        store(p + 2 * kBytes, bitOr(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)));
    }

    // In each lane: the bytes of a's and of b's lower, or upper, half in turn.
    FIKLEIPA_INLINE Bytes zipLower8(Bytes a, Bytes b) { return _mm_unpacklo_epi8(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper8(Bytes a, Bytes b) { return _mm_unpackhi_epi8(a, b); }

    // Lane i from or to p + 12 i. What a lane has beyond its twelve bytes is unspecified where it was loaded, and lands
    // on the next lane's, or behind all, where it is stored; never more than kBytes are touched.
    FIKLEIPA_INLINE Bytes loadTwelves(const std::uint8_t* p) { return load(p); }
    FIKLEIPA_INLINE void storeTwelves(std::uint8_t* p, Bytes v) { store(p, v); }
    // The same for lower halves of lanes at p + 6 i and upper halves at q + 6 i, and kBytes / 2 at each.
    FIKLEIPA_INLINE Bytes loadSixes(const std::uint8_t* p, const std::uint8_t* q) {
        return _mm_unpacklo_epi64(loadHalf(p), loadHalf(q));
    }
    FIKLEIPA_INLINE void storeSixes(std::uint8_t* p, std::uint8_t* q, Bytes v) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(q), _mm_unpackhi_epi64(v, v));
    }

    // Lane i from or to the even and the odd 16 bytes of 2 kBytes.
    FIKLEIPA_INLINE void loadLanePairs(const std::uint8_t* p, Bytes& even, Bytes& odd) {
        even = load(p);
        odd = load(p + kBytes);
    }
    template <Writes kWrites = Writes::ToCache>
    FIKLEIPA_INLINE void storeLanePairs(std::uint8_t* p, Bytes even, Bytes odd) {
        store<kWrites>(p, even);
        store<kWrites>(p + kBytes, odd);
    }
    // Lanes of 24 bytes: the first and the last 16 of each.
    FIKLEIPA_INLINE void storeTwentyFours(std::uint8_t* p, Bytes first, Bytes last) {
        store(p, first);
        store(p + 8, last);
    }

    // kBytes / 2 bytes of 16-bit words into the lower halves of 32-bit integers.
    FIKLEIPA_INLINE Bytes widen16(const std::uint8_t* p) { return _mm_cvtepu16_epi32(loadHalf(p)); }
    // The even 16-bit words to p, the odd ones to q.
    FIKLEIPA_INLINE void storeUnzipped16(std::uint8_t* p, std::uint8_t* q, Bytes v) {
        const Bytes halves = shuffle(v, _mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15));
        storeSixes(p, q, halves);
    }

    // Lane i from p + i * apart.
    FIKLEIPA_INLINE Bytes loadLanesApart(const std::uint8_t* p, std::size_t /*apart*/) { return load(p); }
    // In each lane the even, or the odd, 32-bit integers of a before those of b.
    FIKLEIPA_INLINE Bytes unzipEven32(Bytes a, Bytes b) {
        return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
    }
    FIKLEIPA_INLINE Bytes unzipOdd32(Bytes a, Bytes b) {
        return _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(a), _mm_castsi128_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
    }
    // In each lane: the 32-bit or 64-bit integers of a's and of b's lower, or upper, half in turn.
    FIKLEIPA_INLINE Bytes zipLower32(Bytes a, Bytes b) { return _mm_unpacklo_epi32(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper32(Bytes a, Bytes b) { return _mm_unpackhi_epi32(a, b); }
    FIKLEIPA_INLINE Bytes zipLower64(Bytes a, Bytes b) { return _mm_unpacklo_epi64(a, b); }
    FIKLEIPA_INLINE Bytes zipUpper64(Bytes a, Bytes b) { return _mm_unpackhi_epi64(a, b); }
    // Narrowing to signed words or bytes with saturation; in each lane the results of a come before those of b.
    FIKLEIPA_INLINE Bytes packSigned32(Bytes a, Bytes b) { return _mm_packs_epi32(a, b); }
    FIKLEIPA_INLINE Bytes packSigned16(Bytes a, Bytes b) { return _mm_packs_epi16(a, b); }
    // For each 32-bit integer of v: that of `positive`, or of `negative` where v's is below zero.
    FIKLEIPA_INLINE Bytes pickBySign32(Bytes v, Bytes positive, Bytes negative) {
        return _mm_castps_si128(
            _mm_blendv_ps(_mm_castsi128_ps(positive), _mm_castsi128_ps(negative), _mm_castsi128_ps(v)));
    }

    // kBytes / 2 bytes at p and at q in turn.
    FIKLEIPA_INLINE Bytes loadZipped8(const std::uint8_t* p, const std::uint8_t* q) {
        return _mm_unpacklo_epi8(loadHalf(p), loadHalf(q));
    }
    // Stores the bytes of a and b in turn.
    FIKLEIPA_INLINE void storeZipped8(std::uint8_t* p, Bytes a, Bytes b) {
        store(p, zipLower8(a, b));
        store(p + kBytes, zipUpper8(a, b));
    }
    // Every other byte of a and then of b.
    FIKLEIPA_INLINE Bytes evenBytes(Bytes a, Bytes b) {
        return packUnsigned16(bitAnd(a, repeat16(0xFF)), bitAnd(b, repeat16(0xFF)));
    }
    FIKLEIPA_INLINE Bytes oddBytes(Bytes a, Bytes b) { return packUnsigned16(right16<8>(a), right16<8>(b)); }
    // Every other word of a and then of b.
    FIKLEIPA_INLINE Bytes evenWords(Bytes a, Bytes b) {
        return packUnsigned32(alternate16(a, repeat16(0)), alternate16(b, repeat16(0)));
    }
    // The even bytes to p, the odd ones to q.
    FIKLEIPA_INLINE void storeUnzipped8(std::uint8_t* p, std::uint8_t* q, Bytes v) {
        storeSixes(p, q, shuffle(v, _mm_setr_epi8(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15)));
    }
    // (a + b + 1) / 2 for every byte.
    FIKLEIPA_INLINE Bytes average8(Bytes a, Bytes b) { return _mm_avg_epu8(a, b); }

    // In each lane the lower eight bytes to p + 8 i, the next four to q + 4 i, the last four to r + 4 i.
    FIKLEIPA_INLINE void storeEightsAndFours(std::uint8_t* p, std::uint8_t* q, std::uint8_t* r, Bytes v) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v);
        const int third = _mm_extract_epi32(v, 2);
        const int fourth = _mm_extract_epi32(v, 3);
        __builtin_memcpy(q, &third, sizeof third);
        __builtin_memcpy(r, &fourth, sizeof fourth);
    }

    // A number of bits to shift by that is not known beforehand; shifting keeps the sign.
    using Count = __m128i;
    FIKLEIPA_INLINE Count count(int bits) { return _mm_cvtsi32_si128(bits); }
    FIKLEIPA_INLINE Bytes rightSigned32(Bytes v, Count bits) { return _mm_sra_epi32(v, bits); }
    // Integers divided and rounded downwards. Divisors are those of simd/x86/from_rgb_deep.inl.h, quotients from 0 to
    // the most that belongs to them; others come below or above these.
    struct Divisor {
        Count twos;
        float factor;
    };
    FIKLEIPA_INLINE Divisor divisor(std::uint32_t d) {
        const int twos = __builtin_ctz(d);
        return {count(twos), 1.0F / static_cast<float>(d >> twos)};
    }
    FIKLEIPA_INLINE Bytes quotients(Bytes v, const Divisor& d) { return scale32(rightSigned32(v, d.twos), d.factor); }
    FIKLEIPA_INLINE Bytes min32(Bytes a, Bytes b) { return _mm_min_epi32(a, b); }
    FIKLEIPA_INLINE Bytes max32(Bytes a, Bytes b) { return _mm_max_epi32(a, b); }
    // v, and v + more where v is below the limit.
    FIKLEIPA_INLINE Bytes addBelow32(Bytes v, Bytes limit, Bytes more) {
        return add32(v, bitAnd(_mm_cmplt_epi32(v, limit), more));
    }
    // The upper halves of products without a sign.
    FIKLEIPA_INLINE Bytes multiplyUpper32(Bytes a, Bytes b) {
        const Bytes even = _mm_srli_epi64(_mm_mul_epu32(a, b), 32);
        const Bytes odd = _mm_mul_epu32(_mm_srli_epi64(a, 32), _mm_srli_epi64(b, 32));
        return _mm_blend_epi16(even, odd, 0xCC);
    }

    // Double precision; half of a vector's 32-bit integers fill one of doubles.
    using Doubles = __m128d;
    FIKLEIPA_INLINE Doubles repeatDouble(double value) { return _mm_set1_pd(value); }
    FIKLEIPA_INLINE Doubles lowerDoubles(Bytes v) { return _mm_cvtepi32_pd(v); }
    FIKLEIPA_INLINE Doubles upperDoubles(Bytes v) { return _mm_cvtepi32_pd(_mm_unpackhi_epi64(v, v)); }
    FIKLEIPA_INLINE Bytes truncated(Doubles lower, Doubles upper) {
        return _mm_unpacklo_epi64(_mm_cvttpd_epi32(lower), _mm_cvttpd_epi32(upper));
    }
    FIKLEIPA_INLINE Doubles add(Doubles a, Doubles b) { return _mm_add_pd(a, b); }
    FIKLEIPA_INLINE Doubles multiply(Doubles a, Doubles b) { return _mm_mul_pd(a, b); }
    // Integers of 0 and more with a whole number added, that of addend(); and floors, or anything from 0 down to them,
    // in integers of the same order.
    FIKLEIPA_INLINE Doubles addend(double k) { return repeatDouble(k); }
    FIKLEIPA_INLINE Doubles lowerSums(Bytes v, Doubles k) { return add(lowerDoubles(v), k); }
    FIKLEIPA_INLINE Doubles upperSums(Bytes v, Doubles k) { return add(upperDoubles(v), k); }
    FIKLEIPA_INLINE Bytes floors(Doubles lower, Doubles upper) { return truncated(lower, upper); }
    FIKLEIPA_INLINE Doubles divide(Doubles a, Doubles b) { return _mm_div_pd(a, b); }
    FIKLEIPA_INLINE Doubles min(Doubles a, Doubles b) { return _mm_min_pd(a, b); }
    FIKLEIPA_INLINE Doubles max(Doubles a, Doubles b) { return _mm_max_pd(a, b); }

    // kBytes / 2 units of four, or of three, bytes, the even ones and the odd ones, to 32-bit integers. Threes
    // leave anything in an integer's highest byte.
    FIKLEIPA_INLINE void unzipFours(const std::uint8_t* p, Bytes& even, Bytes& odd) {
        const Bytes a = load(p);
        const Bytes b = load(p + kBytes);
        even = unzipEven32(a, b);
        odd = unzipOdd32(a, b);
    }
    FIKLEIPA_INLINE void unzipThrees(const std::uint8_t* p, Bytes& even, Bytes& odd) {
        const Bytes first = _mm_setr_epi8(0, 1, 2, 3, 3, 4, 5, 6, 6, 7, 8, 9, 9, 10, 11, 12);
        const Bytes last = _mm_setr_epi8(4, 5, 6, 7, 7, 8, 9, 10, 10, 11, 12, 13, 13, 14, 15, 15);
        const Bytes a = shuffle(load(p), first);
        const Bytes b = shuffle(load(p + 8), last);
        even = unzipEven32(a, b);
        odd = unzipOdd32(a, b);
    }
    // Pixels of three 10-bit components from bit 2 on: words of the lowest and the highest one, and of the middle one
    // and 32 times it.
    FIKLEIPA_INLINE void splitTens(Bytes pixels, Bytes& outer, Bytes& middle) {
        outer = orMasked(bitAnd(right32<2>(pixels), repeat32(0x3FF)), right32<6>(pixels), repeat32(0x3FF0000));
        middle = orMasked(bitAnd(right32<12>(pixels), repeat32(0x3FF)), left32<9>(pixels), repeat32(0x7FE00000));
    }
    // Stores words as bytes, anything above 255 as 255.
    FIKLEIPA_INLINE void storeLimitedBytes(std::uint8_t* p, Bytes v) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), packUnsigned16(v, v));
    }

    // Limited to signed words, and to 0.
    FIKLEIPA_INLINE Bytes addLimitedSigned16(Bytes a, Bytes b) { return _mm_adds_epi16(a, b); }
    FIKLEIPA_INLINE Bytes subtractLimited16(Bytes a, Bytes b) { return _mm_subs_epu16(a, b); }
    // Of two vectors that hold twelve bytes for every lane, one lane's behind another's: word i of a lane is word
    // from[i] of its six of a, or word from[i] - 6 of those of b.
    struct Merge {
        alignas(kBytes) std::uint8_t fromA[16]{};
        alignas(kBytes) std::uint8_t fromB[16]{};
        constexpr explicit Merge(const unsigned (&from)[8]) {
            for (unsigned i = 0; i < 16; ++i) {
                const unsigned word = from[i / 2];
                fromA[i] = static_cast<std::uint8_t>(word < 6 ? 2 * word + i % 2 : 0x80);
                fromB[i] = static_cast<std::uint8_t>(word < 6 ? 0x80 : 2 * (word - 6) + i % 2);
            }
        }
    };
    FIKLEIPA_INLINE Bytes merge(Bytes a, Bytes b, const Merge& m) {
        return bitOr(shuffle(a, repeat(m.fromA)), shuffle(b, repeat(m.fromB)));
    }

    // Pixels of eight bytes, as many as vectors have 16-bit words: the lower and the upper halves of the even ones, and
    // those of the odd ones.
    FIKLEIPA_INLINE void unzipEights(const std::uint8_t* p, Bytes& evenLower, Bytes& evenUpper, Bytes& oddLower,
                                     Bytes& oddUpper) {
        const Bytes a = load(p);
        const Bytes b = load(p + 16);
        const Bytes c = load(p + 32);
        const Bytes d = load(p + 48);
        evenLower = zipLower64(zipLower32(a, b), zipLower32(c, d));
        evenUpper = zipUpper64(zipLower32(a, b), zipLower32(c, d));
        oddLower = zipLower64(zipUpper32(a, b), zipUpper32(c, d));
        oddUpper = zipUpper64(zipUpper32(a, b), zipUpper32(c, d));
    }
    // The same of six bytes, with anything in the upper halves of the latter.
    FIKLEIPA_INLINE void unzipSixes(const std::uint8_t* p, Bytes& evenLower, Bytes& evenUpper, Bytes& oddLower,
                                    Bytes& oddUpper) {
        const Bytes first = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 6, 7, 8, 9, 10, 11, 12, 13);
        const Bytes last = _mm_setr_epi8(4, 5, 6, 7, 8, 9, 10, 11, 10, 11, 12, 13, 14, 15, 14, 15);
        const Bytes a = shuffle(load(p), first);
        const Bytes b = shuffle(load(p + 8), last);
        const Bytes c = shuffle(load(p + 24), first);
        const Bytes d = shuffle(load(p + 32), last);
        evenLower = zipLower64(zipLower32(a, b), zipLower32(c, d));
        evenUpper = zipUpper64(zipLower32(a, b), zipLower32(c, d));
        oddLower = zipLower64(zipUpper32(a, b), zipUpper32(c, d));
        oddUpper = zipUpper64(zipUpper32(a, b), zipUpper32(c, d));
    }
};
