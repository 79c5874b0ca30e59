#include "fikleipa.h"
#include "tests/rgb/from_rgb_deep_model.h"
#include "tests/v210/model.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace fikleipa::tests;

struct Converter {
    const char* name;
    PXRgbToV210* convert;
    FromRgb arithmetic;
    RgbIn layout;
    std::vector<unsigned> depths;
    bool filtered = true;
};

unsigned fixed24(unsigned char* dst, unsigned char* src, unsigned width, unsigned height, unsigned dstPitch,
                 unsigned srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType type, unsigned /*bits*/) {
    return cycbcr_RGB24_to_012v(dst, src, width, height, dstPitch, srcPitch, matrix, type);
}
unsigned fixed32(unsigned char* dst, unsigned char* src, unsigned width, unsigned height, unsigned dstPitch,
                 unsigned srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType type, unsigned /*bits*/) {
    return cycbcr_RGB32_to_012v(dst, src, width, height, dstPitch, srcPitch, matrix, type);
}
unsigned packed10(unsigned char* dst, unsigned char* src, unsigned width, unsigned height, unsigned dstPitch,
                  unsigned srcPitch, PXYCBCRMatrix matrix, PXYCBCRRgbType type, unsigned /*bits*/) {
    return cycbcr_RGB10_to_012v(dst, src, width, height, dstPitch, srcPitch, matrix, type);
}

const Converter kConverters[] = {
    {"v210FromRGB 32", v210FromRGB, FromRgb::From8To10, RgbIn::Four8, {32}},
    {"v210FromRGB 24", v210FromRGB, FromRgb::From8To10, RgbIn::Three8, {24, 0, 64}},
    {"no filter 32", v210FromRGBNoFilter, FromRgb::From8To10, RgbIn::Four8, {32}, false},
    {"no filter 24", v210FromRGBNoFilter, FromRgb::From8To10, RgbIn::Three8, {24, 31}, false},
    {"RGB32", fixed32, FromRgb::From8To10, RgbIn::Four8, {0}},
    {"RGB24", fixed24, FromRgb::From8To10, RgbIn::Three8, {0}},
    {"RGB64 64", cycbcr_RGB64_to_012v, FromRgb::From16To10, RgbIn::Four16, {64, 32}},
    {"RGB64 48", cycbcr_RGB64_to_012v, FromRgb::From16To10, RgbIn::Three16, {48, 24, 0}},
    {"RGB10", packed10, FromRgb::From10To10, RgbIn::Packed10, {0}},
};

struct Frame {
    unsigned width, height;
    unsigned matrix, type;
};

// `colour(r, x)` is the picture from the top.
Bytes sourceOf(const Frame& f, RgbIn layout, unsigned pitch,
               const std::function<RgbColour(unsigned, unsigned)>& colour) {
    Bytes src(std::size_t{pitch} * f.height + 16);
    for (unsigned r = 0; r < f.height; ++r) {
        const unsigned row = (f.type & 0x8000) != 0 ? f.height - 1 - r : r;
        for (unsigned x = 0; x < f.width; ++x) {
            storeRgb(&src[std::size_t{row} * pitch + std::size_t{x} * bytesOf(layout)], layout, f.type, colour(r, x));
        }
    }
    return src;
}

void expectModel(const Converter& c, const Frame& f, unsigned bits, unsigned seed) {
    const unsigned srcPitch = f.width * bytesOf(c.layout) + 3;
    const unsigned dstPitch = (f.width / 6 + 1) * 16 + 5;
    std::minstd_rand random(seed + 1);
    const unsigned most = (1U << componentBits(c.arithmetic)) - 1;
    std::vector<std::vector<RgbColour>> picture(f.height, std::vector<RgbColour>(f.width));
    Bytes expected(std::size_t{dstPitch} * f.height + 16, 0x55);
    for (unsigned r = 0; r < f.height; ++r) {
        std::vector<YccSamples> row;
        for (RgbColour& p : picture[r]) {
            p = {static_cast<unsigned>(random() >> 4 & most), static_cast<unsigned>(random() >> 4 & most),
                 static_cast<unsigned>(random() >> 4 & most)};
            row.push_back(fromRgb(c.arithmetic, f.matrix, p));
        }
        const Bytes bytes = v210Row(row, c.filtered);
        std::copy(bytes.begin(), bytes.end(), expected.begin() + std::ptrdiff_t{r} * dstPitch);
    }
    Bytes src = sourceOf(f, c.layout, srcPitch, [&](unsigned r, unsigned x) { return picture[r][x]; });
    Bytes got(expected.size(), 0x55);
    EXPECT_EQ(c.convert(got.data(), src.data(), f.width, f.height, dstPitch, srcPitch,
                        static_cast<PXYCBCRMatrix>(f.matrix), static_cast<PXYCBCRRgbType>(f.type), bits),
              dstPitch * f.height);
    ASSERT_EQ(got, expected) << c.name << ", width " << f.width << ", matrix " << f.matrix << ", type " << f.type;
}

