// v210 frames into planes of 16-bit samples, each row on its own or the chroma of every two rows averaged.
#pragma once

#include "core/planes.h"
#include "simd/v210.h"
#include "v210/pitch.h"
#include "v210/rows.h"

namespace fikleipa {

// Planes of 16-bit samples that are written row by row.
struct Planes16 {
    Planes start;
    unsigned lumaPitch;
    unsigned chromaPitch;
    std::size_t rowPixels; // what is written of a row: as many luma samples, and half as many of each chroma

    Planes row(unsigned luma, unsigned chroma) const {
        return start.at(evenOffset(luma, lumaPitch), evenOffset(chroma, chromaPitch));
    }

    SampleRows rows(unsigned height, unsigned chromaRows) const {
        return {start, lumaPitch, chromaPitch, height, chromaRows};
    }

    // Without an odd last pixel, whose luma alone is written.
    std::size_t pairs() const { return rowPixels / 2; }
    std::size_t lastingPairs(std::size_t written) const { return rows(0, 0).lastingPairs(written, kPlanar16); }

    // Of so many rows, with so many lasting pairs of each.
    bool goPastCache(unsigned height, unsigned chromaRows, std::size_t lasting) const {
        return lumaPitch % 2 == 0 && chromaPitch % 2 == 0 &&
               goesPastCache(rows(height, chromaRows).pairSpans(lasting, kPlanar16));
    }
};

// Planes without a pitch hold exactly a frame: a row of one begins where the row before it ended.
constexpr Planes16 tightPlanes(const Planes& start, unsigned width) {
    return {start, 2 * width, width / 2 * 2, width};
}

// One chroma row for each luma row.
void unpack422(const Planes16& dst, const V210Rows& src, simd::Justify justify);

// One chroma row for every two luma rows: the average of both, truncated. The last row of an odd height gives its own.
void unpack420(const Planes16& dst, const V210Rows& src, simd::Justify justify);

} // namespace fikleipa
