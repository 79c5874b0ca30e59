// A conversion's arguments as one thing.
#pragma once

#include "fikleipa.h"

namespace fikleipa {

struct Frame {
    unsigned char* dst;
    unsigned char* src;
    unsigned width;
    unsigned height;
    unsigned dstPitch;
    unsigned srcPitch;
};

struct RgbFrame : Frame {
    PXYCBCRMatrix matrix;
    PXYCBCRRgbType rgbType;
};

} // namespace fikleipa
