// Frames through several threads at once, in order at both ends.
#pragma once

#include "frame_buffer.h"
#include "progress.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace fikleipa::tool {

struct Stages {
    std::size_t destinationBytes;
    std::function<bool(FrameBuffer& source)> read; // one thread at a time, in order; false after the last frame
    std::function<void(std::uint64_t index, unsigned char* dst, unsigned char* src)> convert; // many at once
    std::function<void(std::span<const unsigned char>)> write; // one thread at a time, in order
};

// Runs every frame through the stages on `jobs` threads, with one source and one destination frame for each, the
// second of which takes no memory before the first is complete. Frames before one that cannot be read are still
// written. Throws what a stage threw.
void runPipeline(const Stages& stages, unsigned int jobs, Progress& progress);

} // namespace fikleipa::tool
