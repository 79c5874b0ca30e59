#include "colour.h"

#include "error.h"
#include "parse.h"

#include <algorithm>
#include <array>

namespace fikleipa::tool {
namespace {

constexpr LumaWeights k601{0.299, 0.114, false};
constexpr LumaWeights k709{0.2126, 0.0722, false};
constexpr LumaWeights k709Full{0.2126, 0.0722, true};
constexpr LumaWeights k2020{0.2627, 0.0593, false};
constexpr LumaWeights k2020Full{0.2627, 0.0593, true};

constexpr std::array kMatrices{
    Matrix{"bt601", PX_MATRIX_BT601, "BT.601, video-range YCbCr, full-range RGB (the default)", k601},
    Matrix{"bt601-studio", PX_MATRIX_BT601_STUDIO, "BT.601, RGB in the range of the YCbCr", k601},
    Matrix{"bt709", PX_MATRIX_BT709, "BT.709, video-range YCbCr, full-range RGB", k709},
    Matrix{"bt709-studio", PX_MATRIX_BT709_STUDIO, "BT.709, RGB in the range of the YCbCr", k709},
    Matrix{"bt709-precise", PX_MATRIX_BT709_PRECISE, "to RGB as bt709; from RGB with finer coefficients", k709},
    Matrix{"bt709-full", PX_MATRIX_BT709_FULL, "to RGB as bt709-studio; from RGB full range", k709Full},
    Matrix{"bt2020", PX_MATRIX_BT2020, "BT.2020, video-range YCbCr, full-range RGB", k2020},
    Matrix{"bt2020-full", PX_MATRIX_BT2020_FULL, "BT.2020, full-range YCbCr and RGB", k2020Full},
    Matrix{"", PX_MATRIX_8, "from RGB only, blue weighs 0.496 in luma", {}},
    Matrix{"", PX_MATRIX_9, "from RGB only, as 8 without luma offset", {}},
    Matrix{"", PX_MATRIX_10, "from 8-bit RGB only, BT.601 full-range luma", {}},
};

constexpr std::array kRgbOrders{
    RgbOrder{"bgra", PX_RGB_BGRA},
    RgbOrder{"abgr", PX_RGB_ABGR},
    RgbOrder{"rgba", PX_RGB_RGBA},
    RgbOrder{"argb", PX_RGB_ARGB},
};

} // namespace

std::span<const Matrix> matrices() {
    return kMatrices;
}

std::span<const RgbOrder> rgbOrders() {
    return kRgbOrders;
}

PXYCBCRMatrix parseMatrix(std::string_view text) {
    // The bare numbers of the standards are names: as matrix numbers they would all mean the default.
    const bool isStandard = text == "601" || text == "709" || text == "2020";
    const std::string name = isStandard ? fmt::format("bt{}", text) : std::string(text);
    for (const Matrix& matrix : kMatrices) {
        if (!matrix.name.empty() && matrix.name == name) return matrix.value;
    }
    const auto hex = hexNumber(text);
    const auto number = hex ? hex : parseNumber<std::uint32_t>(text);
    if (!number) fail("'{}' is no matrix; 'fikleipa formats' lists them", text);
    return static_cast<PXYCBCRMatrix>(*number);
}

LumaWeights drawingWeights(PXYCBCRMatrix matrix) {
    for (const Matrix& each : kMatrices) {
        if (each.value == matrix && each.weights) return *each.weights;
    }
    fail("pictures are drawn for the matrices 0 to {} only", static_cast<unsigned int>(PX_MATRIX_BT2020_FULL));
}

PXYCBCRRgbType parseRgbType(std::string_view order, bool bottomUp) {
    const auto found = std::find_if(kRgbOrders.begin(), kRgbOrders.end(), [&](const RgbOrder& each) {
        return each.name == order || parseNumber<std::uint32_t>(order) == each.value;
    });
    if (found == kRgbOrders.end()) fail("'{}' is no order of RGB components: bgra, abgr, rgba or argb", order);
    return static_cast<PXYCBCRRgbType>(found->value | (bottomUp ? PX_RGB_BOTTOM_UP : 0U));
}

} // namespace fikleipa::tool
