// Whole cache lines past the cache. The processor writes a line at once where all of it comes in a row.
namespace {

[[maybe_unused]] void streamLines(std::uint8_t* dst, const std::uint8_t* src, std::size_t lines) {
    for (std::size_t i = 0; i < lines * kCacheLine; i += kCacheLine) {
        for (std::size_t j = i; j < i + kCacheLine; j += V::kBytes)
            V::store<Writes::PastCache>(dst + j, V::load(src + j));
    }
    V::leave();
}

} // namespace
