// The engines between v210 and 8-bit or 16-bit samples that lie packed or in planes.
#include "core/planes.h"
#include "core/processor.h"
#include "fikleipa.h"
#include "simd/kernels.h"
#include "v210/pitch.h"
#include "v210/rows.h"

namespace {

using namespace fikleipa;

// Samples as the two flags of an engine's caller arrange them.
struct Arrangement {
    bool planar;
    bool fullChromaRows;

    unsigned chromaRow(unsigned row) const { return fullChromaRows ? row : row / 2; }
    unsigned chromaRows(unsigned rows) const { return fullChromaRows ? rows : halfRows(rows); }
};

Arrangement arrangement(int planar422, int planar) {
    return {planar != 0, planar == 0 || planar422 != 0};
}

std::size_t samples8(const Planes& at, bool planar) {
    return static_cast<std::size_t>(planar ? simd::Samples8::Planar : simd::packedSamples(at.y, at.cb, at.cr));
}

void packPlanes(const V210Rows& dst, unsigned width, const Planes& src, const Arrangement& from) {
    const std::size_t groups = v210Groups(width);
    RowPacker packer(simd::kernels().v210.pack8[samples8(src, true)], kPlanar8, goesPastCache(dst.spans(groups)));
    for (unsigned r = 0; r < dst.height; ++r) {
        packer.row(dst.row(r), src.at(r * width, width / 2 * from.chromaRow(r)), groups);
    }
}

void packPacked(const V210Rows& dst, unsigned width, const Planes& src, unsigned srcPitch) {
    const std::size_t groups = v210Groups(width);
    RowPacker packer(simd::kernels().v210.pack8[samples8(src, false)], kPacked8, goesPastCache(dst.spans(groups)));
    for (unsigned r = 0; r < dst.height; ++r) {
        const std::size_t offset = packedOffset(r, width, srcPitch);
        packer.row(dst.row(r), src.at(offset, offset), groups);
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

    unsigned chromaPitch() const { return arrangement.planar ? pitch / 2 : pitch; }
    Planes row(unsigned r) const {
        return planes.at(wholeSamples(r * pitch), wholeSamples(arrangement.chromaRow(r) * chromaPitch()));
    }
    // Whether rows are as far apart as the pitches say.
    bool pitchesAreWhole() const {
        return wholeSamples(pitch) == pitch && wholeSamples(chromaPitch()) == chromaPitch();
    }

private:
    unsigned wholeSamples(unsigned offset) const { return offset / sampleBytes * sampleBytes; }
};

void unpackPlanes(const UnpackedFrame& dst, simd::UnpackKernel unpack, const V210Rows& src, std::size_t groups) {
    const GroupBytes bytes = dst.sampleBytes == 1 ? kPlanar8 : kPlanar16;
    const SampleRows rows{dst.planes, dst.pitch, dst.chromaPitch(), src.height, dst.arrangement.chromaRows(src.height)};
    const std::size_t pairs = groups * simd::kV210GroupPairs;
    const std::size_t lasting = rows.lastingPairs(pairs, bytes);
    const bool pastCache = dst.pitchesAreWhole() && goesPastCache(rows.pairSpans(lasting, bytes));
    writeRows(src.height, pairs, lasting, pastCache, [&](unsigned first, unsigned end, std::size_t count, bool past) {
        RowUnpacker unpacker(unpack, bytes, past);
        for (unsigned r = first; r < end; ++r) unpacker.row(dst.row(r), src.row(r), count);
    });
}

// Rows whose samples lie as `at` says.
class PackedUnpacker {
public:
    PackedUnpacker(simd::UnpackKernel unpack, const Placement& at, const GroupBytes& bytes, bool pastCache)
        : unpack_(unpack), at_(at), rows_(pastCache, {bytes.lumaOfPair()}, kUnpackedPairs) {}

    void row(unsigned char* dst, const unsigned char* src, std::size_t pairs) {
        rows_.write({dst}, pairs, [&](const auto& to, std::size_t first, std::size_t count) {
            // Past the cache there is room for the whole of a last group; otherwise rows are whole groups.
            const Planes at = at_.in(to[0]);
            unpack_(at.y, at.cb, at.cr, groupOf(src, first), groupsOf(count));
        });
    }

private:
    simd::UnpackKernel unpack_;
    Placement at_;
    RowWriter<1> rows_;
};

// Samples of a known order are one row of memory, which may go past the cache.
void unpackPacked(const UnpackedFrame& dst, simd::UnpackKernel unpack, const V210Rows& src, std::size_t groups) {
    const auto order = simd::packedSamples(dst.planes.y, dst.planes.cb, dst.planes.cr, dst.sampleBytes);
    if (order == simd::Samples8::Packed) {
        for (unsigned r = 0; r < src.height; ++r) {
            const Planes row = dst.row(r);
            unpack(row.y, row.cb, row.cr, src.row(r), groups);
        }
        return;
    }
    const GroupBytes bytes{kPacked8.luma * dst.sampleBytes, kPacked8.luma * dst.sampleBytes};
    const Placement at = placementOf(order, dst.sampleBytes);
    unsigned char* const start = dst.planes.y - at.y;
    const std::size_t pairs = groups * simd::kV210GroupPairs;
    const std::size_t lasting =
        SampleRows{dst.planes, dst.pitch, dst.pitch, src.height, src.height}.lastingPairs(pairs, bytes);
    const bool pastCache =
        dst.pitchesAreWhole() && goesPastCache({{start, lasting * bytes.lumaOfPair(), dst.pitch, src.height}});
    writeRows(src.height, pairs, lasting, pastCache, [&](unsigned first, unsigned end, std::size_t count, bool past) {
        PackedUnpacker rows(unpack, at, bytes, past);
        for (unsigned r = first; r < end; ++r) rows.row(dst.row(r).y - at.y, src.row(r), count);
    });
}

void unpackFrame(const UnpackedFrame& dst, simd::UnpackKernel unpack, const V210Rows& src, unsigned width) {
    if (width == 0) return;
    const std::size_t groups = unpackedGroups(width);
    if (dst.arrangement.planar) return unpackPlanes(dst, unpack, src, groups);
    unpackPacked(dst, unpack, src, groups);
}

} // namespace

unsigned int Tov210(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned int width,
                    unsigned int height, unsigned int dstPitch, unsigned int srcPitch, int planar422, int planar) {
    probeProcessorLevel();
    const V210Rows rows{dst, height, v210Pitch(width, dstPitch)};
    if (width == 0) return 0;
    if (planar != 0) {
        packPlanes(rows, width, {y, cb, cr}, arrangement(planar422, planar));
    } else {
        packPacked(rows, width, {y, cb, cr}, srcPitch);
    }
    return naturalV210Pitch(width) * height;
}

unsigned int Fromv210(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src, unsigned int width,
                      unsigned int height, unsigned int dstPitch, unsigned int srcPitch, int planar422, int planar) {
    probeProcessorLevel();
    const UnpackedFrame dst{{y, cb, cr}, dstPitch, 1, arrangement(planar422, planar)};
    unpackFrame(dst, simd::kernels().v210.unpack8[samples8(dst.planes, planar != 0)],
                {src, height, v210Pitch(width, srcPitch)}, width);
    // The size of 4:2:0 whatever the planes: deliberate.
    return planar != 0 ? width * height + width * height / 2 : 2 * width * height;
}

unsigned int Fromv210_16(unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned char* src, unsigned int width,
                         unsigned int height, unsigned int dstPitch, unsigned int srcPitch, int planar422, int planar) {
    probeProcessorLevel();
    const auto& unpack = simd::kernels().v210.unpack16[static_cast<unsigned>(simd::Justify::Left)];
    const auto samples = planar != 0 ? simd::Samples16::Planar : simd::Samples16::Packed;
    unpackFrame({{y, cb, cr}, dstPitch, 2, arrangement(planar422, planar)}, unpack[static_cast<unsigned>(samples)],
                {src, height, v210Pitch(width, srcPitch)}, width);
    // Packed samples are counted as if they were bytes: deliberate.
    if (planar == 0) return 2 * width * height;
    return (planar422 != 0 ? 4 : 3) * width * height;
}
