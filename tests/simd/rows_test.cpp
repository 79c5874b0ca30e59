#include "tests/simd/rows.h"

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;

struct Family {
    std::vector<RowKernel> (*kernels)();
    std::size_t mostUnits;
    unsigned step = 1; // from alignment to alignment
};
class RowKernels : public testing::TestWithParam<Family> {};
INSTANTIATE_TEST_SUITE_P(Families, RowKernels,
                         testing::Values(Family{wordKernels, 300, 3}, Family{alphaKernels, 200},
                                         Family{planes8Kernels, 100}, Family{v210Kernels, 64},
                                         Family{toRgb8Kernels, 110, 5}, Family{toRgbDeepKernels, 200, 13},
                                         Family{v210ToRgbKernels, 35, 13}, Family{fromRgb8Kernels, 100, 3},
                                         Family{fromRgbDeepKernels, 200, 5}));

TEST_P(RowKernels, EveryLevelEqualsPortableAtEveryLengthAndPlacement) {
    PlacedRows from;
    PlacedRows to;
    for (const RowKernel& kernel : GetParam().kernels()) {
        for (std::size_t units = 0; units <= GetParam().mostUnits; ++units) {
            const Rows src = noiseRows(kernel.read, units, kernel.bits);
            const Rows before = noiseRows(kernel.written, units);
            Rows expected = before;
            const auto check = [&](simd::Level level, unsigned srcOffset, bool srcAtEnd, unsigned dstOffset,
                                   bool dstAtEnd) {
                const Pointers dst = to.place(before, dstOffset, dstAtEnd);
                kernel.call(simd::kernelsAt(level), dst, sources(from.place(src, srcOffset, srcAtEnd)), units);
                if (level == simd::Level::Portable) {
                    for (std::size_t i = 0; i < dst.size(); ++i)
                        std::copy_n(dst[i], before[i].size(), expected[i].begin());
                }
                ASSERT_TRUE(to.hold(expected)) << kernel.name << " at " << simd::levelName(level) << ", " << units
                                               << " units, offset " << dstOffset;
            };
            check(simd::Level::Portable, 0, true, 0, true);
            for (const simd::Level level : vectorLevels()) {
                eachPlacement(GetParam().step, [&](auto... placement) { check(level, placement...); });
                if (HasFatalFailure()) return;
            }
        }
    }
}

// The rows of three planes in one buffer, each the same distance behind the one before it. The result is that of a walk
// from the first unit to the last.
TEST(PlaneKernels, EveryLevelEqualsPortableWherePlanesOverlap) {
    constexpr std::size_t kUnits = 100;
    const Bytes before = noise(1 << 11);
    for (const auto& kernels : {planes8Kernels(), fromRgb8Kernels()}) {
        for (const RowKernel& kernel : kernels) {
            if (kernel.written[2].each == 0) continue;
            Rows src = noiseRows(kernel.read, kUnits);
            for (std::size_t distance = 0; distance <= 4 * kUnits; distance += distance < 140 ? 1 : 7) {
                const auto after = [&](simd::Level level) {
                    Bytes bytes = before;
                    std::uint8_t* const at = bytes.data();
                    kernel.call(simd::kernelsAt(level), {at, at + distance, at + 2 * distance},
                                {src[0].data(), src[1].data(), src[2].data()}, kUnits);
                    return bytes;
                };
                for (const simd::Level level : vectorLevels()) {
                    ASSERT_EQ(after(level), after(simd::Level::Portable))
                        << kernel.name << " at " << simd::levelName(level) << ", distance " << distance;
                }
            }
        }
    }
}

TEST(WordKernels, SwapInPlaceAsElsewhere) {
    constexpr std::size_t kUnits = 301;
    for (const RowKernel& kernel : wordKernels()) {
        if (kernel.name.find("swap") != 0) continue;
        const Rows src = noiseRows(kernel.read, kUnits);
        for (const simd::Level level : simd::kLevels) {
            if (level > simd::bestLevel()) continue;
            Bytes bytes = src[0];
            kernel.call(simd::kernelsAt(level), {bytes.data()}, {bytes.data()}, kUnits);
            ASSERT_EQ(bytes, convert(kernel, level, src, kUnits)[0]) << kernel.name << " at " << simd::levelName(level);
        }
    }
}

} // namespace
