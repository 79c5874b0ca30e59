#include "tests/rgb/to_rgb_model.h"

namespace fikleipa::tests {
namespace {

using Wide = std::int64_t;

// In the order of the matrices 0 to 7. Integers are exact in sums of theirs.
struct Row {
    double yo, ys, rv, gv, gu, bu;
};
using Table = std::array<Row, 8>;

constexpr Table k8{{{16, 11640, 15960, 8129, 3920, 20170},
                    {0, 10000, 13710, 6979, 3360, 17320},
                    {16, 11640, 17930, 5340, 2130, 21150},
                    {0, 10000, 15400, 4590, 1830, 18160},
                    {16, 11640, 17930, 5340, 2130, 21150},
                    {0, 10000, 15400, 4590, 1830, 18160},
                    {16, 11640, 16786, 6504, 1873, 21417},
                    {0, 10000, 14746, 5714, 1646, 18814}}};
constexpr Table k8Double{{{16, 1.164, 1.596, 0.813, 0.392, 2.017},
                          {0, 1.0, 1.371, 0.698, 0.336, 1.732},
                          {16, 1.164, 1.793, 0.534, 0.213, 2.115},
                          {0, 1.0, 1.54, 0.459, 0.183, 1.816},
                          {16, 1.164, 1.793, 0.534, 0.213, 2.115},
                          {0, 1.0, 1.54, 0.459, 0.183, 1.816},
                          {16, 1.164, 1.678675, 0.650425, 0.187324, 2.141773},
                          {0, 1.0, 1.4747, 0.5714, 0.1646, 1.8814}}};
constexpr Table k8To16{{{16, 2984379, 4091984, 2084450, 1005048, 5171386},
                        {0, 2563900, 3515106, 1789602, 861470, 4440674},
                        {16, 2984379, 4597072, 1369122, 546110, 5422648},
                        {0, 2563900, 3948406, 1176830, 469193, 4656042},
                        {16, 2979840, 4590080, 1367040, 545280, 5414400},
                        {0, 2563900, 3948406, 1176830, 469193, 4656042},
                        {16, 2984379, 4303954, 1667624, 480280, 5491291},
                        {0, 2563900, 3780983, 1465012, 422017, 4823721}}};
constexpr Table k10To8{{{64, 2910, 3990, 2032, 980, 5042},
                        {0, 2500, 3427, 1744, 840, 4330},
                        {64, 2910, 4482, 1335, 532, 5287},
                        {0, 2500, 3850, 1147, 457, 4540},
                        {64, 2910, 4482, 1335, 532, 5287},
                        {0, 2500, 3850, 1147, 457, 4540},
                        {64, 2910, 4196, 1626, 468, 5354},
                        {0, 2500, 3686, 1428, 411, 4703}}};
constexpr Table k10Double{{{64, 0.291, 0.399, 0.20325, 0.098, 0.50425},
                           {0, 0.25, 0.34275, 0.1745, 0.084, 0.433},
                           {64, 0.291, 0.44825, 0.1335, 0.05325, 0.52875},
                           {0, 0.25, 0.385, 0.11475, 0.04575, 0.454},
                           {64, 0.291, 0.44825, 0.1335, 0.05325, 0.52875},
                           {0, 0.25, 0.385, 0.11475, 0.04575, 0.454},
                           {64, 0.291, 0.41966875, 0.16260625, 0.046831, 0.53544325},
                           {0, 0.25, 0.368675, 0.14285, 0.04115, 0.47035}}};
constexpr Table kTo16{{{64, 11919, 16343, 8325, 4014, 20654},
                       {0, 10240, 14039, 7147, 3440, 17735},
                       {64, 11919, 18360, 5468, 2181, 21657},
                       {0, 10240, 15769, 4700, 1873, 18595},
                       {64, 11919, 18360, 5468, 2181, 21657},
                       {0, 10240, 15769, 4700, 1873, 18595},
                       {64, 11919, 17189, 6660, 1918, 21931},
                       {0, 10240, 15100, 5851, 1685, 19265}}};

struct Arithmetic {
    const Table& rows;
    double centre;
    Wide divisor, max;
    double added = 0;  // to the sums of R and B
    double offset = 1; // times that of the row
};

Arithmetic arithmeticOf(ToRgb arithmetic) {
    switch (arithmetic) {
    case ToRgb::From8To8:
        return {k8, 128, 10000, 255};
    case ToRgb::From8To8Double:
        return {k8Double, 128, 1, 255};
    case ToRgb::From8To16:
        return {k8To16, 128, 10000, 65535, 10000};
    case ToRgb::From10To8:
        return {k10To8, 512, 10000, 255};
    case ToRgb::From10To8By8:
        return {k8, 512, 40000, 255};
    case ToRgb::From10To8Double:
        return {k10Double, 512, 1, 255};
    case ToRgb::From12To8:
    case ToRgb::From12To16:
        return {kTo16, 2048, 640, 65535, 0, 4};
    default:
        return {kTo16, 512, 160, 65535};
    }
}

Colour toRgb(ToRgb arithmetic, unsigned matrix, const Samples& p) {
    const Arithmetic a = arithmeticOf(arithmetic);
    const Row& k = a.rows[matrix <= 7 ? matrix : 0];
    const auto limited = [&](double sum) {
        const auto value = static_cast<unsigned>(std::clamp<Wide>(static_cast<Wide>(sum) / a.divisor, 0, a.max));
        if (arithmetic == ToRgb::From10To10) return value >> 6;
        return arithmetic == ToRgb::From12To8 ? value / 255 % 256 : value;
    };
    const double y = p.y - a.offset * k.yo;
    const double u = p.cb - a.centre;
    const double v = p.cr - a.centre;
    return {limited(y * k.ys + (p.crOfRed - a.centre) * k.rv + a.added), limited(y * k.ys - v * k.gv - u * k.gu),
            limited(y * k.ys + u * k.bu + a.added)};
}

// 0 for a depth that pixels do not have.
unsigned pixelBytes(unsigned bits, bool wide) {
    if ((bits & kOneWord) != 0) return 4;
    if (wide) return bits == 32 || bits == 64 ? 8 : bits == 24 || bits == 48 ? 6 : 0;
    return bits == 32 ? 4 : bits == 24 ? 3 : bits == 15 || bits == 16 ? 2 : 0;
}

unsigned nominalSize(const Geometry& g, unsigned bits, bool wide) {
    const bool counts3 = bits == 24 || (wide && bits == 48);
    return g.width * g.height * (bits == 15 || bits == 16 ? 2 : counts3 ? 3 : 4);
}

// Four components have a place for alpha before or behind the others.
void storeComponents(At pixel, const Colour& c, unsigned order, bool four, unsigned size) {
    const auto store = [&](unsigned position, unsigned value) {
        for (unsigned i = 0; i < size; ++i) pixel[position * size + i] = static_cast<std::uint8_t>(value >> 8 * i);
    };
    const unsigned first = four && (order == 1 || order == 3) ? 1 : 0;
    store(first, order < 2 ? c.b : c.r);
    store(first + 1, c.g);
    store(first + 2, order < 2 ? c.r : c.b);
    if (four) store(first == 1 ? 0 : 3, 65535);
}

void storePixel(At pixel, const Colour& c, unsigned type, unsigned bits, bool wide) {
    const unsigned order = type & ~kBottomUp;
    const unsigned first = order < 2 ? c.b : c.r;
    const unsigned last = order < 2 ? c.r : c.b;
    if ((bits & kOneWord) != 0) {
        storeWord(pixel,
                  ((c.r | c.r << 14 | c.b << 28) & 0x3FFF0003) | c.b >> 2 | (c.g & 3) << 2 | (c.g << 6 & 0x3FFF00));
    } else if (bits < 24) {
        store16(pixel, bits == 15 ? (first >> 3) << 10 | (c.g >> 3) << 5 | last >> 3
                                  : (first >> 3) << 11 | (c.g >> 2) << 5 | last >> 3);
    } else {
        storeComponents(pixel, c, order, bits % 32 == 0, wide ? 2 : 1);
    }
}

// Calls store(offset of row and pixel, colour).
template <class Store>
void eachPixel(ToRgb arithmetic, const Source& source, const Places& src, const Geometry& g, unsigned bytes,
               Store store) {
    for (unsigned r = 0; r < g.height; ++r) {
        for (unsigned x = 0; x < source.pixels(g.width); ++x) {
            store(rgbRow(g, r) * g.dstPitch + x * bytes, toRgb(arithmetic, g.matrix, source.at(src, g, r, x)));
        }
    }
}

} // namespace

Converter toPixels(std::string name, ToRgb arithmetic, const Source& source, unsigned bitsPerPixel, bool wide,
                   Conversion convert) {
    const unsigned bytes = pixelBytes(bitsPerPixel, wide);
    return {std::move(name) + ' ' + std::to_string(bitsPerPixel),
            kRowBytes[bytes],
            source.rowBytes,
            std::move(convert),
            [=](const Places& dst, const Places& src, const Geometry& g) {
                if (bytes != 0) {
                    eachPixel(arithmetic, source, src, g, bytes, [&](unsigned offset, const Colour& c) {
                        storePixel(dst[0] + offset, c, g.type, bitsPerPixel, wide);
                    });
                }
                const bool oneWord = (bitsPerPixel & kOneWord) != 0;
                return nominalSize(g, bitsPerPixel & ~kOneWord, wide && !oneWord);
            },
            false,
            false,
            source.sampleBits};
}

Converter toPlanes(std::string name, ToRgb arithmetic, const Source& source, unsigned sampleBytes, Conversion convert) {
    return {std::move(name),
            kRowBytes[sampleBytes],
            source.rowBytes,
            std::move(convert),
            [=](const Places& dst, const Places& src, const Geometry& g) {
                eachPixel(arithmetic, source, src, g, sampleBytes, [&](unsigned offset, const Colour& c) {
                    const unsigned components[] = {c.r, c.g, c.b};
                    for (unsigned i = 0; i < 3; ++i) {
                        const At at = dst[i] + offset;
                        at[0] = static_cast<std::uint8_t>(components[i]);
                        if (sampleBytes == 2) at[1] = static_cast<std::uint8_t>(components[i] >> 8);
                    }
                });
                return g.width * g.height;
            },
            false,
            false,
            source.sampleBits};
}

} // namespace fikleipa::tests
