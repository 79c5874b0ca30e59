// For what includes simd/each_level.h with kernels that overwrite the portable ones; included behind it.
namespace fikleipa::simd {
namespace {

// The kernels of a level: the portable ones, overwritten where the level has something faster.
template <class Kernels>
Kernels overwritten(Kernels kernels, [[maybe_unused]] Level level) {
#if defined(__x86_64__)
    switch (level) {
    case Level::Portable:
        break;
    case Level::Sse41:
        sse41::overwrite(kernels);
        break;
    case Level::Avx2:
        avx2::overwrite(kernels);
        break;
    case Level::Avx512:
        // Where a wider vector loses, its kernels leave those of AVX2 in place.
        avx2::overwrite(kernels);
        avx512::overwrite(kernels);
        break;
    }
#endif
    return kernels;
}

} // namespace
} // namespace fikleipa::simd
