// Pictures as PNG files.
#pragma once

#include "layouts.h"
#include "rgb_pixels.h"

#include <span>
#include <vector>

namespace fikleipa::tool {

// The whole PNG file of a picture, given row by row from the top.
std::vector<unsigned char> encodePng(Size size, std::span<const RgbBytes> pixels);

} // namespace fikleipa::tool
