// Compiles the kernels of FIKLEIPA_KERNELS once for each x86 level, in a namespace of the level's name.
//
// The compiler is told of the wider instructions only for the lines between here, after every standard header has been
// read. An inline function of the standard library is therefore never compiled with instructions that an old processor
// lacks and then picked by the linker for the whole program.
//
// The file named by FIKLEIPA_KERNELS sees `V`, the vector type of the level, and includes nothing.
#if defined(__x86_64__)

#include <cstddef>
#include <cstdint>

// GCC 12 takes the unused operand of an unmasked AVX-512 intrinsic for an uninitialised variable.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wuninitialized"
#if !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#pragma GCC diagnostic pop

#include "simd/prefetch.h"
#include "simd/x86/targets.h"

FIKLEIPA_TARGET_SSE41
namespace fikleipa::simd::sse41 {
#include "simd/x86/vector128.h"
using V = V128;
#include FIKLEIPA_KERNELS
} // namespace fikleipa::simd::sse41
FIKLEIPA_TARGET_END

FIKLEIPA_TARGET_AVX2
namespace fikleipa::simd::avx2 {
#include "simd/x86/vector256.h"
using V = V256;
#include FIKLEIPA_KERNELS
} // namespace fikleipa::simd::avx2
FIKLEIPA_TARGET_END

FIKLEIPA_TARGET_AVX512
namespace fikleipa::simd::avx512 {
#include "simd/x86/vector512.h"
using V = V512;
#include FIKLEIPA_KERNELS
} // namespace fikleipa::simd::avx512
FIKLEIPA_TARGET_END

#endif
