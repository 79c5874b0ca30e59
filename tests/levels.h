// The levels that this processor has, to run a test at each.
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

// Calls test(level) with every level in use in turn.
template <class Test>
void atEachLevel(Test test) {
    for (const simd::Level level : simd::kLevels) {
        if (level > simd::bestLevel()) continue;
        simd::useLevel(level);
        test(level);
    }
    simd::useLevel(simd::bestLevel());
}

} // namespace fikleipa::tests
