// Clips as sequences of frames. In memory frames have no padding; a clip's own pitch is dealt with here.
#pragma once

#include "file.h"
#include "layouts.h"
#include "parse.h"
#include "y4m.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace fikleipa::tool {

// What the user says about a clip.
struct ClipOptions {
    std::string layout;
    std::string size;
    std::optional<std::uint32_t> pitch;
};

class FrameReader {
public:
    // A Y4M clip, known by its name or its first bytes, supplies layout and size itself; what the options say beside
    // that must agree.
    FrameReader(InputFile& input, const ClipOptions& options, FrameRange range);

    const Layout& layout() const { return *layout_; }
    Size size() const { return size_; }
    const Y4mHeader* y4mHeader() const { return header_ ? &*header_ : nullptr; }

    // How many frames there are to read, where that is known beforehand.
    std::optional<std::uint64_t> frameCount() const { return count_; }

    // Reads the next frame of the range. Returns false after the last; fails where the clip ends within a frame or
    // before the range does.
    bool read(std::span<unsigned char> frame);

private:
    void openY4m(const ClipOptions& options);
    void openRaw(const ClipOptions& options);
    std::uint64_t recordBytes() const;
    void limitTo(std::optional<std::uint64_t> framesInClip);
    void skipToFirst();
    bool readFrameHeader();
    bool readPadded(std::span<unsigned char> frame);

    InputFile& input_;
    FrameRange range_;
    const Layout* layout_ = nullptr;
    Size size_;
    Geometry geometry_;
    std::optional<Y4mHeader> header_;
    std::optional<std::uint64_t> count_;
    std::uint64_t next_ = 0;
    std::vector<unsigned char> padded_;
};

class FrameWriter {
public:
    // Frames of `geometry`, which may be padded, after the header of a Y4M clip if there is one.
    FrameWriter(OutputFile& output, Geometry geometry, const Y4mHeader* header);

    void write(std::span<const unsigned char> frame);

private:
    OutputFile& output_;
    Geometry geometry_;
    bool isY4m_;
    std::vector<unsigned char> padded_;
};

} // namespace fikleipa::tool
