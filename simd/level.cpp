#include "simd/level.h"

#include <algorithm>

namespace fikleipa::simd {
namespace {

// The builtins check the operating system's part (XCR0) as well as the processor's.
Level detect() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("ssse3") || !__builtin_cpu_supports("sse4.1")) return Level::Portable;
    if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("fma")) return Level::Sse41;
    const bool avx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
                        __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512vnni");
    return avx512 ? Level::Avx512 : Level::Avx2;
#else
    return Level::Portable;
#endif
}

} // namespace

const char* levelName(Level level) {
    constexpr std::array names{"portable", "sse4.1", "avx2", "avx512"};
    return names[static_cast<unsigned>(level)];
}

bool hasAvx() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    return static_cast<bool>(__builtin_cpu_supports("avx"));
#else
    return false;
#endif
}

Level bestLevel() {
    static const Level best = detect();
    return best;
}

// Found out while the library is loaded, when there is no other thread in it: a fork amid it would leave the child
// waiting for the answer.
[[maybe_unused]] static const Level kFoundAtLoad = bestLevel();

constinit std::atomic<int> chosenLevel{kNotChosen};

// Threads that choose at the same time choose the same.
Level chooseLevel() {
    useLevel(bestLevel());
    return bestLevel();
}

void useLevel(Level level) {
    chosenLevel.store(static_cast<int>(std::min(level, bestLevel())), std::memory_order_relaxed);
}

} // namespace fikleipa::simd
