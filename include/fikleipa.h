/// @file fikleipa.h
/// The whole interface of libfikleipa, for C and C++: conversion of uncompressed video frames between pixel layouts and
/// between YCbCr and RGB. Every result is fixed to the last bit and is the same on every processor.
///
/// Conventions that hold for every function unless its comment says otherwise:
///  - A call converts one whole frame and keeps nothing. It does so on the caller's thread, but for wide frames of 10
///    and 12 bits, which a few converters give to eight threads for the time of the call: see
///    cycbcr_yuv422p10_to_012v(). Any number of threads may convert at once on different buffers.
///  - The caller owns every buffer. No pointer needs any alignment, and none is checked.
///  - Destinations of 1 MiB and more are written past the processor's caches where that is faster. Those whose rows
///    begin at multiples of 64 bytes gain most. Results do not depend on either.
///  - Destination comes before source. `width` is in pixels, `height` in rows, a pitch is the distance from one row to
///    the next in bytes. Sizes are unsigned 32-bit; row offsets and plane sizes are 32-bit products that wrap, so
///    frames are to stay below 4 GiB.
///  - Source and destination do not overlap. Where they do, what is written is unspecified, and may differ from one
///    processor to the next. cycbcr_invert() and what else works on one buffer does so in place. What rows and planes
///    of one frame do to one another where they overlap is said where they can.
///  - Samples, words and pixels of more than 8 bits are little-endian, as is every processor that the library builds
///    for.
///  - The result is a size in bytes by the formula stated at each function. It is returned whether or not anything was
///    written; some formulas differ from the bytes written on purpose.
///  - Video range means luma 16..235 and chroma 16..240 (at 8 bits), full range 0..255.
#ifndef FIKLEIPA_H
#define FIKLEIPA_H

#ifdef __cplusplus
#define FIKLEIPA_C extern "C" __attribute__((visibility("default")))
#define FIKLEIPA_CXX __attribute__((visibility("default")))
#else
#define FIKLEIPA_C extern __attribute__((visibility("default")))
#endif

// ---------------------------------------------------------------------------------------------------------------------
// Pixel layouts
// ---------------------------------------------------------------------------------------------------------------------

/// A FourCC as the library takes it: four ASCII characters in an `int`, the first in the lowest byte. The last may be
/// any byte: its highest bit is the sign, into which nothing is shifted.
#define PX_FOURCC(a, b, c, d) ((a) | (b) << 8 | (c) << 16 | (((0xFF & (d)) ^ 0x80) - 0x80) * 0x1000000)

/// The layouts that cycbcr_transcode() knows. Codes that share a comment are synonyms.
enum {
    // Packed 8-bit 4:2:2, bytes Y0 Cb Y1 Cr for every two pixels.
    PX_FOURCC_YUY2 = 0x32595559,
    PX_FOURCC_YUNV = 0x564E5559,
    // Packed 8-bit 4:2:2, bytes Cb Y0 Cr Y1. The byte-reversed spellings are accepted on purpose, and the two negative
    // codes are plain synonyms.
    PX_FOURCC_UYVY = 0x59565955,
    PX_FOURCC_UYNV = 0x564E5955,
    PX_FOURCC_AJYU = 0x55594A41,
    PX_FOURCC_2vuy = 0x79757632,
    PX_FOURCC_yuv2 = 0x32767579,
    PX_FOURCC_2Vuy = 0x79755632,
    PX_FOURCC_yuV2 = 0x32567579,
    PX_FOURCC_8800001E = -0x77FFFFE2,
    PX_FOURCC_8810001E = -0x77EFFFE2,
    // Packed 8-bit 4:2:2, bytes Y0 Cr Y1 Cb. Not a synonym of UYVY although its characters are the reverse.
    PX_FOURCC_YVYU = 0x55595659,
    // UYVY with the bottom row of the picture first in memory.
    PX_FOURCC_cyuv = 0x76757963,
    // Planar 8-bit 4:2:0: `height` luma rows of `pitch` bytes, then Cb, then Cr (at pitch x height x 5/4), chroma rows
    // of pitch / 2 bytes.
    PX_FOURCC_I420 = 0x30323449,
    PX_FOURCC_IYUV = 0x56555949,
    // As I420 with Cr before Cb.
    PX_FOURCC_YV12 = 0x32315659,
    // Planar 8-bit 4:2:2: luma, then Cb, then Cr (at pitch x height x 3/2), chroma rows of pitch / 2 bytes.
    PX_FOURCC_P422 = 0x32323450,
    // P422 spelled backwards: a source of cycbcr_transcode() only, its pitch is never corrected, and
    // cycbcr_can_transcode() does not know it. All three are deliberate.
    PX_FOURCC_422P = 0x50323234,
    // Packed 10-bit 4:2:2, six pixels in four little-endian 32-bit words.
    PX_FOURCC_v210 = 0x30313276,
    PX_FOURCC_012v = 0x76323130,
    // RGB, 32 bits a pixel; the order of the components is given by a PXYCBCRRgbType.
    PX_FOURCC_RGB32 = 0
};

