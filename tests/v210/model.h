// v210 and 16-bit samples spelled out one component at a time. Memory is given by pointers or by what indexes like one.
#pragma once

#include "tests/bytes.h"

#include <algorithm>

namespace fikleipa::tests {

constexpr unsigned roundUp(unsigned value, unsigned unit) {
    return (value + unit - 1) / unit * unit;
}

constexpr unsigned naturalPitch(unsigned width) {
    return roundUp(width, 48) / 48 * 128;
}
constexpr unsigned v210Pitch(unsigned width, unsigned pitch) {
    return std::max(pitch, naturalPitch(width));
}

// A row's components in the order Cb0 Y0 Cr0 Y1, Cb1 Y2 Cr1 Y3 and so on lie one after the other, three to a word.
constexpr unsigned lumaOf(unsigned x) {
    return 2 * x + 1;
}
constexpr unsigned cbOf(unsigned pair) {
    return 4 * pair;
}
constexpr unsigned crOf(unsigned pair) {
    return 4 * pair + 2;
}

template <class Memory>
std::uint32_t loadWord(Memory at) {
    return std::uint32_t{at[0]} | std::uint32_t{at[1]} << 8 | std::uint32_t{at[2]} << 16 | std::uint32_t{at[3]} << 24;
}
template <class Memory>
void storeWord(Memory at, std::uint32_t word) {
    for (unsigned i = 0; i < 4; ++i) at[i] = static_cast<std::uint8_t>(word >> 8 * i);
}

template <class Memory>
unsigned component(Memory row, unsigned index) {
    return loadWord(row + std::size_t{4} * (index / 3)) >> 10 * (index % 3) & 0x3FF;
}

// Components are stored in ascending order; the first of a word clears it.
template <class Memory>
void storeComponent(Memory row, unsigned index, unsigned value) {
    const Memory at = row + std::size_t{4} * (index / 3);
    storeWord(at, (index % 3 == 0 ? 0 : loadWord(at)) | value << 10 * (index % 3));
}

template <class Memory>
unsigned load16(Memory at) {
    return at[0] | unsigned{at[1]} << 8;
}
template <class Memory>
void store16(Memory at, unsigned value) {
    at[0] = static_cast<std::uint8_t>(value);
    at[1] = static_cast<std::uint8_t>(value >> 8);
}

} // namespace fikleipa::tests
