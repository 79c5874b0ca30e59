#include "rgb/from_rgb_deep_matrix.h"

#include <array>
#include <cstddef>

namespace fikleipa {
namespace {

using simd::Rounding;

// The default row, then those of the matrices 1 to 9.
using FromRgbTable = std::array<simd::FromRgbRow, 10>;

// 8-bit components to 10 bits, scale 10000.
constexpr FromRgbTable k8To10{{
    {64, {10280, 20160, 3920}, {-5920, -11640, 17560}, {17560, -14720, -2839}}, // 2839, not 2840
    {0, {11960, 23480, 4559}, {-6903, -13553, 20456}, {20456, -17130, -3326}},
    {64, {7320, 24560, 2480}, {-4040, -13520, 17560}, {17560, -15960, -1600}},
    {0, {8520, 28600, 2880}, {-4680, -15760, 20440}, {20440, -18560, -1880}},
    {64, {7282, 24497, 2473}, {-4013, -13503, 17517}, {17517, -15910, -1606}},
    {0, {8504, 28607, 2888}, {-4582, -15417, 20000}, {20000, -18166, -1833}},
    {64, {9024, 23291, 2037}, {-4906, -12662, 17568}, {17568, -16155, -1412}},
    {0, {10508, 27120, 2372}, {-5585, -14414, 20000}, {20000, -18391, -1608}},
    {64, {8880, 25240, 19840}, {-10800, -30720, 41200}, {18760, -17440, -1360}},
    {0, {10360, 29520, 23200}, {-12320, -35120, 47440}, {21480, -19920, -1560}},
}};

// Components to results of as many bits, scale 10000; those of 16 bits to 10 bits by a divisor 64 times that.
constexpr FromRgbTable k16{{
    {64, {2570, 5040, 980}, {-1480, -2910, 4390}, {4390, -3680, -709}}, // 709, not 710
    {0, {2990, 5870, 1139}, {-1725, -3388, 5114}, {5114, -4282, -831}},
    {64, {1830, 6140, 620}, {-1010, -3380, 4390}, {4390, -3990, -400}},
    {0, {2130, 7150, 720}, {-1170, -3940, 5110}, {5110, -4640, -470}},
    {64, {1820, 6124, 618}, {-1003, -3375, 4379}, {4379, -3977, -401}},
    {0, {2126, 7151, 722}, {-1145, -3854, 5000}, {5000, -4541, -458}},
    {64, {2256, 5822, 509}, {-1226, -3165, 4392}, {4392, -4038, -353}},
    {0, {2627, 6780, 593}, {-1396, -3603, 5000}, {5000, -4597, -402}},
    {64, {2220, 6310, 4960}, {-2700, -7680, 10300}, {4690, -4360, -340}},
    {0, {2590, 7380, 5800}, {-3080, -8780, 11860}, {5370, -4980, -390}},
}};

// 10-bit components to 10 bits, scale 1 000 000.
constexpr FromRgbTable k10{{
    {64, {257000, 504000, 98000}, {-148000, -291000, 439000}, {439000, -368000, -71000}},
    {0, {299011, 587006, 113983}, {-172577, -338837, 511414}, {511414, -428253, -83160}},
    {64, {183000, 614000, 62000}, {-101000, -338000, 439000}, {439000, -399000, -40000}},
    {0, {213000, 715000, 72000}, {-117000, -394000, 511000}, {511000, -464000, -47000}},
    {64, {182068, 612427, 61829}, {-100342, -337585, 437927}, {437927, -397766, -40161}},
    {0, {212600, 715200, 72200}, {-114572, -385428, 500000}, {500000, -454153, -45847}},
    {64, {225610, 582280, 50930}, {-122660, -316560, 439210}, {439210, -403890, -35320}},
    {0, {262700, 678000, 59300}, {-139630, -360370, 500000}, {500000, -459790, -40210}},
    {64, {222000, 631000, 496000}, {-270000, -768000, 1030000}, {469000, -436000, -34000}},
    {0, {259000, 738000, 580000}, {-308000, -878000, 1186000}, {537000, -498000, -39000}},
}};

// 10-bit components to 12 bits, scale 40000. The rows of matrices are four times those of k8To10, the default row is
// not.
constexpr simd::FromRgbRow kDefaultTo12{256, {41120, 80640, 15680}, {-23680, -46560, 70240}, {70240, -58880, -11359}};

constexpr std::size_t indexOf(PXYCBCRMatrix matrix) {
    const auto index = static_cast<std::size_t>(matrix);
    return index < std::tuple_size_v<FromRgbTable> ? index : 0;
}

constexpr simd::RgbWeights fourTimes(const simd::RgbWeights& k) {
    return {4 * k.r, 4 * k.g, 4 * k.b};
}

// As fractions: a quotient of integers is the double next to its decimal.
constexpr simd::RgbFloatWeights fractions(const simd::RgbWeights& k) {
    return {k.r / 1e6, k.g / 1e6, k.b / 1e6};
}

constexpr Rounding kTruncated{0, 0};

// Quotients of 0 and more go up with a remainder of at least `up`, those below zero down with one of at least `down`.
constexpr Rounding rounded(int divisor, int up, int down) {
    return {divisor - up, divisor - down};
}

constexpr simd::FromRgbDeepRow truncatedRow(const simd::FromRgbRow& k, std::uint32_t divisor, std::uint32_t max) {
    return {k, divisor, max, kTruncated, kTruncated, kTruncated};
}

// Halves round towards zero. Cb rounds up from 0.45 and down from 0.25: deliberate.
constexpr simd::FromRgbDeepRow roundedRow(const simd::FromRgbRow& k, int divisor, std::uint32_t max) {
    const Rounding halves = rounded(divisor, divisor / 2 + 1, divisor / 2 + 1);
    const Rounding uneven = rounded(divisor, divisor / 20 * 9 + 1, divisor / 4 + 1);
    return {k, static_cast<std::uint32_t>(divisor), max, halves, uneven, halves};
}

} // namespace

simd::FromRgbDeepRow rgb8To10(PXYCBCRMatrix matrix) {
    return truncatedRow(k8To10[indexOf(matrix)], 10000, 1023);
}
simd::FromRgbDeepRow rgb16To10(PXYCBCRMatrix matrix) {
    return roundedRow(k16[indexOf(matrix)], 640000, 1023);
}
simd::FromRgbDeepRow rgb10To10(PXYCBCRMatrix matrix) {
    return roundedRow(k10[indexOf(matrix)], 1000000, 1023);
}
simd::FromRgbDeepRow rgb16To16(PXYCBCRMatrix matrix) {
    return roundedRow(k16[indexOf(matrix)], 10000, 65535);
}
simd::FromRgbDeepRow rgbUpper10To10(PXYCBCRMatrix matrix) {
    return truncatedRow(k8To10[indexOf(matrix)], 40000, 1023);
}
simd::FromRgbDeepRow rgbUpper10To12(PXYCBCRMatrix matrix) {
    const std::size_t index = indexOf(matrix);
    if (index == 0) return truncatedRow(kDefaultTo12, 40000, 4095);
    const simd::FromRgbRow& k = k8To10[index];
    return truncatedRow({4 * k.yo, fourTimes(k.y), fourTimes(k.cb), fourTimes(k.cr)}, 40000, 4095);
}
simd::FromRgbFloatRow rgb16To10Float(PXYCBCRMatrix matrix) {
    const simd::FromRgbRow& k = k10[indexOf(matrix)];
    return {k.yo, fractions(k.y), fractions(k.cb), fractions(k.cr)};
}

} // namespace fikleipa
