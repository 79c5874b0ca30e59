#include "tests/guarded_bytes.h"
#include "tests/rgb/deep_model.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using namespace fikleipa::tests;

constexpr unsigned kGuard = 40; // bytes behind the last row that must stay as they are

struct Converter {
    const char* name;
    PXDeepToRgb* convert;
    Deep arithmetic;
    unsigned bits;                // of a sample
    std::vector<unsigned> depths; // none for the one whose pixels have no depth
};

#define CONVERTER(name, ...)                                                                                           \
    { #name, name, __VA_ARGS__ }
const Converter kConverters[] = {
    CONVERTER(planar10ToRGBInt, Deep::From10To8, 10, {15, 16, 24, 32}),
    CONVERTER(cycbcr_10ToRGBInt, Deep::From10To8By8, 10, {15, 16, 24, 32}),
    CONVERTER(cycbcr_10ToRGBInt16, Deep::From10To16, 10, {24, 48, 32, 64}),
    CONVERTER(cycbcr_10ToRGBInt10, Deep::From10To16, 10, {}),
    CONVERTER(cycbcr_12ToRGBInt16, Deep::From12To16, 12, {48, 64}),
    CONVERTER(cycbcr_12ToRGB, Deep::From12To8, 12, {15, 16, 24, 32}),
    CONVERTER(cycbcr_16ToRGB8, Deep::From16To8, 16, {15, 16, 24, 32}),
};

struct PlanesConverter {
    const char* name;
    PXDeepToRgbPlanes* convert;
    Deep arithmetic;
    unsigned bits;
    unsigned size; // bytes of a sample of the planes
};

const PlanesConverter kPlanesConverters[] = {
    CONVERTER(cycbcr_10ToRGBPlanarInt, Deep::From10To8By8, 10, 1),
    CONVERTER(cycbcr_10ToRGBPlanarInt10, Deep::From10To10, 10, 2),
    CONVERTER(cycbcr_10ToRGBPlanarInt16, Deep::From10To16, 10, 2),
    CONVERTER(cycbcr_12ToRGBPlanar, Deep::From12To8, 12, 1),
    CONVERTER(cycbcr_12ToRGBPlanarInt16, Deep::From12To16, 12, 2),
};

unsigned short* at(Bytes& src, unsigned offset) {
    return reinterpret_cast<unsigned short*>(src.data() + offset);
}

// What a converter makes of a sample before its equations.
Yuv reduced(Deep arithmetic, const DeepModel& m, const Bytes& src, unsigned r, unsigned x) {
    if (arithmetic != Deep::From16To8) return yuvAt(m, src, r, x);
    Bytes high = src;
    for (std::size_t i = 1; i + 1 < high.size(); i += 2) {
        high[i] = high[i + 1];
        high[i + 1] = 0;
    }
    return yuvAt(m, high, r, x);
}

unsigned packed10(const Colour& c) {
    return ((c.r | c.r << 14 | c.b << 28) & 0x3FFF0003) | (c.b >> 2) | ((c.g & 3) << 2) | ((c.g << 6) & 0x3FFF00);
}

struct Frame {
    DeepModel m;
    unsigned matrix;
    unsigned rgbType;
    unsigned bits; // a pixel

    [[nodiscard]] unsigned row(unsigned r) const { return (rgbType & 0x8000) != 0 ? m.height - 1 - r : r; }
    [[nodiscard]] std::string describe() const {
        return std::to_string(m.width) + "x" + std::to_string(m.height) + ", matrix " + std::to_string(matrix) +
               ", type " + std::to_string(rgbType) + ", " + std::to_string(bits) + " bits" +
               (m.planar ? ", planar" : ", packed") + (m.fullChromaRows ? ", full rows" : "");
    }
};

void expectModel(const Converter& converter, const Frame& f, unsigned sampleBits) {
    const DeepModel& m = f.m;
    Bytes src = sourceFor(m, sampleBits);
    const bool wide = converter.arithmetic == Deep::From10To16 || converter.arithmetic == Deep::From12To16;
    const bool ten = converter.depths.empty();
    const unsigned size = ten ? 4 : pixelBytes(f.bits, wide);
    const unsigned pitch = m.width * size + 7;
    Bytes expected(std::size_t{pitch} * m.height + kGuard, 0x55);
    Bytes got = expected;
    for (unsigned r = 0; r < m.height; ++r) {
        for (unsigned x = 0; x < m.width; ++x) {
            unsigned char* const pixel = expected.data() + std::size_t{f.row(r)} * pitch + std::size_t{x} * size;
            const Colour c = convert(converter.arithmetic, f.matrix, reduced(converter.arithmetic, m, src, r, x));
            if (ten) {
                const unsigned word = packed10(c);
                std::memcpy(pixel, &word, sizeof word);
            } else {
                storePixel(pixel, c, f.rgbType, f.bits, wide);
            }
        }
    }
    EXPECT_EQ(converter.convert(got.data(), at(src, m.y), at(src, m.cb), at(src, m.cr), m.width, m.height, pitch,
                                m.lumaPitch, static_cast<PXYCBCRMatrix>(f.matrix),
                                static_cast<PXYCBCRRgbType>(f.rgbType), m.fullChromaRows ? 2 : 0, m.planar ? 4 : 0,
                                f.bits, m.chromaPitch),
              nominalSize(m.width, m.height, f.bits, wide && !ten));
    ASSERT_EQ(got, expected) << converter.name << ", " << f.describe();
}

void expectModel(const PlanesConverter& converter, const Frame& f, unsigned sampleBits) {
    const DeepModel& m = f.m;
    Bytes src = sourceFor(m, sampleBits);
    const unsigned pitch = m.width * converter.size + 3;
    const std::size_t plane = std::size_t{pitch} * m.height + kGuard;
    Bytes expected(3 * plane, 0x55);
    Bytes got = expected;
    for (unsigned r = 0; r < m.height; ++r) {
        for (unsigned x = 0; x < m.width; ++x) {
            const Colour c = convert(converter.arithmetic, f.matrix, yuvAt(m, src, r, x));
            const std::size_t to = std::size_t{f.row(r)} * pitch + std::size_t{x} * converter.size;
            const unsigned components[3] = {c.r, c.g, c.b};
            for (unsigned i = 0; i < 3; ++i) std::memcpy(&expected[i * plane + to], &components[i], converter.size);
        }
    }
    EXPECT_EQ(converter.convert(got.data(), got.data() + plane, got.data() + 2 * plane, at(src, m.y), at(src, m.cb),
                                at(src, m.cr), m.width, m.height, pitch, m.lumaPitch,
                                static_cast<PXYCBCRMatrix>(f.matrix), static_cast<PXYCBCRRgbType>(f.rgbType),
                                m.fullChromaRows ? 1 : 0, m.planar ? 1 : 0, f.bits, m.chromaPitch),
              m.width * m.height);
    ASSERT_EQ(got, expected) << converter.name << ", " << f.describe();
}

// Every width that a vector or a chunk may end in, every arrangement, and by turns the rest.
template <class Test>
void eachFrame(Test test) {
    constexpr unsigned kTypes[] = {0, 1, 2, 3, 4, 5, 0x8000, 0x8001, 0x8003, 0x8005};
    unsigned turn = 0;
    const auto frames = [&](unsigned width, unsigned height) {
        for (const bool planar : {false, true}) {
            for (const bool full : {false, true}) {
                test(Frame{deepModel(width, height, planar, full), turn % 11, kTypes[turn % std::size(kTypes)], 0},
                     turn);
                ++turn;
            }
        }
    };
    for (unsigned width = 0; width <= 60; ++width) frames(width, width % 5);
    for (const unsigned width : {767U, 768U, 769U, 770U, 1536U, 1571U}) frames(width, 3);
}

TEST(DeepPlanesToRgb, FollowTheEquations) {
    for (const Converter& converter : kConverters) {
        eachFrame([&](Frame f, unsigned turn) {
            f.bits = converter.depths.empty() ? turn % 40 : converter.depths[turn / 4 % converter.depths.size()];
            expectModel(converter, f, converter.bits);
            // Samples that exceed their bits count as they are, in a vector with others or alone.
            expectModel(converter, f, turn % 3 == 0 ? 16 : 15);
        });
    }
}

TEST(DeepPlanesToRgb, PlanesHoldTheSameColours) {
    for (const PlanesConverter& converter : kPlanesConverters) {
        eachFrame([&](Frame f, unsigned turn) {
            f.bits = turn;
            expectModel(converter, f, converter.bits);
            expectModel(converter, f, 16);
        });
    }
}

TEST(DeepPlanesToRgb, UnknownDepthsWriteNothing) {
    std::vector<unsigned short> src(64, 500);
    for (const Converter& converter : kConverters) {
        if (converter.depths.empty()) continue;
        const bool wide = converter.depths.back() == 64;
        for (const unsigned bits : {0U, 8U, 17U, 33U, 65U, wide ? 16U : 48U, wide ? 15U : 64U}) {
            Bytes dst(64, 0x55);
            EXPECT_EQ(converter.convert(dst.data(), src.data(), src.data() + 8, src.data() + 16, 2, 2, 16, 4,
                                        PX_MATRIX_BT601, PX_RGB_BGRA, 1, 1, bits, 2),
                      nominalSize(2, 2, bits, wide));
            EXPECT_EQ(dst, Bytes(64, 0x55)) << converter.name << ", " << bits;
        }
    }
}

TEST(DeepPlanesToRgb, KnownColours) {
    const auto grey = [](PXDeepToRgb* convert, unsigned short y, unsigned short c, unsigned bits) {
        unsigned short luma[2] = {y, y};
        std::vector<unsigned short> dst(8);
        convert(reinterpret_cast<unsigned char*>(dst.data()), luma, &c, &c, 2, 1, 16, 4, PX_MATRIX_BT601, PX_RGB_BGRA,
                1, 1, bits, 2);
        return dst[0];
    };
    EXPECT_EQ(grey(planar10ToRGBInt, 940, 512, 24) & 0xFF, 254);
    EXPECT_EQ(grey(cycbcr_10ToRGBInt, 64, 512, 24) & 0xFF, 13); // the luma offset is 16, as for 8 bits
    EXPECT_EQ(grey(cycbcr_10ToRGBInt16, 940, 512, 64), 65256);
    EXPECT_EQ(grey(cycbcr_12ToRGBInt16, 3760, 2048, 64), 65256);
    EXPECT_EQ(grey(cycbcr_12ToRGB, 3760, 2048, 24) & 0xFF, 255);
    EXPECT_EQ(grey(cycbcr_12ToRGB, 3762, 2048, 24) & 0xFF, 0); // 65293 / 255 is 256
    EXPECT_EQ(grey(cycbcr_12ToRGB, 4095, 2048, 24) & 0xFF, 1);
    EXPECT_EQ(grey(cycbcr_16ToRGB8, 235 * 256 + 255, 128 * 256 + 255, 24) & 0xFF, 254);
}

// The fields of the 10-bit word overlap.
TEST(DeepPlanesToRgb, TenBitWordIsTheExpression) {
    unsigned short luma[2] = {940, 64};
    unsigned short cb = 600;
    unsigned short cr = 300;
    unsigned words[2] = {};
    cycbcr_10ToRGBInt10(reinterpret_cast<unsigned char*>(words), luma, &cb, &cr, 2, 1, 8, 4, PX_MATRIX_BT601,
                        PX_RGB_ARGB, 1, 1, 32, 2);
    // R 43602, G 65535, B 65535, and R 0, G 8822, B 11359.
    EXPECT_EQ(words[0], 0x3ABFFFFFU);
    EXPECT_EQ(words[1], 0x30089F1FU);
}

// Not a byte beyond the samples and pixels of the frame, whether it ends at a forbidden page or begins at one.
TEST(DeepPlanesToRgb, NothingBeyondTheFrameIsTouched) {
    GuardedBytes srcMemory(40000);
    GuardedBytes dstMemory(40000);
    for (unsigned width = 1; width <= 130; width += 1 + width / 30) {
        for (unsigned i = 0; i < 8; ++i) {
            const Converter& converter = kConverters[i % std::size(kConverters)];
            const DeepModel m = deepModel(width, 3, i % 2 == 0, i / 2 % 2 == 0);
            const Bytes src = sourceFor(m, 10);
            const unsigned bits = converter.depths.empty() ? 32 : converter.depths.back();
            const unsigned pitch = width * (bits == 64 ? 8 : 4);
            const auto convert = [&](std::uint8_t* dst, std::uint8_t* s, PXYCBCRRgbType type) {
                std::copy(src.begin(), src.end(), s);
                const auto plane = [&](unsigned offset) { return reinterpret_cast<unsigned short*>(s + offset); };
                converter.convert(dst, plane(m.y), plane(m.cb), plane(m.cr), width, 3, pitch, m.lumaPitch,
                                  PX_MATRIX_BT709, type, m.fullChromaRows ? 1 : 0, m.planar ? 1 : 0, bits,
                                  m.chromaPitch);
            };
            convert(dstMemory.end() - std::size_t{pitch} * 3, srcMemory.end() - src.size(), PX_RGB_BGRA);
            convert(dstMemory.begin(), srcMemory.begin(), PX_RGB_BOTTOM_UP);
        }
    }
}

} // namespace
