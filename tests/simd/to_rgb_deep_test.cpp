#include "rgb/matrix.h"
#include "simd/stream.h"
#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using simd::OddPixel;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMostPixels = 200;

constexpr OddPixel kOddPixels[] = {OddPixel::Own, OddPixel::Average, OddPixel::AverageButRed};

// A kernel of any kind and what it takes: planes lie one behind another in a row of their pixels.
template <class Row>
struct Kernel {
    std::string name;
    unsigned pixelBytes;
    OddPixel odd;
    std::function<void(simd::Level, std::uint8_t* dst, const std::uint8_t* y, const std::uint8_t* cb,
                       const std::uint8_t* cr, std::size_t pixels, const Row& row)>
        convert;
};

template <auto kMember>
Kernel<simd::DeepRow> planes(unsigned sampleBytes, OddPixel odd) {
    return {"planes of " + std::to_string(sampleBytes) + " bytes", 3 * sampleBytes, odd,
            [=](simd::Level level, std::uint8_t* dst, const auto* y, const auto* cb, const auto* cr, std::size_t pixels,
                const simd::DeepRow& row) {
                const std::size_t plane = pixels * sampleBytes;
                (simd::kernelsAt(level).rgbDeep.of(odd).*kMember)(dst, dst + plane, dst + 2 * plane, y, cb, cr, pixels,
                                                                  row);
            }};
}

// kernelOf(level, dst) is the kernel.
template <class Row, class KernelOf>
Kernel<Row> pixels(std::string name, unsigned pixelBytes, OddPixel odd, KernelOf kernelOf) {
    return {std::move(name), pixelBytes, odd,
            [=](simd::Level level, std::uint8_t* dst, const auto* y, const auto* cb, const auto* cr, std::size_t count,
                const Row& row) { kernelOf(level, dst)(dst, y, cb, cr, count, row); }};
}

// There, frames may be written past the cache.
bool beginsCacheLine(const std::uint8_t* dst) {
    return reinterpret_cast<std::uintptr_t>(dst) % simd::kCacheLine == 0;
}

using DeepRow = simd::DeepRow;
using FloatRow = simd::ToRgbFloatRow;

std::vector<Kernel<DeepRow>> kernelsToBytes(OddPixel odd) {
    std::vector all{planes<&simd::DeepKernels::toBytePlanes>(1, odd)};
    for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
        all.push_back(pixels<DeepRow>("format " + std::to_string(i), bytesPerPixel(static_cast<simd::Rgb8>(i)), odd,
                                      [=](auto level, auto* dst) {
                                          const simd::DeepKernels& k = simd::kernelsAt(level).rgbDeep.of(odd);
                                          return (beginsCacheLine(dst) ? k.toRgb8Past : k.toRgb8)[i];
                                      }));
    }
    return all;
}

std::vector<Kernel<DeepRow>> kernelsToWords(OddPixel odd) {
    std::vector all{planes<&simd::DeepKernels::toWordPlanes>(2, odd),
                    pixels<DeepRow>("10-bit components", 4, odd,
                                    [=](auto level, auto*) { return simd::kernelsAt(level).rgbDeep.of(odd).toRgb10; })};
    for (std::size_t i = 0; i < simd::kRgb16s; ++i) {
        all.push_back(pixels<DeepRow>("format " + std::to_string(i), bytesPerPixel(static_cast<simd::Rgb16>(i)), odd,
                                      [=](auto level, auto* dst) {
                                          const simd::DeepKernels& k = simd::kernelsAt(level).rgbDeep.of(odd);
                                          return (beginsCacheLine(dst) ? k.toRgb16Past : k.toRgb16)[i];
                                      }));
    }
    return all;
}

std::vector<Kernel<FloatRow>> floatKernels() {
    std::vector<Kernel<FloatRow>> all;
    for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
        all.push_back(pixels<FloatRow>(
            "double precision, format " + std::to_string(i), bytesPerPixel(static_cast<simd::Rgb8>(i)),
            OddPixel::AverageButRed, [=](auto level, auto*) { return simd::kernelsAt(level).rgbDeep.toRgb8Float[i]; }));
    }
    return all;
}

