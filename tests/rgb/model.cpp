#include "tests/rgb/model.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

namespace fikleipa::tests {
namespace {

using Wide = std::int64_t;

struct Coefficients {
    double yo, ys, rv, gv, gu, bu;
};

// In the order of the arithmetics; rows in the order of the matrices 0 to 7.
constexpr Coefficients kRows[3][8] = {
    {{16, 11640, 15960, 8129, 3920, 20170},
     {0, 10000, 13710, 6979, 3360, 17320},
     {16, 11640, 17930, 5340, 2130, 21150},
     {0, 10000, 15400, 4590, 1830, 18160},
     {16, 11640, 17930, 5340, 2130, 21150},
     {0, 10000, 15400, 4590, 1830, 18160},
     {16, 11640, 16786, 6504, 1873, 21417},
     {0, 10000, 14746, 5714, 1646, 18814}},
    {{16.0, 1.164, 1.596, 0.813, 0.392, 2.017},
     {0.0, 1.0, 1.371, 0.698, 0.336, 1.732},
     {16.0, 1.164, 1.793, 0.534, 0.213, 2.115},
     {0.0, 1.0, 1.54, 0.459, 0.183, 1.816},
     {16.0, 1.164, 1.793, 0.534, 0.213, 2.115},
     {0.0, 1.0, 1.54, 0.459, 0.183, 1.816},
     {16.0, 1.164, 1.678675, 0.650425, 0.187324, 2.141773},
     {0.0, 1.0, 1.4747, 0.5714, 0.1646, 1.8814}},
    {{16, 2984379, 4091984, 2084450, 1005048, 5171386},
     {0, 2563900, 3515106, 1789602, 861470, 4440674},
     {16, 2984379, 4597072, 1369122, 546110, 5422648},
     {0, 2563900, 3948406, 1176830, 469193, 4656042},
     {16, 2979840, 4590080, 1367040, 545280, 5414400},
     {0, 2563900, 3948406, 1176830, 469193, 4656042},
     {16, 2984379, 4303954, 1667624, 480280, 5491291},
     {0, 2563900, 3780983, 1465012, 422017, 4823721}},
};

unsigned limited(Wide value, Wide max) {
    return static_cast<unsigned>(std::clamp<Wide>(value, 0, max));
}

Wide whole(double coefficient) {
    return std::llround(coefficient);
}

struct Position {
    unsigned r, g, b, a;
};

// Of the components in a pixel of four, by order code; in one of three the first two columns have no alpha before them.
Position positionOf(unsigned order, bool four) {
    if (!four) return order < 2 ? Position{2, 1, 0, 0} : Position{0, 1, 2, 0};
    switch (order) {
    case 0:
        return {2, 1, 0, 3};
    case 1:
        return {3, 2, 1, 0};
    case 3:
        return {1, 2, 3, 0};
    default:
        return {0, 1, 2, 3};
    }
}

// Pixels of whole components of `size` bytes each.
void storeComponents(unsigned char* dst, const Colour& c, unsigned order, bool four, unsigned size) {
    const Position at = positionOf(order, four);
    const auto store = [&](unsigned position, unsigned value) {
        for (unsigned i = 0; i < size; ++i) dst[position * size + i] = static_cast<unsigned char>(value >> 8 * i);
    };
    store(at.r, c.r);
    store(at.g, c.g);
    store(at.b, c.b);
    if (four) store(at.a, size == 1 ? 255 : 65535);
}

void storeWord(unsigned char* dst, const Colour& c, unsigned order, unsigned bitsPerPixel) {
    const unsigned first = order < 2 ? c.b : c.r;
    const unsigned last = order < 2 ? c.r : c.b;
    const unsigned word = bitsPerPixel == 15 ? (first >> 3) << 10 | (c.g >> 3) << 5 | last >> 3
                                             : (first >> 3) << 11 | (c.g >> 2) << 5 | last >> 3;
    dst[0] = static_cast<unsigned char>(word);
    dst[1] = static_cast<unsigned char>(word >> 8);
}

unsigned pairs(const Model& m) {
    return (m.width + 1) / 2;
}

struct Samples {
    std::size_t y, cb, cr;
};

Samples samplesAt(const Model& m, unsigned r, unsigned x) {
    const std::size_t k = x / 2;
    if (!m.planar) {
        const std::size_t chroma = 4 * (std::size_t{r} * pairs(m) + k);
        return {m.y + std::size_t{r} * 2 * m.width + 2 * std::size_t{x}, m.cb + chroma, m.cr + chroma};
    }
    const std::size_t row = m.fullChromaRows ? r : r / 2;
    const std::size_t luma = m.y + std::size_t{r} * m.width + x;
    if (m.biPlanar) return {luma, m.cb + row * m.width + 2 * k, m.cb + row * m.width + 2 * k + 1};
    return {luma, m.cb + row * m.width / 2 + k, m.cr + row * m.width / 2 + k};
}

} // namespace

Colour convert(Arithmetic arithmetic, unsigned matrix, int y, int cb, int cr) {
    const Coefficients& k = kRows[static_cast<unsigned>(arithmetic)][matrix <= 7 ? matrix : 0];
    const int u = cb - 128;
    const int v = cr - 128;
    if (arithmetic == Arithmetic::Double) {
        return {limited(static_cast<Wide>(k.ys * (y - k.yo) + k.rv * v), 255),
                limited(static_cast<Wide>(k.ys * (y - k.yo) - k.gv * v - k.gu * u), 255),
                limited(static_cast<Wide>(k.ys * (y - k.yo) + k.bu * u), 255)};
    }
    const Wide extra = arithmetic == Arithmetic::Integer16 ? 10000 : 0;
    const Wide max = arithmetic == Arithmetic::Integer16 ? 65535 : 255;
    const Wide luma = (y - whole(k.yo)) * whole(k.ys);
    return {limited((luma + v * whole(k.rv) + extra) / 10000, max),
            limited((luma - v * whole(k.gv) - u * whole(k.gu)) / 10000, max),
            limited((luma + u * whole(k.bu) + extra) / 10000, max)};
}

unsigned pixelBytes(unsigned bitsPerPixel, bool wide) {
    if (wide) return bitsPerPixel == 32 || bitsPerPixel == 64 ? 8 : 6;
    return (bitsPerPixel + 1) / 8;
}

void storePixel(unsigned char* pixel, const Colour& colour, unsigned rgbType, unsigned bitsPerPixel, bool wide) {
    const unsigned order = rgbType & ~0x8000U;
    if (bitsPerPixel < 24) {
        storeWord(pixel, colour, order, bitsPerPixel);
    } else {
        storeComponents(pixel, colour, order, bitsPerPixel % 32 == 0, wide ? 2 : 1);
    }
}

unsigned nominalSize(unsigned width, unsigned height, unsigned bitsPerPixel, bool wide) {
    const bool counts3 = bitsPerPixel == 24 || (wide && bitsPerPixel == 48);
    return width * height * (bitsPerPixel == 15 || bitsPerPixel == 16 ? 2 : counts3 ? 3 : 4);
}

Bytes sourceFor(const Model& m) {
    std::size_t bytes = 1;
    for (unsigned r = 0; m.width != 0 && r < m.height; ++r) {
        const Samples last = samplesAt(m, r, 2 * pairs(m) - 1);
        bytes = std::max({bytes, last.y + 1, last.cb + 1, last.cr + 1});
    }
    std::minstd_rand random(m.width * 131 + m.height);
    Bytes src(bytes);
    for (unsigned char& byte : src) byte = static_cast<unsigned char>(random() >> 8);
    return src;
}

Colour pixelAt(const Model& m, Arithmetic arithmetic, const Bytes& src, unsigned r, unsigned x) {
    const Samples at = samplesAt(m, r, x);
    return convert(arithmetic, m.matrix, src.at(at.y), src.at(at.cb), src.at(at.cr));
}

unsigned toRgb(const Model& m, Arithmetic arithmetic, const Bytes& src, Bytes& dst, unsigned dstPitch,
               unsigned bitsPerPixel) {
    const bool wide = arithmetic == Arithmetic::Integer16;
    const unsigned size = pixelBytes(bitsPerPixel, wide);
    for (unsigned r = 0; r < m.height; ++r) {
        const unsigned row = (m.rgbType & 0x8000) != 0 ? m.height - 1 - r : r;
        for (unsigned x = 0; m.width != 0 && x < 2 * pairs(m); ++x) {
            unsigned char* const pixel = dst.data() + std::size_t{row} * dstPitch + std::size_t{x} * size;
            storePixel(pixel, pixelAt(m, arithmetic, src, r, x), m.rgbType, bitsPerPixel, wide);
        }
    }
    return nominalSize(m.width, m.height, bitsPerPixel, wide);
}

} // namespace fikleipa::tests
