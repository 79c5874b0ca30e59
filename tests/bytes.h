// What tests convert.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace fikleipa::tests {

using Bytes = std::vector<std::uint8_t>;

// Bytes without a pattern that a wrong offset could hide behind.
inline Bytes noise(std::size_t bytes, unsigned seed = 1) {
    std::minstd_rand random(seed);
    Bytes data(bytes);
    for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random() >> 8);
    return data;
}

} // namespace fikleipa::tests
