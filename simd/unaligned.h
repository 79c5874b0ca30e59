// Words at any address.
#pragma once

#include <cstdint>
#include <cstring>

namespace fikleipa::simd {

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
