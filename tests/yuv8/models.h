// The 8-bit converters and what they are to do.
#pragma once

#include "tests/converters.h"

namespace fikleipa::tests {

std::vector<Converter> packedConverters();
std::vector<Converter> planarConverters(); // between packed frames and planes
std::vector<Converter> planeCopies();

inline unsigned packedRow(unsigned width) {
    return 2 * width;
}
inline unsigned lumaRow(unsigned width) {
    return width;
}

} // namespace fikleipa::tests
