// The reader of Y4M clips. The first byte of an input says how the clip that follows is read.
#include "fuzz/fuzz.h"
#include "fuzz/memory_file.h"

#include "tools/error.h"
#include "tools/frame_io.h"
#include "tools/y4m.h"

#include <algorithm>
#include <string_view>

namespace {

using namespace fikleipa::fuzz;
using namespace fikleipa::tool;

// What is written of a header is read as the same.
void checkHeader(std::string_view line) {
    const Y4mHeader header = parseY4mHeader(line, "clip");
    std::string text = y4mHeaderText(header);
    if (text.back() != '\n') found("the text of a header does not end its line");
    text.pop_back();
    const Y4mHeader again = parseY4mHeader(text, "clip");
    const auto same = [&](auto field) { return header.*field == again.*field; };
    if (!same(&Y4mHeader::size) || !same(&Y4mHeader::chroma) || !same(&Y4mHeader::rate) ||
        !same(&Y4mHeader::interlacing) || !same(&Y4mHeader::aspect) || !same(&Y4mHeader::extensions))
        found("the header '{}' is written as '{}'", line, text);
}

// The clip's own frames, found without the reader.
class Frames {
public:
    explicit Frames(std::string_view clip) : rest_(clip) { line(); }

    std::string_view next(std::size_t bytes) {
        line();
        const std::string_view frame = rest_.substr(0, bytes);
        rest_.remove_prefix(frame.size());
        return frame;
    }

private:
    void line() { rest_.remove_prefix(std::min(rest_.find('\n'), rest_.size() - 1) + 1); }

    std::string_view rest_;
};

void readFrames(InputFile& input, std::string_view clip, FrameRange range) {
    FrameReader reader(input, {}, range);
    const Geometry placed = frameGeometry(reader.layout(), reader.size());
    Frames frames(clip);
    for (std::uint64_t i = 0; i < range.first; ++i) frames.next(placed.bytes());

    FrameBuffer frame;
    std::uint64_t count = 0;
    for (; reader.read(frame, placed); ++count) {
        const auto bytes = frame.frame();
        if (!std::equal(bytes.begin(), bytes.end(), frames.next(placed.bytes()).begin(),
                        [](auto byte, char wanted) { return byte == static_cast<unsigned char>(wanted); }))
            found("frame {} holds other bytes than the clip", range.first + count);
    }
    // The number is told by the size of the file, which frame headers with fields make larger.
    const std::uint64_t told = reader.frameCount().value_or(count);
    const bool hasFields = clip.find("FRAME ") != std::string_view::npos;
    if (told < count || (told > count && !hasFields)) found("{} frames are read and not {}", count, told);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const unsigned how = data[0];
    const auto kind = (how & 1) != 0 ? MemoryFile::Kind::Pipe : MemoryFile::Kind::Regular;
    FrameRange range{.first = how >> 1 & 3, .last = {}};
    if ((how & 8) != 0) range.last = range.first + (how >> 4 & 3);
    const std::span content(data + 1, size - 1);
    const std::string_view clip(reinterpret_cast<const char*>(content.data()), content.size());
    tell("{}, frames {} to {}: {:?}", kind == MemoryFile::Kind::Pipe ? "a pipe" : "a file", range.first,
         range.last ? std::to_string(*range.last) : "the last", clip);

    try {
        checkHeader(clip.substr(0, clip.find('\n')));
        const MemoryFile file(content, kind);
        InputFile input(file.path());
        readFrames(input, clip, range);
    } catch (const Error&) {
        // Everything else ends the program.
    }
    return 0;
}
