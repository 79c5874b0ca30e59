#include "simd/row_writer.h"
#include "tests/simd/rows.h"

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;

// Rows of known bytes come out whole, with nothing written around them, and chunks follow one another.
template <std::size_t kPlanes>
void checkRows(const std::array<unsigned, kPlanes>& unitBytes, bool pastCache) {
    PlacedRows memory(std::size_t{1} << 16);
    simd::RowWriter<kPlanes> writer(pastCache, unitBytes);
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
            writer.write(to, units, [&](const auto& at, std::size_t first, std::size_t count) {
                ASSERT_EQ(first, next);
                next += count;
                for (std::size_t p = 0; p < kPlanes; ++p) {
                    std::copy_n(&content[p][first * unitBytes[p]], count * unitBytes[p], at[p]);
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
