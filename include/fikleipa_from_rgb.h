/// @file fikleipa_from_rgb.h
/// The part of fikleipa.h that converts from RGB to YCbCr. Include fikleipa.h, whose conventions hold here too.
#ifndef FIKLEIPA_FROM_RGB_H
#define FIKLEIPA_FROM_RGB_H

#ifndef FIKLEIPA_H
#error "include fikleipa.h, of which this is a part"
#endif

// ---------------------------------------------------------------------------------------------------------------------
// RGB to 8-bit YCbCr
//
// Pixels go in pairs 2k and 2k + 1: an odd last pixel is neither converted nor written. Cb and Cr of a pair are those
// of its first pixel; nothing is averaged. The arithmetic is in integers of scale 1 000 000:
//  - Luma is rounded to the nearest, halves downwards, and limited to 255; but the second pixel of a pair is truncated
//    where the destination is planar: deliberate.
//  - Cr is rounded to the nearest, halves towards zero; Cb moves one step up where a positive sum's remainder is above
//    450 000, and one down where a negative one's is above 250 000: deliberate. Both are limited to -128..127 and then
//    raised by 128.
//
// With PX_RGB_BOTTOM_UP destination row r is read from source row height - 1 - r. Of 16-bit components the high byte
// counts. With a width below 2, a height of 0 or any other depth than those named nothing is converted; the result,
// which goes by the width and not by the pitch, is the same.
// ---------------------------------------------------------------------------------------------------------------------

/// The general converter: RGB to any 8-bit 4:2:2 or 4:2:0 destination given by three pointers.
///
/// `luma`, `cb`, `cr`: the first luma, Cb and Cr byte. With `planar` 0 they point into one packed 4:2:2 buffer (luma
/// every 2 bytes, chroma every 4) whose rows are `dstPitch` bytes apart, and `chromaPitch` is not read. Otherwise they
/// point at planes: luma rows are `dstPitch` bytes apart and chroma rows `chromaPitch`, one for each row (4:2:2) unless
/// `chroma422` is 0 (4:2:0); chroma row r / 2 then comes from row r, and only rows r with r mod 4 equal to 0 or 3 give
/// chroma, so that it belongs to both fields in turn.
/// `bitsPerPixel`: 24, 32, or 48 and 64 with 16-bit components; only the whole bytes of it count. Pixels of 48 bits
/// have R, G and B where pixels of 64 bits have them, so that PX_RGB_ABGR and PX_RGB_ARGB take one from the next pixel
/// and read a component behind the row's last pixel: deliberate. Pixels of 24 bits are R G B for the orders 2 and 3 and
/// B G R for any other.
///
/// Both are the same. They return width x height x 2 when `chroma422` is not 0, else width x height + (width x height)
/// / 2 made even by leaving out the lowest bit of the second term.
typedef unsigned int PXFromRgb(unsigned char* luma, unsigned char* cb, unsigned char* cr, unsigned char* src,
                               unsigned int width, unsigned int height, unsigned int dstPitch, unsigned int srcPitch,
                               PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType, int chroma422, int planar,
                               unsigned int bitsPerPixel, unsigned int chromaPitch);
FIKLEIPA_C PXFromRgb FromRGB;
#ifdef __cplusplus
FIKLEIPA_CXX PXFromRgb FromRGBInt;
#endif

/// FromRGB() of 32-bit pixels to planes. Note the order of the pitches.
FIKLEIPA_C unsigned int cycbcr_RGB32_to_planar(unsigned char* luma, unsigned char* cb, unsigned char* cr,
                                               unsigned char* src, unsigned int width, unsigned int height,
                                               unsigned int dstPitch, unsigned int chromaPitch, int chroma422,
                                               unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType);

/// FromRGB() of 24- or 32-bit pixels to a frame of the named layout. Planes follow one another: luma of dstPitch x
/// height bytes; of 4:2:0 each chroma is placed as a quarter of that, of 4:2:2 as a half, its rows dstPitch / 2 bytes
/// apart. Where the height of 4:2:0 is one above a multiple of 4, the last chroma row reaches beyond its plane:
/// deliberate. The destination of cyuv is that of UYVY turned over as by cycbcr_invert(), whole pitches of it, which
/// happens also when nothing is converted.
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB24_to_yuy2;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB32_to_yuy2;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB24_to_yvyu;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB32_to_yvyu;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB24_to_uyvy;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB32_to_uyvy;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB24_to_cyuv;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB32_to_cyuv;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB24_to_i420;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB32_to_i420;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB24_to_yv12;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB32_to_yv12;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB24_to_p422;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB32_to_p422;

