// Which row of a table of coefficients from RGB a PXYCBCRMatrix selects.
#pragma once

#include "fikleipa.h"
#include "simd/from_rgb.h"

namespace fikleipa {

// Every family has a table of its own. They differ in last digits on purpose and are not derived from one another.
const simd::FromRgbRow& fromRgb8Row(PXYCBCRMatrix matrix);

} // namespace fikleipa
