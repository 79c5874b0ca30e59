// v210 and 16-bit samples spelled out one component at a time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace fikleipa::tests {

using Bytes = std::vector<unsigned char>;

inline Bytes noise(std::size_t bytes, unsigned seed = 3) {
    std::minstd_rand random(seed);
    Bytes data(bytes);
    for (unsigned char& byte : data) byte = static_cast<unsigned char>(random() >> 8);
    return data;
}

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

inline std::uint32_t loadWord(const unsigned char* at) {
    return std::uint32_t{at[0]} | std::uint32_t{at[1]} << 8 | std::uint32_t{at[2]} << 16 | std::uint32_t{at[3]} << 24;
}
inline void storeWord(unsigned char* at, std::uint32_t word) {
    for (unsigned i = 0; i < 4; ++i) at[i] = static_cast<unsigned char>(word >> 8 * i);
}

inline unsigned component(const unsigned char* row, unsigned index) {
    return loadWord(row + std::size_t{4} * (index / 3)) >> 10 * (index % 3) & 0x3FF;
}

// Components are stored in ascending order; the first of a word clears it.
inline void storeComponent(unsigned char* row, unsigned index, unsigned value) {
    unsigned char* const at = row + std::size_t{4} * (index / 3);
    storeWord(at, (index % 3 == 0 ? 0 : loadWord(at)) | value << 10 * (index % 3));
}

inline unsigned load16(const unsigned char* at) {
    return at[0] | unsigned{at[1]} << 8;
}
inline void store16(unsigned char* at, unsigned value) {
    at[0] = static_cast<unsigned char>(value);
    at[1] = static_cast<unsigned char>(value >> 8);
}

// The components of a row, each by calling value(index), that fill `words` words.
template <class Value>
void storeRow(unsigned char* row, unsigned words, Value value) {
    for (unsigned i = 0; i < 3 * words; ++i) storeComponent(row, i, value(i));
}

} // namespace fikleipa::tests