/// The same of pixels of 16-bit components. To UYVY the depth is given. To P422 it is (srcPitch / width) x 8, rounded
/// down, so that a padded source may have a depth that no pixel has; a width of 0 converts nothing.
FIKLEIPA_C unsigned int cycbcr_RGB64_to_uyvy(unsigned char* dst, unsigned char* src, unsigned int width,
                                             unsigned int height, unsigned int dstPitch, unsigned int srcPitch,
                                             PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType, unsigned int bitsPerPixel);
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB64_to_p422;

/// The fourth byte of every 32-bit pixel, whatever the order of its components, as a plane of bytes whose rows follow
/// one another without a gap; `dstPitch` is not used. With bit 0 of `flags` it is scaled to video range, (a x 7204443)
/// / 2^23 + 16, otherwise copied; no other bit is read. Of `rgbType` only PX_RGB_BOTTOM_UP applies. An odd last pixel
/// is converted too. Returns width x height.
FIKLEIPA_C unsigned int cycbcr_RGB32_to_uyvy_Alpha(unsigned char* dst, unsigned char* src, unsigned int width,
                                                   unsigned int height, unsigned int dstPitch, unsigned int srcPitch,
                                                   unsigned int flags, PXYCBCRRgbType rgbType);

// ---------------------------------------------------------------------------------------------------------------------
// RGB to v210 and to planes of 10, 12 and 16 bits
//
// Destination rows go from top to bottom, `dstPitch` bytes apart; a source row starts at a multiple of srcPitch. Both
// pitches are used as passed, also where rows do not fit into them. With PX_RGB_BOTTOM_UP destination row r is read
// from source row height - 1 - r. Exactly `width` pixels of a row are read.
//
// Pixels of four components, of 8 or 16 bits in native byte order, have the order that `rgbType` says; orders above 3
// count as 0. Pixels of three are R G B for the orders 2 and 3 and B G R for any other. Packed 10-bit pixels are
// little-endian 32-bit words with components in the bits 2-11, 12-21 and 22-31: R, G and B, or B, G and R for the
// orders 2 and 3. PX_MATRIX_10 is the default row here.
//
// Luma is limited to what its bits hold and gets the row's offset; signed chroma is limited to its bits and then
// centred. "Truncated" quotients are so towards zero. "Rounded" ones of luma and Cr go to the nearest, halves towards
// zero; Cb goes up from a remainder of 0.45 of the divisor, and down from one of 0.25 below zero: deliberate.
// ---------------------------------------------------------------------------------------------------------------------

/// 8-bit RGB to v210, in integers of scale 10000, truncated.
///
/// `bitsPerPixel`: 32 for pixels of four bytes; with any other value they have three.
/// v210FromRGB() filters chroma: the pair of pixels 2k and 2k + 1 gets a sixth of c[2k - 1] + 2 c[2k] + 2 c[2k + 1] +
/// c[2k + 2], truncated. The neighbour left of a row is neutral, 512, so that the first pair of a row of one colour
/// differs from the others; the last whole group takes its own last pixel for the neighbour on the right even where
/// pixels follow. Both are deliberate. v210FromRGBNoFilter() gives a pair the chroma of its first pixel.
///
/// Of a row width / 6 whole groups are written. If two pixels or more are left, the first two of them take two more
/// words, the second of which has Y alone; its other bits are 0, and the words behind it are left as they were. Where
/// they are the last ones, the second is its own neighbour on the right. Pixels beyond, or a single one, are dropped.
/// Both return dstPitch x height.
typedef unsigned int PXRgbToV210(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                 unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                 PXYCBCRRgbType rgbType, unsigned int bitsPerPixel);
#ifdef __cplusplus
FIKLEIPA_CXX PXRgbToV210 v210FromRGB;
FIKLEIPA_CXX PXRgbToV210 v210FromRGBNoFilter;
#endif

/// The same by v210FromRGB() at a fixed depth.
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB24_to_012v;
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB32_to_012v;

/// The same of 16-bit components, with coefficients of their own and rounded. `bitsPerPixel`: 32 or 64 for pixels of
/// four components; with any other value they have three.
FIKLEIPA_C PXRgbToV210 cycbcr_RGB64_to_012v;

/// The same of packed 10-bit pixels, in integers of scale 1 000 000 and rounded.
FIKLEIPA_C PXConvertRgbFrame cycbcr_RGB10_to_012v;

