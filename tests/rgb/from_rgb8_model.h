// RGB to 8-bit YCbCr written out in 64-bit integers, pixel by pixel, to compare the library with.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace fikleipa::tests {

// The table, once more: the offset of luma, then the coefficients of R, G and B for Y, Cb and Cr.
struct FromRgb8Coefficients {
    std::int64_t yo, y[3], cb[3], cr[3];
};
inline constexpr FromRgb8Coefficients kFromRgb8[] = {
    {16, {257000, 504000, 98000}, {-148000, -291000, 439000}, {439000, -368000, -71000}},
    {0, {299011, 587006, 113983}, {-172577, -338837, 511414}, {511414, -428253, -83160}},
    {16, {183000, 614000, 62000}, {-101000, -338000, 439000}, {439000, -399000, -40000}},
    {0, {213000, 715000, 72000}, {-117000, -394000, 511000}, {511000, -464000, -47000}},
    {16, {182068, 612427, 61829}, {-100342, -337585, 437927}, {437927, -397766, -40161}},
    {0, {212600, 715200, 72200}, {-114572, -385428, 500000}, {500000, -454153, -45847}},
    {16, {225610, 582280, 50930}, {-122660, -316560, 439210}, {439210, -403890, -35320}},
    {0, {262700, 678000, 59300}, {-139630, -360370, 500000}, {500000, -459790, -40210}},
    {16, {222000, 631000, 496000}, {-270000, -768000, 1030000}, {469000, -436000, -34000}},
    {0, {259000, 738000, 580000}, {-308000, -878000, 1186000}, {537000, -498000, -39000}},
    {0, {299011, 587006, 113983}, {-200000, -200000, 400000}, {560000, -460000, -100000}},
};
inline constexpr unsigned kFromRgb8Matrices = 11;

struct Components {
    std::uint8_t r, g, b;
};

constexpr std::int64_t weighed(const std::int64_t (&k)[3], Components c) {
    return k[0] * c.r + k[1] * c.g + k[2] * c.b;
}

constexpr std::uint8_t lumaOf(unsigned matrix, Components c, bool rounded) {
    const FromRgb8Coefficients& k = kFromRgb8[matrix < kFromRgb8Matrices ? matrix : 0];
    const std::int64_t sum = weighed(k.y, c);
    std::int64_t y = sum / 1000000 + k.yo;
    if (rounded && sum % 1000000 > 500000) ++y;
    return static_cast<std::uint8_t>(std::min<std::int64_t>(y, 255));
}

constexpr std::uint8_t chromaOf(std::int64_t sum, std::int64_t above, std::int64_t below) {
    std::int64_t q = sum / 1000000;
    const std::int64_t m = (sum < 0 ? -sum : sum) % 1000000;
    if (sum >= 0 && m > above) ++q;
    if (sum < 0 && m > below) --q;
    q = std::max<std::int64_t>(std::min<std::int64_t>(q, 127), -128);
    return static_cast<std::uint8_t>(q + 128);
}
constexpr std::uint8_t cbOf(unsigned matrix, Components c) {
    return chromaOf(weighed(kFromRgb8[matrix < kFromRgb8Matrices ? matrix : 0].cb, c), 450000, 250000);
}
constexpr std::uint8_t crOf(unsigned matrix, Components c) {
    return chromaOf(weighed(kFromRgb8[matrix < kFromRgb8Matrices ? matrix : 0].cr, c), 500000, 500000);
}

} // namespace fikleipa::tests
