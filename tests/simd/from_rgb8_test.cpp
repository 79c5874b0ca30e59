#include "rgb/from_rgb_matrix.h"
#include "tests/levels.h"
#include "tests/rgb/from_rgb8_model.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using simd::RgbPixel;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMostPairs = 100;
constexpr simd::RgbOrder kOrders[] = {{2, 1, 0}, {3, 2, 1}, {0, 1, 2}, {1, 2, 3}};

const auto& kernels(simd::Level level) {
    return simd::kernelsAt(level).fromRgb8;
}

// Three rows, or one whose group the samples share, or luma alone.
enum class Target { Yuy2, Yvyu, Uyvy, Packed, Planar, Luma };
constexpr Target kTargets[] = {Target::Yuy2, Target::Yvyu, Target::Uyvy, Target::Packed, Target::Planar, Target::Luma};

struct Conversion {
    Target to;
    RgbPixel pixel;
    std::size_t pairs;
    simd::RgbOrder order;
    simd::FromRgbRow row;

    std::size_t sourceBytes() const {
        const bool namesNext = pixel == RgbPixel::Words3 && (order.r == 3 || order.b == 3);
        return pairs == 0 ? 0 : 2 * pairs * simd::bytesPerPixel(pixel) + (namesNext ? 2 : 0);
    }
    std::size_t lumaBytes() const { return to < Target::Planar ? 4 * pairs : 2 * pairs; }
    std::size_t chromaBytes() const { return to == Target::Planar ? pairs : 0; }

    void run(simd::Level level, std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src) const {
        const simd::RgbPairs from{src, pairs, 64, order};
        const auto kind = static_cast<unsigned>(pixel);
        if (to == Target::Luma) {
            kernels(level).luma[kind](y, from, row);
        } else {
            const auto& convert = kernels(level).convert[kind][static_cast<unsigned>(to)];
            if (to == Target::Planar || pairs == 0) return convert(y, cb, cr, from, row);
            const simd::Group group = simd::kGroups[static_cast<unsigned>(to == Target::Packed ? Target::Uyvy : to)];
            convert(y + group.y, y + group.cb, y + group.cr, from, row);
        }
    }
};

TEST(FromRgb8, EveryLevelEqualsPortableAtEveryWidthAndPlacement) {
    PlacedRow srcRow(4096);
    PlacedRow rows[3] = {PlacedRow(4096), PlacedRow(4096), PlacedRow(4096)};
    for (const Target to : kTargets) {
        for (unsigned pixel = 0; pixel < simd::kRgbPixels; ++pixel) {
            for (std::size_t pairs = 0; pairs <= kMostPairs; ++pairs) {
                const auto kind = static_cast<RgbPixel>(pixel);
                const unsigned order = static_cast<unsigned>(pairs) % 4;
                const auto matrix = static_cast<PXYCBCRMatrix>(pairs % kFromRgb8Matrices);
                const Conversion c{to, kind, pairs, kOrders[kind == RgbPixel::Bytes3 ? order / 2 * 2 : order],
                                   fromRgb8Row(matrix)};
                const Bytes src = noise(c.sourceBytes(), static_cast<unsigned>(pairs + 1));
                Bytes expected[3] = {Bytes(c.lumaBytes()), Bytes(c.chromaBytes()), Bytes(c.chromaBytes())};
                c.run(simd::Level::Portable, expected[0].data(), expected[1].data(), expected[2].data(), src.data());
                for (const simd::Level level : vectorLevels()) {
                    eachPlacement([&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                        std::uint8_t* at[3];
                        for (unsigned i = 0; i < 3; ++i) {
                            at[i] = rows[i].place(expected[i].size(), (dstOffset + 3 * i) % kAlignments, dstAtEnd);
                        }
                        c.run(level, at[0], at[1], at[2], srcRow.place(src, srcOffset, srcAtEnd));
                        for (unsigned i = 0; i < 3; ++i) {
                            ASSERT_TRUE(rows[i].holds(expected[i]) && rows[i].aroundIsUntouched())
                                << simd::levelName(level) << ", target " << static_cast<int>(to) << ", row " << i
                                << ", pixel " << pixel << ", " << pairs << " pairs, offset " << dstOffset;
                        }
                    });
                }
            }
        }
    }
}

