#include "rgb/matrix.h"
#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using simd::Rgb8;
using simd::Samples8;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMostPairs = 110;

const auto& kernels(simd::Level level, Samples8 source) {
    return simd::kernelsAt(level).rgb8.toRgb[static_cast<unsigned>(source)];
}

// A source of rows, and where its samples begin in the bytes that a kernel may read.
struct Shape {
    Samples8 source;
    bool apart; // packed luma and chroma in different groups, as in frames of odd width

    bool packed() const { return source < Samples8::Planar; }

    // The packed kernels that know no group are given UYVY.
    simd::Group group() const {
        return packed() ? simd::kGroups[static_cast<unsigned>(source == Samples8::Packed ? Samples8::Uyvy : source)]
                        : simd::Group{0, 0, 1};
    }

    // Packed rows begin with a whole group, as every row of a frame does, and end with their last sample.
    std::size_t lumaBytes(std::size_t pairs) const { return packed() ? group().y + 4 * pairs - 1 : 2 * pairs; }
    std::size_t chromaBytes(std::size_t pairs) const {
        if (packed()) return std::max(group().cb, group().cr) + 4 * pairs - 3;
        return source == Samples8::BiPlanar ? 2 * pairs : pairs;
    }
};

constexpr Shape kShapes[] = {{Samples8::Yuy2, false},   {Samples8::Yvyu, false},   {Samples8::Uyvy, false},
                             {Samples8::Packed, false}, {Samples8::Planar, false}, {Samples8::BiPlanar, false},
                             {Samples8::Yuy2, true},    {Samples8::Yvyu, true},    {Samples8::Uyvy, true}};

// The rows of a source between forbidden pages: one where luma and chroma share their groups.
class Rows {
public:
    using Call = simd::ToRgbKernel<simd::ToRgbRow>;

    void fill(const Shape& shape, std::size_t pairs) {
        shape_ = shape;
        pairs_ = pairs;
        const auto seed = static_cast<unsigned>(pairs);
        const bool whole = shape.packed() && !shape.apart;
        luma_ = noise(pairs == 0 ? 0 : whole ? 4 * pairs : shape.lumaBytes(pairs), seed);
        first_ = noise(pairs == 0 ? 0 : shape.chromaBytes(pairs), seed + 1000);
        second_ = noise(shape.source == Samples8::Planar ? pairs : 0, seed + 2000);
    }

    void convert(Call kernel, std::uint8_t* dst, unsigned offset, bool atEnd, const simd::ToRgbRow& row) {
        const std::uint8_t* const y = lumaRow_.place(luma_, offset, atEnd);
        const std::uint8_t* const u = firstRow_.place(first_, (offset + 3) % kAlignments, atEnd);
        const std::uint8_t* const v = secondRow_.place(second_, (offset + 5) % kAlignments, atEnd);
        const std::uint8_t* const chroma = shape_.packed() && !shape_.apart ? y : u;
        const simd::Group group = shape_.group();
        kernel(dst, y + group.y, chroma + group.cb, shape_.source == Samples8::Planar ? v : chroma + group.cr, pairs_,
               row);
    }

private:
    Shape shape_{};
    std::size_t pairs_ = 0;
    Bytes luma_, first_, second_;
    PlacedRow lumaRow_{4096}, firstRow_{4096}, secondRow_{4096};
};

TEST(ToRgb8, EveryLevelEqualsPortableAtEveryWidthAndPlacement) {
    Rows rows;
    PlacedRow dst(4096);
    const simd::ToRgbRow& coefficients = toRgb8Row(PX_MATRIX_BT601);
    for (const Shape& shape : kShapes) {
        for (std::size_t format = 0; format < simd::kRgb8s; ++format) {
            const unsigned pixelBytes = simd::bytesPerPixel(static_cast<Rgb8>(format));
            for (std::size_t pairs = 0; pairs <= kMostPairs; ++pairs) {
                rows.fill(shape, pairs);
                Bytes expected(2 * pairs * pixelBytes);
                rows.convert(kernels(simd::Level::Portable, shape.source)[format], expected.data(), 0, false,
                             coefficients);
                for (const simd::Level level : vectorLevels()) {
                    eachPlacement([&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                        std::uint8_t* const to = dst.place(expected.size(), dstOffset, dstAtEnd);
                        rows.convert(kernels(level, shape.source)[format], to, srcOffset, srcAtEnd, coefficients);
                        ASSERT_TRUE(dst.holds(expected) && dst.aroundIsUntouched())
                            << simd::levelName(level) << ", source " << static_cast<int>(shape.source) << ", format "
                            << format << ", " << pairs << " pairs, offset " << dstOffset;
                    });
                }
            }
        }
    }
}

// All 16.7 million colours of every matrix, in a format of each way of storing.
TEST(ToRgb8, EveryLevelEqualsPortableOnEveryColour) {
    constexpr std::size_t kPairs = 128;
    Bytes luma(2 * kPairs);
    for (std::size_t i = 0; i < luma.size(); ++i) luma[i] = static_cast<std::uint8_t>(i);
    Bytes cb(kPairs);
    Bytes cr(kPairs);
    Bytes expected(4 * luma.size());
    Bytes got(expected.size());

    for (const unsigned matrix : {0U, 1U, 2U, 3U, 6U, 7U}) {
        const simd::ToRgbRow& row = toRgb8Row(static_cast<PXYCBCRMatrix>(matrix));
        for (unsigned colour = 0; colour < 65536; ++colour) {
            std::fill(cb.begin(), cb.end(), static_cast<std::uint8_t>(colour));
            std::fill(cr.begin(), cr.end(), static_cast<std::uint8_t>(colour >> 8));
            for (const Rgb8 format : {Rgb8::Bgra, Rgb8::Rgb, Rgb8::Rgb565, Rgb8::Bgr555}) {
                const auto convert = [&](simd::Level level, Bytes& dst) {
                    kernels(level, Samples8::Planar)[static_cast<unsigned>(format)](dst.data(), luma.data(), cb.data(),
                                                                                    cr.data(), kPairs, row);
                };
                convert(simd::Level::Portable, expected);
                for (const simd::Level level : vectorLevels()) {
                    convert(level, got);
                    ASSERT_EQ(got, expected) << simd::levelName(level) << ", matrix " << matrix << ", Cb "
                                             << colour % 256 << ", Cr " << colour / 256;
                }
            }
        }
    }
}

} // namespace
