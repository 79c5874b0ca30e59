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
constexpr PlaneShape kDeepFull{2, 1, 1};
constexpr PlaneShape kDeepChroma420{2, 2, 2};
constexpr PlaneShape kDeepChroma422{2, 2, 1};
constexpr PlaneShape kDeepChromaPairs420{4, 2, 2};
constexpr PlaneShape kGroups{16, 6, 1};

constexpr std::array<SamplePlace, 3> kOnePlaneEach{{{0, 0, 1}, {1, 0, 1}, {2, 0, 1}}};

// Three planes of 16-bit words with chroma of that shape.
Layout deepPlanar(std::string_view name, std::string_view description, std::string_view alias, PlaneShape chroma,
                  unsigned int bits) {
    return {.name = name,
            .description = description,
            .aliases = {alias},
            .planes = {kDeepFull, chroma, chroma},
            .samples = kOnePlaneEach,
            .format = {Storage::Words, bits}};
}

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
         .samples = kOnePlaneEach},
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
         .samples = kOnePlaneEach},
        {.name = "nv12",
         .description = "8-bit 4:2:0, Y then one plane of Cb Cr pairs",
         .planes = {kLuma, kChromaPairs420},
         .samples = {{{0, 0, 1}, {1, 0, 2}, {1, 1, 2}}}},
        {.name = "v210",
         .description = "packed 10-bit 4:2:2, six pixels in 16 bytes, rows of a multiple of 128 bytes",
         .codes = {PX_FOURCC_v210, PX_FOURCC_012v},
         .planes = {kGroups},
         .samples = {{{0, 1, 2}, {0, 0, 4}, {0, 2, 4}}},
         .format = {Storage::Thirds, 10},
         .pitchMultiple = 128},
        deepPlanar("yuv420p10", "planar 10-bit 4:2:0 in 16-bit words", "yuv420p10le", kDeepChroma420, 10),
        deepPlanar("yuv422p10", "planar 10-bit 4:2:2 in 16-bit words", "yuv422p10le", kDeepChroma422, 10),
        deepPlanar("yuv444p10", "planar 10-bit 4:4:4 in 16-bit words", "yuv444p10le", kDeepFull, 10),
        deepPlanar("yuv420p12", "planar 12-bit 4:2:0 in 16-bit words", "yuv420p12le", kDeepChroma420, 12),
        deepPlanar("yuv422p12", "planar 12-bit 4:2:2 in 16-bit words", "yuv422p12le", kDeepChroma422, 12),
        deepPlanar("yuv444p12", "planar 12-bit 4:4:4 in 16-bit words", "yuv444p12le", kDeepFull, 12),
        deepPlanar("yuv420p16", "planar 16-bit 4:2:0", "yuv420p16le", kDeepChroma420, 16),
        deepPlanar("yuv422p16", "planar 16-bit 4:2:2", "yuv422p16le", kDeepChroma422, 16),
        {.name = "p010",
         .description = "10-bit 4:2:0 in the high bits of 16-bit words, Y then one plane of Cb Cr pairs",
         .aliases = {"p010le"},
         .planes = {kDeepFull, kDeepChromaPairs420},
         .samples = {{{0, 0, 1}, {1, 0, 2}, {1, 1, 2}}},
         .format = {Storage::Words, 10, 6}},
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
        {.name = "rgb64", .description = "RGB with alpha, 16 bits each", .planes = {{8, 1, 1}}, .rgbBits = 64},
        {.name = "rgb48", .description = "RGB, 16 bits each", .planes = {{6, 1, 1}}, .rgbBits = 48},
        {.name = "rgb30",
         .description = "RGB, 32-bit words of 10 bits each at 2, 12 (G) and 22",
         .planes = {{4, 1, 1}},
         .rgbBits = 30},
        {.name = "rgb10",
         .description = "RGB, 32-bit words of 10 bits each at 4 (B), 12 (G) and 20 (R), further bits below them",
         .planes = {{4, 1, 1}},
         .rgbBits = 30,
         .fieldsOverlap = true},
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
    if (size.width % layout.chromaWidth() != 0)
        fail("the width {} is odd, which {} cannot be", size.width, layout.name);
    if (size.height % layout.chromaHeight() != 0)
        fail("the height {} is odd, which {} cannot be", size.height, layout.name);
}

} // namespace

std::uint32_t Layout::chromaWidth() const {
    return std::any_of(planes.begin(), planes.end(), [](const PlaneShape& plane) { return plane.pixels > 1; }) ? 2 : 1;
}

std::uint32_t Layout::chromaHeight() const {
    return std::any_of(planes.begin(), planes.end(), [](const PlaneShape& plane) { return plane.rows > 1; }) ? 2 : 1;
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
    return start(planes.size());
}

std::size_t Geometry::start(std::size_t plane) const {
    std::size_t sum = 0;
    for (std::size_t i = 0; i < plane; ++i) sum += planes[i].pitch * planes[i].rows;
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
        const std::uint64_t rowBytes = std::uint64_t{dividedUp(size.width, plane.pixels)} * plane.bytes;
        const std::uint64_t usual = dividedUp<std::uint64_t>(rowBytes, layout.pitchMultiple) * layout.pitchMultiple;
        const std::uint64_t planeBytes = pitch ? planePitch(layout, plane, *pitch) : usual;
        const std::uint32_t rows = dividedUp(size.height, plane.rows);
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
