#include "rgb/deep_source.h"

#include "simd/kernels.h"
#include "simd/unaligned.h"

#include <algorithm>
#include <cstring>

namespace fikleipa {
namespace {

using simd::loadWord;
using simd::storeWord;

// Of a chunk of `pixels`, where odd pixels average or do not.
std::size_t chromaSamples(std::size_t pixels, simd::OddPixel odd) {
    return odd == simd::OddPixel::Own ? (pixels + 1) / 2 : pixels / 2 + 1;
}

template <unsigned kStep>
void gather(std::uint8_t* dst, const std::uint8_t* src, std::size_t count, unsigned shift) {
    if (kStep == 1 && shift == 0) {
        std::memcpy(dst, src, 2 * count);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        storeWord<std::uint16_t>(dst + 2 * i, unsigned{loadWord<std::uint16_t>(src + 2 * kStep * i)} >> shift);
    }
}

// Samples every kStep, where they lie or, if that does not do, copied.
template <unsigned kStep>
const std::uint8_t* luma(const std::uint8_t* src, std::size_t count, bool highBytes, ChunkRow& room) {
    if (kStep == 1 && !highBytes) return src;
    gather<kStep>(room.data(), src, count, highBytes ? 8 : 0);
    return room.data();
}

// Likewise. Where the row ends a sample too early, its last one comes again: no byte beyond a row is read.
template <unsigned kStep>
const std::uint8_t* chroma(const std::uint8_t* src, std::size_t count, std::size_t left, bool highBytes,
                           ChunkRow& room) {
    if (kStep == 1 && !highBytes && count <= left) return src;
    gather<kStep>(room.data(), src, std::min(count, left), highBytes ? 8 : 0);
    if (count > left) std::copy_n(room.data() + 2 * (left - 1), 2, room.data() + 2 * left);
    return room.data();
}

} // namespace

ChunkSamples V210Source::samples(unsigned r, std::size_t x, std::size_t count, ChunkRoom& room) const {
    using simd::kV210GroupPixels;
    const auto unpack =
        simd::kernels()
            .v210.unpack16[static_cast<unsigned>(simd::Justify::Right)][static_cast<unsigned>(simd::Samples16::Planar)];
    const std::size_t groups = (count + kV210GroupPixels - 1) / kV210GroupPixels;
    const std::uint8_t* const group = src + r * pitch + x / kV210GroupPixels * simd::kV210GroupBytes;
    unpack(room.y.data(), room.cb.data(), room.cr.data(), group, groups);
    if (count % kV210GroupPixels == 0) {
        // The last pair averages with what follows, also where that is the row's padding. Deliberate.
        const auto next = loadWord<std::uint32_t>(group + groups * simd::kV210GroupBytes);
        storeWord<std::uint16_t>(room.cb.data() + count, next & 0x3FF);
        storeWord<std::uint16_t>(room.cr.data() + count, next >> 20 & 0x3FF);
    }
    return {room.y.data(), room.cb.data(), room.cr.data()};
}

std::array<RowSpan, 1> V210Source::read() const {
    const std::size_t groups = pixels() / simd::kV210GroupPixels + 1;
    return {{{src, groups * simd::kV210GroupBytes, pitch, height}}};
}

ChunkSamples DeepSource::samples(unsigned r, std::size_t x, std::size_t count, ChunkRoom& room) const {
    const std::size_t pair = x / 2;
    const std::size_t left = (pixels() + 1) / 2 - pair;
    const std::size_t chromaCount = chromaSamples(count, oddPixel());
    if (!planar) {
        const std::size_t offset = r * lumaPitch;
        return {luma<2>(y + offset + 4 * x, count, highBytes, room.y),
                chroma<4>(cb + offset + 8 * pair, chromaCount, left, highBytes, room.cb),
                chroma<4>(cr + offset + 8 * pair, chromaCount, left, highBytes, room.cr)};
    }
    const std::size_t offset = (fullChromaRows ? r : r / 2) * chromaPitch;
    return {luma<1>(y + r * lumaPitch + 2 * x, count, highBytes, room.y),
            chroma<1>(cb + offset + 2 * pair, chromaCount, left, highBytes, room.cb),
            chroma<1>(cr + offset + 2 * pair, chromaCount, left, highBytes, room.cr)};
}

std::array<RowSpan, 3> DeepSource::read() const {
    if (!planar) {
        const std::uint64_t rowBytes = 4 * (std::uint64_t{width} + 1);
        return {
            {{y, rowBytes, lumaPitch, height}, {cb, rowBytes, lumaPitch, height}, {cr, rowBytes, lumaPitch, height}}};
    }
    const std::uint64_t chromaBytes = std::uint64_t{width} + 1;
    const unsigned chromaRows = fullChromaRows ? height : height / 2 + 1;
    return {{{y, 2 * std::uint64_t{width}, lumaPitch, height},
             {cb, chromaBytes, chromaPitch, chromaRows},
             {cr, chromaBytes, chromaPitch, chromaRows}}};
}

} // namespace fikleipa
