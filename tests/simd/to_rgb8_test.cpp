#include "rgb/matrix.h"
#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using simd::Rgb8;
using simd::Samples8;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMostPairs = 110;

// Where a source's samples are.
struct Input {
    Samples8 source;
    const std::uint8_t *y, *cb, *cr;
    std::size_t pairs;
    PXYCBCRMatrix matrix;
};

// Kernels of one kind: how many destinations they have, how many bytes a pixel has in each, and the call.
struct Kind {
    std::string name;
    std::size_t destinations;
    std::size_t pixelBytes;
    std::function<void(const simd::ToRgb8Kernels&, const std::vector<std::uint8_t*>&, const Input&)> convert;
};

template <class RowOf, class Table>
Kind planes(const char* name, std::size_t sampleBytes, Table simd::ToRgb8Kernels::*table, RowOf rowOf) {
    return {name, 3, sampleBytes,
            [=](const simd::ToRgb8Kernels& k, const std::vector<std::uint8_t*>& to, const Input& from) {
                (k.*table)[static_cast<unsigned>(from.source)](to[0], to[1], to[2], from.y, from.cb, from.cr,
                                                               from.pairs, rowOf(from.matrix));
            }};
}

template <class RowOf, class Table>
Kind packed(std::size_t format, std::size_t pixelBytes, Table simd::ToRgb8Kernels::*table, RowOf rowOf) {
    return {std::to_string(pixelBytes) + " bytes, format " + std::to_string(format), 1, pixelBytes,
            [=](const simd::ToRgb8Kernels& k, const std::vector<std::uint8_t*>& to, const Input& from) {
                (k.*table)[static_cast<unsigned>(from.source)][format](to[0], from.y, from.cb, from.cr, from.pairs,
                                                                       rowOf(from.matrix));
            }};
}

std::vector<Kind> allKinds() {
    using K = simd::ToRgb8Kernels;
    std::vector<Kind> all{planes("planes", 1, &K::toPlanes, toRgb8Row),
                          planes("16-bit planes", 2, &K::toPlanes16, toRgb16Row),
                          planes("words, double precision", 2, &K::toWordsFloat, toRgb8FloatRow)};
    for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
        all.push_back(packed(i, simd::bytesPerPixel(static_cast<Rgb8>(i)), &K::toRgb, toRgb8Row));
    }
    for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
        const std::size_t bytes = simd::bytesPerPixel(static_cast<Rgb8>(i));
        Kind pastCache = packed(i, bytes, &K::toRgbPast, toRgb8Row);
        pastCache.name += ", past the cache where aligned";
        pastCache.convert = [past = pastCache.convert, viaCache = packed(i, bytes, &K::toRgb, toRgb8Row).convert,
                             bytes](const K& k, const std::vector<std::uint8_t*>& to, const Input& from) {
            (reinterpret_cast<std::uintptr_t>(to[0]) % (bytes == 3 ? 2 : 2 * bytes) == 0 ? past : viaCache)(k, to,
                                                                                                            from);
        };
        all.push_back(pastCache);
    }
    for (std::size_t i = 0; i < simd::kRgb16s; ++i) {
        all.push_back(packed(i, simd::bytesPerPixel(static_cast<simd::Rgb16>(i)), &K::toRgb16, toRgb16Row));
    }
    return all;
}

const simd::ToRgb8Kernels& kernels(simd::Level level) {
    return simd::kernelsAt(level).rgb8;
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
    void fill(const Shape& shape, std::size_t pairs) {
        shape_ = shape;
        pairs_ = pairs;
        const auto seed = static_cast<unsigned>(pairs);
        const bool whole = shape.packed() && !shape.apart;
        luma_ = noise(pairs == 0 ? 0 : whole ? 4 * pairs : shape.lumaBytes(pairs), seed);
        first_ = noise(pairs == 0 ? 0 : shape.chromaBytes(pairs), seed + 1000);
        second_ = noise(shape.source == Samples8::Planar ? pairs : 0, seed + 2000);
    }

    Input place(unsigned offset, bool atEnd) {
        const std::uint8_t* const y = lumaRow_.place(luma_, offset, atEnd);
        const std::uint8_t* const u = firstRow_.place(first_, (offset + 3) % kAlignments, atEnd);
        const std::uint8_t* const v = secondRow_.place(second_, (offset + 5) % kAlignments, atEnd);
        const std::uint8_t* const chroma = shape_.packed() && !shape_.apart ? y : u;
        const simd::Group group = shape_.group();
        return {
            shape_.source, y + group.y,    chroma + group.cb, shape_.source == Samples8::Planar ? v : chroma + group.cr,
            pairs_,        PX_MATRIX_BT601};
    }

private:
    Shape shape_{};
    std::size_t pairs_ = 0;
    Bytes luma_, first_, second_;
    PlacedRow lumaRow_{4096}, firstRow_{4096}, secondRow_{4096};
};

