#include "rgb/from_rgb_deep_matrix.h"
#include "rgb/from_rgb_matrix.h"
#include "tests/rgb/from_rgb8_model.h"
#include "tests/simd/rows.h"

#include <cstdlib>

namespace fikleipa::tests {
namespace {

using simd::RgbOrder;
using simd::RgbPixel;
using simd::RgbSource;

// Where pairs go: a row whose groups the samples share, planes, or luma alone.
enum class Target { Yuy2, Yvyu, Uyvy, Packed, Planar, Luma };

RowKernel pairs(Target target, RgbPixel pixel, const RgbOrder& order, const simd::FromRgbRow& row) {
    const auto to8 = static_cast<unsigned>(target);
    const auto kind = static_cast<unsigned>(pixel);
    const bool packed = target < Target::Planar;
    const simd::Group g = packed ? simd::kGroups[target == Target::Packed ? 2 : to8] : simd::Group{0, 0, 0};
    const bool namesNext = pixel == RgbPixel::Words3 && (order.r == 3 || order.b == 3);
    const std::ptrdiff_t bytes = 2 * bytesPerPixel(pixel);
    const Lengths written = packed                   ? Lengths{{{4}}}
                            : target == Target::Luma ? Lengths{{{2}}}
                                                     : Lengths{{{2}, {1}, {1}}};
    return {"target " + std::to_string(to8) + ", pixel " + std::to_string(kind) + ", order " + std::to_string(order.r),
            written,
            {{{bytes, namesNext ? 2 : 0}}},
            [=](auto& k, auto& to, auto& from, auto n) {
                const simd::RgbPairs src{from[0], n, 64, order};
                if (target == Target::Luma) return k.fromRgb8.luma[kind](to[0], src, row);
                k.fromRgb8.convert[kind][to8](to[0] + g.y, to[packed ? 0 : 1] + g.cb, to[packed ? 0 : 2] + g.cr, src,
                                              row);
            }};
}

} // namespace

// Orders and rows of coefficients take turns.
std::vector<RowKernel> fromRgb8Kernels() {
    constexpr RgbOrder kOrders[] = {{2, 1, 0}, {3, 2, 1}, {0, 1, 2}, {1, 2, 3}};
    std::vector<RowKernel> all;
    for (unsigned target = 0; target < 6; ++target) {
        for (unsigned pixel = 0; pixel < simd::kRgbPixels; ++pixel) {
            const auto kind = static_cast<RgbPixel>(pixel);
            for (unsigned order = 0; order < 4; order += kind == RgbPixel::Bytes3 ? 2 : 1) {
                const auto matrix = static_cast<PXYCBCRMatrix>(all.size() % kFromRgb8Matrices);
                all.push_back(pairs(static_cast<Target>(target), kind, kOrders[order], fromRgb8Row(matrix)));
            }
        }
    }
    const auto addAlpha = [&](const char* name, simd::AlphaKernel simd::FromRgb8Kernels::*kernel) {
        all.push_back({name, {{{1}}}, {{{4}}}, [=](auto& k, auto& to, auto& from, auto n) {
                           (k.fromRgb8.*kernel)(to[0], from[0], n, 0);
                       }});
    };
    addAlpha("alpha", &simd::FromRgb8Kernels::alpha);
    addAlpha("scaled alpha", &simd::FromRgb8Kernels::scaledAlpha);
    return all;
}

namespace {

// All 16.7 million colours, each as the first and as the second pixel of a pair.
class FromRgb8OfMatrix : public testing::TestWithParam<unsigned> {};
INSTANTIATE_TEST_SUITE_P(Rows, FromRgb8OfMatrix, testing::Range(0U, kFromRgb8Matrices));

TEST_P(FromRgb8OfMatrix, EveryLevelFollowsTheEquationsOnEveryColour) {
    constexpr std::size_t kPairs = 4096;
    const unsigned matrix = GetParam();
    const auto to = [&](Target target) {
        return pairs(target, RgbPixel::Bytes4, {0, 1, 2}, fromRgb8Row(static_cast<PXYCBCRMatrix>(matrix)));
    };
    const RowKernel kernels[] = {to(Target::Uyvy), to(Target::Planar), to(Target::Luma)};
    Rows src{Bytes(8 * kPairs)};
    Rows expected[] = {{Bytes(4 * kPairs)}, {Bytes(2 * kPairs), Bytes(kPairs), Bytes(kPairs)}, {}};
    for (unsigned first = 0; first < 1U << 24; first += kPairs) {
        for (unsigned i = 0; i < kPairs; ++i) {
            const unsigned colour = first + i;
            const Components c{static_cast<std::uint8_t>(colour), static_cast<std::uint8_t>(colour >> 8),
                               static_cast<std::uint8_t>(colour >> 16)};
            const std::uint8_t pixels[8] = {c.r, c.g, c.b, 255, c.r, c.g, c.b, 1};
            std::copy_n(pixels, 8, &src[0][8 * std::size_t{i}]);
            const std::uint8_t y = lumaOf(matrix, c, true);
            const std::uint8_t group[4] = {cbOf(matrix, c), y, crOf(matrix, c), y};
            std::copy_n(group, 4, &expected[0][0][4 * std::size_t{i}]);
            auto& [luma, cb, cr] = expected[1];
            luma[2 * std::size_t{i}] = y;
            luma[2 * std::size_t{i} + 1] = lumaOf(matrix, c, false);
            cb[i] = group[0];
            cr[i] = group[2];
        }
        expected[2][0] = expected[1][0];
        for (const simd::Level level : simd::kLevels) {
            if (level > simd::bestLevel()) break;
            for (unsigned i = 0; i < std::size(kernels); ++i) {
                ASSERT_TRUE(convert(kernels[i], level, src, kPairs) == expected[i])
                    << kernels[i].name << " at " << simd::levelName(level) << ", from " << first;
            }
        }
    }
}

using Table = simd::FromRgbDeepOfSource;

constexpr unsigned kMatrices = 10;
constexpr RgbOrder kOrder{2, 1, 0};

template <class Kernel, class Row>
RowKernel deep(std::string name, const Lengths& written, unsigned pixelBytes, Kernel kernel, const Row& row) {
    return {std::move(name), written, {{{pixelBytes}}}, [=](auto& k, auto& to, auto& from, auto n) {
                kernel(k.fromRgbDeep)(to[0], to[1], to[2], from[0], n, kOrder, row);
            }};
}

// Whatever a source becomes, by the rows that converters give the kernels.
void addDeep(std::vector<RowKernel>& all, RgbSource source, PXYCBCRMatrix matrix) {
    const Table& known = simd::kernelsAt(simd::Level::Portable).fromRgbDeep.of(source);
    const std::string name = "source " + std::to_string(static_cast<unsigned>(source));
    const unsigned bytes = bytesPerPixel(source);
    const auto table = [=](auto& k) -> const Table& { return k.of(source); };
    if (known.full != nullptr) {
        all.push_back(deep(
            name + ", 4:4:4", {{{2}, {2}, {2}}}, bytes, [=](auto& k) { return table(k).full; },
            isOf8(source) ? rgb8To10(matrix) : rgbUpper10To10(matrix)));
    }
    if (known.halved != nullptr) {
        all.push_back(deep(
            name + ", 4:2:2", {{{2}, {2, 0, 2}, {2, 0, 2}}}, bytes, [=](auto& k) { return table(k).halved; },
            source == RgbSource::Three10 ? rgb10To10(matrix)
            : isUpper10(source)          ? rgbUpper10To12(matrix)
                                         : rgb16To16(matrix)));
    }
    const simd::FromRgbDeepRow row = isOf8(source)                  ? rgb8To10(matrix)
                                     : source == RgbSource::Three10 ? rgb10To10(matrix)
                                                                    : rgb16To10(matrix);
    for (unsigned chroma = 0; known.toV210[0] != nullptr && chroma < 2; ++chroma) {
        all.push_back({name + ", v210 " + std::to_string(chroma),
                       {{{16, 0, 6}}}, // at most
                       {{{bytes}}},
                       [=](auto& k, auto& to, auto& from, auto n) {
                           table(k.fromRgbDeep).toV210[chroma](to[0], from[0], n, kOrder, row);
                       }});
    }
}

void addDouble(std::vector<RowKernel>& all, PXYCBCRMatrix matrix) {
    for (const unsigned three : {0U, 1U}) {
        all.push_back(deep(
            "double precision", {{{2}, {2}, {2}}}, three == 0 ? 8 : 6, [=](auto& k) { return k.fullFloat[three]; },
            rgb16To10Float(matrix)));
    }
}

} // namespace

std::vector<RowKernel> fromRgbDeepKernels() {
    std::vector<RowKernel> all;
    for (unsigned source = 0; source < simd::kRgbSources; ++source) {
        addDeep(all, static_cast<RgbSource>(source), PX_MATRIX_BT709);
    }
    addDouble(all, PX_MATRIX_BT709);
    for (const auto alpha : {&simd::FromRgbDeepKernels::alpha, &simd::FromRgbDeepKernels::scaledAlpha}) {
        all.push_back({"alpha", {{{4, 0, 3}}}, {{{4}}}, [=](auto& k, auto& to, auto& from, auto n) {
                           (k.fromRgbDeep.*alpha)(to[0], from[0], n);
                       }});
    }
    return all;
}

namespace {

TEST(FromRgbDeep, EveryLevelEqualsPortableOnAllTriplesOfBytes) {
    constexpr unsigned kPixels = 65536;
    std::array<std::vector<RowKernel>, kMatrices> kernels;
    for (unsigned m = 0; m < kMatrices; ++m) addDeep(kernels[m], RgbSource::Four8, static_cast<PXYCBCRMatrix>(m));
    Rows from{Bytes(std::size_t{4} * kPixels)};
    for (unsigned r = 0; r < 256; ++r) {
        for (unsigned i = 0; i < kPixels; ++i) {
            store16(&from[0][std::size_t{4} * i], i);
            store16(&from[0][std::size_t{4} * i + 2], r);
        }
        for (const auto& of : kernels) ASSERT_NO_FATAL_FAILURE(expectPortable(of[0], from, kPixels)) << "R " << r;
    }
}

// As many pixels as FIKLEIPA_TEST_PIXELS says for each row of coefficients, all greys among them. Not by way of the
// filter, which would hide differences.
TEST(FromRgbDeep, EveryLevelEqualsPortableOnNoise) {
    constexpr std::size_t kPixels = 16384;
    const char* const wanted = std::getenv("FIKLEIPA_TEST_PIXELS"); // NOLINT(concurrency-mt-unsafe): nobody sets it
    const std::size_t rounds = (wanted == nullptr ? 3'000'000 : std::stoul(wanted)) / kPixels + 1;
    std::vector<RowKernel> kernels;
    for (unsigned number = 0; number < kMatrices; ++number) {
        const auto matrix = static_cast<PXYCBCRMatrix>(number);
        for (const RgbSource source : {RgbSource::Four16, RgbSource::Three10, RgbSource::Four16Upper10}) {
            std::vector<RowKernel> all;
            addDeep(all, source, matrix);
            std::copy_if(all.begin(), all.end(), std::back_inserter(kernels),
                         [](const RowKernel& kernel) { return kernel.name.find("v210 0") == std::string::npos; });
        }
        addDouble(kernels, matrix);
    }
    std::mt19937_64 random(1);
    Rows from{Bytes(8 * kPixels)};
    for (std::size_t round = 0; round < rounds; ++round) {
        for (std::size_t i = 0; i < kPixels; ++i) {
            const std::uint64_t grey = (round * kPixels + i) % 65536 * 0x1'0001'0001;
            const std::uint64_t pixel = round < 4 ? grey : random();
            std::memcpy(&from[0][8 * i], &pixel, sizeof pixel);
        }
        for (const RowKernel& kernel : kernels) {
            ASSERT_NO_FATAL_FAILURE(expectPortable(kernel, from, kPixels)) << "round " << round;
        }
    }
}

// Rows in which luma is every sum from 0 to beyond what the limit allows, divided: R counts the lowest `step` of them,
// G and B the rest.
TEST(FromRgbDeep, EverySumDividesExactly) {
    struct Sums {
        RgbSource source;
        unsigned step;
        unsigned shift; // of what counts within a component
        std::uint32_t divisor, max;
    };
    constexpr Sums kSums[] = {{RgbSource::Four16Upper10, 1000, 6, 625, 4095},
                              {RgbSource::Four16Upper10, 1000, 6, 15625, 1023},
                              {RgbSource::Four16, 32767, 0, 625, 65535}};
    for (const Sums& c : kSums) {
        const auto step = static_cast<std::int32_t>(c.step);
        const std::int32_t upper = c.shift == 0 ? step : 1000 * step;
        const simd::FromRgbDeepRow row{{0, {upper, step, 1}, {}, {}}, c.divisor, c.max, {}, {}, {}};
        const RowKernel kernel = deep(
            "sums", {{{2}, {2}, {2}}}, 8, [&](auto& k) { return k.of(c.source).halved; }, row);
        Rows from{Bytes(std::size_t{8} * c.step)};
        const unsigned top = (c.max + 2) * c.divisor;
        for (unsigned count = 0; count * c.step < top; ++count) {
            const unsigned g = c.shift == 0 ? count : count % 1000;
            const unsigned r = c.shift == 0 ? 0 : count / 1000;
            for (unsigned i = 0; i < c.step; ++i) {
                const std::uint64_t pixel = i | std::uint64_t{g} << 16 | std::uint64_t{r} << 32;
                const std::uint64_t shifted = pixel << c.shift;
                std::memcpy(&from[0][std::size_t{8} * i], &shifted, sizeof shifted);
            }
            for (const simd::Level level : vectorLevels()) {
                const Bytes y = convert(kernel, level, from, c.step)[0];
                for (unsigned i = 0; i < c.step; ++i) {
                    const unsigned sum = count * c.step + i;
                    ASSERT_EQ(load16(&y[std::size_t{2} * i]), std::min(sum / c.divisor, c.max))
                        << simd::levelName(level) << ", " << sum << " by " << c.divisor;
                }
            }
        }
    }
}

} // namespace
} // namespace fikleipa::tests
