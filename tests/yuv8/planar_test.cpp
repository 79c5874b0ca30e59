#include "fikleipa.h"
#include "tests/guarded_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
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
struct Converter {
    std::string name;
    Conversion convert, model;
    bool planarSource;
    bool inPlace = true; // not where bytes are copied in bulk
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

// Chroma planes by the size of luma, and what they are.
struct Planar {
    bool crFirst, is422;

    unsigned second(unsigned luma) const { return luma + (is422 ? luma / 2 : luma / 4); }
    unsigned cb(unsigned luma) const { return crFirst ? second(luma) : luma; }
    unsigned cr(unsigned luma) const { return crFirst ? luma : second(luma); }
};
constexpr Planar kI420{false, false};
constexpr Planar kYv12{true, false};
constexpr Planar kP422{false, true};

void invert(Byte* buffer, unsigned pitch, unsigned height) {
    for (unsigned y = 0; y < height / 2; ++y) {
        std::swap_ranges(buffer + y * pitch, buffer + (y + 1) * pitch, buffer + (height - 1 - y) * pitch);
    }
}

struct Pair {
    Byte y0, y1, cb, cr;
};
void put(Byte* group, const Packed& to, const Pair& p) {
    group[to.at('Y')] = p.y0;
    group[to.at('y')] = p.y1;
    group[to.at('U')] = p.cb;
    group[to.at('V')] = p.cr;
}
Pair get(const Byte* group, const Packed& from) {
    return {group[from.at('Y')], group[from.at('y')], group[from.at('U')], group[from.at('V')]};
}

unsigned fromPlanar(Byte* dst, const Byte* src, const Geometry& g, const Planar& from, const Packed& to, bool flip) {
    const unsigned pairs = (g.width + 1) / 2;
    const unsigned area = g.width * g.height;
    for (unsigned y = 0; y < g.height; ++y) {
        for (unsigned i = 0; i < pairs; ++i) {
            const unsigned chroma = from.is422 ? y * pairs + i : (y / 4 * 2 + y % 2) * (g.srcPitch / 2) + i;
            const Byte* const luma = src + y * g.srcPitch + 2 * i;
            put(dst + y * g.dstPitch + 4 * i, to,
                {luma[0], luma[1], src[from.cb(area) + chroma], src[from.cr(area) + chroma]});
        }
    }
    if (flip && g.width != 0) invert(dst, g.dstPitch, g.height);
    return g.dstPitch * g.height;
}

unsigned planarSize(unsigned luma) {
    return luma + luma / 2 / 2 * 2;
}

// From which rows chroma is taken, and where to.
struct ToRows {
    unsigned luma, chroma;
    bool hasChroma;
};
using RowsOf = ToRows (*)(unsigned y, bool is422);
ToRows inOrder(unsigned y, bool is422) {
    return {y, is422 ? y : y / 2, is422 || y % 4 == 0 || y % 4 == 3};
}
ToRows exchanged(unsigned y, bool is422) {
    return {y % 2 == 0 ? y + 1 : y - 1, y / 2, is422 || y % 2 == 0};
}

void split(Byte* y, Byte* cb, Byte* cr, const Byte* src, const Geometry& g, const Packed& from, bool is422,
           RowsOf rowsOf) {
    const unsigned pairs = g.width / 2;
    for (unsigned r = 0; r < g.height; ++r) {
        const ToRows to = rowsOf(r, is422);
        for (unsigned i = 0; i < pairs; ++i) {
            const unsigned row = g.srcPitch == 2 * g.width ? 4 * pairs * r : g.srcPitch * r;
            const Pair pair = get(src + row + 4 * i, from);
            y[to.luma * g.dstPitch + 2 * i] = pair.y0;
            y[to.luma * g.dstPitch + 2 * i + 1] = pair.y1;
            if (!to.hasChroma) continue;
            cb[to.chroma * (g.dstPitch / 2) + i] = pair.cb;
            cr[to.chroma * (g.dstPitch / 2) + i] = pair.cr;
        }
    }
}

unsigned toPlanar(Byte* dst, const Byte* src, const Geometry& g, const Packed& from, const Planar& to, bool flip) {
    const unsigned luma = g.dstPitch * g.height;
    split(dst, dst + to.cb(luma), dst + to.cr(luma), src, g, from, to.is422, inOrder);
    if (flip && g.width >= 2) {
        invert(dst, g.dstPitch, g.height);
        for (const unsigned plane : {to.cb(luma), to.cr(luma)}) {
            invert(dst + plane, g.dstPitch / 2, to.is422 ? g.height : g.height / 2);
        }
    }
    return planarSize(luma);
}

unsigned copy420(Byte* const (&dst)[3], Byte* const (&src)[3], const Geometry& g) {
    const unsigned luma = g.dstPitch * g.height;
    for (unsigned plane = 0; plane < 3; ++plane) {
        if (g.dstPitch == g.srcPitch) {
            std::copy_n(src[plane], plane == 0 ? luma : luma / 4, dst[plane]);
            continue;
        }
        const unsigned smaller = std::min(g.dstPitch, g.srcPitch);
        for (unsigned k = 0; k < (plane == 0 ? g.height : g.height / 2); ++k) {
            const unsigned to = plane == 0 ? k * g.dstPitch : k * g.dstPitch / 2;
            const unsigned from = plane == 0 ? k * g.srcPitch : k * g.srcPitch / 2;
            std::copy_n(src[plane] + from, plane == 0 ? g.srcPitch : smaller / 2, dst[plane] + to);
        }
    }
    return luma + luma / 2;
}

unsigned copy422(Byte* const (&dst)[3], Byte* const (&src)[3], const Geometry& g) {
    const unsigned luma = g.dstPitch * g.height;
    for (unsigned plane = 0; plane < 3; ++plane) std::copy_n(src[plane], plane == 0 ? luma : luma / 2, dst[plane]);
    return luma * 2;
}

unsigned transfer(Byte* const (&dst)[3], Byte* const (&src)[3], const Geometry& g, bool dstIs422) {
    for (unsigned y = 0; y < g.height; ++y) {
        std::copy_n(src[0] + y * g.srcPitch, g.width, dst[0] + y * g.dstPitch);
        if (!dstIs422 && y % 2 != 0) continue;
        for (const unsigned plane : {1U, 2U}) {
            const unsigned from = (dstIs422 ? y : y / 2) * (g.dstPitch / 2);
            const unsigned to = (dstIs422 ? y / 2 : y) * (g.srcPitch / 2);
            std::copy_n(dst[plane] + from, g.width, src[plane] + to);
        }
    }
    const unsigned luma = g.dstPitch * g.height;
    return dstIs422 ? luma * 2 : luma + luma / 2;
}

Conversion frame(PXConvertFrame* convert) {
    return [convert](Byte* dst, Byte* src, const Geometry& g) {
        return convert(dst, src, g.width, g.height, g.dstPitch, g.srcPitch);
    };
}

void addPairs(std::vector<Converter>& all) {
    const auto from = [&](const char* name, PXConvertFrame* convert, Planar planar, Packed packed, bool flip) {
        const auto model = [=](Byte* dst, Byte* src, const Geometry& g) {
            return fromPlanar(dst, src, g, planar, packed, flip);
        };
        all.push_back({name, frame(convert), model, true});
    };
    const auto to = [&](const char* name, PXConvertFrame* convert, Packed packed, Planar planar, bool flip) {
        const auto model = [=](Byte* dst, Byte* src, const Geometry& g) {
            return toPlanar(dst, src, g, packed, planar, flip);
        };
        all.push_back({name, frame(convert), model, false});
    };
#define BOTH(planar, packed, kPlanar, kFrom, kTo, flip)                                                                \
    from(#planar "_to_" #packed, cycbcr_##planar##_to_##packed, kPlanar, kTo, flip);                                   \
    to(#packed "_to_" #planar, cycbcr_##packed##_to_##planar, kFrom, kPlanar, flip)
    BOTH(i420, yuy2, kI420, kYuy2, kYuy2, false);
    BOTH(i420, yvyu, kI420, kYvyu, kYvyu, false);
    BOTH(i420, uyvy, kI420, kUyvy, kUyvy, false);
    BOTH(i420, cyuv, kI420, kUyvy, kUyvy, true);
    BOTH(yv12, yuy2, kYv12, kYuy2, kYuy2, false);
    BOTH(yv12, yvyu, kYv12, kYvyu, kYvyu, false);
    BOTH(yv12, uyvy, kYv12, kUyvy, kUyvy, false);
    BOTH(yv12, cyuv, kYv12, kUyvy, kYuy2, true);
    BOTH(p422, yuy2, kP422, kYuy2, kYuy2, false);
    BOTH(p422, yvyu, kP422, kYvyu, kYvyu, false);
    BOTH(p422, uyvy, kP422, kUyvy, kUyvy, false);
    BOTH(p422, cyuv, kP422, kUyvy, kUyvy, true);
#undef BOTH
}

// Where the planes of a general routine are.
constexpr unsigned kCb = 3001;
constexpr unsigned kCr = 6003;

unsigned fromPlanes(Byte* dst, const Byte* src, const Geometry& g, const Packed& to, unsigned mode, bool exchange) {
    const unsigned pairs = (g.width + 1) / 2;
    const unsigned format = mode % 16;
    unsigned position = 0;
    for (unsigned y = 0; y < g.height; ++y) {
        const unsigned row = !exchange ? y : y % 2 == 0 ? y + 1 : y - 1;
        const Byte* const luma = src + (g.srcPitch == g.width ? 2 * pairs * y : g.srcPitch * y);
        const bool slow = exchange && format != 1 && format != 2;
        if (slow && format == 0 && y % 2 == 1) position = (y - 1) / 2 * (g.srcPitch / 2);
        if (!slow && format == 0) position = (y / 4 * 2 + y % 2) * (g.srcPitch / 2);
        for (unsigned i = 0; i < pairs; ++i) {
            put(dst + row * g.dstPitch + 4 * i, to,
                {luma[2 * i], luma[2 * i + 1], src[kCb + position], src[kCr + position]});
            position += format == 2 ? 2 : slow && i % 2 == 1 ? 0 : 1;
        }
    }
    return g.dstPitch * g.height;
}

void addGeneral(std::vector<Converter>& all) {
    for (const Packed& p : {kYuy2, kYvyu, kUyvy, kUnnamed}) {
        for (const bool exchange : {false, true}) {
            const std::string name = p.order + (exchange ? " exchanged" : "");
            for (const unsigned mode : {0U, 1U, 2U, 3U, 15U, 16U, 18U}) {
                PXFromPlanar* const routine = exchange ? cycbcr_fromplanar_fieldinvert : cycbcr_fromplanar;
                all.push_back({name + " from planes " + std::to_string(mode),
                               [=](Byte* dst, Byte* src, const Geometry& g) {
                                   return routine(src, src + kCb, src + kCr, dst + p.at('Y'), dst + p.at('U'),
                                                  dst + p.at('V'), g.width, g.height, g.dstPitch, g.srcPitch, mode);
                               },
                               [=](Byte* dst, Byte* src, const Geometry& g) {
                                   return fromPlanes(dst, src, g, p, mode, exchange);
                               },
                               true});
            }
            for (const int is422 : {0, 8}) {
                PXToPlanar* const routine = exchange ? cycbcr_toplanar_fieldinvert : cycbcr_toplanar;
                all.push_back({name + " to planes " + std::to_string(is422),
                               [=](Byte* dst, Byte* src, const Geometry& g) {
                                   return routine(src + p.at('Y'), src + p.at('U'), src + p.at('V'), dst, dst + kCb,
                                                  dst + kCr, g.width, g.height, g.dstPitch, g.srcPitch, is422);
                               },
                               [=](Byte* dst, Byte* src, const Geometry& g) {
                                   split(dst, dst + kCb, dst + kCr, src, g, p, is422 != 0,
                                         exchange ? exchanged : inOrder);
                                   return planarSize(g.dstPitch * g.height);
                               },
                               false});
            }
        }
    }
}

void addCopies(std::vector<Converter>& all) {
    using Model = unsigned (*)(Byte* const(&dst)[3], Byte* const(&src)[3], const Geometry& g);
    const auto add = [&](const char* name, PXConvertFrame* convert, Planar from, Planar to, Model model) {
        all.push_back(
            {name, frame(convert),
             [=](Byte* dst, Byte* src, const Geometry& g) {
                 const unsigned d = g.dstPitch * g.height;
                 const unsigned s = g.srcPitch * g.height;
                 return model({dst, dst + to.cb(d), dst + to.cr(d)}, {src, src + from.cb(s), src + from.cr(s)}, g);
             },
             true, false});
    };
    const Model to420 = [](auto& dst, auto& src, const Geometry& g) { return transfer(dst, src, g, false); };
    const Model to422 = [](auto& dst, auto& src, const Geometry& g) { return transfer(dst, src, g, true); };
    add("i420_to_i420", cycbcr_i420_to_i420, kI420, kI420, copy420);
    add("yv12_to_yv12", cycbcr_yv12_to_yv12, kYv12, kYv12, copy420);
    add("i420_to_yv12", cycbcr_i420_to_yv12, kI420, kYv12, copy420);
    add("yv12_to_i420", cycbcr_yv12_to_i420, kYv12, kI420, copy420);
    add("p422_to_p422", cycbcr_p422_to_p422, kP422, kP422, copy422);
    // P422's first chroma plane is paired with the second of I420 and with the first of YV12.
    add("p422_to_i420", cycbcr_p422_to_i420, kP422, kYv12, to420);
    add("p422_to_yv12", cycbcr_p422_to_yv12, kP422, kI420, to420);
    add("i420_to_p422", cycbcr_i420_to_p422, kYv12, kP422, to422);
    add("yv12_to_p422", cycbcr_yv12_to_p422, kI420, kP422, to422);

    const auto apart = [&](const std::string& name, auto routine, Model model) {
        all.push_back({name,
                       [=](Byte* dst, Byte* src, const Geometry& g) {
                           return routine(dst, dst + kCb, dst + kCr, src, src + kCb, src + kCr, g.width, g.height,
                                          g.dstPitch, g.srcPitch);
                       },
                       [=](Byte* dst, Byte* src, const Geometry& g) {
                           return model({dst, dst + kCb, dst + kCr}, {src, src + kCb, src + kCr}, g);
                       },
                       true, false});
    };
    const auto flagged = [](int dstIs422, int srcIs422) {
        return [=](auto... arguments) { return cycbcr_planar_422_420(arguments..., dstIs422, srcIs422); };
    };
    apart("planar_copy", cycbcr_planar_copy, copy420);
    apart("planar_422_420(0, 0)", flagged(0, 0), copy420);
    apart("planar_422_420(0, 4)", flagged(0, 4), to420);
    apart("planar_422_420(4, 0)", flagged(4, 0), to422);
    apart("planar_422_420(2, 4)", flagged(2, 4), copy422);
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
        for (unsigned width = 0; width <= 200; ++width) {
            const unsigned planar = width + width % 2;
            for (const unsigned height : {0U, 1U, 2U, 3U, 4U, 5U, 7U, 8U}) {
                for (unsigned extra = 0; extra < 4; ++extra) {
                    const unsigned more = extra * width % 41;
                    const unsigned dst = (converter.planarSource ? 2 * planar : planar) + more;
                    const unsigned src = (converter.planarSource ? width : 2 * width) + extra * 5;
                    check(converter, {width, height, dst, src}, source, destination);
                    if (HasFatalFailure()) return;
                }
                for (const Geometry& g :
                     {Geometry{width, height, 0, 0}, {width, height, width / 3, width / 2}, {width, height, 90, 90}}) {
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
        if (!converter.inPlace) continue;
        for (const unsigned height : {1U, 4U, 8U}) {
            for (const unsigned distance : {0U, 1U, 640U, 1500U}) {
                const Geometry g{150, height, converter.planarSource ? 300U : 150U,
                                 converter.planarSource ? 150U : 304U};
                Bytes got = before;
                Bytes expected = before;
                converter.convert(got.data(), got.data() + distance, g);
                converter.model(expected.data(), expected.data() + distance, g);
                ASSERT_EQ(got, expected) << describe(converter, g) << ", distance " << distance;
            }
        }
    }
}

// Frames that no cache near the processor holds go other ways when they are turned over.
TEST(Planar, LargeFramesAreTurnedOver) {
    const Geometry fromPlanes{2002, 1204, 4030, 2008};
    const Geometry toPlanes{2002, 1204, 2050, 4016};
    const Bytes source = noise(6 << 20);
    const Bytes destination(6 << 20, 0x55);
    for (const Converter& converter : allConverters()) {
        if (converter.name.find("cyuv") == std::string::npos) continue;
        check(converter, converter.planarSource ? fromPlanes : toPlanes, source, destination);
    }
}

TEST(Planar, NothingBeyondTheFramesIsTouched) {
    GuardedBytes src(8192);
    GuardedBytes dst(8192);
    for (const Converter& converter : allConverters()) {
        if (converter.name.find('_') == std::string::npos || !converter.inPlace) continue;
        for (unsigned width = 4; width <= 200; width += 4) {
            const unsigned packed = 2 * width * 8;
            const unsigned planar = converter.name.find("p422") == std::string::npos ? width * 12 : width * 16;
            const Geometry g{width, 8, converter.planarSource ? 2 * width : width,
                             converter.planarSource ? width : 2 * width};
            const auto convert = [&](Byte* to, Byte* from) { converter.convert(to, from, g); };
            convert(dst.end() - (converter.planarSource ? packed : planar),
                    src.end() - (converter.planarSource ? planar : packed));
            convert(dst.begin(), src.begin());
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
