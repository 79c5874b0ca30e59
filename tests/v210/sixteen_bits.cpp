#include "tests/v210/models.h"

namespace fikleipa::tests {
namespace {

// Where a source of 16-bit planes has its chroma.
struct Chroma {
    unsigned lumaRows;     // for each row of it
    unsigned wordsOfPitch; // of so many bytes of the pitch, a sample of the row's own
    unsigned bytesPerPair;
};
constexpr Chroma k422{1, 4, 2};
constexpr Chroma k420{2, 4, 2};
constexpr Chroma k444{1, 2, 4};
constexpr Chroma kWholePitch420{2, 2, 2};
constexpr Chroma kInterleaved420{2, 2, 4};

// A row's component in the order of UYVY. The chroma of odd pixels is read and dropped.
unsigned sample(const Places& src, const Geometry& g, const Chroma& chroma, unsigned r, unsigned i) {
    if (i % 2 != 0) return load16(src[0] + r * (g.srcPitch / 2 * 2) + i / 2 * 2);
    const At row = src[1 + i % 4 / 2] + r / chroma.lumaRows * (g.srcPitch / chroma.wordsOfPitch * 2);
    if (chroma.lumaRows == 1) static_cast<void>(row[(i / 4 + 1) * chroma.bytesPerPair - 1]);
    return load16(row + i / 4 * chroma.bytesPerPair);
}

unsigned low10(unsigned sample) {
    return sample & 0x3FF;
}
unsigned from12(unsigned sample) {
    return (sample & 0xFFC) >> 2;
}
unsigned from16(unsigned sample) {
    return sample >> 6;
}

unsigned extraWords(unsigned width) {
    return groupWords(width) + (width % 6 != 0 ? 2 : 0);
}
unsigned extraGroups(unsigned width) {
    return width == 0 ? 0 : groupWords(width + 5);
}

// Has Cr lie behind Cb, as interleaved chroma does.
Converter inTurns(Converter converter) {
    converter.name += ", in turns";
    converter.convert = [convert = converter.convert](const Pointers& dst, const Pointers& src, const Geometry& g) {
        return convert(dst, {src[0], src[1], src[1] + 2}, g);
    };
    converter.model = [model = converter.model](const Places& dst, const Places& src, const Geometry& g) {
        return model(dst, {src[0], src[1], src[1] + 2}, g);
    };
    return converter;
}

unsigned packLeftJustified(const Places& dst, const Places& src, const Chroma& chroma, const Geometry& g) {
    const unsigned pitch = std::max(2 * g.width, g.dstPitch);
    // Up to the last component of the row's last pixel; what else its word holds is 0.
    const unsigned components = g.width == 0 ? 0 : std::max(lumaOf(g.width - 1), crOf((g.width - 1) / 2)) + 1;
    for (unsigned r = 0; r < g.height; ++r) {
        for (unsigned w = 0; w < (components + 2) / 3; ++w) {
            std::uint32_t word = 0;
            for (unsigned i = 3 * w; i < 3 * w + 3; ++i) {
                const bool inRow = i % 2 != 0 ? i / 2 < g.width : i / 4 < (g.width + 1) / 2;
                const unsigned value = inRow ? sample(src, g, chroma, r, i) : 0;
                word |= i % 3 == 0 ? value >> 6 : value << (i % 3 == 1 ? 4 : 14);
            }
            storeWord(dst[0] + (r * pitch + 4 * w), word);
        }
    }
    return pitch * g.height;
}

// Stores so many pixels of a row, value(component) of each, and behind them two luma samples of 0 and one of each
// chroma if `zeros` are asked for.
template <class Value>
void storePixels(At y, At cb, At cr, unsigned pixels, bool zeros, Value value) {
    for (unsigned x = 0; x < pixels; ++x) store16(y + 2 * x, value(lumaOf(x)));
    for (unsigned x = 0; x < pixels / 2; ++x) {
        store16(cb + 2 * x, value(cbOf(x)));
        store16(cr + 2 * x, value(crOf(x)));
    }
    if (!zeros || pixels == 0) return;
    storeWord(y + 2 * pixels, 0);
    store16(cb + pixels, 0);
    store16(cr + pixels, 0);
}

// How a frame comes to lie in planes. Rows begin at even offsets.
struct Rows {
    unsigned lumaPitch, chromaPitch;
    unsigned pixels;       // that are written of each row
    bool zeros = false;    // behind each row
    unsigned lumaRows = 1; // that share a row of chroma
    bool average = false;  // of the chroma of both, where the later one's remains otherwise
};

// Splits a frame whose row r has value(row r of the source, component) for its samples.
template <class Value>
void splitRows(const Places& dst, At src, unsigned srcPitch, unsigned height, const Rows& to, Value value) {
    for (unsigned r = 0; r < height; ++r) {
        const unsigned luma = r * to.lumaPitch / 2 * 2;
        const unsigned chroma = r / to.lumaRows * to.chromaPitch / 2 * 2;
        const At row = src + r * srcPitch;
        storePixels(dst[0] + luma, dst[1] + chroma, dst[2] + chroma, to.pixels, to.zeros, [&](unsigned i) {
            const bool averaged = i % 2 == 0 && to.average && r % to.lumaRows != 0;
            return averaged ? (value(src + (r - 1) * srcPitch, i) + value(row, i)) >> 1 : value(row, i);
        });
    }
}

unsigned rightJustified(At row, unsigned i) {
    return component(row, i);
}
unsigned leftJustified(At row, unsigned i) {
    return component(row, i) << 6;
}
unsigned highByte(At row, unsigned i) {
    return row[i] * 256U;
}

void readAllGroups(At src, unsigned pitch, const Geometry& g) {
    for (unsigned r = 0; r < g.height; ++r) readGroups(src + r * pitch, g.width);
}

unsigned to422p10(const Places& dst, const Places& src, const Geometry& g) {
    const unsigned pitch = naturalPitch(g.width) > g.dstPitch ? naturalPitch(g.width) : g.srcPitch;
    splitRows(dst, src[0], pitch, g.height,
              {g.dstPitch, g.chromaPitch, roundUp(g.width, 6), 2 * g.chromaPitch == g.dstPitch}, rightJustified);
    return (g.dstPitch + 2 * g.chromaPitch) * g.height;
}

// The last row is left as it was.
unsigned to422p16(const Places& dst, const Places& src, const Geometry& g) {
    splitRows(dst, src[0], v210Pitch(g.width, g.srcPitch), std::max(1U, g.height) - 1,
              {g.dstPitch, g.dstPitch / 2, roundUp(g.width, 6), true}, leftJustified);
    return g.dstPitch * g.height;
}

unsigned to420p10(const Places& dst, const Places& src, const Geometry& g) {
    const unsigned pitch = g.srcPitch / 4 * 4;
    readAllGroups(src[0], pitch, g);
    splitRows(dst, src[0], pitch, g.height, {2 * g.width, g.width / 2 * 2, g.width, false, 2, true}, rightJustified);
    return 3 * g.width * g.height;
}

template <class Value>
unsigned to444(const Places& dst, At src, unsigned srcPitch, unsigned pixels, const Geometry& g, Value value) {
    for (unsigned r = 0; r < g.height; ++r) {
        for (unsigned x = 0; x < pixels; ++x) {
            const unsigned chroma = r * g.chromaPitch / 2 * 2 + 2 * x;
            store16(dst[0] + (r * g.dstPitch / 2 * 2 + 2 * x), value(src + r * srcPitch, lumaOf(x)));
            store16(dst[1] + chroma, value(src + r * srcPitch, cbOf(x / 2)));
            store16(dst[2] + chroma, value(src + r * srcPitch, crOf(x / 2)));
        }
    }
    return (g.chromaPitch + 2 * g.dstPitch) * g.height;
}

// Only the lowest bit of either flag counts.
constexpr std::uint8_t kSet = 0xFF;
constexpr std::uint8_t kClear = 0xFE;

void addSplitsByFlags(std::vector<Converter>& all) {
    const auto add = [&](const char* name, PXSplitByFlags* convert, bool isV210, auto value) {
        for (unsigned flags = 0; flags < 4; ++flags) {
            const bool is420 = flags % 2 != 0;
            const bool tight = flags / 2 != 0;
            all.push_back({name + std::to_string(flags), bytes2, isV210 ? naturalPitch : bytes2,
                           splitting(convert, is420 ? kSet : kClear, tight ? kSet : kClear),
                           [=](const Places& dst, const Places& src, const Geometry& g) {
                               const unsigned pitch =
                                   isV210 ? v210Pitch(g.width, g.srcPitch) : std::max(2 * g.width, g.srcPitch);
                               if (isV210) readAllGroups(src[0], pitch, g);
                               const Rows rows{tight ? 2 * g.width : g.dstPitch,
                                               tight ? g.width / 2 * 2 : g.dstPitch / 2,
                                               tight ? g.width : roundUp(g.width, isV210 ? 6 : 2),
                                               false,
                                               is420 ? 2U : 1U,
                                               isV210};
                               splitRows(dst, src[0], pitch, g.height, rows, value);
                               return g.dstPitch * g.height;
                           }});
        }
    };
    add("v210to_planar ", cycbcr_v210to_planar, true, rightJustified);
    add("v210to_planar16 ", cycbcr_v210to_planar16, true, leftJustified);
    add("uyvyto_planar16 ", cycbcr_uyvyto_planar16, false, highByte);
}

constexpr unsigned kNever = UINT32_MAX; // is a frame wide enough to be split

} // namespace

std::vector<Converter> v210OfDeepPlanes() {
    std::vector<Converter> all;
    // Wider frames are split, and of some the rows are left that eight bands do not share.
    const auto add = [&](const char* name, PXJoinPlanes* convert, auto reduce, const Chroma& chroma, auto words,
                         unsigned widest = kNever, bool leavesRest = false) {
        all.push_back({name, naturalPitch, bytes2, joining(convert),
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           const bool split = g.width > widest;
                           const unsigned pitch = v210Pitch(g.width, g.dstPitch);
                           storeRows(dst[0], pitch, split && leavesRest ? g.height / 8 * 8 : g.height, words(g.width),
                                     [&](unsigned r, unsigned i) { return reduce(sample(src, g, chroma, r, i)); });
                           return (split ? g.dstPitch : pitch) * g.height;
                       },
                       widest != kNever});
    };
    add("yuv422p10", cycbcr_yuv422p10_to_012v, low10, k422, extraWords, 2048);
    add("yuv422p12", cycbcr_yuv422p12_to_012v, from12, k422, extraWords, 1920, true);
    add("yuv444p12", cycbcr_yuv444p12_to_012v, from12, k444, groupWords, 2048);
    add("yuv422p10 band", cycbcr_yuv422p10_to_012v_internal, low10, k422, extraWords);
    add("yuv422p12 band", cycbcr_yuv422p12_to_012v_internal, from12, k422, extraWords);
    add("yuv444p12 band", cycbcr_yuv444p12_to_012v_internal, from12, k444, groupWords);
    add("yuv422p16", cycbcr_yuv422p16_to_012v, from16, k422, extraWords);
    add("yuv444p10", cycbcr_yuv444p10_to_012v, low10, k444, groupWords);
    add("yuv420p10", cycbcr_yuv420p10_to_012v, low10, k420, extraGroups);
    for (const unsigned flags : {0U, 2U, 0xFFFFFFFDU}) {
        all.push_back({"yuv420p16 " + std::to_string(flags), bytes2, bytes2, joining(cycbcr_yuv420p16_to_012v, flags),
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           return packLeftJustified(dst, src, flags == 2 ? kInterleaved420 : kWholePitch420, g);
                       }});
        if (flags == 2) all.push_back(inTurns(all.back()));
    }
    return all;
}

