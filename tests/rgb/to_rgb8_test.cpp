#include "tests/guarded_bytes.h"
#include "tests/rgb/model.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using namespace fikleipa::tests;

constexpr unsigned kGuard = 40; // bytes behind the last row that must stay as they are

PXYCBCRMatrix matrixOf(const Model& m) {
    return static_cast<PXYCBCRMatrix>(m.matrix);
}
PXYCBCRRgbType typeOf(const Model& m) {
    return static_cast<PXYCBCRRgbType>(m.rgbType);
}

std::string describe(const Model& m, unsigned bits) {
    return std::to_string(m.width) + "x" + std::to_string(m.height) + ", matrix " + std::to_string(m.matrix) +
           ", type " + std::to_string(m.rgbType) + ", " + std::to_string(bits) + " bits, " +
           (m.planar ? m.biPlanar ? "biplanar" : "planar" : "packed") + (m.fullChromaRows ? ", full rows" : "");
}

// Every arrangement of samples: the three packed ones, one that no layout has, and planes.
std::vector<Model> arrangements(unsigned width, unsigned height) {
    const unsigned area = width * height + 3; // the planes need not be adjacent
    std::vector<Model> all;
    for (const bool full : {false, true}) {
        all.push_back({width, height, 0, 1, 3, false, full, false, 0, 0});
        all.push_back({width, height, 0, 3, 1, false, full, false, 0, 0});
        all.push_back({width, height, 1, 0, 2, false, full, false, 0, 0});
        all.push_back({width, height, 2, 5, 0, false, full, false, 0, 0});
        all.push_back({width, height, 0, area, 2 * area, true, full, false, 0, 0});
        all.push_back({width, height, 0, area, area + 1, true, full, true, 0, 0});
    }
    return all;
}

constexpr std::pair<unsigned, unsigned> kSizes[] = {{0, 3}, {3, 0},  {1, 1},  {1, 3},   {2, 2},  {3, 4},
                                                    {7, 5}, {64, 3}, {65, 3}, {130, 2}, {131, 4}};

struct General {
    const char* name;
    PXToRgb* convert;
    Arithmetic arithmetic;
    std::vector<unsigned> depths;
    bool biPlanar;
};

const General kGenerals[] = {
    {"cycbcr_ToRGBInt", cycbcr_ToRGBInt, Arithmetic::Integer, {15, 16, 24, 32}, false},
    {"cycbcr_ToRGB", cycbcr_ToRGB, Arithmetic::Integer, {16, 32}, false},
    {"cycbcr_ToRGBFloat", cycbcr_ToRGBFloat, Arithmetic::Double, {15, 16, 24, 32}, false},
    {"cycbcr_ToRGBInt16", cycbcr_ToRGBInt16, Arithmetic::Integer16, {24, 48, 32, 64}, false},
    {"cycbcrBi_ToRGBInt", cycbcrBi_ToRGBInt, Arithmetic::Integer, {15, 16, 24, 32}, true},
};

void expectModel(const General& general, const Model& m, unsigned bits, unsigned dstPitch) {
    Bytes src = sourceFor(m);
    Bytes expected(std::size_t{dstPitch} * m.height + kGuard, 0x55);
    Bytes got = expected;
    unsigned char* const s = src.data();
    EXPECT_EQ(general.convert(got.data(), s + m.y, s + m.cb, m.biPlanar ? nullptr : s + m.cr, m.width, m.height,
                              dstPitch, 77, matrixOf(m), typeOf(m), m.fullChromaRows ? 2 : 0, m.planar ? 4 : 0, bits,
                              99),
              toRgb(m, general.arithmetic, src, expected, dstPitch, bits))
        << describe(m, bits);
    ASSERT_EQ(got, expected) << general.name << ", " << describe(m, bits);
}

