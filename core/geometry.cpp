#include "core/fourcc.h"
#include "fikleipa.h"

using fikleipa::Layout;

void _fixPitch(unsigned int fourcc, unsigned int width, unsigned int& pitch) {
    const auto layout = fikleipa::layoutOf(static_cast<int>(fourcc));
    if (!layout) return;

    switch (*layout) {
    case Layout::Uyvy:
    case Layout::Yuy2:
    case Layout::Yvyu:
    case Layout::Cyuv: {
        const unsigned minimum = width * 2;
        if (pitch < minimum) pitch = minimum;
        break;
    }
    case Layout::I420:
    case Layout::Yv12:
    case Layout::P422: {
        // A pitch above the aligned width is taken for a mistake, one below the width is not: deliberate.
        const unsigned limit = (width + 127) & ~127U;
        if (pitch > limit) pitch = width;
        break;
    }
    case Layout::V210: {
        // A partial group at the end of a row does not count.
        const unsigned groups = width / 6 * 16;
        if (pitch != 0 && (pitch % 16 != 0 || pitch < groups)) pitch = groups;
        break;
    }
    case Layout::Rgb32:
        break;
    }
}
