// Row kernels and the rows that they read and write, to have every level do what the portable kernel does.
#pragma once

#include "simd/stream.h"
#include "tests/guarded_bytes.h"
#include "tests/levels.h"
#include "tests/v210/model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <utility>

namespace fikleipa::tests {

using Rows = std::array<Bytes, 3>;
using Pointers = std::array<std::uint8_t*, 3>;
using Sources = std::array<const std::uint8_t*, 3>;

// How long a row is: so many bytes for each group of units, such as pairs of pixels, begun groups included, and `more`
// at its end, or less where nobody touches them. A row may have `ahead` units more.
struct Length {
    std::ptrdiff_t each = 0, more = 0, perGroup = 1, ahead = 0;

    [[nodiscard]] std::size_t of(std::size_t units) const {
        if (units == 0) return 0;
        const std::ptrdiff_t groups = (static_cast<std::ptrdiff_t>(units) + ahead + perGroup - 1) / perGroup;
        return static_cast<std::size_t>(groups * each + more);
    }
};
using Lengths = std::array<Length, 3>;

struct RowKernel {
    std::string name;
    Lengths written, read;
    std::function<void(const simd::Kernels&, const Pointers& to, const Sources& from, std::size_t units)> call;
    unsigned bits = 16; // of 16-bit samples that are read
};

std::vector<RowKernel> wordKernels(); // swaps, and words that are gathered
std::vector<RowKernel> planes8Kernels();
std::vector<RowKernel> alphaKernels();
std::vector<RowKernel> v210Kernels();
std::vector<RowKernel> toRgb8Kernels();
std::vector<RowKernel> toRgbDeepKernels();
std::vector<RowKernel> v210ToRgbKernels(); // by groups
std::vector<RowKernel> fromRgb8Kernels();
std::vector<RowKernel> fromRgbDeepKernels();

inline Sources sources(const Pointers& rows) {
    return {rows[0], rows[1], rows[2]};
}

// Where a row is aligned, frames may be written past the cache.
inline bool beginsCacheLine(const std::uint8_t* row) {
    return reinterpret_cast<std::uintptr_t>(row) % simd::kCacheLine == 0;
}

inline Rows noiseRows(const Lengths& lengths, std::size_t units, unsigned bits = 16) {
    Rows rows;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = noise(lengths[i].of(units), static_cast<unsigned>(units + 1000 * i));
        if (bits == 16) continue;
        for (std::size_t b = 1; b < rows[i].size(); b += 2) rows[i][b] >>= 16 - bits;
    }
    return rows;
}

// What a level makes of rows.
inline Rows convert(const RowKernel& kernel, simd::Level level, const Rows& from, std::size_t units) {
    Rows to;
    for (std::size_t i = 0; i < to.size(); ++i) to[i].resize(kernel.written[i].of(units));
    kernel.call(simd::kernelsAt(level), {to[0].data(), to[1].data(), to[2].data()},
                {from[0].data(), from[1].data(), from[2].data()}, units);
    return to;
}

inline void expectPortable(const RowKernel& kernel, const Rows& from, std::size_t units) {
    const Rows expected = convert(kernel, simd::Level::Portable, from, units);
    for (const simd::Level level : vectorLevels()) {
        ASSERT_EQ(convert(kernel, level, from, units), expected) << kernel.name << ", " << simd::levelName(level);
    }
}

constexpr unsigned kAlignments = 64;

// Three rows against pages that nobody may touch: they begin `offset` bytes behind the page before them, or end as many
// before the page behind them, more or less. The bytes around them hold a pattern.
class PlacedRows {
public:
    explicit PlacedRows(std::size_t room = 4096)
        : memory_{GuardedBytes(room), GuardedBytes(room), GuardedBytes(room)} {}

    Pointers place(const Rows& content, unsigned offset, bool atEnd) {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            const auto size = static_cast<std::ptrdiff_t>(content[i].size());
            const auto away = static_cast<std::ptrdiff_t>((offset + 5 * i) % kAlignments);
            rows_[i] = atEnd ? memory_[i].end() - away - size : memory_[i].begin() + away;
            std::copy_n(kAround.begin(), rows_[i] - from(i), from(i));
            std::copy(content[i].begin(), content[i].end(), rows_[i]);
            std::copy_n(kAround.begin(), to(i, size) - rows_[i] - size, rows_[i] + size);
        }
        return rows_;
    }

    // Whether the rows hold that, with nothing written around them.
    [[nodiscard]] testing::AssertionResult hold(const Rows& expected) const {
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            const std::uint8_t* const row = rows_[i];
            const auto size = static_cast<std::ptrdiff_t>(expected[i].size());
            if (!std::equal(expected[i].begin(), expected[i].end(), row)) {
                const auto differing = std::mismatch(row, row + size, expected[i].begin()).first;
                return testing::AssertionFailure() << "byte " << differing - row << " of row " << i;
            }
            const auto isAround = [](const std::uint8_t* begin, const std::uint8_t* end) {
                return std::equal(begin, end, kAround.begin());
            };
            if (!isAround(from(i), row) || !isAround(row + size, to(i, size))) {
                return testing::AssertionFailure() << "bytes around row " << i;
            }
        }
        return testing::AssertionSuccess();
    }

private:
    static constexpr std::ptrdiff_t kMargin = 128;
    inline static const Bytes kAround = noise(kMargin);

    std::uint8_t* from(std::size_t i) const { return std::max(memory_[i].begin(), rows_[i] - kMargin); }
    std::uint8_t* to(std::size_t i, std::ptrdiff_t size) const {
        return std::min(memory_[i].end(), rows_[i] + size + kMargin);
    }

    std::array<GuardedBytes, 3> memory_;
    Pointers rows_{};
};

// Calls test(srcOffset, srcAtEnd, dstOffset, dstAtEnd) for every alignment, or some, against either end of both rows.
template <class Test>
void eachPlacement(unsigned step, Test test) {
    for (unsigned offset = 0; offset < kAlignments; offset += step) {
        for (const bool srcAtEnd : {false, true}) {
            for (const bool dstAtEnd : {false, true}) test(offset, srcAtEnd, offset * 7 % kAlignments, dstAtEnd);
        }
    }
}

} // namespace fikleipa::tests