// The divisions of all converters.
std::vector<DeepRow> rowsToBytes(PXYCBCRMatrix matrix) {
    return {row10To8(matrix), row10To8By8(matrix), row12To8(matrix), row8To8(matrix)};
}
std::vector<DeepRow> rowsToWords(PXYCBCRMatrix matrix) {
    return {row10To16(matrix), row12To16(matrix)};
}

void put(Bytes& words, std::size_t i, unsigned word) {
    words[2 * i] = static_cast<std::uint8_t>(word);
    words[2 * i + 1] = static_cast<std::uint8_t>(word >> 8);
}

// Noise of words below 2^bits.
Bytes words(std::size_t count, unsigned bits, unsigned seed) {
    Bytes data = noise(2 * count, seed);
    for (std::size_t i = 1; i < data.size(); i += 2) data[i] = static_cast<std::uint8_t>(data[i] >> (16 - bits));
    return data;
}

// Three rows of samples, each against a forbidden page: no more than a kernel may read.
class Samples {
public:
    void fill(std::size_t pixels, OddPixel odd, unsigned bits) {
        const std::size_t chroma = odd == OddPixel::Own ? (pixels + 1) / 2 : pixels / 2 + 1;
        const auto seed = static_cast<unsigned>(pixels);
        y_ = words(pixels, bits, seed);
        cb_ = words(chroma, bits, seed + 1000);
        cr_ = words(chroma, bits, seed + 2000);
        pixels_ = pixels;
    }

    // With samples placed; the pixels as they come out.
    template <class Row>
    Bytes convert(const Kernel<Row>& kernel, simd::Level level, const Row& row, unsigned offset = 0,
                  bool atEnd = false) {
        const std::uint8_t* const y = yRow_.place(y_, offset, atEnd);
        const std::uint8_t* const cb = cbRow_.place(cb_, (offset + 3) % kAlignments, atEnd);
        const std::uint8_t* const cr = crRow_.place(cr_, (offset + 5) % kAlignments, atEnd);
        std::uint8_t* const out = out_.place(pixels_ * kernel.pixelBytes, offset * 7 % kAlignments, atEnd);
        kernel.convert(level, out, y, cb, cr, pixels_, row);
        EXPECT_TRUE(out_.aroundIsUntouched()) << kernel.name << ", " << pixels_ << " pixels, offset " << offset;
        return {out, out + pixels_ * kernel.pixelBytes};
    }

private:
    std::size_t pixels_ = 0;
    Bytes y_, cb_, cr_;
    PlacedRow yRow_{8192}, cbRow_{8192}, crRow_{8192}, out_{8192};
};

// Also with samples that a vector cannot take among the others.
TEST(ToRgbDeep, EveryLevelEqualsPortableAtEveryWidthAndPlacement) {
    Samples samples;
    const auto expectPortable = [&](const auto& kernels, const auto& row) {
        for (const auto& kernel : kernels) {
            for (std::size_t count = 0; count <= kMostPixels; ++count) {
                samples.fill(count, kernel.odd, kernel.odd == OddPixel::AverageButRed || count % 2 == 0 ? 10 : 16);
                const Bytes expected = samples.convert(kernel, simd::Level::Portable, row);
                for (const simd::Level level : vectorLevels()) {
                    for (unsigned offset = 0; offset < kAlignments; offset += 7) {
                        for (const bool atEnd : {false, true}) {
                            ASSERT_EQ(samples.convert(kernel, level, row, offset, atEnd), expected)
                                << simd::levelName(level) << ", " << kernel.name << ", " << static_cast<int>(kernel.odd)
                                << ", " << count << " pixels";
                        }
                    }
                }
            }
        }
    };
    for (const OddPixel odd : kOddPixels) {
        expectPortable(kernelsToBytes(odd), row10To8(PX_MATRIX_BT709));
        expectPortable(kernelsToWords(odd), row10To16(PX_MATRIX_BT709));
    }
    expectPortable(floatKernels(), row10To8Float(PX_MATRIX_BT709));
}

