// Frames through several threads at once, in order at both ends.
#pragma once

#include "progress.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace fikleipa::tool {

// Beyond the end of every frame, zeros at first. Converters read and write whole pairs or groups of pixels.
inline constexpr std::size_t kFrameSlack = 64;

class FrameBuffer {
public:
    explicit FrameBuffer(std::size_t bytes)
        : bytes_(bytes), data_(std::make_unique_for_overwrite<unsigned char[]>(bytes + kFrameSlack)) {
        std::fill_n(data_.get() + bytes, kFrameSlack, static_cast<unsigned char>(0));
    }

    unsigned char* data() const { return data_.get(); }
    std::span<unsigned char> frame() const { return {data_.get(), bytes_}; }

private:
    std::size_t bytes_;
    std::unique_ptr<unsigned char[]> data_;
};

struct Stages {
    std::size_t sourceBytes;
    std::size_t destinationBytes;
    std::function<bool(std::span<unsigned char>)> read; // one thread at a time, in order; false after the last frame
    std::function<void(std::uint64_t index, unsigned char* dst, unsigned char* src)> convert; // many at once
    std::function<void(std::span<const unsigned char>)> write; // one thread at a time, in order
};

// Runs every frame through the stages on `jobs` threads, with one source and one destination frame for each. Frames
// before one that cannot be read are still written. Throws what a stage threw.
void runPipeline(const Stages& stages, unsigned int jobs, Progress& progress);

} // namespace fikleipa::tool
