// Every converter at every level that this processor has.
#include "bench/converters.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <iostream>

namespace {

using namespace fikleipa;
using namespace fikleipa::bench;

// A clip beyond any cache, and rows that stay in the first level.
constexpr FrameSize kClip{"1920x1080", 1920, 1080, 24, 41, true};
constexpr FrameSize kCached{"cached", 1920, 2, 1, 41};

// Slow levels and what differs little from case to case need no more than a look.
constexpr FrameSize kClipShort{"1920x1080", 1920, 1080, 24, 21};
constexpr FrameSize kClipPortable{"1920x1080", 1920, 1080, 24, 9};
constexpr FrameSize kCachedShort{"cached", 1920, 2, 1, 21};

// Other sizes, and one frame over and over, which a large last-level cache holds.
constexpr FrameSize kAtTheBest[] = {{"720x486", 720, 486, 120, 31},
                                    {"1920x1080-reused", 1920, 1080, 1, 31},
                                    {"3840x2160", 3840, 2160, 8, 31, true},
                                    {"7680x4320", 7680, 4320, 2, 21, false, 16}};

void registerConverters(simd::Level level, const FrameSize& size) {
    registerConverters8(level, size);
    registerPlanarConverters(level, size);
    registerDeepConverters(level, size);
    registerFromRgb(level, size);
    registerMoves(level, size);
}

FrameSize brief(FrameSize size) {
    size.turns = 9;
    size.besidePeers = false;
    size.parts = 0;
    return size;
}

void registerCells(simd::Level level) {
    registerDispatcher(level, kClipShort);
    registerDispatcher(level, kCachedShort);
    for (const FrameSize& size : kAtTheBest) registerDispatcher(level, brief(size));
}

void registerAll() {
    const simd::Level best = simd::bestLevel();
    for (const simd::Level level : simd::kLevels) {
        if (level >= best) break;
        registerConverters(level, level == simd::Level::Portable ? kClipPortable : kClipShort);
        registerConverters(level, kCachedShort);
    }
    for (const FrameSize& size : {kClip, kCached}) registerConverters(best, size);
    for (const FrameSize& size : kAtTheBest) registerConverters(best, size);
    registerCells(best);
    registerSplitConverters(best);
    registerBands();
}

// What takes long and says little more: the lower levels' other sizes and cells.
void registerRest() {
    const simd::Level best = simd::bestLevel();
    for (const simd::Level level : simd::kLevels) {
        if (level >= best) break;
        for (const FrameSize& size : kAtTheBest) registerConverters(level, brief(size));
        registerCells(level);
    }
}

int run(int argc, char** argv) {
    registerAll();
    if (argc > 1 && std::strcmp(argv[1], "--everything") == 0) {
        registerRest();
        std::rotate(argv + 1, argv + 2, argv + argc);
        --argc;
    }
    if (argc == 2 && std::strcmp(argv[1], "--uncovered") == 0) return printUncovered() == 0 ? 0 : 1;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "fikleipa_bench: " << error.what() << '\n';
        return 1;
    }
}
