#include "frame_io.h"

#include "error.h"
#include "png.h"
#include "store.h"

#include <algorithm>
#include <cstring>

namespace fikleipa::tool {
namespace {

constexpr std::string_view kFrameLine = "FRAME\n";
constexpr std::size_t kFirstStep = 1U << 20;

// Copies the rows of a frame from where they lie to where they are to lie, as much of them as both sides have; what is
// between them is left alone.
void copyRows(unsigned char* dst, const Geometry& to, const unsigned char* src, const Geometry& from) {
    for (std::size_t i = 0; i < to.planes.size(); ++i) {
        const PlaneRows& target = to.planes[i];
        const PlaneRows& source = from.planes[i];
        for (std::size_t row = 0; row < std::min(target.rows, source.rows); ++row) {
            std::memcpy(dst + to.start(i) + row * target.pitch, src + from.start(i) + row * source.pitch,
                        std::min(target.rowBytes, source.rowBytes));
        }
    }
}

// Returns how many bytes there were, up to `size`. The buffer is never much larger than what it holds.
std::size_t readGrowing(InputFile& input, FrameBuffer& buffer, std::size_t size) {
    std::size_t filled = 0;
    do {
        buffer.resize(std::min(size, std::max({buffer.size(), 2 * filled, kFirstStep})));
        filled += input.read(buffer.frame().subspan(filled));
    } while (filled == buffer.size() && filled < size);
    return filled;
}

} // namespace

FrameReader::FrameReader(InputFile& input, const ClipOptions& options, FrameRange range)
    : input_(input), range_(range) {
    if (isY4mName(input.name()) || input.startsWith(kY4mMagic)) {
        openY4m(options);
    } else if (input.startsWith(kPngMagic)) {
        openPng(options);
    } else {
        openRaw(options);
    }
    skipToFirst();
}

void FrameReader::openY4m(const ClipOptions& options) {
    const auto line = input_.readLine(kY4mLineLimit);
    if (!line) fail("{} is empty", input_.name());
    header_ = parseY4mHeader(*line, input_.name());
    layout_ = &header_->layout();
    size_ = header_->size;
    if (!options.layout.empty() && &findLayout(options.layout, Role::Source) != layout_)
        fail("{} holds {}, not {}", input_.name(), layout_->name, options.layout);
    checkAgainst(options);
    geometry_ = frameGeometry(*layout_, size_);

    // Frame headers may carry fields, so the size of the file only tells the number where it fits exactly.
    const auto bytes = input_.bytesLeft();
    const bool exact = bytes && *bytes % recordBytes() == 0;
    limitTo(exact ? std::optional(*bytes / recordBytes()) : std::nullopt);
}

void FrameReader::openPng(const ClipOptions& options) {
    PngReader png(input_);
    layout_ = &layoutNamed(png.sampleBits() == 8 ? "rgb32" : "rgb64");
    if (!options.layout.empty()) layout_ = &findLayout(options.layout, Role::Source);
    if (!layout_->isRgb()) fail("{} is a PNG picture, which is RGB and not {}", input_.name(), layout_->name);
    size_ = png.size();
    checkAgainst(options);
    geometry_ = frameGeometry(*layout_, size_);
    limitTo(1);
    record_ = storePicture(png.read(), *layout_, options.rgbType);
    isPicture_ = true;
}

void FrameReader::checkAgainst(const ClipOptions& options) const {
    if (!options.size.empty() && parseSize(options.size) != size_)
        fail("{} is {}x{}, not {}", input_.name(), size_.width, size_.height, options.size);
    if (options.pitch) fail("{} tells its size itself and has no pitch", input_.name());
}

void FrameReader::openRaw(const ClipOptions& options) {
    if (options.layout.empty() || options.size.empty())
        fail("{} is no Y4M clip and no PNG picture: its layout and size must be given with --from and --size",
             input_.name());
    layout_ = &findLayout(options.layout, Role::Source);
    size_ = parseSize(options.size);
    geometry_ = frameGeometry(*layout_, size_, options.pitch);

    const auto bytes = input_.bytesLeft();
    if (bytes && *bytes % recordBytes() != 0)
        fail("{} is not a whole number of frames: {} bytes, {} a frame", input_.name(), *bytes, recordBytes());
    limitTo(bytes ? std::optional(*bytes / recordBytes()) : std::nullopt);
}

std::uint64_t FrameReader::recordBytes() const {
    return geometry_.bytes() + (header_ ? kFrameLine.size() : 0);
}

void FrameReader::limitTo(std::optional<std::uint64_t> framesInClip) {
    if (framesInClip) {
        if (*framesInClip == 0) fail("{} holds no frame", input_.name());
        const std::uint64_t needed = range_.last.value_or(range_.first);
        if (needed >= *framesInClip)
            fail("{} has no frame {}: it holds {} from 0 on", input_.name(), needed, *framesInClip);
        count_ = range_.last.value_or(*framesInClip - 1) - range_.first + 1;
    } else if (range_.last) {
        count_ = *range_.last - range_.first + 1;
    }
}

void FrameReader::skipToFirst() {
    for (; next_ < range_.first; ++next_) {
        if (header_ && !readFrameHeader()) fail("{} has no frame {}: it ends before", input_.name(), range_.first);
        input_.skip(geometry_.bytes());
    }
}

bool FrameReader::readFrameHeader() {
    const auto line = input_.readLine(kY4mLineLimit);
    if (!line) return false;
    if (*line != kY4mFrame && !line->starts_with("FRAME "))
        fail("{} is broken: frame {} does not begin with {}", input_.name(), next_, kY4mFrame);
    return true;
}

bool FrameReader::read(FrameBuffer& frame, const Geometry& placed) {
    if (isPicture_) {
        placeRecord(frame, placed);
        return next_++ == 0;
    }
    if (range_.last && next_ > *range_.last) return false;
    const bool complete = (!header_ || readFrameHeader()) && readFrame(frame, placed);
    if (!complete) {
        if (next_ == 0) fail("{} holds no frame", input_.name());
        if (range_.last) fail("{} has no frame {}: it holds {} from 0 on", input_.name(), *range_.last, next_);
        if (next_ == range_.first) fail("{} has no frame {}: it ends before", input_.name(), next_);
        return false;
    }
    ++next_;
    return true;
}

bool FrameReader::readFrame(FrameBuffer& frame, const Geometry& placed) {
    const bool direct = geometry_ == placed;
    const std::size_t size = geometry_.bytes();
    const std::size_t count = readGrowing(input_, direct ? frame : record_, size);
    if (count == 0 && !header_) return false;
    if (count != size) fail("{} ends within frame {}: {} bytes of {}", input_.name(), next_, count, size);
    if (!direct) placeRecord(frame, placed);
    return true;
}

void FrameReader::placeRecord(FrameBuffer& frame, const Geometry& placed) const {
    frame.resize(placed.bytes());
    copyRows(frame.data(), placed, record_.data(), geometry_);
}

FrameWriter::FrameWriter(OutputFile& output, Geometry geometry, Geometry placed, std::optional<Y4mHeader> header)
    : output_(output), geometry_(std::move(geometry)), placed_(std::move(placed)), header_(std::move(header)) {}

void FrameWriter::write(std::span<const unsigned char> frame) {
    if (header_ && !begun_) output_.write(y4mHeaderText(*header_));
    begun_ = true;
    if (header_) output_.write(kFrameLine);
    if (geometry_ == placed_ && geometry_.isTight()) {
        output_.write(frame);
        return;
    }
    record_.resize(geometry_.bytes());
    copyRows(record_.data(), geometry_, frame.data(), placed_);
    output_.write(record_);
}

} // namespace fikleipa::tool
