#include "bench/converters.h"
#include "fikleipa.h"

namespace fikleipa::bench {
namespace {

constexpr double kPacked = 2; // bytes a pixel
constexpr double k420 = 1.5;
constexpr double k422 = 2;

struct Entry {
    const char* name;
    PXConvertFrame* convert;
    double read, written;
    unsigned dstPitch, srcPitch; // in widths
};

#define ENTRY(name, ...)                                                                                               \
    { #name, cycbcr_##name, __VA_ARGS__ }
#define ENTRIES(planar, bytes)                                                                                         \
    ENTRY(planar##_to_yuy2, bytes, kPacked, 2, 1), ENTRY(planar##_to_yvyu, bytes, kPacked, 2, 1),                      \
        ENTRY(planar##_to_uyvy, bytes, kPacked, 2, 1), ENTRY(planar##_to_cyuv, bytes, kPacked, 2, 1),                  \
        ENTRY(yuy2_to_##planar, kPacked, bytes, 1, 2), ENTRY(yvyu_to_##planar, kPacked, bytes, 1, 2),                  \
        ENTRY(uyvy_to_##planar, kPacked, bytes, 1, 2), ENTRY(cyuv_to_##planar, kPacked, bytes, 1, 2)
// A transfer moves as many bytes as both frames have, though it reads some chroma from the destination.
constexpr Entry kEntries[] = {
    ENTRIES(i420, k420),
    ENTRIES(yv12, k420),
    ENTRIES(p422, k422),
    ENTRY(i420_to_i420, k420, k420, 1, 1),
    ENTRY(yv12_to_yv12, k420, k420, 1, 1),
    ENTRY(i420_to_yv12, k420, k420, 1, 1),
    ENTRY(yv12_to_i420, k420, k420, 1, 1),
    ENTRY(p422_to_p422, k422, k422, 1, 1),
    ENTRY(p422_to_i420, k422, k420, 1, 1),
    ENTRY(p422_to_yv12, k422, k420, 1, 1),
    ENTRY(i420_to_p422, k420, k422, 1, 1),
    ENTRY(yv12_to_p422, k420, k422, 1, 1),
};

struct Planes {
    std::uint8_t* y;
    std::uint8_t* cb;
    std::uint8_t* cr;

    Planes(std::uint8_t* frame, const FrameSize& f, double bytes)
        : y(frame), cb(frame + std::size_t{f.width} * f.height),
          cr(cb + static_cast<std::size_t>((bytes - 1) / 2 * f.width * f.height)) {}
};

struct FromEntry {
    const char* name;
    PXFromPlanar* convert;
    double read;
    unsigned mode;
};
constexpr FromEntry kFrom[] = {
    {"fromplanar(4:2:0)", cycbcr_fromplanar, k420, 0},
    {"fromplanar(4:2:2)", cycbcr_fromplanar, k422, 1},
    {"fromplanar(4:4:4)", cycbcr_fromplanar, 3, 2},
    {"fromplanar_fieldinvert(4:2:0)", cycbcr_fromplanar_fieldinvert, k420, 0},
    {"fromplanar_fieldinvert(4:2:2)", cycbcr_fromplanar_fieldinvert, k422, 1},
};

struct ToEntry {
    const char* name;
    PXToPlanar* convert;
    double written;
};
constexpr ToEntry kTo[] = {
    {"toplanar(4:2:0)", cycbcr_toplanar, k420},
    {"toplanar(4:2:2)", cycbcr_toplanar, k422},
    {"toplanar_fieldinvert(4:2:0)", cycbcr_toplanar_fieldinvert, k420},
    {"toplanar_fieldinvert(4:2:2)", cycbcr_toplanar_fieldinvert, k422},
};

} // namespace

void registerPlanarConverters(simd::Level level, const FrameSize& size) {
    const Context context{level, size};
    for (const Entry& entry : kEntries) {
        context.add(entry.name, {entry.read, entry.written},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        entry.convert(dst, src, f.width, f.height, entry.dstPitch * f.width, entry.srcPitch * f.width);
                    });
    }
    for (const FromEntry& entry : kFrom) {
        context.add(entry.name, {entry.read, kPacked},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        const Planes from(src, f, entry.read);
                        entry.convert(from.y, from.cb, from.cr, dst + 1, dst, dst + 2, f.width, f.height, 2 * f.width,
                                      f.width, entry.mode);
                    });
    }
    for (const ToEntry& entry : kTo) {
        context.add(entry.name, {kPacked, entry.written},
                    [entry](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
                        const Planes to(dst, f, entry.written);
                        entry.convert(src + 1, src, src + 2, to.y, to.cb, to.cr, f.width, f.height, f.width,
                                      2 * f.width, entry.written == k422 ? 1 : 0);
                    });
    }
    context.add("toplanar_sse2", {kPacked, k420}, [](std::uint8_t* dst, std::uint8_t* src, const FrameSize& f) {
        const Planes to(dst, f, k420);
        cycbcr_toplanar_sse2(src + 1, src, src + 2, to.y, to.cb, to.cr, f.width, f.height, f.width, f.width, 0);
    });
}

} // namespace fikleipa::bench
