#include "tests/rgb/from_rgb8_model.h"

#include "fikleipa.h"
#include "tests/guarded_bytes.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>

namespace {

using namespace fikleipa::tests;
using Bytes = std::vector<unsigned char>;

constexpr unsigned kGuard = 40; // bytes behind the last row that must stay as they are

Bytes noise(std::size_t bytes) {
    std::minstd_rand random(7);
    Bytes data(bytes);
    for (unsigned char& byte : data) byte = static_cast<unsigned char>(random() >> 8);
    return data;
}

// A conversion by the offsets of its first samples.
struct Model {
    unsigned luma, cb, cr;
    unsigned width, height, dstPitch, srcPitch;
    unsigned matrix, rgbType;
    bool chroma422, planar;
    unsigned bits;
    unsigned chromaPitch;

    PXYCBCRMatrix matrixValue() const { return static_cast<PXYCBCRMatrix>(matrix); }
    PXYCBCRRgbType typeValue() const { return static_cast<PXYCBCRRgbType>(rgbType); }

    unsigned size() const { return chroma422 ? width * height * 2 : width * height + ((width * height / 2) & ~1U); }

    // The bytes that the last sample of either buffer ends at.
    std::size_t srcBytes() const { return std::size_t{srcPitch} * height + std::size_t{8} * width + 16; }
    std::size_t dstBytes() const {
        const std::size_t rows = std::size_t{std::max(dstPitch, chromaPitch)} * height + 2 * std::size_t{width};
        return std::max({luma, cb, cr}) + rows + kGuard;
    }

    Components at(const unsigned char* pixel) const {
        const unsigned order = rgbType & ~0x8000U;
        if (bits == 24) {
            const bool redFirst = (order & ~1U) == 2;
            return {pixel[redFirst ? 0 : 2], pixel[1], pixel[redFirst ? 2 : 0]};
        }
        constexpr unsigned kFirst[4][3] = {{2, 1, 0}, {3, 2, 1}, {0, 1, 2}, {1, 2, 3}};
        const auto& i = kFirst[order <= 3 ? order : 0];
        if (bits == 32) return {pixel[i[0]], pixel[i[1]], pixel[i[2]]};
        return {pixel[2 * i[0] + 1], pixel[2 * i[1] + 1], pixel[2 * i[2] + 1]};
    }

