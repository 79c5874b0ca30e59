// A row of pixels to v210 by way of samples. Included by the kernels of every level and by the portable ones, inside a
// namespace without a name.
//
// Luma is in order; of chroma, Cb and Cr are in turns, and what even pixels have is apart from what odd ones have. The
// row goes in pieces, which leave the first-level cache to the rest and memory little time to rest.

constexpr std::size_t kPiecePixels = 384;
// The filter looks a pixel ahead, so more is converted: whole vectors.
constexpr std::size_t kRoomPixels = kPiecePixels + 32;
constexpr std::size_t kPackReach = 64; // bytes that packing may read behind the samples

struct PieceOfSamples {
    alignas(64) std::uint8_t y[2 * kRoomPixels + kPackReach];
    alignas(64) std::uint8_t even[2 * kRoomPixels + kPackReach];
    alignas(64) std::uint8_t aheadOfOdd[64 + 2 * kRoomPixels + kPackReach];

    std::uint8_t* odd() { return aheadOfOdd + 64; }

    // The odd pixel ahead of the first pair is neutral, or that of pair `pair`.
    void beginRow() { storeWord<std::uint32_t>(odd() - 4, 512 | 512 << 16); }
    void follow(std::size_t pair) { __builtin_memcpy(odd() - 4, odd() + 4 * pair - 4, 4); }

    // The pair ahead of `pair` knows its own second pixel for its neighbour.
    void endAhead(std::size_t pair) { __builtin_memcpy(even + 4 * pair, odd() + 4 * pair - 4, 4); }
};

// The end of a row: of what does not fill a group, two pixels take the first two words of another one.
template <class Kernels>
inline void packEnd(const Kernels& kernels, PieceOfSamples& piece, std::uint8_t* dst, std::size_t pixels) {
    const std::size_t groups = pixels / 6;
    const std::size_t pair = 3 * groups;
    const std::size_t left = pixels % 6;
    if (left >= 2) {
        if (left == 2) piece.endAhead(pair + 1);
        std::uint8_t group[16];
        kernels.pack(group, piece.y + 4 * pair, piece.even + 4 * pair, piece.odd() + 4 * pair, 1);
        __builtin_memcpy(dst + 16 * groups, group, 4);
        storeWord<std::uint32_t>(dst + 16 * groups + 4, loadWord<std::uint16_t>(piece.y + 4 * pair + 2));
    }
    if (groups == 0) return;
    // The last whole group does not look beyond itself even where pixels follow: deliberate.
    piece.endAhead(pair);
    kernels.pack(dst, piece.y, piece.even, piece.odd(), groups);
}

// `kernels` convert(y, even, odd, src, count, left) so many pixels of those that are left of the row, and pack(dst, y,
// even, odd, groups), for which a sample ahead of `odd` and one more of `even` are there. The odd pixel ahead of those
// that are left is in `piece`.
template <class Kernels>
[[gnu::always_inline]] inline void rowToV210(const Kernels& kernels, PieceOfSamples& piece, std::uint8_t* dst,
                                             const std::uint8_t* src, std::size_t pixels) {
    for (; pixels > kRoomPixels; pixels -= kPiecePixels) {
        kernels.convert(piece.y, piece.even, piece.odd(), src, kRoomPixels, pixels);
        kernels.pack(dst, piece.y, piece.even, piece.odd(), kPiecePixels / 6);
        piece.follow(kPiecePixels / 2);
        src += kPiecePixels * Kernels::kPixelBytes;
        dst += kPiecePixels / 6 * 16;
    }
    kernels.convert(piece.y, piece.even, piece.odd(), src, pixels, pixels);
    packEnd(kernels, piece, dst, pixels);
}
