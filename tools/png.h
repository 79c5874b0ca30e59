// Pictures as PNG files.
#pragma once

#include "layouts.h"

#include <vector>

namespace fikleipa::tool {

// Rows from the top, pixels of red, green and blue. Samples of 16 bits have their high byte first.
struct Picture {
    Size size;
    unsigned int sampleBits; // 8 or 16
    std::vector<unsigned char> bytes;
};

// The whole PNG file.
std::vector<unsigned char> encodePng(const Picture& picture);

} // namespace fikleipa::tool
