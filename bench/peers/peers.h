// Other libraries that do the work of a converter, to be measured beside it. They are built where they are installed.
#pragma once

#include "bench/measure.h"

#include <cstddef>
#include <initializer_list>
#include <set>
#include <string>
#include <vector>

namespace fikleipa::bench {

// The rivals of the benchmark of that name, and all names that have one.
std::vector<Rival> rivalsOf(const std::string& converter);
std::set<std::string> namesWithRivals();

// What a peer does, under the name of the benchmark whose frames it takes.
struct PeerEntry {
    const char* converter;
    Convert convert;
};

// A peer's file defines one of these, and with that its entries are known.
class Peer {
public:
    Peer(const char* name, std::initializer_list<PeerEntry> entries);
};

// Three planes one behind the other, of 8-bit samples or wider ones.
struct PeerPlanes {
    std::uint8_t* y;
    std::uint8_t* cb;
    std::uint8_t* cr;
    int pitch;
    int chromaPitch;
};

inline PeerPlanes planes420(std::uint8_t* frame, const FrameSize& f) {
    const std::size_t luma = std::size_t{f.width} * f.height;
    return {frame, frame + luma, frame + luma + luma / 4, static_cast<int>(f.width), static_cast<int>(f.width / 2)};
}

inline PeerPlanes planes422(std::uint8_t* frame, const FrameSize& f, unsigned sampleBytes = 1) {
    const std::size_t luma = std::size_t{f.width} * f.height * sampleBytes;
    const auto pitch = static_cast<int>(f.width * sampleBytes);
    return {frame, frame + luma, frame + luma + luma / 2, pitch, pitch / 2};
}

} // namespace fikleipa::bench
