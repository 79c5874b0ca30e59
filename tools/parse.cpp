#include "parse.h"

#include "error.h"

namespace fikleipa::tool {

std::optional<std::uint32_t> hexNumber(std::string_view text) {
    if (!text.starts_with("0x") && !text.starts_with("0X")) return {};
    return parseNumber<std::uint32_t>(text.substr(2), 16);
}

Size parseSize(std::string_view text) {
    const std::size_t cross = text.find('x');
    if (cross != std::string_view::npos) {
        const auto width = parseNumber<std::uint32_t>(text.substr(0, cross));
        const auto height = parseNumber<std::uint32_t>(text.substr(cross + 1));
        if (width && height) return {*width, *height};
    }
    fail("'{}' is no size such as 1920x1080", text);
}

FrameRange parseRange(std::string_view text) {
    const std::size_t dash = text.find('-');
    FrameRange range;
    const auto frame = [&](std::string_view digits) {
        const auto number = parseNumber<std::uint64_t>(digits);
        if (!number || *number > kLastFrame) fail("'{}' is no range of frames such as 10-19", text);
        return *number;
    };
    range.first = frame(text.substr(0, dash));
    if (dash == std::string_view::npos) {
        range.last = range.first;
    } else if (dash + 1 < text.size()) {
        range.last = frame(text.substr(dash + 1));
        if (*range.last < range.first) fail("'{}' is no range of frames such as 10-19", text);
    }
    return range;
}

} // namespace fikleipa::tool
