#include "y4m.h"

#include "error.h"
#include "parse.h"

#include <algorithm>
#include <array>
#include <optional>

namespace fikleipa::tool {
namespace {

struct Chroma {
    std::string_view tag;
    std::string_view layout;
};

// A clip is written with the first tag of its layout, which for 4:2:0 says that chroma is co-sited with the left pixel.
constexpr std::array kChroma{
    Chroma{"420mpeg2", "i420"},    Chroma{"420jpeg", "i420"},     Chroma{"420paldv", "i420"},
    Chroma{"420", "i420"},         Chroma{"422", "p422"},         Chroma{"420p10", "yuv420p10"},
    Chroma{"422p10", "yuv422p10"}, Chroma{"444p10", "yuv444p10"}, Chroma{"420p12", "yuv420p12"},
    Chroma{"422p12", "yuv422p12"}, Chroma{"444p12", "yuv444p12"}, Chroma{"420p16", "yuv420p16"},
    Chroma{"422p16", "yuv422p16"},
};

// Of a clip that does not tell.
constexpr std::string_view kDefaultChroma = "420jpeg";

bool isRatio(std::string_view text) {
    const std::size_t colon = text.find(':');
    return colon != std::string_view::npos && parseNumber<std::uint32_t>(text.substr(0, colon)) &&
           parseNumber<std::uint32_t>(text.substr(colon + 1));
}

bool isInterlacing(std::string_view text) {
    return text.size() == 1 && std::string_view("?ptbm").find(text[0]) != std::string_view::npos;
}

// Takes one field in, or says that it cannot be.
bool takeField(Y4mHeader& header, char key, const std::string& value) {
    const auto takeIf = [&](std::string& field, bool valid) {
        if (valid) field = value;
        return valid;
    };
    const auto takeNumber = [&](std::uint32_t& field) {
        const auto number = parseNumber<std::uint32_t>(value);
        if (number) field = *number;
        return number.value_or(0) != 0;
    };
    switch (key) {
    case 'W':
        return takeNumber(header.size.width);
    case 'H':
        return takeNumber(header.size.height);
    case 'F':
        return takeIf(header.rate, isRatio(value));
    case 'I':
        return takeIf(header.interlacing, isInterlacing(value));
    case 'A':
        return takeIf(header.aspect, isRatio(value));
    case 'C':
        return takeIf(header.chroma, !value.empty());
    case 'X':
        header.extensions.push_back(value);
        return true;
    default:
        return false;
    }
}

} // namespace

const Layout& Y4mHeader::layout() const {
    for (const Chroma& each : kChroma) {
        if (each.tag == chroma) return layoutNamed(each.layout);
    }
    fail("clips of C{} are not handled: 4:2:0 and 4:2:2 of 8, 10, 12 and 16 bits, 4:4:4 of 10 and 12 are", chroma);
}

bool isY4mName(std::string_view path) {
    return path.ends_with(".y4m");
}

Y4mHeader parseY4mHeader(std::string_view line, std::string_view name) {
    Y4mHeader header;
    if (!line.starts_with(kY4mMagic)) fail("{} does not begin with {}", name, kY4mMagic);
    line.remove_prefix(kY4mMagic.size());
    std::string seen;
    while (!line.empty()) {
        if (line.front() != ' ') fail("{} does not begin with {}", name, kY4mMagic);
        const std::string_view field = line.substr(1, line.find(' ', 1) - 1);
        line.remove_prefix(field.size() + 1);
        if (field.empty()) continue;
        const bool repeated = field[0] != 'X' && seen.find(field[0]) != std::string::npos;
        seen += field[0];
        if (repeated || !takeField(header, field[0], std::string(field.substr(1))))
            fail("{} has a broken header: field '{}'", name, field);
    }
    if (header.size.width == 0 || header.size.height == 0) fail("{} has a broken header: no width or no height", name);
    if (header.chroma.empty()) header.chroma = kDefaultChroma;
    const Layout& layout = header.layout();
    const auto [width, height] = header.size;
    if (width % layout.chromaWidth() != 0 || height % layout.chromaHeight() != 0)
        fail("{} is {}x{}: odd sizes of {} are not handled", name, width, height, layout.name);
    return header;
}

std::string y4mHeaderText(const Y4mHeader& header) {
    std::string text = fmt::format("{} W{} H{} F{} I{} A{} C{}", kY4mMagic, header.size.width, header.size.height,
                                   header.rate, header.interlacing, header.aspect, header.chroma);
    for (const std::string& extension : header.extensions) text += " X" + extension;
    return text + "\n";
}

Y4mHeader makeY4mHeader(const Layout& layout, Size size, const Y4mHeader* source) {
    const auto tag =
        std::find_if(kChroma.begin(), kChroma.end(), [&](const Chroma& each) { return each.layout == layout.name; });
    if (tag == kChroma.end())
        fail("a Y4M clip cannot hold {}; it holds i420, p422 and the planar layouts of more bits", layout.name);
    Y4mHeader header = source != nullptr ? *source : Y4mHeader{};
    if (source != nullptr && source->layout().name == layout.name) return header;
    header.size = size;
    header.chroma = tag->tag;
    // Of the extensions only the range still holds for another layout.
    std::erase_if(header.extensions, [](const std::string& each) { return !each.starts_with("COLORRANGE="); });
    return header;
}

} // namespace fikleipa::tool
