#include "fikleipa.h"
#include "tests/guarded_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace {

using Byte = unsigned char;
using Bytes = std::vector<Byte>;

Bytes noise(std::size_t bytes) {
    std::minstd_rand random(5);
    Bytes data(bytes);
    for (Byte& byte : data) byte = static_cast<Byte>(random() >> 8);
    return data;
}

struct Geometry {
    unsigned width, height, dstPitch, srcPitch;
};

// A frame conversion, and what it is to do, a byte at a time and a step after the other.
using Conversion = std::function<unsigned(Byte* dst, Byte* src, const Geometry& g)>;
enum class Kind { FromPlanes, ToPlanes, BulkCopy };
struct Converter {
    std::string name;
    Kind kind;
    Conversion convert, model;
};

// Packed layouts are spelled out: where the first and the second luma sample of a group stand, Cb (U) and Cr (V).
struct Packed {
    std::string order;

    unsigned at(char component) const { return static_cast<unsigned>(order.find(component)); }
};
const Packed kYuy2{"YUyV"};
const Packed kYvyu{"YVyU"};
const Packed kUyvy{"UYVy"};
const Packed kUnnamed{"VYUy"};

using Planes = std::array<Byte*, 3>; // Y, Cb, Cr

// Where the planes of a frame are, by the bytes of luma; those of the general routines are given anyhow.
using PlanesOf = Planes (*)(Byte* frame, unsigned luma);
Planes i420(Byte* frame, unsigned luma) {
    return {frame, frame + luma, frame + luma + luma / 4};
}
Planes yv12(Byte* frame, unsigned luma) {
    return {frame, frame + luma + luma / 4, frame + luma};
}
Planes p422(Byte* frame, unsigned luma) {
    return {frame, frame + luma, frame + luma + luma / 2};
}
Planes apart(Byte* frame, unsigned /*luma*/) {
    return {frame, frame + 3001, frame + 6003};
}

void invert(Byte* buffer, unsigned pitch, unsigned height) {
    for (unsigned y = 0; y < height / 2; ++y) {
        std::swap_ranges(buffer + y * pitch, buffer + (y + 1) * pitch, buffer + (height - 1 - y) * pitch);
    }
}

unsigned exchanged(unsigned y) {
    return y % 2 == 0 ? y + 1 : y - 1;
}

// How a general routine converts.
struct How {
    unsigned mode; // of chroma: 0 for 4:2:0, 1 for 4:2:2, 2 for 4:4:4, others only where lines change places
    bool exchange = false;
    bool runsOn = false; // where the pitch is that of a row without a gap
};

unsigned join(Byte* dst, const Planes& src, const Geometry& g, const Packed& to, const How& how) {
    const unsigned pairs = (g.width + 1) / 2;
    const bool slow = how.exchange && how.mode != 1 && how.mode != 2;
    unsigned chroma = 0;
    for (unsigned y = 0; y < g.height; ++y) {
        if (slow && how.mode == 0 && y % 2 == 1) chroma = (y - 1) / 2 * (g.srcPitch / 2);
        if (!slow && how.mode == 0) chroma = (y / 4 * 2 + y % 2) * (g.srcPitch / 2);
        const Byte* luma = src[0] + (how.runsOn && g.srcPitch == g.width ? 2 * pairs : g.srcPitch) * y;
        Byte* group = dst + (how.exchange ? exchanged(y) : y) * g.dstPitch;
        for (unsigned i = 0; i < pairs; ++i, group += 4) {
            const Byte values[] = {*luma, *(luma + 1), src[1][chroma], src[2][chroma]};
            for (unsigned c = 0; c < 4; ++c) group[to.at("YyUV"[c])] = values[c];
            luma += 2;
            chroma += how.mode == 2 ? 2 : slow && i % 2 == 1 ? 0 : 1;
        }
    }
    return g.dstPitch * g.height;
}

