// The vector levels that this processor has, to run a test at each.
#pragma once

#include "simd/kernels.h"

#include <random>
#include <vector>

namespace fikleipa::tests {

inline std::vector<simd::Level> vectorLevels() {
    std::vector<simd::Level> levels;
    for (const simd::Level level : simd::kLevels) {
        if (level != simd::Level::Portable && level <= simd::bestLevel()) levels.push_back(level);
    }
    return levels;
}

inline std::vector<std::uint8_t> noise(std::size_t bytes, unsigned seed = 1) {
    std::minstd_rand random(seed);
    std::vector<std::uint8_t> data(bytes);
    for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random() >> 8);
    return data;
}

} // namespace fikleipa::tests
