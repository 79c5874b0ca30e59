#include "v210/row_unpack.h"

#include "fikleipa.h"
#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using simd::Justify;
using Bytes = std::vector<std::uint8_t>;

constexpr unsigned kWidest = 200;

// What a row becomes: its whole groups, then zeros.
struct Expected {
    Bytes y, cb, cr;

    Expected(const Bytes& src, Justify justify) {
        const std::size_t groups = src.size() / simd::kV210GroupBytes;
        const std::size_t surplus = groups == 0 ? 0 : 2;
        y.resize(12 * groups + 2 * surplus);
        cb.resize(6 * groups + surplus);
        cr.resize(6 * groups + surplus);
        const simd::V210Kernels& portable = simd::kernelsAt(simd::Level::Portable).v210;
        portable.unpack16[static_cast<unsigned>(justify)][static_cast<unsigned>(simd::Samples16::Planar)](
            y.data(), cb.data(), cr.data(), src.data(), groups);
    }
};

Bytes rowOf(unsigned width) {
    return noise((width + 5) / 6 * simd::kV210GroupBytes, width);
}

// Calls unpack(y, cb, cr, src, width) for every width, against both ends of forbidden pages.
template <class Unpack>
void expectPortableBytes(Justify justify, unsigned srcStep, Unpack unpack) {
    PlacedRow from(4096);
    PlacedRow y(4096);
    PlacedRow cb(4096);
    PlacedRow cr(4096);
    for (unsigned width = 0; width <= kWidest; ++width) {
        const Bytes src = rowOf(width);
        const Expected expected(src, justify);
        for (unsigned offset = 0; offset < 16; ++offset) {
            for (const bool atEnd : {false, true}) {
                unpack(y.place(expected.y.size(), offset, atEnd), cb.place(expected.cb.size(), offset + 1, atEnd),
                       cr.place(expected.cr.size(), offset + 3, atEnd), from.place(src, offset * srcStep, atEnd),
                       width);
                ASSERT_TRUE(y.holds(expected.y) && cb.holds(expected.cb) && cr.holds(expected.cr)) << width;
                ASSERT_TRUE(y.aroundIsUntouched() && cb.aroundIsUntouched() && cr.aroundIsUntouched()) << width;
            }
        }
    }
}

TEST(RowUnpack, EveryLevelWritesWhatThePortableOneDoes) {
    std::vector<simd::Level> levels = vectorLevels();
    levels.push_back(simd::Level::Portable);
    for (const simd::Level level : levels) {
        simd::useLevel(level);
        for (const Justify justify : {Justify::Right, Justify::Left}) {
            SCOPED_TRACE(simd::levelName(level));
            expectPortableBytes(justify, 1, [&](auto... row) { unpackRow16(row..., justify); });
        }
    }
    simd::useLevel(simd::bestLevel());
}

#if defined(__x86_64__)

struct Exported {
    PXUnpackV210Row* unpack;
    Justify justify;
    unsigned srcStep; // in which the source's address goes
};

constexpr Exported kExported[] = {{px_v210_planar_unpack_aligned_ssse3, Justify::Right, 16},
                                  {px_v210_planar_unpack_unaligned_ssse3, Justify::Right, 1},
                                  {px_v210_planar16_unpack_aligned_ssse3, Justify::Left, 16},
                                  {px_v210_planar16_unpack_unaligned_ssse3, Justify::Left, 1}};

auto callerOf(const Exported& exported) {
    return [&exported](std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, std::uint8_t* src, unsigned width) {
        exported.unpack(src, reinterpret_cast<unsigned short*>(y), reinterpret_cast<unsigned short*>(cb),
                        reinterpret_cast<unsigned short*>(cr), width);
    };
}

TEST(RowUnpack, ExportedKernelsWriteWhatThePortableOneDoes) {
    if (simd::bestLevel() < simd::Level::Sse41) GTEST_SKIP() << "SSSE3 is not here";
    for (const Exported& exported : kExported) {
        SCOPED_TRACE(&exported - kExported);
        expectPortableBytes(exported.justify, exported.srcStep, callerOf(exported));
    }
}

// The zeros behind one plane's row may land in the next plane; what is written last stays.
TEST(RowUnpack, PlanesWithoutGapComeOutAlike) {
    if (simd::bestLevel() < simd::Level::Sse41) GTEST_SKIP() << "SSSE3 is not here";
    for (unsigned width = 1; width <= 60; ++width) {
        Bytes src = rowOf(width);
        const std::size_t groups = src.size() / simd::kV210GroupBytes;
        const auto unpacked = [&](auto unpack) {
            Bytes planes(24 * groups + 2, 0x77);
            unpack(planes.data(), planes.data() + 12 * groups, planes.data() + 18 * groups, src.data(), width);
            return planes;
        };
        for (const Exported& exported : kExported) {
            if (exported.srcStep != 1) continue;
            EXPECT_EQ(unpacked([&](auto... row) { unpackRow16(row..., exported.justify); }),
                      unpacked(callerOf(exported)))
                << width;
        }
    }
}

#endif

} // namespace