// Samples of every number of bits, those that need all 16 among others in a vector and alone.
TEST(ToRgbDeep, EveryLevelEqualsPortableOnSamplesOfAnyDepth) {
    Samples samples;
    for (unsigned number = 0; number < 8; ++number) {
        const auto matrix = static_cast<PXYCBCRMatrix>(number);
        const auto expectPortable = [&](const Kernel<DeepRow>& kernel, const std::vector<DeepRow>& rows) {
            for (const DeepRow& row : rows) {
                for (unsigned bits = 8; bits <= 16; ++bits) {
                    if (kernel.odd == OddPixel::AverageButRed && bits > 10) break;
                    samples.fill(1000 + number, kernel.odd, bits);
                    const Bytes expected = samples.convert(kernel, simd::Level::Portable, row);
                    for (const simd::Level level : vectorLevels()) {
                        ASSERT_EQ(samples.convert(kernel, level, row), expected)
                            << simd::levelName(level) << ", " << kernel.name << ", " << static_cast<int>(kernel.odd)
                            << ", matrix " << number << ", divisor " << row.divisor << ", " << bits << " bits";
                    }
                }
            }
        };
        for (const OddPixel odd : kOddPixels) {
            for (const auto& kernel : kernelsToBytes(odd)) expectPortable(kernel, rowsToBytes(matrix));
            for (const auto& kernel : kernelsToWords(odd)) expectPortable(kernel, rowsToWords(matrix));
            expectPortable(planes<&simd::DeepKernels::toWordPlanes>(2, odd), {row10To10(matrix)});
        }
    }
}

// R and B of every luma with every chroma, and G with a Cb that runs through all of them along with Cr.
TEST(ToRgbDeep, EveryLevelEqualsPortableOnAllPairsOfTenBits) {
    constexpr std::size_t kPixels = 2048;
    Bytes y(2 * kPixels);
    Bytes cb(kPixels + 2);
    Bytes cr(kPixels + 2);
    for (unsigned i = 0; i < kPixels; ++i) put(y, i, i / 2);
    const auto expectPortable = [&](unsigned matrix, const auto& kernel, const auto& row) {
        Bytes expected(kernel.pixelBytes * kPixels);
        Bytes got(expected.size());
        for (unsigned chroma = 0; chroma < 1024; ++chroma) {
            for (unsigned i = 0; i <= kPixels / 2; ++i) {
                put(cr, i, chroma);
                put(cb, i, (chroma * 7 + i * 5) % 1024);
            }
            kernel.convert(simd::Level::Portable, expected.data(), y.data(), cb.data(), cr.data(), kPixels, row);
            for (const simd::Level level : vectorLevels()) {
                kernel.convert(level, got.data(), y.data(), cb.data(), cr.data(), kPixels, row);
                ASSERT_EQ(got, expected) << simd::levelName(level) << ", " << kernel.name << ", matrix " << matrix
                                         << ", chroma " << chroma;
            }
        }
    };
    for (const unsigned number : {0U, 1U, 2U, 3U, 6U, 7U}) {
        const auto matrix = static_cast<PXYCBCRMatrix>(number);
        const auto toBytes = planes<&simd::DeepKernels::toBytePlanes>(1, OddPixel::Own);
        const auto toWords = planes<&simd::DeepKernels::toWordPlanes>(2, OddPixel::Own);
        for (const DeepRow& row : rowsToBytes(matrix)) expectPortable(number, toBytes, row);
        for (const DeepRow& row : rowsToWords(matrix)) expectPortable(number, toWords, row);
        expectPortable(number, toWords, row10To10(matrix));
        expectPortable(number, floatKernels().front(), row10To8Float(matrix));
    }
}

