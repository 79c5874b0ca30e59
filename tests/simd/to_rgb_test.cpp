#include "rgb/matrix.h"
#include "tests/simd/rows.h"

namespace fikleipa::tests {
namespace {

using simd::DeepKernels;
using simd::DeepRow;
using simd::OddPixel;
using simd::Rgb16;
using simd::Rgb8;
using simd::Samples8;
using Table = simd::ToRgb8Kernels;

// A source of rows, and whether packed luma and chroma are in different groups, as in frames of odd width.
struct Shape {
    Samples8 source;
    bool apart = false;

    [[nodiscard]] bool packed() const { return source < Samples8::Planar; }

    // The packed kernels that know no group are given UYVY.
    [[nodiscard]] simd::Group group() const {
        if (!packed()) return {0, 0, 1};
        return simd::kGroups[static_cast<unsigned>(source == Samples8::Packed ? Samples8::Uyvy : source)];
    }

    // Packed rows begin with a whole group, as every row of a frame does, and end with their last sample.
    [[nodiscard]] Lengths lengths() const {
        if (source == Samples8::Planar) return {{{2}, {1}, {1}}};
        if (source == Samples8::BiPlanar) return {{{2}, {2}}};
        if (!apart) return {{{4}}};
        const auto from = [](unsigned sample, int last) { return Length{4, static_cast<int>(sample) - last}; };
        return {{from(group().y, 1), from(std::max(group().cb, group().cr), 3)}};
    }

    // The first luma, Cb and Cr.
    [[nodiscard]] Sources first(const Sources& rows) const {
        if (source == Samples8::Planar) return rows;
        const std::uint8_t* const chroma = packed() && !apart ? rows[0] : rows[1];
        return {rows[0] + group().y, chroma + group().cb, chroma + group().cr};
    }
};
constexpr Shape kPlanar{Samples8::Planar};

// The kernels of a shape to planes.
template <class Kernels, class Row>
RowKernel planes(const Shape& shape, const char* name, std::ptrdiff_t bytes, Kernels Table::*kernels, const Row& row) {
    const Length plane{2 * bytes};
    return {name, {{plane, plane, plane}}, shape.lengths(), [=](auto& k, auto& to, auto& from, auto n) {
                const auto [y, cb, cr] = shape.first(from);
                (k.rgb8.*kernels)[static_cast<unsigned>(shape.source)](to[0], to[1], to[2], y, cb, cr, n, row);
            }};
}
std::vector<RowKernel> toPlanes(const Shape& shape, PXYCBCRMatrix matrix) {
    return {planes(shape, "planes", 1, &Table::toPlanes, toRgb8Row(matrix)),
            planes(shape, "16-bit planes", 2, &Table::toPlanes16, toRgb16Row(matrix)),
            planes(shape, "words, double precision", 2, &Table::toWordsFloat, toRgb8FloatRow(matrix))};
}

// Some write past the cache where the row begins a cache line.
template <class Format, class Kernels>
RowKernel pixels(const Shape& shape, Format format, const simd::ToRgbRow& row, Kernels Table::*kernels,
                 Kernels Table::*pastCache) {
    const std::ptrdiff_t bytes = bytesPerPixel(format);
    return {
        std::to_string(bytes) + " bytes", {{{2 * bytes}}}, shape.lengths(), [=](auto& k, auto& to, auto& from, auto n) {
            const auto [y, cb, cr] = shape.first(from);
            const auto& table =
                (k.rgb8.*(beginsCacheLine(to[0]) ? pastCache : kernels))[static_cast<unsigned>(shape.source)];
            table[static_cast<unsigned>(format)](to[0], y, cb, cr, n, row);
        }};
}
RowKernel pixels8(const Shape& shape, std::size_t format, PXYCBCRMatrix matrix) {
    return pixels(shape, static_cast<Rgb8>(format), toRgb8Row(matrix), &Table::toRgb, &Table::toRgb);
}

} // namespace

std::vector<RowKernel> toRgb8Kernels() {
    constexpr Shape kShapes[] = {
        {Samples8::Yuy2},     {Samples8::Yvyu},       {Samples8::Uyvy},       {Samples8::Packed},    kPlanar,
        {Samples8::BiPlanar}, {Samples8::Yuy2, true}, {Samples8::Yvyu, true}, {Samples8::Uyvy, true}};
    constexpr PXYCBCRMatrix kMatrix = PX_MATRIX_BT601;
    std::vector<RowKernel> all;
    for (const Shape& shape : kShapes) {
        for (RowKernel& kernel : toPlanes(shape, kMatrix)) all.push_back(std::move(kernel));
        for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
            const auto format = static_cast<Rgb8>(i);
            all.push_back(pixels8(shape, i, kMatrix));
            all.push_back(pixels(shape, format, toRgb8Row(kMatrix), &Table::toRgb, &Table::toRgbPast));
        }
        for (std::size_t i = 0; i < simd::kRgb16s; ++i) {
            const auto format = static_cast<Rgb16>(i);
            all.push_back(pixels(shape, format, toRgb16Row(kMatrix), &Table::toRgb16, &Table::toRgb16));
        }
    }
    return all;
}

