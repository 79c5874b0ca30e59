// Pictures as PNG files, and such files as pictures.
#pragma once

#include "layouts.h"

#include <span>
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

// The picture of the PNG file called `name`, whatever its kind: grey and palettes become red, green and blue, fewer
// than 8 bits become 8, alpha is dropped. Fails for a file that is broken.
Picture decodePng(std::span<const unsigned char> file, std::string_view name);

} // namespace fikleipa::tool
