// All of them: one byte shuffle a vector.
namespace {

constexpr std::uint8_t kSwap16[16] = {1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14};
constexpr std::uint8_t kSwap13[16] = {0, 3, 2, 1, 4, 7, 6, 5, 8, 11, 10, 9, 12, 15, 14, 13};
constexpr std::uint8_t kZero = 0x80;
constexpr std::uint8_t kSwap13Of8[16] = {0, 3,  2,  1, kZero, kZero, kZero, kZero,
                                         8, 11, 10, 9, kZero, kZero, kZero, kZero};

// Converts whole vectors and returns how many bytes that was; the portable kernel does the rest.
inline std::size_t shuffleVectors(std::uint8_t* dst, const std::uint8_t* src, std::size_t bytes,
                                  const std::uint8_t (&from)[16]) {
    constexpr std::size_t kStep = 4 * V::kBytes;
    const V::Bytes mask = V::repeat(from);
    std::size_t i = 0;
    for (; i + kStep <= bytes; i += kStep) {
        const V::Bytes a = V::load(src + i);
        const V::Bytes b = V::load(src + i + V::kBytes);
        const V::Bytes c = V::load(src + i + 2 * V::kBytes);
        const V::Bytes d = V::load(src + i + 3 * V::kBytes);
        V::store(dst + i, V::shuffle(a, mask));
        V::store(dst + i + V::kBytes, V::shuffle(b, mask));
        V::store(dst + i + 2 * V::kBytes, V::shuffle(c, mask));
        V::store(dst + i + 3 * V::kBytes, V::shuffle(d, mask));
    }
    for (; i + V::kBytes <= bytes; i += V::kBytes) V::store(dst + i, V::shuffle(V::load(src + i), mask));
    return i;
}

void swap16(std::uint8_t* dst, const std::uint8_t* src, std::size_t words) {
    const std::size_t done = shuffleVectors(dst, src, 2 * words, kSwap16);
    swap16Portable(dst + done, src + done, words - done / 2);
}

void swap13(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups) {
    const std::size_t done = shuffleVectors(dst, src, 4 * groups, kSwap13);
    swap13Portable(dst + done, src + done, groups - done / 4);
}

void swap13Of8(std::uint8_t* dst, const std::uint8_t* src, std::size_t groups) {
    const std::size_t done = shuffleVectors(dst, src, 8 * groups, kSwap13Of8);
    swap13Of8Portable(dst + done, src + done, groups - done / 8);
}

} // namespace