namespace {

// All 16.7 million colours of every matrix, in each way of computing and of storing.
TEST(ToRgb8, EveryLevelEqualsPortableOnEveryColour) {
    constexpr unsigned kChroma = 16; // values of Cb at a time, each with every luma
    constexpr std::size_t kPairs = 128 * kChroma;
    Rows from{Bytes(2 * kPairs), Bytes(kPairs), Bytes(kPairs)};
    for (std::size_t i = 0; i < 2 * kPairs; ++i) from[0][i] = static_cast<std::uint8_t>(i);
    for (const unsigned number : {0U, 1U, 2U, 3U, 4U, 6U, 7U}) {
        const auto matrix = static_cast<PXYCBCRMatrix>(number);
        std::vector<RowKernel> kernels = toPlanes(kPlanar, matrix);
        for (const std::size_t format : {0U, 5U, 7U, 8U}) kernels.push_back(pixels8(kPlanar, format, matrix));
        for (unsigned colour = 0; colour < 65536; colour += kChroma) {
            for (std::size_t i = 0; i < kPairs; ++i) from[1][i] = static_cast<std::uint8_t>(colour + i / 128);
            std::fill(from[2].begin(), from[2].end(), static_cast<std::uint8_t>(colour >> 8));
            for (const RowKernel& kernel : kernels) {
                ASSERT_NO_FATAL_FAILURE(expectPortable(kernel, from, kPairs))
                    << "matrix " << number << ", Cb from " << colour % 256 << ", Cr " << colour / 256;
            }
        }
    }
}

constexpr OddPixel kOddPixels[] = {OddPixel::Own, OddPixel::Average, OddPixel::AverageButRed};

// Chroma has a sample for each pair, begun ones included; where odd pixels average, one more follows whole pairs.
Lengths deepLengths(OddPixel odd) {
    const Length chroma = odd == OddPixel::Own ? Length{2, 0, 2} : Length{2, 0, 2, 1};
    return {{{2}, chroma, chroma}};
}
unsigned bitsOf(OddPixel odd) {
    return odd == OddPixel::AverageButRed ? 10 : 16;
}

// kernel(k.rgbDeep, dst) is the one for that row.
template <class Row, class Kernel>
RowKernel deepPixels(OddPixel odd, unsigned bytes, const Row& row, Kernel kernel) {
    return {std::to_string(bytes) + " bytes",
            {{{bytes}}},
            deepLengths(odd),
            [=](auto& k, auto& to, auto& from, auto n) {
                kernel(k.rgbDeep, to[0])(to[0], from[0], from[1], from[2], n, row);
            },
            bitsOf(odd)};
}

RowKernel deepPlanes(OddPixel odd, unsigned bytes, const DeepRow& row) {
    const Length plane{bytes};
    return {"planes",
            {{plane, plane, plane}},
            deepLengths(odd),
            [=](auto& k, auto& to, auto& from, auto n) {
                const DeepKernels& kernels = k.rgbDeep.of(odd);
                const auto convert = bytes == 1 ? kernels.toBytePlanes : kernels.toWordPlanes;
                convert(to[0], to[1], to[2], from[0], from[1], from[2], n, row);
            },
            bitsOf(odd)};
}

unsigned bytesOf8(std::size_t format) {
    return bytesPerPixel(static_cast<Rgb8>(format));
}

void addDeep(std::vector<RowKernel>& all, OddPixel odd, const DeepRow& toBytes, const DeepRow& toWords) {
    for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
        all.push_back(deepPixels(odd, bytesOf8(i), toBytes, [=](auto& k, auto* dst) {
            return beginsCacheLine(dst) ? k.of(odd).toRgb8Past[i] : k.of(odd).toRgb8[i];
        }));
    }
    for (std::size_t i = 0; i < simd::kRgb16s; ++i) {
        all.push_back(deepPixels(odd, bytesPerPixel(static_cast<Rgb16>(i)), toWords, [=](auto& k, auto* dst) {
            return beginsCacheLine(dst) ? k.of(odd).toRgb16Past[i] : k.of(odd).toRgb16[i];
        }));
    }
    all.push_back(deepPixels(odd, 4, toWords, [=](auto& k, auto* dst) {
        return beginsCacheLine(dst) ? k.of(odd).toRgb10Past : k.of(odd).toRgb10;
    }));
    all.push_back(deepPlanes(odd, 1, toBytes));
    all.push_back(deepPlanes(odd, 2, toWords));
}

