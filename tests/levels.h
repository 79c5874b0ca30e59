// The vector levels that this processor has, to run a test at each.
#pragma once

#include "simd/kernels.h"
#include "tests/bytes.h"

namespace fikleipa::tests {

inline std::vector<simd::Level> vectorLevels() {
    std::vector<simd::Level> levels;
    for (const simd::Level level : simd::kLevels) {
        if (level != simd::Level::Portable && level <= simd::bestLevel()) levels.push_back(level);
    }
    return levels;
}

} // namespace fikleipa::tests
