// The conversions that the command offers. A conversion is one row of the table in conversions.cpp.
#pragma once

#include "fikleipa.h"
#include "layouts.h"

#include <span>
#include <string_view>

namespace fikleipa::tool {

struct Conversion {
    std::string_view from;
    std::string_view to;
    PXConvertRgbFrame* function; // null: cycbcr_transcode() with the first FourCC of both layouts
    std::string_view note = {};  // what may surprise
};

std::span<const Conversion> conversions();

// Fails for a pair that is not converted.
const Conversion& findConversion(const Layout& from, const Layout& to);

struct ColourOptions {
    PXYCBCRMatrix matrix = PX_MATRIX_BT601;
    PXYCBCRRgbType rgbType = PX_RGB_BGRA;
};

// A conversion prepared for frames of one size. Both frames are without padding: many converters ignore the source's
// pitch, so padding is a matter of reading and writing.
class FrameConverter {
public:
    FrameConverter(const Layout& from, const Layout& to, Size size, ColourOptions colour);

    const Geometry& source() const { return source_; }
    const Geometry& destination() const { return destination_; }

    void convert(unsigned char* dst, unsigned char* src) const;

private:
    const Conversion* conversion_;
    Size size_;
    ColourOptions colour_;
    Geometry source_;
    Geometry destination_;
};

} // namespace fikleipa::tool
