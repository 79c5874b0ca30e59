// What the threads of a split frame convert by.
#pragma once

namespace fikleipa {

// As cycbcr_yuv422p10_to_012v_internal() and its sibling, but nothing is written beyond a row's pitch: what they write
// there may by then be the first row of the next band.
unsigned yuv422p10ToV210Band(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned width,
                             unsigned rows, unsigned dstPitch, unsigned srcPitch);
unsigned yuv422p12ToV210Band(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned width,
                             unsigned rows, unsigned dstPitch, unsigned srcPitch);

} // namespace fikleipa