// Rows in which R is every sum from 0 to beyond what the limit allows, divided. Sums are formed in integers, so this
// and the colours above leave no sum out.
TEST(ToRgbDeep, EverySumDividesExactly) {
    constexpr unsigned kStep = 2048; // the luma coefficient; Cr counts the rest
    constexpr std::size_t kPixels = 2 * kStep;
    Bytes y(2 * kPixels);
    Bytes cr(2 * kStep);
    const Bytes cb(2 * kStep);
    for (unsigned i = 0; i < kStep; ++i) put(cr, i, i);
    Bytes out(3 * 2 * kPixels);
    const auto expectQuotients = [&](const Kernel<DeepRow>& kernel, DeepRow row) {
        const unsigned sampleBytes = kernel.pixelBytes / 3;
        row.k = {0, kStep, 1, 0, 0, 1};
        row.centre = 0;
        const unsigned top = (row.max + 1) * row.divisor + 3 * kStep;
        for (const simd::Level level : vectorLevels()) {
            for (unsigned luma = 0; luma * kStep < top && luma < 32768; ++luma) {
                for (std::size_t i = 0; i < kPixels; ++i) put(y, i, luma);
                kernel.convert(level, out.data(), y.data(), cb.data(), cr.data(), kPixels, row);
                for (unsigned i = 0; i < kPixels; ++i) {
                    const unsigned quotient = std::min((luma * kStep + i / 2) / row.divisor, row.max);
                    const unsigned got = sampleBytes == 1 ? out[i] : out[2 * i] | unsigned{out[2 * i + 1]} << 8;
                    ASSERT_EQ(got, sampleBytes == 1 ? quotient % 256 : quotient)
                        << simd::levelName(level) << ", " << luma * kStep + i / 2 << " by " << row.divisor;
                }
            }
        }
    };
    const auto toWords = planes<&simd::DeepKernels::toWordPlanes>(2, OddPixel::Own);
    for (const DeepRow& row : rowsToBytes(PX_MATRIX_BT601)) {
        expectQuotients(planes<&simd::DeepKernels::toBytePlanes>(1, OddPixel::Own), row);
    }
    for (const DeepRow& row : rowsToWords(PX_MATRIX_BT601)) expectQuotients(toWords, row);
    expectQuotients(toWords, row10To10(PX_MATRIX_BT601));
}

// The words of pixels are noise with the limit that the converters keep.
TEST(RgbWords, EveryLevelEqualsPortableAtEveryWidthAndPlacement) {
    struct Format {
        simd::PackRgbKernel (*kernel)(simd::Level, std::size_t);
        std::size_t index;
        unsigned pixelBytes;
    };
    std::vector<Format> formats;
    for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
        formats.push_back({[](simd::Level level, std::size_t f) { return simd::kernelsAt(level).rgbWords.toRgb8[f]; },
                           i, bytesPerPixel(static_cast<simd::Rgb8>(i))});
    }

    PlacedRow in{4096};
    PlacedRow out{4096};
    for (const Format& format : formats) {
        for (std::size_t pixels = 0; pixels <= kMostPixels; ++pixels) {
            const Bytes rgb = words(3 * pixels, 8, static_cast<unsigned>(pixels));
            const auto pack = [&](simd::Level level, std::uint8_t* dst, const std::uint8_t* r) {
                format.kernel(level, format.index)(dst, r, r + 2 * pixels, r + 4 * pixels, pixels);
            };
            Bytes expected(pixels * format.pixelBytes);
            pack(simd::Level::Portable, expected.data(), rgb.data());
            for (const simd::Level level : vectorLevels()) {
                eachPlacement([&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                    pack(level, out.place(expected.size(), dstOffset, dstAtEnd), in.place(rgb, srcOffset, srcAtEnd));
                    ASSERT_TRUE(out.holds(expected) && out.aroundIsUntouched())
                        << simd::levelName(level) << ", format " << format.index << ", " << pixels << " pixels, offset "
                        << dstOffset;
                });
            }
        }
    }
}

TEST(RgbWords, EveryWordNarrows) {
    constexpr unsigned kWords = 65536 + 17; // ends within a vector
    Bytes all(2 * kWords);
    for (unsigned i = 0; i < kWords; ++i) put(all, i, i % 65536);
    for (const simd::Level level : simd::kLevels) {
        Bytes lower(kWords);
        simd::kernelsAt(level).rgbWords.toBytes(lower.data(), all.data(), kWords);
        for (unsigned i = 0; i < kWords; ++i) ASSERT_EQ(lower[i], i % 256) << simd::levelName(level) << ", " << i;
    }
}

} // namespace
