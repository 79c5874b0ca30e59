#include "pxutil.h"
#include "simd/words.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace simd = fikleipa::simd;

namespace {

constexpr std::size_t kAlignment = 64;

} // namespace

void CopyMemoryFast(void* destination, const void* source, size_t bytes) {
    // No pointer may be null for memcpy(), not even to copy nothing.
    if (bytes != 0) std::memcpy(destination, source, bytes);
}

void EndianConvertWord(void* destination, const void* source, size_t count) {
    simd::swap16(simd::activeLevel())(static_cast<std::uint8_t*>(destination), static_cast<const std::uint8_t*>(source),
                                      count);
}

void* PXAlloc(size_t size) {
    // aligned_alloc() would need the size rounded up, which overflows just where a refusal is wanted.
    void* memory = nullptr;
    return posix_memalign(&memory, kAlignment, size) == 0 ? memory : nullptr;
}

void PXFree(void* memory) {
    std::free(memory); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
}
