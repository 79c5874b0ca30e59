// Whether the rows of a frame's planes lie on one another: the order in which they are written shows then.
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

inline bool allApart(std::initializer_list<Span> rows) {
    for (const Span* row = rows.begin(); row != rows.end(); ++row) {
        if (!std::all_of(rows.begin(), row, [row](const Span& other) { return apart(*row, other); })) return false;
    }
    return true;
}

} // namespace fikleipa::simd
