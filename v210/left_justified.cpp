// Planes of left-justified 10-bit samples with half the chroma rows to v210. Samples are put in place without a mask,
// so that low bits which are not 0 reach into the component below.
#include "core/processor.h"
#include "core/rows.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/pitch.h"

#include <array>
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

// The words that the components of a group's first pixels lie in.
constexpr std::array<std::size_t, kV210GroupPixels> kWords{0, 1, 2, 3, 3, 4};

// What is left of a row behind its whole groups.
void packRest(simd::PackKernel pack, unsigned char* dst, const SourceRow& row, std::size_t width) {
    const std::size_t groups = width / kV210GroupPixels;
    const std::size_t rest = width % kV210GroupPixels;
    if (rest == 0) return;

    // Samples beyond the row are 0.
    std::array<unsigned char, 2 * kV210GroupPixels> y{};
    std::array<unsigned char, 2 * kV210GroupPixels> cb{};
    std::array<unsigned char, 2 * kV210GroupPixels> cr{};
    std::memcpy(y.data(), row.y + groups * y.size(), 2 * rest);
    const std::size_t chroma = groups * 3 * row.chromaStep;
    const std::size_t chromaBytes = (pixelPairs(rest) - 1) * row.chromaStep + 2;
    std::memcpy(cb.data(), row.cb + chroma, chromaBytes);
    std::memcpy(cr.data(), row.cr + chroma, chromaBytes);
    std::array<unsigned char, kV210GroupBytes> group;
    pack(group.data(), y.data(), cb.data(), cr.data(), 1);
    std::memcpy(dst + groups * kV210GroupBytes, group.data(), kWords[rest] * 4);
}

} // namespace

unsigned int cycbcr_yuv420p16_to_012v(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr,
                                      unsigned int width, unsigned int height, unsigned int dstPitch,
                                      unsigned int srcPitch, unsigned int flags) {
    probeProcessorLevel();
    // The pitch of UYVY, which v210 rows do not fit into: a smaller pitch than theirs lays them over one another.
    const unsigned pitch = uyvyPitch(width, dstPitch);
    const unsigned rowPitch = evenPitch(srcPitch);
    const bool interleaved = (flags & kInterleavedChroma) != 0;
    const auto& kernels = simd::kernels().v210.pack16[static_cast<unsigned>(simd::Reduce::From16Unmasked)];
    const simd::PackKernel pack = kernels[static_cast<unsigned>(interleaved ? simd::Chroma::Full : simd::Chroma::Half)];
    const std::size_t chromaStep = interleaved ? 4 : 2;
    const std::size_t groups = width / kV210GroupPixels;
    const std::size_t chromaBytes = pixelPairs(width) * chromaStep;
    const unsigned chromaRows = height / 2 + 1;
    const std::size_t rowBytes = groups * kV210GroupBytes + kWords[width % kV210GroupPixels] * 4;
    RowWriter<1> rows(goesPastCache({{dst, rowBytes, pitch, height}}, {{y, 2 * std::uint64_t{width}, rowPitch, height},
                                                                       {cb, chromaBytes, rowPitch, chromaRows},
                                                                       {cr, chromaBytes, rowPitch, chromaRows}}),
                      {kV210GroupBytes});
    for (unsigned r = 0; r < height; ++r) {
        const unsigned chroma = r / 2 * rowPitch;
        const SourceRow row{y + r * rowPitch, cb + chroma, cr + chroma, chromaStep};
        rows.write({dst + r * pitch}, groups, [&](const auto& to, std::size_t first, std::size_t count) {
            pack(to[0], row.y + 12 * first, row.cb + 3 * chromaStep * first, row.cr + 3 * chromaStep * first, count);
        });
        packRest(pack, dst + r * pitch, row, width);
    }
    return pitch * height;
}
