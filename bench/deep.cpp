#include "bench/converters.h"
#include "fikleipa.h"

namespace fikleipa::bench {
namespace {

constexpr double kV210 = 16.0 / 6; // bytes a pixel

// The widths here are whole numbers of v210's 48 pixels.
unsigned v210Pitch(const FrameSize& f) {
    return f.width / 6 * 16;
}

struct PackedEntry {
    const char* name;
    PXConvertFrame* convert;
    double other;   // bytes a pixel of what is not v210
    unsigned pitch; // and its pitch, in widths
};

#define ENTRY(name, ...)                                                                                               \
    { #name, cycbcr_##name, __VA_ARGS__ }
constexpr PackedEntry kFromV210[] = {
    ENTRY(012v_to_uyvy, 2, 2), ENTRY(012v_to_yuy2, 2, 2),   ENTRY(012v_to_yvyu, 2, 2),   ENTRY(012v_to_cyuv, 2, 2),
    ENTRY(012v_to_p422, 2, 1), ENTRY(012v_to_i420, 1.5, 1), ENTRY(012v_to_yv12, 1.5, 1),
};
constexpr PackedEntry kToV210[] = {
    ENTRY(uyvy_to_012v, 2, 2), ENTRY(yuy2_to_012v, 2, 2),   ENTRY(yvyu_to_012v, 2, 2),   ENTRY(cyuv_to_012v, 2, 2),
    ENTRY(p422_to_012v, 2, 1), ENTRY(i420_to_012v, 1.5, 1), ENTRY(yv12_to_012v, 1.5, 1),
};

// Planes of 16-bit samples, given by the chroma that each has against luma.
struct JoinEntry {
    const char* name;
    PXJoinPlanes* convert;
    double chroma;
    double written;
};
constexpr JoinEntry kJoin[] = {
    ENTRY(yuv422p10_to_012v, 0.5, kV210), ENTRY(yuv422p12_to_012v, 0.5, kV210), ENTRY(yuv422p16_to_012v, 0.5, kV210),
    ENTRY(yuv444p10_to_012v, 1, kV210),   ENTRY(yuv444p12_to_012v, 1, kV210),   ENTRY(yuv420p10_to_012v, 0.25, kV210),
    ENTRY(yuv422p10_to_uyvy, 0.5, 2),     ENTRY(yuv420p10_to_uyvy, 0.25, 2),
};

// Those that split wide frames over threads.
struct BandsEntry {
    const char* name;
    PXJoinPlanes* convert;
    PXJoinPlanes* onOneThread;
    double chroma;
    double written;
};
constexpr BandsEntry kBands[] = {
    ENTRY(yuv422p10_to_012v, cycbcr_yuv422p10_to_012v_internal, 0.5, kV210),
    ENTRY(yuv422p12_to_012v, cycbcr_yuv422p12_to_012v_internal, 0.5, kV210),
    ENTRY(yuv444p12_to_012v, cycbcr_yuv444p12_to_012v_internal, 1, kV210),
    ENTRY(yuv422p10_to_uyvy, cycbcr_yuv422p10_to_uyvy_internal, 0.5, 2),
};

struct SplitEntry {
    const char* name;
    PXSplitByPitches* convert;
    double chroma;
    double read;
};
constexpr SplitEntry kSplit[] = {
    ENTRY(012v_to_yuv422p10, 0.5, kV210),
    ENTRY(012v_to_yuv420p10, 0.25, kV210),
    ENTRY(012v_to_yuv444p10, 1, kV210),
    ENTRY(uyvy_to_yuv444p10, 1, 2),
};

// Given by flags: chroma of half the rows; and planes whose Cb and Cr lie in one.
struct SplitFlagsEntry {
    const char* name;
    PXSplitByFlags* convert;
    double read;
    unsigned char chromaFlags = 0;
};
constexpr SplitFlagsEntry kSplitByFlags[] = {
    ENTRY(v210to_planar, kV210),   {"v210to_planar(4:2:0)", cycbcr_v210to_planar, kV210, 1},
    ENTRY(v210to_planar16, kV210), {"v210to_planar16(4:2:0)", cycbcr_v210to_planar16, kV210, 1},
    ENTRY(uyvyto_planar16, 2),     {"uyvyto_planar16(4:2:0)", cycbcr_uyvyto_planar16, 2, 1},
};

struct JoinFlagsEntry {
    const char* name;
    PXJoinPlanesByFlags* convert;
    double written;
    unsigned flags = 0;
};
constexpr JoinFlagsEntry kJoinByFlags[] = {
    ENTRY(yuv420p16_to_012v, kV210),
    {"yuv420p16_to_012v(interleaved)", cycbcr_yuv420p16_to_012v, kV210, 2},
    ENTRY(yuv420p16_to_uyvy, 2),
    {"yuv420p16_to_uyvy(interleaved)", cycbcr_yuv420p16_to_uyvy, 2, 2},
};

struct V210RgbEntry {
    const char* name;
    PXV210ToRgb* convert;
    unsigned bitsPerPixel;
    unsigned written;
};
constexpr V210RgbEntry kV210ToRgb[] = {
    {"v210ToRGBFloat(32)", cycbcr_v210ToRGBFloat, 32, 4},
    {"v210ToRGBInt16(48)", cycbcr_v210ToRGBInt16, 48, 6},
    {"v210ToRGBInt16(64)", cycbcr_v210ToRGBInt16, 64, 8},
};

// The bits of samples.
constexpr std::uint16_t k10 = 0x03FF;
constexpr std::uint16_t k12 = 0x0FFF;
constexpr std::uint16_t k16 = 0xFFFF;

struct DeepRgbEntry {
    const char* name;
    PXDeepToRgb* convert;
    unsigned bitsPerPixel;
    unsigned written;
    std::uint16_t sourceBits;
};
constexpr DeepRgbEntry kDeepToRgb[] = {
    {"planar10ToRGBInt(24)", planar10ToRGBInt, 24, 3, k10},
    {"planar10ToRGBInt(32)", planar10ToRGBInt, 32, 4, k10},
    {"10ToRGBInt(32)", cycbcr_10ToRGBInt, 32, 4, k10},
    {"10ToRGBInt16(48)", cycbcr_10ToRGBInt16, 48, 6, k10},
    {"10ToRGBInt16(64)", cycbcr_10ToRGBInt16, 64, 8, k10},
    {"10ToRGBInt10", cycbcr_10ToRGBInt10, 32, 4, k10},
    {"12ToRGB(32)", cycbcr_12ToRGB, 32, 4, k12},
    {"12ToRGBInt16(48)", cycbcr_12ToRGBInt16, 48, 6, k12},
    {"12ToRGBInt16(64)", cycbcr_12ToRGBInt16, 64, 8, k12},
    {"16ToRGB8(32)", cycbcr_16ToRGB8, 32, 4, k16},
};

struct DeepPlanesEntry {
    const char* name;
    PXDeepToRgbPlanes* convert;
    unsigned written; // bytes of a sample
    std::uint16_t sourceBits;
};
constexpr DeepPlanesEntry kDeepToPlanes[] = {
    {"10ToRGBPlanarInt", cycbcr_10ToRGBPlanarInt, 1, k10},
    {"10ToRGBPlanarInt10", cycbcr_10ToRGBPlanarInt10, 2, k10},
    {"10ToRGBPlanarInt16", cycbcr_10ToRGBPlanarInt16, 2, k10},
    {"12ToRGBPlanar", cycbcr_12ToRGBPlanar, 1, k12},
    {"12ToRGBPlanarInt16", cycbcr_12ToRGBPlanarInt16, 2, k12},
};

template <class Byte>
struct Planes {
    Byte* y;
    Byte* cb;
    Byte* cr;
};

template <class Byte>
Planes<Byte> planesOf(Byte* frame, const FrameSize& f, double chroma) {
    const std::size_t luma = std::size_t{2} * f.width * f.height;
    const auto one = static_cast<std::size_t>(static_cast<double>(luma) * chroma);
    return {frame, frame + luma, frame + luma + one};
}

Convert join(PXJoinPlanes* convert, double chroma, double written) {
    return [=](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        const auto planes = planesOf(src, f, chroma);
        const unsigned dstPitch = written == kV210 ? v210Pitch(f) : 2 * f.width;
        convert(dst, planes.y, planes.cb, planes.cr, f.width, f.height, dstPitch, 2 * f.width);
    };
}

unsigned short* samples(std::uint8_t* bytes) {
    return reinterpret_cast<unsigned short*>(bytes);
}

// What flags and modes choose among.
void addByFlags(const Context& context) {
    for (const SplitFlagsEntry& entry : kSplitByFlags) {
        const double chroma = entry.chromaFlags == 0 ? 0.5 : 0.25;
        context.add(entry.name, {entry.read, 2 + 4 * chroma},
                    [entry, chroma](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        const auto planes = planesOf(dst, f, chroma);
                        const unsigned srcPitch = entry.read == kV210 ? v210Pitch(f) : 2 * f.width;
                        entry.convert(planes.y, planes.cb, planes.cr, src, f.width, f.height, 2 * f.width, srcPitch,
                                      entry.chromaFlags, 0);
                    });
    }
    for (const JoinFlagsEntry& entry : kJoinByFlags) {
        context.add(entry.name, {3, entry.written}, [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
            // Rows of chroma are as far apart as those of luma, so that one of Cb and one of Cr lie side by side.
            std::uint8_t* const cb = src + std::size_t{2} * f.width * f.height;
            const unsigned dstPitch = entry.written == kV210 ? v210Pitch(f) : 2 * f.width;
            entry.convert(dst, src, cb, cb + (entry.flags == 0 ? f.width : 2), f.width, f.height, dstPitch, 2 * f.width,
                          entry.flags);
        });
    }
    context.add("planar_16_to_012v", {4, kV210}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        const auto planes = planesOf(src, f, 0.5);
        cycbcr_planar_16_to_012v(dst, planes.y, planes.cb, planes.cr, f.width, f.height, v210Pitch(f), 0, 1);
    });
    context.add("Fromv210_16", {kV210, 4}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        const auto planes = planesOf(dst, f, 0.5);
        Fromv210_16(planes.y, planes.cb, planes.cr, src, f.width, f.height, 2 * f.width, v210Pitch(f), 1, 1);
    });
    context.add("Fromv210_16(packed)", {kV210, 4}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        Fromv210_16(dst + 2, dst, dst + 4, src, f.width, f.height, 4 * f.width, v210Pitch(f), 0, 0);
    });
}

