// Drawings into frames of any layout, frames of the RGB layouts into pictures and pictures into such frames.
#pragma once

#include "colour.h"
#include "conversions.h"
#include "frame_buffer.h"
#include "layouts.h"
#include "png.h"
#include "rgb_pixels.h"

#include <cstdint>
#include <vector>

namespace fikleipa::tool {

// Draws the test picture of that number into a frame.
class PatternStore {
public:
    PatternStore(const Layout& layout, Size size, ColourOptions colour);

    const Geometry& geometry() const { return geometry_; }

    void draw(std::uint64_t frame, unsigned char* dst) const;

private:
    // As many rows of the drawing as share one row of chroma.
    struct Band {
        std::size_t index;
        std::vector<std::vector<Rgb>> rows;

        std::size_t top() const { return index * rows.size(); }
    };

    void storeRgb(const Band& band, unsigned char* dst) const;
    void storeYCbCr(const Band& band, unsigned char* dst) const;

    const Layout& layout_;
    Size size_;
    Geometry geometry_;
    RgbPixels pixels_;
    LumaWeights weights_;
};

// The picture of an RGB frame without padding.
Picture loadPicture(const Layout& layout, Size size, PXYCBCRRgbType rgbType, const unsigned char* frame);

// The frame of a picture, the other way round.
FrameBuffer storePicture(const Picture& picture, const Layout& layout, PXYCBCRRgbType rgbType);

} // namespace fikleipa::tool
