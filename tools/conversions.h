// The conversions that the command offers. A conversion is one row of the table in conversions.cpp.
#pragma once

#include "fikleipa.h"
#include "layouts.h"

#include <span>
#include <string_view>
#include <vector>

namespace fikleipa::tool {

struct ColourOptions {
    PXYCBCRMatrix matrix = PX_MATRIX_BT601;
    PXYCBCRRgbType rgbType = PX_RGB_BGRA;
};

struct PlacedFrame {
    unsigned char* data;
    const Geometry& geometry;

    unsigned char* plane(std::size_t index) const { return data + geometry.start(index); }
    std::uint32_t pitch(std::size_t index = 0) const { return geometry.pitch(index); }
};

// One frame to convert. The source may be changed on the way.
struct Task {
    PlacedFrame dst;
    PlacedFrame src;
    Size size;
    ColourOptions colour;
};

// The side whose rows need room behind them, for whole groups of pixels that would reach into the next row or plane.
enum class Room { None, Source, Destination };

struct Conversion {
    std::string_view from;
    std::string_view to;
    void (*function)(const Task&); // null: cycbcr_transcode() with the first FourCC of both layouts
    std::string_view note = {};    // what may surprise
    Room room = Room::None;
    // Frames are enlarged to multiples of this, the last row and column repeated, where the converter would leave some
    // out or look beyond them.
    Size multiple = {1, 1};
    std::string_view via = {}; // a layout of one plane to convert to in between, by the table's rows from and to it
};

std::span<const Conversion> conversions();

// Nothing for a pair that is not converted.
const Conversion* conversionBetween(std::string_view from, std::string_view to);

// Fails for a pair that is not converted.
const Conversion& findConversion(const Layout& from, const Layout& to);

// The layout to convert to next on the way to a picture; RGB, or another step from it.
const Layout& stepToPicture(const Layout& from);

// A conversion prepared for frames of one size, which lie as source() and destination() say: without padding wherever
// the converter can do without, as many of them ignore the source's pitch.
class FrameConverter {
public:
    FrameConverter(const Layout& from, const Layout& to, Size size, ColourOptions colour);

    const Geometry& source() const { return steps_.front().source; }
    const Geometry& destination() const { return steps_.back().destination; }

    void convert(unsigned char* dst, unsigned char* src) const;

private:
    struct Step {
        const Conversion& conversion;
        const Layout& from;
        const Layout& to;
        Size enlarged;
        Geometry source;
        Geometry destination;
    };

    void addStep(const Conversion& conversion);
    void convert(const Step& step, unsigned char* dst, unsigned char* src) const;

    Size size_;
    ColourOptions colour_;
    std::vector<Step> steps_;
};

} // namespace fikleipa::tool
