// The engines between v210 and 8-bit or 16-bit samples that lie packed or in planes.
#include "core/planes.h"
#include "core/processor.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/pitch.h"

namespace {

using namespace fikleipa;

// Samples as the two flags of an engine's caller arrange them.
struct Arrangement {
    bool planar;
    bool fullChromaRows;

    unsigned chromaRow(unsigned row) const { return fullChromaRows ? row : row / 2; }
};

Arrangement arrangement(int planar422, int planar) {
    return {planar != 0, planar == 0 || planar422 != 0};
}

std::size_t samples8(const Planes& at, bool planar) {
    return static_cast<std::size_t>(planar ? simd::Samples8::Planar : simd::packedSamples(at.y, at.cb, at.cr));
}

struct V210Frame {
    unsigned char* start;
    unsigned width;
    unsigned height;
    unsigned pitch;
};

void packPlanes(const V210Frame& dst, const Planes& src, const Arrangement& from) {
    const simd::PackKernel pack = simd::kernels().v210.pack8[samples8(src, true)];
    for (unsigned r = 0; r < dst.height; ++r) {
        const Planes row = src.at(r * dst.width, dst.width / 2 * from.chromaRow(r));
        pack(dst.start + r * dst.pitch, row.y, row.cb, row.cr, v210Groups(dst.width));
    }
}

// Rows that follow one another without a gap are not looked for by their number: each begins where the last group of
// the one before it ended, so that they drift where the width is not a multiple of six. Deliberate.
void packPacked(const V210Frame& dst, Planes src, unsigned srcPitch) {
    const simd::PackKernel pack = simd::kernels().v210.pack8[samples8(src, false)];
    const std::size_t groups = v210Groups(dst.width);
    const bool runsOn = srcPitch == 2 * dst.width;
    for (unsigned r = 0; r < dst.height; ++r) {
        const std::size_t offset = runsOn ? r * groups * 2 * simd::kV210GroupPixels : std::size_t{r * srcPitch};
        const Planes row = src.at(offset, offset);
        pack(dst.start + r * dst.pitch, row.y, row.cb, row.cr, groups);
    }
}

// An unpacking step is two groups, which all end up in the destination.
constexpr std::size_t kStepGroups = 2;

constexpr std::size_t unpackedGroups(unsigned width) {
    return (v210Groups(width) + kStepGroups - 1) / kStepGroups * kStepGroups;
}

struct UnpackedFrame {
    Planes planes;
    unsigned pitch;
    unsigned sampleBytes;
    Arrangement arrangement;

    Planes row(unsigned r) const {
        const unsigned chromaPitch = arrangement.planar ? pitch / 2 : pitch;
        return planes.at(wholeSamples(r * pitch), wholeSamples(arrangement.chromaRow(r) * chromaPitch));
    }

    unsigned wholeSamples(unsigned offset) const { return offset / sampleBytes * sampleBytes; }
};

void unpackRow(simd::UnpackKernel unpack, const Planes& row, const unsigned char* src, std::size_t groups) {
    unpack(row.y, row.cb, row.cr, src, groups);
}

// The planes of a frame of one or two rows may be so small that the surplus of one falls on the row in hand of the
// next. The order of the steps shows in what they leave there.
void unpackRowInSteps(simd::UnpackKernel unpack, Planes row, const unsigned char* src, std::size_t groups,
                      unsigned sampleBytes) {
    constexpr std::size_t kStepPixels = kStepGroups * simd::kV210GroupPixels;
    for (std::size_t done = 0; done < groups; done += kStepGroups) {
        unpackRow(unpack, row, src + done * simd::kV210GroupBytes, kStepGroups);
        row = row.at(kStepPixels * sampleBytes, kStepPixels / 2 * sampleBytes);
    }
}

void unpackFrame(const UnpackedFrame& dst, simd::UnpackKernel unpack, const V210Frame& src) {
    const std::size_t groups = unpackedGroups(src.width);
    const bool inSteps = dst.arrangement.planar && src.height <= 2;
    for (unsigned r = 0; r < src.height; ++r) {
        const unsigned char* const from = src.start + r * src.pitch;
        if (inSteps) {
            unpackRowInSteps(unpack, dst.row(r), from, groups, dst.sampleBytes);
        } else {
            unpackRow(unpack, dst.row(r), from, groups);
        }
    }
}

} // namespace

unsigned int Tov210(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned int width,
                    unsigned int height, unsigned int dstPitch, unsigned int srcPitch, int planar422, int planar) {
    probeProcessorLevel();
    const V210Frame frame{dst, width, height, v210Pitch(width, dstPitch)};
    if (planar != 0) {
        packPlanes(frame, {y, cb, cr}, arrangement(planar422, planar));
    } else {
        packPacked(frame, {y, cb, cr}, srcPitch);
    }
    return naturalV210Pitch(width) * height;
}

unsigned int Fromv210(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src, unsigned int width,
                      unsigned int height, unsigned int dstPitch, unsigned int srcPitch, int planar422, int planar) {
    probeProcessorLevel();
    const UnpackedFrame dst{{y, cb, cr}, dstPitch, 1, arrangement(planar422, planar)};
    unpackFrame(dst, simd::kernels().v210.unpack8[samples8(dst.planes, planar != 0)],
                {src, width, height, v210Pitch(width, srcPitch)});
    // The size of 4:2:0 whatever the planes: deliberate.
    return planar != 0 ? width * height + width * height / 2 : 2 * width * height;
}

unsigned int Fromv210_16(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src, unsigned int width,
                         unsigned int height, unsigned int dstPitch, unsigned int srcPitch, int planar422, int planar) {
    probeProcessorLevel();
    const auto& unpack = simd::kernels().v210.unpack16[static_cast<unsigned>(simd::Justify::Left)];
    const auto samples = planar != 0 ? simd::Samples16::Planar : simd::Samples16::Packed;
    unpackFrame({{y, cb, cr}, dstPitch, 2, arrangement(planar422, planar)}, unpack[static_cast<unsigned>(samples)],
                {src, width, height, v210Pitch(width, srcPitch)});
    // Packed samples are counted as if they were bytes: deliberate.
    if (planar == 0) return 2 * width * height;
    return (planar422 != 0 ? 4 : 3) * width * height;
}
