#include "rgb/deep_source.h"

#include "core/planes.h"
#include "simd/kernels.h"
#include "simd/unaligned.h"

#include <algorithm>

namespace fikleipa {
namespace {

using simd::loadWord;
using simd::storeWord;

// Of a chunk of `pixels`, where odd pixels average or do not.
std::size_t chromaSamples(std::size_t pixels, simd::OddPixel odd) {
    return odd == simd::OddPixel::Own ? (pixels + 1) / 2 : pixels / 2 + 1;
}

// Where in a row samples lie, 1 << apart words from one another.
struct Samples {
    const std::uint8_t* first;
    unsigned apart;
    bool highBytes;

    // From number `at` on, where they lie or, if that does not do, copied.
    const std::uint8_t* from(std::size_t at, std::size_t count, ChunkRow& room) const {
        const std::uint8_t* const src = first + (2 * at << apart);
        if (apart == 0 && !highBytes) return src;
        copy(room, src, count);
        return room.data();
    }
    // Likewise. Where the row has too few, its last one comes again: no byte beyond a row is read.
    const std::uint8_t* from(std::size_t at, std::size_t count, std::size_t left, ChunkRow& room) const {
        if (count <= left) return from(at, count, room);
        copy(room, first + (2 * at << apart), left);
        std::copy_n(room.data() + 2 * (left - 1), 2, room.data() + 2 * left);
        return room.data();
    }

private:
    void copy(ChunkRow& room, const std::uint8_t* src, std::size_t count) const {
        const simd::GatherWordsKernels& kernels = simd::kernels().gatherWords;
        (highBytes ? kernels.upperBytes : kernels.words)[apart](room.data(), src, count);
    }
};

} // namespace

const std::uint8_t* V210Source::groups(unsigned r, std::size_t x) const {
    return src + r * pitch + x / simd::kV210GroupPixels * simd::kV210GroupBytes;
}

ChunkSamples V210Source::samples(unsigned r, std::size_t x, std::size_t count, ChunkRoom& room) const {
    using simd::kV210GroupPixels;
    const auto unpack =
        simd::kernels()
            .v210.unpack16[static_cast<unsigned>(simd::Justify::Right)][static_cast<unsigned>(simd::Samples16::Planar)];
    const std::size_t groups = (count + kV210GroupPixels - 1) / kV210GroupPixels;
    const std::uint8_t* const group = this->groups(r, x);
    unpack(room.y.data(), room.cb.data(), room.cr.data(), group, groups);
    if (count % kV210GroupPixels == 0) {
        // The last pair averages with what follows, also where that is the row's padding. Deliberate.
        const auto next = loadWord<std::uint32_t>(group + groups * simd::kV210GroupBytes);
        storeWord<std::uint16_t>(room.cb.data() + count, next & 0x3FF);
        storeWord<std::uint16_t>(room.cr.data() + count, next >> 20 & 0x3FF);
    }
    return {room.y.data(), room.cb.data(), room.cr.data()};
}

ChunkSamples DeepSource::samples(unsigned r, std::size_t x, std::size_t count, ChunkRoom& room) const {
    const std::size_t pair = x / 2;
    const std::size_t left = (pixels() + 1) / 2 - pair;
    const std::size_t chromaCount = chromaSamples(count, oddPixel());
    const std::size_t luma = r * lumaPitch;
    const std::size_t chroma = planar ? (fullChromaRows ? r : r / 2) * chromaPitch : luma;
    const unsigned chromaApart = planar ? 0 : 2;
    return {Samples{y + luma, planar ? 0U : 1U, highBytes}.from(x, count, room.y),
            Samples{cb + chroma, chromaApart, highBytes}.from(pair, chromaCount, left, room.cb),
            Samples{cr + chroma, chromaApart, highBytes}.from(pair, chromaCount, left, room.cr)};
}

} // namespace fikleipa