#if defined(__x86_64__)
struct RowEntry {
    const char* name;
    PXUnpackV210Row* unpack;
};
constexpr RowEntry kRows[] = {
    {"px_v210_planar_unpack_aligned_ssse3", px_v210_planar_unpack_aligned_ssse3},
    {"px_v210_planar_unpack_unaligned_ssse3", px_v210_planar_unpack_unaligned_ssse3},
    {"px_v210_planar16_unpack_aligned_ssse3", px_v210_planar16_unpack_aligned_ssse3},
    {"px_v210_planar16_unpack_unaligned_ssse3", px_v210_planar16_unpack_unaligned_ssse3},
};

// The rows of a frame one after another; the level does not matter.
void addRows(const Context& context) {
    for (const RowEntry& entry : kRows) {
        context.add(entry.name, {kV210, 4}, [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
            const auto planes = planesOf(dst, f, 0.5);
            for (std::size_t r = 0; r < f.height; ++r) {
                const std::size_t luma = r * 2 * f.width;
                entry.unpack(src + r * v210Pitch(f), samples(planes.y + luma), samples(planes.cb + luma / 2),
                             samples(planes.cr + luma / 2), f.width);
            }
        });
    }
}
#endif

void addRgb(const Context& context) {
    for (const V210RgbEntry& entry : kV210ToRgb) {
        context.add(entry.name, {kV210, static_cast<double>(entry.written)},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        entry.convert(dst, src, f.width, f.height, entry.written * f.width, v210Pitch(f),
                                      PX_MATRIX_BT709, PX_RGB_BGRA, entry.bitsPerPixel);
                    });
    }
    context.add("v210ToRGBPlanarInt16", {kV210, 6}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        const auto planes = planesOf(dst, f, 1);
        cycbcr_v210ToRGBPlanarInt16(samples(planes.y), samples(planes.cb), samples(planes.cr), src, f.width, f.height,
                                    2 * f.width, v210Pitch(f), PX_MATRIX_BT709, PX_RGB_BGRA);
    });
    for (const DeepRgbEntry& entry : kDeepToRgb) {
        context.add(entry.name, {4, static_cast<double>(entry.written), entry.sourceBits},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        const auto planes = planesOf(src, f, 0.5);
                        entry.convert(dst, samples(planes.y), samples(planes.cb), samples(planes.cr), f.width, f.height,
                                      entry.written * f.width, 2 * f.width, PX_MATRIX_BT709, PX_RGB_BGRA, 1, 1,
                                      entry.bitsPerPixel, f.width);
                    });
    }
    for (const DeepPlanesEntry& entry : kDeepToPlanes) {
        context.add(entry.name, {4, 3.0 * entry.written, entry.sourceBits},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        const auto planes = planesOf(src, f, 0.5);
                        const unsigned pitch = entry.written * f.width;
                        const std::size_t plane = std::size_t{pitch} * f.height;
                        entry.convert(dst, dst + plane, dst + 2 * plane, samples(planes.y), samples(planes.cb),
                                      samples(planes.cr), f.width, f.height, pitch, 2 * f.width, PX_MATRIX_BT709,
                                      PX_RGB_BGRA, 1, 1, 0, f.width);
                    });
    }
}

} // namespace

