#include "conversions.h"

#include "error.h"
#include "frame_buffer.h"

#include <algorithm>
#include <cstring>

namespace fikleipa::tool {
namespace {

constexpr unsigned int kRefused = 0xFFFFFFFF;

// With room, rows have at least one group of pixels to spare and a length that is a multiple of two.
Geometry placedFrame(const Layout& layout, Size size, bool withRoom) {
    if (!withRoom) return frameGeometry(layout, size);
    constexpr std::uint32_t kTwoGroups = 12;
    const std::uint32_t width = (size.width / kTwoGroups + 2) * kTwoGroups;
    return frameGeometry(layout, size, frameGeometry(layout, {width, size.height}).pitch());
}

std::uint32_t roundedUp(std::uint32_t value, std::uint32_t multiple) {
    return dividedUp(value, multiple) * multiple;
}

// Fills what an enlarged frame has more than the real one, whose geometry is `real`.
void repeatEdges(const PlacedFrame& frame, const Geometry& real, const Layout& layout) {
    for (std::size_t i = 0; i < real.planes.size(); ++i) {
        const PlaneRows& plane = frame.geometry.planes[i];
        const PlaneRows& inner = real.planes[i];
        for (std::size_t y = 0; y < plane.rows; ++y) {
            unsigned char* row = frame.plane(i) + y * plane.pitch;
            if (y >= inner.rows) std::memcpy(row, row - plane.pitch, inner.rowBytes);
            for (std::size_t at = inner.rowBytes; at < plane.rowBytes; ++at) row[at] = row[at - layout.planes[i].bytes];
        }
    }
}

void transcode(const Conversion& conversion, const Task& task) {
    const unsigned int result =
        cycbcr_transcode(task.dst.data, task.src.data, task.size.width, task.size.height, task.dst.pitch(),
                         task.src.pitch(), task.colour.matrix, task.colour.rgbType,
                         layoutNamed(conversion.to).codes.front(), layoutNamed(conversion.from).codes.front());
    if (result == kRefused) fail("the library refused to convert {} to {}", conversion.from, conversion.to);
}

// Without alpha an order is that of its colours. Not all converters see it so.
PXYCBCRRgbType orderOfColours(PXYCBCRRgbType type) {
    constexpr unsigned int kAlphaFirst = 1;
    return static_cast<PXYCBCRRgbType>(type & ~kAlphaFirst);
}

} // namespace

const Conversion* conversionBetween(std::string_view from, std::string_view to) {
    const auto table = conversions();
    const auto found = std::find_if(table.begin(), table.end(),
                                    [&](const Conversion& each) { return each.from == from && each.to == to; });
    return found != table.end() ? &*found : nullptr;
}

const Conversion& findConversion(const Layout& from, const Layout& to) {
    const Conversion* found = conversionBetween(from.name, to.name);
    if (found == nullptr)
        fail("{} to {} is not converted; 'fikleipa formats' lists the pairs that are", from.name, to.name);
    return *found;
}

const Layout& stepToPicture(const Layout& from) {
    const bool deep = from.format.bits > 8;
    for (const std::string_view to : {"rgb48", "v210"}) {
        if (deep && to != from.name && conversionBetween(from.name, to) != nullptr) return layoutNamed(to);
    }
    return layoutNamed("rgb32");
}

FrameConverter::FrameConverter(const Layout& from, const Layout& to, Size size, ColourOptions colour)
    : size_(size), colour_(colour) {
    const Conversion& conversion = findConversion(from, to);
    if (conversion.via.empty()) {
        addStep(conversion);
    } else {
        addStep(findConversion(from, layoutNamed(conversion.via)));
        addStep(findConversion(layoutNamed(conversion.via), to));
    }
    if (from.isRgb() && !from.hasAlpha()) colour_.rgbType = orderOfColours(colour_.rgbType);
}

void FrameConverter::addStep(const Conversion& conversion) {
    const Layout& from = layoutNamed(conversion.from);
    const Layout& to = layoutNamed(conversion.to);
    const Size enlarged{roundedUp(size_.width, conversion.multiple.width),
                        roundedUp(size_.height, conversion.multiple.height)};
    steps_.push_back({conversion, from, to, enlarged, placedFrame(from, enlarged, conversion.room == Room::Source),
                      placedFrame(to, enlarged, conversion.room == Room::Destination)});
}

void FrameConverter::convert(unsigned char* dst, unsigned char* src) const {
    if (steps_.size() == 1) {
        convert(steps_.front(), dst, src);
        return;
    }
    // Packed rows lie the same for both steps, whatever follows them.
    const FrameBuffer between(steps_.front().destination.bytes());
    convert(steps_.front(), between.data(), src);
    convert(steps_.back(), dst, between.data());
}

void FrameConverter::convert(const Step& step, unsigned char* dst, unsigned char* src) const {
    const Task task{{dst, step.destination}, {src, step.source}, step.enlarged, colour_};
    if (step.enlarged != size_) repeatEdges(task.src, frameGeometry(step.from, size_), step.from);
    if (step.conversion.function != nullptr) {
        step.conversion.function(task);
    } else {
        transcode(step.conversion, task);
    }
    for (std::uint32_t y = 0; step.to.isGrouped() && y < size_.height; ++y)
        clearRestOfGroup(dst + std::size_t{y} * step.destination.pitch(), size_.width);
}

} // namespace fikleipa::tool
