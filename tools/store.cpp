#include "store.h"

#include "error.h"
#include "pattern.h"

#include <algorithm>
#include <cmath>
#include <cstring>

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

unsigned int quantised(double value, SampleFormat format) {
    return static_cast<unsigned int>(std::lround(std::clamp<double>(value, 0, format.highest())));
}

unsigned int lumaSample(double y, bool fullRange, SampleFormat format) {
    const double step = std::exp2(format.bits - 8);
    return quantised(fullRange ? format.highest() * y : (16 + 219 * y) * step, format);
}

unsigned int chromaSample(double c, bool fullRange, SampleFormat format) {
    const double step = std::exp2(format.bits - 8);
    return quantised(128 * step + (fullRange ? format.highest() : 224 * step) * c, format);
}

std::size_t rowStart(std::size_t row, const PlaneRows& plane, bool bottomUp) {
    return (bottomUp ? plane.rows - 1 - row : row) * plane.pitch;
}

} // namespace

PatternStore::PatternStore(const Layout& layout, Size size, ColourOptions colour)
    : layout_(layout), size_(size), geometry_(frameGeometry(layout, size)), pixels_(layout, colour.rgbType),
      weights_(drawingWeights(colour.matrix)) {
    if (layout.fieldsOverlap) fail("{} is not drawn: its fields overlap", layout.name);
}

void PatternStore::draw(std::uint64_t frame, unsigned char* dst) const {
    const Pattern pattern(size_, frame);
    Band band{0, {layout_.chromaHeight(), std::vector<Rgb>(size_.width)}};
    if (layout_.isGrouped()) std::memset(dst, 0, geometry_.bytes());
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
        const std::size_t plane = layout_.samples[component].plane;
        return dst + geometry_.start(plane) + rowStart(row, geometry_.planes[plane], layout_.bottomUp);
    };
    const auto put = [&](unsigned char* row, std::size_t component, std::size_t index, unsigned int value) {
        const SamplePlace& place = layout_.samples[component];
        writeSample(row, place.offset + index * place.step, layout_.format, value);
    };
    const bool fullRange = weights_.fullRange;
    const std::size_t across = layout_.chromaWidth();
    unsigned char* cb = target(1, band.index);
    unsigned char* cr = target(2, band.index);
    // Readers repeat a chroma sample for its pixels, so it is the mean of them.
    for (std::size_t k = 0; k * across < size_.width; ++k) {
        YCbCr sum{};
        for (std::size_t row = 0; row < band.rows.size(); ++row) {
            unsigned char* luma = target(0, band.top() + row);
            for (std::size_t pixel = k * across; pixel < (k + 1) * across; ++pixel) {
                const YCbCr each = toYCbCr(band.rows[row][pixel], weights_);
                put(luma, 0, pixel, lumaSample(each.y, fullRange, layout_.format));
                sum.cb += each.cb;
                sum.cr += each.cr;
            }
        }
        const auto pixels = static_cast<double>(across * band.rows.size());
        put(cb, 1, k, chromaSample(sum.cb / pixels, fullRange, layout_.format));
        put(cr, 2, k, chromaSample(sum.cr / pixels, fullRange, layout_.format));
    }
}

Picture loadPicture(const Layout& layout, Size size, PXYCBCRRgbType rgbType, const unsigned char* frame) {
    const RgbPixels pixels(layout, rgbType);
    const std::size_t pitch = frameGeometry(layout, size).pitch();
    Picture picture{size, pixels.sampleBits(), {}};
    picture.bytes.reserve(std::size_t{size.width} * size.height * 3 * picture.sampleBits / 8);
    for (std::size_t y = 0; y < size.height; ++y) {
        const unsigned char* row = frame + (pixels.bottomUp() ? size.height - 1 - y : y) * pitch;
        for (std::size_t x = 0; x < size.width; ++x) {
            const auto [red, green, blue] = pixels.read(row, x);
            for (const std::uint16_t sample : {red, green, blue}) {
                if (picture.sampleBits > 8) picture.bytes.push_back(static_cast<unsigned char>(sample >> 8));
                picture.bytes.push_back(static_cast<unsigned char>(sample));
            }
        }
    }
    return picture;
}

FrameBuffer storePicture(const Picture& picture, const Layout& layout, PXYCBCRRgbType rgbType) {
    if (layout.fieldsOverlap) fail("{} is no source: its fields overlap", layout.name);
    const RgbPixels pixels(layout, rgbType);
    const Geometry geometry = frameGeometry(layout, picture.size);
    FrameBuffer frame(geometry.bytes());
    const unsigned char* sample = picture.bytes.data();
    const auto next = [&] {
        const auto high = static_cast<float>(*sample++);
        return picture.sampleBits > 8 ? (high * 256 + static_cast<float>(*sample++)) / 65535 : high / 255;
    };
    for (std::size_t y = 0; y < picture.size.height; ++y) {
        unsigned char* row = frame.data() + rowStart(y, geometry.planes.front(), pixels.bottomUp());
        for (std::size_t x = 0; x < picture.size.width; ++x) {
            Rgb colour;
            for (float* component : {&colour.red, &colour.green, &colour.blue}) *component = next();
            pixels.write(row, x, colour);
        }
    }
    return frame;
}

} // namespace fikleipa::tool
