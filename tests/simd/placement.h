// Rows laid against pages that nobody may touch, at every alignment.
#pragma once

#include "tests/guarded_bytes.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace fikleipa::tests {

constexpr unsigned kAlignments = 64;

// A row that begins `offset` bytes behind the page before it, or ends `offset` bytes before the page behind it. The
// bytes around it hold a pattern.
class PlacedRow {
public:
    static constexpr std::uint8_t kAround = 0xA5;

    explicit PlacedRow(std::size_t room) : memory_(room) {}

    std::uint8_t* place(std::size_t bytes, unsigned offset, bool atEnd) {
        bytes_ = bytes;
        row_ = atEnd ? memory_.end() - offset - bytes : memory_.begin() + offset;
        std::fill(from(), to(), kAround);
        return row_;
    }

    std::uint8_t* place(const std::vector<std::uint8_t>& content, unsigned offset, bool atEnd) {
        place(content.size(), offset, atEnd);
        std::copy(content.begin(), content.end(), row_);
        return row_;
    }

    [[nodiscard]] bool holds(const std::vector<std::uint8_t>& expected) const {
        return std::equal(expected.begin(), expected.end(), row_);
    }

    [[nodiscard]] bool aroundIsUntouched() const {
        const auto untouched = [](std::uint8_t byte) { return byte == kAround; };
        return std::all_of(from(), row_, untouched) && std::all_of(row_ + bytes_, to(), untouched);
    }

private:
    static constexpr std::ptrdiff_t kMargin = 128;

    [[nodiscard]] std::uint8_t* from() const { return std::max(memory_.begin(), row_ - kMargin); }
    [[nodiscard]] std::uint8_t* to() const {
        return std::min(memory_.end(), row_ + static_cast<std::ptrdiff_t>(bytes_) + kMargin);
    }

    GuardedBytes memory_;
    std::uint8_t* row_ = nullptr;
    std::size_t bytes_ = 0;
};

// Calls test(srcOffset, srcAtEnd, dstOffset, dstAtEnd) for every alignment against either end of both rows.
template <class Test>
void eachPlacement(Test test) {
    for (unsigned offset = 0; offset < kAlignments; ++offset) {
        for (const bool srcAtEnd : {false, true}) {
            for (const bool dstAtEnd : {false, true}) test(offset, srcAtEnd, offset * 7 % kAlignments, dstAtEnd);
        }
    }
}

} // namespace fikleipa::tests