std::vector<Converter> uyvyOfDeepPlanes() {
    std::vector<Converter> all;
    const auto add = [&](const char* name, const Conversion& convert, const Chroma& chroma, unsigned shift,
                         unsigned widest = kNever) {
        all.push_back({name, bytes2, bytes2, convert,
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           const unsigned pitch = std::max(2 * g.width, g.dstPitch);
                           for (unsigned r = 0; r < g.height; ++r) {
                               for (unsigned i = 0; i < roundUp(g.width, 2) * 2; ++i) {
                                   const unsigned value = sample(src, g, chroma, r, i) >> shift;
                                   if (i < pitch) dst[0][r * pitch + i] = static_cast<std::uint8_t>(value);
                               }
                           }
                           return (g.width > widest ? g.dstPitch : pitch) * g.height;
                       },
                       widest != kNever});
    };
    add("yuv422p10", joining(cycbcr_yuv422p10_to_uyvy), k422, 2, 2048);
    add("yuv422p10 band", joining(cycbcr_yuv422p10_to_uyvy_internal), k422, 2);
    add("yuv420p10", joining(cycbcr_yuv420p10_to_uyvy), k420, 2);
    add("yuv420p16", joining(cycbcr_yuv420p16_to_uyvy, 1U), kWholePitch420, 8);
    add("yuv420p16 interleaved", joining(cycbcr_yuv420p16_to_uyvy, 2U), kInterleaved420, 8);
    all.push_back(inTurns(all.back()));
    return all;
}

