// The converters from planes of 10-, 12- and 16-bit YCbCr to RGB.
#include "fikleipa.h"
#include "rgb/deep_to_rgb.h"
#include "rgb/layout.h"
#include "rgb/matrix.h"

namespace {

using namespace fikleipa;

// What a converter is asked to make of a source.
struct Wanted {
    unsigned dstPitch;
    PXYCBCRMatrix matrix;
    PXYCBCRRgbType rgbType;
    unsigned bitsPerPixel;

    bool bottomUp() const { return isBottomUp(rgbType); }
};

using RowOf = simd::DeepRow(PXYCBCRMatrix);

const simd::DeepKernels& kernels(const DeepSource& source) {
    return simd::kernels().rgbDeep.of(source.oddPixel());
}

template <RowOf* kRow>
DeepToRgb<DeepSource, simd::DeepRow> conversion(const DeepSource& source, const Wanted& wanted) {
    return {source, kRow(wanted.matrix)};
}

template <RowOf* kRow, bool kHighBytes = false>
unsigned toRgb8(std::uint8_t* dst, DeepSource source, const Wanted& wanted) {
    source.highBytes = kHighBytes;
    if (const auto format = rgb8Layout(wanted.rgbType, wanted.bitsPerPixel)) {
        conversion<kRow>(source, wanted)
            .toPixels(dst, wanted.dstPitch, wanted.bottomUp(), bytesPerPixel(*format),
                      {kernels(source).toRgb8[static_cast<unsigned>(*format)]},
                      {kernels(source).toRgb8Past[static_cast<unsigned>(*format)]});
    }
    return nominalSize(source.width, source.height, nominalBytes8(wanted.bitsPerPixel));
}

template <RowOf* kRow>
unsigned toRgb16(std::uint8_t* dst, const DeepSource& source, const Wanted& wanted) {
    if (const auto format = rgb16Layout(wanted.rgbType, wanted.bitsPerPixel)) {
        conversion<kRow>(source, wanted)
            .toPixels(dst, wanted.dstPitch, wanted.bottomUp(), bytesPerPixel(*format),
                      {kernels(source).toRgb16[static_cast<unsigned>(*format)]},
                      {kernels(source).toRgb16Past[static_cast<unsigned>(*format)]});
    }
    return nominalSize(source.width, source.height, nominalBytes16(wanted.bitsPerPixel));
}

template <RowOf* kRow>
unsigned toRgb10(std::uint8_t* dst, const DeepSource& source, const Wanted& wanted) {
    conversion<kRow>(source, wanted)
        .toPixels(dst, wanted.dstPitch, wanted.bottomUp(), 4, {kernels(source).toRgb10}, {kernels(source).toRgb10Past});
    return nominalSize(source.width, source.height, nominalBytes8(wanted.bitsPerPixel));
}

template <RowOf* kRow>
unsigned toBytePlanes(const RgbPlanes& dst, const DeepSource& source, const Wanted& wanted) {
    conversion<kRow>(source, wanted)
        .toPlanes(dst, wanted.dstPitch, wanted.bottomUp(), 1, {kernels(source).toBytePlanes});
    return nominalSize(source.width, source.height, 1);
}

template <RowOf* kRow>
unsigned toWordPlanes(const RgbPlanes& dst, const DeepSource& source, const Wanted& wanted) {
    conversion<kRow>(source, wanted)
        .toPlanes(dst, wanted.dstPitch, wanted.bottomUp(), 2, {kernels(source).toWordPlanes});
    return nominalSize(source.width, source.height, 1);
}

// Nothing is known of the alignment of samples.
const std::uint8_t* bytes(const unsigned short* samples) {
    return reinterpret_cast<const std::uint8_t*>(samples);
}

} // namespace

#define DEEP_SOURCE                                                                                                    \
    { bytes(y), bytes(cb), bytes(cr), width, height, lumaPitch, chromaPitch, fullChromaRows != 0, planar != 0 }
#define WANTED                                                                                                         \
    { dstPitch, matrix, rgbType, bitsPerPixel }

#define TO_RGB(name, ...)                                                                                              \
    unsigned int name(unsigned char* dst, unsigned short* y, unsigned short* cb, unsigned short* cr,                   \
                      unsigned int width, unsigned int height, unsigned int dstPitch, unsigned int lumaPitch,          \
                      PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType, int fullChromaRows, int planar,                    \
                      unsigned int bitsPerPixel, unsigned int chromaPitch) {                                           \
        return __VA_ARGS__(dst, DEEP_SOURCE, WANTED);                                                                  \
    }
#define TO_PLANES(name, ...)                                                                                           \
    unsigned int name(unsigned char* r, unsigned char* g, unsigned char* b, unsigned short* y, unsigned short* cb,     \
                      unsigned short* cr, unsigned int width, unsigned int height, unsigned int dstPitch,              \
                      unsigned int lumaPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType rgbType, int fullChromaRows,        \
                      int planar, unsigned int bitsPerPixel, unsigned int chromaPitch) {                               \
        return __VA_ARGS__({r, g, b}, DEEP_SOURCE, WANTED);                                                            \
    }

TO_RGB(cycbcr_10ToRGBInt, toRgb8<row10To8By8>)
TO_RGB(planar10ToRGBInt, toRgb8<row10To8>)
TO_RGB(cycbcr_10ToRGBInt16, toRgb16<row10To16>)
TO_RGB(cycbcr_10ToRGBInt10, toRgb10<row10To16>)
TO_RGB(cycbcr_12ToRGB, toRgb8<row12To8>)
TO_RGB(cycbcr_12ToRGBInt16, toRgb16<row12To16>)
TO_RGB(cycbcr_16ToRGB8, toRgb8<row8To8, true>)

TO_PLANES(cycbcr_10ToRGBPlanarInt, toBytePlanes<row10To8By8>)
TO_PLANES(cycbcr_10ToRGBPlanarInt10, toWordPlanes<row10To10>)
TO_PLANES(cycbcr_10ToRGBPlanarInt16, toWordPlanes<row10To16>)
TO_PLANES(cycbcr_12ToRGBPlanar, toBytePlanes<row12To8>)
TO_PLANES(cycbcr_12ToRGBPlanarInt16, toWordPlanes<row12To16>)

#undef TO_PLANES
#undef TO_RGB
#undef WANTED
#undef DEEP_SOURCE