    unsigned convert(const Bytes& src, Bytes& dst) const {
        const unsigned step = bits / 8;
        for (unsigned y = 0; y < height; ++y) {
            const unsigned r = (rgbType & 0x8000U) != 0 ? height - 1 - y : y;
            for (unsigned k = 0; k < width / 2; ++k) {
                const unsigned char* const pixel = &src[r * srcPitch + std::size_t{2} * k * step];
                const Components first = at(pixel);
                const Components second = at(pixel + step);
                unsigned char* const to = &dst[luma + y * dstPitch + std::size_t{planar ? 2U : 4U} * k];
                to[0] = lumaOf(matrix, first, true);
                to[planar ? 1 : 2] = lumaOf(matrix, second, !planar);
                std::optional<unsigned> chroma = y * dstPitch + 4 * k;
                if (planar && chroma422) chroma = y * chromaPitch + k;
                if (planar && !chroma422) chroma = y / 2 * chromaPitch + k;
                if (planar && !chroma422 && y % 4 != 0 && y % 4 != 3) chroma = std::nullopt;
                if (!chroma) continue;
                dst[cb + *chroma] = cbOf(matrix, first);
                dst[cr + *chroma] = crOf(matrix, first);
            }
        }
        return size();
    }
};

std::string describe(const Model& m) {
    return std::to_string(m.width) + "x" + std::to_string(m.height) + ", pitches " + std::to_string(m.dstPitch) + " " +
           std::to_string(m.srcPitch) + ", matrix " + std::to_string(m.matrix) + ", type " + std::to_string(m.rgbType) +
           ", " + std::to_string(m.bits) + " bits, " + (m.planar ? "planar" : "packed") +
           (m.chroma422 ? " 4:2:2" : " 4:2:0") + ", Cb at " + std::to_string(m.cb);
}

// Has `convert(dst, src)` do what the model does, its result and what it leaves alone included.
template <class Convert>
void expectModel(const char* name, const Model& m, bool flipped, Convert convert) {
    Bytes src = noise(m.srcBytes());
    Bytes expected = noise(m.dstBytes());
    Bytes got = expected;
    const unsigned size = m.convert(src, expected);
    if (flipped) cycbcr_invert(expected.data(), m.dstPitch, m.height);
    EXPECT_EQ(convert(got.data(), src.data()), size) << name << ", " << describe(m);
    ASSERT_EQ(got, expected) << name << ", " << describe(m);
}

constexpr std::pair<unsigned, unsigned> kSizes[] = {{0, 3}, {3, 0},  {1, 1},   {2, 1},   {3, 2},  {18, 1},
                                                    {7, 9}, {66, 5}, {131, 8}, {194, 3}, {200, 6}};
constexpr unsigned kTypes[] = {0, 1, 2, 3, 4, 5, 6, 0x8000, 0x8001, 0x8002, 0x8003, 0x10002};

TEST(FromRgb8Frames, GeneralConvertersFollowTheEquations) {
    unsigned turn = 0;
    for (const auto& [width, height] : kSizes) {
        const unsigned area = (2 * width + 5) * height + 3; // the planes need not be adjacent
        const Model arrangements[] = {
            {0, 1, 3, width, height, 2 * width + 1, 0, 0, 0, true, false, 0, 0},
            {0, 3, 1, width, height, 2 * width + 2, 0, 0, 0, false, false, 0, 0},
            {1, 0, 2, width, height, 2 * width + 3, 0, 0, 0, true, false, 0, 0},
            {2, 5, 0, width, height, 2 * width + 8, 0, 0, 0, true, false, 0, 0}, // no named layout
            {0, area, 2 * area, width, height, width + 3, 0, 0, 0, true, true, 0, width / 2 + 1},
            {0, 2 * area, area, width, height, width + 2, 0, 0, 0, false, true, 0, width / 2 + 2},
            {0, 20, 33, width, height, width, 0, 0, 0, false, true, 0, width / 3}, // on one another
        };
        for (Model m : arrangements) {
            for (const unsigned bits : {24U, 32U, 48U, 64U}) {
                for (const unsigned type : kTypes) {
                    m.bits = bits;
                    m.rgbType = type;
                    m.matrix = turn++ % 13;
                    m.srcPitch = width * bits / 8 + turn % 4;
                    const auto general = [&](PXFromRgb* convert) {
                        return [&, convert](unsigned char* dst, unsigned char* src) {
                            return convert(dst + m.luma, dst + m.cb, dst + m.cr, src, m.width, m.height, m.dstPitch,
                                           m.srcPitch, m.matrixValue(), m.typeValue(), m.chroma422 ? 4 : 0,
                                           m.planar ? 2 : 0, bits, m.chromaPitch);
                        };
                    };
                    expectModel("FromRGBInt", m, false, general(FromRGBInt));
                    if (bits == 32 || type == 0) expectModel("FromRGB", m, false, general(FromRGB));
                }
            }
        }
    }
}

// Where a named layout has its samples, by the bytes of its luma plane.
struct Placement {
    unsigned luma, cb, cr;
    bool chroma422, planar;
};
using PlacementOf = Placement (*)(unsigned lumaBytes);

struct Named {
    const char* name;
    PXConvertRgbFrame* convert[2]; // 24 and 32 bits
    PlacementOf placement;
    bool flipped;
};

#define NAMED(layout, flipped, ...)                                                                                    \
    {                                                                                                                  \
#layout, {cycbcr_RGB24_to_##layout, cycbcr_RGB32_to_##layout },                                                \
                  []([[maybe_unused]] unsigned n) { return Placement{__VA_ARGS__}; }, flipped                          \
    }
constexpr Named kNamed[] = {
    NAMED(yuy2, false, 0, 1, 3, true, false),         NAMED(yvyu, false, 0, 3, 1, true, false),
    NAMED(uyvy, false, 1, 0, 2, true, false),         NAMED(cyuv, true, 1, 0, 2, true, false),
    NAMED(i420, false, 0, n, n + n / 4, false, true), NAMED(yv12, false, 0, n + n / 4, n, false, true),
    NAMED(p422, false, 0, n, n + n / 2, true, true),
};

Model modelOf(PlacementOf placement, unsigned width, unsigned height, unsigned dstPitch, unsigned bits) {
    const Placement at = placement(dstPitch * height);
    return {
        at.luma,      at.cb,     at.cr, width,       height, dstPitch, 0, width % 12, height % 2 == 0 ? 0x8002U : 0U,
        at.chroma422, at.planar, bits,  dstPitch / 2};
}

// What every converter of a frame of one buffer to one of another is called with.
auto call(PXConvertRgbFrame* convert, const Model& m) {
    return [&m, convert](unsigned char* dst, unsigned char* src) {
        return convert(dst, src, m.width, m.height, m.dstPitch, m.srcPitch, m.matrixValue(), m.typeValue());
    };
}

TEST(FromRgb8Frames, NamedConvertersPlaceTheSamplesOfTheirLayout) {
    std::vector<std::pair<unsigned, unsigned>> sizes(std::begin(kSizes), std::end(kSizes));
    sizes.insert(sizes.end(), {{1062, 500}, {1061, 501}}); // beyond a cache
    for (const Named& named : kNamed) {
        for (const auto& [width, height] : sizes) {
            // Pitches with padding, which a flip turns over too, and some so small that rows lie on one another.
            for (const unsigned pitch : {2 * width + 6, 2 * width, width, width / 2}) {
                if (width > 1000 && pitch <= 2 * width) continue;
                for (const unsigned i : {0U, 1U}) {
                    Model m = modelOf(named.placement, width, height, pitch, i == 0 ? 24 : 32);
                    m.srcPitch = m.bits / 8 * width + pitch % 3;
                    expectModel(named.name, m, named.flipped, call(named.convert[i], m));
                }
            }
        }
    }
}

TEST(FromRgb8Frames, OtherConvertersOf32And64Bits) {
    const PlacementOf uyvy = kNamed[2].placement;
    const PlacementOf p422 = kNamed[6].placement;
    for (const auto& [width, height] : kSizes) {
        for (const unsigned bits : {24U, 32U, 48U, 64U}) {
            Model m = modelOf(uyvy, width, height, 2 * width + 1, bits);
            m.srcPitch = bits / 8 * width + 2;
            expectModel("RGB64_to_uyvy", m, false, [&](unsigned char* dst, unsigned char* src) {
                return cycbcr_RGB64_to_uyvy(dst, src, m.width, m.height, m.dstPitch, m.srcPitch, m.matrixValue(),
                                            m.typeValue(), bits);
            });
            // The depth is that of the pitch.
            Model planar = modelOf(p422, width, height, width + 3, bits);
            planar.srcPitch = bits / 8 * width + (width > 1 ? 1 : 0);
            expectModel("RGB64_to_p422", planar, false, call(cycbcr_RGB64_to_p422, planar));
        }
        for (const bool chroma422 : {false, true}) {
            Model m = modelOf(p422, width, height, width + 4, 32);
            m.chroma422 = chroma422;
            m.chromaPitch = width / 2 + 9;
            m.cr = m.cb + m.chromaPitch * height;
            m.srcPitch = 4 * width;
            expectModel("RGB32_to_planar", m, false, [&](unsigned char* dst, unsigned char* src) {
                return cycbcr_RGB32_to_planar(dst, dst + m.cb, dst + m.cr, src, m.width, m.height, m.dstPitch,
                                              m.chromaPitch, chroma422 ? 1 : 0, m.srcPitch, m.matrixValue(),
                                              m.typeValue());
            });
        }
    }
}

TEST(FromRgb8Frames, UnknownDepthsWriteNothing) {
    Bytes src(256);
    for (const unsigned bits : {0U, 15U, 16U, 40U, 56U, 72U, 96U}) {
        Bytes dst(64, 0x55);
        unsigned char* const d = dst.data();
        EXPECT_EQ(FromRGB(d, d + 1, d + 3, src.data(), 3, 3, 8, 8, PX_MATRIX_BT601, PX_RGB_BGRA, 0, 0, bits, 0), 13U);
        EXPECT_EQ(cycbcr_RGB64_to_p422(d, src.data(), 2, 2, 4, bits / 4, PX_MATRIX_BT601, PX_RGB_BGRA), 8U);
        EXPECT_EQ(dst, Bytes(64, 0x55)) << bits;
    }
}

TEST(FromRgb8Frames, AlphaRowsFollowOneAnother) {
    for (const auto& [width, height] : kSizes) {
        for (const unsigned flags : {0U, 1U, 2U, 0xFFFFFFFFU}) {
            for (const unsigned type : {0U, 0x8001U}) {
                const unsigned srcPitch = 4 * width + 3;
                Bytes src = noise(std::size_t{srcPitch} * height + 1);
                Bytes expected(std::size_t{width} * height + kGuard, 0x55);
                Bytes got = expected;
                for (unsigned y = 0; y < height; ++y) {
                    for (unsigned x = 0; x < width; ++x) {
                        const unsigned r = (type & 0x8000U) != 0 ? height - 1 - y : y;
                        const std::uint64_t a = src[r * srcPitch + 4 * x + 3];
                        expected[y * width + x] =
                            static_cast<unsigned char>((flags & 1U) != 0 ? a * 7204443 / 8388608 + 16 : a);
                    }
                }
                EXPECT_EQ(cycbcr_RGB32_to_uyvy_Alpha(got.data(), src.data(), width, height, 99, srcPitch, flags,
                                                     static_cast<PXYCBCRRgbType>(type)),
                          width * height);
                ASSERT_EQ(got, expected) << width << "x" << height << ", flags " << flags << ", type " << type;
            }
        }
    }
}

// Frames that end, and that begin, where memory does.
TEST(FromRgb8Frames, NothingBeyondTheFrameIsTouched) {
    GuardedBytes srcMemory(1 << 13);
    GuardedBytes dstMemory(1 << 13);
    for (const Named& named : kNamed) {
        for (unsigned width = 1; width <= 200; width += 1 + width / 70) {
            for (const unsigned height : {1U, 4U}) {
                for (const unsigned i : {0U, 1U}) {
                    const unsigned srcPitch = (3 + i) * width;
                    const unsigned pitch = 2 * width;
                    const bool planar = named.placement(0).planar;
                    // Of 4:2:0 a single row's chroma reaches beyond the frame.
                    const std::size_t dstBytes = std::size_t{pitch} * (planar ? 2 * height : height);
                    for (const bool atEnd : {false, true}) {
                        named.convert[i](atEnd ? dstMemory.end() - dstBytes : dstMemory.begin(),
                                         atEnd ? srcMemory.end() - std::size_t{srcPitch} * height : srcMemory.begin(),
                                         width, height, pitch, srcPitch, PX_MATRIX_BT601,
                                         atEnd ? PX_RGB_BGRA : PX_RGB_BOTTOM_UP);
                    }
                }
            }
        }
    }
}

TEST(FromRgb8Frames, KnownColours) {
    Bytes white(8, 255);
    Bytes black(8, 0);
    Bytes redThenGreen{0, 0, 255, 0, 0, 255, 0, 0};
    const auto uyvy = [](Bytes& src) {
        Bytes dst(4);
        cycbcr_RGB32_to_uyvy(dst.data(), src.data(), 2, 1, 4, 8, PX_MATRIX_BT601, PX_RGB_BGRA);
        return dst;
    };
    EXPECT_EQ(uyvy(white), (Bytes{128, 235, 128, 235}));
    EXPECT_EQ(uyvy(black), (Bytes{128, 16, 128, 16}));
    // Red of 255 is 65.535 + 16, -37.74 and 111.945; green does not show but in its luma of 128.52 + 16.
    EXPECT_EQ(uyvy(redThenGreen), (Bytes{90, 82, 240, 145}));
    // Truncated in planes: 144.
    Bytes planes(4);
    cycbcr_RGB32_to_p422(planes.data(), redThenGreen.data(), 2, 1, 2, 8, PX_MATRIX_BT601, PX_RGB_BGRA);
    EXPECT_EQ(planes, (Bytes{82, 144, 90, 240}));
}

// Each row of the source has a red of its own, so that chroma tells where it comes from.
TEST(FromRgb8Frames, FourRowsGiveTwoOfChroma) {
    constexpr unsigned kHeight = 8;
    Bytes src;
    for (unsigned r = 0; r < kHeight; ++r) {
        const auto red = static_cast<unsigned char>(r * 30);
        src.insert(src.end(), {0, 0, red, 0, 0, red});
    }
    for (const PXYCBCRRgbType type : {PX_RGB_BGRA, PX_RGB_BOTTOM_UP}) {
        Bytes dst(3 * kHeight);
        cycbcr_RGB24_to_i420(dst.data(), src.data(), 2, kHeight, 2, 6, PX_MATRIX_BT2020_FULL, type);
        unsigned chromaRow = 0;
        for (const unsigned r : {0U, 3U, 4U, 7U}) {
            const unsigned from = type == PX_RGB_BGRA ? r : kHeight - 1 - r;
            const Components c{src[6 * from + 2], 0, 0};
            EXPECT_EQ(dst[2 * r], lumaOf(7, c, true));
            EXPECT_EQ(dst[2 * kHeight + chromaRow], cbOf(7, c));
            EXPECT_EQ(dst[5 * kHeight / 2 + chromaRow], crOf(7, c));
            ++chromaRow;
        }
    }
}

} // namespace
