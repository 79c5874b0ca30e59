#include "v210/row_unpack.h"

#include "fikleipa.h"
#include "simd/kernels.h"

#include <cstddef>
#include <cstring>

#if defined(__x86_64__)
#include <tmmintrin.h>

#include "simd/x86/targets.h"
#endif

namespace fikleipa {
namespace {

using simd::Justify;

// What is stored for a group: 16-bit samples, of which the last two of luma and the last of chroma are 0.
constexpr std::size_t kLumaStored = 16;
constexpr std::size_t kChromaStored = 8;
constexpr std::size_t kLumaStep = 12;
constexpr std::size_t kChromaStep = 6;

constexpr std::size_t groupsOf(unsigned width) {
    return (width + simd::kV210GroupPixels - 1) / simd::kV210GroupPixels;
}

} // namespace

// The row kernels do not write beyond the last group, so that one is stored with what is stored behind it.
void unpackRow16(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, unsigned width,
                 Justify justify) {
    if (width == 0) return;
    const auto unpack =
        simd::kernels().v210.unpack16[static_cast<unsigned>(justify)][static_cast<unsigned>(simd::Samples16::Planar)];
    const std::size_t before = groupsOf(width) - 1;
    unpack(y, cb, cr, src, before);

    std::uint8_t luma[kLumaStored] = {};
    std::uint8_t chroma[2][kChromaStored] = {};
    unpack(luma, chroma[0], chroma[1], src + before * simd::kV210GroupBytes, 1);
    std::memcpy(y + before * kLumaStep, luma, sizeof luma);
    std::memcpy(cb + before * kChromaStep, chroma[0], sizeof chroma[0]);
    std::memcpy(cr + before * kChromaStep, chroma[1], sizeof chroma[1]);
}

} // namespace fikleipa

#if defined(__x86_64__)

FIKLEIPA_TARGET_SSSE3
namespace fikleipa {
namespace {

enum class Source { Aligned, Unaligned };

// A product of 64 or 4 moves the field at bits 0-9, or 20-29, to the top of its 16-bit half, from where it is shifted
// down; the field at bits 10-19 takes a shift and a mask of its own.
template <Source kSource, Justify kJustify>
void unpackRow(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, unsigned width) {
    const __m128i field = _mm_set1_epi32(0x3FF);
    const __m128i scale = _mm_set1_epi32(4 << 16 | 64);
    const __m128i lumaFrom = _mm_setr_epi8(8, 9, 0, 1, 2, 3, 12, 13, 4, 5, 6, 7, -1, -1, -1, -1);
    const __m128i chromaFrom = _mm_setr_epi8(0, 1, 8, 9, 6, 7, -1, -1, 2, 3, 4, 5, 12, 13, -1, -1);
    constexpr int kLeft = kJustify == Justify::Left ? 6 : 0;
    for (std::size_t groups = groupsOf(width); groups != 0; --groups) {
        const auto* const from = reinterpret_cast<const __m128i*>(src);
        const __m128i words = kSource == Source::Aligned ? _mm_load_si128(from) : _mm_loadu_si128(from);
        const __m128 outer = _mm_castsi128_ps(_mm_srli_epi16(_mm_mullo_epi16(words, scale), 6));
        const __m128 middle = _mm_castsi128_ps(_mm_and_si128(_mm_srli_epi32(words, 10), field));
        const __m128i luma = _mm_castps_si128(_mm_shuffle_ps(outer, middle, _MM_SHUFFLE(2, 0, 3, 1)));
        const __m128i chroma = _mm_castps_si128(_mm_shuffle_ps(outer, middle, _MM_SHUFFLE(3, 1, 2, 0)));
        const __m128i both = _mm_slli_epi16(_mm_shuffle_epi8(chroma, chromaFrom), kLeft);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(y), _mm_slli_epi16(_mm_shuffle_epi8(luma, lumaFrom), kLeft));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(cb), both);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(cr), _mm_unpackhi_epi64(both, both));
        src += simd::kV210GroupBytes;
        y += kLumaStep;
        cb += kChromaStep;
        cr += kChromaStep;
    }
}

} // namespace
} // namespace fikleipa
FIKLEIPA_TARGET_END

#define ROW_UNPACK(name, source, justify)                                                                              \
    void name(unsigned char* src, unsigned short* y, unsigned short* cb, unsigned short* cr, unsigned int width) {     \
        using namespace fikleipa;                                                                                      \
        unpackRow<Source::source, Justify::justify>(reinterpret_cast<std::uint8_t*>(y),                                \
                                                    reinterpret_cast<std::uint8_t*>(cb),                               \
                                                    reinterpret_cast<std::uint8_t*>(cr), src, width);                  \
    }

ROW_UNPACK(px_v210_planar_unpack_aligned_ssse3, Aligned, Right)
ROW_UNPACK(px_v210_planar_unpack_unaligned_ssse3, Unaligned, Right)
ROW_UNPACK(px_v210_planar16_unpack_aligned_ssse3, Aligned, Left)
ROW_UNPACK(px_v210_planar16_unpack_unaligned_ssse3, Unaligned, Left)

#undef ROW_UNPACK

#endif
