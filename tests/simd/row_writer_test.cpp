#include "simd/row_writer.h"
#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;

// The level in use for a test.
class AtLevel {
public:
    explicit AtLevel(simd::Level level) { simd::useLevel(level); }
    ~AtLevel() { simd::useLevel(simd::bestLevel()); }
    AtLevel(const AtLevel&) = delete;
    AtLevel& operator=(const AtLevel&) = delete;
};

constexpr std::size_t kMostUnits = 3000;

// Rows of known bytes come out whole, with nothing written around them, and chunks follow one another.
template <std::size_t kPlanes>
void checkRows(const std::array<unsigned, kPlanes>& unitBytes, bool pastCache) {
    const auto content = noise(kMostUnits * 16);
    constexpr std::size_t kRoom = std::size_t{1} << 16;
    std::array<PlacedRow, 3> memory{PlacedRow(kRoom), PlacedRow(kRoom), PlacedRow(kRoom)};
    simd::RowWriter<kPlanes> rows(pastCache, unitBytes);
    for (unsigned offset = 0; offset < kAlignments; ++offset) {
        for (const std::size_t units : {0U, 1U, 15U, 64U, 65U, 500U, 1024U, 1919U, unsigned{kMostUnits}}) {
            for (const bool lastIsMissing : {false, true}) {
                std::array<std::uint8_t*, kPlanes> to{};
                for (std::size_t p = 0; p < kPlanes; ++p) {
                    std::uint8_t* const row =
                        memory[p].place(units * unitBytes[p], (offset + 9 * p) % kAlignments, offset % 2 != 0);
                    if (!lastIsMissing || p + 1 < kPlanes) to[p] = row;
                }
                std::size_t next = 0;
                rows.write(to, units, [&](const auto& at, std::size_t first, std::size_t count) {
                    ASSERT_EQ(first, next);
                    next += count;
                    for (std::size_t p = 0; p < kPlanes; ++p) {
                        std::copy_n(&content[first * unitBytes[p]], count * unitBytes[p], at[p]);
                    }
                });
                ASSERT_EQ(next, units);
                for (std::size_t p = 0; p < kPlanes; ++p) {
                    ASSERT_TRUE(memory[p].aroundIsUntouched()) << offset << ", " << units;
                    if (to[p] == nullptr) continue;
                    ASSERT_TRUE(std::equal(to[p], to[p] + units * unitBytes[p], content.begin()))
                        << offset << ", " << units;
                }
            }
        }
    }
}

TEST(RowWriter, WritesRowsOfAnyAlignmentAndLength) {
    for (const simd::Level level : simd::kLevels) {
        if (level > simd::bestLevel()) continue;
        const AtLevel use(level);
        for (const bool pastCache : {false, true}) {
            checkRows<1>({2}, pastCache);
            checkRows<1>({3}, pastCache);
            checkRows<1>({16}, pastCache);
            checkRows<3>({2, 1, 1}, pastCache);
            checkRows<3>({6, 6, 6}, pastCache);
        }
    }
}

TEST(RowWriter, CopiesRowsOfAnyAlignmentAndLength) {
    for (const simd::Level level : simd::kLevels) {
        if (level > simd::bestLevel()) continue;
        const AtLevel use(level);
        PlacedRow from(4096);
        PlacedRow to(4096);
        const simd::RowCopy copy(true,
                                 [](void* dst, const void* src, std::size_t bytes) { std::memcpy(dst, src, bytes); });
        for (const std::size_t bytes : {0U, 1U, 63U, 64U, 127U, 1000U}) {
            const auto content = noise(bytes);
            eachPlacement([&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                const std::uint8_t* const src = from.place(content, srcOffset, srcAtEnd);
                copy(to.place(bytes, dstOffset, dstAtEnd), src, bytes);
                ASSERT_TRUE(to.holds(content) && to.aroundIsUntouched()) << bytes << ", " << dstOffset;
            });
        }
    }
}

} // namespace
