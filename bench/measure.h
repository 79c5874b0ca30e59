// Timing a conversion beside a copy of as many bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace fikleipa::bench {

// `frames` pairs of buffers take turns. With enough of them every frame comes from memory and goes to memory, as the
// frames of a clip do; with one, a frame that is small enough stays in cache.
struct FrameSize {
    const char* name;
    unsigned width;
    unsigned height;
    unsigned frames;
    unsigned turns; // of the conversion and those beside it
    bool besidePeers = false;
    unsigned parts = 0; // frames of 1920x1080 that have as many pixels, to be measured beside it
};

// What a conversion moves, in bytes a pixel.
struct Traffic {
    double read;
    double written;
    std::uint16_t sourceBits = 0xFFFF; // those of each 16-bit word that may be set
};

using Convert = std::function<void(std::uint8_t* dst, std::uint8_t* src, const FrameSize& size)>;

// Another way to the same result, to be measured beside a conversion.
struct Rival {
    const char* name;
    Convert convert;
};

// Registers a benchmark of `convert`. It reports megapixels and gigabytes (read and written) per second, and `ratio`:
// the median time of a conversion over the median time of copying half as many bytes as the conversion reads and
// writes together, which moves the same number; for a rival, its megapixels and `over` it, its median time over that of
// the conversion; beside parts, `growth`, the median time of the conversion over that of converting as many pixels in
// smaller frames, which lie in the same memory. All of them take turns in small batches, so they see the same machine.
// `prepare` runs once before the first.
void registerConversion(const std::string& name, const FrameSize& size, Traffic traffic,
                        const std::function<void()>& prepare, const Convert& convert,
                        const std::vector<Rival>& rivals = {});

// Registers a benchmark of something that is short, and reports the median of its microseconds as `us`.
void registerShort(const std::string& name, const std::function<void()>& work);

} // namespace fikleipa::bench
