// One pixel of every packed RGB layout, as the portable kernels write it.
#pragma once

#include "simd/to_rgb8.h"
#include "simd/unaligned.h"

#include <array>
#include <cstdint>

namespace fikleipa::simd {

struct Pixel {
    int r, g, b;
};

// Where the components stand in a pixel, in the order of Rgb8 and Rgb16. Three-component pixels have no `a`.
struct Order {
    unsigned r, g, b, a;
};
inline constexpr std::array kOrders{Order{2, 1, 0, 3}, Order{3, 2, 1, 0}, Order{0, 1, 2, 3},
                                    Order{1, 2, 3, 0}, Order{2, 1, 0, 3}, Order{0, 1, 2, 3}};

template <Rgb8 kFormat>
struct Packed8 {
    static constexpr unsigned kBytes = bytesPerPixel(kFormat);

    static void store(std::uint8_t* dst, Pixel p) {
        if constexpr (kBytes > 2) {
            constexpr Order kOrder = kOrders[static_cast<unsigned>(kFormat)];
            dst[kOrder.r] = static_cast<std::uint8_t>(p.r);
            dst[kOrder.g] = static_cast<std::uint8_t>(p.g);
            dst[kOrder.b] = static_cast<std::uint8_t>(p.b);
            if constexpr (kBytes == 4) dst[kOrder.a] = 255;
        } else {
            constexpr bool kBlueFirst = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Bgr555;
            constexpr bool k565 = kFormat == Rgb8::Bgr565 || kFormat == Rgb8::Rgb565;
            const auto first = static_cast<unsigned>(kBlueFirst ? p.b : p.r);
            const auto last = static_cast<unsigned>(kBlueFirst ? p.r : p.b);
            const auto g = static_cast<unsigned>(p.g);
            storeWord<std::uint16_t>(dst, k565 ? (first & 0xF8) << 8 | (g & 0xFC) << 3 | last >> 3
                                               : (first & 0xF8) << 7 | (g & 0xF8) << 2 | last >> 3);
        }
    }
};

template <Rgb16 kFormat>
struct Packed16 {
    static constexpr unsigned kBytes = bytesPerPixel(kFormat);

    static void store(std::uint8_t* dst, Pixel p) {
        constexpr Order kOrder = kOrders[static_cast<unsigned>(kFormat)];
        storeWord<std::uint16_t>(dst + 2 * kOrder.r, static_cast<unsigned>(p.r));
        storeWord<std::uint16_t>(dst + 2 * kOrder.g, static_cast<unsigned>(p.g));
        storeWord<std::uint16_t>(dst + 2 * kOrder.b, static_cast<unsigned>(p.b));
        if constexpr (kBytes == 8) storeWord<std::uint16_t>(dst + 2 * kOrder.a, 65535);
    }
};

} // namespace fikleipa::simd
