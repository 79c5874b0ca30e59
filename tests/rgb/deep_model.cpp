#include "tests/rgb/deep_model.h"

#include "tests/v210/model.h"

#include <algorithm>
#include <array>

namespace fikleipa::tests {
namespace {

using Wide = std::int64_t;

template <class Number>
struct Row {
    Number yo, ys, rv, gv, gu, bu;
};
template <class Number>
using Table = std::array<Row<Number>, 8>;

constexpr Table<Wide> kTo8{{{64, 2910, 3990, 2032, 980, 5042},
                            {0, 2500, 3427, 1744, 840, 4330},
                            {64, 2910, 4482, 1335, 532, 5287},
                            {0, 2500, 3850, 1147, 457, 4540},
                            {64, 2910, 4482, 1335, 532, 5287},
                            {0, 2500, 3850, 1147, 457, 4540},
                            {64, 2910, 4196, 1626, 468, 5354},
                            {0, 2500, 3686, 1428, 411, 4703}}};
constexpr Table<Wide> kBy8{{{16, 11640, 15960, 8129, 3920, 20170},
                            {0, 10000, 13710, 6979, 3360, 17320},
                            {16, 11640, 17930, 5340, 2130, 21150},
                            {0, 10000, 15400, 4590, 1830, 18160},
                            {16, 11640, 17930, 5340, 2130, 21150},
                            {0, 10000, 15400, 4590, 1830, 18160},
                            {16, 11640, 16786, 6504, 1873, 21417},
                            {0, 10000, 14746, 5714, 1646, 18814}}};
constexpr Table<Wide> kTo16{{{64, 11919, 16343, 8325, 4014, 20654},
                             {0, 10240, 14039, 7147, 3440, 17735},
                             {64, 11919, 18360, 5468, 2181, 21657},
                             {0, 10240, 15769, 4700, 1873, 18595},
                             {64, 11919, 18360, 5468, 2181, 21657},
                             {0, 10240, 15769, 4700, 1873, 18595},
                             {64, 11919, 17189, 6660, 1918, 21931},
                             {0, 10240, 15100, 5851, 1685, 19265}}};
constexpr Table<double> kDouble{{{64.0, 0.291, 0.399, 0.20325, 0.098, 0.50425},
                                 {0.0, 0.25, 0.34275, 0.1745, 0.084, 0.433},
                                 {64.0, 0.291, 0.44825, 0.1335, 0.05325, 0.52875},
                                 {0.0, 0.25, 0.385, 0.11475, 0.04575, 0.454},
                                 {64.0, 0.291, 0.44825, 0.1335, 0.05325, 0.52875},
                                 {0.0, 0.25, 0.385, 0.11475, 0.04575, 0.454},
                                 {64.0, 0.291, 0.41966875, 0.16260625, 0.046831, 0.53544325},
                                 {0.0, 0.25, 0.368675, 0.14285, 0.04115, 0.47035}}};

template <class Number>
Colour convert(Row<Number> k, Wide centre, Wide divisor, Wide max, const Yuv& p) {
    const auto limited = [=](Number sum) {
        return static_cast<unsigned>(std::clamp<Wide>(static_cast<Wide>(sum) / divisor, 0, max));
    };
    const Number y = static_cast<Number>(p.y) - k.yo;
    const auto u = static_cast<Number>(p.cb - centre);
    const auto v = static_cast<Number>(p.cr - centre);
    const auto vOfRed = static_cast<Number>(p.crOfRed - centre);
    return {limited(y * k.ys + vOfRed * k.rv), limited(y * k.ys - v * k.gv - u * k.gu), limited(y * k.ys + u * k.bu)};
}

// The offset of 12 bits stands in a column of its own.
Row<Wide> rowOf12(Row<Wide> row) {
    row.yo = row.yo == 64 ? 256 : 0;
    return row;
}

std::size_t samplesAcross(unsigned width) {
    return std::size_t{width} + width % 2;
}

unsigned chromaOffset(const DeepModel& m, unsigned r, unsigned pair) {
    if (!m.planar) return r * m.lumaPitch + 8 * pair;
    return (m.fullChromaRows ? r : r / 2) * m.chromaPitch + 2 * pair;
}

} // namespace

Colour convert(Deep arithmetic, unsigned matrix, const Yuv& p) {
    const unsigned row = matrix <= 7 ? matrix : 0;
    switch (arithmetic) {
    case Deep::From10To8:
        return convert(kTo8[row], 512, 10000, 255, p);
    case Deep::From10To8By8:
        return convert(kBy8[row], 512, 40000, 255, p);
    case Deep::From10To8Double:
        return convert(kDouble[row], 512, 1, 255, p);
    case Deep::From10To16:
        return convert(kTo16[row], 512, 160, 65535, p);
    case Deep::From12To16:
        return convert(rowOf12(kTo16[row]), 2048, 640, 65535, p);
    case Deep::From16To8:
        return convert(kBy8[row], 128, 10000, 255, p);
    case Deep::From10To10: {
        const Colour c = convert(Deep::From10To16, matrix, p);
        return {c.r >> 6, c.g >> 6, c.b >> 6};
    }
    case Deep::From12To8: {
        const Colour c = convert(Deep::From12To16, matrix, p);
        return {c.r / 255 % 256, c.g / 255 % 256, c.b / 255 % 256};
    }
    }
    return {};
}

DeepModel deepModel(unsigned width, unsigned height, bool planar, bool fullChromaRows) {
    if (!planar) return {width, height, 3, 1, 5, 4 * (width + width % 2) + 6, 77, false, fullChromaRows};
    const unsigned lumaPitch = 2 * width + 4;
    const unsigned chromaPitch = width + width % 2 + 2;
    const unsigned cb = 1 + lumaPitch * height;
    return {width, height, 1, cb, cb + chromaPitch * height, lumaPitch, chromaPitch, true, fullChromaRows};
}

Bytes sourceFor(const DeepModel& m, unsigned bits) {
    std::size_t bytes = 1;
    if (m.width != 0 && m.height != 0) {
        const unsigned r = m.height - 1;
        const unsigned chroma = chromaOffset(m, r, (m.width - 1) / 2) + 2;
        const unsigned luma = r * m.lumaPitch + (m.planar ? 2 : 4) * (m.width - 1) + 2;
        bytes = std::max({m.y + luma, m.cb + chroma, m.cr + chroma});
    }
    Bytes src = noise(bytes, m.width * 131 + m.height);
    // Every sample's high byte has an even address.
    for (std::size_t i = 2; i < bytes; i += 2) src[i] = static_cast<unsigned char>(src[i] & ((1U << (bits - 8)) - 1));
    return src;
}

Yuv yuvAt(const DeepModel& m, const Bytes& src, unsigned r, unsigned x) {
    const auto at = [&](unsigned offset) { return src.at(offset) + 256U * src.at(offset + 1); };
    const unsigned pair = x / 2;
    const unsigned lastPair = static_cast<unsigned>(samplesAcross(m.width) / 2) - 1;
    const unsigned next = x % 2 == 1 && m.fullChromaRows ? std::min(pair + 1, lastPair) : pair;
    const unsigned here = chromaOffset(m, r, pair);
    const unsigned there = chromaOffset(m, r, next);
    const unsigned cr = (at(m.cr + here) + at(m.cr + there)) / 2;
    return {at(m.y + r * m.lumaPitch + (m.planar ? 2 : 4) * x), (at(m.cb + here) + at(m.cb + there)) / 2, cr, cr};
}

Yuv yuvAtV210(const unsigned char* row, unsigned x) {
    const unsigned pair = x / 2;
    const unsigned next = pair + x % 2;
    const unsigned own = component(row, crOf(pair));
    return {component(row, lumaOf(x)), (component(row, cbOf(pair)) + component(row, cbOf(next))) / 2,
            (own + component(row, crOf(next))) / 2, own};
}

} // namespace fikleipa::tests