// Luma and chroma of one plane may lie on those of another where a frame has one row only.
TEST(FromRgb8, RowsThatLieOnOneAnotherAreWrittenInOrder) {
    constexpr std::size_t kPairs = 75;
    constexpr std::size_t kRoom = 600;
    const Bytes src = noise(8 * kPairs);
    constexpr std::ptrdiff_t kChromaAt[][2] = {{300, 305}, {340, 300}, {20, 400}, {400, 149}, {1, 3}};
    for (const auto& [cb, cr] : kChromaAt) {
        const Conversion c{Target::Planar, RgbPixel::Bytes4, kPairs, kOrders[0], fromRgb8Row(PX_MATRIX_BT709)};
        Bytes expected(kRoom);
        c.run(simd::Level::Portable, expected.data(), expected.data() + cb, expected.data() + cr, src.data());
        for (const simd::Level level : vectorLevels()) {
            Bytes got(kRoom);
            c.run(level, got.data(), got.data() + cb, got.data() + cr, src.data());
            EXPECT_EQ(got, expected) << simd::levelName(level) << ", Cb at " << cb << ", Cr at " << cr;
        }
    }
}

// All 16.7 million colours, each as the first and as the second pixel of a pair.
class FromRgb8OfMatrix : public testing::TestWithParam<unsigned> {};

TEST_P(FromRgb8OfMatrix, EveryLevelFollowsTheEquationsOnEveryColour) {
    constexpr std::size_t kPairs = 4096;
    const unsigned matrix = GetParam();
    Bytes src(8 * kPairs);
    Bytes uyvy(4 * kPairs);
    Bytes planes(4 * kPairs);
    Bytes got(4 * kPairs);
    for (unsigned first = 0; first < 1U << 24; first += kPairs) {
        for (unsigned i = 0; i < kPairs; ++i) {
            const unsigned colour = first + i;
            const Components c{static_cast<std::uint8_t>(colour), static_cast<std::uint8_t>(colour >> 8),
                               static_cast<std::uint8_t>(colour >> 16)};
            const std::uint8_t pixels[8] = {c.r, c.g, c.b, 255, c.r, c.g, c.b, 1};
            std::copy_n(pixels, 8, &src[8 * i]);
            const std::uint8_t y = lumaOf(matrix, c, true);
            const std::uint8_t group[4] = {cbOf(matrix, c), y, crOf(matrix, c), y};
            std::copy_n(group, 4, &uyvy[4 * i]);
            planes[2 * i] = y;
            planes[2 * i + 1] = lumaOf(matrix, c, false);
            planes[2 * kPairs + i] = group[0];
            planes[3 * kPairs + i] = group[2];
        }
        const simd::FromRgbRow& row = fromRgb8Row(static_cast<PXYCBCRMatrix>(matrix));
        for (const simd::Level level : simd::kLevels) {
            const auto convert = [&](Target to, const Bytes& expected, std::size_t bytes) {
                const Conversion c{to, RgbPixel::Bytes4, kPairs, kOrders[2], row};
                c.run(level, got.data(), got.data() + 2 * kPairs, got.data() + 3 * kPairs, src.data());
                return std::equal(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(bytes), got.begin());
            };
            ASSERT_TRUE(convert(Target::Uyvy, uyvy, 4 * kPairs)) << simd::levelName(level) << ", from " << first;
            ASSERT_TRUE(convert(Target::Planar, planes, 4 * kPairs)) << simd::levelName(level) << ", from " << first;
            ASSERT_TRUE(convert(Target::Luma, planes, 2 * kPairs)) << simd::levelName(level) << ", from " << first;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, FromRgb8OfMatrix, testing::Range(0U, kFromRgb8Matrices));

TEST(FromRgb8, AlphaAtEveryWidthAndPlacement) {
    PlacedRow srcRow(4096);
    PlacedRow dstRow(4096);
    for (std::size_t pixels = 0; pixels <= 300; ++pixels) {
        Bytes src = noise(4 * pixels);
        Bytes expected[2] = {Bytes(pixels), Bytes(pixels)};
        for (std::size_t x = 0; x < pixels; ++x) {
            const auto a = static_cast<std::uint8_t>(x);
            src[4 * x + 3] = expected[0][x] = a;
            expected[1][x] = static_cast<std::uint8_t>(a * 7204443ULL / (1U << 23) + 16);
        }
        for (const simd::Level level : simd::kLevels) {
            for (unsigned scaled = 0; scaled < 2; ++scaled) {
                const auto convert = scaled == 0 ? kernels(level).alpha : kernels(level).scaledAlpha;
                eachPlacement([&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                    std::uint8_t* const to = dstRow.place(pixels, dstOffset, dstAtEnd);
                    convert(to, srcRow.place(src, srcOffset, srcAtEnd), pixels, 0);
                    ASSERT_TRUE(dstRow.holds(expected[scaled]) && dstRow.aroundIsUntouched())
                        << simd::levelName(level) << ", " << pixels << " pixels, scaled " << scaled;
                });
            }
        }
    }
}

} // namespace
