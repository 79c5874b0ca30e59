#include "simd/row_writer.h"
#include "tests/simd/rows.h"

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;

// Rows of known bytes come out whole, with nothing written around them, and chunks follow one another.
template <std::size_t kPlanes>
void checkRows(const std::array<unsigned, kPlanes>& unitBytes, bool pastCache) {
    PlacedRows memory(std::size_t{1} << 16);
    for (const std::size_t units : {0U, 1U, 15U, 64U, 65U, 500U, 1024U, 1919U, 3000U}) {
        Lengths lengths;
        for (std::size_t p = 0; p < kPlanes; ++p) lengths[p] = {unitBytes[p]};
        const Rows content = noiseRows(lengths, units);
        for (unsigned turn = 0; turn < 2 * kAlignments; ++turn) {
            Rows expected = content;
            for (Bytes& row : expected) std::fill(row.begin(), row.end(), std::uint8_t{0});
            const Pointers rows = memory.place(expected, turn / 2, turn / 2 % 2 != 0);
            const std::size_t present = turn % 2 == 0 ? kPlanes : kPlanes - 1; // a missing plane is dropped
            std::array<std::uint8_t*, kPlanes> to{};
            for (std::size_t p = 0; p < present; ++p) {
                to[p] = rows[p];
                expected[p] = content[p];
            }
            std::size_t next = 0;
            simd::RowWriter<kPlanes>(pastCache, unitBytes)
                .write(to, units, [&](const auto& at, std::size_t first, std::size_t count) {
                    ASSERT_EQ(first, next);
                    next += count;
                    for (std::size_t p = 0; p < kPlanes; ++p) {
                        std::copy_n(content[p].data() + first * unitBytes[p], count * unitBytes[p], at[p]);
                    }
                });
            ASSERT_EQ(next, units);
            ASSERT_TRUE(memory.hold(expected)) << units << " units, turn " << turn;
        }
    }
}

TEST(RowWriter, WritesRowsOfAnyAlignmentAndLength) {
    atEachLevel([](simd::Level) {
        for (const bool pastCache : {false, true}) {
            checkRows<1>({2}, pastCache);
            checkRows<1>({3}, pastCache);
            checkRows<1>({16}, pastCache);
            checkRows<3>({2, 1, 1}, pastCache);
            checkRows<3>({6, 6, 6}, pastCache);
        }
    });
}

// Rows of a plane that follow one another, or leave a gap. Of the second plane every other one is missing.
void checkRowsInTurn(std::size_t units, std::size_t gap, bool pastCache) {
    constexpr std::size_t kRows = 12;
    const std::size_t pitches[] = {2 * units + gap, units + gap};
    PlacedRows memory(std::size_t{1} << 16);
    Rows expected{noise(kRows * pitches[0]), noise(kRows / 2 * pitches[1])};
    const Pointers planes = memory.place(expected, static_cast<unsigned>(units), false);
    {
        simd::RowWriter<2> writer(pastCache, {2, 1});
        for (unsigned r = 0; r < kRows; ++r) {
            const std::size_t at[] = {r * pitches[0], r / 2 * pitches[1]};
            const Bytes row = noise(2 * units, r);
            std::copy_n(row.begin(), 2 * units, expected[0].begin() + static_cast<std::ptrdiff_t>(at[0]));
            if (r % 2 != 0) std::copy_n(row.begin(), units, expected[1].begin() + static_cast<std::ptrdiff_t>(at[1]));
            writer.write({planes[0] + at[0], r % 2 != 0 ? planes[1] + at[1] : nullptr}, units,
                         [&](const auto& to, std::size_t first, std::size_t count) {
                             std::copy_n(&row[2 * first], 2 * count, to[0]);
                             std::copy_n(&row[first], count, to[1]);
                         });
        }
    }
    ASSERT_TRUE(memory.hold(expected)) << units << " units, gap " << gap;
}

TEST(RowWriter, WritesRowsThatShareLines) {
    atEachLevel([](simd::Level) {
        for (const bool pastCache : {false, true}) {
            for (const std::size_t gap : {0U, 1U, 64U}) {
                for (const std::size_t units : {1U, 15U, 64U, 65U, 2000U}) checkRowsInTurn(units, gap, pastCache);
            }
        }
    });
}

TEST(RowWriter, CopiesRowsOfAnyAlignmentAndLength) {
    atEachLevel([](simd::Level) {
        PlacedRows from;
        PlacedRows to;
        const simd::RowCopy copy(true,
                                 [](void* dst, const void* src, std::size_t size) { std::memcpy(dst, src, size); });
        for (const std::size_t bytes : {0U, 1U, 63U, 64U, 127U, 1000U}) {
            const Rows content{noise(bytes)};
            eachPlacement(1, [&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                const std::uint8_t* const src = from.place(content, srcOffset, srcAtEnd)[0];
                copy(to.place({Bytes(bytes)}, dstOffset, dstAtEnd)[0], src, bytes);
                ASSERT_TRUE(to.hold(content)) << bytes << ", " << dstOffset;
            });
        }
    });
}

} // namespace
