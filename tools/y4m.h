// The headers of YUV4MPEG2 clips, as text.
#pragma once

#include "layouts.h"

#include <string>
#include <string_view>
#include <vector>

namespace fikleipa::tool {

inline constexpr std::string_view kY4mMagic = "YUV4MPEG2";
inline constexpr std::string_view kY4mFrame = "FRAME";
inline constexpr std::size_t kY4mLineLimit = 4096;

// Fields are kept as the clip spells them, to be handed on.
struct Y4mHeader {
    Size size;
    std::string chroma; // "420jpeg", "422"...
    std::string rate = "25:1";
    std::string interlacing = "p";
    std::string aspect = "0:0";
    std::vector<std::string> extensions; // "COLORRANGE=FULL"...

    // Fails for chroma that the command has no layout for.
    const Layout& layout() const;
};

bool isY4mName(std::string_view path);

// `line` is the first line of the clip called `name`.
Y4mHeader parseY4mHeader(std::string_view line, std::string_view name);

std::string y4mHeaderText(const Y4mHeader& header);

// The header of a clip of that layout and size that is made from `source`, the header of a clip or nothing. Fails for a
// layout that such a clip cannot hold.
Y4mHeader makeY4mHeader(const Layout& layout, Size size, const Y4mHeader* source);

} // namespace fikleipa::tool
