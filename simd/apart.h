// Whether rows lie on one another, as kernels ask that would then write in another order than the portable ones.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace fikleipa::simd {

// Bytes of a row.
struct Span {
    const std::uint8_t* begin;
    std::size_t bytes;
};

inline bool apart(const Span& a, const Span& b) {
    const auto first = reinterpret_cast<std::uintptr_t>(a.begin);
    const auto second = reinterpret_cast<std::uintptr_t>(b.begin);
    return first + a.bytes <= second || second + b.bytes <= first;
}

// Whether what is written lies apart from what is read and from one another.
inline bool allApart(std::initializer_list<Span> written, std::initializer_list<Span> read) {
    for (const Span* row = written.begin(); row != written.end(); ++row) {
        const auto apartFromRow = [row](const Span& other) { return apart(*row, other); };
        if (!std::all_of(read.begin(), read.end(), apartFromRow)) return false;
        if (!std::all_of(written.begin(), row, apartFromRow)) return false;
    }
    return true;
}

} // namespace fikleipa::simd
