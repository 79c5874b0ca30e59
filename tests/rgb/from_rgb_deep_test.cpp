#include "fikleipa.h"
#include "tests/rgb/from_rgb_deep_model.h"
#include "tests/v210/model.h"

#include <gtest/gtest.h>

namespace {

using namespace fikleipa::tests;

struct Call {
    unsigned char *y, *cb, *cr, *src;
    unsigned width, height, lumaPitch, chromaPitch, srcPitch;
    PXYCBCRMatrix matrix;
    PXYCBCRRgbType type;
    unsigned bits;
};

struct Converter {
    const char* name;
    unsigned (*convert)(const Call&);
    unsigned (*result)(const Call&);
    FromRgb arithmetic;
    RgbIn layout;
    std::vector<unsigned> depths;
    bool halved;
    bool ownChromaPitch = true;
    unsigned left = 0; // bits that samples are shifted by
};

template <PXRgbToPlanes* kConvert>
unsigned byLumaPitch(const Call& c) {
    return kConvert(c.y, c.cb, c.cr, c.src, c.width, c.height, c.lumaPitch, c.chromaPitch, c.srcPitch, c.matrix, c.type,
                    c.bits);
}
template <PXRgbToPlanesByChromaPitch* kConvert>
unsigned byChromaPitch(const Call& c) {
    return kConvert(c.y, c.cb, c.cr, c.src, c.width, c.height, c.chromaPitch, c.lumaPitch, c.srcPitch, c.matrix, c.type,
                    c.bits);
}
unsigned planar16(const Call& c) {
    return cycbcr_RGB64_to_YCbCrPlanar16(c.y, c.cb, c.cr, c.src, c.width, c.height, c.lumaPitch, c.srcPitch, c.matrix,
                                         c.type, c.bits);
}
unsigned planar16From10(const Call& c) {
    return cycbcr_RGB10_to_YCbCrPlanar16(c.y, c.cb, c.cr, c.src, c.width, c.height, c.lumaPitch, c.srcPitch, c.matrix,
                                         c.type);
}

unsigned lumaTwice(const Call& c) {
    return (c.chromaPitch + 2 * c.lumaPitch) * c.height;
}
unsigned chromaTwice(const Call& c) {
    return (c.lumaPitch + 2 * c.chromaPitch) * c.height;
}
unsigned chromaAlone(const Call& c) {
    return c.chromaPitch * c.height;
}
unsigned lumaAlone(const Call& c) {
    return c.lumaPitch * c.height;
}

constexpr auto kDouble = byChromaPitch<cycbcr_RGB64_to_yuv444p10_float_BAD_ONLY_LUMA_WORKS>;
const Converter kConverters[] = {
    {"RGB32_to_yuv444p10",
     byLumaPitch<cycbcr_RGB32_to_yuv444p10>,
     lumaTwice,
     FromRgb::From8To10,
     RgbIn::Four8,
     {32},
     false},
    {"RGB24_to_yuv444p10",
     byLumaPitch<cycbcr_RGB32_to_yuv444p10>,
     lumaTwice,
     FromRgb::From8To10,
     RgbIn::Three8,
     {24, 64},
     false},
    {"RGB64_to_yuv444p10",
     byChromaPitch<cycbcr_RGB64_to_yuv444p10>,
     chromaTwice,
     FromRgb::UpperTo10,
     RgbIn::Four16,
     {64, 32},
     false},
    {"RGB48_to_yuv444p10",
     byChromaPitch<cycbcr_RGB64_to_yuv444p10>,
     chromaTwice,
     FromRgb::UpperTo10,
     RgbIn::Three16,
     {48, 24, 0},
     false},
    {"RGB64_to_yuv422p12",
     byLumaPitch<cycbcr_RGB64_to_yuv422p12>,
     lumaTwice,
     FromRgb::UpperTo12,
     RgbIn::Four16,
     {64, 32},
     true},
    {"RGB48_to_yuv422p12",
     byLumaPitch<cycbcr_RGB64_to_yuv422p12>,
     lumaTwice,
     FromRgb::UpperTo12,
     RgbIn::Three16,
     {48, 24, 0},
     true},
    {"RGB64, double", kDouble, chromaAlone, FromRgb::Double, RgbIn::Four16, {64, 32}, false},
    {"RGB48, double", kDouble, chromaAlone, FromRgb::Double, RgbIn::Three16, {48, 24, 0}, false},
    {"RGB64_to_YCbCrPlanar16", planar16, lumaAlone, FromRgb::From16To16, RgbIn::Four16, {64, 32}, true, false},
    {"RGB48_to_YCbCrPlanar16", planar16, lumaAlone, FromRgb::From16To16, RgbIn::Three16, {48, 24, 0}, true, false},
    {"RGB10_to_YCbCrPlanar16", planar16From10, lumaAlone, FromRgb::From10To10, RgbIn::Packed10, {0}, true, false, 6},
};

void storeRow(const Converter& c, const std::vector<YccSamples>& row, unsigned char* y, unsigned char* cb,
              unsigned char* cr) {
    for (std::size_t x = 0; x < row.size(); ++x) store16(y + 2 * x, row[x].y << c.left);
    const std::size_t step = c.halved ? 2 : 1;
    for (std::size_t x = 0; x < row.size(); x += step) {
        const YccSamples& other = row[std::min(x + step, row.size()) - 1];
        store16(cb + 2 * (x / step), ((row[x].cb << c.left) + (other.cb << c.left)) >> 1);
        store16(cr + 2 * (x / step), ((row[x].cr << c.left) + (other.cr << c.left)) >> 1);
    }
}

void expectModel(const Converter& c, unsigned width, unsigned height, unsigned turn) {
    constexpr unsigned kTypes[] = {0, 1, 2, 3, 4, 7, 0x8000, 0x8001, 0x8002, 0x8003, 0x8005};
    const unsigned type = kTypes[turn % std::size(kTypes)];
    const unsigned matrix = turn % 12;
    const unsigned lumaPitch = 2 * width + 7;
    const unsigned chromaPitch = c.ownChromaPitch ? 2 * width + 3 : lumaPitch / 2;
    const unsigned srcPitch = width * bytesOf(c.layout) + 5;
    const std::size_t plane = std::size_t{lumaPitch} * (height + 1);
    Bytes src(std::size_t{srcPitch} * height + 1);
    Bytes expected(3 * plane, 0x55);
    std::minstd_rand random(turn + 1);
    const unsigned most = (1U << componentBits(c.arithmetic)) - 1;
    for (unsigned r = 0; r < height; ++r) {
        std::vector<YccSamples> row;
        unsigned char* const from = &src[std::size_t{(type & 0x8000) != 0 ? height - 1 - r : r} * srcPitch];
        for (unsigned x = 0; x < width; ++x) {
            const RgbColour colour{static_cast<unsigned>(random() >> 4 & most),
                                   static_cast<unsigned>(random() >> 4 & most),
                                   static_cast<unsigned>(random() >> 4 & most)};
            storeRgb(from + std::size_t{x} * bytesOf(c.layout), c.layout, type, colour);
            row.push_back(fromRgb(c.arithmetic, matrix, colour));
        }
        const std::size_t chromaRow = std::size_t{r} * chromaPitch;
        storeRow(c, row, &expected[std::size_t{r} * lumaPitch], &expected[plane + chromaRow],
                 &expected[2 * plane + chromaRow]);
    }
    Bytes got(expected.size(), 0x55);
    const Call call{got.data(),
                    &got[plane],
                    &got[2 * plane],
                    src.data(),
                    width,
                    height,
                    lumaPitch,
                    chromaPitch,
                    srcPitch,
                    static_cast<PXYCBCRMatrix>(matrix),
                    static_cast<PXYCBCRRgbType>(type),
                    c.depths[turn % c.depths.size()]};
    EXPECT_EQ(c.convert(call), c.result(call)) << c.name;
    ASSERT_EQ(got, expected) << c.name << ", width " << width << ", matrix " << matrix << ", type " << type;
}

TEST(RgbToPlanes, FollowTheEquations) {
    for (const Converter& c : kConverters) {
        unsigned turn = 0;
        for (unsigned width = 0; width <= 200; ++width) expectModel(c, width, 1 + width % 4, turn++);
        for (const unsigned width : {1919U, 1920U, 4000U}) expectModel(c, width, 3, turn++);
        expectModel(c, 20, 0, turn);
    }
}

TEST(RgbToPlanes, KnownColours) {
    const auto grey = [](const Converter& c, unsigned short value) {
        unsigned short src[4] = {value, value, value, 0};
        unsigned short planes[3] = {};
        auto* const to = reinterpret_cast<unsigned char*>(planes);
        c.convert({to, to + 2, to + 4, reinterpret_cast<unsigned char*>(src), 1, 1, 2, 2, 8, PX_MATRIX_BT601,
                   PX_RGB_BGRA, c.depths[0]});
        return std::vector<unsigned>(planes, planes + 3);
    };
    using Ycc = std::vector<unsigned>;
    EXPECT_EQ(grey(kConverters[0], 0), (Ycc{64, 512, 512}));
    EXPECT_EQ(grey(kConverters[0], 0xFFFF), (Ycc{940, 512, 512}));
    EXPECT_EQ(grey(kConverters[2], 0xFFFF), (Ycc{942, 512, 512}));
    EXPECT_EQ(grey(kConverters[4], 0xFFFF), (Ycc{3771, 2048, 2048}));
    EXPECT_EQ(grey(kConverters[6], 0xFFFF), (Ycc{943, 512, 512}));
    EXPECT_EQ(grey(kConverters[8], 0), (Ycc{64, 32768, 32768}));
    EXPECT_EQ(grey(kConverters[8], 0xFFFF), (Ycc{56359, 32768, 32775}));
}

} // namespace
