#include "pxutil.h"
#include "simd/level.h"

using fikleipa::simd::Level;

unsigned int CPUFeatureFlags() {
    const Level best = fikleipa::simd::bestLevel();
    unsigned int flags = 0;
    if (fikleipa::simd::hasAvx()) flags |= PX_CPU_AVX;
    if (best >= Level::Sse41) flags |= PX_CPU_SSE41;
    if (best >= Level::Avx2) flags |= PX_CPU_AVX2;
    if (best >= Level::Avx512) flags |= PX_CPU_AVX512;
    return flags;
}