std::vector<Converter> deepPlanesOfPacked() {
    std::vector<Converter> all;
    const auto add = [&](const char* name, PXSplitByPitches* convert, RowBytes srcRow, const Model& model) {
        all.push_back({name, bytes2, srcRow,
                       [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                           return convert(dst[0], dst[1], dst[2], src[0], g.width, g.height, g.dstPitch, g.chromaPitch,
                                          g.srcPitch);
                       },
                       model});
    };
    add("012v_to_yuv422p10", cycbcr_012v_to_yuv422p10, naturalPitch, to422p10);
    add("012v_to_yuv420p10", cycbcr_012v_to_yuv420p10, naturalPitch, to420p10);
    add("012v_to_yuv444p10", cycbcr_012v_to_yuv444p10, naturalPitch,
        [](const Places& dst, const Places& src, const Geometry& g) {
            return to444(dst, src[0], v210Pitch(g.width, g.srcPitch), roundUp(g.width, 6), g, rightJustified);
        });
    add("uyvy_to_yuv444p10", cycbcr_uyvy_to_yuv444p10, bytes2,
        [](const Places& dst, const Places& src, const Geometry& g) {
            return to444(dst, src[0], g.srcPitch, roundUp(g.width, 2), g,
                         [](At row, unsigned i) { return row[i] * 4U; });
        });
    all.push_back({"012v_to_yuv422p16", bytes2, naturalPitch, splitting(cycbcr_012v_to_yuv422p16), to422p16});
    addSplitsByFlags(all);
    return all;
}

} // namespace fikleipa::tests
