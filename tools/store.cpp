#include "store.h"

#include "pattern.h"

#include <algorithm>
#include <cmath>

namespace fikleipa::tool {
namespace {

// Luma from 0 to 1, colour differences from -0.5 to 0.5.
struct YCbCr {
    double y, cb, cr;
};

YCbCr toYCbCr(const Rgb& colour, const LumaWeights& weights) {
    const double green = 1 - weights.red - weights.blue;
    const double y = weights.red * colour.red + green * colour.green + weights.blue * colour.blue;
    return {y, (colour.blue - y) / (2 * (1 - weights.blue)), (colour.red - y) / (2 * (1 - weights.red))};
}

unsigned char quantised(double value) {
    return static_cast<unsigned char>(std::lround(std::clamp(value, 0.0, 255.0)));
}

unsigned char lumaByte(double y, bool fullRange) {
    return quantised(fullRange ? 255 * y : 16 + 219 * y);
}

unsigned char chromaByte(double c, bool fullRange) {
    return quantised(128 + (fullRange ? 255 : 224) * c);
}

std::size_t rowStart(std::size_t row, const PlaneRows& plane, bool bottomUp) {
    return (bottomUp ? plane.rows - 1 - row : row) * plane.pitch;
}

} // namespace

PatternStore::PatternStore(const Layout& layout, Size size, ColourOptions colour)
    : layout_(layout), size_(size), geometry_(frameGeometry(layout, size)), pixels_(layout.rgbBits, colour.rgbType),
      weights_(drawingWeights(colour.matrix)) {
    std::size_t start = 0;
    for (const PlaneRows& plane : geometry_.planes) {
        planeStarts_.push_back(start);
        start += plane.pitch * plane.rows;
    }
}

void PatternStore::draw(std::uint64_t frame, unsigned char* dst) const {
    const Pattern pattern(size_, frame);
    Band band{0, {layout_.heightMultiple(), std::vector<Rgb>(size_.width)}};
    for (; band.top() < size_.height; ++band.index) {
        auto y = static_cast<std::uint32_t>(band.top());
        for (std::vector<Rgb>& row : band.rows) pattern.paintRow(y++, row);
        if (layout_.isRgb()) {
            storeRgb(band, dst);
        } else {
            storeYCbCr(band, dst);
        }
    }
}

void PatternStore::storeRgb(const Band& band, unsigned char* dst) const {
    unsigned char* row = dst + rowStart(band.index, geometry_.planes.front(), pixels_.bottomUp());
    for (std::size_t x = 0; x < size_.width; ++x) pixels_.write(row, x, band.rows.front()[x]);
}

void PatternStore::storeYCbCr(const Band& band, unsigned char* dst) const {
    const auto target = [&](std::size_t component, std::size_t row) {
        const SamplePlace& place = layout_.samples[component];
        return dst + planeStarts_[place.plane] + rowStart(row, geometry_.planes[place.plane], layout_.bottomUp) +
               place.offset;
    };
    const auto [lumaPlace, cbPlace, crPlace] = layout_.samples;
    const bool fullRange = weights_.fullRange;
    unsigned char* cb = target(1, band.index);
    unsigned char* cr = target(2, band.index);
    // Readers repeat a chroma sample for its pixels, so it is the mean of them.
    for (std::size_t x = 0; x < size_.width; x += 2) {
        YCbCr sum{};
        for (std::size_t row = 0; row < band.rows.size(); ++row) {
            unsigned char* luma = target(0, band.top() + row);
            for (std::size_t pixel = x; pixel < x + 2; ++pixel) {
                const YCbCr each = toYCbCr(band.rows[row][pixel], weights_);
                luma[pixel * lumaPlace.step] = lumaByte(each.y, fullRange);
                sum.cb += each.cb;
                sum.cr += each.cr;
            }
        }
        const auto pixels = static_cast<double>(2 * band.rows.size());
        cb[x / 2 * cbPlace.step] = chromaByte(sum.cb / pixels, fullRange);
        cr[x / 2 * crPlace.step] = chromaByte(sum.cr / pixels, fullRange);
    }
}

std::vector<RgbBytes> loadPicture(const Layout& layout, Size size, PXYCBCRRgbType rgbType, const unsigned char* frame) {
    const RgbPixels pixels(layout.rgbBits, rgbType);
    const std::size_t pitch = frameGeometry(layout, size).pitch();
    std::vector<RgbBytes> picture;
    picture.reserve(std::size_t{size.width} * size.height);
    for (std::size_t y = 0; y < size.height; ++y) {
        const unsigned char* row = frame + (pixels.bottomUp() ? size.height - 1 - y : y) * pitch;
        for (std::size_t x = 0; x < size.width; ++x) picture.push_back(pixels.read(row, x));
    }
    return picture;
}

} // namespace fikleipa::tool
