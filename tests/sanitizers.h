// Which sanitizer the tests are built with, if any: GCC and Clang say it in different ways.
#pragma once

#if defined(__has_feature)
#define FIKLEIPA_BUILT_WITH(feature) __has_feature(feature)
#else
#define FIKLEIPA_BUILT_WITH(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || FIKLEIPA_BUILT_WITH(address_sanitizer)
inline constexpr bool kAddressSanitizer = true;
#else
inline constexpr bool kAddressSanitizer = false;
#endif

#if defined(__SANITIZE_THREAD__) || FIKLEIPA_BUILT_WITH(thread_sanitizer)
inline constexpr bool kThreadSanitizer = true;
#else
inline constexpr bool kThreadSanitizer = false;
#endif

#undef FIKLEIPA_BUILT_WITH
