#include "v210/bands.h"

#include "fikleipa.h"
#include "v210/deep.h"
#include "v210/pitch.h"

#include <array>
#include <atomic>

#include <unistd.h>

namespace fikleipa {
namespace {

constexpr unsigned kBands = 8;
constexpr unsigned kWaitMilliseconds = 30;
constexpr unsigned kPollMicroseconds = 1000;

// Those who have not finished. Others change the count by the platform library's interlocked operations.
class Pending {
public:
    int* count() { return &count_; }
    bool any() { return std::atomic_ref(count_).load(std::memory_order_acquire) > 0; }

private:
    int count_ = 1; // the caller, so that no worker brings it to 0 while bands are still being started
};

// Rows of a band begin where the pitches as passed put them.
BandRecord bandRecord(const PlanarFrame& f, const Split& split, unsigned index, int* pending, pxOSEvent done) {
    const unsigned bandRows = f.height / kBands;
    const bool takesRest = split.lastTakesRest && index == kBands - 1;
    const unsigned first = index * bandRows;
    const unsigned luma = first * f.srcPitch;
    const unsigned chroma = split.fullChroma ? luma : luma / 2;
    return {f.dst + first * f.dstPitch,
            f.y + luma,
            f.cb + chroma,
            f.cr + chroma,
            f.width,
            takesRest ? f.height - first : bandRows,
            f.dstPitch,
            f.srcPitch,
            pending,
            done,
            static_cast<std::uint8_t>(split.numbered ? index : 0)};
}

// The words that go beyond a row's pitch are no worker's, since another's row may be there. In the end only those of
// the frame's last row show, so the caller converts that row once more.
void addExtraWords(const BandRecord& last, const PlanarFrame& f, const Split& split) {
    const bool atFrameEnd = split.lastTakesRest || f.height % kBands == 0;
    if (!split.extraWords || f.width % simd::kV210GroupPixels == 0 || !atFrameEnd || last.rows == 0) return;
    const unsigned above = last.rows - 1;
    const unsigned chroma = above * evenPitch(f.srcPitch / 2);
    split.convert(last.dst + above * v210Pitch(f.width, f.dstPitch), last.y + above * evenPitch(f.srcPitch),
                  last.cb + chroma, last.cr + chroma, f.width, 1, f.dstPitch, f.srcPitch);
}

// Workers use the records and the count until the count is 0, which alone decides: the event only wakes the caller
// early.
void convertInBands(const PlanarFrame& f, const Split& split) {
    std::array<BandRecord, kBands> records;
    unsigned threadId = 0; // one for all
    Pending pending;
    const pxOSEvent done = pxOSCreateEvent(nullptr, 0, 0, split.eventName);
    for (unsigned i = 0; i < kBands; ++i) {
        records[i] = bandRecord(f, split, i, pending.count(), done);
        pxOSInterlockedIncrement(pending.count());
        const pxOSThread thread =
            pxOSCreateThread(nullptr, 0, split.worker, &records[i], 0, &threadId, split.threadName);
        pxOSCloseThread(thread, "d");
    }
    if (pxOSInterlockedDecrement(pending.count()) != 0) pxOSWaitForEvent(done, kWaitMilliseconds);
    while (pending.any()) usleep(kPollMicroseconds);
    pxOSCloseEvent(done);
    addExtraWords(records.back(), f, split);
}

} // namespace

unsigned convertSplit(const PlanarFrame& f, const Split& split) {
    if (f.width <= split.widestUndivided) {
        return split.convert(f.dst, f.y, f.cb, f.cr, f.width, f.height, f.dstPitch, f.srcPitch);
    }
    convertInBands(f, split);
    return f.dstPitch * f.height;
}

} // namespace fikleipa

using namespace fikleipa;

// `band` is what workers convert by. The order of the rest is that of Split.
#define SPLIT_CONVERTER(name, band, ...)                                                                               \
    unsigned int name##_worker(void* record) {                                                                         \
        return convertBand<band>(record);                                                                              \
    }                                                                                                                  \
    unsigned int name(unsigned char* dst, unsigned char* y, unsigned char* cb, unsigned char* cr, unsigned int width,  \
                      unsigned int height, unsigned int dstPitch, unsigned int srcPitch) {                             \
        return convertSplit({dst, y, cb, cr, width, height, dstPitch, srcPitch},                                       \
                            {name##_internal, name##_worker, __VA_ARGS__});                                            \
    }

SPLIT_CONVERTER(cycbcr_yuv422p10_to_012v, yuv422p10ToV210Band, "cycbcr_yuv422p10_to_012v", "ycbcr422p10", 2048, false,
                true, false, true)
// The rows that are over after eight bands are left as they were: deliberate.
SPLIT_CONVERTER(cycbcr_yuv422p12_to_012v, yuv422p12ToV210Band, "cycbcr_yuv422p12_to_012v", "ycbcr422p12", 1920, false,
                false, false, true)
SPLIT_CONVERTER(cycbcr_yuv444p12_to_012v, yuv444p12ToV210Band, "cycbcr_yuv444p12_to_012v", "yuv444p12", 2048, true,
                true, true, false)
// Known to the platform library by the names of its v210 sibling.
SPLIT_CONVERTER(cycbcr_yuv422p10_to_uyvy, yuv422p10ToUyvyBand, "cycbcr_yuv422p10_to_012v", "ycbcr422p10", 2048, false,
                true, false, false)

#undef SPLIT_CONVERTER
