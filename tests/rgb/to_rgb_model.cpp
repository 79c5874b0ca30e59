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
unsigned bytesOf(const Format& f) {
    if (f.to != To::Pixels) return f.to == To::Planes ? f.bits / 8 : 4;
    if (f.wide) return f.bits == 32 || f.bits == 64 ? 8 : f.bits == 24 || f.bits == 48 ? 6 : 0;
    return f.bits == 32 ? 4 : f.bits == 24 ? 3 : f.bits == 15 || f.bits == 16 ? 2 : 0;
}

unsigned nominalSize(const Geometry& g, const Format& f) {
    const bool counts3 = f.bits == 24 || (f.wide && f.bits == 48);
    return g.width * g.height * (f.to == To::Planes ? 1 : f.bits == 15 || f.bits == 16 ? 2 : counts3 ? 3 : 4);
}

void put(At at, unsigned value, unsigned bytes) {
    for (unsigned i = 0; i < bytes; ++i) at[i] = static_cast<std::uint8_t>(value >> 8 * i);
}

// Four components have a place for alpha before or behind the others.
void storePixel(At pixel, const Colour& c, unsigned order, const Format& f) {
    const unsigned first = order < 2 ? c.b : c.r;
    const unsigned last = order < 2 ? c.r : c.b;
    if (f.bits == 15) return put(pixel, (first >> 3) << 10 | (c.g >> 3) << 5 | last >> 3, 2);
    if (f.bits == 16) return put(pixel, (first >> 3) << 11 | (c.g >> 2) << 5 | last >> 3, 2);
    const unsigned bytes = f.wide ? 2 : 1;
    const bool four = f.bits % 32 == 0;
    const unsigned ahead = four && (order == 1 || order == 3) ? bytes : 0;
    put(pixel + ahead, first, bytes);
    put(pixel + ahead + bytes, c.g, bytes);
    put(pixel + ahead + 2 * bytes, last, bytes);
    if (four) put(pixel + (ahead == 0 ? 3 * bytes : 0), 65535, bytes);
}

void store(const Places& dst, unsigned offset, const Colour& c, const Geometry& g, const Format& f) {
    if (f.to == To::Planes) {
        put(dst[0] + offset, c.r, f.bits / 8);
        put(dst[1] + offset, c.g, f.bits / 8);
        put(dst[2] + offset, c.b, f.bits / 8);
    } else if (f.to == To::Words10) {
        storeWord(dst[0] + offset,
                  ((c.r | c.r << 14 | c.b << 28) & 0x3FFF0003) | c.b >> 2 | (c.g & 3) << 2 | (c.g << 6 & 0x3FFF00));
    } else {
        storePixel(dst[0] + offset, c, g.type & ~kBottomUp, f);
    }
}

} // namespace

Converter toRgbConverter(const std::string& name, ToRgb arithmetic, const Source& source, const Format& format,
                         Conversion convert) {
    const unsigned bytes = bytesOf(format);
    const auto model = [=](const Places& dst, const Places& src, const Geometry& g) {
        for (unsigned r = 0; r < g.height; ++r) {
            for (unsigned x = 0; bytes != 0 && x < source.pixels(g.width); ++x) {
                const Colour c = toRgb(arithmetic, g.matrix, source.at(src, g, r, x));
                store(dst, rgbRow(g, r) * g.dstPitch + x * bytes, c, g, format);
            }
        }
        return nominalSize(g, format);
    };
    return {name + ' ' + std::to_string(format.bits),
            kRowBytes[bytes],
            source.rowBytes,
            std::move(convert),
            model,
            false,
            source.sampleBits};
}

} // namespace fikleipa::tests
