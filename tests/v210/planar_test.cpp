#include "fikleipa.h"
#include "tests/guarded_bytes.h"
#include "tests/v210/model.h"

#include <gtest/gtest.h>

namespace {

using namespace fikleipa::tests;

constexpr unsigned kPlane = 8192; // room for each plane of a destination
using ThreePlanes = std::array<Bytes, 3>;

ThreePlanes emptyPlanes() {
    const Bytes plane(kPlane, 0x55);
    return {plane, plane, plane};
}

struct Frame {
    unsigned width, height, dstPitch, srcPitch;
    bool halfRows, tight;
};

template <class Test>
void eachFrame(Test test) {
    for (unsigned width = 0; width <= 60; ++width) {
        for (const unsigned height : {0U, 1U, 2U, 5U}) {
            for (const unsigned pitch : {2 * width, 2 * width + 29}) {
                for (unsigned flags = 0; flags < 4; ++flags) {
                    test(Frame{width, height, pitch, pitch % 2 != 0 ? 300U : 0U, flags % 2 != 0, flags / 2 != 0});
                }
            }
        }
    }
}

// Stores value(row, component index) for all of a frame, pixels up to a multiple of `unit` unless planes are tight.
template <class Value>
ThreePlanes splitModel(const Frame& f, unsigned unit, bool average, Value value) {
    ThreePlanes planes = emptyPlanes();
    const unsigned pixels = f.tight ? f.width : roundUp(f.width, unit);
    const unsigned lumaPitch = f.tight ? 2 * f.width : f.dstPitch;
    const unsigned chromaPitch = f.tight ? f.width / 2 * 2 : f.dstPitch / 2;
    for (unsigned r = 0; r < f.height; ++r) {
        for (unsigned x = 0; x < pixels; ++x) store16(&planes[0][r * lumaPitch / 2 * 2 + 2 * x], value(r, lumaOf(x)));
        for (unsigned x = 0; x < pixels / 2; ++x) {
            const unsigned at = (f.halfRows ? r / 2 : r) * chromaPitch / 2 * 2 + 2 * x;
            const bool second = average && f.halfRows && r % 2 != 0;
            const auto chroma = [&](unsigned i) { return second ? (value(r - 1, i) + value(r, i)) >> 1 : value(r, i); };
            store16(&planes[1][at], chroma(cbOf(x)));
            store16(&planes[2][at], chroma(crOf(x)));
        }
    }
    return planes;
}

std::string describe(const Frame& f) {
    return std::to_string(f.width) + "x" + std::to_string(f.height) + ", pitches " + std::to_string(f.dstPitch) +
           " and " + std::to_string(f.srcPitch) + (f.halfRows ? ", 4:2:0" : "") + (f.tight ? ", tight" : "");
}

void check(PXSplitByFlags* convert, Bytes& src, const Frame& f, const ThreePlanes& expected) {
    // Only the lowest bit of either flag byte counts.
    const auto chromaFlags = static_cast<unsigned char>(f.halfRows ? 0xFF : 0xFE);
    const auto planeFlags = static_cast<unsigned char>(f.tight ? 1 : 2);
    ThreePlanes got = emptyPlanes();
    EXPECT_EQ(convert(got[0].data(), got[1].data(), got[2].data(), src.data(), f.width, f.height, f.dstPitch,
                      f.srcPitch, chromaFlags, planeFlags),
              f.dstPitch * f.height);
    ASSERT_TRUE(got == expected) << describe(f);
}

TEST(Planar, V210ToPlanesByFlags) {
    Bytes src = noise(kPlane);
    eachFrame([&](const Frame& f) {
        const unsigned pitch = v210Pitch(f.width, f.srcPitch);
        const auto value = [&](unsigned r, unsigned i) { return component(&src[r * pitch], i); };
        check(cycbcr_v210to_planar, src, f, splitModel(f, 6, true, value));
        const auto shifted = [&](unsigned r, unsigned i) { return value(r, i) << 6; };
        check(cycbcr_v210to_planar16, src, f, splitModel(f, 6, true, shifted));
    });
}

TEST(Planar, UyvyToPlanesByFlags) {
    Bytes src = noise(kPlane);
    eachFrame([&](const Frame& f) {
        const unsigned pitch = std::max(2 * f.width, f.srcPitch);
        const auto value = [&](unsigned r, unsigned i) { return src[r * pitch + i] * 256U; };
        check(cycbcr_uyvyto_planar16, src, f, splitModel(f, 2, false, value));
    });
}

// Wider than what is averaged at a time.
TEST(Planar, WideRowsAreAveragedInPieces) {
    constexpr unsigned kWidth = 1001;
    const unsigned pitch = naturalPitch(kWidth);
    Bytes src = noise(std::size_t{2} * pitch);
    Bytes y(4 * kWidth);
    Bytes cb(2 * (kWidth / 2));
    Bytes cr = cb;
    cycbcr_v210to_planar(y.data(), cb.data(), cr.data(), src.data(), kWidth, 2, 0, 0, 1, 1);
    for (unsigned x = 0; x < kWidth / 2; ++x) {
        ASSERT_EQ(load16(&cb[2 * x]), (component(src.data(), cbOf(x)) + component(&src[pitch], cbOf(x))) / 2) << x;
        ASSERT_EQ(load16(&cr[2 * x]), (component(src.data(), crOf(x)) + component(&src[pitch], crOf(x))) / 2) << x;
    }
    for (unsigned x = 0; x < kWidth; ++x) ASSERT_EQ(load16(&y[2 * (kWidth + x)]), component(&src[pitch], lumaOf(x)));
}

TEST(Planar, TightPlanesAreWrittenToTheSample) {
    Bytes src = noise(5 * naturalPitch(60));
    GuardedBytes y(8192);
    GuardedBytes cb(8192);
    GuardedBytes cr(8192);
    for (unsigned width = 1; width <= 60; ++width) {
        for (PXSplitByFlags* const convert : {cycbcr_v210to_planar, cycbcr_v210to_planar16, cycbcr_uyvyto_planar16}) {
            for (const unsigned chromaRows : {5U, 3U}) {
                const unsigned chroma = width / 2 * 2 * chromaRows;
                convert(y.end() - 10 * width, cb.end() - chroma, cr.end() - chroma, src.data(), width, 5, 0, 0,
                        chromaRows == 3 ? 1 : 0, 1);
            }
        }
    }
}

// 8-bit planes and 16-bit ones, of which the low 10 bits count.
TEST(Planar, TightPlanesToV210) {
    const Bytes source = noise(kPlane);
    for (unsigned width = 0; width <= 60; ++width) {
        for (const unsigned height : {0U, 1U, 5U}) {
            for (const int is422 : {0, 4}) {
                const unsigned dstPitch = width % 2 != 0 ? 0 : 300;
                Bytes y = source;
                Bytes cb(source.rbegin(), source.rend());
                Bytes cr(source.begin() + 99, source.end());
                const auto packed = [&](auto sample) {
                    Bytes dst(kPlane, 0x55);
                    for (unsigned r = 0; r < height; ++r) {
                        const unsigned chroma = (is422 != 0 ? r : r / 2) * (width / 2);
                        storeRow(&dst[r * v210Pitch(width, dstPitch)], roundUp(width, 6) / 6 * 4, [&](unsigned i) {
                            if (i % 2 != 0) return sample(y, r * width + i / 2);
                            return sample(i % 4 == 0 ? cb : cr, chroma + i / 4);
                        });
                    }
                    return dst;
                };
                const auto check = [&](PXPlanesToV210* convert, const Bytes& expected) {
                    Bytes dst(kPlane, 0x55);
                    EXPECT_EQ(convert(dst.data(), y.data(), cb.data(), cr.data(), width, height, dstPitch, 77, is422),
                              naturalPitch(width) * height);
                    ASSERT_EQ(dst, expected) << width << "x" << height;
                };
                check(cycbcr_planar_to_012v, packed([](const Bytes& plane, unsigned i) { return plane[i] * 4U; }));
                check(cycbcr_planar_16_to_012v,
                      packed([](const Bytes& plane, unsigned i) { return load16(&plane[2 * i]) & 0x3FF; }));
            }
        }
    }
}

TEST(Planar, TenBitsSurviveTheWayThroughPlanes) {
    Bytes src(3 * 128);
    unsigned value = 0;
    for (unsigned r = 0; r < 3; ++r) storeRow(&src[128 * r], 32, [&](unsigned) { return value++ * 7 % 1024; });
    Bytes y(2 * 48 * 3);
    Bytes cb(48 * 3);
    Bytes cr(48 * 3);
    Bytes back(src.size());
    cycbcr_v210to_planar(y.data(), cb.data(), cr.data(), src.data(), 48, 3, 96, 0, 0, 0);
    cycbcr_planar_16_to_012v(back.data(), y.data(), cb.data(), cr.data(), 48, 3, 0, 0, 1);
    EXPECT_EQ(back, src);
}

} // namespace