TEST(ToRgb8, GeneralConvertersFollowTheEquations) {
    for (const General& general : kGenerals) {
        for (const auto& [width, height] : kSizes) {
            unsigned turn = 0;
            for (Model m : arrangements(width, height)) {
                if (m.biPlanar && !general.biPlanar) continue;
                if (m.planar && general.biPlanar && !m.biPlanar) continue;
                for (const unsigned bits : general.depths) {
                    for (const unsigned type : {0U, 1U, 2U, 3U, 5U, 0x8000U, 0x8003U, 0x10000U}) {
                        m.rgbType = type;
                        m.matrix = turn++ % 12;
                        expectModel(general, m, bits, (m.width + 1) * 8 + 6);
                    }
                }
            }
        }
    }
}

// They go past the cache, in more ways than one.
TEST(ToRgb8, LargeFramesFollowTheEquations) {
    for (const General& general : kGenerals) {
        for (const unsigned pitch : {8 * 1402U, 8 * 1402U + 6}) {
            unsigned turn = 0;
            for (Model m : arrangements(1402, 200)) {
                if (m.biPlanar != general.biPlanar || (general.biPlanar && !m.planar)) continue;
                m.matrix = turn % 8;
                m.rgbType = turn++ % 4;
                for (const unsigned bits : {24U, 32U}) {
                    expectModel(general, m, bits, pitch);
                    m.rgbType ^= 0x8000;
                }
            }
        }
    }
}

TEST(ToRgb8, UnknownDepthsWriteNothing) {
    Bytes src(64);
    for (const unsigned bits : {0U, 8U, 23U, 33U, 48U, 64U}) {
        Bytes dst(64, 0x55);
        EXPECT_EQ(cycbcr_ToRGBInt(dst.data(), src.data(), src.data() + 1, src.data() + 3, 2, 2, 8, 0, PX_MATRIX_BT601,
                                  PX_RGB_BGRA, 1, 0, bits, 0),
                  16U);
        EXPECT_EQ(dst, Bytes(64, 0x55)) << bits;
    }
    for (const unsigned bits : {15U, 16U, 8U}) {
        Bytes dst(64, 0x55);
        cycbcr_ToRGBInt16(dst.data(), src.data(), src.data() + 1, src.data() + 3, 2, 2, 8, 0, PX_MATRIX_BT601,
                          PX_RGB_BGRA, 1, 0, bits, 0);
        EXPECT_EQ(dst, Bytes(64, 0x55)) << bits;
    }
}

TEST(ToRgb8, PlanesHoldTheSameColours) {
    struct Planes {
        PXToRgbPlanes* convert;
        Arithmetic arithmetic;
        unsigned size;
    };
    constexpr Planes kPlanes[] = {{cycbcr_ToRGBPlanarInt, Arithmetic::Integer, 1},
                                  {cycbcr_ToRGBPlanar, Arithmetic::Integer, 1},
                                  {cycbcr_ToRGBPlanarFloat, Arithmetic::Double, 1},
                                  {cycbcr_ToRGBPlanarInt16, Arithmetic::Integer16, 2}};
    for (const Planes& planes : kPlanes) {
        for (const auto& [width, height] : kSizes) {
            for (Model m : arrangements(width, height)) {
                if (m.biPlanar) continue;
                m.matrix = width % 8;
                m.rgbType = height % 2 == 0 ? 0x8002 : 1;
                Bytes src = sourceFor(m);
                const unsigned pitch = (width + 1) * planes.size + 5;
                const std::size_t plane = std::size_t{pitch} * height + kGuard;
                Bytes got(3 * plane, 0x55);
                Bytes expected = got;
                for (unsigned r = 0; r < height; ++r) {
                    const unsigned row = (m.rgbType & 0x8000) != 0 ? height - 1 - r : r;
                    for (unsigned x = 0; width != 0 && x < (width + 1) / 2 * 2; ++x) {
                        const Colour c = pixelAt(m, planes.arithmetic, src, r, x);
                        const std::size_t at = std::size_t{row} * pitch + std::size_t{x} * planes.size;
                        const unsigned components[3] = {c.r, c.g, c.b};
                        for (unsigned i = 0; i < 3; ++i) {
                            std::memcpy(expected.data() + i * plane + at, &components[i], planes.size);
                        }
                    }
                }
                unsigned char* const s = src.data();
                EXPECT_EQ(planes.convert(got.data(), got.data() + plane, got.data() + 2 * plane, s + m.y, s + m.cb,
                                         s + m.cr, width, height, pitch, 7, matrixOf(m), typeOf(m),
                                         m.fullChromaRows ? 1 : 0, m.planar ? 1 : 0, 9),
                          width * height);
                ASSERT_EQ(got, expected) << describe(m, planes.size);
            }
        }
    }
}

