#include "tests/rgb/from_rgb.h"
#include "tests/rgb/from_rgb8_model.h"

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

// Converters of 24 and of 32 bits to a named layout: of an order, or of planes whose rows of chroma are half a pitch
// apart.
struct Named {
    const char* name;
    std::array<PXConvertRgbFrame*, 2> convert;
    Order order;
    std::optional<Planar> planes;
    bool flipped = false;
};
#define FROM_RGB(name)                                                                                                 \
#name, {                                                                                                           \
        cycbcr_RGB24_to_##name, cycbcr_RGB32_to_##name                                                                 \
    }
const Named kNamed[] = {{FROM_RGB(yuy2), kYuy2, {}},       {FROM_RGB(yvyu), kYvyu, {}}, {FROM_RGB(uyvy), kUyvy, {}},
                        {FROM_RGB(cyuv), kUyvy, {}, true}, {FROM_RGB(i420), {}, kI420}, {FROM_RGB(yv12), {}, kYv12},
                        {FROM_RGB(p422), {}, kP422}};

// bytes(g) are those of a pixel.
template <class BytesOf>
void add(std::vector<Converter>& all, const Named& named, const Conversion& run, RowBytes srcRow, BytesOf bytes) {
    all.push_back({named.name + std::to_string(all.size()), bytesOf<2>, srcRow, run,
                   [=](const Places& dst, const Places& src, const Geometry& g) {
                       const bool is422 = !named.planes || named.planes->is422;
                       const Places first = named.planes ? named.planes->in(dst[0], g.dstPitch * g.height)
                                                         : firstSamples(dst[0], named.order);
                       convert(first, src[0], g, {is422, named.planes.has_value()}, g.dstPitch / 2, bytes(g));
                       if (named.flipped) invert(dst[0], g.dstPitch, g.height);
                       return sizeOf(g, is422);
                   }});
}

void addNamed(std::vector<Converter>& all) {
    for (const Named& named : kNamed) {
        for (const unsigned bytes : {3U, 4U}) {
            add(all, named, frame(named.convert[bytes - 3]), kRowBytes[bytes], [=](auto&) { return bytes; });
        }
    }
    for (const unsigned bits : {24U, 32U, 48U, 64U, 56U}) {
        const auto run = [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
            return cycbcr_RGB64_to_uyvy(dst[0], src[0], g.width, g.height, g.dstPitch, g.srcPitch, g.matrixValue(),
                                        g.typeValue(), bits);
        };
        add(all, kNamed[2], run, kRowBytes[bits / 8], [=](auto&) { return bits / 8; });
    }
    // The depth is that of the pitch.
    add(all, kNamed[6], frame(cycbcr_RGB64_to_p422), bytesOf<8>,
        [](auto& g) { return g.width == 0 ? 0 : g.srcPitch / g.width; });
}

} // namespace

std::vector<Converter> fromRgb8Converters() {
    std::vector<Converter> all;
    addGeneral(all);
    addNamed(all);
    return all;
}

} // namespace fikleipa::tests
