// The instruction-set levels that kernels are written for, and which of them this processor has.
#pragma once

#include <array>
#include <atomic>

namespace fikleipa::simd {

// Each level includes those before it.
//  Sse41:  SSSE3 and SSE4.1
//  Avx2:   AVX2 and FMA
//  Avx512: AVX-512 F, BW, DQ, VL, VBMI and VNNI. Processors with AVX-512 but without the last two slow down under wide
//          instructions and stay at Avx2.
enum class Level { Portable, Sse41, Avx2, Avx512 };

inline constexpr std::array kLevels{Level::Portable, Level::Sse41, Level::Avx2, Level::Avx512};

// How a kernel writes: to the cache, or past it to where vectors are aligned.
enum class Writes { ToCache, PastCache };

const char* levelName(Level level);

// Whether the processor has AVX and the operating system saves its registers. No kernel is written for it alone.
bool hasAvx();

// The highest level that the processor has and the operating system supports; found out once.
Level bestLevel();

// The level whose kernels are in use: bestLevel() unless useLevel() chose a lower one, which only tests and benchmarks
// do. Any number of threads may ask and choose. Rows ask, so asking is cheap.
inline constexpr int kNotChosen = -1;
extern std::atomic<int> chosenLevel;
Level chooseLevel();
inline Level activeLevel() {
    const int level = chosenLevel.load(std::memory_order_relaxed);
    return level != kNotChosen ? static_cast<Level>(level) : chooseLevel();
}
void useLevel(Level level);

} // namespace fikleipa::simd
