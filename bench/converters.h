// The groups of benchmarks.
#pragma once

#include "bench/measure.h"
#include "simd/level.h"

#include <string>

namespace fikleipa::bench {

// 8-bit sources and destinations.
void registerConverters8(simd::Level level, const FrameSize& size);

// v210 and planes of high depth.
void registerDeepConverters(simd::Level level, const FrameSize& size);

// Frames wide enough to be split over threads, beside the same on one thread.
void registerSplitConverters(simd::Level level);

// What one registration needs besides the converter.
struct Context {
    simd::Level level;
    FrameSize size;

    void add(const char* name, Traffic traffic, const Convert& convert,
             const std::optional<Rival>& rival = std::nullopt) const {
        registerConversion(
            std::string(simd::levelName(level)) + "/" + name, size, traffic, [level = level] { simd::useLevel(level); },
            convert, rival);
    }
};

} // namespace fikleipa::bench
