// Asking for memory that will be wanted soon.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fikleipa::simd {

// Asks for what lies `ahead` bytes before or behind `from`. That may be outside of every buffer, where no pointer may
// point, so the address is formed as a number. Were it not inlined, GCC would take it for a function without effect.
template <int kForWriting = 0, int kLocality = 3>
[[gnu::always_inline]] inline void fetchAhead(const std::uint8_t* from, std::ptrdiff_t ahead) {
    const auto address = reinterpret_cast<std::uintptr_t>(from) + static_cast<std::uintptr_t>(ahead);
    __builtin_prefetch(reinterpret_cast<const void*>(address), kForWriting, kLocality); // NOLINT(*-no-int-to-ptr)
}

// The same of `bytes` bytes from there on.
template <int kForWriting = 0, int kLocality = 3>
[[gnu::always_inline]] inline void fetchAhead(const std::uint8_t* from, std::ptrdiff_t ahead, std::size_t bytes) {
    constexpr std::size_t kLine = 64;
    for (std::size_t i = 0; i < bytes; i += kLine) {
        fetchAhead<kForWriting, kLocality>(from, ahead + static_cast<std::ptrdiff_t>(i));
    }
}

} // namespace fikleipa::simd
