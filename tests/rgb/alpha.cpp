#include "tests/rgb/models.h"

namespace fikleipa::tests {
namespace {

constexpr unsigned kPixel = 4;

// Studio levels of 8 and of 10 bits. From 875 to 876 it jumps.
unsigned expanded8(unsigned a) {
    return a <= 16 ? 0 : a >= 235 ? 255 : (a - 16) * 255 / 219;
}
unsigned expanded10(unsigned a) {
    return a <= 64 ? 0 : a > 875 ? 255 : (a * 255 - 16320) / 876;
}

unsigned mergeBytes(const Places& dst, const Places& src, const Geometry& g) {
    for (unsigned r = 0; r < g.height; ++r) {
        for (unsigned x = 0; x < g.width; ++x) {
            const unsigned a = src[0][r * g.width + x];
            dst[0][rgbRow(g, r) * g.dstPitch + x * kPixel + 3] =
                static_cast<std::uint8_t>(g.matrix % 2 != 0 ? expanded8(a) : a);
        }
    }
    return g.width * g.height;
}

// Three samples to a word, of which the bytes are read that hold them. Rows begin wherever words are by then.
unsigned merge10Bits(const Places& dst, const Places& src, const Geometry& g) {
    for (unsigned r = 0; r < g.height; ++r) {
        for (unsigned x = 0; x < g.width; ++x) {
            const unsigned bit = x / 3 * 32 + x % 3 * 10;
            const unsigned a = load16(src[0] + (g.width * 4 * r / 3 + bit / 8)) >> bit % 8 & 0x3FF;
            dst[0][rgbRow(g, r) * g.dstPitch + x * kPixel + 3] =
                static_cast<std::uint8_t>(g.matrix % 2 != 0 ? expanded10(a) : a >> 2);
        }
    }
    return g.width * 4 * g.height / 3;
}

unsigned alphaOf(const Places& src, const Geometry& g, unsigned r, unsigned x) {
    return src[0][rgbRow(g, r) * g.srcPitch + x * kPixel + 3];
}

// Of the flags the lowest bit counts.
unsigned flagsOf(const Geometry& g) {
    constexpr unsigned kFlags[] = {0, 1, 2, 0xFFFFFFFF};
    return kFlags[g.variant % 4];
}

unsigned splitBytes(const Places& dst, const Places& src, const Geometry& g) {
    for (unsigned r = 0; r < g.height; ++r) {
        for (unsigned x = 0; x < g.width; ++x) {
            const std::uint64_t a = alphaOf(src, g, r, x);
            dst[0][r * g.width + x] = static_cast<std::uint8_t>(flagsOf(g) % 2 != 0 ? a * 7204443 / 8388608 + 16 : a);
        }
    }
    return g.width * g.height;
}

unsigned splitTo10Bits(const Places& dst, const Places& src, const Geometry& g) {
    for (unsigned r = 0; r < g.height; ++r) {
        for (unsigned i = 0; i < roundUp(g.width, 3); ++i) {
            const unsigned a = i < g.width ? alphaOf(src, g, r, i) : 0;
            const unsigned sample = i >= g.width ? 0 : flagsOf(g) % 2 != 0 ? a * 876 / 255 + 64 : a * 4;
            storeComponent(dst[0] + r * g.width * 4 / 3, i, sample);
        }
    }
    return g.width * 4 * g.height / 3;
}

} // namespace

std::vector<Converter> alphaConverters() {
    const auto merge = [](PXConvertRgbFrame* convert) {
        return [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
            return convert(dst[0], src[0], g.width, g.height, g.dstPitch, 99, g.matrixValue(), g.typeValue());
        };
    };
    const auto split = [](auto* convert) {
        return [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
            return convert(dst[0], src[0], g.width, g.height, 99, g.srcPitch, flagsOf(g), g.typeValue());
        };
    };
    return {{"uyvy_to_rgb32_Alpha", bytesOf<4>, bytesOf<1>, merge(cycbcr_uyvy_to_rgb32_Alpha), mergeBytes},
            {"012v_to_rgb32_Alpha", bytesOf<4>, bytesOf<2>, merge(cycbcr_012v_to_rgb32_Alpha), merge10Bits},
            {"RGB32_to_uyvy_Alpha", bytesOf<1>, bytesOf<4>, split(cycbcr_RGB32_to_uyvy_Alpha), splitBytes},
            {"RGB32_to_012v_Alpha", bytesOf<1>, bytesOf<4>, split(cycbcr_RGB32_to_012v_Alpha), splitTo10Bits}};
}

} // namespace fikleipa::tests