// Every width that a group or a vector may end in, and those about the ends of pieces; the rest by turns.
TEST(RgbToV210, FollowsTheEquations) {
    constexpr unsigned kTypes[] = {0, 1, 2, 3, 4, 7, 0x8000, 0x8001, 0x8002, 0x8003, 0x8005};
    for (const Converter& c : kConverters) {
        unsigned turn = 0;
        const auto frames = [&](unsigned width, unsigned height) {
            expectModel(c, {width, height, turn % 12, kTypes[turn % std::size(kTypes)]},
                        c.depths[turn % c.depths.size()], turn);
            ++turn;
        };
        for (unsigned width = 0; width <= 200; ++width) frames(width, 1 + width % 4);
        for (const unsigned width : {1919U, 1920U, 1922U, 1926U, 1927U, 1928U, 3840U, 3846U, 3850U, 5000U})
            frames(width, 2);
        frames(30, 0);
    }
}

TEST(RgbToV210, KnownColours) {
    const auto convert = [](unsigned width, std::initializer_list<unsigned> greys) {
        Bytes src;
        for (const unsigned grey : greys) src.insert(src.end(), 3, static_cast<unsigned char>(grey));
        Bytes dst(48, 0x55);
        v210FromRGB(dst.data(), src.data(), width, 1, 48, 0, PX_MATRIX_BT601, PX_RGB_BGRA, 24);
        return dst;
    };
    const Bytes six = convert(6, {0, 0, 255, 255, 255, 0});
    for (unsigned x = 0; x < 6; ++x) EXPECT_EQ(component(six.data(), lumaOf(x)), x < 2 || x == 5 ? 64U : 940U);
    for (unsigned pair = 0; pair < 3; ++pair) EXPECT_EQ(component(six.data(), cbOf(pair)), 512U);
    // A single pixel behind the group is dropped; two take half a group.
    const Bytes seven = convert(7, {0, 0, 255, 255, 255, 0, 9});
    EXPECT_EQ(seven, six);
    const Bytes eight = convert(8, {0, 0, 255, 255, 255, 0, 255, 0});
    EXPECT_TRUE(std::equal(six.begin(), six.begin() + 16, eight.begin()));
    EXPECT_EQ(loadWord(&eight[16]), 512U | 940U << 10 | 512U << 20);
    EXPECT_EQ(loadWord(&eight[20]), 64U);
    EXPECT_EQ(eight[24], 0x55);
}

// The first pair of a row of pure blue is a sixth nearer to grey.
TEST(RgbToV210, RowsBeginBesideNeutral) {
    Bytes src(std::size_t{12} * 3);
    for (std::size_t x = 0; x < 12; ++x) src[3 * x] = 255;
    Bytes dst(32);
    v210FromRGB(dst.data(), src.data(), 12, 1, 32, 0, PX_MATRIX_BT601, PX_RGB_BGRA, 24);
    EXPECT_EQ(component(dst.data(), cbOf(0)), (512 + 5 * 959U) / 6);
    for (unsigned pair = 1; pair < 6; ++pair) EXPECT_EQ(component(dst.data(), cbOf(pair)), 959U);
}

// Three samples to a word; the second row begins within the last word of the first.
TEST(RgbToV210, AlphaIsPackedThreeToAWord) {
    constexpr unsigned kWidth = 5;
    Bytes src(2 * std::size_t{kWidth} * 4, 0x77);
    for (unsigned i = 0; i < 2 * kWidth; ++i) src[4 * i + 3] = static_cast<unsigned char>(i == 0 ? 255 : 25 * (i - 1));
    for (const unsigned flags : {0U, 1U, 2U, 0xFFFFFFFFU}) {
        for (const unsigned type : {0U, 3U, 0x8000U}) {
            Bytes expected(20, 0x55);
            const auto sample = [&](unsigned r, unsigned x) {
                if (x >= kWidth) return 0U;
                const unsigned alpha = src[std::size_t{4} * (((type & 0x8000) != 0 ? 1 - r : r) * kWidth + x) + 3];
                return (flags & 1) != 0 ? alpha * 876 / 255 + 64 : alpha * 4;
            };
            for (unsigned r = 0; r < 2; ++r) {
                for (unsigned word = 0; word < 2; ++word) {
                    const unsigned x = 3 * word;
                    storeWord(&expected[std::size_t{r} * 6 + std::size_t{4} * word],
                              sample(r, x) | sample(r, x + 1) << 10 | sample(r, x + 2) << 20);
                }
            }
            Bytes got(20, 0x55);
            EXPECT_EQ(cycbcr_RGB32_to_012v_Alpha(got.data(), src.data(), kWidth, 2, 99, 4 * kWidth, flags,
                                                 static_cast<PXYCBCRRgbType>(type)),
                      13U);
            EXPECT_EQ(got, expected) << flags << ", " << type;
        }
    }
    const auto first = [&](unsigned flags, std::size_t x) {
        Bytes word(4);
        cycbcr_RGB32_to_012v_Alpha(word.data(), &src[4 * x], 1, 1, 0, 4, flags, PX_RGB_BGRA);
        return loadWord(word.data());
    };
    EXPECT_EQ(first(1, 0), 940U);
    EXPECT_EQ(first(1, 1), 64U);
    EXPECT_EQ(first(0, 0), 1020U);
    EXPECT_EQ(first(0, 1), 0U);
    EXPECT_EQ(cycbcr_RGB32_to_012v_Alpha(nullptr, nullptr, 0, 5, 0, 0, 1, PX_RGB_BGRA), 0U);
}

} // namespace
