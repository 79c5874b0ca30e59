// What the number of bands does to a frame, and what it costs to start threads.
#include "v210/bands.h"
#include "bench/converters.h"
#include "fikleipa.h"

#include <array>

namespace fikleipa::bench {
namespace {

// As the library splits a frame, but into as many bands as wanted.
void convertInBands(unsigned bands, std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
    const unsigned dstPitch = f.width / 6 * 16;
    const unsigned srcPitch = 2 * f.width;
    std::uint8_t* const cb = src + std::size_t{srcPitch} * f.height;
    std::uint8_t* const cr = cb + std::size_t{srcPitch} * f.height / 2;
    std::array<BandRecord, 8> records{};
    int pending = 1;
    const pxOSEvent done = pxOSCreateEvent(nullptr, 0, 0, nullptr);
    for (unsigned i = 0; i < bands; ++i) {
        const unsigned first = f.height / bands * i;
        const unsigned rows = i == bands - 1 ? f.height - first : f.height / bands;
        records[i] = {dst + first * dstPitch,
                      src + first * srcPitch,
                      cb + first * srcPitch / 2,
                      cr + first * srcPitch / 2,
                      f.width,
                      rows,
                      dstPitch,
                      srcPitch,
                      &pending,
                      done,
                      0};
        pxOSInterlockedIncrement(&pending);
        pxOSCloseThread(pxOSCreateThread(nullptr, 0, cycbcr_yuv422p10_to_012v_worker, &records[i], 0, nullptr, "band"),
                        nullptr);
    }
    if (pxOSInterlockedDecrement(&pending) != 0) pxOSWaitForEvent(done, 1000);
    pxOSCloseEvent(done);
}

// Threads that have nothing to do, until the last of them has begun.
void startThreads(unsigned count) {
    int pending = static_cast<int>(count);
    const pxOSEvent begun = pxOSCreateEvent(nullptr, 0, 0, nullptr);
    struct Start {
        int* pending;
        pxOSEvent begun;
    } start{&pending, begun};
    const pxOSThreadEntry entry = [](void* argument) {
        const Start given = *static_cast<Start*>(argument);
        if (pxOSInterlockedDecrement(given.pending) == 0) pxOSSetEvent(given.begun);
        return 0U;
    };
    for (unsigned i = 0; i < count; ++i) {
        pxOSCloseThread(pxOSCreateThread(nullptr, 0, entry, &start, 0, nullptr, "start"), nullptr);
    }
    pxOSWaitForEvent(begun, 1000);
    pxOSCloseEvent(begun);
}

} // namespace

void registerBands() {
    static constexpr FrameSize kSize{"3840x2160", 3840, 2160, 8, 31};
    for (unsigned bands = 1; bands <= 8; ++bands) {
        registerConversion(
            "bands/" + std::to_string(bands), kSize, {4, 16.0 / 6, 0x03FF}, [] { simd::useLevel(simd::bestLevel()); },
            [bands](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) { convertInBands(bands, dst, src, f); });
    }
    for (unsigned threads = 1; threads <= 8; ++threads) {
        registerShort("start/" + std::to_string(threads), [threads] { startThreads(threads); });
    }
}

} // namespace fikleipa::bench
