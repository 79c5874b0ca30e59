// Which row of a table of coefficients from RGB to 10, 12 and 16 bits a PXYCBCRMatrix selects, with its rounding.
#pragma once

#include "fikleipa.h"
#include "simd/from_rgb_deep.h"

namespace fikleipa {

// Every family has a table of its own. They differ in last digits on purpose and are not derived from one another.
// Named by the bits of components and of results.
simd::FromRgbDeepRow rgb8To10(PXYCBCRMatrix matrix);  // truncated
simd::FromRgbDeepRow rgb16To10(PXYCBCRMatrix matrix); // rounded
simd::FromRgbDeepRow rgb10To10(PXYCBCRMatrix matrix); // rounded
simd::FromRgbDeepRow rgb16To16(PXYCBCRMatrix matrix); // rounded

// Of the upper ten bits of 16: truncated.
simd::FromRgbDeepRow rgbUpper10To10(PXYCBCRMatrix matrix);
simd::FromRgbDeepRow rgbUpper10To12(PXYCBCRMatrix matrix);

simd::FromRgbFloatRow rgb16To10Float(PXYCBCRMatrix matrix);

} // namespace fikleipa
