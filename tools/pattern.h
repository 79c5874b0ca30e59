// A moving test picture: colour bars, ramps, a zone plate, a ball, a box and the number of the frame.
#pragma once

#include "layouts.h"
#include "rgb_pixels.h"

#include <cstdint>
#include <span>
#include <string>

namespace fikleipa::tool {

class Pattern {
public:
    Pattern(Size size, std::uint64_t frame);

    // Paints row `y` from the top, as wide as the picture.
    void paintRow(std::uint32_t y, std::span<Rgb> row) const;

private:
    struct Point {
        float x, y;
    };

    // Of the part below the bars and ramps, where things move.
    Rgb zonePlate(Point at) const;
    Rgb stage(Point at) const;
    bool isInNumber(Point at) const;

    Size size_;
    std::uint64_t frame_;
    std::uint32_t top_;  // of the moving part
    std::uint32_t left_; // of the stage, right of the zone plate
    float scale_;        // of what stands on the stage: its smaller side
    Point ball_{};
    Point box_{};
    std::string number_;
};

} // namespace fikleipa::tool
