#include "fuzz/transcode_reach.h"

#include "core/fourcc.h"

#include <algorithm>

namespace fikleipa::fuzz {
namespace {

using Bytes = std::uint64_t;

// One buffer.
struct Buffer {
    Bytes end = 0;
    Bytes touched = 0;
    Bytes scratch = 0;

    void rows(Bytes start, Bytes count, Bytes pitch, Bytes bytes) {
        if (count == 0 || bytes == 0) return;
        end = std::max(end, start + (count - 1) * pitch + bytes);
        touched += count * (bytes + 1);
    }
    // By cycbcr_invert(), which takes a scratch row whatever the height.
    void turnOver(Bytes start, Bytes count, Bytes pitch) {
        scratch = std::max(scratch, pitch);
        if (count > 1) rows(start, count, pitch, pitch);
    }
};

struct Conversion {
    unsigned width, height;
    Bytes dstPitch, srcPitch; // corrected
    Buffer dst, src;
    bool writesSource = false;
};

template <class Number>
constexpr Number roundUp(Number value, Number step) {
    return (value + step - 1) / step * step;
}

constexpr unsigned kGroupPixels = 6;
constexpr unsigned kGroupBytes = 16;
constexpr Bytes groupsOf(Bytes pixels) {
    return (pixels + kGroupPixels - 1) / kGroupPixels;
}

bool isPacked(Layout layout) {
    return layout <= Layout::Cyuv;
}
bool isPlanar(Layout layout) {
    return layout == Layout::I420 || layout == Layout::Yv12 || layout == Layout::P422;
}

// Pitches are 32-bit arithmetic, which wraps.
constexpr Bytes naturalPitch(unsigned width) {
    return roundUp(width, 48U) / 3 * 8;
}

unsigned correctedPitch(Layout layout, unsigned width, unsigned pitch) {
    if (isPacked(layout)) return std::max(pitch, 2 * width);
    if (isPlanar(layout)) return pitch > roundUp(width, 128U) ? width : pitch;
    if (layout != Layout::V210) return pitch;
    const unsigned groups = width / kGroupPixels * kGroupBytes;
    return pitch == 0 || (pitch % kGroupBytes == 0 && pitch >= groups) ? pitch : groups;
}

// The planes of a frame, luma plane of so many bytes.
struct Planes {
    bool is422;
    Bytes lumaBytes;

