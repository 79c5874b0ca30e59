// Words that lie apart to a row of their own, a vector of them at a time.
namespace {

// A vector of words that are 1 << kApart apart.
template <unsigned kApart>
[[gnu::always_inline]] inline V::Bytes gatherBlock(const std::uint8_t* src) {
    if constexpr (kApart == 0) {
        return V::load(src);
    } else {
        return V::evenWords(gatherBlock<kApart - 1>(src), gatherBlock<kApart - 1>(src + (V::kBytes << (kApart - 1))));
    }
}

// A block is read with the words between its last one and the next, so there must be a next one.
template <unsigned kApart, int kShift>
void gatherBlocks(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    constexpr std::size_t kBlock = V::kBytes / 2; // words
    std::size_t i = 0;
    for (; i + kBlock < count; i += kBlock) {
        V::store(dst + 2 * i, V::right16<kShift>(gatherBlock<kApart>(src + (2 * i << kApart))));
    }
    gather<kApart, kShift>(dst + 2 * i, src + (2 * i << kApart), count - i);
}

void overwrite(GatherWordsKernels& kernels) {
    kernels = {{gatherBlocks<0, 0>, gatherBlocks<1, 0>, gatherBlocks<2, 0>},
               {gatherBlocks<0, 8>, gatherBlocks<1, 8>, gatherBlocks<2, 8>}};
}

} // namespace
