// Planes of left-justified 10-bit samples with half the chroma rows to v210. Samples are put in place without a mask,
// so that low bits which are not 0 reach into the component below.
#include "core/processor.h"
#include "fikleipa.h"
#include "v210/pitch.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace {

using namespace fikleipa;
using simd::kV210GroupBytes;
using simd::kV210GroupPixels;

constexpr unsigned kInterleavedChroma = 2; // in the flag word

struct SourceRow {
    const unsigned char* y;
    const unsigned char* cb;
    const unsigned char* cr;
    std::size_t chromaStep; // in bytes
};

// The samples of a group that belong to the row; the others are 0.
struct Samples {
    std::array<std::uint16_t, 6> y{};
    std::array<std::uint16_t, 3> cb{};
    std::array<std::uint16_t, 3> cr{};
};

Samples loadSamples(const SourceRow& row, std::size_t x, std::size_t pixels) {
    Samples s;
    std::memcpy(s.y.data(), row.y + 2 * x, 2 * pixels);
    for (std::size_t i = 0; i < pixelPairs(pixels); ++i) {
        const std::size_t at = (x / 2 + i) * row.chromaStep;
        std::memcpy(&s.cb[i], row.cb + at, 2);
        std::memcpy(&s.cr[i], row.cr + at, 2);
    }
    return s;
}

std::uint32_t word(unsigned low, unsigned middle, unsigned high) {
    return low >> 6 | middle << 4 | high << 14;
}

// The words that the components of a group's first pixels lie in.
constexpr std::array<std::size_t, kV210GroupPixels + 1> kWords{0, 1, 2, 3, 3, 4, 4};

void packRow(unsigned char* dst, const SourceRow& row, std::size_t width) {
    for (std::size_t x = 0; x < width; x += kV210GroupPixels) {
        const std::size_t pixels = std::min(width - x, kV210GroupPixels);
        const Samples s = loadSamples(row, x, pixels);
        const std::array words{word(s.cb[0], s.y[0], s.cr[0]), word(s.y[1], s.cb[1], s.y[2]),
                               word(s.cr[1], s.y[3], s.cb[2]), word(s.y[4], s.cr[2], s.y[5])};
        std::memcpy(dst, words.data(), kWords[pixels] * sizeof words[0]);
        dst += kV210GroupBytes;
    }
}

} // namespace

unsigned int cycbcr_yuv420p16_to_012v(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                      unsigned int width, unsigned int height, unsigned int dstPitch,
                                      unsigned int srcPitch, unsigned int flags) {
    probeProcessorLevel();
    // The pitch of UYVY, which v210 rows do not fit into: a smaller pitch than theirs lays them over one another.
    const unsigned pitch = uyvyPitch(width, dstPitch);
    const unsigned rowPitch = evenPitch(srcPitch);
    const std::size_t chromaStep = (flags & kInterleavedChroma) != 0 ? 4 : 2;
    for (unsigned r = 0; r < height; ++r) {
        const unsigned chroma = r / 2 * rowPitch;
        packRow(dst + r * pitch, {y + r * rowPitch, cb + chroma, cr + chroma, chromaStep}, width);
    }
    return pitch * height;
}
