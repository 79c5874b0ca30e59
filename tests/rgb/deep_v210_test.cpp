#include "tests/guarded_bytes.h"
#include "tests/rgb/deep_model.h"
#include "tests/v210/model.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using namespace fikleipa::tests;

constexpr unsigned kGuard = 40; // bytes behind the last row that must stay as they are

struct Converter {
    const char* name;
    PXV210ToRgb* convert;
    Deep arithmetic;
    std::vector<unsigned> depths;
};

#define CONVERTER(name, ...)                                                                                           \
    { #name, name, __VA_ARGS__ }
const Converter kConverters[] = {
    CONVERTER(cycbcr_v210ToRGBInt, Deep::From10To8, {15, 16, 24, 32}),
    CONVERTER(cycbcr_v210ToRGB, Deep::From10To8, {15, 16, 24, 32}),
    CONVERTER(cycbcr_v210ToRGBFloat, Deep::From10To8Double, {15, 16, 24, 32}),
    CONVERTER(cycbcr_v210ToRGBInt16, Deep::From10To16, {24, 48, 32, 64}),
};

// Noise of whole groups, with as few bytes behind a row as there may be: none, or a word behind whole groups.
struct Source {
    unsigned width, height;
    unsigned pitch = (width / 2 + 2) / 3 * 16 + (width / 2 % 3 == 0 ? 4 : 0);
    Bytes bytes = noise(std::size_t{pitch} * height + 1, width + 1);

    unsigned char* data() { return bytes.data() + 1; }
    [[nodiscard]] unsigned pixels() const { return width / 2 * 2; }

    [[nodiscard]] Colour at(Deep arithmetic, unsigned matrix, unsigned r, unsigned x) const {
        return convert(arithmetic, matrix, yuvAtV210(bytes.data() + 1 + std::size_t{r} * pitch, x));
    }
};

unsigned rowOf(unsigned rgbType, unsigned height, unsigned r) {
    return (rgbType & 0x8000) != 0 ? height - 1 - r : r;
}

void expectModel(const Converter& converter, Source& src, unsigned matrix, unsigned type, unsigned bits) {
    const bool wide = converter.arithmetic == Deep::From10To16;
    const unsigned size = pixelBytes(bits, wide);
    const unsigned pitch = src.width * size + 7;
    Bytes expected(std::size_t{pitch} * src.height + kGuard, 0x55);
    Bytes got = expected;
    for (unsigned r = 0; r < src.height; ++r) {
        unsigned char* const row = expected.data() + std::size_t{rowOf(type, src.height, r)} * pitch;
        for (unsigned x = 0; x < src.pixels(); ++x) {
            storePixel(row + std::size_t{x} * size, src.at(converter.arithmetic, matrix, r, x), type, bits, wide);
        }
    }
    EXPECT_EQ(converter.convert(got.data(), src.data(), src.width, src.height, pitch, src.pitch,
                                static_cast<PXYCBCRMatrix>(matrix), static_cast<PXYCBCRRgbType>(type), bits),
              nominalSize(src.width, src.height, bits, wide));
    ASSERT_EQ(got, expected) << converter.name << ", width " << src.width << ", matrix " << matrix << ", type " << type
                             << ", " << bits << " bits";
}

// All widths that a group, a vector or a chunk may end in; the rest by turns.
template <class Test>
void eachSource(Test test) {
    constexpr unsigned kTypes[] = {0, 1, 2, 3, 4, 5, 0x8000, 0x8001, 0x8003, 0x8005};
    unsigned turn = 0;
    const auto sources = [&](unsigned width) {
        for (const unsigned height : {1U, 4U, 0U}) {
            Source src{width, height};
            for (unsigned i = 0; i < 4; ++i, ++turn) test(src, turn % 11, kTypes[turn % std::size(kTypes)], i);
        }
    };
    for (unsigned width = 0; width <= 60; ++width) sources(width);
    for (const unsigned width : {1918U, 1919U, 1920U, 1921U, 1922U, 1926U, 3840U, 3847U}) sources(width);
}

TEST(V210ToRgb, FollowsTheEquations) {
    for (const Converter& converter : kConverters) {
        eachSource([&](Source& src, unsigned matrix, unsigned type, unsigned i) {
            expectModel(converter, src, matrix, type, converter.depths[i]);
        });
    }
}

TEST(V210ToRgb, PlanesHoldTheSameColours) {
    PXV210ToRgbPlanes* const converters[] = {
        cycbcr_v210ToRGBPlanarInt16,
        cycbcr_v210ToRGBPlanarC16,
#if defined(__x86_64__)
        cycbcr_v210ToRGBPlanarSSE16,
#endif
    };
    eachSource([&](Source& src, unsigned matrix, unsigned type, unsigned i) {
        const unsigned pitch = src.width * 2 + 3;
        const std::size_t plane = std::size_t{pitch} * src.height + kGuard;
        Bytes expected(3 * plane, 0x55);
        Bytes got = expected;
        for (unsigned r = 0; r < src.height; ++r) {
            for (unsigned x = 0; x < src.pixels(); ++x) {
                const Colour c = src.at(Deep::From10To16, matrix, r, x);
                unsigned char* const to =
                    &expected[std::size_t{rowOf(type, src.height, r)} * pitch + std::size_t{x} * 2];
                std::memcpy(to, &c.r, 2);
                std::memcpy(to + plane, &c.g, 2);
                std::memcpy(to + 2 * plane, &c.b, 2);
            }
        }
        const auto at = [&](std::size_t offset) { return reinterpret_cast<unsigned short*>(got.data() + offset); };
        EXPECT_EQ(converters[i % std::size(converters)](
                      at(0), at(plane), at(2 * plane), src.data(), src.width, src.height, pitch, src.pitch,
                      static_cast<PXYCBCRMatrix>(matrix), static_cast<PXYCBCRRgbType>(type)),
                  src.width * src.height);
        ASSERT_EQ(got, expected) << "width " << src.width << ", matrix " << matrix << ", type " << type;
    });
}

TEST(V210ToRgb, NamedConvertersHaveTheirDepth) {
    struct Named {
        PXConvertRgbFrame* convert;
        unsigned bits;
    };
    constexpr Named kNamed[] = {{cycbcr_012v_to_rgb555, 15},
                                {cycbcr_012v_to_rgb565, 16},
                                {cycbcr_012v_to_rgb24, 24},
                                {cycbcr_012v_to_rgb32, 32}};
    Source src{50, 3};
    for (const Named& named : kNamed) {
        Bytes expected(std::size_t{50} * 4 * 3, 0x55);
        Bytes got = expected;
        EXPECT_EQ(named.convert(got.data(), src.data(), 50, 3, 200, src.pitch, PX_MATRIX_BT2020, PX_RGB_ARGB),
                  cycbcr_v210ToRGBInt(expected.data(), src.data(), 50, 3, 200, src.pitch, PX_MATRIX_BT2020, PX_RGB_ARGB,
                                      named.bits));
        EXPECT_EQ(got, expected) << named.bits;
    }
}

TEST(V210ToRgb, UnknownDepthsWriteNothing) {
    Source src{6, 2};
    for (const Converter& converter : kConverters) {
        const bool wide = converter.arithmetic == Deep::From10To16;
        for (const unsigned bits : {0U, 8U, 17U, 33U, wide ? 16U : 48U, wide ? 15U : 64U}) {
            Bytes dst(128, 0x55);
            EXPECT_EQ(
                converter.convert(dst.data(), src.data(), 6, 2, 48, src.pitch, PX_MATRIX_BT601, PX_RGB_BGRA, bits),
                nominalSize(6, 2, bits, wide));
            EXPECT_EQ(dst, Bytes(128, 0x55)) << converter.name << ", " << bits;
        }
    }
}

// A row of one group and the first word of the next, given by its components.
Bytes group(std::initializer_list<unsigned> components) {
    Bytes row(20);
    unsigned index = 0;
    for (const unsigned component : components) storeComponent(row.data(), index++, component);
    return row;
}

TEST(V210ToRgb, KnownColours) {
    Bytes grey = group({512, 940, 512, 940, 512, 940, 512, 940, 512, 940, 512, 940, 512, 0, 512});
    for (PXV210ToRgb* convert : {cycbcr_v210ToRGBInt, cycbcr_v210ToRGBFloat}) {
        Bytes dst(24);
        EXPECT_EQ(convert(dst.data(), grey.data(), 6, 1, 0, 0, PX_MATRIX_BT601, PX_RGB_BGRA, 32), 24U);
        for (unsigned i = 0; i < 24; ++i) EXPECT_EQ(dst[i], i % 4 == 3 ? 255 : 254);
    }
    std::vector<unsigned short> dst(18);
    cycbcr_v210ToRGBInt16(reinterpret_cast<unsigned char*>(dst.data()), grey.data(), 6, 1, 0, 0, PX_MATRIX_BT601,
                          PX_RGB_RGBA, 48);
    EXPECT_EQ(dst, std::vector<unsigned short>(18, 65256));
}

// Chroma steps between the first pair and the second, and between the third and what follows. The second pixel of a
// pair shows the step in G and B, but not in R.
TEST(V210ToRgb, SecondPixelsAverageButForRed) {
    Bytes row = group({512, 500, 512, 500, 712, 500, 712, 500, 712, 500, 712, 500, 512, 0, 512});
    Bytes dst(18);
    cycbcr_v210ToRGBInt(dst.data(), row.data(), 6, 1, 0, 0, PX_MATRIX_BT601, PX_RGB_RGBA, 24);
    // Luma is 126; 100 of Cb and Cr are 39 in R, 30 in G and 50 in B.
    EXPECT_EQ(Bytes(dst.begin(), dst.begin() + 3), (Bytes{126, 126, 126}));
    EXPECT_EQ(Bytes(dst.begin() + 3, dst.begin() + 6), (Bytes{126, 96, 177}));
    EXPECT_EQ(Bytes(dst.begin() + 6, dst.begin() + 9), (Bytes{206, 66, 227}));
    EXPECT_EQ(Bytes(dst.begin() + 9, dst.begin() + 12), (Bytes{206, 66, 227}));
    EXPECT_EQ(Bytes(dst.begin() + 12, dst.begin() + 15), (Bytes{206, 66, 227}));
    EXPECT_EQ(Bytes(dst.begin() + 15, dst.end()), (Bytes{206, 96, 177}));
}

// Not a byte beyond the groups of a row and, where it ends with one, the word behind it.
TEST(V210ToRgb, NothingBeyondTheFrameIsTouched) {
    GuardedBytes srcMemory(40000);
    GuardedBytes dstMemory(40000);
    for (unsigned width = 2; width <= 200; width += 1 + width / 50) {
        Source src{width, 3};
        const std::size_t bytes = src.bytes.size() - 1;
        const unsigned pixels = src.pixels();
        const auto convert = [&](std::uint8_t* dst, std::uint8_t* s, PXYCBCRRgbType type) {
            std::copy(src.data(), src.data() + bytes, s);
            cycbcr_v210ToRGBInt(dst, s, width, 3, pixels * 3, src.pitch, PX_MATRIX_BT709, type, 24);
            cycbcr_v210ToRGBInt16(dst, s, width, 3, pixels * 3, src.pitch, PX_MATRIX_BT709, type,
                                  width % 2 == 0 ? 24 : 0);
        };
        // The wide rows overlap in the room of the narrow ones; the last of them reaches as far beyond.
        std::uint8_t* const last = dstMemory.end() - std::size_t{pixels} * 12;
        convert(last, srcMemory.end() - bytes, PX_RGB_BGRA);
        convert(dstMemory.begin(), srcMemory.begin(), PX_RGB_BOTTOM_UP);
    }
}

// Frames too large for the cache take a way of their own when their rows run upwards, and when they begin cache lines.
TEST(V210ToRgb, LargeFramesAreTheSameHoweverTheyLie) {
    constexpr unsigned kWidth = 1022;
    constexpr unsigned kHeight = 600;
    Source src{kWidth, kHeight};
    for (const Converter& converter : kConverters) {
        const unsigned bits = converter.depths.back();
        const unsigned pitch = kWidth * pixelBytes(bits, converter.arithmetic == Deep::From10To16) + 5;
        Bytes down(std::size_t{pitch} * kHeight + 1, 0x55);
        Bytes up = down;
        converter.convert(down.data() + 1, src.data(), kWidth, kHeight, pitch, src.pitch, PX_MATRIX_BT709, PX_RGB_BGRA,
                          bits);
        converter.convert(up.data() + 1, src.data(), kWidth, kHeight, pitch, src.pitch, PX_MATRIX_BT709,
                          PX_RGB_BOTTOM_UP, bits);
        cycbcr_invert(up.data() + 1, pitch, kHeight);
        ASSERT_EQ(up, down) << converter.name;

        const unsigned wholeLines = (pitch + 63) / 64 * 64;
        Bytes room(std::size_t{wholeLines} * kHeight + 64, 0x55);
        unsigned char* const aligned = room.data() + -reinterpret_cast<std::uintptr_t>(room.data()) % 64;
        converter.convert(aligned, src.data(), kWidth, kHeight, wholeLines, src.pitch, PX_MATRIX_BT709, PX_RGB_BGRA,
                          bits);
        for (unsigned r = 0; r < kHeight; ++r) {
            const unsigned char* const row = down.data() + 1 + std::size_t{pitch} * r;
            ASSERT_TRUE(std::equal(row, row + pitch - 5, aligned + std::size_t{wholeLines} * r))
                << converter.name << ", row " << r;
        }
    }
}

} // namespace
