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
// ---------------------------------------------------------------------------------------------------------------------

#endif // FIKLEIPA_FROM_RGB_H
