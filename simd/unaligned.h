// Words at any address.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace fikleipa::simd {

// Every kernel takes words for what memory has of them.
static_assert(std::endian::native == std::endian::little, "v210 and 16-bit samples are little-endian");

template <class Word>
Word loadWord(const std::uint8_t* src) {
    Word word;
    std::memcpy(&word, src, sizeof word);
    return word;
}

template <class Word>
void storeWord(std::uint8_t* dst, unsigned value) {
    const auto word = static_cast<Word>(value);
    std::memcpy(dst, &word, sizeof word);
}

} // namespace fikleipa::simd
