#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using Bytes = std::vector<std::uint8_t>;

struct Swap {
    const char* name;
    simd::SwapKernel (*at)(simd::Level);
    std::size_t unit;
};

constexpr Swap kSwaps[] = {{"swap16", simd::swap16, 2}, {"swap13", simd::swap13, 4}, {"swap13Of8", simd::swap13Of8, 8}};

constexpr std::size_t kMost = 300;

TEST(Words, PortableSwaps) {
    const Bytes group{0x10, 0x20, 0x30, 0x40};
    Bytes out(4);
    simd::swap16(simd::Level::Portable)(out.data(), group.data(), 2);
    EXPECT_EQ(out, (Bytes{0x20, 0x10, 0x40, 0x30}));
    simd::swap13(simd::Level::Portable)(out.data(), group.data(), 1);
    EXPECT_EQ(out, (Bytes{0x10, 0x40, 0x30, 0x20}));
    const Bytes unit{0x10, 0x20, 0x30, 0x40, 0x50, 0x60, 0x70, 0x80};
    out = unit;
    simd::swap13Of8(simd::Level::Portable)(out.data(), unit.data(), 1);
    EXPECT_EQ(out, (Bytes{0x10, 0x40, 0x30, 0x20, 0, 0, 0, 0}));
}

TEST(Words, EveryLevelEqualsPortableAtEveryLengthAndPlacement) {
    PlacedRow src(8192);
    PlacedRow dst(8192);
    for (const Swap& swap : kSwaps) {
        for (std::size_t count = 0; count <= kMost; ++count) {
            const Bytes content = noise(count * swap.unit, static_cast<unsigned>(count) + 1);
            Bytes expected(content.size());
            swap.at(simd::Level::Portable)(expected.data(), content.data(), count);
            for (const simd::Level level : vectorLevels()) {
                eachPlacement([&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                    const std::uint8_t* const from = src.place(content, srcOffset, srcAtEnd);
                    std::uint8_t* const to = dst.place(content.size(), dstOffset, dstAtEnd);
                    swap.at(level)(to, from, count);
                    ASSERT_TRUE(dst.holds(expected) && dst.aroundIsUntouched())
                        << swap.name << " at " << simd::levelName(level) << ", " << count << " units, offset "
                        << dstOffset;
                });
            }
        }
    }
}

// Overlap has one result as well: that of a walk from the first byte to the last.
TEST(Words, EveryLevelEqualsPortableOnOverlappingRows) {
    constexpr std::size_t kBytes = 4 * kMost;
    constexpr std::size_t kShifts = 300;
    const Bytes content = noise(kBytes + 2 * kShifts);
    for (const Swap& swap : kSwaps) {
        for (std::size_t shift = 0; shift <= 2 * kShifts; ++shift) {
            const auto swapped = [&](simd::Level level) {
                Bytes buffer = content;
                swap.at(level)(buffer.data() + shift, buffer.data() + kShifts, kBytes / swap.unit);
                return buffer;
            };
            const Bytes expected = swapped(simd::Level::Portable);
            for (const simd::Level level : vectorLevels()) {
                ASSERT_EQ(swapped(level), expected)
                    << swap.name << " at " << simd::levelName(level) << ", shift " << shift;
            }
        }
    }
}

} // namespace
