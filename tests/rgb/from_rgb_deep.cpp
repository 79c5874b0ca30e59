#include "tests/rgb/from_rgb.h"

namespace fikleipa::tests {
namespace {

// A converter with its arithmetic, its pixels, and whether chroma is that of pairs.
struct Deep {
    FromRgb arithmetic;
    RgbIn layout;
    bool ofPairs;
    Converter converter;
};

Ycc samplesAt(const Deep& deep, const Places& src, const Geometry& g, unsigned r, unsigned x) {
    const At pixel = src[0] + (rgbRow(g, r) * g.srcPitch + x * bytesOfPixel(deep.layout));
    return fromRgb(deep.arithmetic, g.matrix, loadPixel(pixel, deep.layout, g.type));
}
std::vector<Ycc> rowAt(const Deep& deep, const Places& src, const Geometry& g, unsigned r) {
    std::vector<Ycc> row;
    for (unsigned x = 0; x < g.width; ++x) row.push_back(samplesAt(deep, src, g, r, x));
    return row;
}

// Whole groups, and two pixels of what is left as the first two words of another.
void storeV210(At dst, const std::vector<Ycc>& row, bool filtered) {
    const std::size_t whole = row.size() / 6 * 6;
    const std::size_t pixels = row.size() - whole >= 2 ? whole + 2 : whole;
    for (std::size_t x = 0; x < pixels; x += 2) {
        const std::size_t end = x < whole ? whole : row.size();
        const auto chroma = [&](unsigned Ycc::*c) {
            if (!filtered) return row[x].*c;
            const unsigned before = x == 0 ? 512 : row[x - 1].*c;
            return (before + 2 * (row[x].*c) + 2 * (row[x + 1].*c) + row[x + 2 < end ? x + 2 : x + 1].*c) / 6;
        };
        const auto at = static_cast<unsigned>(x);
        storeComponent(dst, cbOf(at / 2), chroma(&Ycc::cb));
        storeComponent(dst, lumaOf(at), row[x].y);
        storeComponent(dst, crOf(at / 2), chroma(&Ycc::cr));
        storeComponent(dst, lumaOf(at + 1), row[x + 1].y);
    }
}

void addV210(std::vector<Deep>& all) {
    const auto add = [&](const char* name, FromRgb arithmetic, RgbIn layout, auto convert, bool filtered = true) {
        Deep deep{arithmetic, layout, true, {name, naturalPitch, kRowBytes[bytesOfPixel(layout)], convert, {}}};
        deep.converter.model = [=](const Places& dst, const Places& src, const Geometry& g) {
            for (unsigned r = 0; r < g.height; ++r) {
                storeV210(dst[0] + r * g.dstPitch, rowAt(deep, src, g, r), filtered);
            }
            return g.dstPitch * g.height;
        };
        all.push_back(std::move(deep));
    };
    const auto byDepth = [](PXRgbToV210* convert, unsigned bits) {
        return [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
            return convert(dst[0], src[0], g.width, g.height, g.dstPitch, g.srcPitch, g.matrixValue(), g.typeValue(),
                           bits);
        };
    };
    add("v210FromRGB 32", FromRgb::From8To10, RgbIn::Four8, byDepth(v210FromRGB, 32));
    for (const unsigned bits : {24U, 0U, 64U}) {
        add("v210FromRGB 24", FromRgb::From8To10, RgbIn::Three8, byDepth(v210FromRGB, bits));
    }
    add("no filter 32", FromRgb::From8To10, RgbIn::Four8, byDepth(v210FromRGBNoFilter, 32), false);
    add("no filter 24", FromRgb::From8To10, RgbIn::Three8, byDepth(v210FromRGBNoFilter, 31), false);
    add("RGB32_to_012v", FromRgb::From8To10, RgbIn::Four8, frame(cycbcr_RGB32_to_012v));
    add("RGB24_to_012v", FromRgb::From8To10, RgbIn::Three8, frame(cycbcr_RGB24_to_012v));
    for (const unsigned bits : {64U, 32U}) {
        add("RGB64_to_012v", FromRgb::From16To10, RgbIn::Four16, byDepth(cycbcr_RGB64_to_012v, bits));
    }
    for (const unsigned bits : {48U, 24U, 0U}) {
        add("RGB48_to_012v", FromRgb::From16To10, RgbIn::Three16, byDepth(cycbcr_RGB64_to_012v, bits));
    }
    add("RGB10_to_012v", FromRgb::From10To10, RgbIn::Packed10, frame(cycbcr_RGB10_to_012v));
}

// To planes, with samples shifted left by so many bits.
void storePlanes(const Places& dst, const std::vector<Ycc>& row, bool ofPairs, unsigned left) {
    for (unsigned x = 0; x < row.size(); ++x) store16(dst[0] + 2 * x, row[x].y << left);
    const unsigned step = ofPairs ? 2 : 1;
    for (std::size_t x = 0; x < row.size(); x += step) {
        const Ycc& other = row[std::min(x + step, row.size()) - 1];
        const auto chroma = [&](unsigned Ycc::*c) { return ((row[x].*c << left) + (other.*c << left)) >> 1; };
        store16(dst[1] + 2 * (x / step), chroma(&Ycc::cb));
        store16(dst[2] + 2 * (x / step), chroma(&Ycc::cr));
    }
}

// How often the result counts each.
struct Counted {
    unsigned luma, chroma;
};

template <auto* kConvert>
unsigned byLumaPitch(const Pointers& dst, const Pointers& src, const Geometry& g, unsigned bits) {
    return kConvert(dst[0], dst[1], dst[2], src[0], g.width, g.height, g.dstPitch, g.chromaPitch, g.srcPitch,
                    g.matrixValue(), g.typeValue(), bits);
}
template <auto* kConvert>
unsigned byChromaPitch(const Pointers& dst, const Pointers& src, const Geometry& g, unsigned bits) {
    return kConvert(dst[0], dst[1], dst[2], src[0], g.width, g.height, g.chromaPitch, g.dstPitch, g.srcPitch,
                    g.matrixValue(), g.typeValue(), bits);
}
unsigned planar16(const Pointers& dst, const Pointers& src, const Geometry& g, unsigned bits) {
    return cycbcr_RGB64_to_YCbCrPlanar16(dst[0], dst[1], dst[2], src[0], g.width, g.height, g.dstPitch, g.srcPitch,
                                         g.matrixValue(), g.typeValue(), bits);
}
unsigned planar16Of10(const Pointers& dst, const Pointers& src, const Geometry& g, unsigned /*bits*/) {
    return cycbcr_RGB10_to_YCbCrPlanar16(dst[0], dst[1], dst[2], src[0], g.width, g.height, g.dstPitch, g.srcPitch,
                                         g.matrixValue(), g.typeValue());
}

void addPlanes(std::vector<Deep>& all) {
    const auto add = [&](const char* name, auto convert, Counted counted, FromRgb arithmetic, RgbIn layout,
                         std::initializer_list<unsigned> depths, bool ofPairs = true, bool ownChromaPitch = true) {
        for (const unsigned bits : depths) {
            Deep deep{arithmetic, layout, ofPairs, {name, bytesOf<2>, kRowBytes[bytesOfPixel(layout)], {}, {}}};
            deep.converter.convert = [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                return convert(dst, src, g, bits);
            };
            deep.converter.model = [=](const Places& dst, const Places& src, const Geometry& g) {
                const unsigned chromaPitch = ownChromaPitch ? g.chromaPitch : g.dstPitch / 2;
                for (unsigned r = 0; r < g.height; ++r) {
                    const unsigned chroma = r * chromaPitch;
                    storePlanes({dst[0] + r * g.dstPitch, dst[1] + chroma, dst[2] + chroma}, rowAt(deep, src, g, r),
                                ofPairs, arithmetic == FromRgb::From10To10 ? 6 : 0);
                }
                return (counted.luma * g.dstPitch + counted.chroma * g.chromaPitch) * g.height;
            };
            all.push_back(std::move(deep));
        }
    };
    constexpr auto kTo444 = byLumaPitch<cycbcr_RGB32_to_yuv444p10>;
    add("RGB32_to_yuv444p10", kTo444, {2, 1}, FromRgb::From8To10, RgbIn::Four8, {32}, false);
    add("RGB24_to_yuv444p10", kTo444, {2, 1}, FromRgb::From8To10, RgbIn::Three8, {24, 64}, false);
    constexpr auto kUpperTo444 = byChromaPitch<cycbcr_RGB64_to_yuv444p10>;
    add("RGB64_to_yuv444p10", kUpperTo444, {1, 2}, FromRgb::UpperTo10, RgbIn::Four16, {64, 32}, false);
    add("RGB48_to_yuv444p10", kUpperTo444, {1, 2}, FromRgb::UpperTo10, RgbIn::Three16, {48, 24, 0}, false);
    constexpr auto kTo422 = byLumaPitch<cycbcr_RGB64_to_yuv422p12>;
    add("RGB64_to_yuv422p12", kTo422, {2, 1}, FromRgb::UpperTo12, RgbIn::Four16, {64, 32});
    add("RGB48_to_yuv422p12", kTo422, {2, 1}, FromRgb::UpperTo12, RgbIn::Three16, {48, 24, 0});
    constexpr auto kDouble = byChromaPitch<cycbcr_RGB64_to_yuv444p10_float_BAD_ONLY_LUMA_WORKS>;
    add("RGB64, double", kDouble, {0, 1}, FromRgb::Double, RgbIn::Four16, {64, 32}, false);
    add("RGB48, double", kDouble, {0, 1}, FromRgb::Double, RgbIn::Three16, {48, 24, 0}, false);
    add("RGB64 to 16 bits", planar16, {1, 0}, FromRgb::From16To16, RgbIn::Four16, {64, 32}, true, false);
    add("RGB48 to 16 bits", planar16, {1, 0}, FromRgb::From16To16, RgbIn::Three16, {48, 24, 0}, true, false);
    add("RGB10 to 16 bits", planar16Of10, {1, 0}, FromRgb::From10To10, RgbIn::Packed10, {0}, true, false);
}

std::vector<Deep> converters() {
    std::vector<Deep> all;
    addV210(all);
    addPlanes(all);
    return all;
}

// Components in the order of the type 0.
Bytes pixelsOf(const std::vector<Colour>& colours, RgbIn layout) {
    const unsigned bytes = bytesOfPixel(layout);
    Bytes all(colours.size() * bytes);
    std::uint8_t* pixel = all.data();
    for (const Colour& c : colours) {
        if (layout == RgbIn::Packed10) {
            storeWord(pixel, c.r << 2 | c.g << 12 | c.b << 22);
        } else if (bytes < 6) {
            for (unsigned i = 0; i < 3; ++i) pixel[i] = static_cast<std::uint8_t>(i == 0 ? c.b : i == 1 ? c.g : c.r);
        } else {
            for (unsigned i = 0; i < 3; ++i) store16(pixel + 2 * i, i == 0 ? c.b : i == 1 ? c.g : c.r);
        }
        pixel += bytes;
    }
    return all;
}

TEST(FromRgbDeep, EveryLevelFollowsTheEquationsAtEveryStep) {
    Comparison comparison(std::size_t{1} << 20);
    std::string done;
    for (const Deep& deep : converters()) {
        if (std::exchange(done, deep.converter.name) == deep.converter.name) continue; // at another depth
        for (unsigned matrix = 0; matrix < 10; ++matrix) {
            std::vector<Colour> colours;
            for (const Colour& colour : coloursAtSteps(deep.arithmetic, matrix)) {
                colours.insert(colours.end(), deep.ofPairs ? 2 : 1, colour); // each has its chroma seen
            }
            ASSERT_GT(colours.size(), 1000U);
            // 16 bits have more steps than go into a frame at a time.
            for (std::size_t first = 0; first < colours.size(); first += 60'000) {
                const auto end = static_cast<std::ptrdiff_t>(std::min(first + 60'000, colours.size()));
                const std::vector<Colour> row(colours.begin() + static_cast<std::ptrdiff_t>(first),
                                              colours.begin() + end);
                const auto width = static_cast<unsigned>(row.size());
                comparison.fillSource(pixelsOf(row, deep.layout));
                comparison.check(deep.converter, {width, 1, 4 * width, 8 * width, 2 * width, matrix});
                if (HasFatalFailure()) return;
            }
        }
    }
}

} // namespace

std::vector<Converter> fromRgbDeepConverters() {
    std::vector<Converter> all;
    for (Deep& deep : converters()) all.push_back(std::move(deep.converter));
    return all;
}

} // namespace fikleipa::tests
