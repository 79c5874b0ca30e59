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

} // namespace fikleipa
