// Memory for frames.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <span>

namespace fikleipa::tool {

// Beyond the end of every frame, zeros at first. Converters read and write whole pairs or groups of pixels.
inline constexpr std::size_t kFrameSlack = 64;

class FrameBuffer {
public:
    FrameBuffer() = default;
    explicit FrameBuffer(std::size_t bytes) { resize(bytes); }

    unsigned char* data() const { return data_.get(); }
    std::size_t size() const { return size_; }
    std::span<unsigned char> frame() const { return {data_.get(), size_}; }

    // Keeps what it holds; nothing is written to what it gains.
    void resize(std::size_t bytes) {
        if (bytes > room_ || !data_) {
            auto larger = std::make_unique_for_overwrite<unsigned char[]>(bytes + kFrameSlack);
            std::copy_n(data_.get(), size_, larger.get());
            data_ = std::move(larger);
            room_ = bytes;
        }
        size_ = bytes;
        std::fill_n(data_.get() + bytes, kFrameSlack, static_cast<unsigned char>(0));
    }

private:
    std::unique_ptr<unsigned char[]> data_;
    std::size_t size_ = 0;
    std::size_t room_ = 0;
};

} // namespace fikleipa::tool
