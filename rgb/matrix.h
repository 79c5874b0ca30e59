// The colour matrices: which row of a coefficient table a PXYCBCRMatrix selects.
#pragma once

#include "fikleipa.h"
#include "simd/to_rgb8.h"

namespace fikleipa {

// Every family has a table of its own. They differ in last digits on purpose and are not derived from one another.
const simd::ToRgbRow& toRgb8Row(PXYCBCRMatrix matrix);
const simd::ToRgbFloatRow& toRgb8FloatRow(PXYCBCRMatrix matrix);
const simd::ToRgbRow& toRgb16Row(PXYCBCRMatrix matrix);

} // namespace fikleipa