unsigned split(const Planes& dst, const Byte* src, const Geometry& g, const Packed& from, bool is422, bool exchange) {
    const unsigned pairs = g.width / 2;
    for (unsigned y = 0; y < g.height; ++y) {
        const bool hasChroma = is422 || (exchange ? y % 2 == 0 : y % 4 == 0 || y % 4 == 3);
        const Byte* group = src + (g.srcPitch == 2 * g.width ? 4 * pairs : g.srcPitch) * y;
        Byte* const luma = dst[0] + (exchange ? exchanged(y) : y) * g.dstPitch;
        const unsigned chroma = (is422 && !exchange ? y : y / 2) * (g.dstPitch / 2);
        for (unsigned i = 0; i < pairs; ++i, group += 4) {
            const Byte values[] = {group[from.at('Y')], group[from.at('y')], group[from.at('U')], group[from.at('V')]};
            luma[2 * i] = values[0];
            luma[2 * i + 1] = values[1];
            for (unsigned c = 1; hasChroma && c < 3; ++c) dst[c][chroma + i] = values[c + 1];
        }
    }
    const unsigned luma = g.dstPitch * g.height;
    return luma + luma / 2 / 2 * 2;
}

// Four bytes of luma for `quarters` of each other plane.
unsigned copyWhole(const Planes& dst, const Planes& src, unsigned luma, unsigned quarters) {
    for (unsigned plane = 0; plane < 3; ++plane) {
        std::copy_n(src[plane], plane == 0 ? luma : luma * quarters / 4, dst[plane]);
    }
    return luma + (quarters == 1 ? luma / 2 : luma);
}

unsigned copy422(const Planes& dst, const Planes& src, const Geometry& g) {
    return copyWhole(dst, src, g.dstPitch * g.height, 2);
}

unsigned copy420(const Planes& dst, const Planes& src, const Geometry& g) {
    if (g.dstPitch == g.srcPitch) return copyWhole(dst, src, g.dstPitch * g.height, 1);
    for (unsigned y = 0; y < g.height; ++y) std::copy_n(src[0] + y * g.srcPitch, g.srcPitch, dst[0] + y * g.dstPitch);
    const unsigned bytes = std::min(g.dstPitch, g.srcPitch) / 2;
    for (const unsigned plane : {1U, 2U}) {
        for (unsigned k = 0; k < g.height / 2; ++k) {
            std::copy_n(src[plane] + k * g.srcPitch / 2, bytes, dst[plane] + k * g.dstPitch / 2);
        }
    }
    return g.dstPitch * g.height + g.dstPitch * g.height / 2;
}

template <bool kTo422>
unsigned transfer(const Planes& dst, const Planes& src, const Geometry& g) {
    for (unsigned y = 0; y < g.height; ++y) {
        std::copy_n(src[0] + y * g.srcPitch, g.width, dst[0] + y * g.dstPitch);
        const unsigned from = (kTo422 ? y : y / 2) * (g.dstPitch / 2);
        const unsigned to = (kTo422 ? y / 2 : y) * (g.srcPitch / 2);
        if (!kTo422 && y % 2 != 0) continue;
        for (const unsigned plane : {1U, 2U}) std::copy_n(dst[plane] + from, g.width, src[plane] + to);
    }
    const unsigned luma = g.dstPitch * g.height;
    return kTo422 ? luma * 2 : luma + luma / 2;
}

Conversion frame(PXConvertFrame* convert) {
    return [convert](Byte* dst, Byte* src, const Geometry& g) {
        return convert(dst, src, g.width, g.height, g.dstPitch, g.srcPitch);
    };
}

