// The colour matrices: which row of a coefficient table a PXYCBCRMatrix selects.
#pragma once

#include "fikleipa.h"
#include "simd/to_rgb8.h"
#include "simd/to_rgb_deep.h"

namespace fikleipa {

// Every family has a table of its own. They differ in last digits on purpose and are not derived from one another.
const simd::ToRgbRow& toRgb8Row(PXYCBCRMatrix matrix);
const simd::ToRgbFloatRow& toRgb8FloatRow(PXYCBCRMatrix matrix);
const simd::ToRgbRow& toRgb16Row(PXYCBCRMatrix matrix);

// Sources of more than 8 bits, named by the bits of a source and of a result. The first two differ: the one has a table
// of its own, the other takes the rows for 8 bits as they are, the luma offset of 16 included. Deliberate.
simd::DeepRow row10To8(PXYCBCRMatrix matrix);
simd::DeepRow row10To8By8(PXYCBCRMatrix matrix);
simd::DeepRow row10To10(PXYCBCRMatrix matrix);
simd::DeepRow row10To16(PXYCBCRMatrix matrix);
simd::DeepRow row12To16(PXYCBCRMatrix matrix);
simd::DeepRow row12To8(PXYCBCRMatrix matrix); // those of 16 bits divided by 255, of which bytes take the low one
const simd::ToRgbFloatRow& row10To8Float(PXYCBCRMatrix matrix);

// Rows for 8 bits in the form of the others.
simd::DeepRow row8To8(PXYCBCRMatrix matrix);

} // namespace fikleipa
