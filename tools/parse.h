// Numbers, sizes and ranges as they stand on the command line and in file headers.
#pragma once

#include "layouts.h"

#include <charconv>
#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

namespace fikleipa::tool {

// The number that the whole of `text` is, if it is one.
template <typename Number>
std::optional<Number> parseNumber(std::string_view text, int base = 10) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (error != std::errc{} || end != text.data() + text.size()) return {};
    return number;
}

// The 32-bit number written as 0x...
std::optional<std::uint32_t> hexNumber(std::string_view text);

// "1920x1080"
Size parseSize(std::string_view text);

// So that the number of frames of any range is a number, too.
inline constexpr std::uint64_t kLastFrame = std::numeric_limits<std::uint64_t>::max() - 1;

// Frames first..last, both included, counted from 0.
struct FrameRange {
    std::uint64_t first = 0;
    std::optional<std::uint64_t> last;
};

// "12", "12-" or "12-19"
FrameRange parseRange(std::string_view text);

} // namespace fikleipa::tool