void addPairs(std::vector<Converter>& all) {
    const auto from = [&](const char* name, PXConvertFrame* convert, PlanesOf planes, const Packed& packed, bool flip) {
        all.push_back({name, Kind::FromPlanes, frame(convert), [=](Byte* dst, Byte* src, const Geometry& g) {
                           const How how{planes == p422 ? 1U : 0U};
                           const unsigned size = join(dst, planes(src, g.width * g.height), g, packed, how);
                           if (flip && g.width != 0) invert(dst, g.dstPitch, g.height);
                           return size;
                       }});
    };
    const auto to = [&](const char* name, PXConvertFrame* convert, PlanesOf planes, const Packed& packed, bool flip) {
        all.push_back({name, Kind::ToPlanes, frame(convert), [=](Byte* dst, Byte* src, const Geometry& g) {
                           const Planes at = planes(dst, g.dstPitch * g.height);
                           const unsigned size = split(at, src, g, packed, planes == p422, false);
                           for (unsigned plane = 0; flip && g.width >= 2 && plane < 3; ++plane) {
                               invert(at[plane], plane == 0 ? g.dstPitch : g.dstPitch / 2,
                                      plane == 0 || planes == p422 ? g.height : g.height / 2);
                           }
                           return size;
                       }});
    };
#define BOTH_WAYS(planar, packed, order, orderBack, flip)                                                              \
    from(#planar "_to_" #packed, cycbcr_##planar##_to_##packed, planar, order, flip);                                  \
    to(#packed "_to_" #planar, cycbcr_##packed##_to_##planar, planar, orderBack, flip)
#define EVERY_PACKED(planar, orderOfCyuv)                                                                              \
    BOTH_WAYS(planar, yuy2, kYuy2, kYuy2, false);                                                                      \
    BOTH_WAYS(planar, yvyu, kYvyu, kYvyu, false);                                                                      \
    BOTH_WAYS(planar, uyvy, kUyvy, kUyvy, false);                                                                      \
    BOTH_WAYS(planar, cyuv, orderOfCyuv, kUyvy, true)
    EVERY_PACKED(i420, kUyvy);
    EVERY_PACKED(yv12, kYuy2);
    EVERY_PACKED(p422, kUyvy);
}

void addGeneral(std::vector<Converter>& all) {
    for (const Packed& p : {kYuy2, kYvyu, kUyvy, kUnnamed}) {
        for (const bool exchange : {false, true}) {
            const std::string name = p.order + (exchange ? " exchanged " : " ");
            for (const unsigned mode : {0U, 1U, 2U, 3U, 15U, 16U, 18U}) {
                PXFromPlanar* const routine = exchange ? cycbcr_fromplanar_fieldinvert : cycbcr_fromplanar;
                const unsigned format = mode % 16;
                const How how{!exchange && format > 2 ? 1 : format, exchange, true};
                all.push_back(
                    {name + "from planes " + std::to_string(mode), Kind::FromPlanes,
                     [=](Byte* dst, Byte* src, const Geometry& g) {
                         const auto [y, cb, cr] = apart(src, 0);
                         return routine(y, cb, cr, dst + p.at('Y'), dst + p.at('U'), dst + p.at('V'), g.width, g.height,
                                        g.dstPitch, g.srcPitch, mode);
                     },
                     [=](Byte* dst, Byte* src, const Geometry& g) { return join(dst, apart(src, 0), g, p, how); }});
            }
            for (const int is422 : {0, 8}) {
                PXToPlanar* const routine = exchange ? cycbcr_toplanar_fieldinvert : cycbcr_toplanar;
                all.push_back({name + "to planes " + std::to_string(is422), Kind::ToPlanes,
                               [=](Byte* dst, Byte* src, const Geometry& g) {
                                   const auto [y, cb, cr] = apart(dst, 0);
                                   return routine(src + p.at('Y'), src + p.at('U'), src + p.at('V'), y, cb, cr, g.width,
                                                  g.height, g.dstPitch, g.srcPitch, is422);
                               },
                               [=](Byte* dst, Byte* src, const Geometry& g) {
                                   return split(apart(dst, 0), src, g, p, is422 != 0, exchange);
                               }});
            }
        }
    }
}

void addCopies(std::vector<Converter>& all) {
    using Model = unsigned (*)(const Planes& dst, const Planes& src, const Geometry& g);
    const auto add = [&](const std::string& name, const Conversion& convert, PlanesOf to, PlanesOf from, Model model) {
        all.push_back({name, Kind::BulkCopy, convert, [=](Byte* dst, Byte* src, const Geometry& g) {
                           return model(to(dst, g.dstPitch * g.height), from(src, g.srcPitch * g.height), g);
                       }});
    };
    add("i420_to_i420", frame(cycbcr_i420_to_i420), i420, i420, copy420);
    add("yv12_to_yv12", frame(cycbcr_yv12_to_yv12), yv12, yv12, copy420);
    add("i420_to_yv12", frame(cycbcr_i420_to_yv12), yv12, i420, copy420);
    add("yv12_to_i420", frame(cycbcr_yv12_to_i420), i420, yv12, copy420);
    add("p422_to_p422", frame(cycbcr_p422_to_p422), p422, p422, copy422);
    // P422's first chroma plane is paired with the second of I420 and with the first of YV12.
    add("p422_to_i420", frame(cycbcr_p422_to_i420), yv12, p422, transfer<false>);
    add("p422_to_yv12", frame(cycbcr_p422_to_yv12), i420, p422, transfer<false>);
    add("i420_to_p422", frame(cycbcr_i420_to_p422), p422, yv12, transfer<true>);
    add("yv12_to_p422", frame(cycbcr_yv12_to_p422), p422, i420, transfer<true>);

    const auto addApart = [&](const std::string& name, auto routine, Model model) {
        const auto convert = [=](Byte* dst, Byte* src, const Geometry& g) {
            const auto [y, cb, cr] = apart(dst, 0);
            const auto [srcY, srcCb, srcCr] = apart(src, 0);
            return routine(y, cb, cr, srcY, srcCb, srcCr, g.width, g.height, g.dstPitch, g.srcPitch);
        };
        add(name, convert, apart, apart, model);
    };
    const auto flagged = [](int dstIs422, int srcIs422) {
        return [=](auto... arguments) { return cycbcr_planar_422_420(arguments..., dstIs422, srcIs422); };
    };
    addApart("planar_copy", cycbcr_planar_copy, copy420);
    addApart("planar_422_420(0, 0)", flagged(0, 0), copy420);
    addApart("planar_422_420(0, 4)", flagged(0, 4), transfer<false>);
    addApart("planar_422_420(4, 0)", flagged(4, 0), transfer<true>);
    addApart("planar_422_420(2, 4)", flagged(2, 4), copy422);
}

std::vector<Converter> allConverters() {
    std::vector<Converter> all;
    addPairs(all);
    addGeneral(all);
    addCopies(all);
    return all;
}

std::string describe(const Converter& converter, const Geometry& g) {
    return converter.name + " " + std::to_string(g.width) + "x" + std::to_string(g.height) + ", pitches " +
           std::to_string(g.dstPitch) + " and " + std::to_string(g.srcPitch);
}

void check(const Converter& converter, const Geometry& g, const Bytes& source, const Bytes& destination) {
    Bytes src = source;
    Bytes expectedSrc = source;
    Bytes got = destination;
    Bytes expected = destination;
    ASSERT_EQ(converter.convert(got.data(), src.data(), g), converter.model(expected.data(), expectedSrc.data(), g))
        << describe(converter, g);
    ASSERT_TRUE(got == expected && src == expectedSrc) << describe(converter, g);
}

// Pitches below, at and above what a row needs, odd ones, and 0.
TEST(Planar, EveryConverterDoesItsStepsForEveryGeometry) {
    const Bytes source = noise(12000);
    const Bytes destination(source.rbegin(), source.rend());
    for (const Converter& converter : allConverters()) {
        const unsigned dstBytes = converter.kind == Kind::FromPlanes ? 2 : 1;
        const unsigned srcBytes = converter.kind == Kind::ToPlanes ? 2 : 1;
        for (unsigned width = 0; width <= 200; ++width) {
            for (const unsigned height : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U}) {
                std::vector<Geometry> all{
                    {width, height, 0, 0}, {width, height, width / 3, width / 2}, {width, height, 90, 90}};
                for (unsigned extra = 0; extra < 4; ++extra) {
                    const unsigned dstPitch = dstBytes * (width + width % 2) + extra * width % 41;
                    all.push_back({width, height, dstPitch, srcBytes * width + extra * 5});
                }
                for (const Geometry& g : all) {
                    check(converter, g, source, destination);
                    if (HasFatalFailure()) return;
                }
            }
        }
    }
}

TEST(Planar, FramesConvertInPlace) {
    const Bytes before = noise(12000);
    for (const Converter& converter : allConverters()) {
        if (converter.kind == Kind::BulkCopy) continue;
        for (const unsigned height : {1U, 4U, 8U}) {
            for (const unsigned distance : {0U, 1U, 640U, 1500U}) {
                const bool fromPlanes = converter.kind == Kind::FromPlanes;
                const Geometry g{150, height, fromPlanes ? 300U : 150U, fromPlanes ? 150U : 304U};
                Bytes got = before;
                Bytes expected = before;
                converter.convert(got.data(), got.data() + distance, g);
                converter.model(expected.data(), expected.data() + distance, g);
                ASSERT_EQ(got, expected) << describe(converter, g) << ", distance " << distance;
            }
        }
    }
}

// Frames that no cache near the processor holds go other ways when they are turned over or transferred.
TEST(Planar, LargeFramesGoTheirOwnWays) {
    const Bytes source = noise(6 << 20);
    const Bytes destination(6 << 20, 0x55);
    for (const Converter& converter : allConverters()) {
        const bool named = converter.name.find("_to_") != std::string::npos;
        if (named && converter.kind == Kind::BulkCopy) check(converter, {2002, 1204, 2004, 2008}, source, destination);
        if (converter.name.find("cyuv") == std::string::npos) continue;
        const bool fromPlanes = converter.kind == Kind::FromPlanes;
        check(converter, {2002, 1204, fromPlanes ? 4030U : 2050U, fromPlanes ? 2008U : 4016U}, source, destination);
    }
}

// Or where lines are exchanged. What strips of them give goes through the cache.
TEST(Planar, LargeFramesAreWhatTheirStripsAre) {
    constexpr unsigned kWidth = 1998;
    constexpr unsigned kHeight = 1204;
    constexpr unsigned kPairs = kWidth / 2;
    constexpr std::size_t kLuma = std::size_t{2000} * kHeight;
    Bytes source = noise(3 * kLuma);
    for (const unsigned mode : {1U, 2U, 3U}) {
        const auto convert = [&](Bytes& dst, unsigned y, unsigned rows) {
            Byte* const to = dst.data() + std::size_t{4000} * y;
            const unsigned chroma = (mode == 3 ? (kPairs + 1) / 2 : mode * kPairs) * y;
            Byte* const cb = source.data() + kLuma;
            cycbcr_fromplanar_fieldinvert(source.data() + 2000 * y, cb + chroma, cb + kLuma + chroma, to + 1, to,
                                          to + 2, kWidth, rows, 4000, 2000, mode);
        };
        Bytes whole(4000 * (kHeight + 1));
        Bytes strips(whole.size());
        convert(whole, 0, kHeight);
        for (unsigned y = 0; y < kHeight; y += 4) convert(strips, y, 4);
        EXPECT_TRUE(whole == strips) << "mode " << mode;
    }
    for (const int is422 : {0, 1}) {
        const auto convert = [&](Bytes& dst, unsigned y, unsigned rows) {
            Byte* const src = source.data() + std::size_t{4000} * y;
            Byte* const cb = dst.data() + kLuma + std::size_t{1000} * (y / 2);
            cycbcr_toplanar_fieldinvert(src + 1, src, src + 2, dst.data() + std::size_t{2000} * y, cb, cb + kLuma / 2,
                                        kWidth, rows, 2000, 4000, is422);
        };
        Bytes whole(2 * kLuma);
        Bytes strips(whole.size());
        convert(whole, 0, kHeight);
        for (unsigned y = 0; y < kHeight; y += 4) convert(strips, y, 4);
        EXPECT_TRUE(whole == strips) << is422;
    }
}

TEST(Planar, NothingBeyondTheFramesIsTouched) {
    GuardedBytes src(8192);
    GuardedBytes dst(8192);
    std::vector<Converter> pairs;
    addPairs(pairs);
    for (const Converter& converter : pairs) {
        for (unsigned width = 4; width <= 200; width += 4) {
            const unsigned packed = 2 * width * 8;
            const unsigned planar = converter.name.find("p422") == std::string::npos ? width * 12 : width * 16;
            const bool fromPlanes = converter.kind == Kind::FromPlanes;
            const Geometry g{width, 8, fromPlanes ? 2 * width : width, fromPlanes ? width : 2 * width};
            converter.convert(dst.end() - (fromPlanes ? packed : planar), src.end() - (fromPlanes ? planar : packed),
                              g);
            converter.convert(dst.begin(), src.begin(), g);
        }
    }
}

// A 4x8 frame: luma row r holds r, and of chroma row k Cb holds 0x40 + k and Cr 0x80 + k.
TEST(Planar, RowsOfChromaBelongToFields) {
    Bytes i420(48);
    for (unsigned i = 0; i < 32; ++i) i420[i] = static_cast<Byte>(i / 4);
    for (unsigned i = 0; i < 8; ++i) {
        i420[32 + i] = static_cast<Byte>(0x40 + i / 2);
        i420[40 + i] = static_cast<Byte>(0x80 + i / 2);
    }
    Bytes yuy2(64);
    EXPECT_EQ(cycbcr_i420_to_yuy2(yuy2.data(), i420.data(), 4, 8, 8, 4), 64U);
    constexpr Byte kChromaRow[] = {0, 1, 0, 1, 2, 3, 2, 3};
    for (unsigned y = 0; y < 8; ++y) {
        const auto luma = static_cast<Byte>(y);
        const auto cb = static_cast<Byte>(0x40 + kChromaRow[y]);
        const auto cr = static_cast<Byte>(0x80 + kChromaRow[y]);
        const Bytes row(yuy2.begin() + 8 * y, yuy2.begin() + 8 * y + 8);
        EXPECT_EQ(row, (Bytes{luma, cb, luma, cr, luma, cb, luma, cr})) << y;
    }
    Bytes cyuv(64);
    cycbcr_yv12_to_cyuv(cyuv.data(), i420.data(), 4, 8, 8, 4);
    EXPECT_EQ(Bytes(cyuv.begin(), cyuv.begin() + 4), (Bytes{7, 0x83, 7, 0x43}));
    cycbcr_i420_to_cyuv(cyuv.data(), i420.data(), 4, 8, 8, 4);
    EXPECT_EQ(Bytes(cyuv.begin(), cyuv.begin() + 4), (Bytes{0x43, 7, 0x83, 7}));

    for (unsigned y = 0; y < 8; ++y) yuy2[8 * y + 1] = static_cast<Byte>(y); // Cb of the left pair
    Bytes back(48, 0x55);
    EXPECT_EQ(cycbcr_yuy2_to_i420(back.data(), yuy2.data(), 4, 8, 4, 8), 48U);
    EXPECT_EQ((Bytes{back[32], back[34], back[36], back[38]}), (Bytes{0, 3, 4, 7}));
    EXPECT_TRUE(std::equal(back.begin(), back.begin() + 32, i420.begin()));
}

TEST(Planar, OddSizes) {
    Bytes src(64, 1);
    Bytes dst(64, 0x55);
    EXPECT_EQ(cycbcr_yuy2_to_i420(dst.data(), src.data(), 1, 4, 5, 8), 30U);
    EXPECT_EQ(dst, Bytes(64, 0x55));
    EXPECT_EQ(cycbcr_cyuv_to_p422(dst.data(), src.data(), 0, 0x10001, 0x10000, 0), 0x18000U);
    EXPECT_EQ(cycbcr_fromplanar_fieldinvert(src.data(), src.data(), src.data(), dst.data(), dst.data() + 1,
                                            dst.data() + 3, 2, 3, 4, 2, 1),
              12U);
    EXPECT_EQ(Bytes(dst.begin(), dst.begin() + 17),
              (Bytes{1, 1, 1, 1, 1, 1, 1, 1, 0x55, 0x55, 0x55, 0x55, 1, 1, 1, 1, 0x55}));
}

TEST(Planar, TransferWritesTheSourcesChroma) {
    Bytes p422{1, 2, 3, 4, 10, 11, 20, 21, 0, 0};
    Bytes i420{5, 6, 7, 8, 30, 40, 50, 60};
    EXPECT_EQ(cycbcr_p422_to_i420(i420.data(), p422.data(), 2, 2, 2, 2), 6U);
    EXPECT_EQ(i420, (Bytes{1, 2, 3, 4, 30, 40, 50, 60}));
    EXPECT_EQ(p422, (Bytes{1, 2, 3, 4, 40, 50, 30, 40, 0, 0}));
}

// A row goes by pieces, which leave no seam.
TEST(Planar, WideRowsAverageLikeTheirParts) {
    Bytes src = noise(std::size_t{2} * 2 * 5000);
    Bytes whole(4 * 5000);
    Bytes parts(whole.size());
    const auto average = [&](Bytes& dst, unsigned from, unsigned width) {
        Byte* const at = src.data() + 2 * from;
        Byte* const cb = dst.data() + 10000 + from / 2;
        cycbcr_toplanar_sse2(at, at, at, dst.data() + from, cb, cb + 5000, width, 2, 5000, 5000, 0);
    };
    average(whole, 0, 5000);
    for (unsigned x = 0; x < 5000; x += 1000) average(parts, x, 1000);
    EXPECT_EQ(whole, parts);
}

// Two rows of UYVY, pitches in pixels for the source; the flag is not looked at, nor is the order of the pointers.
TEST(Planar, AveragedRows) {
    constexpr unsigned kPitch = 40;
    const Bytes uyvy = noise(std::size_t{2} * kPitch * 6);
    for (unsigned width = 0; width <= 33; ++width) {
        for (const unsigned height : {0U, 2U, 3U, 4U}) {
            const unsigned pixels = std::max(8U, (width + 7) / 8 * 8);
            Bytes src = uyvy;
            Bytes expected(1000, 0x55);
            Bytes got = expected;
            for (unsigned y = 0; y < height; y += 2) {
                const Byte* const a = &src[2 * kPitch * y];
                const Byte* const b = a + 2 * kPitch;
                for (unsigned x = 0; x < 2 * pixels; x += 2) {
                    expected[52 * y + x / 2] = a[x + 1];
                    expected[52 * (y + 1) + x / 2] = b[x + 1];
                    expected[(x % 4 == 0 ? 400U : 700U) + y / 2 * 26 + x / 4] =
                        static_cast<Byte>((a[x] + b[x] + 1) / 2);
                }
            }
            EXPECT_EQ(cycbcr_toplanar_sse2(src.data() + 2, src.data() + 3, src.data(), got.data(), got.data() + 400,
                                           got.data() + 700, width, height, 52, kPitch, 1),
                      52 * height);
            ASSERT_EQ(got, expected) << width << "x" << height;
        }
    }
}

} // namespace