    // Calls chroma(start) for both.
    template <class Chroma>
    void eachChroma(Chroma chroma) const {
        chroma(lumaBytes);
        chroma(lumaBytes + lumaBytes / (is422 ? 2 : 4));
    }
    Bytes rows(Bytes height) const { return is422 ? height : (height + 1) / 2; }
};

Planes planesOf(Layout layout, Bytes lumaBytes) {
    return {layout == Layout::P422, lumaBytes};
}

// 4:2:0 chroma rows that belong to fields: as read for so many luma rows, and as written by rows 0 and 3 of every four.
constexpr Bytes fieldRowsRead(Bytes height) {
    return height / 4 * 2 + std::min<Bytes>(height % 4, 2);
}
constexpr Bytes fieldRowsWritten(Bytes height) {
    return height / 4 * 2 + (height % 4 != 0 ? 1 : 0);
}

void copyRows(Conversion& c, Bytes bytes) {
    c.dst.rows(0, c.height, c.dstPitch, bytes);
    c.src.rows(0, c.height, c.srcPitch, bytes);
}

// Frames of equal pitches are one long row.
void copyFrame(Conversion& c, Bytes unit) {
    if (c.dstPitch != c.srcPitch) return copyRows(c, std::min(c.dstPitch, c.srcPitch) / unit * unit);
    const Bytes bytes = c.dstPitch * c.height / unit * unit;
    c.dst.rows(0, 1, 0, bytes);
    c.src.rows(0, 1, 0, bytes);
}

void packedToPacked(Conversion& c, Layout from, Layout onto) {
    const auto isOneOf = [&](Layout layout) { return from == layout || onto == layout; };
    if (from == onto) return copyFrame(c, 1);
    if (isOneOf(Layout::Uyvy) && isOneOf(Layout::Cyuv)) return copyRows(c, std::min(c.dstPitch, c.srcPitch));

    if (isOneOf(Layout::Yvyu)) {
        copyRows(c, c.width / 2 * 4);
    } else {
        copyFrame(c, 2); // words, of which an odd last byte is none
    }
    if (isOneOf(Layout::Cyuv)) c.dst.turnOver(0, c.height, c.dstPitch);
}

void planarToPacked(Conversion& c, Layout from, Layout onto) {
    if (c.width == 0 || c.height == 0) return;
    const Bytes pairs = (Bytes{c.width} + 1) / 2;
    const Planes planes = planesOf(from, Bytes{c.width} * c.height);
    c.src.rows(0, c.height, c.srcPitch, 2 * pairs);
    planes.eachChroma([&](Bytes start) {
        if (planes.is422) {
            c.src.rows(start, c.height, pairs, pairs);
        } else {
            c.src.rows(start, fieldRowsRead(c.height), c.srcPitch / 2, pairs);
        }
    });
    c.dst.rows(0, c.height, c.dstPitch, 4 * pairs);
    if (onto == Layout::Cyuv) c.dst.turnOver(0, c.height, c.dstPitch);
}

// The planes that a row of pairs is written to.
void writePlanes(Conversion& c, const Planes& planes, Bytes pairs) {
    c.dst.rows(0, c.height, c.dstPitch, 2 * pairs);
    planes.eachChroma([&](Bytes start) {
        c.dst.rows(start, planes.is422 ? c.height : fieldRowsWritten(c.height), c.dstPitch / 2, pairs);
    });
}

void packedToPlanar(Conversion& c, Layout from, Layout onto) {
    if (c.width < 2 || c.height == 0) return;
    const Bytes pairs = c.width / 2;
    const Planes planes = planesOf(onto, c.dstPitch * c.height);
    c.src.rows(0, c.height, c.srcPitch == 2 * Bytes{c.width} ? 4 * pairs : c.srcPitch, 4 * pairs);
    writePlanes(c, planes, pairs);
    if (from != Layout::Cyuv) return;
    c.dst.turnOver(0, c.height, c.dstPitch);
    planes.eachChroma(
        [&](Bytes start) { c.dst.turnOver(start, planes.is422 ? c.height : c.height / 2, c.dstPitch / 2); });
}

void copyPlanes(Conversion& c, Layout layout) {
    const Planes dst = planesOf(layout, c.dstPitch * c.height);
    const Planes src = planesOf(layout, c.srcPitch * c.height);
    if (dst.is422 || c.dstPitch == c.srcPitch) {
        const Bytes chroma = dst.lumaBytes / (dst.is422 ? 2 : 4);
        for (const auto& [buffer, planes] : {std::pair{&c.dst, &dst}, std::pair{&c.src, &src}}) {
            buffer->rows(0, 1, 0, dst.lumaBytes);
            planes->eachChroma([&, to = buffer](Bytes start) { to->rows(start, 1, 0, chroma); });
        }
        return;
    }
    c.dst.rows(0, c.height, c.dstPitch, c.srcPitch);
    c.src.rows(0, c.height, c.srcPitch, c.srcPitch);
    if (c.height < 2) return;
    const Bytes chroma = std::min(c.dstPitch, c.srcPitch) / 2;
    const Bytes last = c.height / 2 - 1;
    dst.eachChroma([&](Bytes start) { c.dst.rows(start + last * c.dstPitch / 2, 1, 0, chroma); });
    src.eachChroma([&](Bytes start) { c.src.rows(start + last * c.srcPitch / 2, 1, 0, chroma); });
    c.dst.touched += chroma * c.height;
}

// Chroma goes from the destination to the source, rows of `width` bytes.
void transferPlanes(Conversion& c, Layout from, Layout onto) {
    if (c.height == 0) return;
    c.writesSource = true;
    const Planes dst = planesOf(onto, c.dstPitch * c.height);
    const Planes src = planesOf(from, c.srcPitch * c.height);
    c.dst.rows(0, c.height, c.dstPitch, c.width);
    c.src.rows(0, c.height, c.srcPitch, c.width);
    const auto chromaRows = [&](const Planes& planes) {
        return planes.is422 ? (dst.is422 ? c.height : (c.height - 1) / 2 * 2 + 1) : (c.height + 1) / 2;
    };
    dst.eachChroma([&](Bytes start) { c.dst.rows(start, chromaRows(dst), c.dstPitch / 2, c.width); });
    src.eachChroma([&](Bytes start) { c.src.rows(start, chromaRows(src), c.srcPitch / 2, c.width); });
}

void fromV210(Conversion& c, Layout onto) {
    if (c.width == 0 || c.height == 0) return;
    const Bytes groups = groupsOf(c.width);
    if (onto == Layout::Uyvy) {
        const Bytes pitch = c.srcPitch == 0 ? groups * kGroupBytes : std::max(c.srcPitch, naturalPitch(c.width));
        c.src.rows(0, c.height, pitch, groups * kGroupBytes);
        c.dst.rows(0, c.height, c.dstPitch, roundUp<Bytes>(c.width, 2) * 2);
        return;
    }
    const auto unpacked = roundUp<Bytes>(groups, 2);
    c.src.rows(0, c.height, std::max(c.srcPitch, naturalPitch(c.width)), unpacked * kGroupBytes);
    if (isPacked(onto)) {
        c.dst.rows(0, c.height, c.dstPitch, unpacked * kGroupPixels * 2);
        return;
    }
    const Planes planes = planesOf(onto, c.dstPitch * c.height);
    c.dst.rows(0, c.height, c.dstPitch, unpacked * kGroupPixels);
    planes.eachChroma(
        [&](Bytes start) { c.dst.rows(start, planes.rows(c.height), c.dstPitch / 2, unpacked * kGroupPixels / 2); });
}

void toV210(Conversion& c, Layout from) {
    const Bytes groups = groupsOf(c.width);
    const Bytes packedBytes = groups * kGroupPixels * 2;
    if (from == Layout::Uyvy) {
        c.src.rows(0, c.height, c.srcPitch, packedBytes);
        c.dst.rows(0, c.height, std::max(c.dstPitch, roundUp<Bytes>(c.width * Bytes{16} / 6, 64)),
                   groups * kGroupBytes);
        return;
    }
    c.dst.rows(0, c.height, std::max(c.dstPitch, naturalPitch(c.width)), groups * kGroupBytes);
    if (from == Layout::Cyuv) c.dst.turnOver(0, c.height, c.dstPitch);
    if (isPacked(from)) {
        c.src.rows(0, c.height, c.srcPitch == 2 * Bytes{c.width} ? packedBytes : c.srcPitch, packedBytes);
        return;
    }
    const Planes planes = planesOf(from, c.srcPitch * c.height);
    c.src.rows(0, c.height, c.width, groups * kGroupPixels);
    planes.eachChroma(
        [&](Bytes start) { c.src.rows(start, planes.rows(c.height), c.width / 2, groups * kGroupPixels / 2); });
}

constexpr Bytes kPixelBytes = 4;

void toRgb32(Conversion& c, Layout from) {
    const Bytes width = c.width;
    if (from == Layout::V210) {
        const Bytes pixels = width / 2 * 2;
        const Bytes wordBehind = pixels != 0 && pixels % kGroupPixels == 0 ? 4 : 0;
        c.src.rows(0, c.height, c.srcPitch, groupsOf(pixels) * kGroupBytes + wordBehind);
        c.dst.rows(0, c.height, c.dstPitch, pixels * kPixelBytes);
        return;
    }
    if (from == Layout::Cyuv) c.dst.turnOver(0, c.height, c.dstPitch);
    if (width == 0 || c.height == 0) return;
    const Bytes pairs = (width + 1) / 2;
    c.dst.rows(0, c.height, c.dstPitch, 2 * pairs * kPixelBytes);
    if (isPacked(from)) {
        c.src.rows(0, c.height, 4 * pairs, 4 * pairs); // chroma, which runs on
        return;
    }
    const Planes planes = planesOf(from, width * c.height);
    c.src.rows(0, c.height, width, 2 * pairs);
    planes.eachChroma([&](Bytes start) { c.src.rows(start + (planes.rows(c.height) - 1) * width / 2, 1, 0, pairs); });
}

void fromRgb32(Conversion& c, Layout onto) {
    const Bytes pairs = c.width / 2;
    if (onto == Layout::V210) {
        const Bytes rest = c.width % kGroupPixels >= 2 ? 8 : 0;
        c.src.rows(0, c.height, c.srcPitch, c.width * kPixelBytes);
        c.dst.rows(0, c.height, c.dstPitch, c.width / kGroupPixels * kGroupBytes + rest);
        return;
    }
    c.src.rows(0, c.height, c.srcPitch, 2 * pairs * kPixelBytes);
    if (isPlanar(onto)) {
        writePlanes(c, planesOf(onto, c.dstPitch * c.height), pairs);
        return;
    }
    c.dst.rows(0, c.height, c.dstPitch, 4 * pairs);
    if (onto == Layout::Cyuv) c.dst.turnOver(0, c.height, c.dstPitch);
}

void convert(Conversion& c, Layout from, Layout onto) {
    if (from == Layout::Rgb32) {
        if (onto != Layout::Rgb32) fromRgb32(c, onto);
    } else if (onto == Layout::Rgb32) {
        toRgb32(c, from);
    } else if (from == Layout::V210 && onto == Layout::V210) {
        copyFrame(c, 1);
    } else if (from == Layout::V210) {
        fromV210(c, onto);
    } else if (onto == Layout::V210) {
        toV210(c, from);
    } else if (isPacked(from)) {
        isPacked(onto) ? packedToPacked(c, from, onto) : packedToPlanar(c, from, onto);
    } else if (isPacked(onto)) {
        planarToPacked(c, from, onto);
    } else if ((from == Layout::P422) == (onto == Layout::P422)) {
        copyPlanes(c, onto);
    } else {
        transferPlanes(c, from, onto);
    }
}

} // namespace

Reach reachOf(Call call) {
    const bool isReversedName = call.srcFourCC == PX_FOURCC_422P;
    const auto from = isReversedName ? Layout::P422 : layoutOf(call.srcFourCC);
    const auto onto = layoutOf(call.dstFourCC);
    if (!from || !onto) return {};
    Conversion c{call.width,
                 call.height,
                 correctedPitch(*onto, call.width, call.dstPitch),
                 isReversedName ? call.srcPitch : correctedPitch(*from, call.width, call.srcPitch),
                 {},
                 {}};
    convert(c, *from, *onto);
    return {c.dst.end, c.src.end, c.dst.touched + c.src.touched, c.dst.scratch, c.writesSource};
}

} // namespace fikleipa::fuzz