RowKernel doublePixels(std::size_t format, PXYCBCRMatrix matrix) {
    return deepPixels(OddPixel::AverageButRed, bytesOf8(format), row10To8Float(matrix),
                      [=](auto& k, auto*) { return k.toRgb8Float[format]; });
}

} // namespace

// Also with samples that a vector cannot take among the others, and words that become pixels.
std::vector<RowKernel> toRgbDeepKernels() {
    constexpr PXYCBCRMatrix kMatrix = PX_MATRIX_BT709;
    std::vector<RowKernel> all;
    for (const OddPixel odd : kOddPixels) addDeep(all, odd, row10To8(kMatrix), row10To16(kMatrix));
    const std::vector<RowKernel> exceeding = all;
    for (RowKernel& kernel : all) kernel.bits = 10;
    all.insert(all.end(), exceeding.begin(), exceeding.end());
    for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
        all.push_back(doublePixels(i, kMatrix));
        all.push_back(
            {"words",
             {{{bytesOf8(i)}}},
             {{{2}, {2}, {2}}},
             [=](auto& k, auto& to, auto& from, auto n) { k.rgbWords.toRgb8[i](to[0], from[0], from[1], from[2], n); },
             8});
    }
    const auto toBytes = [](auto& k, auto& to, auto& from, auto n) { k.rgbWords.toBytes(to[0], from[0], n); };
    all.push_back({"words", {{{1}}}, {{{2}}}, toBytes, 8});
    return all;
}

namespace {

constexpr Lengths kGroup{{{simd::kV210GroupBytes, 4}}};

// The samples of groups, with the chroma of the pair behind them.
Rows samplesOf(const simd::Kernels& kernels, const std::uint8_t* v210, std::size_t groups) {
    Bytes row(v210, v210 + groups * simd::kV210GroupBytes + 4);
    row.resize((groups + 1) * simd::kV210GroupBytes);
    Rows samples{Bytes(12 * (groups + 1)), Bytes(6 * (groups + 1)), Bytes(6 * (groups + 1))};
    kernels.v210.unpack16[0][static_cast<unsigned>(simd::Samples16::Planar)](samples[0].data(), samples[1].data(),
                                                                             samples[2].data(), row.data(), groups + 1);
    return samples;
}

// `direct` is the kernel for groups; where there is none, it is the one for the samples in them, `ofSamples`.
template <class Direct>
RowKernel groupKernel(const Lengths& written, Direct direct, const RowKernel& ofSamples) {
    return {"v210 to " + ofSamples.name, written, kGroup, [=](auto& k, auto& to, auto& from, auto groups) {
                if (groups == 0) return;
                const std::size_t pixels = groups * simd::kV210GroupPixels;
                if (direct(k.rgbDeep.v210, to, from[0], pixels)) return;
                const Rows samples = samplesOf(k, from[0], groups);
                ofSamples.call(k, to, {samples[0].data(), samples[1].data(), samples[2].data()}, pixels);
            }};
}

// kernel(k, dst) is the one for that row of pixels.
template <class Kernel>
RowKernel groupsToPixels(unsigned bytes, const DeepRow& row, Kernel kernel, const RowKernel& ofSamples) {
    return groupKernel(
        {{{static_cast<std::ptrdiff_t>(bytes * simd::kV210GroupPixels)}}},
        [=](auto& k, auto& to, auto* v210, auto pixels) {
            const auto convert = kernel(k, to[0]);
            if (convert != nullptr) convert(to[0], v210, pixels, row);
            return convert != nullptr;
        },
        ofSamples);
}

std::vector<RowKernel> groupKernels(PXYCBCRMatrix matrix) {
    constexpr OddPixel kOdd = OddPixel::AverageButRed;
    const DeepRow toBytes = row10To8(matrix);
    const DeepRow toWords = row10To16(matrix);
    std::vector<RowKernel> ofSamples;
    addDeep(ofSamples, kOdd, toBytes, toWords); // in the order of the formats
    std::vector<RowKernel> all;
    for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
        const auto kernel = [=](auto& k, auto* dst) { return (beginsCacheLine(dst) ? k.toRgb8Past : k.toRgb8)[i]; };
        all.push_back(groupsToPixels(bytesOf8(i), toBytes, kernel, ofSamples[i]));
    }
    for (std::size_t i = 0; i < simd::kRgb16s; ++i) {
        const auto kernel = [=](auto& k, auto* dst) { return (beginsCacheLine(dst) ? k.toRgb16Past : k.toRgb16)[i]; };
        all.push_back(
            groupsToPixels(bytesPerPixel(static_cast<Rgb16>(i)), toWords, kernel, ofSamples[simd::kRgb8s + i]));
    }
    const Length plane{2 * simd::kV210GroupPixels};
    all.push_back(groupKernel(
        {{plane, plane, plane}},
        [=](auto& k, auto& to, auto* v210, auto pixels) {
            if (k.toWordPlanes == nullptr) return false;
            k.toWordPlanes(to[0], to[1], to[2], v210, pixels, toWords);
            return true;
        },
        deepPlanes(kOdd, 2, toWords)));
    return all;
}

} // namespace

