#include "tests/rgb/to_rgb_model.h"

namespace fikleipa::tests {
namespace {

// Planes or one packed buffer, and whether each row has chroma of its own, by the variant.
bool isPlanar(const Geometry& g) {
    return g.variant % 2 != 0;
}
bool hasFullChromaRows(const Geometry& g) {
    return g.variant / 2 % 2 != 0;
}
template <class Pointer>
std::array<Pointer, 3> first(const std::array<Pointer, 3>& src, const Geometry& g) {
    return isPlanar(g) ? src : firstSamples(src[0], kUyvy, 2);
}

// Of what is taken of each sample.
template <unsigned kShift>
Samples deepSamplesAt(const Places& src, const Geometry& g, unsigned r, unsigned x) {
    const auto [luma, cb, cr] = first(src, g);
    const unsigned pair = x / 2;
    const bool averages = x % 2 == 1 && hasFullChromaRows(g) && x + 1 < g.width;
    const auto chroma = [&, cbs = cb, crs = cr](bool ofRed) {
        const unsigned row = isPlanar(g) ? (hasFullChromaRows(g) ? r : r / 2) * g.chromaPitch : r * g.srcPitch;
        const auto at = [&](unsigned k) {
            return load16((ofRed ? crs : cbs) + (row + k * (isPlanar(g) ? 2 : 8))) >> kShift;
        };
        return averages ? (at(pair) + at(pair + 1)) >> 1 : at(pair);
    };
    return {load16(luma + (r * g.srcPitch + x * (isPlanar(g) ? 2 : 4))) >> kShift, chroma(false), chroma(true),
            chroma(true)};
}

unsigned everyPixel(unsigned width) {
    return width;
}
unsigned pixelsOfPairs(unsigned width) {
    return width / 2 * 2;
}

Samples v210SamplesAt(const Places& src, const Geometry& g, unsigned r, unsigned x) {
    const At row = src[0] + r * g.srcPitch;
    readGroups(row, pixelsOfPairs(g.width));
    const unsigned pair = x / 2;
    const unsigned next = pair + x % 2;
    const unsigned own = component(row, crOf(pair));
    return {component(row, lumaOf(x)), (component(row, cbOf(pair)) + component(row, cbOf(next))) >> 1,
            (own + component(row, crOf(next))) >> 1, own};
}
const Source kV210{v210SamplesAt, pixelsOfPairs, naturalPitch};

Source planesOf(unsigned bits) {
    return {deepSamplesAt<0>, everyPixel, bytesOf<4>, bits};
}

unsigned short* words(std::uint8_t* samples) {
    return reinterpret_cast<unsigned short*>(samples);
}

bool isWide(ToRgb arithmetic) {
    return arithmetic == ToRgb::From10To16 || arithmetic == ToRgb::From12To16;
}

void addDeep(std::vector<Converter>& all) {
    const auto add = [&](const char* name, PXDeepToRgb* convert, ToRgb arithmetic, const Source& source,
                         std::initializer_list<unsigned> depths, To to = To::Pixels) {
        for (const unsigned bits : depths) {
            const auto run = [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                const auto [y, cb, cr] = first(src, g);
                return convert(dst[0], words(y), words(cb), words(cr), g.width, g.height, g.dstPitch, g.srcPitch,
                               g.matrixValue(), g.typeValue(), hasFullChromaRows(g) ? 2 : 0, isPlanar(g) ? 4 : 0, bits,
                               g.chromaPitch);
            };
            const bool wide = to == To::Pixels && isWide(arithmetic);
            all.push_back(toRgbConverter(name, arithmetic, source, {bits, wide, to}, run));
        }
    };
    add("16ToRGB8", cycbcr_16ToRGB8, ToRgb::From8To8, {deepSamplesAt<8>, everyPixel, bytesOf<4>}, {15, 16, 24, 32, 48});
    add("12ToRGBInt16", cycbcr_12ToRGBInt16, ToRgb::From12To16, planesOf(12), {24, 32, 48, 64, 15, 17});
    add("12ToRGB", cycbcr_12ToRGB, ToRgb::From12To8, planesOf(12), {15, 16, 24, 32, 64});
    add("planar10ToRGBInt", planar10ToRGBInt, ToRgb::From10To8, planesOf(10), {15, 16, 24, 32, 17});
    add("10ToRGBInt", cycbcr_10ToRGBInt, ToRgb::From10To8By8, planesOf(10), {15, 16, 24, 32, 33});
    add("10ToRGBInt16", cycbcr_10ToRGBInt16, ToRgb::From10To16, planesOf(10), {24, 48, 32, 64, 16});
    add("10ToRGBInt10", cycbcr_10ToRGBInt10, ToRgb::From10To16, planesOf(10), {0, 16, 24, 48}, To::Words10);

    const auto planes = [&](const char* name, PXDeepToRgbPlanes* convert, ToRgb arithmetic, unsigned sourceBits,
                            unsigned bits) {
        const auto run = [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
            const auto [y, cb, cr] = first(src, g);
            return convert(dst[0], dst[1], dst[2], words(y), words(cb), words(cr), g.width, g.height, g.dstPitch,
                           g.srcPitch, g.matrixValue(), g.typeValue(), hasFullChromaRows(g) ? 1 : 0,
                           isPlanar(g) ? 1 : 0, 9, g.chromaPitch);
        };
        all.push_back(toRgbConverter(name, arithmetic, planesOf(sourceBits), {bits, false, To::Planes}, run));
    };
    planes("12ToRGBPlanar", cycbcr_12ToRGBPlanar, ToRgb::From12To8, 12, 8);
    planes("12ToRGBPlanarInt16", cycbcr_12ToRGBPlanarInt16, ToRgb::From12To16, 12, 16);
    planes("10ToRGBPlanarInt", cycbcr_10ToRGBPlanarInt, ToRgb::From10To8By8, 10, 8);
    planes("10ToRGBPlanarInt10", cycbcr_10ToRGBPlanarInt10, ToRgb::From10To10, 10, 16);
    planes("10ToRGBPlanarInt16", cycbcr_10ToRGBPlanarInt16, ToRgb::From10To16, 10, 16);
}

void addV210(std::vector<Converter>& all) {
    const auto add = [&](const char* name, PXV210ToRgb* convert, ToRgb arithmetic,
                         std::initializer_list<unsigned> depths) {
        for (const unsigned bits : depths) {
            const auto run = [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                return convert(dst[0], src[0], g.width, g.height, g.dstPitch, g.srcPitch, g.matrixValue(),
                               g.typeValue(), bits);
            };
            all.push_back(toRgbConverter(name, arithmetic, kV210, {bits, isWide(arithmetic)}, run));
        }
    };
    add("v210ToRGBInt", cycbcr_v210ToRGBInt, ToRgb::From10To8, {15, 16, 24, 32, 8, 48});
    add("v210ToRGB", cycbcr_v210ToRGB, ToRgb::From10To8, {24, 32});
    add("v210ToRGBFloat", cycbcr_v210ToRGBFloat, ToRgb::From10To8Double, {15, 16, 24, 32, 33});
    add("v210ToRGBInt16", cycbcr_v210ToRGBInt16, ToRgb::From10To16, {24, 48, 32, 64, 15, 17});

    constexpr PXConvertRgbFrame* kNamed[] = {cycbcr_012v_to_rgb555, cycbcr_012v_to_rgb565, cycbcr_012v_to_rgb24,
                                             cycbcr_012v_to_rgb32};
    constexpr unsigned kDepths[] = {15, 16, 24, 32};
    for (unsigned i = 0; i < 4; ++i) {
        all.push_back(toRgbConverter("012v_to_rgb", ToRgb::From10To8, kV210, {kDepths[i]}, frame(kNamed[i])));
    }

    const auto planes = [&](const char* name, PXV210ToRgbPlanes* convert) {
        const auto run = [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
            return convert(words(dst[0]), words(dst[1]), words(dst[2]), src[0], g.width, g.height, g.dstPitch,
                           g.srcPitch, g.matrixValue(), g.typeValue());
        };
        all.push_back(toRgbConverter(name, ToRgb::From10To16, kV210, {16, false, To::Planes}, run));
    };
    planes("v210ToRGBPlanarInt16", cycbcr_v210ToRGBPlanarInt16);
    planes("v210ToRGBPlanarC16", cycbcr_v210ToRGBPlanarC16);
#if defined(__x86_64__)
    planes("v210ToRGBPlanarSSE16", cycbcr_v210ToRGBPlanarSSE16);
#endif
}

} // namespace

std::vector<Converter> deepToRgbConverters() {
    std::vector<Converter> all;
    addDeep(all);
    addV210(all);
    return all;
}

} // namespace fikleipa::tests
