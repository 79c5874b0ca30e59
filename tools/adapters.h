// The library's converters, families of several signatures, as functions of one task.
#pragma once

#include "conversions.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace fikleipa::tool {

// A frame as it is, to change its container or its padding.
inline void copyFrame(const Task& t) {
    std::memcpy(t.dst.data, t.src.data, t.dst.geometry.bytes());
}

template <auto kConvert>
void wholeFrame(const Task& t) {
    kConvert(t.dst.data, t.src.data, t.size.width, t.size.height, t.dst.pitch(), t.src.pitch());
}

// To RGB or from it.
template <auto kConvert>
void wholeFrameByMatrix(const Task& t) {
    kConvert(t.dst.data, t.src.data, t.size.width, t.size.height, t.dst.pitch(), t.src.pitch(), t.colour.matrix,
             t.colour.rgbType);
}

template <auto kConvert, unsigned int kBits>
void wholeFrameOfBits(const Task& t) {
    kConvert(t.dst.data, t.src.data, t.size.width, t.size.height, t.dst.pitch(), t.src.pitch(), t.colour.matrix,
             t.colour.rgbType, kBits);
}

template <auto kConvert>
void fromPlanes(const Task& t) {
    kConvert(t.dst.data, t.src.plane(0), t.src.plane(1), t.src.plane(2), t.size.width, t.size.height, t.dst.pitch(),
             t.src.pitch());
}

// The same of 4:2:2, for 4:2:0: a row at a time, with the chroma that it shares with another. The converter must be one
// that splits no frame: of a single row a split may leave all out.
template <auto kConvert>
void fromSharedChroma(const Task& t) {
    for (std::uint32_t y = 0; y < t.size.height; ++y) {
        const auto row = [&](std::size_t plane, std::uint32_t index) {
            return t.src.plane(plane) + std::size_t{index} * t.src.pitch(plane);
        };
        kConvert(t.dst.data + std::size_t{y} * t.dst.pitch(), row(0, y), row(1, y / 2), row(2, y / 2), t.size.width, 1,
                 t.dst.pitch(), t.src.pitch());
    }
}

template <auto kConvert>
void toPlanes(const Task& t) {
    kConvert(t.dst.plane(0), t.dst.plane(1), t.dst.plane(2), t.src.data, t.size.width, t.size.height, t.dst.pitch(0),
             t.dst.pitch(1), t.src.pitch());
}

inline bool halvesChromaRows(const Geometry& planes) {
    return planes.planes[1].rows < planes.planes[0].rows;
}

// Asks for tight planes, behind whose rows nothing is written.
template <auto kConvert>
void toPlanesByFlag(const Task& t) {
    constexpr unsigned char kTight = 1;
    kConvert(t.dst.plane(0), t.dst.plane(1), t.dst.plane(2), t.src.data, t.size.width, t.size.height, t.dst.pitch(),
             t.src.pitch(), halvesChromaRows(t.dst.geometry) ? 1 : 0, kTight);
}

// 4:2:0 of 16-bit words with chroma in one plane or two. The converters expect chroma rows as far apart as luma rows;
// two rows at a time, that makes no difference.
template <auto kConvert>
void fromHalfPlanes(const Task& t) {
    constexpr unsigned int kInterleaved = 2;
    const bool interleaved = t.src.geometry.planes.size() == 2;
    for (std::uint32_t row = 0; row < t.size.height; row += 2) {
        unsigned char* cb = t.src.plane(1) + std::size_t{row / 2} * t.src.pitch(1);
        unsigned char* cr = interleaved ? cb + 2 : t.src.plane(2) + std::size_t{row / 2} * t.src.pitch(2);
        kConvert(t.dst.data + std::size_t{row} * t.dst.pitch(), t.src.data + std::size_t{row} * t.src.pitch(), cb, cr,
                 t.size.width, 2, t.dst.pitch(), t.src.pitch(), interleaved ? kInterleaved : 0);
    }
}

