// Every converter at every level that this processor has.
#include "bench/converters.h"

#include <benchmark/benchmark.h>

namespace {

using namespace fikleipa;
using namespace fikleipa::bench;

// A clip beyond any cache, and rows that stay in the first level.
constexpr FrameSize kAtEveryLevel[] = {{"1920x1080", 1920, 1080, 24}, {"cached", 1920, 2, 1}};

// Other sizes, and one frame over and over, which a large last-level cache holds.
constexpr FrameSize kAtTheBest[] = {{"720x486", 720, 486, 120},
                                    {"1920x1080-reused", 1920, 1080, 1},
                                    {"3840x2160", 3840, 2160, 8},
                                    {"7680x4320", 7680, 4320, 2}};

void registerConverters(simd::Level level, const FrameSize& size) {
    registerConverters8(level, size);
    registerPlanarConverters(level, size);
    registerDeepConverters(level, size);
    registerFromRgb(level, size);
}

} // namespace

int main(int argc, char** argv) {
    for (const simd::Level level : simd::kLevels) {
        if (level > simd::bestLevel()) break;
        for (const FrameSize& size : kAtEveryLevel) registerConverters(level, size);
        registerSplitConverters(level);
    }
    for (const FrameSize& size : kAtTheBest) registerConverters(simd::bestLevel(), size);
    registerBands();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
