// What the threads of a split frame convert by.
#pragma once

namespace fikleipa {

using BandConversion = unsigned(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                unsigned width, unsigned rows, unsigned dstPitch, unsigned srcPitch);

// As the functions named _internal, but nothing is written beyond a row's pitch: what they write there may by then be
// the first row of the next band.
BandConversion yuv422p10ToV210Band;
BandConversion yuv422p12ToV210Band;
BandConversion yuv444p12ToV210Band;

} // namespace fikleipa
