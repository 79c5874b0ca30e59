#include "tests/yuv8/models.h"

namespace fikleipa::tests {
namespace {

unsigned exchangedLine(unsigned y) {
    return y % 2 == 0 ? y + 1 : y - 1;
}

// How a general routine converts.
struct How {
    unsigned mode; // of chroma: 0 for 4:2:0, 1 for 4:2:2, 2 for 4:4:4, others only where lines change places
    bool exchange = false;
    bool runsOn = false; // where the pitch is that of a row without a gap

    bool isSlow() const { return exchange && mode != 1 && mode != 2; } // so that a sample serves two pairs
};

unsigned join(At dst, const Places& src, const Geometry& g, const Order& to, const How& how) {
    const unsigned pairs = (g.width + 1) / 2;
    const bool slow = how.isSlow();
    const std::array at{to.find('Y'), to.find('y'), to.find('U'), to.find('V')};
    unsigned chroma = 0;
    for (unsigned y = 0; y < g.height; ++y) {
        if (slow && how.mode == 0 && y % 2 == 1) chroma = (y - 1) / 2 * (g.srcPitch / 2);
        if (!slow && how.mode == 0) chroma = (y / 4 * 2 + y % 2) * (g.srcPitch / 2);
        const At luma = src[0] + (how.runsOn && g.srcPitch == g.width ? 2 * pairs : g.srcPitch) * y;
        const At row = dst + (how.exchange ? exchangedLine(y) : y) * g.dstPitch;
        for (unsigned i = 0; i < pairs; ++i) {
            const std::array values{luma[2 * i], luma[2 * i + 1], src[1][chroma], src[2][chroma]};
            for (unsigned c = 0; c < 4; ++c) row[4 * i + at[c]] = values[c];
            chroma += how.mode == 2 ? 2 : slow && i % 2 == 1 ? 0 : 1;
        }
    }
    return g.dstPitch * g.height;
}

unsigned split(const Places& dst, At src, const Geometry& g, const Order& from, bool is422, bool exchange) {
    const unsigned pairs = g.width / 2;
    const std::array at{from.find('Y'), from.find('y'), from.find('U'), from.find('V')};
    for (unsigned y = 0; y < g.height; ++y) {
        const bool hasChroma = is422 || (exchange ? y % 2 == 0 : y % 4 == 0 || y % 4 == 3);
        const At row = src + (g.srcPitch == 2 * g.width ? 4 * pairs : g.srcPitch) * y;
        const At luma = dst[0] + (exchange ? exchangedLine(y) : y) * g.dstPitch;
        const unsigned chroma = (is422 && !exchange ? y : y / 2) * (g.dstPitch / 2);
        for (unsigned i = 0; i < pairs; ++i) {
            std::array<std::uint8_t, 4> values{};
            for (unsigned c = 0; c < 4; ++c) values[c] = row[4 * i + at[c]];
            luma[2 * i] = values[0];
            luma[2 * i + 1] = values[1];
            for (unsigned c = 1; hasChroma && c < 3; ++c) dst[c][chroma + i] = values[c + 1];
        }
    }
    const unsigned luma = g.dstPitch * g.height;
    return luma + luma / 2 / 2 * 2;
}

// Of UYVY, whose source pitch counts pixels, by eights of pixels and pairs of rows.
unsigned splitAveraged(const Places& dst, const Places& src, const Geometry& g) {
    const unsigned pixels = std::max(8U, (g.width + 7) / 8 * 8);
    for (unsigned y = 0; y < g.height; y += 2) {
        const At upper = src[0] + 2 * g.srcPitch * y;
        const At lower = src[0] + 2 * g.srcPitch * (y + 1);
        for (unsigned x = 0; x < pixels; ++x) dst[0][y * g.dstPitch + x] = upper[2 * x + 1];
        for (unsigned x = 0; x < pixels; ++x) dst[0][(y + 1) * g.dstPitch + x] = lower[2 * x + 1];
        for (unsigned x = 0; x < pixels; ++x) {
            dst[1 + x % 2][y / 2 * (g.dstPitch / 2) + x / 2] =
                static_cast<std::uint8_t>((upper[2 * x] + lower[2 * x] + 1) / 2);
        }
    }
    return g.dstPitch * g.height;
}

unsigned copyWhole(const Places& dst, const Places& src, unsigned luma, unsigned chroma) {
    copyBytes(dst[0], src[0], luma);
    for (const unsigned plane : {1U, 2U}) copyBytes(dst[plane], src[plane], chroma);
    return luma + luma / 2;
}

unsigned copy422(const Places& dst, const Places& src, const Geometry& g) {
    copyWhole(dst, src, g.dstPitch * g.height, g.dstPitch * g.height / 2);
    return g.dstPitch * g.height * 2;
}

unsigned copy420(const Places& dst, const Places& src, const Geometry& g) {
    const unsigned luma = g.dstPitch * g.height;
    if (g.dstPitch == g.srcPitch) return copyWhole(dst, src, luma, luma / 4);
    for (unsigned y = 0; y < g.height; ++y) copyBytes(dst[0] + y * g.dstPitch, src[0] + y * g.srcPitch, g.srcPitch);
    for (const unsigned plane : {1U, 2U}) {
        for (unsigned k = 0; k < g.height / 2; ++k) {
            copyBytes(dst[plane] + k * g.dstPitch / 2, src[plane] + k * g.srcPitch / 2,
                      std::min(g.dstPitch, g.srcPitch) / 2);
        }
    }
    return luma + luma / 2;
}

// Luma forwards, chroma backwards.
template <bool kTo422>
unsigned transfer(const Places& dst, const Places& src, const Geometry& g) {
    for (unsigned y = 0; y < g.height; ++y) {
        copyBytes(dst[0] + y * g.dstPitch, src[0] + y * g.srcPitch, g.width);
        const unsigned from = (kTo422 ? y : y / 2) * (g.dstPitch / 2);
        const unsigned to = (kTo422 ? y / 2 : y) * (g.srcPitch / 2);
        if (!kTo422 && y % 2 != 0) continue;
        for (const unsigned plane : {1U, 2U}) copyBytes(src[plane] + to, dst[plane] + from, g.width);
    }
    return g.dstPitch * g.height * (kTo422 ? 4 : 3) / 2;
}

void addNamed(std::vector<Converter>& all) {
    const auto from = [&](const char* name, PXConvertFrame* convert, const Planar& planar, const Order& order,
                          bool flip) {
        const auto model = [=](const Places& dst, const Places& src, const Geometry& g) {
            const Places planes = planar.in(src[0], g.width * g.height);
            const unsigned size = join(dst[0], planes, g, order, {planar.is422 ? 1U : 0U});
            if (flip && g.width != 0) invert(dst[0], g.dstPitch, g.height);
            return size;
        };
        all.push_back({name, packedRow, lumaRow, frame(convert), model});
    };
    const auto to = [&](const char* name, PXConvertFrame* convert, const Planar& planar, const Order& order,
                        bool flip) {
        const auto model = [=](const Places& dst, const Places& src, const Geometry& g) {
            const Places planes = planar.in(dst[0], g.dstPitch * g.height);
            const unsigned size = split(planes, src[0], g, order, planar.is422, false);
            if (!flip || g.width < 2) return size;
            invert(planes[0], g.dstPitch, g.height);
            for (const unsigned c : {1U, 2U}) {
                invert(planes[c], g.dstPitch / 2, planar.is422 ? g.height : g.height / 2);
            }
            return size;
        };
        all.push_back({name, lumaRow, packedRow, frame(convert), model});
    };
#define BOTH_WAYS(planar, Planar, packed, order, orderBack, flip)                                                      \
    from(#planar "_to_" #packed, cycbcr_##planar##_to_##packed, Planar, order, flip);                                  \
    to(#packed "_to_" #planar, cycbcr_##packed##_to_##planar, Planar, orderBack, flip)
#define EVERY_PACKED(planar, Planar, orderOfCyuv)                                                                      \
    BOTH_WAYS(planar, Planar, yuy2, kYuy2, kYuy2, false);                                                              \
    BOTH_WAYS(planar, Planar, yvyu, kYvyu, kYvyu, false);                                                              \
    BOTH_WAYS(planar, Planar, uyvy, kUyvy, kUyvy, false);                                                              \
    BOTH_WAYS(planar, Planar, cyuv, orderOfCyuv, kUyvy, true)
    EVERY_PACKED(i420, kI420, kUyvy);
    EVERY_PACKED(yv12, kYv12, kYuy2);
    EVERY_PACKED(p422, kP422, kUyvy);
}

void addGeneral(std::vector<Converter>& all, const Order& order, bool exchange) {
    const std::string name = order + (exchange ? " exchanged " : " ");
    for (const unsigned mode : {0U, 1U, 2U, 3U, 15U, 16U, 18U}) {
        PXFromPlanar* const routine = exchange ? cycbcr_fromplanar_fieldinvert : cycbcr_fromplanar;
        const How how{!exchange && mode % 16 > 2 ? 1 : mode % 16, exchange, true};
        all.push_back({name + "from planes " + std::to_string(mode), packedRow, lumaRow,
                       [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                           const auto [y, cb, cr] = firstSamples(dst[0], order);
                           return routine(src[0], src[1], src[2], y, cb, cr, g.width, g.height, g.dstPitch, g.srcPitch,
                                          mode);
                       },
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           return join(dst[0], src, g, order, how);
                       }});
    }
    for (const int is422 : {0, 8}) {
        PXToPlanar* const routine = exchange ? cycbcr_toplanar_fieldinvert : cycbcr_toplanar;
        all.push_back({name + "to planes " + std::to_string(is422), lumaRow, packedRow,
                       [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                           const auto [y, cb, cr] = firstSamples(src[0], order);
                           return routine(y, cb, cr, dst[0], dst[1], dst[2], g.width, g.height, g.dstPitch, g.srcPitch,
                                          is422);
                       },
                       [=](const Places& dst, const Places& src, const Geometry& g) {
                           return split(dst, src[0], g, order, is422 != 0, exchange);
                       }});
    }
}

} // namespace

std::vector<Converter> planarConverters() {
    std::vector<Converter> all;
    addNamed(all);
    for (const Order& order : kOrders) {
        for (const bool exchange : {false, true}) addGeneral(all, order, exchange);
    }
    // The lowest pointer counts, not its name, and the flag does not.
    const auto average = [](const Pointers& dst, const Pointers& src, const Geometry& g) {
        return cycbcr_toplanar_sse2(src[0] + 2, src[0] + 3, src[0], dst[0], dst[1], dst[2], g.width, g.height,
                                    g.dstPitch, g.srcPitch, 1);
    };
    all.push_back({"toplanar_sse2", lumaRow, lumaRow, average, splitAveraged});
    return all;
}

std::vector<Converter> planeCopies() {
    std::vector<Converter> all;
    const auto named = [&](const char* name, PXConvertFrame* convert, const Planar& to, const Planar& from,
                           auto model) {
        const auto placed = [=](const Places& dst, const Places& src, const Geometry& g) {
            return model(to.in(dst[0], g.dstPitch * g.height), from.in(src[0], g.srcPitch * g.height), g);
        };
        all.push_back({name, lumaRow, lumaRow, frame(convert), placed});
    };
    named("i420_to_i420", cycbcr_i420_to_i420, kI420, kI420, copy420);
    named("yv12_to_yv12", cycbcr_yv12_to_yv12, kYv12, kYv12, copy420);
    named("i420_to_yv12", cycbcr_i420_to_yv12, kYv12, kI420, copy420);
    named("yv12_to_i420", cycbcr_yv12_to_i420, kI420, kYv12, copy420);
    named("p422_to_p422", cycbcr_p422_to_p422, kP422, kP422, copy422);
    // P422's first chroma plane is paired with the second of I420 and with the first of YV12.
    named("p422_to_i420", cycbcr_p422_to_i420, kYv12, kP422, transfer<false>);
    named("p422_to_yv12", cycbcr_p422_to_yv12, kI420, kP422, transfer<false>);
    named("i420_to_p422", cycbcr_i420_to_p422, kP422, kYv12, transfer<true>);
    named("yv12_to_p422", cycbcr_yv12_to_p422, kP422, kI420, transfer<true>);

    const auto apart = [&](const char* name, auto routine, const Model& model, auto... flags) {
        const auto convert = [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
            return routine(dst[0], dst[1], dst[2], src[0], src[1], src[2], g.width, g.height, g.dstPitch, g.srcPitch,
                           flags...);
        };
        all.push_back({name, lumaRow, lumaRow, convert, model});
    };
    apart("planar_copy", cycbcr_planar_copy, copy420);
    apart("planar_422_420(0, 0)", cycbcr_planar_422_420, copy420, 0, 0);
    apart("planar_422_420(0, 4)", cycbcr_planar_422_420, transfer<false>, 0, 4);
    apart("planar_422_420(4, 0)", cycbcr_planar_422_420, transfer<true>, 4, 0);
    apart("planar_422_420(2, 4)", cycbcr_planar_422_420, copy422, 2, 4);
    return all;
}

} // namespace fikleipa::tests
