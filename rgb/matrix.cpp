#include "rgb/matrix.h"

#include <array>
#include <cstddef>

namespace fikleipa {
namespace {

// The default row, then those of the matrices 1 to 7.
template <class Row>
using ToRgbTable = std::array<Row, 8>;

constexpr ToRgbTable<simd::ToRgbRow> kToRgb8{{
    {16, 11640, 15960, 8129, 3920, 20170}, // 8129, not 8130
    {0, 10000, 13710, 6979, 3360, 17320},
    {16, 11640, 17930, 5340, 2130, 21150},
    {0, 10000, 15400, 4590, 1830, 18160},
    {16, 11640, 17930, 5340, 2130, 21150},
    {0, 10000, 15400, 4590, 1830, 18160},
    {16, 11640, 16786, 6504, 1873, 21417},
    {0, 10000, 14746, 5714, 1646, 18814},
}};

constexpr ToRgbTable<simd::ToRgbFloatRow> kToRgb8Float{{
    {16.0, 1.164, 1.596, 0.813, 0.392, 2.017},
    {0.0, 1.0, 1.371, 0.698, 0.336, 1.732}, // 0.698 where the integers have 6979
    {16.0, 1.164, 1.793, 0.534, 0.213, 2.115},
    {0.0, 1.0, 1.54, 0.459, 0.183, 1.816},
    {16.0, 1.164, 1.793, 0.534, 0.213, 2.115},
    {0.0, 1.0, 1.54, 0.459, 0.183, 1.816},
    {16.0, 1.164, 1.678675, 0.650425, 0.187324, 2.141773},
    {0.0, 1.0, 1.4747, 0.5714, 0.1646, 1.8814}, // 1.4747 where the integers have 14746
}};

// The rows of kToRgb8 times 256.39, but that of matrix 4 times 256.
constexpr ToRgbTable<simd::ToRgbRow> kToRgb16{{
    {16, 2984379, 4091984, 2084450, 1005048, 5171386},
    {0, 2563900, 3515106, 1789602, 861470, 4440674},
    {16, 2984379, 4597072, 1369122, 546110, 5422648},
    {0, 2563900, 3948406, 1176830, 469193, 4656042},
    {16, 2979840, 4590080, 1367040, 545280, 5414400},
    {0, 2563900, 3948406, 1176830, 469193, 4656042},
    {16, 2984379, 4303954, 1667624, 480280, 5491291},
    {0, 2563900, 3780983, 1465012, 422017, 4823721},
}};

constexpr ToRgbTable<simd::ToRgbRow> k10ToRgb8{{
    {64, 2910, 3990, 2032, 980, 5042},
    {0, 2500, 3427, 1744, 840, 4330},
    {64, 2910, 4482, 1335, 532, 5287},
    {0, 2500, 3850, 1147, 457, 4540},
    {64, 2910, 4482, 1335, 532, 5287},
    {0, 2500, 3850, 1147, 457, 4540},
    {64, 2910, 4196, 1626, 468, 5354},
    {0, 2500, 3686, 1428, 411, 4703},
}};

constexpr ToRgbTable<simd::ToRgbFloatRow> k10ToRgb8Float{{
    {64.0, 0.291, 0.399, 0.20325, 0.098, 0.50425},
    {0.0, 0.25, 0.34275, 0.1745, 0.084, 0.433},
    {64.0, 0.291, 0.44825, 0.1335, 0.05325, 0.52875},
    {0.0, 0.25, 0.385, 0.11475, 0.04575, 0.454},
    {64.0, 0.291, 0.44825, 0.1335, 0.05325, 0.52875},
    {0.0, 0.25, 0.385, 0.11475, 0.04575, 0.454},
    {64.0, 0.291, 0.41966875, 0.16260625, 0.046831, 0.53544325},
    {0.0, 0.25, 0.368675, 0.14285, 0.04115, 0.47035},
}};

// For 10 bits; for 12 the luma offset is four times as much.
constexpr ToRgbTable<simd::ToRgbRow> k10ToRgb16{{
    {64, 11919, 16343, 8325, 4014, 20654},
    {0, 10240, 14039, 7147, 3440, 17735},
    {64, 11919, 18360, 5468, 2181, 21657},
    {0, 10240, 15769, 4700, 1873, 18595},
    {64, 11919, 18360, 5468, 2181, 21657},
    {0, 10240, 15769, 4700, 1873, 18595},
    {64, 11919, 17189, 6660, 1918, 21931},
    {0, 10240, 15100, 5851, 1685, 19265},
}};

template <class Table>
const auto& select(const Table& table, PXYCBCRMatrix matrix) {
    const auto index = static_cast<std::size_t>(matrix);
    return table[index < table.size() ? index : 0];
}

} // namespace

const simd::ToRgbRow& toRgb8Row(PXYCBCRMatrix matrix) {
    return select(kToRgb8, matrix);
}
const simd::ToRgbFloatRow& toRgb8FloatRow(PXYCBCRMatrix matrix) {
    return select(kToRgb8Float, matrix);
}
const simd::ToRgbRow& toRgb16Row(PXYCBCRMatrix matrix) {
    return select(kToRgb16, matrix);
}

simd::DeepRow row10To8(PXYCBCRMatrix matrix) {
    return {select(k10ToRgb8, matrix), 512, 10000, 255};
}
simd::DeepRow row10To8By8(PXYCBCRMatrix matrix) {
    return {select(kToRgb8, matrix), 512, 40000, 255};
}
simd::DeepRow row10To10(PXYCBCRMatrix matrix) {
    return {select(k10ToRgb16, matrix), 512, 160 * 64, 1023};
}
simd::DeepRow row10To16(PXYCBCRMatrix matrix) {
    return {select(k10ToRgb16, matrix), 512, 160, 65535};
}
simd::DeepRow row12To16(PXYCBCRMatrix matrix) {
    simd::ToRgbRow row = select(k10ToRgb16, matrix);
    row.yo *= 4;
    return {row, 2048, 640, 65535};
}
simd::DeepRow row12To8(PXYCBCRMatrix matrix) {
    simd::DeepRow row = row12To16(matrix);
    row.divisor *= 255;
    row.max /= 255;
    return row;
}
const simd::ToRgbFloatRow& row10To8Float(PXYCBCRMatrix matrix) {
    return select(k10ToRgb8Float, matrix);
}
simd::DeepRow row8To8(PXYCBCRMatrix matrix) {
    return {select(kToRgb8, matrix), 128, 10000, 255};
}

} // namespace fikleipa