/// Colour matrix and range. Every 32-bit value is valid: those without a row of their own select the default row, which
/// is PX_MATRIX_BT601. To RGB, 4 means what 2 means and 5 what 3 means, except to 16-bit components, where 4 has a row
/// of its own.
#ifdef __cplusplus
enum PXYCBCRMatrix : unsigned int {
#else
typedef unsigned int PXYCBCRMatrix;
enum {
#endif
    PX_MATRIX_BT601 = 0,         ///< BT.601, video-range YCbCr, full-range RGB (the default row)
    PX_MATRIX_BT601_STUDIO = 1,  ///< BT.601, luma passed unscaled: RGB has the range of the YCbCr
    PX_MATRIX_BT709 = 2,         ///< BT.709, video-range YCbCr, full-range RGB, three-digit coefficients
    PX_MATRIX_BT709_STUDIO = 3,  ///< BT.709, luma passed unscaled
    PX_MATRIX_BT709_PRECISE = 4, ///< BT.709 video range; from RGB with six-digit coefficients
    PX_MATRIX_BT709_FULL = 5,    ///< BT.709; from RGB full range with chroma of +-0.5
    PX_MATRIX_BT2020 = 6,        ///< BT.2020, video-range YCbCr, full-range RGB
    PX_MATRIX_BT2020_FULL = 7,   ///< BT.2020, luma passed unscaled, chroma with full-range coefficients
    PX_MATRIX_8 = 8,             ///< from RGB only: a row of its own with a blue-to-luma weight of 0.496
    PX_MATRIX_9 = 9,             ///< from RGB only: as 8 without luma offset
    PX_MATRIX_10 = 10            ///< from RGB at 8 bits only: BT.601 full-range luma with its own chroma weights
};

/// Order of the components in memory (bits 0 to 14) and of the rows (bit 15). Orders above 3 count as 2 when converting
/// to RGB, and as 0 when converting from RGB. Bits 16 to 31 are not masked off: with one of them set, the order is
/// above 3.
#ifdef __cplusplus
enum PXYCBCRRgbType : unsigned int {
#else
typedef unsigned int PXYCBCRRgbType;
enum {
#endif
    PX_RGB_BGRA = 0,          ///< 32 bits: B G R A; 24 bits: B G R; 16 and 15 bits: B in the highest bits
    PX_RGB_ABGR = 1,          ///< 32 bits: A B G R; the rest as 0
    PX_RGB_RGBA = 2,          ///< 32 bits: R G B A; 24 bits: R G B; 16 and 15 bits: R in the highest bits
    PX_RGB_ARGB = 3,          ///< 32 bits: A R G B; the rest as 2
    PX_RGB_BOTTOM_UP = 0x8000 ///< added to an order: the RGB frame has the bottom row of the picture first
};

/// The signature of every converter of one layout into another, and of every such converter that involves RGB. The
/// shapes, what is read and written beyond the frame, and the result are given where the converters are declared.
typedef unsigned int PXConvertFrame(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                    unsigned int dstPitch, unsigned int srcPitch);
typedef unsigned int PXConvertRgbFrame(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                       unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                       PXYCBCRRgbType rgbType);

// ---------------------------------------------------------------------------------------------------------------------
// About this build
// ---------------------------------------------------------------------------------------------------------------------

/// The version of the library as "major.minor.patch". The string is never freed.
FIKLEIPA_C const char* fikleipa_version(void);

/// Names row kernel number `index` (from 0) and the instruction-set level that serves it on this processor: "portable",
/// "sse4.1", "avx2" or "avx512". Returns 1 and sets both strings, which are never freed, or returns 0 for an index past
/// the last kernel. The level never shows in a result, only in speed.
FIKLEIPA_C int fikleipa_kernel(unsigned int index, const char** name, const char** level);

// ---------------------------------------------------------------------------------------------------------------------
// Processor level
// ---------------------------------------------------------------------------------------------------------------------

/// The cached processor level; 0xFFFFFFFE until the first call that probes it. A host may read and write it. Read and
/// written without a lock: threads that probe at the same time store the same value.
///
/// cycbcr_transcode(), cycbcr_invert() and the converters probe it, also where there is nothing to convert, except
///  - cycbcr_interleaved_copy(), cycbcr_yvyu_to_uyvy(), cycbcr_uyvy_to_yvyu() and the overload of
///    cycbcr_yuy2_to_yvyu(),
///  - cycbcr_012v_to_uyvy(), cycbcr_uyvy_to_012v(), their _opt forms, and cycbcr_012v_to_012v(),
///  - the general converters to RGB, which have no "_to_" in their names, but for cycbcr_v210ToRGB(),
///  - all from RGB but those to cyuv and cycbcr_RGB24_to_012v() and cycbcr_RGB32_to_012v(),
///  - both that store an alpha plane into RGB, and those that unpack a row of v210.
FIKLEIPA_C unsigned int gdwProcType;

/// Stores a processor level and returns what was stored. 0 and 1 are stored as they are. 2 to 4 fall back to the next
/// lower level that the processor has (0x4000 of CPUFeatureFlags() for 4, 0x2000 for 3, 0x20 for 2, else 1), 5 needs
/// 0x80 and otherwise falls back to 2 or 1. Any other value stores the best level, which is 4 with 0x4000, 3 with
/// 0x2000, 5 with 0x80, 4 with 0x20, else 0. The level never changes the result of a conversion.
FIKLEIPA_C unsigned int cycbcr_set_cpu(unsigned int level);

/// Returns the cached level when `which` is not 0, probing it first if that has not happened (4 with 0x4000, 3 with
/// 0x2000, 2 with 0x20, else 1). When `which` is 0, returns the best level by the rule of cycbcr_set_cpu() without
/// storing it. The two rules differ on purpose.
FIKLEIPA_C unsigned int cycbcr_get_cpu(int which);

// ---------------------------------------------------------------------------------------------------------------------
// Any layout to any layout
// ---------------------------------------------------------------------------------------------------------------------

#ifdef __cplusplus
/// Corrects `pitch` in place for a frame of layout `fourcc` that is `width` pixels wide. cycbcr_transcode() applies it
/// to both of its pitches.
///  - Packed 8-bit 4:2:2: a pitch below width x 2 (32-bit product) becomes width x 2.
///  - I420, IYUV, YV12, P422: a pitch above the width rounded up to a multiple of 128 becomes the width; any other is
///    kept, also one that is 0 or smaller than the width. Deliberate.
///  - v210: 0 is kept. A pitch that is not a multiple of 16, or is below 16 bytes for each whole group of six pixels,
///    becomes width / 6 x 16.
///  - RGB32, "422P" and unknown codes: kept.
FIKLEIPA_CXX void _fixPitch(unsigned int fourcc, unsigned int width, unsigned int& pitch);
#endif

/// Converts a frame between any two layouts given by FourCC. Both pitches are corrected by _fixPitch(), then the
/// converter of the pair is called and its result returned, so buffers must hold what that converter reads and writes.
///
/// `dst`, `src`: start of the frame; chroma planes follow the luma plane as described at the layout. `dstPitch`,
/// `srcPitch`: row pitch in bytes, of the luma plane for planar layouts. A pitch of 0 becomes width x 2 for packed
/// 8-bit 4:2:2; give RGB32 and planar frames their real one. `matrix` and `rgbType` are passed on unchanged when one
/// side is RGB32 and ignored otherwise.
///
/// Returns 0xFFFFFFFF, with no byte touched, for a code that is not known, for "422P" as the destination and for RGB32
/// to RGB32, and for a UYVY to YUY2 conversion that threw. v210 to cyuv is not turned over, unlike every other way
/// there: deliberate.
///
/// What a v210 pitch of 0 means depends on the other side:
///  - YUY2, YVYU, cyuv, I420, YV12 and P422: the natural pitch. From cyuv nothing is turned over then;
///  - UYVY to v210: the least pitch of cycbcr_uyvy_to_012v();
///  - v210 to UYVY: the groups of a row follow those of the row before it;
///  - RGB32: just 0, every row lies in the same place;
///  - v210: nothing is copied.
///
/// Memory: what is read from `src` on and written from `dst` on, at most. Pitches are the corrected ones, sp and dp,
/// the smaller of them m. w and h are width and height, p = (w + 1) / 2 pairs, q = w / 2 whole pairs, g = (w + 5) / 6
/// groups of v210, G = (w + 11) / 12 x 2 of them by twos, n the natural v210 pitch. Divisions leave out the remainder.
///    rows(k, pitch, b) = (k - 1) x pitch + b: k rows of b bytes; nothing where k or b is 0.
///    third(S) = S + S / 4 for I420 and YV12, S + S / 2 for P422: where the third plane starts behind S bytes of luma.
/// Of two sizes the larger counts; the second one is that of chroma, and nothing where its rows are.
///
///    source -> destination     bytes of the source                   bytes of the destination
///    packed -> packed          rows(h, sp, m)                        rows(h, dp, m)
///      if one of them is YVYU  rows(h, sp, 4q)                       rows(h, dp, 4q)
///    packed -> planar          rows(h, sp, 4q)                       rows(h, dp, 2q), third(dp h) + rows(c, dp/2, q)
///                                 c = h to P422, else h / 2, and one more where h mod 4 is 1
///    planar -> packed          rows(h, sp, 2p), third(w h) + C       rows(h, dp, 4p)
///                                 C = h p from P422, else rows(h / 4 x 2 + the smaller of h mod 4 and 2, sp/2, p)
///    I420, YV12 -> the same    third(sp h) + sp h / 4                rows(h, dp, sp), third(dp h) + dp h / 4
///    P422 -> P422              dp h, third(sp h) + dp h / 2          third(dp h) + dp h / 2
///    P422 -> I420, YV12        rows(h, sp, w),                       rows(h, dp, w),
///                                 third(sp h) + rows(d, sp/2 x 2, w)    third(dp h) + rows(d, dp/2, w)
///    I420, YV12 -> P422        rows(h, sp, w),                       rows(h, dp, w),
///                                 third(sp h) + rows(d, sp/2, w)        third(dp h) + rows(h, dp/2, w)
///                                 d = (h + 1) / 2; chroma is read of the destination and written of the source
///    UYVY -> v210              rows(h, max(sp, 2w), 12g)             rows(h, max(dp, 16w / 6 rounded up to 64), 16g)
///    packed -> v210            rows(h, sp, 12g), but 12g h if        rows(h, max(dp, n), 16g)
///                                 sp = 2w
///    planar -> v210            rows(h, w, 6g),                       rows(h, max(dp, n), 16g)
///                                 third(sp h) + rows(e, w/2, 3g)        e = h with P422, else (h + 1) / 2
///    v210 -> v210              rows(h, sp, m)                        rows(h, dp, m)
///    v210 -> UYVY              rows(h, max(sp, n), 16g), but         rows(h, dp, 4p)
///                                 16g h if sp = 0
///    v210 -> packed            rows(h, max(sp, n), 16G)              rows(h, dp, 12G)
///    v210 -> planar            rows(h, max(sp, n), 16G)              rows(h, dp, 6G), third(dp h) + rows(e, dp/2, 3G)
///    v210 -> RGB32             rows(h, sp, b)                        rows(h, dp, 8q)
///                                 b = 16 x ((q + 2) / 3), and 4 more where q mod 3 is 0; 0 where q is 0
///    packed -> RGB32           4p h                                  rows(h, dp, 8p)
///    planar -> RGB32           rows(h, w, 2p), third(w h) + C        rows(h, dp, 8p)
///                                 C = r x w / 2 + p with r = h - 1 from P422, else (h - 1) / 2
///    RGB32 -> packed           rows(h, sp, 8q)                       rows(h, dp, 4q)
///    RGB32 -> planar           rows(h, sp, 8q)                       as packed -> planar
///    RGB32 -> v210             rows(h, sp, 4w)                       rows(h, dp, 16 x (w / 6)), 8 more if w mod 6 > 1
///
/// A flip takes whole pitches. With cyuv on either side, but not from v210 and not where the other is UYVY or cyuv, dp
/// h bytes of the destination are read and written, of planar ones all of it, where h is 2 or more.
FIKLEIPA_C unsigned int cycbcr_transcode(unsigned char* dst, unsigned char* src, unsigned int width,
                                         unsigned int height, unsigned int dstPitch, unsigned int srcPitch,
                                         PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType, int dstFourCC, int srcFourCC);

/// Returns 1 if both codes are among the 20 of the list above without "422P", else 0. The pair as such is not looked
/// at: the answer for RGB32 and RGB32 is 1 although cycbcr_transcode() does not convert it.
FIKLEIPA_C int cycbcr_can_transcode(int fourccA, int fourccB);

// ---------------------------------------------------------------------------------------------------------------------
// Packed 8-bit 4:2:2: copies, reorderings, vertical flip
//
// `dst`, `src`: frames of `height` rows. Row offsets are row x pitch. Pitches are used as passed: a pitch of 0 means
// that all rows lie on one another. Nothing is read or written beyond the rows. All return dstPitch x height.
// ---------------------------------------------------------------------------------------------------------------------

/// Copies a frame into another of the same layout: all pitch x height bytes where the pitches are equal, else the
/// smaller pitch's bytes of every row; a longer destination row keeps the rest. `width` is not used. No flip, also for
/// cyuv. The five functions do the same; cycbcr_interleaved_copy() alone does not probe the processor level.
FIKLEIPA_C PXConvertFrame cycbcr_yuy2_to_yuy2;
FIKLEIPA_C PXConvertFrame cycbcr_yvyu_to_yvyu;
FIKLEIPA_C PXConvertFrame cycbcr_uyvy_to_uyvy;
FIKLEIPA_C PXConvertFrame cycbcr_cyuv_to_cyuv;
FIKLEIPA_C PXConvertFrame cycbcr_interleaved_copy;

/// YUY2 to UYVY and back: swaps the two bytes of every 16-bit word, of the whole frame where the pitches are equal,
/// else of the smaller pitch's words of every row. `width` is not used. An odd last byte (of the frame, or of each
/// row's smaller pitch) is left as it was.
FIKLEIPA_C PXConvertFrame cycbcr_yuy2_to_uyvy;
FIKLEIPA_C PXConvertFrame cycbcr_uyvy_to_yuy2;

/// YVYU to UYVY and back: swaps the two bytes of every 16-bit word in the width / 2 groups of each row; an odd last
/// pixel is left alone. The chroma bytes keep their order, so Cb and Cr of the result stand exchanged against its
/// layout: deliberate, and kept.
FIKLEIPA_C PXConvertFrame cycbcr_yvyu_to_uyvy;
FIKLEIPA_C PXConvertFrame cycbcr_uyvy_to_yvyu;

/// YUY2 to YVYU and back: exchanges bytes 1 and 3 of the width / 2 groups of each row; an odd last pixel is left alone.
FIKLEIPA_C PXConvertFrame cycbcr_yuy2_to_yvyu;
FIKLEIPA_C PXConvertFrame cycbcr_yvyu_to_yuy2;

/// YUY2 to cyuv, and cyuv to YUY2: cycbcr_yuy2_to_uyvy() followed by cycbcr_invert() of the destination, which also
/// turns over what a longer destination row holds beyond the source's pitch. `width` is not used.
FIKLEIPA_C PXConvertFrame cycbcr_yuy2_to_cyuv;
FIKLEIPA_C PXConvertFrame cycbcr_cyuv_to_yuy2;

/// YVYU to cyuv, and cyuv to YVYU: cycbcr_yvyu_to_uyvy() followed by cycbcr_invert() of the destination, the exchanged
/// chroma included. With a width below 2 the destination is turned over as it was.
FIKLEIPA_C PXConvertFrame cycbcr_yvyu_to_cyuv;
FIKLEIPA_C PXConvertFrame cycbcr_cyuv_to_yvyu;

/// UYVY to cyuv and back, one operation under two names: copies the smaller pitch's bytes of every row in reverse row
/// order. `width` is not used.
FIKLEIPA_C PXConvertFrame cycbcr_uyvy_to_cyuv;
FIKLEIPA_C PXConvertFrame cycbcr_cyuv_to_uyvy;

/// Turns a frame of `height` rows of `pitch` bytes upside down in place; the middle row of an odd height stays. Rows of
/// 5,462 bytes or more pass through one scratch row from PXAlloc(); should that return null, they are turned over just
/// the same, by pieces on the stack.
FIKLEIPA_C void cycbcr_invert(unsigned char* buffer, unsigned int pitch, unsigned int height);

#ifdef __cplusplus
/// A separate routine under a shared name, and not a frame conversion: with n = a x b, writes n / 2 units of eight
/// bytes as (s0, s3, s2, s1, 0, 0, 0, 0) from the source's units, and returns n. Nothing is written for n below 2.
/// `unused` is not read. Deliberate; frames go through the six-argument function.
FIKLEIPA_CXX unsigned long cycbcr_yuy2_to_yvyu(unsigned char* dst, unsigned char* src, unsigned long a, unsigned long b,
                                               unsigned long unused);
#endif

// ---------------------------------------------------------------------------------------------------------------------
// Planar 8-bit, from and to packed 8-bit 4:2:2
//
// Nothing is computed: chroma is resampled by choosing rows, except in cycbcr_toplanar_sse2().
//
// 4:2:0 chroma belongs to fields. The even chroma rows are those of the even luma rows, the odd ones those of the odd:
// luma rows 0 to 7 take chroma rows 0, 1, 0, 1, 2, 3, 2, 3. Where the height is no multiple of 4, the row past the last
// whole one is taken too, beyond the plane.
//
// A pitch is that of luma and is used as passed, also if it is 0; chroma rows are half of it apart.
// ---------------------------------------------------------------------------------------------------------------------

/// Planar to packed. The source's chroma planes are placed by width x height, whatever its pitch: Cb there, or Cr in
/// YV12, and the other a quarter of that behind it, or half of it in P422. P422 chroma is read without a gap from row
/// to row, whatever the pitch. An odd width converts the pixel behind its last one along: a luma sample of it is read,
/// and the pair written. Into cyuv, UYVY is turned over by cycbcr_invert(); cycbcr_yv12_to_cyuv() writes the order of
/// YUY2 there instead: deliberate. A width or height of 0 converts nothing and turns nothing over. Return dstPitch x
/// height.
FIKLEIPA_C PXConvertFrame cycbcr_i420_to_yuy2;
FIKLEIPA_C PXConvertFrame cycbcr_i420_to_yvyu;
FIKLEIPA_C PXConvertFrame cycbcr_i420_to_uyvy;
FIKLEIPA_C PXConvertFrame cycbcr_i420_to_cyuv;
FIKLEIPA_C PXConvertFrame cycbcr_yv12_to_yuy2;
FIKLEIPA_C PXConvertFrame cycbcr_yv12_to_yvyu;
FIKLEIPA_C PXConvertFrame cycbcr_yv12_to_uyvy;
FIKLEIPA_C PXConvertFrame cycbcr_yv12_to_cyuv;
FIKLEIPA_C PXConvertFrame cycbcr_p422_to_yuy2;
FIKLEIPA_C PXConvertFrame cycbcr_p422_to_yvyu;
FIKLEIPA_C PXConvertFrame cycbcr_p422_to_uyvy;
FIKLEIPA_C PXConvertFrame cycbcr_p422_to_cyuv;

/// Packed to planar, by cycbcr_toplanar(). The destination's planes are placed by dstPitch x height. From cyuv, its
/// rows are converted as UYVY from the first one stored on, and cycbcr_invert() then turns each plane over: `height`
/// rows of dstPitch, and of dstPitch / 2 `height` rows into P422, else height / 2, rounded down, so that a chroma row
/// past the last whole one stays where it is. An odd last pixel is left out; a width below 2 or a height of 0 converts
/// nothing and turns nothing over. Return n + n / 2 with n = dstPitch x height and n / 2 rounded down to even, also
/// into P422.
FIKLEIPA_C PXConvertFrame cycbcr_yuy2_to_i420;
FIKLEIPA_C PXConvertFrame cycbcr_yuy2_to_yv12;
FIKLEIPA_C PXConvertFrame cycbcr_yuy2_to_p422;
FIKLEIPA_C PXConvertFrame cycbcr_yvyu_to_i420;
FIKLEIPA_C PXConvertFrame cycbcr_yvyu_to_yv12;
FIKLEIPA_C PXConvertFrame cycbcr_yvyu_to_p422;
FIKLEIPA_C PXConvertFrame cycbcr_uyvy_to_i420;
FIKLEIPA_C PXConvertFrame cycbcr_uyvy_to_yv12;
FIKLEIPA_C PXConvertFrame cycbcr_uyvy_to_p422;
FIKLEIPA_C PXConvertFrame cycbcr_cyuv_to_i420;
FIKLEIPA_C PXConvertFrame cycbcr_cyuv_to_yv12;
FIKLEIPA_C PXConvertFrame cycbcr_cyuv_to_p422;

/// The general routines take three planes, and three pointers into a packed frame: to its first Y, Cb and Cr. A pair's
/// second luma sample is 2 bytes behind the first, the next pair's samples are 4 behind, and all rows go by one pitch.
/// Source pointers come first, destination pitch before source pitch.
typedef unsigned int PXFromPlanar(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* dstY,
                                  unsigned char* dstCb, unsigned char* dstCr, unsigned int width, unsigned int height,
                                  unsigned int dstPitch, unsigned int srcPitch, unsigned int mode);
typedef unsigned int PXToPlanar(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* dstY,
                                unsigned char* dstCb, unsigned char* dstCr, unsigned int width, unsigned int height,
                                unsigned int dstPitch, unsigned int srcPitch, int is422);

/// Planes to packed; an odd width as said above. Bits 0 to 3 of `mode` give the source's chroma: 0 for 4:2:0, 2 for
/// 4:4:4, of which the left pixel's sample is taken, 1 and anything else for 4:2:2; the other bits are not read. The
/// chroma of 4:2:2 and 4:4:4 is read without a gap from row to row, whatever the pitch, and so is luma where srcPitch
/// is the width: with an odd one its rows drift by a sample. Deliberate.
///
/// With fieldinvert, the two lines of every pair change places; an odd last row is written one row past the frame.
/// Chroma is read as above in modes 1 and 2 alone. In the others the first pair of a row takes a sample and every
/// further sample serves two pairs; an odd row r of mode 0 begins at chroma row (r - 1) / 2, any other row after the
/// samples that the row before it moved on by, one for every begun two pairs. Deliberate.
///
/// Return dstPitch x height.
FIKLEIPA_C PXFromPlanar cycbcr_fromplanar;
FIKLEIPA_C PXFromPlanar cycbcr_fromplanar_fieldinvert;

/// Packed to planes, the width / 2 whole pairs of each row. With `is422` not 0 every row gives its chroma; with 0 rows
/// 0 and 3 of every four do, row r to chroma row r / 2, past the plane where the height is one more than a multiple of
/// 4. Where srcPitch is 2 x width, a row begins where the last pair of the row before it ended: with an odd width rows
/// drift by a pixel. Deliberate.
///
/// With fieldinvert, the two luma lines of every pair change places; an odd last row is written one row past the frame.
/// The even rows give their chroma to chroma row r / 2, with `is422` not 0 the odd ones too, whose remains. Deliberate.
///
/// Return what the packed to planar converters do.
FIKLEIPA_C PXToPlanar cycbcr_toplanar;
FIKLEIPA_C PXToPlanar cycbcr_toplanar_fieldinvert;

#ifdef __cplusplus
/// UYVY to 4:2:0 planes, two rows at a time: chroma row r / 2 is the average (a + b + 1) / 2 of rows r and r + 1. The
/// source is the lowest of the three source pointers, and its pitch is counted in pixels. Pixels are converted by
/// eights, one time eight at least, and the rows of an odd height as if it were one more: read and written past the
/// width and the height. `ignored` is not used. On every processor, despite the name. Returns dstPitch x height.
FIKLEIPA_CXX unsigned int cycbcr_toplanar_sse2(unsigned char* y, unsigned char* cb, unsigned char* cr,
                                               unsigned char* dstY, unsigned char* dstCb, unsigned char* dstCr,
                                               unsigned int width, unsigned int height, unsigned int dstPitch,
                                               unsigned int srcPitch, int ignored);
#endif

/// Copies 4:2:0 planes: all pitch x height bytes of luma, and a quarter of that of each other plane, where the pitches
/// are equal. Else `srcPitch` bytes of every luma row, also where that exceeds dstPitch, and the smaller pitch / 2 of
/// each of height / 2 chroma rows, row k at k x pitch / 2. `width` is not used. Returns dstPitch x height x 3 / 2.
FIKLEIPA_C unsigned int cycbcr_planar_copy(unsigned char* dstY, unsigned char* dst2, unsigned char* dst3,
                                           unsigned char* srcY, unsigned char* src2, unsigned char* src3,
                                           unsigned int width, unsigned int height, unsigned int dstPitch,
                                           unsigned int srcPitch);

/// Copies I420 and YV12 by cycbcr_planar_copy(), Cb to Cb and Cr to Cr; the planes are placed by pitch x height.
FIKLEIPA_C PXConvertFrame cycbcr_i420_to_i420;
FIKLEIPA_C PXConvertFrame cycbcr_yv12_to_yv12;
FIKLEIPA_C PXConvertFrame cycbcr_i420_to_yv12;
FIKLEIPA_C PXConvertFrame cycbcr_yv12_to_i420;

/// Copies P422: dstPitch x height bytes of luma and half of that of each chroma plane, whatever srcPitch, by which the
/// source's planes are placed. Returns dstPitch x height x 2.
FIKLEIPA_C PXConvertFrame cycbcr_p422_to_p422;

/// Between 4:2:2 and 4:2:0 planes. `width` bytes of each luma row go to the destination, but chroma goes the other way:
/// `width` bytes of each of its rows, twice what it holds, are read from the destination and written into the source.
/// The last row therefore reaches beyond its plane on both sides. Row after row gives its luma and then, into 4:2:0 at
/// even rows alone, chroma row r of the 4:2:2 side and row r / 2 of the other are copied, one plane after the other:
/// P422's first with I420's second and its second with I420's first, and with YV12's in order. All deliberate.
/// Return dstPitch x height x 3 / 2 for a 4:2:0 destination, x 2 for P422.
FIKLEIPA_C PXConvertFrame cycbcr_p422_to_i420;
FIKLEIPA_C PXConvertFrame cycbcr_p422_to_yv12;
FIKLEIPA_C PXConvertFrame cycbcr_i420_to_p422;
FIKLEIPA_C PXConvertFrame cycbcr_yv12_to_p422;

/// The same between planes given apart, Cb paired with Cb and Cr with Cr. With neither flag set it is
/// cycbcr_planar_copy(), with both cycbcr_p422_to_p422(), their results included.
FIKLEIPA_C unsigned int cycbcr_planar_422_420(unsigned char* dstY, unsigned char* dstCb, unsigned char* dstCr,
                                              unsigned char* srcY, unsigned char* srcCb, unsigned char* srcCr,
                                              unsigned int width, unsigned int height, unsigned int dstPitch,
                                              unsigned int srcPitch, int dstIs422, int srcIs422);

// ---------------------------------------------------------------------------------------------------------------------
// v210
//
// A v210 row is a sequence of 16-byte groups of six pixels: four little-endian 32-bit words of three 10-bit components,
// from the lowest bits on Cb0 Y0 Cr0, Y1 Cb1 Y2, Cr1 Y3 Cb2, Y4 Cr2 Y5. Bits 30 and 31 are written as 0 and not read.
// "012v" in a name means the same layout, no bytes are swapped.
//
// The natural pitch of v210 is the width rounded up to a multiple of 48, times 8 / 3 (1920: 5120; 1280: 3456; 720:
// 1920). The v210 pitch of a frame is the pitch passed or the natural one, whichever is larger, so 0 means the natural
// one. All of it is 32-bit arithmetic.
//
// 8 bits become 10 by two low bits of 0, 10 become 8 by truncation unless it is said otherwise.
//
// Beyond the frame. Conversion goes by groups: a v210 row is read and written in whole groups, and so is read up to 5
// pixels past the width from packed or planar rows. Fromv210(), Fromv210_16() and what converts by them take two groups
// at a time. They read and write each row up to the next multiple of 12 pixels, up to 11 past the width: of v210 a
// group that holds no pixel of the row, for which its pitch always has room. A width or height of 0 converts nothing.
// ---------------------------------------------------------------------------------------------------------------------

/// The signatures of converters from and to three planes, or three places in a packed frame.
typedef unsigned int PXJoinPlanes(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                  unsigned int width, unsigned int height, unsigned int dstPitch,
                                  unsigned int srcPitch);
typedef unsigned int PXSplitPlanes(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                   unsigned int width, unsigned int height, unsigned int dstPitch,
                                   unsigned int srcPitch);

/// The engines between v210 and samples given by the pointers to the first Y, Cb and Cr.
///
/// With `planar` 0 the pointers point into one packed 4:2:2 frame: luma every 2 samples, chroma every 4, all rows by
/// the one pitch, and `planar422` is ignored. Otherwise they point at planes, whose luma row r belongs to chroma row r
/// when `planar422` is not 0, and to chroma row r / 2 when it is 0 (4:2:0).
typedef unsigned int PXV210ToSamples(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                     unsigned int width, unsigned int height, unsigned int dstPitch,
                                     unsigned int srcPitch, int planar422, int planar);
typedef unsigned int PXSamplesToV210(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                     unsigned int width, unsigned int height, unsigned int dstPitch,
                                     unsigned int srcPitch, int planar422, int planar);

/// 8-bit samples to v210. Planes are tight: luma rows `width` bytes apart, chroma rows width / 2; `srcPitch` is not
/// used. Packed rows are `srcPitch` apart, but where that is exactly 2 x width a row begins where the last group of the
/// row before it ended, so that with a width that is no multiple of 6 rows drift: deliberate.
/// Returns the natural pitch x height, whatever the pitch.
FIKLEIPA_C PXSamplesToV210 Tov210;

/// v210 to 8-bit samples; to 16-bit samples, left-justified. Rows are `dstPitch` bytes apart, chroma planes' rows
/// dstPitch / 2 (16-bit rows begin at even offsets, rounded down). Each row is read and written up to the next multiple
/// of 12 pixels: where planes lie close together the surplus of a plane's last row falls on the next plane. In 4:2:0
/// the chroma of the odd row remains, nothing is averaged. Return 2 x width x height for packed samples, also of 16
/// bits. For planes, Fromv210() returns width x height x 3 / 2 whatever `planar422` is, Fromv210_16() width x height x
/// 4 for 4:2:2 and x 3 for 4:2:0.
FIKLEIPA_C PXV210ToSamples Fromv210;
FIKLEIPA_C PXV210ToSamples Fromv210_16;

/// v210 to the named 8-bit layout by Fromv210(), whose result they return; a frame's planes are placed by dstPitch x
/// height (the second chroma plane a quarter of that behind the first, or half of it in P422). cyuv comes out top-down
/// as UYVY is, unlike the way back: deliberate. P422 is converted with all chroma rows, whatever the result says.
FIKLEIPA_C PXConvertFrame cycbcr_012v_to_yuy2;
FIKLEIPA_C PXConvertFrame cycbcr_012v_to_yvyu;
FIKLEIPA_C PXConvertFrame cycbcr_012v_to_cyuv;
FIKLEIPA_C PXConvertFrame cycbcr_012v_to_i420;
FIKLEIPA_C PXConvertFrame cycbcr_012v_to_yv12;
FIKLEIPA_C PXConvertFrame cycbcr_012v_to_p422;

/// v210 to three planes of 4:2:2 by Fromv210(); by Fromv210_16().
FIKLEIPA_C PXSplitPlanes cycbcr_012v_to_planar422;
FIKLEIPA_C PXSplitPlanes cycbcr_012v_to_planar422_16;

/// The named 8-bit layout to v210 by Tov210(), whose result they return; a frame's planes are placed by srcPitch x
/// height, though their rows are tight. After cyuv, cycbcr_invert() turns the destination over by `dstPitch` as passed:
/// where that is less than the v210 pitch it moves other bytes than rows, and none where it is 0; with a width of 0 it
/// turns the destination over as it was.
FIKLEIPA_C PXConvertFrame cycbcr_yuy2_to_012v;
FIKLEIPA_C PXConvertFrame cycbcr_yvyu_to_012v;
FIKLEIPA_C PXConvertFrame cycbcr_cyuv_to_012v;
FIKLEIPA_C PXConvertFrame cycbcr_i420_to_012v;
FIKLEIPA_C PXConvertFrame cycbcr_yv12_to_012v;
FIKLEIPA_C PXConvertFrame cycbcr_p422_to_012v;

/// v210 to UYVY, rounded to the nearest 8-bit value, at most 255. Pairs are written up to the width, one pixel more for
/// an odd one, in rows `dstPitch` apart. A `srcPitch` of 0 does not mean the natural pitch here: the groups of a row
/// then follow those of the row before it. Both functions are one. Return dstPitch x height.
FIKLEIPA_C PXConvertFrame cycbcr_012v_to_uyvy;
FIKLEIPA_C PXConvertFrame cycbcr_012v_to_uyvy_opt;

/// UYVY to v210. Destination rows are at least width x 16 / 6 bytes apart, rounded up to a multiple of 64, which is
/// less than the natural pitch at some widths (100: 320, not 384); source rows at least 2 x width. Both functions are
/// one. Return dstPitch as passed x height.
FIKLEIPA_C PXConvertFrame cycbcr_uyvy_to_012v;
FIKLEIPA_C PXConvertFrame cycbcr_uyvy_to_012v_opt;

/// Copies a v210 frame: all pitch x height bytes where the pitches are equal, else the smaller pitch's bytes of every
/// row. `width` is not used and neither pitch corrected. Returns dstPitch x height.
FIKLEIPA_C PXConvertFrame cycbcr_012v_to_012v;

/// Tight planes of 8-bit samples, or of 16-bit samples of which the low 10 bits are taken, to v210: luma rows `width`
/// samples apart, chroma rows width / 2, one for each luma row when `is422` is not 0, else one for every two. `ignored`
/// is not used. Return the natural pitch x height.
typedef unsigned int PXPlanesToV210(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                    unsigned int width, unsigned int height, unsigned int dstPitch,
                                    unsigned int ignored, int is422);
FIKLEIPA_C PXPlanesToV210 cycbcr_planar_to_012v;
FIKLEIPA_C PXPlanesToV210 cycbcr_planar_16_to_012v;

/// To planes of 16-bit samples: v210 right-justified, v210 left-justified, and UYVY shifted left by 8.
///
/// `chromaFlags`: bit 0 clear gives 4:2:2, set gives 4:2:0. Chroma of two rows of v210 is averaged, truncated (an odd
/// last row gives its own); of two rows of UYVY the later one's remains.
/// `planeFlags`: bit 0 clear gives luma rows `dstPitch` and chroma rows dstPitch / 2 bytes apart, at even offsets,
/// which are written to the end of the last group (UYVY: of the last pair). Set, planes are tight and rows continue
/// without a pitch: exactly `width` luma and width / 2 chroma samples are written of each.
/// UYVY rows are at least 2 x width bytes apart. Return dstPitch x height, whatever was written.
typedef unsigned int PXSplitByFlags(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                    unsigned int width, unsigned int height, unsigned int dstPitch,
                                    unsigned int srcPitch, unsigned char chromaFlags, unsigned char planeFlags);
FIKLEIPA_C PXSplitByFlags cycbcr_v210to_planar;
FIKLEIPA_C PXSplitByFlags cycbcr_v210to_planar16;
FIKLEIPA_C PXSplitByFlags cycbcr_uyvyto_planar16;

// ---------------------------------------------------------------------------------------------------------------------
// Planes of 10, 12 and 16 bits
//
// Planes hold 16-bit little-endian samples; their pointers need no alignment. "p10" is right-justified, and of a source
// the low 10 bits are taken; "p12" is right-justified and truncated to 10 bits; "p16" is truncated to its high bits.
// 4:2:2 planes have width / 2 chroma samples a row, 4:2:0 planes such a row for every two of luma, 4:4:4 planes as many
// as luma.
//
// Pitches are in bytes. A source's luma rows are `srcPitch` apart, its chroma rows srcPitch / 2, in 4:4:4 srcPitch, all
// rounded down to even; a destination's rows begin at even offsets, rounded down. v210 frames have their v210 pitch, a
// UYVY destination the larger of 2 x width and `dstPitch`, where an odd width takes the pixel after the row's last
// along as far as the pitch has room.
// ---------------------------------------------------------------------------------------------------------------------

/// 4:2:2 planes to v210. Where the width is no multiple of 6, two more words are written behind each row's last group,
/// of the three pixels that follow (samples of Y up to 8 and of chroma up to 4 past the last group's first are read):
/// deliberate. They may fall on the next row, which is written after them.
///
/// Frames wider than 2048 pixels (p12: 1920) are split into eight bands of height / 8 rows, the eighth with the rest;
/// but a split of p12 leaves the last height mod 8 rows as they were: deliberate. Bands begin where the pitches as
/// passed put them, so pass the real one. Each is converted on a thread of its own, with signals blocked, that
/// pxOSCreateThread() starts for it; where the system refuses a thread, on the caller's. The call returns when all
/// bands are done: the threads have then ended or are about to, and no longer touch the frame.
///
/// Return the v210 pitch x height, dstPitch as passed x height when split.
FIKLEIPA_C PXJoinPlanes cycbcr_yuv422p10_to_012v;
FIKLEIPA_C PXJoinPlanes cycbcr_yuv422p12_to_012v;
/// As these, never split.
FIKLEIPA_C PXJoinPlanes cycbcr_yuv422p16_to_012v;

/// 4:4:4 planes to v210: the chroma of the even pixels is taken, that of the odd ones dropped. No extra words. p12 is
/// split above 2048 pixels as said above, into bands that have all rows; p10 is not. The results are those of 4:2:2.
FIKLEIPA_C PXJoinPlanes cycbcr_yuv444p12_to_012v;
FIKLEIPA_C PXJoinPlanes cycbcr_yuv444p10_to_012v;

/// 4:2:0 planes to v210. Groups are written as long as they begin below width + 5, one more than needed where the width
/// is a multiple of 6: deliberate. Returns the v210 pitch x height.
FIKLEIPA_C PXJoinPlanes cycbcr_yuv420p10_to_012v;

/// Left-justified 10-bit 4:2:0 planes to v210, and 16-bit ones to UYVY by their high bytes. Chroma rows are `srcPitch`
/// apart, not half of it; bit 1 (value 2) of `flags` says that Cb and Cr lie interleaved in one plane, two samples from
/// one to the next. The other bits are not read.
///
/// v210 components are put in place without a mask, so that low six bits which are not 0 spill into the component
/// below. v210 rows are the larger of 2 x width and `dstPitch` apart, less than they need unless the caller passes
/// more; of the last group the words that the row's pixels need are written, with 0 for components past the width, and
/// nothing past the width is read. All deliberate. Return the larger of 2 x width and dstPitch, x height.
typedef unsigned int PXJoinPlanesByFlags(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                         unsigned int width, unsigned int height, unsigned int dstPitch,
                                         unsigned int srcPitch, unsigned int flags);
FIKLEIPA_C PXJoinPlanesByFlags cycbcr_yuv420p16_to_012v;
FIKLEIPA_C PXJoinPlanesByFlags cycbcr_yuv420p16_to_uyvy;

/// p10 planes to UYVY, truncated. 4:2:2 is split above 2048 pixels as said above, 4:2:0 is not. Return the larger of
/// 2 x width and dstPitch, x height; dstPitch as passed x height when split.
FIKLEIPA_C PXJoinPlanes cycbcr_yuv422p10_to_uyvy;
FIKLEIPA_C PXJoinPlanes cycbcr_yuv420p10_to_uyvy;

/// The signature of converters into planes that have a pitch for luma and one for chroma.
typedef unsigned int PXSplitByPitches(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src,
                                      unsigned int width, unsigned int height, unsigned int yPitch,
                                      unsigned int chromaPitch, unsigned int srcPitch);

/// v210 to 4:2:2 p10. Source rows are the natural pitch apart where that exceeds `yPitch`, else `srcPitch` as passed:
/// deliberate. Rows are written to the end of the last group, and where yPitch is 2 x chromaPitch two luma samples and
/// one of each chroma more, as 0. Returns (yPitch + 2 x chromaPitch) x height.
FIKLEIPA_C PXSplitByPitches cycbcr_012v_to_yuv422p10;

/// v210 to left-justified 4:2:2 planes, chroma rows yPitch / 2 apart (the `dstPitch` of the signature is `yPitch`).
/// Only height - 1 rows are converted, the last is left as it was: deliberate. Each row is followed by zeros as said
/// above. Returns yPitch x height.
FIKLEIPA_C PXSplitPlanes cycbcr_012v_to_yuv422p16;

/// v210 to 4:2:0 p10, the chroma of every two rows averaged and truncated; an odd last row gives its own. The planes
/// are tight, exactly `width` luma and width / 2 chroma samples a row, and both pitches of theirs are not used. Source
/// rows are `srcPitch` apart, rounded down to whole words and not corrected: 0 is 0. Returns 3 x width x height.
FIKLEIPA_C PXSplitByPitches cycbcr_012v_to_yuv420p10;

/// v210 and UYVY (shifted left by 2) to 4:4:4 p10: a pair's chroma is written to both its pixels. v210 rows are written
/// to the end of the last group. UYVY rows are `srcPitch` as passed apart. Return (chromaPitch + 2 x yPitch) x height,
/// which weights the wrong pitch twice: deliberate.
FIKLEIPA_C PXSplitByPitches cycbcr_012v_to_yuv444p10;
FIKLEIPA_C PXSplitByPitches cycbcr_uyvy_to_yuv444p10;

#ifdef __cplusplus
/// The conversion of one band, `rows` rows, on the caller's thread: what the converters that split do below their
/// width. Return the v210 pitch x rows; for UYVY the larger of 2 x width and dstPitch, x rows.
FIKLEIPA_CXX unsigned int cycbcr_yuv422p10_to_012v_internal(unsigned char* dst, unsigned char* y, unsigned char* cb,
                                                            unsigned char* cr, unsigned int width, unsigned int rows,
                                                            unsigned int dstPitch, unsigned int srcPitch);
FIKLEIPA_CXX unsigned int cycbcr_yuv422p12_to_012v_internal(unsigned char* dst, unsigned char* y, unsigned char* cb,
                                                            unsigned char* cr, unsigned int width, unsigned int rows,
                                                            unsigned int dstPitch, unsigned int srcPitch);
FIKLEIPA_CXX unsigned int cycbcr_yuv444p12_to_012v_internal(unsigned char* dst, unsigned char* y, unsigned char* cb,
                                                            unsigned char* cr, unsigned int width, unsigned int rows,
                                                            unsigned int dstPitch, unsigned int srcPitch);
FIKLEIPA_CXX unsigned int cycbcr_yuv422p10_to_uyvy_internal(unsigned char* dst, unsigned char* y, unsigned char* cb,
                                                            unsigned char* cr, unsigned int width, unsigned int rows,
                                                            unsigned int dstPitch, unsigned int srcPitch);

/// What the threads of a split run. `record` points at these members, in this order, as the C compiler lays them out:
///
///     unsigned char *dst, *y, *cb, *cr;               the first bytes of the band and of its rows of each plane
///     unsigned int width, rows, dstPitch, srcPitch;   of the band, pitches as passed to the converter
///     int *pending;                                   the count of those who are not done
///     void *done;                                     a pxOSEvent
///     unsigned char index;                            not read
///
/// Converts the band as the function above does, but writes nothing behind a row's pitch; then takes 1 from the count
/// by pxOSInterlockedDecrement() and, if that leaves 0, signals the event by pxOSSetEvent(). From the decrement on
/// neither the record nor the count is used, so that who counts down to 0 may give them up. Returns what the conversion
/// returned.
FIKLEIPA_CXX unsigned int cycbcr_yuv422p10_to_012v_worker(void* record);
FIKLEIPA_CXX unsigned int cycbcr_yuv422p12_to_012v_worker(void* record);
FIKLEIPA_CXX unsigned int cycbcr_yuv444p12_to_012v_worker(void* record);
FIKLEIPA_CXX unsigned int cycbcr_yuv422p10_to_uyvy_worker(void* record);
#endif

// ---------------------------------------------------------------------------------------------------------------------
// 8-bit YCbCr to RGB
//
// Chroma is co-sited and replicated: pixels 2k and 2k + 1 of a row share chroma sample k; nothing is interpolated.
//
// Shapes. Source rows follow one another without a pitch: luma row r starts at r x width (planar) or r x 2 x width
// (packed), `srcPitch` is accepted and not used. Destination row r starts at r x dstPitch, or at (height - 1 - r) x
// dstPitch with PX_RGB_BOTTOM_UP; a dstPitch of 0 is used as passed and puts every row in the same place.
//
// Beyond the frame. Pixels go in pairs, so an odd width writes one pixel more per row than width, and reads one luma
// sample (one packed group) past the row's end. With an odd width a packed source's luma restarts at every row while
// its chroma runs on from where the previous row stopped, two bytes further each row: deliberate.
//
// A width or height of 0 converts nothing.
// ---------------------------------------------------------------------------------------------------------------------

/// A frame of the named layout to 15-bit (rgb555), 16-bit (rgb565), 24-bit or 32-bit RGB by cycbcr_ToRGBInt().
///
/// `src`: the frame without padding: packed rows of 2 x width bytes, or planes placed by width x height (Cb of I420 and
/// P422 at width x height, Cr of I420 a quarter of that further on, of P422 a half). cyuv is converted as UYVY and the
/// destination then turned over by cycbcr_invert(), padding included, and also with a width of 0.
///
/// Returns width x height x 2 (15 and 16 bits), x 3 (24) or x 4 (32).
FIKLEIPA_C PXConvertRgbFrame cycbcr_yuy2_to_rgb555;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yuy2_to_rgb565;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yuy2_to_rgb24;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yuy2_to_rgb32;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yvyu_to_rgb555;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yvyu_to_rgb565;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yvyu_to_rgb24;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yvyu_to_rgb32;
FIKLEIPA_C PXConvertRgbFrame cycbcr_uyvy_to_rgb555;
FIKLEIPA_C PXConvertRgbFrame cycbcr_uyvy_to_rgb565;
FIKLEIPA_C PXConvertRgbFrame cycbcr_uyvy_to_rgb24;
FIKLEIPA_C PXConvertRgbFrame cycbcr_uyvy_to_rgb32;
FIKLEIPA_C PXConvertRgbFrame cycbcr_cyuv_to_rgb555;
FIKLEIPA_C PXConvertRgbFrame cycbcr_cyuv_to_rgb565;
FIKLEIPA_C PXConvertRgbFrame cycbcr_cyuv_to_rgb24;
FIKLEIPA_C PXConvertRgbFrame cycbcr_cyuv_to_rgb32;
FIKLEIPA_C PXConvertRgbFrame cycbcr_i420_to_rgb555;
FIKLEIPA_C PXConvertRgbFrame cycbcr_i420_to_rgb565;
FIKLEIPA_C PXConvertRgbFrame cycbcr_i420_to_rgb24;
FIKLEIPA_C PXConvertRgbFrame cycbcr_i420_to_rgb32;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yv12_to_rgb555;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yv12_to_rgb565;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yv12_to_rgb24;
FIKLEIPA_C PXConvertRgbFrame cycbcr_yv12_to_rgb32;
FIKLEIPA_C PXConvertRgbFrame cycbcr_p422_to_rgb555;
FIKLEIPA_C PXConvertRgbFrame cycbcr_p422_to_rgb565;
FIKLEIPA_C PXConvertRgbFrame cycbcr_p422_to_rgb24;
FIKLEIPA_C PXConvertRgbFrame cycbcr_p422_to_rgb32;

/// NV12 (luma plane, then one plane of interleaved Cb and Cr at width x height, chroma rows of `width` bytes for every
/// two luma rows) to 32-bit RGB by cycbcrBi_ToRGBInt(). Returns width x height x 4.
FIKLEIPA_C PXConvertRgbFrame cycbcr_nv12_to_rgb32;

/// Stores an alpha plane into byte 3 of every 32-bit pixel of an RGB frame that is already there, whatever the order of
/// its components. `src` is the alpha plane: one byte a pixel, rows of `width` bytes; `srcPitch` is not used. For an
/// odd `matrix` (studio levels) alpha is expanded from 16..235 to 0..255, for an even one copied. PX_RGB_BOTTOM_UP is
/// followed. Exactly `width` pixels of each row are touched. Returns width x height.
FIKLEIPA_C PXConvertRgbFrame cycbcr_uyvy_to_rgb32_Alpha;

/// The signatures of the general converters, and of those that write the three components into planes.
typedef unsigned int PXToRgb(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                             unsigned int width, unsigned int height, unsigned int dstPitch, unsigned int srcPitch,
                             PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType, int fullChromaRows, int planar,
                             unsigned int bitsPerPixel, unsigned int reserved);
typedef unsigned int PXToRgbPlanes(unsigned char* r, unsigned char* g, unsigned char* b, unsigned char* y,
                                   unsigned char* cb, unsigned char* cr, unsigned int width, unsigned int height,
                                   unsigned int dstPitch, unsigned int ignored, PXYCBCRMatrix matrix,
                                   PXYCBCRRgbType rgbType, int fullChromaRows, int planar, unsigned int reserved);

/// The general converters: any 8-bit 4:2:2 or 4:2:0 source given by three pointers, to packed RGB.
///
/// `y`, `cb`, `cr`: the first luma, Cb and Cr byte. With `planar` 0 they point into one packed 4:2:2 buffer (luma every
/// 2 bytes, chroma every 4) and `fullChromaRows` is ignored. Otherwise they point at planes: luma rows of `width`
/// bytes; luma row r uses the chroma row at (r x width) / 2 when `fullChromaRows` is not 0 (4:2:2), and the one at
/// ((r / 2) x width) / 2 when it is 0 (4:2:0).
/// `bitsPerPixel`: 15, 16, 24 or 32; with any other depth nothing is written. `reserved` is not read.
///
/// cycbcr_ToRGBInt() works in integers of scale 10000, truncated and limited to 0..255; cycbcr_ToRGBFloat() in double
/// precision from left to right, truncated and limited; cycbcr_ToRGB() is cycbcr_ToRGBInt(). All return width x height
/// x 2 (15 and 16 bits), x 3 (24) or x 4 (any other).
FIKLEIPA_C PXToRgb cycbcr_ToRGBInt;
FIKLEIPA_C PXToRgb cycbcr_ToRGBFloat;
FIKLEIPA_C PXToRgb cycbcr_ToRGB;

/// As cycbcr_ToRGBInt() with 16-bit components in native byte order: three a pixel for a depth of 24 or 48, four (alpha
/// 65535) for 32 or 64, nothing written for any other. R and B are one more than the truncated quotient, G is not:
/// deliberate. Returns width x height x 2 (15 and 16), x 3 (24 and 48) or x 4, which counts components, not bytes.
FIKLEIPA_C PXToRgb cycbcr_ToRGBInt16;

/// The same arithmetic into three planes: `r`, `g` and `b`, rows `dstPitch` bytes apart in each. Samples are bytes, or
/// 16-bit words in native byte order for cycbcr_ToRGBPlanarInt16(). Of `rgbType` only PX_RGB_BOTTOM_UP applies;
/// `ignored` and `reserved` are not read. An odd width writes one sample more per row. cycbcr_ToRGBPlanar() is
/// cycbcr_ToRGBPlanarInt(). Return width x height.
FIKLEIPA_C PXToRgbPlanes cycbcr_ToRGBPlanarInt;
FIKLEIPA_C PXToRgbPlanes cycbcr_ToRGBPlanarInt16;
FIKLEIPA_C PXToRgbPlanes cycbcr_ToRGBPlanar;

#ifdef __cplusplus
FIKLEIPA_CXX unsigned int cycbcr_ToRGBPlanarFloat(unsigned char* r, unsigned char* g, unsigned char* b,
                                                  unsigned char* y, unsigned char* cb, unsigned char* cr,
                                                  unsigned int width, unsigned int height, unsigned int dstPitch,
                                                  unsigned int ignored, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                                                  int fullChromaRows, int planar, unsigned int reserved);

/// As cycbcr_ToRGBInt(), but with `planar` not 0 chroma is one plane of interleaved Cb and Cr at `cb`: luma row r uses
/// the chroma row at r x width when `fullChromaRows` is not 0, else at (r / 2) x width. `cr` is not read then.
FIKLEIPA_CXX unsigned int cycbcrBi_ToRGBInt(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                            unsigned int width, unsigned int height, unsigned int dstPitch,
                                            unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType,
                                            int fullChromaRows, int planar, unsigned int bitsPerPixel,
                                            unsigned int reserved);
#endif

// ---------------------------------------------------------------------------------------------------------------------
// YCbCr of more than 8 bits to RGB
//
// Pixels 2k and 2k + 1 of a row share chroma sample k. How the second of them takes it is said below at the sources; an
// average of chroma is (a + b) >> 1, formed before anything else.
//
// Destination row r starts at r x dstPitch, or at (height - 1 - r) x dstPitch with PX_RGB_BOTTOM_UP; a dstPitch of 0 is
// used as passed and puts every row in the same place. Exactly the pixels that are converted are written. Packed pixels
// are those of cycbcr_ToRGBInt() and, with 16-bit components, of cycbcr_ToRGBInt16(): the same depths, orders, alpha
// and results of width x height x 2, x 3 or x 4. With any other depth, or a width or height of 0, nothing is written.
// ---------------------------------------------------------------------------------------------------------------------

/// v210 to 15-, 16-, 24- or 32-bit RGB, or to 16-bit components.
///
/// `src`: source row r starts at r x srcPitch, which is used as passed. Pixels go in pairs: an odd last pixel is
/// neither converted nor written. The second pixel of a pair takes for G and B the averages of the pair's and the next
/// pair's chroma, but for R the pair's Cr as it is: deliberate. Of a row the groups that hold its pixels are read;
/// where they are converted whole, so is the 32-bit word behind them, whose chroma the last pixel takes. A row, the
/// last one too, therefore needs a word of padding or anything else there.
///
/// cycbcr_v210ToRGBInt() works in integers of scale 10000, truncated and limited to 0..255; cycbcr_v210ToRGBFloat() in
/// double precision from left to right, truncated and limited; cycbcr_v210ToRGBInt16() gives 16-bit components,
/// truncated and limited to 0..65535. cycbcr_v210ToRGB() is cycbcr_v210ToRGBInt().
typedef unsigned int PXV210ToRgb(unsigned char* dst, unsigned char* src, unsigned int width, unsigned int height,
                                 unsigned int dstPitch, unsigned int srcPitch, PXYCBCRMatrix matrix,
                                 PXYCBCRRgbType rgbType, unsigned int bitsPerPixel);
FIKLEIPA_C PXV210ToRgb cycbcr_v210ToRGB;
FIKLEIPA_C PXV210ToRgb cycbcr_v210ToRGBInt16;
#ifdef __cplusplus
FIKLEIPA_CXX PXV210ToRgb cycbcr_v210ToRGBInt;
FIKLEIPA_CXX PXV210ToRgb cycbcr_v210ToRGBFloat;
#endif

/// The same by cycbcr_v210ToRGB() at a fixed depth.
FIKLEIPA_C PXConvertRgbFrame cycbcr_012v_to_rgb555;
FIKLEIPA_C PXConvertRgbFrame cycbcr_012v_to_rgb565;
FIKLEIPA_C PXConvertRgbFrame cycbcr_012v_to_rgb24;
FIKLEIPA_C PXConvertRgbFrame cycbcr_012v_to_rgb32;

/// The colours of cycbcr_v210ToRGBInt16() into three planes of 16-bit samples, rows `dstPitch` bytes apart in each. Of
/// `rgbType` only PX_RGB_BOTTOM_UP applies. All give the same bytes; C16 and SSE16 are the two that Int16 forwards to,
/// the second on x86-64, the first elsewhere. Return width x height.
typedef unsigned int PXV210ToRgbPlanes(unsigned short* r, unsigned short* g, unsigned short* b, unsigned char* src,
                                       unsigned int width, unsigned int height, unsigned int dstPitch,
                                       unsigned int srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType);
FIKLEIPA_C PXV210ToRgbPlanes cycbcr_v210ToRGBPlanarInt16;
#ifdef __cplusplus
FIKLEIPA_CXX PXV210ToRgbPlanes cycbcr_v210ToRGBPlanarC16;
#if defined(__x86_64__)
FIKLEIPA_CXX PXV210ToRgbPlanes cycbcr_v210ToRGBPlanarSSE16;
#endif
#endif

/// Stores a 10-bit alpha plane into byte 3 of every 32-bit pixel of an RGB frame that is already there, whatever the
/// order of its components. `src` is the alpha plane: three samples in a 32-bit word, from its lowest bits on; row r
/// starts at (width x 4 x r) / 3 bytes, which need not be where a word ends; `srcPitch` is not used. For an odd
/// `matrix` (studio levels) alpha is expanded: up to 64 gives 0, above 875 gives 255, between them (a x 255 - 16320) /
/// 876, which jumps from 236 to 255 on purpose. For an even one it is shifted right by 2. PX_RGB_BOTTOM_UP is followed.
/// Exactly `width` pixels of each row are touched, and no byte is read that holds no sample. Returns (width x 4 x
/// height) / 3.
FIKLEIPA_C PXConvertRgbFrame cycbcr_012v_to_rgb32_Alpha;

/// Planes of 16-bit samples with 10, 12 or 16 significant bits to packed RGB, and to planes of R, G and B. A sample
/// that exceeds its bits is taken as it is.
///
/// `y`, `cb`, `cr`: the first sample of each plane; pitches are in bytes. Luma row r starts at r x lumaPitch. Its
/// chroma row starts at r x chromaPitch when `fullChromaRows` is not 0, else at (r / 2) x chromaPitch. With `planar` 0
/// the three point into one packed 4:2:2 buffer of 16-bit samples (luma every 2 samples, chroma every 4), whose rows
/// are all lumaPitch bytes apart. With `fullChromaRows` not 0 the second pixel of a pair takes the averages of the
/// pair's and the next pair's chroma, the last one of a row its pair's own; otherwise it takes the pair's own. Exactly
/// `width` pixels of a row are read and written, also when it is odd; an odd width has a chroma sample for its last
/// pixel. `bitsPerPixel`: as said at the head of this section; not used by cycbcr_10ToRGBInt10() and for planes, but by
/// the result of the former.
///
/// Planes of R, G and B have rows `dstPitch` bytes apart in each; of `rgbType` only PX_RGB_BOTTOM_UP applies.
/// Converters into planes return width x height.
typedef unsigned int PXDeepToRgb(unsigned char* dst, unsigned short* y, unsigned short* cb, unsigned short* cr,
                                 unsigned int width, unsigned int height, unsigned int dstPitch, unsigned int lumaPitch,
                                 PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType, int fullChromaRows, int planar,
                                 unsigned int bitsPerPixel, unsigned int chromaPitch);
typedef unsigned int PXDeepToRgbPlanes(unsigned char* r, unsigned char* g, unsigned char* b, unsigned short* y,
                                       unsigned short* cb, unsigned short* cr, unsigned int width, unsigned int height,
                                       unsigned int dstPitch, unsigned int lumaPitch, PXYCBCRMatrix matrix,
                                       PXYCBCRRgbType rgbType, int fullChromaRows, int planar,
                                       unsigned int bitsPerPixel, unsigned int chromaPitch);

/// 10 bits to 8-bit RGB. planar10ToRGBInt() uses the coefficients of cycbcr_v210ToRGBInt(). cycbcr_10ToRGBInt() and its
/// planes (of bytes) use those of cycbcr_ToRGBInt() with a divisor of 40000, and subtract its luma offset of 16 from
/// the 10-bit luma as it is, so that colours come out lighter: deliberate.
FIKLEIPA_C PXDeepToRgb planar10ToRGBInt;
FIKLEIPA_C PXDeepToRgb cycbcr_10ToRGBInt;
FIKLEIPA_C PXDeepToRgbPlanes cycbcr_10ToRGBPlanarInt;

/// 10 bits to 16-bit components, and to planes of 16-bit samples.
FIKLEIPA_C PXDeepToRgb cycbcr_10ToRGBInt16;
FIKLEIPA_C PXDeepToRgbPlanes cycbcr_10ToRGBPlanarInt16;

/// The same 16-bit components in one 32-bit word a pixel, in native byte order: ((R | R << 14 | B << 28) & 0x3FFF0003)
/// | (B >> 2) | ((G & 3) << 2) | ((G << 6) & 0x3FFF00). The fields overlap as the expression says, deliberately; no
/// order applies. The planes hold the upper ten bits of the components, 0..1023 in 16-bit samples.
FIKLEIPA_C PXDeepToRgb cycbcr_10ToRGBInt10;
FIKLEIPA_C PXDeepToRgbPlanes cycbcr_10ToRGBPlanarInt10;

/// 12 bits to 16-bit components, and to planes of 16-bit samples.
FIKLEIPA_C PXDeepToRgb cycbcr_12ToRGBInt16;
FIKLEIPA_C PXDeepToRgbPlanes cycbcr_12ToRGBPlanarInt16;

/// The same components divided by 255, of which the low byte is stored: those from 65280 on give 0 and 65535 gives 1.
/// Deliberate. Planes are of bytes.
FIKLEIPA_C PXDeepToRgb cycbcr_12ToRGB;
FIKLEIPA_C PXDeepToRgbPlanes cycbcr_12ToRGBPlanar;

/// 16 bits to 8-bit RGB: the high byte of every sample, before any average, and the arithmetic of cycbcr_ToRGBInt().
FIKLEIPA_C PXDeepToRgb cycbcr_16ToRGB8;

#include "fikleipa_from_rgb.h"

// ---------------------------------------------------------------------------------------------------------------------
// Rows of v210 into 16-bit planes, x86-64 only
// ---------------------------------------------------------------------------------------------------------------------

#if defined(__x86_64__)

/// Unpack one row of v210 of `width` pixels, rounded up to whole groups of six, into planes of 16-bit samples: 10-bit
/// values as they are, or shifted left by 6 (planar16). Behind the last group two more luma samples and one more of
/// each chroma plane are written, as 0; for a width of 0 nothing is. The aligned ones and the others are the same: none
/// needs any alignment, and all use what the processor has.
typedef void PXUnpackV210Row(unsigned char* src, unsigned short* y, unsigned short* cb, unsigned short* cr,
                             unsigned int width);
FIKLEIPA_C PXUnpackV210Row px_v210_planar_unpack_aligned_ssse3;
FIKLEIPA_C PXUnpackV210Row px_v210_planar_unpack_unaligned_ssse3;
FIKLEIPA_C PXUnpackV210Row px_v210_planar16_unpack_aligned_ssse3;
FIKLEIPA_C PXUnpackV210Row px_v210_planar16_unpack_unaligned_ssse3;

#endif

#endif // FIKLEIPA_H
