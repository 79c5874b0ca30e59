// Pictures as PNG files, and such files as pictures.
#pragma once

#include "file.h"
#include "layouts.h"

#include <memory>
#include <string_view>
#include <vector>

namespace fikleipa::tool {

// Rows from the top, pixels of red, green and blue. Samples of 16 bits have their high byte first.
struct Picture {
    Size size;
    unsigned int sampleBits; // 8 or 16
    std::vector<unsigned char> bytes;
};

inline constexpr std::string_view kPngMagic = "\x89PNG\r\n\x1A\n";

// The whole PNG file.
std::vector<unsigned char> encodePng(const Picture& picture);

// The picture of a PNG file, whatever its kind: grey and palettes become red, green and blue, fewer than 8 bits become
// 8, alpha is dropped. Everything fails for a file that is broken.
class PngReader {
public:
    // Reads the header.
    explicit PngReader(InputFile& input);
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;
    ~PngReader();

    Size size() const { return size_; }
    unsigned int sampleBits() const { return sampleBits_; }

    // Reads the rest. Takes memory as rows come in: what the header says costs nothing.
    Picture read();

private:
    struct Codec;

    std::unique_ptr<Codec> codec_;
    Size size_;
    unsigned int sampleBits_ = 0;
};

} // namespace fikleipa::tool