std::vector<Bytes> run(const Kind& kind, simd::Level level, const Input& input) {
    std::vector<Bytes> destinations(kind.destinations, Bytes(2 * input.pairs * kind.pixelBytes + 1));
    std::vector<std::uint8_t*> to;
    for (Bytes& each : destinations) to.push_back(each.data());
    kind.convert(kernels(level), to, input);
    for (Bytes& each : destinations) each.pop_back(); // which is there for rows of no pixels
    return destinations;
}

TEST(ToRgb8, EveryLevelEqualsPortableAtEveryWidthAndPlacement) {
    Rows rows;
    PlacedRow dst[3] = {PlacedRow(4096), PlacedRow(4096), PlacedRow(4096)};
    for (const Kind& kind : allKinds()) {
        for (const Shape& shape : kShapes) {
            for (std::size_t pairs = 0; pairs <= kMostPairs; ++pairs) {
                rows.fill(shape, pairs);
                const std::vector<Bytes> expected = run(kind, simd::Level::Portable, rows.place(0, false));
                for (const simd::Level level : vectorLevels()) {
                    eachPlacement([&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                        std::vector<std::uint8_t*> to;
                        for (std::size_t i = 0; i < kind.destinations; ++i) {
                            const auto offset = (dstOffset + static_cast<unsigned>(i)) % kAlignments;
                            to.push_back(dst[i].place(expected[i].size(), offset, dstAtEnd));
                        }
                        kind.convert(kernels(level), to, rows.place(srcOffset, srcAtEnd));
                        for (std::size_t i = 0; i < kind.destinations; ++i) {
                            ASSERT_TRUE(dst[i].holds(expected[i]) && dst[i].aroundIsUntouched())
                                << simd::levelName(level) << ", source " << static_cast<int>(shape.source) << ", "
                                << kind.name << ", " << pairs << " pairs, offset " << dstOffset;
                        }
                    });
                    if (HasFatalFailure()) return;
                }
            }
        }
    }
}

// All 16.7 million colours of every matrix, in each way of computing and of storing.
TEST(ToRgb8, EveryLevelEqualsPortableOnEveryColour) {
    constexpr std::size_t kPairs = 128;
    Bytes luma(2 * kPairs);
    for (std::size_t i = 0; i < luma.size(); ++i) luma[i] = static_cast<std::uint8_t>(i);
    Bytes cb(kPairs);
    Bytes cr(kPairs);
    using K = simd::ToRgb8Kernels;
    const auto rgb8 = [](Rgb8 format) {
        return packed(static_cast<std::size_t>(format), simd::bytesPerPixel(format), &K::toRgb, toRgb8Row);
    };
    const Kind kinds[] = {rgb8(Rgb8::Bgra),
                          rgb8(Rgb8::Rgb),
                          rgb8(Rgb8::Rgb565),
                          rgb8(Rgb8::Bgr555),
                          planes("planes", 1, &K::toPlanes, toRgb8Row),
                          planes("16-bit planes", 2, &K::toPlanes16, toRgb16Row),
                          planes("words, double precision", 2, &K::toWordsFloat, toRgb8FloatRow)};

    for (const unsigned matrix : {0U, 1U, 2U, 3U, 4U, 6U, 7U}) {
        const Input input{Samples8::Planar, luma.data(), cb.data(),
                          cr.data(),        kPairs,      static_cast<PXYCBCRMatrix>(matrix)};
        for (unsigned colour = 0; colour < 65536; ++colour) {
            std::fill(cb.begin(), cb.end(), static_cast<std::uint8_t>(colour));
            std::fill(cr.begin(), cr.end(), static_cast<std::uint8_t>(colour >> 8));
            for (const Kind& kind : kinds) {
                const std::vector<Bytes> expected = run(kind, simd::Level::Portable, input);
                for (const simd::Level level : vectorLevels()) {
                    ASSERT_EQ(run(kind, level, input), expected)
                        << simd::levelName(level) << ", " << kind.name << ", matrix " << matrix << ", Cb "
                        << colour % 256 << ", Cr " << colour / 256;
                }
            }
        }
    }
}

} // namespace