/// The fourth byte of every 32-bit pixel, whatever the order of its components, as 10-bit samples, three in a 32-bit
/// word from its lowest bits on; what the last word of a row has no pixels for is 0. Row r starts at (r x width x 4) /
/// 3 bytes, which need not be where a word ends, so that a row may begin within the last word of the one before it and
/// the last one may end up to three bytes behind the result; `dstPitch` is not used. With bit 0 of `flags` alpha is
/// scaled to video range, (a x 876) / 255 + 64, otherwise shifted left by 2; no other bit is read. Of `rgbType` only
/// PX_RGB_BOTTOM_UP applies. Returns (width x 4 x height) / 3.
FIKLEIPA_C unsigned int cycbcr_RGB32_to_012v_Alpha(unsigned char* dst, unsigned char* src, unsigned int width,
                                                   unsigned int height, unsigned int dstPitch, unsigned int srcPitch,
                                                   unsigned int flags, PXYCBCRRgbType rgbType);

/// RGB to planes of 16-bit samples. Planes of 10 and 12 bits have pitches of their own, whose order among the arguments
/// differs: deliberate. Exactly the samples of `width` pixels are written, of 4:2:2 one of each chroma for every two
/// pixels, a last one for an odd pixel included. `bitsPerPixel` as for v210 from components of as many bits.
typedef unsigned int PXRgbToPlanes(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                   unsigned int width, unsigned int height, unsigned int yPitch,
                                   unsigned int chromaPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                   PXYCBCRRgbType rgbType, unsigned int bitsPerPixel);
typedef unsigned int PXRgbToPlanesByChromaPitch(unsigned char* y, unsigned char* cb, unsigned char* cr,
                                                unsigned char* src, unsigned int width, unsigned int height,
                                                unsigned int chromaPitch, unsigned int yPitch, unsigned int srcPitch,
                                                PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                                                unsigned int bitsPerPixel);

/// 8-bit components to 4:4:4 of 10 bits, with the arithmetic of v210FromRGB(). Returns (chromaPitch + 2 x yPitch) x
/// height, luma counted twice: deliberate.
FIKLEIPA_C PXRgbToPlanes cycbcr_RGB32_to_yuv444p10;

/// The upper ten bits of 16-bit components to 4:4:4 of 10 bits: the coefficients of v210FromRGB() with a divisor of
/// 40000, truncated. Returns (yPitch + 2 x chromaPitch) x height.
FIKLEIPA_C PXRgbToPlanesByChromaPitch cycbcr_RGB64_to_yuv444p10;

/// The same to 4:2:2 of 12 bits, with coefficients of their own. A pair gets the average (a + b) >> 1 of its pixels'
/// chroma. Returns (chromaPitch + 2 x yPitch) x height, luma counted twice: deliberate.
FIKLEIPA_C PXRgbToPlanes cycbcr_RGB64_to_yuv422p12;

/// 16-bit components to 4:4:4 of 10 bits in double precision from left to right: components are divided by 65535.0 and
/// multiplied by the coefficients of cycbcr_RGB10_to_012v() as fractions. Luma is limited to 0..1 and stored as the
/// row's offset plus (luma x 1023 + 0.5) truncated, which is not limited again. Chroma is limited to -0.5..0.5 and
/// stored as 512 plus (chroma x 1023 + 0.5) truncated, 1..1024, which 10 bits do not hold: wrong, as the name says.
/// Results are the same on every processor. Returns chromaPitch x height: deliberate.
FIKLEIPA_C PXRgbToPlanesByChromaPitch cycbcr_RGB64_to_yuv444p10_float_BAD_ONLY_LUMA_WORKS;

/// 16-bit components to 4:2:2 of 16 bits: the coefficients of cycbcr_RGB64_to_012v() in scale 10000, rounded. Luma of
/// 16 bits has an offset of no more than 64: deliberate. A pair gets the average (a + b) >> 1 of its pixels' chroma, an
/// odd last pixel being a pair of its own. Chroma rows are dstPitch / 2 bytes apart. Returns dstPitch x height.
FIKLEIPA_C unsigned int cycbcr_RGB64_to_YCbCrPlanar16(unsigned char* y, unsigned char* cb, unsigned char* cr,
                                                      unsigned char* src, unsigned int width, unsigned int height,
                                                      unsigned int dstPitch, unsigned int srcPitch,
                                                      PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                                                      unsigned int bitsPerPixel);

/// The same of packed 10-bit pixels: the samples of cycbcr_RGB10_to_012v() shifted left by 6, chroma averaged.
FIKLEIPA_C unsigned int cycbcr_RGB10_to_YCbCrPlanar16(unsigned char* y, unsigned char* cb, unsigned char* cr,
                                                      unsigned char* src, unsigned int width, unsigned int height,
                                                      unsigned int dstPitch, unsigned int srcPitch,
                                                      PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType);

#endif // FIKLEIPA_FROM_RGB_H