struct Named {
    const char* name;
    PXConvertRgbFrame* convert[4]; // 15, 16, 24 and 32 bits
    Model (*model)(unsigned width, unsigned height);
    bool flipped;
};

#define NAMED(layout, flipped, ...)                                                                                    \
    Named {                                                                                                            \
#layout, {cycbcr_##layout##_to_rgb555, cycbcr_##layout##_to_rgb565, cycbcr_##layout##_to_rgb24,                \
                  cycbcr_##layout##_to_rgb32 },                                                                        \
                  [](unsigned w, unsigned h) { return Model{w, h, __VA_ARGS__, false, 0, 0}; }, flipped                \
    }
const Named kNamed[] = {
    NAMED(yuy2, false, 0, 1, 3, false, true),
    NAMED(yvyu, false, 0, 3, 1, false, true),
    NAMED(uyvy, false, 1, 0, 2, false, true),
    NAMED(cyuv, true, 1, 0, 2, false, true),
    NAMED(i420, false, 0, w* h, w* h + w * h / 4, true, false),
    NAMED(yv12, false, 0, w* h + w * h / 4, w* h, true, false),
    NAMED(p422, false, 0, w* h, w* h + w * h / 2, true, true),
};

TEST(ToRgb8, NamedConvertersPlaceTheSamplesOfTheirLayout) {
    constexpr unsigned kDepths[] = {15, 16, 24, 32};
    for (const Named& named : kNamed) {
        for (const auto& [width, height] : kSizes) {
            Model m = named.model(width, height);
            for (unsigned i = 0; i < 4; ++i) {
                // Pitches with padding, which a flip turns over too, and one so small that rows overlap.
                for (const unsigned dstPitch : {(width + 1) * 4 + 9, width * 4 + width % 2 * 4, width}) {
                    for (const unsigned type : {1U, 0x8002U}) {
                        m.rgbType = type;
                        m.matrix = (width + i) % 8;
                        Bytes src = sourceFor(m);
                        Bytes expected(std::size_t{dstPitch} * height + (width + 1) * 4 + kGuard);
                        for (std::size_t n = 0; n < expected.size(); ++n) {
                            expected[n] = static_cast<unsigned char>(n * 7);
                        }
                        Bytes got = expected;
                        const unsigned size = toRgb(m, Arithmetic::Integer, src, expected, dstPitch, kDepths[i]);
                        if (named.flipped) cycbcr_invert(expected.data(), dstPitch, height);
                        EXPECT_EQ(named.convert[i](got.data(), src.data(), width, height, dstPitch, 3, matrixOf(m),
                                                   typeOf(m)),
                                  size);
                        ASSERT_EQ(got, expected)
                            << named.name << ", " << describe(m, kDepths[i]) << ", pitch " << dstPitch;
                    }
                }
            }
        }
    }
}

TEST(ToRgb8, Nv12) {
    for (const auto& [width, height] : kSizes) {
        const unsigned area = width * height;
        const Model m{width, height, 0, area, area + 1, true, false, true, 6, 0x8001};
        Bytes src = sourceFor(m);
        Bytes expected(std::size_t{width + 1} * 4 * height + kGuard, 0x55);
        Bytes got = expected;
        EXPECT_EQ(
            cycbcr_nv12_to_rgb32(got.data(), src.data(), width, height, (width + 1) * 4, 0, matrixOf(m), typeOf(m)),
            toRgb(m, Arithmetic::Integer, src, expected, (width + 1) * 4, 32));
        EXPECT_EQ(got, expected);
    }
}

