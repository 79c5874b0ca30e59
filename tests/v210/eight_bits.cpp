#include "tests/v210/models.h"

namespace fikleipa::tests {
namespace {

// Rows without a gap begin where the last group of the one before them ended.
unsigned packGroups(const Places& dst, At src, const Order& order, const Geometry& g) {
    const Places first = firstSamples(src, order);
    storeRows(dst[0], v210Pitch(g.width, g.dstPitch), g.height, groupWords(g.width), [&](unsigned r, unsigned i) {
        const unsigned row = r * (g.srcPitch == 2 * g.width ? 2 * roundUp(g.width, 6) : g.srcPitch);
        const At samples = first[i % 2 != 0 ? 0 : 1 + i % 4 / 2];
        return samples[row + (i % 2 != 0 ? i / 2 * 2 : i / 4 * 4)] * 4U;
    });
    return naturalPitch(g.width) * g.height;
}

unsigned load10(At plane, unsigned index) {
    return load16(plane + 2 * index) & 0x3FF;
}
unsigned load8(At plane, unsigned index) {
    return plane[index] * 4U;
}

template <unsigned (*kLoad)(At plane, unsigned index)>
unsigned packPlanes(const Places& dst, const Places& src, bool is422, const Geometry& g) {
    storeRows(dst[0], v210Pitch(g.width, g.dstPitch), g.height, groupWords(g.width), [&](unsigned r, unsigned i) {
        if (i % 2 != 0) return kLoad(src[0], r * g.width + i / 2);
        return kLoad(src[1 + i % 4 / 2], (is422 ? r : r / 2) * (g.width / 2) + i / 4);
    });
    return naturalPitch(g.width) * g.height;
}

// How an engine leaves samples: so many bytes each, luma and chroma so many samples apart.
struct Samples {
    unsigned bytes;
    unsigned step = 1;
    unsigned chromaStep = 1;
    unsigned lumaRows = 1; // that share a row of chroma

    void put(At plane, unsigned rowOffset, unsigned index, unsigned value) const {
        const At at = plane + rowOffset / bytes * bytes + index * bytes;
        bytes == 1 ? static_cast<void>(at[0] = static_cast<std::uint8_t>(value >> 2)) : store16(at, value << 6);
    }
};

// Groups of six pixels, each with its luma, then its chroma, to the end of a step of two.
void unpack(const Places& dst, At src, const Samples& to, const Geometry& g) {
    for (unsigned r = 0; r < g.height; ++r) {
        const At row = src + r * v210Pitch(g.width, g.srcPitch);
        const unsigned luma = r * g.dstPitch;
        const unsigned chroma = r / to.lumaRows * (to.step == 1 ? g.dstPitch / 2 : g.dstPitch);
        for (unsigned x = 0; x < roundUp(g.width, 12); x += 6) {
            for (unsigned i = x; i < x + 6; ++i) to.put(dst[0], luma, i * to.step, component(row, lumaOf(i)));
            for (unsigned i = x / 2; i < x / 2 + 3; ++i) {
                to.put(dst[1], chroma, i * to.chromaStep, component(row, cbOf(i)));
                to.put(dst[2], chroma, i * to.chromaStep, component(row, crOf(i)));
            }
        }
    }
}

unsigned unpackGroups(At dst, At src, const Order& order, unsigned bytes, const Geometry& g) {
    unpack(firstSamples(dst, order, bytes), src, {bytes, 2, 4}, g);
    return 2 * g.width * g.height;
}

unsigned unpackPlanes(const Places& dst, At src, bool is422, unsigned bytes, const Geometry& g) {
    unpack(dst, src, {bytes, 1, 1, is422 ? 1U : 2U}, g);
    return bytes == 1 ? g.width * g.height * 3 / 2 : g.width * g.height * (is422 ? 4 : 3);
}

void addEngines(std::vector<Converter>& all) {
    for (const Order& order : kOrders) {
        all.push_back({"Tov210 " + order, naturalPitch, bytes2,
                       [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                           const auto [y, cb, cr] = firstSamples(src[0], order);
                           return Tov210(dst[0], y, cb, cr, g.width, g.height, g.dstPitch, g.srcPitch, 0, 0);
                       },
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           return packGroups(dst, src[0], order, g);
                       }});
        for (const unsigned bytes : {1U, 2U}) {
            all.push_back({"Fromv210 " + order, bytes == 1 ? bytes2 : bytes4, naturalPitch,
                           [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                               const auto [y, cb, cr] = firstSamples(dst[0], order, bytes);
                               return (bytes == 1 ? Fromv210 : Fromv210_16)(y, cb, cr, src[0], g.width, g.height,
                                                                            g.dstPitch, g.srcPitch, 0, 0);
                           },
                           [=](const Places& dst, const Places& src, const Geometry& g) {
                               return unpackGroups(dst[0], src[0], order, bytes, g);
                           }});
        }
    }
}

void addPlanes(std::vector<Converter>& all) {
    const auto to = [&](const char* name, const Conversion& convert, auto model, bool is422) {
        all.push_back(
            {name, naturalPitch, bytes1, convert,
             [=](const Places& dst, const Places& src, const Geometry& g) { return model(dst, src, is422, g); }});
    };
    const auto from = [&](const char* name, const Conversion& convert, unsigned bytes, bool is422) {
        all.push_back({name, bytes == 1 ? bytes1 : bytes2, naturalPitch, convert,
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           return unpackPlanes(dst, src[0], is422, bytes, g);
                       }});
    };
    for (const int is422 : {0, 7}) {
        to("Tov210 planes", joining(Tov210, is422, 4), packPlanes<load8>, is422 != 0);
        to("planar_to_012v", joining(cycbcr_planar_to_012v, is422), packPlanes<load8>, is422 != 0);
        to("planar_16_to_012v", joining(cycbcr_planar_16_to_012v, is422), packPlanes<load10>, is422 != 0);
        from("Fromv210 planes", splitting(Fromv210, is422, 4), 1, is422 != 0);
        from("Fromv210_16 planes", splitting(Fromv210_16, is422, 4), 2, is422 != 0);
    }
    from("012v_to_planar422", splitting(cycbcr_012v_to_planar422), 1, true);
    from("012v_to_planar422_16", splitting(cycbcr_012v_to_planar422_16), 2, true);
}

