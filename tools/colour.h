// Colour matrices and component orders by name.
#pragma once

#include "fikleipa.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace fikleipa::tool {

// Weights of red and blue in luma and the range of the samples: what drawing needs.
struct LumaWeights {
    double red;
    double blue;
    bool fullRange;
};

struct Matrix {
    std::string_view name; // empty where only the number is used
    PXYCBCRMatrix value;
    std::string_view description;
    std::optional<LumaWeights> weights;
};

std::span<const Matrix> matrices();

// By name, or by number: decimal or hexadecimal, any 32 bits.
PXYCBCRMatrix parseMatrix(std::string_view text);

// How to draw for that matrix. Fails for one that the command cannot draw for.
LumaWeights drawingWeights(PXYCBCRMatrix matrix);

struct RgbOrder {
    std::string_view name;
    PXYCBCRRgbType value;
};

std::span<const RgbOrder> rgbOrders();

PXYCBCRRgbType parseRgbType(std::string_view order, bool bottomUp);

} // namespace fikleipa::tool
