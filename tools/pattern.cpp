#include "pattern.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <string>

namespace fikleipa::tool {
namespace {

// Where the bands from the top end, as shares of the height.
constexpr float kBars75End = 0.36F;
constexpr float kBars100End = 0.44F;
constexpr float kLumaRampEnd = 0.51F;
constexpr float kHuesEnd = 0.64F;

constexpr float kPi = std::numbers::pi_v<float>;

// From the brightest to the darkest.
constexpr std::array<Rgb, 8> kBars{{
    {1, 1, 1},
    {1, 1, 0},
    {0, 1, 1},
    {0, 1, 0},
    {1, 0, 1},
    {1, 0, 0},
    {0, 0, 1},
    {0, 0, 0},
}};

constexpr Rgb kBall{1.0F, 0.55F, 0.1F};
constexpr Rgb kBox{0.1F, 0.6F, 0.95F};
constexpr Rgb kDigit{0.95F, 0.95F, 0.95F};
constexpr Rgb kFloor{0.12F, 0.12F, 0.16F};
constexpr Rgb kGrid{0.28F, 0.28F, 0.34F};

// Three by five dots of every digit, rows from the top, the left dot highest.
constexpr std::array<std::array<unsigned int, 5>, 10> kDigits{{
    {7, 5, 5, 5, 7},
    {2, 6, 2, 2, 7},
    {7, 1, 7, 4, 7},
    {7, 1, 7, 1, 7},
    {5, 5, 7, 1, 1},
    {7, 4, 7, 1, 7},
    {7, 4, 7, 5, 7},
    {7, 1, 1, 1, 1},
    {7, 5, 7, 5, 7},
    {7, 5, 7, 1, 7},
}};
constexpr float kDigitPitch = 4; // in dots, as the next two
constexpr float kDigitHeight = 5;
constexpr float kDotsPerScale = 28;

Rgb scaled(const Rgb& colour, float factor) {
    return {colour.red * factor, colour.green * factor, colour.blue * factor};
}

Rgb mixed(const Rgb& a, const Rgb& b, float share) {
    return {a.red + (b.red - a.red) * share, a.green + (b.green - a.green) * share, a.blue + (b.blue - a.blue) * share};
}

// `x` from 0 to 1, which the last of many pixels may be rounded up to.
const Rgb& bar(float x) {
    return kBars[std::min(static_cast<std::size_t>(x * kBars.size()), kBars.size() - 1)];
}

// The full colour of that hue, 0 to 1 around the circle, mixed with middle grey.
Rgb hue(float angle, float saturation) {
    const auto component = [&](float offset) {
        const float position = std::fmod(angle + offset, 1.0F) * 6;
        return std::clamp(std::abs(position - 3) - 1, 0.0F, 1.0F);
    };
    const Rgb full{component(0), component(2.0F / 3), component(1.0F / 3)};
    return mixed({0.5F, 0.5F, 0.5F}, full, saturation);
}

// Runs from 0 to 1 and back, twice in `period` steps.
float bounce(std::uint64_t step, std::uint64_t period) {
    const float phase = static_cast<float>(step % period) / static_cast<float>(period);
    return 1 - std::abs(2 * phase - 1);
}

// 1 inside an edge, 0 outside, and in between within half a pixel of it.
float coverage(float distanceInside) {
    return std::clamp(distanceInside + 0.5F, 0.0F, 1.0F);
}

} // namespace

Pattern::Pattern(Size size, std::uint64_t frame)
    : size_(size), frame_(frame), top_(static_cast<std::uint32_t>(static_cast<float>(size.height) * kHuesEnd)),
      left_(size.width / 2), number_(std::to_string(frame)) {
    const auto width = static_cast<float>(size.width - left_);
    const auto height = static_cast<float>(size.height - top_);
    scale_ = std::min(width, height);
    const float radius = scale_ * 0.14F;
    ball_ = {radius + bounce(frame, 96) * (width - 2 * radius),
             height - radius - std::abs(std::sin(static_cast<float>(frame % 48) * kPi / 24)) * (height - 2 * radius)};
    box_ = {static_cast<float>(frame % 128) / 128 * width, height * 0.2F};
}

void Pattern::paintRow(std::uint32_t y, std::span<Rgb> row) const {
    const float down = (static_cast<float>(y) + 0.5F) / static_cast<float>(size_.height);
    for (std::uint32_t x = 0; x < size_.width; ++x) {
        const float across = (static_cast<float>(x) + 0.5F) / static_cast<float>(size_.width);
        if (y >= top_) {
            const Point at{static_cast<float>(x), static_cast<float>(y - top_)};
            row[x] = x < left_ ? zonePlate(at) : stage({at.x - static_cast<float>(left_), at.y});
        } else if (down < kBars75End) {
            row[x] = scaled(bar(across), 0.75F);
        } else if (down < kBars100End) {
            row[x] = bar(1 - across);
        } else if (down < kLumaRampEnd) {
            row[x] = {across, across, across};
        } else {
            row[x] = hue(across, (down - kLumaRampEnd) / (kHuesEnd - kLumaRampEnd));
        }
    }
}

// Rings that run outwards and reach half the sampling rate at the farther edges.
Rgb Pattern::zonePlate(Point at) const {
    const auto width = static_cast<float>(left_);
    const auto height = static_cast<float>(size_.height - top_);
    const float x = at.x + 0.5F - width / 2;
    const float y = at.y + 0.5F - height / 2;
    const float phase = static_cast<float>(frame_ % 32) / 16;
    const float grey = 0.5F + 0.5F * std::cos(kPi * ((x * x + y * y) / std::max(width, height) - phase));
    return {grey, grey, grey};
}

Rgb Pattern::stage(Point at) const {
    if (isInNumber(at)) return kDigit;
    const float cell = std::max(scale_ / 8, 2.0F);
    const bool onGrid = std::fmod(at.x, cell) < 1 || std::fmod(at.y, cell) < 1;
    Rgb colour = onGrid ? kGrid : kFloor;

    const float side = scale_ * 0.12F;
    const float inBox = std::min(side - std::abs(at.x + 0.5F - box_.x), side - std::abs(at.y + 0.5F - box_.y));
    colour = mixed(colour, kBox, coverage(inBox));

    const float x = at.x + 0.5F - ball_.x;
    const float y = at.y + 0.5F - ball_.y;
    return mixed(colour, kBall, coverage(scale_ * 0.14F - std::sqrt(x * x + y * y)));
}

bool Pattern::isInNumber(Point at) const {
    const float dot = std::max(std::floor(scale_ / kDotsPerScale), 1.0F);
    const float x = at.x / dot - 1;
    const float y = at.y / dot - 1;
    if (x < 0 || y < 0 || y >= kDigitHeight || x >= kDigitPitch * static_cast<float>(number_.size())) return false;
    const auto column = static_cast<std::size_t>(x) % static_cast<std::size_t>(kDigitPitch);
    const char digit = number_[static_cast<std::size_t>(x / kDigitPitch)];
    const unsigned int dots = kDigits[static_cast<std::size_t>(digit - '0')][static_cast<std::size_t>(y)];
    return (dots << column & 4) != 0;
}

} // namespace fikleipa::tool
