#include "tests/rgb/from_rgb8_model.h"
#include "tests/rgb/pixels.h"

namespace fikleipa::tests {
namespace {

// How a destination lies: packed, or in planes of which some share a row of chroma.
struct Target {
    bool is422, planar;
};

// The high bytes count. Pixels of three words have them where four have theirs, which may be in the next pixel.
Components componentsAt(At pixel, unsigned bytes, unsigned type) {
    if (bytes != 6) {
        const RgbIn layout = bytes == 3 ? RgbIn::Three8 : bytes == 4 ? RgbIn::Four8 : RgbIn::Four16;
        const Colour c = loadPixel(pixel, layout, type);
        const auto high = [&](unsigned v) { return static_cast<std::uint8_t>(bytes == 8 ? v >> 8 : v); };
        return {high(c.r), high(c.g), high(c.b)};
    }
    static_cast<void>(pixel[5]);
    const unsigned order = type & ~kBottomUp;
    const unsigned first = order == 1 || order == 3 ? 3 : 1;
    const bool redFirst = order == 2 || order == 3;
    return {pixel[first + (redFirst ? 0 : 4)], pixel[first + 2], pixel[first + (redFirst ? 4 : 0)]};
}

// Into the first samples of a frame.
void convert(const Places& dst, At src, const Geometry& g, const Target& target, unsigned chromaPitch, unsigned bytes) {
    if (bytes != 3 && bytes != 4 && bytes != 6 && bytes != 8) return;
    for (unsigned y = 0; y < g.height; ++y) {
        for (unsigned k = 0; k < g.width / 2; ++k) {
            const At pixel = src + (rgbRow(g, y) * g.srcPitch + 2 * k * bytes);
            const Components one = componentsAt(pixel, bytes, g.type);
            const Components two = componentsAt(pixel + bytes, bytes, g.type);
            const At luma = dst[0] + (y * g.dstPitch + (target.planar ? 2 : 4) * k);
            luma[0] = lumaOf(g.matrix, one, true);
            luma[target.planar ? 1 : 2] = lumaOf(g.matrix, two, !target.planar);
            if (target.planar && !target.is422 && y % 4 != 0 && y % 4 != 3) continue;
            const unsigned chroma =
                !target.planar ? y * g.dstPitch + 4 * k : (target.is422 ? y : y / 2) * chromaPitch + k;
            dst[1][chroma] = cbOf(g.matrix, one);
            dst[2][chroma] = crOf(g.matrix, one);
        }
    }
}

unsigned sizeOf(const Geometry& g, bool is422) {
    const unsigned area = g.width * g.height;
    return is422 ? 2 * area : area + (area / 2 & ~1U);
}

// Where a general converter writes: frames of every order, planes apart, and planes that lie on one another.
template <class Pointer>
std::array<Pointer, 3> firstOf(const std::array<Pointer, 3>& dst, unsigned variant) {
    if (variant < kOrders.size()) return firstSamples(dst[0], kOrders[variant]);
    return variant == 6 ? std::array<Pointer, 3>{dst[0], dst[0] + 20, dst[0] + 33} : dst;
}
constexpr unsigned kVariants = 7;
bool isPlanar(unsigned variant) {
    return variant >= kOrders.size();
}

void addGeneral(std::vector<Converter>& all) {
    const auto add = [&](const char* name, PXFromRgb* convertFrame, std::initializer_list<unsigned> depths) {
        for (const unsigned bits : depths) {
            all.push_back({name + std::to_string(bits), bytesOf<2>, kRowBytes[bits / 8 % 9],
                           [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                               const auto [y, cb, cr] = firstOf(dst, g.variant % kVariants);
                               return convertFrame(y, cb, cr, src[0], g.width, g.height, g.dstPitch, g.srcPitch,
                                                   g.matrixValue(), g.typeValue(), g.variant % 2 != 0 ? 4 : 0,
                                                   isPlanar(g.variant % kVariants) ? 2 : 0, bits, g.chromaPitch);
                           },
                           [=](const Places& dst, const Places& src, const Geometry& g) {
                               const Target target{g.variant % 2 != 0, isPlanar(g.variant % kVariants)};
                               convert(firstOf(dst, g.variant % kVariants), src[0], g, target, g.chromaPitch, bits / 8);
                               return sizeOf(g, target.is422);
                           }});
        }
    };
    add("FromRGBInt ", FromRGBInt, {24, 31, 32, 48, 64, 16, 40, 72});
    add("FromRGB ", FromRGB, {24, 32, 64, 0});
    for (const bool is422 : {false, true}) {
        all.push_back({"RGB32_to_planar", bytesOf<1>, bytesOf<4>,
                       [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                           return cycbcr_RGB32_to_planar(dst[0], dst[1], dst[2], src[0], g.width, g.height, g.dstPitch,
                                                         g.chromaPitch, is422 ? 1 : 0, g.srcPitch, g.matrixValue(),
                                                         g.typeValue());
                       },
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           convert(dst, src[0], g, {is422, true}, g.chromaPitch, 4);
                           return sizeOf(g, is422);
                       }});
    }
}

void addPacked(std::vector<Converter>& all) {
    const auto add = [&](const char* name, const Conversion& run, unsigned bytes, const Order& order,
                         bool flipped = false) {
        all.push_back(
            {name, bytesOf<2>, kRowBytes[bytes], run, [=](const Places& dst, const Places& src, const Geometry& g) {
                 convert(firstSamples(dst[0], order), src[0], g, {true, false}, 0, bytes);
                 if (flipped) invert(dst[0], g.dstPitch, g.height);
                 return sizeOf(g, true);
             }});
    };
    add("RGB24_to_yuy2", frame(cycbcr_RGB24_to_yuy2), 3, kYuy2);
    add("RGB32_to_yuy2", frame(cycbcr_RGB32_to_yuy2), 4, kYuy2);
    add("RGB24_to_yvyu", frame(cycbcr_RGB24_to_yvyu), 3, kYvyu);
    add("RGB32_to_yvyu", frame(cycbcr_RGB32_to_yvyu), 4, kYvyu);
    add("RGB24_to_uyvy", frame(cycbcr_RGB24_to_uyvy), 3, kUyvy);
    add("RGB32_to_uyvy", frame(cycbcr_RGB32_to_uyvy), 4, kUyvy);
    add("RGB24_to_cyuv", frame(cycbcr_RGB24_to_cyuv), 3, kUyvy, true);
    add("RGB32_to_cyuv", frame(cycbcr_RGB32_to_cyuv), 4, kUyvy, true);
    for (const unsigned bits : {24U, 32U, 48U, 64U, 56U}) {
        add(
            "RGB64_to_uyvy",
            [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                return cycbcr_RGB64_to_uyvy(dst[0], src[0], g.width, g.height, g.dstPitch, g.srcPitch, g.matrixValue(),
                                            g.typeValue(), bits);
            },
            bits / 8, kUyvy);
    }
}

// Chroma rows are half a pitch apart. The depth of 16-bit components is that of the pitch.
void addPlanar(std::vector<Converter>& all) {
    constexpr unsigned kByPitch = 8;
    const auto add = [&](const char* name, PXConvertRgbFrame* convertFrame, unsigned bytes, const Planar& layout) {
        all.push_back({name, bytesOf<2>, kRowBytes[bytes], frame(convertFrame),
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           const unsigned ofPitch = g.width == 0 ? 0 : g.srcPitch / g.width;
                           convert(layout.in(dst[0], g.dstPitch * g.height), src[0], g, {layout.is422, true},
                                   g.dstPitch / 2, bytes == kByPitch ? ofPitch : bytes);
                           return sizeOf(g, layout.is422);
                       }});
    };
    add("RGB24_to_i420", cycbcr_RGB24_to_i420, 3, kI420);
    add("RGB32_to_i420", cycbcr_RGB32_to_i420, 4, kI420);
    add("RGB24_to_yv12", cycbcr_RGB24_to_yv12, 3, kYv12);
    add("RGB32_to_yv12", cycbcr_RGB32_to_yv12, 4, kYv12);
    add("RGB24_to_p422", cycbcr_RGB24_to_p422, 3, kP422);
    add("RGB32_to_p422", cycbcr_RGB32_to_p422, 4, kP422);
    add("RGB64_to_p422", cycbcr_RGB64_to_p422, kByPitch, kP422);
}

} // namespace

std::vector<Converter> fromRgb8Converters() {
    std::vector<Converter> all;
    addGeneral(all);
    addPacked(all);
    addPlanar(all);
    return all;
}

} // namespace fikleipa::tests
