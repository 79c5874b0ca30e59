#include "core/processor.h"

#include "fikleipa.h"
#include "pxutil/pxutil.h"

#include <atomic>

namespace {

constexpr unsigned kUnprobed = 0xFFFFFFFE;

} // namespace

unsigned int gdwProcType = kUnprobed;

namespace fikleipa {
namespace {

// Plain loads and stores in the machine's eyes; threads that probe at once store the same value.
unsigned loadLevel() {
    return std::atomic_ref(gdwProcType).load(std::memory_order_relaxed);
}
void storeLevel(unsigned level) {
    std::atomic_ref(gdwProcType).store(level, std::memory_order_relaxed);
}

// Asked afresh every time: a host's own platform library may change its mind.
bool has(unsigned feature) {
    return (CPUFeatureFlags() & feature) != 0;
}

unsigned probedLevel() {
    if (has(PX_CPU_AVX512)) return 4;
    if (has(PX_CPU_AVX2)) return 3;
    return has(PX_CPU_SSE41) ? 2 : 1;
}

// Not the probe's rule, and deliberately so.
unsigned bestLevel() {
    if (has(PX_CPU_AVX512)) return 4;
    if (has(PX_CPU_AVX2)) return 3;
    if (has(PX_CPU_AVX)) return 5;
    return has(PX_CPU_SSE41) ? 4 : 0;
}

unsigned levelFor(unsigned request) {
    switch (request) {
    case 0:
    case 1:
        return request;
    case 2:
        return has(PX_CPU_SSE41) ? 2 : 1;
    case 3:
        return has(PX_CPU_AVX2) ? 3 : levelFor(2);
    case 4:
        return has(PX_CPU_AVX512) ? 4 : levelFor(3);
    case 5:
        return has(PX_CPU_AVX) ? 5 : levelFor(2);
    default:
        probeProcessorLevel();
        return bestLevel();
    }
}

} // namespace

void probeProcessorLevel() {
    if (loadLevel() == kUnprobed) storeLevel(probedLevel());
}

} // namespace fikleipa

unsigned int cycbcr_set_cpu(unsigned int level) {
    const unsigned stored = fikleipa::levelFor(level);
    fikleipa::storeLevel(stored);
    return stored;
}

unsigned int cycbcr_get_cpu(int which) {
    fikleipa::probeProcessorLevel();
    return which != 0 ? fikleipa::loadLevel() : fikleipa::bestLevel();
}