void registerDeepConverters(simd::Level level, const FrameSize& size) {
    const Context context{level, size};
    for (const PackedEntry& entry : kFromV210) {
        context.add(entry.name, {kV210, entry.other},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        entry.convert(dst, src, f.width, f.height, entry.pitch * f.width, v210Pitch(f));
                    });
    }
    for (const PackedEntry& entry : kToV210) {
        context.add(entry.name, {entry.other, kV210},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        entry.convert(dst, src, f.width, f.height, v210Pitch(f), entry.pitch * f.width);
                    });
    }
    context.add("012v_to_012v", {kV210, kV210}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        cycbcr_012v_to_012v(dst, src, f.width, f.height, v210Pitch(f), v210Pitch(f));
    });
    for (const JoinEntry& entry : kJoin) {
        context.add(entry.name, {2 + 4 * entry.chroma, entry.written},
                    join(entry.convert, entry.chroma, entry.written));
    }
    for (const SplitEntry& entry : kSplit) {
        context.add(entry.name, {entry.read, 2 + 4 * entry.chroma},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        const auto planes = planesOf(dst, f, entry.chroma);
                        entry.convert(planes.y, planes.cb, planes.cr, src, f.width, f.height, 2 * f.width,
                                      entry.chroma == 1 ? 2 * f.width : f.width,
                                      entry.read == kV210 ? v210Pitch(f) : 2 * f.width);
                    });
    }
    context.add("012v_to_yuv422p16", {kV210, 4}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        const auto planes = planesOf(dst, f, 0.5);
        cycbcr_012v_to_yuv422p16(planes.y, planes.cb, planes.cr, src, f.width, f.height, 2 * f.width, v210Pitch(f));
    });
#if defined(__x86_64__)
    if (level == simd::bestLevel()) addRows(context);
#endif
    addByFlags(context);
    addRgb(context);
}

void registerSplitConverters(simd::Level level) {
    // One core may take all that memory gives, so that a clip gains less than a frame that is partly in cache.
    for (const FrameSize& size :
         {FrameSize{"3840x2160", 3840, 2160, 8, 31}, FrameSize{"3840x2160-reused", 3840, 2160, 1, 31},
          FrameSize{"7680x4320", 7680, 4320, 2, 31}}) {
        const Context context{level, size};
        for (const BandsEntry& entry : kBands) {
            context.add(std::string(entry.name) + "(split)", {2 + 4 * entry.chroma, entry.written},
                        join(entry.convert, entry.chroma, entry.written),
                        {{"one thread", join(entry.onOneThread, entry.chroma, entry.written)}});
        }
    }
}

} // namespace fikleipa::bench