// Samples go into v210 unmasked, so the bits below their ten are cleared first.
inline void halfPlanesToV210(const Task& t) {
    const std::size_t bytes = t.src.geometry.bytes();
    for (std::size_t i = 0; i < bytes; i += 2) t.src.data[i] &= 0xC0;
    fromHalfPlanes<cycbcr_yuv420p16_to_012v>(t);
}

template <auto kConvert, unsigned int kBits>
void planesToRgb(const Task& t) {
    const auto words = [&](std::size_t plane) { return reinterpret_cast<unsigned short*>(t.src.plane(plane)); };
    constexpr int kPlanar = 1;
    kConvert(t.dst.data, words(0), words(1), words(2), t.size.width, t.size.height, t.dst.pitch(), t.src.pitch(0),
             t.colour.matrix, t.colour.rgbType, halvesChromaRows(t.src.geometry) ? 0 : 1, kPlanar, kBits,
             t.src.pitch(1));
}

// The last pixel of a row takes part of its chroma from the pixel behind it, so every row is given one with the row's
// own last chroma.
template <auto kConvert, unsigned int kBits>
void v210ToRgb(const Task& t) {
    const auto [width, height] = t.size;
    const bool bottomUp = (t.colour.rgbType & PX_RGB_BOTTOM_UP) != 0;
    constexpr std::size_t kGroupBytes = 16;
    std::vector<unsigned char> row(t.src.pitch() + kGroupBytes);
    for (std::uint32_t y = 0; y < height; ++y) {
        std::memcpy(row.data(), t.src.data + std::size_t{y} * t.src.pitch(), t.src.geometry.planes.front().rowBytes);
        repeatLastChroma(row.data(), width);
        unsigned char* dst = t.dst.data + std::size_t{bottomUp ? height - 1 - y : y} * t.dst.pitch();
        kConvert(dst, row.data(), width, 1, t.dst.pitch(), t.src.pitch(), t.colour.matrix, t.colour.rgbType, kBits);
    }
}

// The pitch of luma comes first, but into 4:4:4, whose pitches are the same.
template <auto kConvert, unsigned int kBits>
void rgbToPlanes(const Task& t) {
    kConvert(t.dst.plane(0), t.dst.plane(1), t.dst.plane(2), t.src.data, t.size.width, t.size.height, t.dst.pitch(0),
             t.dst.pitch(1), t.src.pitch(), t.colour.matrix, t.colour.rgbType, kBits);
}

inline void tenBitRgbToPlanes16(const Task& t) {
    cycbcr_RGB10_to_YCbCrPlanar16(t.dst.plane(0), t.dst.plane(1), t.dst.plane(2), t.src.data, t.size.width,
                                  t.size.height, t.dst.pitch(), t.src.pitch(), t.colour.matrix, t.colour.rgbType);
}

// Where black is 16 of 255 the converter makes it 64 of 65535, as if there were ten bits.
template <unsigned int kBits>
void deepRgbToPlanes16(const Task& t) {
    cycbcr_RGB64_to_YCbCrPlanar16(t.dst.plane(0), t.dst.plane(1), t.dst.plane(2), t.src.data, t.size.width,
                                  t.size.height, t.dst.pitch(), t.src.pitch(), t.colour.matrix, t.colour.rgbType,
                                  kBits);
    const auto row = static_cast<unsigned int>(t.colour.matrix);
    if (row <= PX_MATRIX_9 && row % 2 != 0) return; // black is 0
    constexpr unsigned int kLift = (64U << 6) - 64;
    const std::size_t bytes = t.dst.geometry.start(1);
    for (std::size_t i = 0; i < bytes; i += sizeof(std::uint16_t)) {
        std::uint16_t luma = 0;
        std::memcpy(&luma, t.dst.data + i, sizeof luma);
        luma = static_cast<std::uint16_t>(std::min(luma + kLift, 0xFFFFU));
        std::memcpy(t.dst.data + i, &luma, sizeof luma);
    }
}

} // namespace fikleipa::tool
