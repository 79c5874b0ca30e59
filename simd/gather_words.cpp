#include "simd/gather_words.h"

#include "simd/unaligned.h"

namespace fikleipa::simd {
namespace {

template <unsigned kApart, int kShift>
void gather(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        storeWord<std::uint16_t>(dst + 2 * i, unsigned{loadWord<std::uint16_t>(src + (2 * i << kApart))} >> kShift);
    }
}

constexpr GatherWordsKernels kPortable{{gather<0, 0>, gather<1, 0>, gather<2, 0>},
                                       {gather<0, 8>, gather<1, 8>, gather<2, 8>}};

} // namespace
} // namespace fikleipa::simd

#define FIKLEIPA_KERNELS "simd/x86/gather_words.inl.h"
#include "simd/each_level.h"
#include "simd/overwrite.inl.h"

namespace fikleipa::simd {

GatherWordsKernels gatherWordsKernels(Level level) {
    return overwritten(kPortable, level);
}

} // namespace fikleipa::simd
