// The groups of benchmarks.
#pragma once

#include "bench/measure.h"
#include "bench/peers/peers.h"
#include "simd/level.h"

#include <string>
#include <vector>

namespace fikleipa::bench {

// 8-bit sources and destinations.
void registerConverters8(simd::Level level, const FrameSize& size);

// Planar and packed 8-bit layouts.
void registerPlanarConverters(simd::Level level, const FrameSize& size);

// v210 and planes of high depth.
void registerDeepConverters(simd::Level level, const FrameSize& size);

// RGB sources.
void registerFromRgb(simd::Level level, const FrameSize& size);

// Frames wide enough to be split over threads, beside the same on one thread.
void registerSplitConverters(simd::Level level);

// One of those in one to eight bands, and what it costs to start threads.
void registerBands();

// What one registration needs besides the converter.
struct Context {
    simd::Level level;
    FrameSize size;

    // Peers are there at the best level alone and for a clip.
    void add(const char* name, Traffic traffic, const Convert& convert, std::vector<Rival> rivals = {}) const {
        if (level == simd::bestLevel() && size.frames > 8) {
            const std::vector<Rival> peers = rivalsOf(name);
            rivals.insert(rivals.end(), peers.begin(), peers.end());
        }
        registerConversion(
            std::string(simd::levelName(level)) + "/" + name, size, traffic, [level = level] { simd::useLevel(level); },
            convert, rivals);
    }
};

} // namespace fikleipa::bench
