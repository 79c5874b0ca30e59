#include "simd/samples.h"

namespace fikleipa::simd {

// The pointers may be anywhere; only where they are those of a known group can a kernel read whole groups.
Samples8 packedSamples(const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr, unsigned sampleBytes) {
    const auto base = reinterpret_cast<std::uintptr_t>(y);
    const auto cbAt = reinterpret_cast<std::uintptr_t>(cb) - base;
    const auto crAt = reinterpret_cast<std::uintptr_t>(cr) - base;
    for (unsigned i = 0; i < kGroups.size(); ++i) {
        const Group& group = kGroups[i];
        if (cbAt == (std::uintptr_t{group.cb} - group.y) * sampleBytes &&
            crAt == (std::uintptr_t{group.cr} - group.y) * sampleBytes) {
            return static_cast<Samples8>(i);
        }
    }
    return Samples8::Packed;
}

} // namespace fikleipa::simd
