#include "simd/v210.h"

#include "simd/apart.h"
#include "simd/unaligned.h"

#include <algorithm>

namespace fikleipa::simd {
namespace {

// How far a row's samples are apart, in samples, and whether a chroma sample is written for each pixel of its pair.
struct Steps {
    unsigned luma, chroma;
    bool twice = false;
};
constexpr Steps kPacked{2, 4};
constexpr Steps kPlanar{1, 1};
constexpr Steps kPlanar444{1, 2, true};
constexpr Steps kEveryOther{1, 2}; // chroma interleaved with what is not looked at

// What a sample of a row is, and how it becomes a component and the other way round.
template <class Sample>
struct Samples {
    static constexpr unsigned kBytes = sizeof(Sample);
    static unsigned word(unsigned low, unsigned middle, unsigned high) { return low | middle << 10 | high << 20; }
};

struct Truncated8 : Samples<std::uint8_t> {
    static unsigned load(const std::uint8_t* src) { return unsigned{*src} << 2; }
    static void store(std::uint8_t* dst, unsigned component) { *dst = static_cast<std::uint8_t>(component >> 2); }
};

template <Justify kJustify>
struct Justified16 : Samples<std::uint16_t> {
    static void store(std::uint8_t* dst, unsigned component) {
        storeWord<std::uint16_t>(dst, kJustify == Justify::Left ? component << 6 : component);
    }
};

template <Reduce kReduce>
struct Reduced16 : Samples<std::uint16_t> {
    static unsigned load(const std::uint8_t* src) {
        const unsigned sample = loadWord<std::uint16_t>(src);
        if constexpr (kReduce == Reduce::From16) return sample >> 6;
        return kReduce == Reduce::Low10 ? sample & 0x3FF : (sample & 0xFFC) >> 2;
    }
};

template <>
struct Reduced16<Reduce::From16Unmasked> : Samples<std::uint16_t> {
    static unsigned load(const std::uint8_t* src) { return loadWord<std::uint16_t>(src); }
    static unsigned word(unsigned low, unsigned middle, unsigned high) { return low >> 6 | middle << 4 | high << 14; }
};

// A group's components from the lowest bits on: Cb0 Y0 Cr0 Y1 Cb1 and so on, the order of UYVY.
using Components = std::array<unsigned, 12>;

Components loadGroup(const std::uint8_t* src) {
    Components c{};
    for (unsigned i = 0; i < 4; ++i) {
        const auto word = loadWord<std::uint32_t>(src + 4 * i);
        c[3 * i] = word & 0x3FF;
        c[3 * i + 1] = word >> 10 & 0x3FF;
        c[3 * i + 2] = word >> 20 & 0x3FF;
    }
    return c;
}

template <class Sample, Steps kSteps>
void unpack(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, std::size_t groups) {
    constexpr std::size_t kLuma = kSteps.luma * Sample::kBytes;
    constexpr std::size_t kChroma = kSteps.chroma * Sample::kBytes;
    for (; groups != 0; --groups) {
        const Components c = loadGroup(src);
        for (unsigned i = 0; i < 6; ++i) Sample::store(y + i * kLuma, c[2 * i + 1]);
        for (unsigned i = 0; i < 3; ++i) {
            Sample::store(cb + i * kChroma, c[4 * i]);
            Sample::store(cr + i * kChroma, c[4 * i + 2]);
            if constexpr (kSteps.twice) {
                Sample::store(cb + i * kChroma + Sample::kBytes, c[4 * i]);
                Sample::store(cr + i * kChroma + Sample::kBytes, c[4 * i + 2]);
            }
        }
        src += kV210GroupBytes;
        y += 6 * kLuma;
        cb += 3 * kChroma;
        cr += 3 * kChroma;
    }
}

template <class Sample, Steps kSteps>
void pack(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
          std::size_t groups) {
    constexpr std::size_t kLuma = kSteps.luma * Sample::kBytes;
    constexpr std::size_t kChroma = kSteps.chroma * Sample::kBytes;
    for (; groups != 0; --groups) {
        Components c{};
        for (unsigned i = 0; i < 6; ++i) c[2 * i + 1] = Sample::load(y + i * kLuma);
        for (unsigned i = 0; i < 3; ++i) {
            c[4 * i] = Sample::load(cb + i * kChroma);
            c[4 * i + 2] = Sample::load(cr + i * kChroma);
        }
        for (unsigned i = 0; i < 4; ++i) {
            storeWord<std::uint32_t>(dst + 4 * i, Sample::word(c[3 * i], c[3 * i + 1], c[3 * i + 2]));
        }
        dst += kV210GroupBytes;
        y += 6 * kLuma;
        cb += 3 * kChroma;
        cr += 3 * kChroma;
    }
}

void unpackUyvy(std::uint8_t* dst, const std::uint8_t* src, std::size_t pairs) {
    for (std::size_t done = 0; done < pairs; done += 3) {
        const Components c = loadGroup(src);
        std::uint8_t bytes[12];
        std::transform(c.begin(), c.end(), bytes, [](unsigned component) {
            return static_cast<std::uint8_t>(std::min(255U, (component + 2) >> 2));
        });
        const std::size_t count = 4 * std::min<std::size_t>(3, pairs - done);
        std::copy_n(bytes, count, dst);
        src += kV210GroupBytes;
        dst += count;
    }
}

// 16-bit samples to the bytes Cb Y0 Cr Y1, by their bits from kShift on.
template <unsigned kShift, Steps kSteps>
void toUyvy(std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb, const std::uint8_t* cr,
            std::size_t pairs) {
    const auto byteOf = [](const std::uint8_t* sample) {
        return static_cast<std::uint8_t>(loadWord<std::uint16_t>(sample) >> kShift);
    };
    for (std::size_t i = 0; i < pairs; ++i) {
        dst[4 * i] = byteOf(cb + 2 * i * kSteps.chroma);
        dst[4 * i + 1] = byteOf(y + 4 * i);
        dst[4 * i + 2] = byteOf(cr + 2 * i * kSteps.chroma);
        dst[4 * i + 3] = byteOf(y + 4 * i + 2);
    }
}

// The bytes Cb Y0 Cr Y1 to 16-bit samples, shifted left by kShift.
template <unsigned kShift, Steps kSteps>
void fromUyvy(std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src, std::size_t pairs) {
    const auto put = [](std::uint8_t* sample, std::uint8_t byte) {
        storeWord<std::uint16_t>(sample, unsigned{byte} << kShift);
    };
    for (std::size_t i = 0; i < pairs; ++i) {
        put(cb + 2 * i * kSteps.chroma, src[4 * i]);
        put(y + 4 * i, src[4 * i + 1]);
        put(cr + 2 * i * kSteps.chroma, src[4 * i + 2]);
        put(y + 4 * i + 2, src[4 * i + 3]);
        if constexpr (kSteps.twice) {
            put(cb + 2 * i * kSteps.chroma + 2, src[4 * i]);
            put(cr + 2 * i * kSteps.chroma + 2, src[4 * i + 2]);
        }
    }
}

void average16(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples) {
    for (std::size_t i = 0; i < 2 * samples; i += 2) {
        const unsigned sum = unsigned{loadWord<std::uint16_t>(a + i)} + loadWord<std::uint16_t>(b + i);
        storeWord<std::uint16_t>(dst + i, sum >> 1);
    }
}

template <Justify kJustify>
constexpr std::array<UnpackKernel, kSamples16> kUnpack16{unpack<Justified16<kJustify>, kPacked>,
                                                         unpack<Justified16<kJustify>, kPlanar>,
                                                         unpack<Justified16<kJustify>, kPlanar444>};

template <Reduce kReduce>
constexpr std::array<PackKernel, kChromas> kPack16{
    pack<Reduced16<kReduce>, kPlanar>, pack<Reduced16<kReduce>, kEveryOther>, pack<Reduced16<kReduce>, kEveryOther>};

constexpr V210Kernels portableKernels() {
    constexpr UnpackKernel kUnpackPacked = unpack<Truncated8, kPacked>;
    constexpr PackKernel kPackPacked = pack<Truncated8, kPacked>;
    return {{kUnpackPacked, kUnpackPacked, kUnpackPacked, kUnpackPacked, unpack<Truncated8, kPlanar>},
            unpackUyvy,
            {kUnpack16<Justify::Right>, kUnpack16<Justify::Left>},
            {kPackPacked, kPackPacked, kPackPacked, kPackPacked, pack<Truncated8, kPlanar>},
            {kPack16<Reduce::Low10>, kPack16<Reduce::From12>, kPack16<Reduce::From16>, kPack16<Reduce::From16Unmasked>},
            {kPack16<Reduce::Low10>, kPack16<Reduce::From12>, kPack16<Reduce::From16>, kPack16<Reduce::From16Unmasked>},
            toUyvy<2, kPlanar>,
            toUyvy<2, kPlanar>,
            {toUyvy<8, kPlanar>, toUyvy<8, kEveryOther>, toUyvy<8, kEveryOther>},
            fromUyvy<8, kPlanar>,
            fromUyvy<2, kPlanar444>,
            average16};
}

} // namespace
} // namespace fikleipa::simd

#define FIKLEIPA_KERNELS "simd/x86/v210.inl.h"
#include "simd/each_level.h"
#include "simd/overwrite.inl.h"

namespace fikleipa::simd {

V210Kernels v210Kernels(Level level) {
    return overwritten(portableKernels(), level);
}

} // namespace fikleipa::simd
