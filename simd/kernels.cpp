#include "simd/kernels.h"

#include <algorithm>

namespace fikleipa::simd {
namespace {

using Table = std::array<Kernels, kLevels.size()>;

Table makeTable() {
    Table table{};
    for (const Level level : kLevels) {
        // What hands out a level's kernels is compiled for that level, so it is not to be asked on a lesser processor.
        const Level served = std::min(level, bestLevel());
        table[static_cast<unsigned>(level)] = {
            swap16(served),       swap13(served),           swap13Of8(served),       toRgb8Kernels(served),
            v210Kernels(served),  toRgbDeepKernels(served), rgbWordsKernels(served), gatherWordsKernels(served),
            alphaKernels(served), planes8Kernels(served),   fromRgb8Kernels(served), fromRgbDeepKernels(served)};
    }
    return table;
}

const Table& table() {
    static const Table made = makeTable();
    return made;
}

// Made while the library is loaded, when there is no other thread in it: a fork amid it would leave the child waiting
// for the rest.
[[maybe_unused]] const Table& madeAtLoad = table();

// The lowest level that has the same function in the slot is the one that wrote it.
template <class Slot>
Level origin(Slot slot) {
    const auto same = [&](Level level) { return slot(kernelsAt(level)) == slot(kernels()); };
    return *std::find_if(kLevels.begin(), kLevels.end(), same);
}

struct Entry {
    const char* name;
    Level (*origin)();
};

template <Rgb8 kFormat>
Level toRgbOrigin() {
    // Every named source has its kernels from the same level.
    return origin([](const Kernels& k) { return k.rgb8.toRgb[0][static_cast<unsigned>(kFormat)]; });
}

template <Rgb8 kFormat>
Level pack8Origin() {
    return origin([](const Kernels& k) { return k.rgbWords.toRgb8[static_cast<unsigned>(kFormat)]; });
}

// The same level has the kernels for all ways to take chroma.
template <Rgb8 kFormat>
Level deep8Origin() {
    return origin([](const Kernels& k) { return k.rgbDeep.of(OddPixel::Own).toRgb8[static_cast<unsigned>(kFormat)]; });
}

template <Rgb16 kFormat>
Level deep16Origin() {
    return origin([](const Kernels& k) { return k.rgbDeep.of(OddPixel::Own).toRgb16[static_cast<unsigned>(kFormat)]; });
}

template <auto kMember>
Level deepOrigin() {
    return origin([](const Kernels& k) { return k.rgbDeep.of(OddPixel::Own).*kMember; });
}

template <auto kMember>
Level planes8Origin() {
    return origin([](const Kernels& k) { return (k.planes8.*kMember)[0]; });
}

// The same level has the kernels for every arrangement of samples.
template <RgbPixel kPixel>
Level fromRgb8Origin() {
    return origin([](const Kernels& k) { return k.fromRgb8.convert[static_cast<unsigned>(kPixel)][0]; });
}

template <RgbSource kSource, auto kMember>
Level fromRgbDeepOrigin() {
    return origin([](const Kernels& k) { return k.fromRgbDeep.of(kSource).*kMember; });
}

template <RgbSource kSource>
Level rgbToV210Origin() {
    return origin([](const Kernels& k) { return k.fromRgbDeep.of(kSource).toV210[0]; });
}

template <auto kMember>
Level v210Origin() {
    return origin([](const Kernels& k) { return k.v210.*kMember; });
}

constexpr std::array kEntries{
    Entry{"swap16", [] { return origin([](const Kernels& k) { return k.swap16; }); }},
    Entry{"swap13", [] { return origin([](const Kernels& k) { return k.swap13; }); }},
    Entry{"swap13Of8", [] { return origin([](const Kernels& k) { return k.swap13Of8; }); }},
    Entry{"YCbCr 8 planes to packed", planes8Origin<&Planes8Kernels::join>},
    Entry{"YCbCr 8 4:4:4 planes to packed", planes8Origin<&Planes8Kernels::join444>},
    Entry{"packed YCbCr 8 to planes", planes8Origin<&Planes8Kernels::split>},
    Entry{"YCbCr 8 to RGB 32", toRgbOrigin<Rgb8::Bgra>},
    Entry{"YCbCr 8 to RGB 24", toRgbOrigin<Rgb8::Bgr>},
    Entry{"YCbCr 8 to RGB 16", toRgbOrigin<Rgb8::Bgr565>},
    Entry{"YCbCr 8 to RGB 15", toRgbOrigin<Rgb8::Bgr555>},
    Entry{"YCbCr 8 to RGB planes", [] { return origin([](const Kernels& k) { return k.rgb8.toPlanes[0]; }); }},
    Entry{"YCbCr 8 to RGB, double precision",
          [] { return origin([](const Kernels& k) { return k.rgb8.toWordsFloat[0]; }); }},
    Entry{"YCbCr 8 to RGB of 16-bit components",
          [] { return origin([](const Kernels& k) { return k.rgb8.toRgb16[0][0]; }); }},
    Entry{"v210 to YCbCr 8", v210Origin<&V210Kernels::unpack8>},
    Entry{"v210 to UYVY, rounded", v210Origin<&V210Kernels::unpackUyvy>},
    Entry{"v210 to YCbCr 16", v210Origin<&V210Kernels::unpack16>},
    Entry{"YCbCr 8 to v210", v210Origin<&V210Kernels::pack8>},
    Entry{"YCbCr 16 planes to v210", v210Origin<&V210Kernels::pack16>},
    Entry{"YCbCr 10 planes to UYVY", v210Origin<&V210Kernels::uyvyFrom10>},
    Entry{"YCbCr 16 planes to UYVY", v210Origin<&V210Kernels::uyvyFrom16>},
    Entry{"UYVY to YCbCr 16 planes", v210Origin<&V210Kernels::uyvyTo16>},
    Entry{"UYVY to YCbCr 10 4:4:4 planes", v210Origin<&V210Kernels::uyvyTo10Planar444>},
    Entry{"average of words", v210Origin<&V210Kernels::average16>},
    Entry{"YCbCr 16 to RGB 32", deep8Origin<Rgb8::Bgra>},
    Entry{"YCbCr 16 to RGB 24", deep8Origin<Rgb8::Bgr>},
    Entry{"YCbCr 16 to RGB 16", deep8Origin<Rgb8::Bgr565>},
    Entry{"YCbCr 16 to RGB 15", deep8Origin<Rgb8::Bgr555>},
    Entry{"YCbCr 16 to RGB 64", deep16Origin<Rgb16::Bgra>},
    Entry{"YCbCr 16 to RGB 48", deep16Origin<Rgb16::Bgr>},
    Entry{"YCbCr 16 to RGB 10", deepOrigin<&DeepKernels::toRgb10>},
    Entry{"YCbCr 16 to RGB planes of bytes", deepOrigin<&DeepKernels::toBytePlanes>},
    Entry{"YCbCr 16 to RGB planes of words", deepOrigin<&DeepKernels::toWordPlanes>},
    Entry{"YCbCr 10 to RGB 32, double precision",
          [] { return origin([](const Kernels& k) { return k.rgbDeep.toRgb8Float[0]; }); }},
    Entry{"RGB words to RGB 32", pack8Origin<Rgb8::Bgra>},
    Entry{"RGB words to RGB 24", pack8Origin<Rgb8::Bgr>},
    Entry{"RGB words to RGB 16", pack8Origin<Rgb8::Bgr565>},
    Entry{"RGB words to RGB 15", pack8Origin<Rgb8::Bgr555>},
    Entry{"words that lie apart", [] { return origin([](const Kernels& k) { return k.gatherWords.words[1]; }); }},
    Entry{"words to bytes", [] { return origin([](const Kernels& k) { return k.rgbWords.toBytes; }); }},
    Entry{"RGB 32 to YCbCr 8", fromRgb8Origin<RgbPixel::Bytes4>},
    Entry{"RGB 24 to YCbCr 8", fromRgb8Origin<RgbPixel::Bytes3>},
    Entry{"RGB 64 to YCbCr 8", fromRgb8Origin<RgbPixel::Words4>},
    Entry{"RGB 48 to YCbCr 8", fromRgb8Origin<RgbPixel::Words3>},
    Entry{"alpha into RGB 32", [] { return origin([](const Kernels& k) { return k.alpha.bytes; }); }},
    Entry{"alpha of RGB 32", [] { return origin([](const Kernels& k) { return k.fromRgb8.alpha; }); }},
    Entry{"alpha of RGB 32, scaled", [] { return origin([](const Kernels& k) { return k.fromRgb8.scaledAlpha; }); }},
    Entry{"RGB 32 to v210", rgbToV210Origin<RgbSource::Four8>},
    Entry{"RGB 24 to v210", rgbToV210Origin<RgbSource::Three8>},
    Entry{"RGB 64 to v210", rgbToV210Origin<RgbSource::Four16>},
    Entry{"RGB 48 to v210", rgbToV210Origin<RgbSource::Three16>},
    Entry{"RGB 10 to v210", rgbToV210Origin<RgbSource::Three10>},
    Entry{"RGB 32 to YCbCr 10 planes", fromRgbDeepOrigin<RgbSource::Four8, &FromRgbDeepOfSource::full>},
    Entry{"RGB 24 to YCbCr 10 planes", fromRgbDeepOrigin<RgbSource::Three8, &FromRgbDeepOfSource::full>},
    Entry{"RGB 64 to YCbCr 10 planes", fromRgbDeepOrigin<RgbSource::Four16Upper10, &FromRgbDeepOfSource::full>},
    Entry{"RGB 48 to YCbCr 10 planes", fromRgbDeepOrigin<RgbSource::Three16Upper10, &FromRgbDeepOfSource::full>},
    Entry{"RGB 64 to YCbCr 12 planes", fromRgbDeepOrigin<RgbSource::Four16Upper10, &FromRgbDeepOfSource::halved>},
    Entry{"RGB 48 to YCbCr 12 planes", fromRgbDeepOrigin<RgbSource::Three16Upper10, &FromRgbDeepOfSource::halved>},
    Entry{"RGB 64 to YCbCr 16 planes", fromRgbDeepOrigin<RgbSource::Four16, &FromRgbDeepOfSource::halved>},
    Entry{"RGB 48 to YCbCr 16 planes", fromRgbDeepOrigin<RgbSource::Three16, &FromRgbDeepOfSource::halved>},
    Entry{"RGB 10 to YCbCr 16 planes", fromRgbDeepOrigin<RgbSource::Three10, &FromRgbDeepOfSource::halved>},
    Entry{"alpha of RGB 32 to 10 bits", [] { return origin([](const Kernels& k) { return k.fromRgbDeep.alpha; }); }},
    Entry{"alpha of RGB 32 to 10 bits, scaled",
          [] { return origin([](const Kernels& k) { return k.fromRgbDeep.scaledAlpha; }); }},
    Entry{"RGB 64 to YCbCr 10 planes, double precision",
          [] { return origin([](const Kernels& k) { return k.fromRgbDeep.fullFloat[0]; }); }},
};

} // namespace

const Kernels& kernelsAt(Level level) {
    return table()[static_cast<unsigned>(level)];
}

std::optional<KernelInfo> kernelInfo(unsigned index) {
    if (index >= kEntries.size()) return std::nullopt;
    return KernelInfo{kEntries[index].name, kEntries[index].origin()};
}

} // namespace fikleipa::simd