// Frames of every layout that end, and that begin, where memory does. Odd widths read to the end of the last pair.
TEST(ToRgb8, NothingBeyondTheFrameIsTouched) {
    GuardedBytes srcMemory(1 << 14);
    GuardedBytes dstMemory(1 << 15);
    for (const Named& named : kNamed) {
        for (unsigned width = 1; width <= 200; width += 1 + width / 70) {
            for (const unsigned height : {1U, 5U}) {
                const Model m = named.model(width, height);
                const Bytes src = sourceFor(m);
                for (unsigned i = 0; i < 4; ++i) {
                    const unsigned bytes = i < 2 ? 2 : i + 1;
                    const unsigned pitch = (width + 1) / 2 * 2 * bytes;
                    std::uint8_t* const srcEnd = srcMemory.end() - src.size();
                    std::copy(src.begin(), src.end(), srcEnd);
                    named.convert[i](dstMemory.end() - std::size_t{pitch} * height, srcEnd, width, height, pitch, 0,
                                     PX_MATRIX_BT601, PX_RGB_BGRA);
                    std::copy(src.begin(), src.end(), srcMemory.begin());
                    named.convert[i](dstMemory.begin(), srcMemory.begin(), width, height, pitch, 0, PX_MATRIX_BT601,
                                     PX_RGB_BOTTOM_UP);
                }
            }
        }
    }
}

// Frames too large for the cache take a way of their own when their rows run upwards.
TEST(ToRgb8, BottomUpTurnsLargeFramesOver) {
    constexpr unsigned kWidth = 1021;
    constexpr unsigned kHeight = 1100;
    for (const Named& named : kNamed) {
        Model m = named.model(kWidth, kHeight);
        m.matrix = 2;
        Bytes src = sourceFor(m);
        for (unsigned i = 0; i < 4; ++i) {
            const unsigned rowBytes = (kWidth + 1) * (i < 2 ? 2 : i + 1);
            const unsigned pitch = rowBytes + 5;
            Bytes down(std::size_t{pitch} * kHeight + 1, 0x55);
            Bytes up = down;
            const auto convert = [&](Bytes& dst, PXYCBCRRgbType type) {
                named.convert[i](dst.data() + 1, src.data(), kWidth, kHeight, pitch, 0, matrixOf(m), type);
            };
            convert(down, PX_RGB_BGRA);
            convert(up, PX_RGB_BOTTOM_UP);
            cycbcr_invert(up.data() + 1, pitch, kHeight);
            ASSERT_EQ(up, down) << named.name << " to RGB of " << rowBytes / (kWidth + 1) << " bytes";
        }
    }
}

TEST(ToRgb8, KnownColours) {
    const auto convertGrey = [](PXToRgb* convert, unsigned char y, unsigned bits, unsigned components) {
        Bytes src{y, 128, y, 128};
        std::vector<unsigned short> dst(8);
        convert(reinterpret_cast<unsigned char*>(dst.data()), src.data(), src.data() + 1, src.data() + 3, 2, 1, 16, 0,
                PX_MATRIX_BT601, PX_RGB_BGRA, 1, 0, bits, 0);
        Bytes bytes(components);
        std::memcpy(bytes.data(), dst.data(), components);
        return bytes;
    };
    EXPECT_EQ(convertGrey(cycbcr_ToRGBInt, 235, 32, 4), (Bytes{254, 254, 254, 255}));
    EXPECT_EQ(convertGrey(cycbcr_ToRGBFloat, 235, 32, 4), (Bytes{254, 254, 254, 255}));
    EXPECT_EQ(convertGrey(cycbcr_ToRGBInt, 16, 24, 3), (Bytes{0, 0, 0}));
    EXPECT_EQ(convertGrey(cycbcr_ToRGBInt, 255, 24, 3), (Bytes{255, 255, 255}));
    EXPECT_EQ(convertGrey(cycbcr_ToRGBInt16, 16, 64, 8), (Bytes{1, 0, 0, 0, 1, 0, 255, 255}));
}

} // namespace
