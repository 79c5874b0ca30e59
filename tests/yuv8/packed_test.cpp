#include "fikleipa.h"
#include "tests/guarded_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

Bytes noise(std::size_t bytes, unsigned seed = 3) {
    std::minstd_rand random(seed);
    Bytes data(bytes);
    for (unsigned char& byte : data) byte = static_cast<unsigned char>(random() >> 8);
    return data;
}

struct Geometry {
    unsigned width;
    unsigned height;
    unsigned dstPitch;
    unsigned srcPitch;
};

// What the converters are to do, a byte at a time and a step after the other.
void copyModel(unsigned char* dst, const unsigned char* src, const Geometry& g) {
    const unsigned bytes = std::min(g.dstPitch, g.srcPitch);
    for (unsigned y = 0; y < g.height; ++y) std::copy_n(src + y * g.srcPitch, bytes, dst + y * g.dstPitch);
}

void swapBytes(unsigned char* dst, const unsigned char* src, unsigned words) {
    for (unsigned i = 0; i < words; ++i) {
        const unsigned char first = src[2 * i];
        dst[2 * i] = src[2 * i + 1];
        dst[2 * i + 1] = first;
    }
}

void swapPitchesModel(unsigned char* dst, const unsigned char* src, const Geometry& g) {
    if (g.dstPitch == g.srcPitch) {
        swapBytes(dst, src, g.dstPitch * g.height / 2);
        return;
    }
    const unsigned words = std::min(g.dstPitch, g.srcPitch) / 2;
    for (unsigned y = 0; y < g.height; ++y) swapBytes(dst + y * g.dstPitch, src + y * g.srcPitch, words);
}

void swapGroupsModel(unsigned char* dst, const unsigned char* src, const Geometry& g) {
    for (unsigned y = 0; y < g.height; ++y) swapBytes(dst + y * g.dstPitch, src + y * g.srcPitch, g.width / 2 * 2);
}

void exchangeModel(unsigned char* dst, const unsigned char* src, const Geometry& g) {
    for (unsigned y = 0; y < g.height; ++y) {
        for (unsigned i = 0; i < g.width / 2 * 4; i += 4) {
            unsigned char* const d = dst + y * g.dstPitch + i;
            const unsigned char* const s = src + y * g.srcPitch + i;
            const unsigned char group[4] = {s[0], s[3], s[2], s[1]};
            std::copy_n(group, 4, d);
        }
    }
}

void reverseModel(unsigned char* dst, const unsigned char* src, const Geometry& g) {
    const unsigned bytes = std::min(g.dstPitch, g.srcPitch);
    for (unsigned y = 0; y < g.height; ++y) {
        std::copy_n(src + (g.height - 1 - y) * g.srcPitch, bytes, dst + y * g.dstPitch);
    }
}

void invertModel(unsigned char* dst, const Geometry& g) {
    for (unsigned y = 0; y < g.height / 2; ++y) {
        unsigned char* const upper = dst + y * g.dstPitch;
        std::swap_ranges(upper, upper + g.dstPitch, dst + (g.height - 1 - y) * g.dstPitch);
    }
}

template <void (*kModel)(unsigned char*, const unsigned char*, const Geometry&)>
void thenInvert(unsigned char* dst, const unsigned char* src, const Geometry& g) {
    kModel(dst, src, g);
    invertModel(dst, g);
}

struct Converter {
    const char* name;
    PXConvertFrame* convert;
    void (*model)(unsigned char*, const unsigned char*, const Geometry&);
};

#define CONVERTER(name, model)                                                                                         \
    Converter {                                                                                                        \
#name, static_cast < PXConvertFrame*>(cycbcr_##name), model                                                    \
    }
const Converter kConverters[] = {
    CONVERTER(yuy2_to_yuy2, copyModel),
    CONVERTER(yvyu_to_yvyu, copyModel),
    CONVERTER(uyvy_to_uyvy, copyModel),
    CONVERTER(cyuv_to_cyuv, copyModel),
    CONVERTER(interleaved_copy, copyModel),
    CONVERTER(yuy2_to_uyvy, swapPitchesModel),
    CONVERTER(uyvy_to_yuy2, swapPitchesModel),
    CONVERTER(yvyu_to_uyvy, swapGroupsModel),
    CONVERTER(uyvy_to_yvyu, swapGroupsModel),
    CONVERTER(yuy2_to_yvyu, exchangeModel),
    CONVERTER(yvyu_to_yuy2, exchangeModel),
    CONVERTER(yuy2_to_cyuv, thenInvert<swapPitchesModel>),
    CONVERTER(cyuv_to_yuy2, thenInvert<swapPitchesModel>),
    CONVERTER(yvyu_to_cyuv, thenInvert<swapGroupsModel>),
    CONVERTER(cyuv_to_yvyu, thenInvert<swapGroupsModel>),
    CONVERTER(uyvy_to_cyuv, reverseModel),
    CONVERTER(cyuv_to_uyvy, reverseModel),
};