void addNamed(std::vector<Converter>& all) {
    const auto packed = [&](const char* name, PXConvertFrame* to, PXConvertFrame* from, const Order& order,
                            bool flip = false) {
        all.push_back({std::string(name) + "_to_012v", naturalPitch, bytes2, frame(to),
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           const unsigned size = packGroups(dst, src[0], order, g);
                           if (flip) invert(dst[0], g.dstPitch, g.height);
                           return size;
                       }});
        all.push_back({std::string("012v_to_") + name, bytes2, naturalPitch, frame(from),
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           return unpackGroups(dst[0], src[0], order, 1, g);
                       }});
    };
    packed("yuy2", cycbcr_yuy2_to_012v, cycbcr_012v_to_yuy2, kYuy2);
    packed("yvyu", cycbcr_yvyu_to_012v, cycbcr_012v_to_yvyu, kYvyu);
    packed("cyuv", cycbcr_cyuv_to_012v, cycbcr_012v_to_cyuv, kUyvy, true);

    const auto planar = [&](const char* name, PXConvertFrame* to, PXConvertFrame* from, const Planar& layout) {
        all.push_back({std::string(name) + "_to_012v", naturalPitch, bytes1, frame(to),
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           return packPlanes<load8>(dst, layout.in(src[0], g.srcPitch * g.height), layout.is422, g);
                       }});
        all.push_back({std::string("012v_to_") + name, bytes1, naturalPitch, frame(from),
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           return unpackPlanes(layout.in(dst[0], g.dstPitch * g.height), src[0], layout.is422, 1, g);
                       }});
    };
    planar("i420", cycbcr_i420_to_012v, cycbcr_012v_to_i420, kI420);
    planar("yv12", cycbcr_yv12_to_012v, cycbcr_012v_to_yv12, kYv12);
    planar("p422", cycbcr_p422_to_012v, cycbcr_012v_to_p422, kP422);
}

unsigned roundToUyvy(const Places& dst, const Places& src, const Geometry& g) {
    const unsigned pitch = g.srcPitch == 0 ? 4 * groupWords(g.width) : v210Pitch(g.width, g.srcPitch);
    for (unsigned r = 0; r < g.height; ++r) {
        readGroups(src[0] + r * pitch, g.width);
        for (unsigned i = 0; i < roundUp(g.width, 2) * 2; ++i) {
            const unsigned rounded = (component(src[0] + r * pitch, i) + 2) >> 2;
            dst[0][r * g.dstPitch + i] = static_cast<std::uint8_t>(std::min(rounded, 255U));
        }
    }
    return g.dstPitch * g.height;
}

unsigned packUyvy(const Places& dst, const Places& src, const Geometry& g) {
    const unsigned pitch = std::max(roundUp(g.width * 16 / 6, 64), g.dstPitch);
    storeRows(dst[0], pitch, g.height, groupWords(g.width),
              [&](unsigned r, unsigned i) { return src[0][r * std::max(2 * g.width, g.srcPitch) + i] * 4U; });
    return g.dstPitch * g.height;
}

unsigned copyPitches(const Places& dst, const Places& src, const Geometry& g) {
    for (unsigned r = 0; r < g.height; ++r) {
        copyBytes(dst[0] + r * g.dstPitch, src[0] + r * g.srcPitch, std::min(g.dstPitch, g.srcPitch));
    }
    return g.dstPitch * g.height;
}

} // namespace

std::vector<Converter> eightBitConverters() {
    std::vector<Converter> all;
    addEngines(all);
    addPlanes(all);
    addNamed(all);
    for (PXConvertFrame* const convert : {cycbcr_012v_to_uyvy, cycbcr_012v_to_uyvy_opt}) {
        all.push_back({"012v_to_uyvy", bytes2, naturalPitch, frame(convert), roundToUyvy});
    }
    for (PXConvertFrame* const convert : {cycbcr_uyvy_to_012v, cycbcr_uyvy_to_012v_opt}) {
        all.push_back({"uyvy_to_012v", naturalPitch, bytes2, frame(convert), packUyvy});
    }
    all.push_back({"012v_to_012v", naturalPitch, naturalPitch, frame(cycbcr_012v_to_012v), copyPitches});
    return all;
}

} // namespace fikleipa::tests
