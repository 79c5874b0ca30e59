// The pixel layouts that the command reads, writes and draws. A layout is one row of the table in layouts.cpp.
#pragma once

#include "samples.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fikleipa::tool {

struct Size {
    std::uint32_t width = 0;
    std::uint32_t height = 0;

    bool operator==(const Size&) const = default;
};

// The rows of one plane: `bytes` for every `pixels` of the width, one row for every `rows` of the height.
struct PlaneShape {
    std::uint32_t bytes;
    std::uint32_t pixels;
    std::uint32_t rows;
};

// Where the samples of a component lie: every `step` samples from `offset` on, in each row of `plane`.
struct SamplePlace {
    std::size_t plane;
    std::size_t offset;
    std::size_t step;
};

struct Layout {
    std::string_view name; // as the command prints it
    std::string_view description;
    std::vector<int> codes = {};                // FourCCs, the one that the library is given first; empty for none
    std::vector<std::string_view> aliases = {}; // further names that people use
    std::vector<PlaneShape> planes;             // in the order of the file
    std::array<SamplePlace, 3> samples = {};    // Y, Cb, Cr; of YCbCr layouts
    SampleFormat format = {};                   // of YCbCr layouts
    std::uint32_t rgbBits = 0;                  // bits a pixel; of RGB layouts
    std::uint32_t pitchMultiple = 1;            // in bytes, of the pitch that is usual for the layout
    bool bottomUp = false;                      // the bottom row of the picture comes first
    bool fieldsOverlap = false;                 // components share bits, so that none can be told from the others

    bool isRgb() const { return rgbBits != 0; }
    bool hasAlpha() const { return rgbBits == 32 || rgbBits == 64; }
    bool isGrouped() const { return format.storage == Storage::Thirds; }

    // How many pixels share a sample of chroma.
    std::uint32_t chromaWidth() const;
    std::uint32_t chromaHeight() const;
};

const std::vector<Layout>& layouts();

// A FourCC as people write it: its four characters, or in hexadecimal where they cannot be printed.
std::string codeText(int code);

enum class Role { Source, Destination };

// The layout of that name, FourCC in any case, or code in hexadecimal. Fails for a name that is none.
const Layout& findLayout(std::string_view name, Role role);

// The layout whose own name is `name`.
const Layout& layoutNamed(std::string_view name);

template <typename Number>
Number dividedUp(Number value, Number divisor) {
    return value / divisor + (value % divisor != 0 ? 1 : 0);
}

struct PlaneRows {
    std::size_t rowBytes;
    std::size_t pitch;
    std::size_t rows;

    bool operator==(const PlaneRows&) const = default;
};

// A frame as it lies in memory or in a file: its planes follow one another.
struct Geometry {
    std::vector<PlaneRows> planes;

    bool operator==(const Geometry&) const = default;

    std::size_t bytes() const;
    std::size_t start(std::size_t plane) const;
    bool isTight() const;
    std::uint32_t pitch(std::size_t plane = 0) const { return static_cast<std::uint32_t>(planes[plane].pitch); }
};

// The frame of that layout and size, its first plane's rows `pitch` bytes apart, or as far as is usual for the layout
// where there is no pitch: without padding, but for v210. Fails for a size or a pitch that the layout cannot have.
Geometry frameGeometry(const Layout& layout, Size size, std::optional<std::uint32_t> pitch = {});

} // namespace fikleipa::tool
