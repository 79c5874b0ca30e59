// What the threads of a split frame convert by.
#pragma once

#include "simd/stream.h"

#include <cstddef>
#include <cstdint>

namespace fikleipa {

using BandConversion = unsigned(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                unsigned width, unsigned rows, unsigned dstPitch, unsigned srcPitch);

// As the functions named _internal with two differences. Nothing is written beyond a row's pitch: what they write there
// may by then be the first row of the next band. And kernels write large bands past the cache themselves where
// alignment lets them, which two threads gain more from than one.
BandConversion yuv422p10ToV210Band;
BandConversion yuv422p12ToV210Band;
BandConversion yuv444p12ToV210Band;
BandConversion yuv422p10ToUyvyBand;

inline bool kernelWritesPastCache(const std::uint8_t* dst, unsigned pitch, unsigned rows) {
    return (reinterpret_cast<std::uintptr_t>(dst) | pitch) % simd::kCacheLine == 0 &&
           std::size_t{pitch} * rows >= simd::kBeyondCache;
}

} // namespace fikleipa
