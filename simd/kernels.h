// The one table of row kernels. A row kernel knows samples and nothing of pitches, heights and flips.
#pragma once

#include "simd/alpha.h"
#include "simd/from_rgb8.h"
#include "simd/from_rgb_deep.h"
#include "simd/gather_words.h"
#include "simd/level.h"
#include "simd/planes8.h"
#include "simd/rgb_words.h"
#include "simd/to_rgb8.h"
#include "simd/to_rgb_deep.h"
#include "simd/v210.h"
#include "simd/words.h"

#include <optional>

namespace fikleipa::simd {

struct Kernels {
    SwapKernel swap16;
    SwapKernel swap13;
    SwapKernel swap13Of8;
    ToRgb8Kernels rgb8;
    V210Kernels v210;
    ToRgbDeepKernels rgbDeep;
    RgbWordsKernels rgbWords;
    GatherWordsKernels gatherWords;
    AlphaKernels alpha;
    Planes8Kernels planes8;
    FromRgb8Kernels fromRgb8;
    FromRgbDeepKernels fromRgbDeep;
};

// The kernels of a level that this processor has.
const Kernels& kernelsAt(Level level);

// The kernels in use.
inline const Kernels& kernels() {
    return kernelsAt(activeLevel());
}

struct KernelInfo {
    const char* name;
    Level level; // whose code serves it now
};

// Kernel number `index` of the table, for people to read; none past the last one.
std::optional<KernelInfo> kernelInfo(unsigned index);

} // namespace fikleipa::simd
