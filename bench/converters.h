// The groups of benchmarks.
#pragma once

#include "bench/measure.h"
#include "bench/peers/peers.h"
#include "simd/level.h"

#include <set>
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

// What libpxutil moves.
void registerMoves(simd::Level level, const FrameSize& size);

// Every pair of layouts, by way of the dispatcher.
void registerDispatcher(simd::Level level, const FrameSize& size);

// The names under which the dispatcher's cells are measured, of all pairs of codes that it takes.
std::set<std::string> dispatcherCells();

// Frames wide enough to be split over threads, beside the same on one thread.
void registerSplitConverters(simd::Level level);

// One of those in one to eight bands, and what it costs to start threads.
void registerBands();

// The names that Context::add() was called with.
std::set<std::string>& measuredNames();

// Reads what nm says that libraries export and prints each function, each cell of the dispatcher and each entry of a
// peer that no benchmark measures. Returns how many there are.
int printUncovered();

// What one registration needs besides the converter. A name is that of the function, without "cycbcr_" if it has it,
// and behind it in parentheses what else may differ.
struct Context {
    simd::Level level;
    FrameSize size;

    void add(const std::string& name, Traffic traffic, const Convert& convert, std::vector<Rival> rivals = {}) const {
        measuredNames().insert(name);
        if (size.besidePeers) {
            const std::vector<Rival> peers = rivalsOf(name);
            rivals.insert(rivals.end(), peers.begin(), peers.end());
        }
        registerConversion(
            std::string(simd::levelName(level)) + "/" + name, size, traffic, [level = level] { simd::useLevel(level); },
            convert, rivals);
    }
};

} // namespace fikleipa::bench
