// Clips as sequences of frames. Where the rows of a clip lie otherwise than those in memory is dealt with here.
#pragma once

#include "fikleipa.h"
#include "file.h"
#include "frame_buffer.h"
#include "layouts.h"
#include "output_file.h"
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
    PXYCBCRRgbType rgbType = PX_RGB_BGRA; // of the frame that a PNG picture becomes
};

class FrameReader {
public:
    // A Y4M clip, known by its name or its first bytes, supplies layout and size itself; what the options say beside
    // that must agree. A PNG picture, known by its first bytes, is a clip of one frame, in any layout of RGB that the
    // options say or else in one of its own number of bits.
    FrameReader(InputFile& input, const ClipOptions& options, FrameRange range);

    const Layout& layout() const { return *layout_; }
    Size size() const { return size_; }
    const Y4mHeader* y4mHeader() const { return header_ ? &*header_ : nullptr; }

    // How many frames there are to read, where that is known beforehand.
    std::optional<std::uint64_t> frameCount() const { return count_; }

    // Reads the next frame of the range, to lie as `placed` says. Returns false after the last; fails where the clip
    // ends within a frame or before the range does. Takes memory as the frame comes in: what a header says costs
    // nothing.
    bool read(FrameBuffer& frame, const Geometry& placed);

private:
    void openY4m(const ClipOptions& options);
    void openPng(const ClipOptions& options);
    void openRaw(const ClipOptions& options);
    std::uint64_t recordBytes() const;
    void limitTo(std::optional<std::uint64_t> framesInClip);
    void skipToFirst();
    bool readFrameHeader();
    void checkAgainst(const ClipOptions& options) const;
    bool readFrame(FrameBuffer& frame, const Geometry& placed);
    void placeRecord(FrameBuffer& frame, const Geometry& placed) const;

    InputFile& input_;
    FrameRange range_;
    const Layout* layout_ = nullptr;
    Size size_;
    Geometry geometry_;
    std::optional<Y4mHeader> header_;
    bool isPicture_ = false; // whose frame is the record from the beginning
    std::optional<std::uint64_t> count_;
    std::uint64_t next_ = 0;
    FrameBuffer record_; // a frame as it lies in the clip
};

class FrameWriter {
public:
    // Frames that lie as `placed` says, to lie as `geometry` says, after the header of a Y4M clip if there is one.
    // Padding is written as zeros. Nothing is written before the first frame.
    FrameWriter(OutputFile& output, Geometry geometry, Geometry placed, std::optional<Y4mHeader> header);

    void write(std::span<const unsigned char> frame);

private:
    OutputFile& output_;
    Geometry geometry_;
    Geometry placed_;
    std::optional<Y4mHeader> header_;
    bool begun_ = false;
    std::vector<unsigned char> record_; // a frame as it lies in the clip, where that is not how it comes
};

} // namespace fikleipa::tool
