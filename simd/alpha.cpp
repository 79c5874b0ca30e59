#include "simd/alpha.h"

#include "simd/unaligned.h"

namespace fikleipa::simd {
namespace {

enum class Sample { Byte, Word };
enum class Levels { AsTheyAre, Expanded };

template <Sample kSample>
constexpr const AlphaLevels& kLevelsOf = kSample == Sample::Byte ? kAlphaLevels8 : kAlphaLevels10;

template <Sample kSample, Levels kAs>
void merge(std::uint8_t* dst, const std::uint8_t* alpha, std::size_t pixels) {
    for (std::size_t x = 0; x < pixels; ++x) {
        const int a = kSample == Sample::Byte ? alpha[x] : loadWord<std::uint16_t>(alpha + 2 * x);
        const int upper = kSample == Sample::Byte ? a : a >> 2;
        dst[4 * x + 3] = static_cast<std::uint8_t>(kAs == Levels::Expanded ? kLevelsOf<kSample>.expanded(a) : upper);
    }
}

constexpr AlphaKernels kPortable{merge<Sample::Byte, Levels::AsTheyAre>, merge<Sample::Byte, Levels::Expanded>,
                                 merge<Sample::Word, Levels::AsTheyAre>, merge<Sample::Word, Levels::Expanded>};

} // namespace
} // namespace fikleipa::simd

#define FIKLEIPA_KERNELS "simd/x86/alpha.inl.h"
#include "simd/each_level.h"
#include "simd/overwrite.inl.h"

namespace fikleipa::simd {

AlphaKernels alphaKernels(Level level) {
    return overwritten(kPortable, level);
}

} // namespace fikleipa::simd
