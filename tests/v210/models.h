// The converters of v210 and of 16-bit planes, and what they are to do.
#pragma once

#include "tests/converters.h"
#include "tests/v210/model.h"

namespace fikleipa::tests {

std::vector<Converter> eightBitConverters(); // between v210 and 8-bit layouts
std::vector<Converter> v210OfDeepPlanes();
std::vector<Converter> uyvyOfDeepPlanes();
std::vector<Converter> deepPlanesOfPacked();
std::vector<Converter> rowUnpackers(); // of single rows

inline unsigned bytes1(unsigned width) {
    return width;
}
inline unsigned bytes2(unsigned width) {
    return 2 * width;
}
inline unsigned bytes4(unsigned width) {
    return 4 * width;
}

// Converters of three planes into a frame, and of a frame into three planes. Flags come behind the pitches.
template <class Convert, class... Flags>
Conversion joining(Convert* convert, Flags... flags) {
    return [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
        return convert(dst[0], src[0], src[1], src[2], g.width, g.height, g.dstPitch, g.srcPitch, flags...);
    };
}
template <class Convert, class... Flags>
Conversion splitting(Convert* convert, Flags... flags) {
    return [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
        return convert(dst[0], dst[1], dst[2], src[0], g.width, g.height, g.dstPitch, g.srcPitch, flags...);
    };
}

// The words that hold a row's groups.
inline unsigned groupWords(unsigned width) {
    return roundUp(width, 6) / 6 * 4;
}

// v210 is read by whole groups.
inline void readGroups(At row, unsigned width) {
    if (width != 0) static_cast<void>(row[std::size_t{4} * groupWords(width) - 1]);
}

// Rows of v210, of `words` words each that hold value(row, component).
template <class Value>
void storeRows(At dst, unsigned pitch, unsigned height, unsigned words, Value value) {
    for (unsigned r = 0; r < height; ++r) {
        for (unsigned i = 0; i < 3 * words; ++i) storeComponent(dst + r * pitch, i, value(r, i));
    }
}

} // namespace fikleipa::tests