std::string describe(const Converter& converter, const Geometry& g) {
    return std::string(converter.name) + " " + std::to_string(g.width) + "x" + std::to_string(g.height) + ", pitches " +
           std::to_string(g.dstPitch) + " and " + std::to_string(g.srcPitch);
}

// Pitches below, at and above the row's bytes, odd ones, and 0.
std::vector<Geometry> geometries() {
    std::vector<Geometry> all;
    for (const unsigned width : {0U, 1U, 2U, 7U, 64U, 129U}) {
        const unsigned row = 2 * width;
        for (const unsigned height : {0U, 1U, 2U, 5U, 8U}) {
            for (const unsigned dstPitch : {0U, row, row + 3, row + 40}) {
                for (const unsigned srcPitch : {0U, row, row + 3, row + 40, row / 2}) {
                    all.push_back({width, height, dstPitch, srcPitch});
                }
            }
        }
    }
    return all;
}

TEST(Packed, EveryConverterDoesItsStepsForEveryGeometry) {
    constexpr std::size_t kRoom = 8 * 320 + 600;
    const Bytes source = noise(kRoom);
    for (const Converter& converter : kConverters) {
        for (const Geometry& g : geometries()) {
            Bytes src = source;
            Bytes got(kRoom, 0x55);
            Bytes expected = got;
            EXPECT_EQ(converter.convert(got.data(), src.data(), g.width, g.height, g.dstPitch, g.srcPitch),
                      g.dstPitch * g.height);
            converter.model(expected.data(), src.data(), g);
            ASSERT_EQ(got, expected) << describe(converter, g);
            ASSERT_EQ(src, source) << describe(converter, g);
        }
    }
}

TEST(Packed, FramesConvertInPlace) {
    constexpr std::size_t kRoom = 8 * 320;
    for (const Converter& converter : kConverters) {
        // Bulk copies of a frame or a row onto itself are not asked for.
        if (converter.model == copyModel || converter.model == reverseModel) continue;
        for (const unsigned height : {1U, 5U, 8U}) {
            const Geometry g{150, height, 304, 304};
            Bytes got = noise(kRoom);
            Bytes expected = got;
            converter.convert(got.data(), got.data(), g.width, g.height, g.dstPitch, g.srcPitch);
            converter.model(expected.data(), expected.data(), g);
            ASSERT_EQ(got, expected) << describe(converter, g);
        }
    }
}

TEST(Packed, NothingBeyondTheRowsIsTouched) {
    GuardedBytes src(8192);
    GuardedBytes dst(8192);
    for (const Converter& converter : kConverters) {
        for (unsigned width = 2; width <= 200; width += 2) {
            const unsigned bytes = 2 * width * 3;
            converter.convert(dst.end() - bytes, src.end() - bytes, width, 3, 2 * width, 2 * width);
            converter.convert(dst.begin(), src.begin(), width, 3, 2 * width, 2 * width);
        }
    }
}

TEST(Packed, BytesOfAGroup) {
    const auto converted = [](PXConvertFrame* convert) {
        Bytes src{0x10, 0x20, 0x30, 0x40};
        Bytes dst(4);
        EXPECT_EQ(convert(dst.data(), src.data(), 2, 1, 4, 4), 4U);
        return dst;
    };
    EXPECT_EQ(converted(cycbcr_yvyu_to_uyvy), (Bytes{0x20, 0x10, 0x40, 0x30}));
    EXPECT_EQ(converted(cycbcr_yuy2_to_uyvy), (Bytes{0x20, 0x10, 0x40, 0x30}));
    EXPECT_EQ(converted(cycbcr_yuy2_to_yvyu), (Bytes{0x10, 0x40, 0x30, 0x20}));
}

TEST(Packed, ResultsWrapAt32Bits) {
    unsigned char byte = 0;
    EXPECT_EQ(cycbcr_yvyu_to_uyvy(&byte, &byte, 0, 0x10001, 0x10000, 0), 0x10000U);
}

TEST(Packed, TheOverloadWorksOnUnitsOfEightBytes) {
    Bytes src{0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70, 0x80};
    Bytes dst(8, 0x55);
    EXPECT_EQ(cycbcr_yuy2_to_yvyu(dst.data(), src.data(), 1UL, 1UL, 9UL), 1UL);
    EXPECT_EQ(dst, Bytes(8, 0x55));
    EXPECT_EQ(cycbcr_yuy2_to_yvyu(dst.data(), src.data(), 2UL, 1UL, 9UL), 2UL);
    EXPECT_EQ(dst, (Bytes{0x10, 0x40, 0x30, 0x20, 0, 0, 0, 0}));

    src = noise(5 * 8);
    dst.assign(5 * 8, 0x55);
    EXPECT_EQ(cycbcr_yuy2_to_yvyu(dst.data(), src.data(), 3UL, 3UL, 0UL), 9UL);
    EXPECT_EQ(dst[24], src[24]);
    EXPECT_EQ(dst[25], src[27]);
    EXPECT_EQ(dst[32], 0x55) << "four units, the odd ninth count left over";
}

} // namespace
