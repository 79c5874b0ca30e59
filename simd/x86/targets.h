// Regions of source in which the compiler may use the instructions of a level.
#pragma once

#define FIKLEIPA_PRAGMA(text) _Pragma(#text)

#if defined(__clang__)
#define FIKLEIPA_TARGET_BEGIN(features)                                                                                \
    FIKLEIPA_PRAGMA(clang attribute push(__attribute__((target(features))), apply_to = function))
#define FIKLEIPA_TARGET_END FIKLEIPA_PRAGMA(clang attribute pop)
#else
#define FIKLEIPA_TARGET_BEGIN(features)                                                                                \
    FIKLEIPA_PRAGMA(GCC push_options)                                                                                  \
    FIKLEIPA_PRAGMA(GCC target features)
#define FIKLEIPA_TARGET_END FIKLEIPA_PRAGMA(GCC pop_options)
#endif

#define FIKLEIPA_TARGET_SSE41 FIKLEIPA_TARGET_BEGIN("ssse3,sse4.1")
#define FIKLEIPA_TARGET_AVX2 FIKLEIPA_TARGET_BEGIN("ssse3,sse4.1,avx,avx2,fma")
#define FIKLEIPA_TARGET_AVX512                                                                                         \
    FIKLEIPA_TARGET_BEGIN("ssse3,sse4.1,avx,avx2,fma,avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi,avx512vnni")
