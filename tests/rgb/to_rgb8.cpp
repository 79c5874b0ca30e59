#include "tests/rgb/to_rgb_model.h"

namespace fikleipa::tests {
namespace {

// How a frame of 8-bit samples lies.
enum class Kind { Packed, Planar, BiPlanar };
struct Layout {
    Kind kind;
    bool fullChromaRows;
    Order order = {};                  // of a packed one
    std::optional<Planar> planes = {}; // of a frame in one piece

    // The first luma, Cb and Cr.
    template <class Pointer>
    [[nodiscard]] std::array<Pointer, 3> first(const std::array<Pointer, 3>& src) const {
        return kind == Kind::Packed ? firstSamples(src[0], order) : src;
    }
};

unsigned wholePairs(unsigned width) {
    return roundUp(width, 2);
}

// Rows have no pitch. Those of planes of chroma begin where half of so many luma samples would end.
Samples samplesAt(const Layout& layout, const Places& first, const Geometry& g, unsigned r, unsigned x) {
    const auto sample = [](unsigned y, unsigned cb, unsigned cr) { return Samples{y, cb, cr, cr}; };
    const unsigned k = x / 2;
    if (layout.kind == Kind::Packed) {
        const unsigned chroma = r * wholePairs(g.width) * 2 + 4 * k;
        return sample(first[0][r * 2 * g.width + 2 * x], first[1][chroma], first[2][chroma]);
    }
    const unsigned y = first[0][r * g.width + x];
    const unsigned row = (layout.fullChromaRows ? r : r / 2) * g.width;
    if (layout.kind == Kind::Planar) return sample(y, first[1][row / 2 + k], first[2][row / 2 + k]);
    return sample(y, first[1][row + 2 * k], first[1][row + 2 * k + 1]);
}

// The general converters take any layout.
using Layouts = std::vector<Layout>;
const Layouts kLayouts{{Kind::Packed, true, kYuy2},   {Kind::Packed, false, kYvyu}, {Kind::Packed, true, kUyvy},
                       {Kind::Packed, false, "VYUy"}, {Kind::Planar, true},         {Kind::Planar, false}};
const Layouts kBiLayouts{{Kind::Packed, true, kYuy2}, {Kind::BiPlanar, true}, {Kind::BiPlanar, false}};

const Layout& layoutOf(const Layouts& layouts, const Geometry& g) {
    return layouts[g.variant % layouts.size()];
}

Source sourceOf(const Layouts& layouts) {
    return {[=](const Places& src, const Geometry& g, unsigned r, unsigned x) {
                const Layout& layout = layoutOf(layouts, g);
                const Places first = layout.planes ? layout.planes->in(src[0], g.width * g.height) : layout.first(src);
                return samplesAt(layout, first, g, r, x);
            },
            wholePairs, bytesOf<2>};
}

void addGeneral(std::vector<Converter>& all) {
    const auto add = [&](const char* name, PXToRgb* convert, ToRgb arithmetic, const Layouts& layouts,
                         std::initializer_list<unsigned> depths) {
        for (const unsigned bits : depths) {
            const auto run = [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                const Layout& layout = layoutOf(layouts, g);
                const auto [y, cb, cr] = layout.first(src);
                return convert(dst[0], y, cb, layout.kind == Kind::BiPlanar ? nullptr : cr, g.width, g.height,
                               g.dstPitch, 77, g.matrixValue(), g.typeValue(), layout.fullChromaRows ? 2 : 0,
                               layout.kind == Kind::Packed ? 0 : 4, bits, 99);
            };
            const Format format{bits, arithmetic == ToRgb::From8To16};
            all.push_back(toRgbConverter(name, arithmetic, sourceOf(layouts), format, run));
        }
    };
    add("ToRGBInt", cycbcr_ToRGBInt, ToRgb::From8To8, kLayouts, {15, 16, 24, 32, 8, 33, 48});
    add("ToRGB", cycbcr_ToRGB, ToRgb::From8To8, kLayouts, {16, 32});
    add("ToRGBFloat", cycbcr_ToRGBFloat, ToRgb::From8To8Double, kLayouts, {15, 16, 24, 32, 64});
    add("ToRGBInt16", cycbcr_ToRGBInt16, ToRgb::From8To16, kLayouts, {24, 48, 32, 64, 15, 16, 0});
    add("BiToRGBInt", cycbcrBi_ToRGBInt, ToRgb::From8To8, kBiLayouts, {15, 16, 24, 32, 23});

    const auto planes = [&](const char* name, PXToRgbPlanes* convert, ToRgb arithmetic, unsigned bits) {
        const auto run = [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
            const Layout& layout = layoutOf(kLayouts, g);
            const auto [y, cb, cr] = layout.first(src);
            return convert(dst[0], dst[1], dst[2], y, cb, cr, g.width, g.height, g.dstPitch, 7, g.matrixValue(),
                           g.typeValue(), layout.fullChromaRows ? 1 : 0, layout.kind == Kind::Packed ? 0 : 1, 9);
        };
        all.push_back(toRgbConverter(name, arithmetic, sourceOf(kLayouts), {bits, false, To::Planes}, run));
    };
    planes("ToRGBPlanarInt", cycbcr_ToRGBPlanarInt, ToRgb::From8To8, 8);
    planes("ToRGBPlanar", cycbcr_ToRGBPlanar, ToRgb::From8To8, 8);
    planes("ToRGBPlanarFloat", cycbcr_ToRGBPlanarFloat, ToRgb::From8To8Double, 8);
    planes("ToRGBPlanarInt16", cycbcr_ToRGBPlanarInt16, ToRgb::From8To16, 16);
}

// Converters of a named layout to 15, 16, 24 and 32 bits.
struct Named {
    const char* name;
    std::array<PXConvertRgbFrame*, 4> convert;
    Layout layout;
    bool flipped = false;
};
// clang-format off
#define TO_RGB(name)                                                                                                   \
    #name, {cycbcr_##name##_to_rgb555, cycbcr_##name##_to_rgb565, cycbcr_##name##_to_rgb24, cycbcr_##name##_to_rgb32}
// clang-format on
const Named kNamed[] = {
    {TO_RGB(yuy2), {Kind::Packed, true, kYuy2}},      {TO_RGB(yvyu), {Kind::Packed, true, kYvyu}},
    {TO_RGB(uyvy), {Kind::Packed, true, kUyvy}},      {TO_RGB(cyuv), {Kind::Packed, true, kUyvy}, true},
    {TO_RGB(i420), {Kind::Planar, false, {}, kI420}}, {TO_RGB(yv12), {Kind::Planar, false, {}, kYv12}},
    {TO_RGB(p422), {Kind::Planar, true, {}, kP422}}};

void addNamed(std::vector<Converter>& all) {
    const auto add = [&](const Named& named, PXConvertRgbFrame* convert, unsigned bits) {
        all.push_back(toRgbConverter(named.name, ToRgb::From8To8, sourceOf({named.layout}), {bits}, frame(convert)));
        if (!named.flipped) return;
        all.back().model = [model = all.back().model](const Places& dst, const Places& src, const Geometry& g) {
            const unsigned size = model(dst, src, g);
            invert(dst[0], g.dstPitch, g.height);
            return size;
        };
    };
    constexpr unsigned kDepths[] = {15, 16, 24, 32};
    for (const Named& named : kNamed) {
        for (unsigned i = 0; i < 4; ++i) add(named, named.convert[i], kDepths[i]);
    }
    add({"nv12", {}, {Kind::BiPlanar, false, {}, kI420}}, cycbcr_nv12_to_rgb32, 32);
}

} // namespace

std::vector<Converter> toRgb8Converters() {
    std::vector<Converter> all;
    addGeneral(all);
    addNamed(all);
    return all;
}

} // namespace fikleipa::tests
