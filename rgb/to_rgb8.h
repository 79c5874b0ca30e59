// The engine behind every converter from 8-bit YCbCr to RGB.
#pragma once

#include "core/rows.h"
#include "fikleipa.h"
#include "simd/to_rgb8.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace fikleipa {

struct SourceFrame8 {
    const std::uint8_t* y;
    const std::uint8_t* cb;
    const std::uint8_t* cr;
    unsigned width;
    unsigned height;
    bool planar;
    bool fullChromaRows;
    bool biPlanar = false; // only with `planar`: Cb and Cr interleaved in one plane

    bool empty() const { return width == 0 || height == 0; }

    // An odd width takes the pixel after the row's last one along.
    std::size_t pairs() const { return std::size_t{width} / 2 + width % 2; }

    simd::Samples8 samples() const;
};

// Calls row(r, y, cb, cr) for every source row from the top.
template <class Row>
void eachSourceRow(const SourceFrame8& s, Row row) {
    const std::uint8_t* cb = s.cb;
    const std::uint8_t* cr = s.cr;
    for (unsigned r = 0; r < s.height; ++r) {
        if (!s.planar) {
            row(r, s.y + r * 2 * s.width, cb, cr);
            // Chroma runs on while luma starts anew; with an odd width they drift apart. Deliberate.
            cb += 4 * s.pairs();
            cr += 4 * s.pairs();
        } else if (s.biPlanar) {
            const unsigned offset = (s.fullChromaRows ? r : r / 2) * s.width;
            row(r, s.y + r * s.width, s.cb + offset, s.cb + offset + 1);
        } else {
            const unsigned offset = (s.fullChromaRows ? r : r / 2) * s.width / 2;
            row(r, s.y + r * s.width, s.cb + offset, s.cr + offset);
        }
    }
}

// Converts to packed RGB, rows upside down if asked to.
void toRgb8(std::uint8_t* dst, unsigned dstPitch, bool bottomUp, const SourceFrame8& source, PXYCBCRMatrix matrix,
            simd::Rgb8 format);

} // namespace fikleipa
