#include "pxutil.h"
#include "simd/row_writer.h"
#include "simd/words.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace simd = fikleipa::simd;

namespace {

constexpr std::size_t kAlignment = 64;

} // namespace

void CopyMemoryFast(void* destination, const void* source, size_t bytes) {
    const simd::StreamKernel stream = bytes < simd::kBeyondCache ? nullptr : simd::streamKernel();
    if (stream != nullptr) {
        simd::streamBytes(stream, static_cast<std::uint8_t*>(destination), static_cast<const std::uint8_t*>(source),
                          bytes);
        simd::finishStreaming();
    } else if (bytes != 0) {
        // No pointer may be null for memcpy(), not even to copy nothing.
        std::memcpy(destination, source, bytes);
    }
}

void EndianConvertWord(void* destination, const void* source, size_t count) {
    constexpr std::size_t kWordBytes = 2;
    const auto swap = simd::swap16(simd::activeLevel());
    auto* const dst = static_cast<std::uint8_t*>(destination);
    const auto* const src = static_cast<const std::uint8_t*>(source);
    const std::size_t bytes = count * kWordBytes;
    // In place, what is written is in the cache already.
    simd::RowWriter<1>(dst != src && bytes >= simd::kBeyondCache, {kWordBytes})
        .write({dst}, simd::SourceRow{src, bytes, 0}, count, [&](const auto& to, std::size_t first, std::size_t words) {
            swap(to[0], src + first * kWordBytes, words);
        });
}

void* PXAlloc(size_t size) {
    // aligned_alloc() would need the size rounded up, which overflows just where a refusal is wanted.
    void* memory = nullptr;
    return posix_memalign(&memory, kAlignment, size) == 0 ? memory : nullptr;
}

void PXFree(void* memory) {
    std::free(memory); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
}
