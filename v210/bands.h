// Wide frames in eight horizontal bands, each converted by a thread of its own.
#pragma once

#include "pxutil/pxutil.h"

#include <cstdint>

namespace fikleipa {

// What a worker takes, the argument of the exported thread entries. A host may start one with a record of its own, so
// neither the order nor the types of the fields change.
struct BandRecord {
    unsigned char* dst; // the first byte of the band, here and in the planes
    unsigned char* y;
    unsigned char* cb;
    unsigned char* cr;
    unsigned width;
    unsigned rows;
    unsigned dstPitch; // both as the caller passed them
    unsigned srcPitch;
    int* pending;   // the shared count of those who have not finished; the caller is one of them
    pxOSEvent done; // signalled by the worker that finishes last
    std::uint8_t index;
};

// A frame of three planes and where it is to go, whole or one band of it.
struct PlanarFrame {
    unsigned char* dst;
    unsigned char* y;
    unsigned char* cb;
    unsigned char* cr;
    unsigned width;
    unsigned height;
    unsigned dstPitch;
    unsigned srcPitch;
};

using BandConverter = unsigned (*)(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                   unsigned width, unsigned rows, unsigned dstPitch, unsigned srcPitch);

// What sets one converter's split apart from another's.
struct Split {
    BandConverter convert;
    pxOSThreadEntry worker;
    const char* eventName;
    const char* threadName;
    unsigned widestUndivided; // up to this width the caller's thread converts
    bool fullChroma;          // whether chroma rows are as far apart as those of luma
    bool lastTakesRest;       // whether the last band has the rows that are over
    bool numbered;            // whether records carry the band's number
    bool extraWords;          // whether `convert` writes words behind rows that a worker may hold back
};

// Converts a frame, in bands if it is wide.
unsigned convertSplit(const PlanarFrame& frame, const Split& split);

// Converts a worker's band and reports it finished.
template <BandConverter kConvert>
unsigned convertBand(void* record) {
    const auto& band = *static_cast<const BandRecord*>(record);
    // From the decrement on, the caller may have returned and the record, the count and the event may be gone. Hence
    // the copy of the event's handle; to signal an event that was closed does no harm.
    const pxOSEvent done = band.done;
    const unsigned size =
        kConvert(band.dst, band.y, band.cb, band.cr, band.width, band.rows, band.dstPitch, band.srcPitch);
    if (pxOSInterlockedDecrement(band.pending) == 0) pxOSSetEvent(done);
    return size;
}

} // namespace fikleipa