std::vector<RowKernel> v210ToRgbKernels() {
    return groupKernels(PX_MATRIX_BT709);
}

namespace {

// Words of v210 whose pairs count luma up, with Cb or Cr, as `cbRuns` says, counting along. The bits that nobody reads
// are set.
Bytes countingPairs(std::size_t words, unsigned chroma, bool cbRuns) {
    Bytes bytes(4 * words);
    for (std::size_t w = 0; w < words; ++w) {
        std::uint32_t word = 3U << 30;
        for (std::size_t c = 3 * w; c < 3 * w + 3; ++c) {
            const auto pair = static_cast<unsigned>(c / 4);
            const bool runs = (c % 4 == 0) == cbRuns;
            const unsigned sample = c % 2 != 0 ? pair : runs ? 7 * chroma + 5 * pair : chroma;
            word |= sample % 1024 << 10 * (c % 3);
        }
        std::memcpy(&bytes[4 * w], &word, 4);
    }
    return bytes;
}

// R and B of every luma with every chroma, G with the other chroma along.
TEST(ToRgbDeep, GroupsOfV210EqualTheirSamplesOnAllPairs) {
    constexpr std::size_t kGroups = 342;
    constexpr std::size_t kWords = kGroups * simd::kV210GroupBytes / 4 + 1;
    for (const unsigned number : {0U, 1U, 2U, 3U, 6U, 7U}) {
        const std::vector<RowKernel> all = groupKernels(static_cast<PXYCBCRMatrix>(number));
        const RowKernel* const kernels[] = {&all[static_cast<unsigned>(Rgb8::Bgra)],
                                            &all[static_cast<unsigned>(Rgb8::Rgb565)], &all.back()};
        for (unsigned chroma = 0; chroma < 1024; ++chroma) {
            for (const bool cbRuns : {false, true}) {
                const Rows from{countingPairs(kWords, chroma, cbRuns)};
                for (const RowKernel* kernel : kernels) {
                    ASSERT_NO_FATAL_FAILURE(expectPortable(*kernel, from, kGroups)) << number << ", chroma " << chroma;
                }
            }
        }
    }
}

// The divisions of all converters.
std::vector<DeepRow> rowsToBytes(PXYCBCRMatrix matrix) {
    return {row10To8(matrix), row10To8By8(matrix), row12To8(matrix), row8To8(matrix)};
}
std::vector<DeepRow> rowsToWords(PXYCBCRMatrix matrix) {
    return {row10To16(matrix), row12To16(matrix)};
}

// Samples of every number of bits, those that need all 16 among others in a vector and alone.
TEST(ToRgbDeep, EveryLevelEqualsPortableOnSamplesOfAnyDepth) {
    for (unsigned number = 0; number < 8; ++number) {
        const auto matrix = static_cast<PXYCBCRMatrix>(number);
        for (const OddPixel odd : kOddPixels) {
            std::vector<RowKernel> kernels{deepPlanes(odd, 2, row10To10(matrix))};
            for (const DeepRow& toBytes : rowsToBytes(matrix)) {
                for (const DeepRow& toWords : rowsToWords(matrix)) addDeep(kernels, odd, toBytes, toWords);
            }
            for (const RowKernel& kernel : kernels) {
                for (unsigned bits = 8; bits <= bitsOf(odd); ++bits) {
                    const std::size_t pixels = 200 + number;
                    ASSERT_NO_FATAL_FAILURE(expectPortable(kernel, noiseRows(kernel.read, pixels, bits), pixels))
                        << "odd " << static_cast<int>(odd) << ", matrix " << number << ", " << bits << " bits";
                }
            }
        }
    }
}

// R and B of every luma with every chroma, and G with a Cb that runs through all of them along with Cr.
TEST(ToRgbDeep, EveryLevelEqualsPortableOnAllPairsOfTenBits) {
    constexpr std::size_t kPixels = 2048;
    Rows from{Bytes(2 * kPixels), Bytes(kPixels + 2), Bytes(kPixels + 2)};
    for (unsigned i = 0; i < kPixels; ++i) store16(&from[0][2 * std::size_t{i}], i / 2);
    for (const unsigned number : {0U, 1U, 2U, 3U, 6U, 7U}) {
        const auto matrix = static_cast<PXYCBCRMatrix>(number);
        std::vector<RowKernel> kernels{doublePixels(0, matrix), deepPlanes(OddPixel::Own, 2, row10To10(matrix))};
        for (const DeepRow& row : rowsToBytes(matrix)) kernels.push_back(deepPlanes(OddPixel::Own, 1, row));
        for (const DeepRow& row : rowsToWords(matrix)) kernels.push_back(deepPlanes(OddPixel::Own, 2, row));
        for (unsigned chroma = 0; chroma < 1024; ++chroma) {
            for (unsigned i = 0; i <= kPixels / 2; ++i) {
                store16(&from[1][2 * std::size_t{i}], (chroma * 7 + i * 5) % 1024);
                store16(&from[2][2 * std::size_t{i}], chroma);
            }
            for (const RowKernel& kernel : kernels) {
                ASSERT_NO_FATAL_FAILURE(expectPortable(kernel, from, kPixels)) << number << ", chroma " << chroma;
            }
        }
    }
}

// Rows in which R is every sum from 0 to beyond what the limit allows, divided. Sums are formed in integers, so this
// and the colours above leave no sum out.
TEST(ToRgbDeep, EverySumDividesExactly) {
    constexpr unsigned kStep = 2048; // the luma coefficient; Cr counts the rest
    constexpr std::size_t kPixels = 2 * kStep;
    Rows from{Bytes(2 * kPixels), Bytes(kPixels), Bytes(kPixels)};
    for (unsigned i = 0; i < kStep; ++i) store16(&from[2][2 * std::size_t{i}], i);
    const auto expectQuotients = [&](unsigned bytes, DeepRow row) {
        row.k = {0, kStep, 1, 0, 0, 1};
        row.centre = 0;
        const RowKernel kernel = deepPlanes(OddPixel::Own, bytes, row);
        const unsigned top = (row.max + 1) * row.divisor + 3 * kStep;
        for (unsigned luma = 0; luma * kStep < top && luma < 32768; ++luma) {
            for (std::size_t i = 0; i < kPixels; ++i) store16(&from[0][2 * i], luma);
            for (const simd::Level level : vectorLevels()) {
                const Bytes r = convert(kernel, level, from, kPixels)[0];
                for (unsigned i = 0; i < kPixels; ++i) {
                    const unsigned quotient = std::min((luma * kStep + i / 2) / row.divisor, row.max);
                    ASSERT_EQ(bytes == 1 ? r[i] : load16(&r[2 * std::size_t{i}]),
                              bytes == 1 ? quotient % 256 : quotient)
                        << simd::levelName(level) << ", " << luma * kStep + i / 2 << " by " << row.divisor;
                }
            }
        }
    };
    for (const DeepRow& row : rowsToBytes(PX_MATRIX_BT601)) expectQuotients(1, row);
    for (const DeepRow& row : rowsToWords(PX_MATRIX_BT601)) expectQuotients(2, row);
    expectQuotients(2, row10To10(PX_MATRIX_BT601));
}

} // namespace
} // namespace fikleipa::tests
