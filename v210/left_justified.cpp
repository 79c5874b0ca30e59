// Planes of left-justified 10-bit samples with half the chroma rows to v210. Samples are put in place without a mask,
// so that low bits which are not 0 reach into the component below.
#include "core/processor.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/pitch.h"
#include "v210/rows.h"

#include <array>
#include <cstring>

namespace {

using namespace fikleipa;
using simd::kV210GroupBytes;
using simd::kV210GroupPixels;

constexpr unsigned kInterleavedChroma = 2; // in the flag word

// The words that the components of a group's first pixels lie in.
constexpr std::array<std::size_t, kV210GroupPixels> kWords{0, 1, 2, 3, 3, 4};

// What is left of a row behind its whole groups.
void packRest(simd::PackKernel packApart, unsigned char* dst, const Planes& src, std::size_t rest,
              std::size_t chromaStep) {
    if (rest == 0) return;

    // Samples beyond the row are 0.
    std::array<unsigned char, 2 * kV210GroupPixels> y{};
    std::array<unsigned char, 2 * kV210GroupPixels> cb{};
    std::array<unsigned char, 2 * kV210GroupPixels> cr{};
    std::memcpy(y.data(), src.y, 2 * rest);
    const std::size_t chromaBytes = (pixelPairs(rest) - 1) * chromaStep + 2;
    std::memcpy(cb.data(), src.cb, chromaBytes);
    std::memcpy(cr.data(), src.cr, chromaBytes);
    std::array<unsigned char, kV210GroupBytes> group;
    packApart(group.data(), y.data(), cb.data(), cr.data(), 1);
    std::memcpy(dst, group.data(), kWords[rest] * 4);
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
    const simd::PackKernel pack = kernels[static_cast<unsigned>(simd::chromaOf(interleaved, cb, cr))];
    const simd::PackKernel packApart =
        kernels[static_cast<unsigned>(interleaved ? simd::Chroma::Full : simd::Chroma::Half)];
    const unsigned chromaStep = interleaved ? 4 : 2;
    const std::size_t groups = width / kV210GroupPixels;
    const std::size_t rest = width % kV210GroupPixels;
    const std::size_t rowBytes = groups * kV210GroupBytes + kWords[rest] * 4;
    const GroupBytes bytes{kPlanar16.luma, 3 * chromaStep};
    RowPacker rows(pack, bytes, goesPastCache({{dst, rowBytes, pitch, height}}));
    for (unsigned r = 0; width != 0 && r < height; ++r) {
        const Planes row = Planes{y, cb, cr}.at(r * rowPitch, r / 2 * rowPitch);
        rows.row(dst + r * pitch, row, groups);
        packRest(packApart, dst + r * pitch + groups * kV210GroupBytes,
                 row.at(groups * bytes.luma, groups * bytes.chroma), rest, chromaStep);
    }
    return pitch * height;
}
