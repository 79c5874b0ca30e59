#include "layouts.h"

#include "error.h"
#include "fikleipa.h"
#include "parse.h"

#include <algorithm>
#include <cctype>
#include <limits>

namespace fikleipa::tool {
namespace {

// Row offsets and plane sizes are 32-bit products in the library.
constexpr std::uint64_t kFrameLimit = std::numeric_limits<std::uint32_t>::max();

constexpr PlaneShape kPacked422{4, 2, 1};
constexpr PlaneShape kLuma{1, 1, 1};
constexpr PlaneShape kChroma420{1, 2, 2};
constexpr PlaneShape kChroma422{1, 2, 1};
constexpr PlaneShape kChromaPairs420{2, 2, 2};

std::vector<Layout> makeTable() {
    return {
        {.name = "uyvy",
         .description = "packed 8-bit 4:2:2, Cb Y0 Cr Y1",
         .codes = {PX_FOURCC_UYVY, PX_FOURCC_UYNV, PX_FOURCC_AJYU, PX_FOURCC_2vuy, PX_FOURCC_yuv2, PX_FOURCC_2Vuy,
                   PX_FOURCC_yuV2, PX_FOURCC_8800001E, PX_FOURCC_8810001E},
         .aliases = {"uyvy422"},
         .planes = {kPacked422},
         .samples = {{{0, 1, 2}, {0, 0, 4}, {0, 2, 4}}}},
        {.name = "yuy2",
         .description = "packed 8-bit 4:2:2, Y0 Cb Y1 Cr",
         .codes = {PX_FOURCC_YUY2, PX_FOURCC_YUNV},
         .aliases = {"yuyv", "yuyv422"},
         .planes = {kPacked422},
         .samples = {{{0, 0, 2}, {0, 1, 4}, {0, 3, 4}}}},
        {.name = "yvyu",
         .description = "packed 8-bit 4:2:2, Y0 Cr Y1 Cb",
         .codes = {PX_FOURCC_YVYU},
         .aliases = {"yvyu422"},
         .planes = {kPacked422},
         .samples = {{{0, 0, 2}, {0, 3, 4}, {0, 1, 4}}}},
        {.name = "cyuv",
         .description = "as uyvy, bottom row first",
         .codes = {PX_FOURCC_cyuv},
         .planes = {kPacked422},
         .samples = {{{0, 1, 2}, {0, 0, 4}, {0, 2, 4}}},
         .bottomUp = true},
        {.name = "i420",
         .description = "planar 8-bit 4:2:0, Y then Cb then Cr",
         .codes = {PX_FOURCC_I420, PX_FOURCC_IYUV},
         .aliases = {"yuv420p"},
         .planes = {kLuma, kChroma420, kChroma420},
         .samples = {{{0, 0, 1}, {1, 0, 1}, {2, 0, 1}}}},
        {.name = "yv12",
         .description = "planar 8-bit 4:2:0, Y then Cr then Cb",
         .codes = {PX_FOURCC_YV12},
         .planes = {kLuma, kChroma420, kChroma420},
         .samples = {{{0, 0, 1}, {2, 0, 1}, {1, 0, 1}}}},
        {.name = "p422",
         .description = "planar 8-bit 4:2:2, Y then Cb then Cr",
         .codes = {PX_FOURCC_P422, PX_FOURCC_422P},
         .aliases = {"yuv422p"},
         .planes = {kLuma, kChroma422, kChroma422},
         .samples = {{{0, 0, 1}, {1, 0, 1}, {2, 0, 1}}}},
        {.name = "nv12",
         .description = "8-bit 4:2:0, Y then one plane of Cb Cr pairs",
         .planes = {kLuma, kChromaPairs420},
         .samples = {{{0, 0, 1}, {1, 0, 2}, {1, 1, 2}}}},
        {.name = "rgb32",
         .description = "RGB with alpha, 4 bytes a pixel",
         .codes = {PX_FOURCC_RGB32},
         .planes = {{4, 1, 1}},
         .rgbBits = 32},
        {.name = "rgb24", .description = "RGB, 3 bytes a pixel", .planes = {{3, 1, 1}}, .rgbBits = 24},
        {.name = "rgb565",
         .description = "RGB, 5, 6 and 5 bits in a 16-bit word",
         .aliases = {"rgb16"},
         .planes = {{2, 1, 1}},
         .rgbBits = 16},
        {.name = "rgb555",
         .description = "RGB, 5 bits each in a 16-bit word",
         .aliases = {"rgb15"},
         .planes = {{2, 1, 1}},
         .rgbBits = 15},
    };
}

bool sameText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

bool hasName(const Layout& layout, std::string_view name, std::optional<int> code) {
    return sameText(layout.name, name) ||
           std::any_of(layout.aliases.begin(), layout.aliases.end(),
                       [&](auto alias) { return sameText(alias, name); }) ||
           std::any_of(layout.codes.begin(), layout.codes.end(),
                       [&](int each) { return each == code || sameText(codeText(each), name); });
}

std::uint32_t roundedUp(std::uint32_t value, std::uint32_t divisor) {
    return value / divisor + (value % divisor != 0 ? 1 : 0);
}

// The pitch of a further plane, in proportion to the bytes that it holds for a pixel.
std::uint64_t planePitch(const Layout& layout, const PlaneShape& plane, std::uint32_t pitch) {
    const PlaneShape& first = layout.planes.front();
    const std::uint64_t bytes = std::uint64_t{pitch} * plane.bytes * first.pixels;
    const std::uint64_t pixels = std::uint64_t{plane.pixels} * first.bytes;
    if (bytes % pixels != 0)
        fail("a pitch of {} bytes cannot be: the chroma rows of {} have half of it", pitch, layout.name);
    return bytes / pixels;
}

void checkSize(const Layout& layout, Size size) {
    if (size.width == 0 || size.height == 0) fail("the size {}x{} is empty", size.width, size.height);
    if (size.width % layout.widthMultiple() != 0)
        fail("the width {} is odd, which {} cannot be", size.width, layout.name);
    if (size.height % layout.heightMultiple() != 0)
        fail("the height {} is odd, which {} cannot be", size.height, layout.name);
}

} // namespace

std::uint32_t Layout::widthMultiple() const {
    std::uint32_t multiple = 1;
    for (const PlaneShape& plane : planes) multiple = std::max(multiple, plane.pixels);
    return multiple;
}

std::uint32_t Layout::heightMultiple() const {
    std::uint32_t multiple = 1;
    for (const PlaneShape& plane : planes) multiple = std::max(multiple, plane.rows);
    return multiple;
}

const std::vector<Layout>& layouts() {
    static const std::vector<Layout> table = makeTable();
    return table;
}

std::string codeText(int code) {
    std::string text;
    for (unsigned int shift = 0; shift < 32; shift += 8) {
        const auto byte = static_cast<unsigned char>(static_cast<unsigned int>(code) >> shift);
        if (byte < 0x20 || byte > 0x7E) return fmt::format("0x{:08X}", static_cast<unsigned int>(code));
        text += static_cast<char>(byte);
    }
    return text;
}

const Layout& findLayout(std::string_view name, Role role) {
    std::optional<int> code;
    if (const auto number = hexNumber(name)) code = static_cast<int>(*number);
    for (const Layout& layout : layouts()) {
        if (!hasName(layout, name, code)) continue;
        const bool backwards = sameText(name, codeText(PX_FOURCC_422P)) || code == PX_FOURCC_422P;
        if (backwards && role == Role::Destination) fail("{} is a source only; the destination is p422", name);
        return layout;
    }
    fail("'{}' is no layout; 'fikleipa formats' lists them", name);
}

const Layout& layoutNamed(std::string_view name) {
    return *std::find_if(layouts().begin(), layouts().end(), [&](const Layout& each) { return each.name == name; });
}

std::size_t Geometry::bytes() const {
    std::size_t sum = 0;
    for (const PlaneRows& plane : planes) sum += plane.pitch * plane.rows;
    return sum;
}

bool Geometry::isTight() const {
    return std::all_of(planes.begin(), planes.end(),
                       [](const PlaneRows& plane) { return plane.pitch == plane.rowBytes; });
}

Geometry frameGeometry(const Layout& layout, Size size, std::optional<std::uint32_t> pitch) {
    checkSize(layout, size);
    Geometry geometry;
    std::uint64_t bytes = 0;
    for (const PlaneShape& plane : layout.planes) {
        const std::uint64_t rowBytes = std::uint64_t{roundedUp(size.width, plane.pixels)} * plane.bytes;
        const std::uint64_t planeBytes = pitch ? planePitch(layout, plane, *pitch) : rowBytes;
        const std::uint32_t rows = roundedUp(size.height, plane.rows);
        if (planeBytes < rowBytes)
            fail("a pitch of {} bytes is too small: a row of {} pixels of {} takes {}", *pitch, size.width, layout.name,
                 rowBytes);
        // Rows beyond the limit are refused before they can wrap the sum.
        if (planeBytes > kFrameLimit || (bytes += planeBytes * rows) > kFrameLimit)
            fail("{}x{} is too large: a frame of {} is to stay below 4 GiB", size.width, size.height, layout.name);
        geometry.planes.push_back({rowBytes, planeBytes, rows});
    }
    return geometry;
}

} // namespace fikleipa::tool
