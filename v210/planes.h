// Three planes, or three pointers into one packed buffer, as one thing.
#pragma once

#include <cstddef>

namespace fikleipa {

struct Planes {
    unsigned char* y;
    unsigned char* cb;
    unsigned char* cr;

    Planes at(std::size_t luma, std::size_t chroma) const { return {y + luma, cb + chroma, cr + chroma}; }
};

} // namespace fikleipa
