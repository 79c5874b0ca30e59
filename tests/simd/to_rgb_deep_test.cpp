#include "rgb/matrix.h"
#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using simd::OddPixel;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMostPixels = 200;

constexpr OddPixel kOddPixels[] = {OddPixel::Own, OddPixel::Average, OddPixel::AverageButRed};

auto toWords(simd::Level level, OddPixel odd) {
    return simd::kernelsAt(level).rgbDeep.of(odd).toWords;
}

auto toWordsFloat(simd::Level level) {
    return simd::kernelsAt(level).rgbDeep.toWordsFloat;
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

    // Calls kernel(r, g, b, y, cb, cr, pixels, row) with samples placed and words as they come out.
    template <class Kernel, class Row>
    Bytes convert(Kernel kernel, const Row& row, unsigned offset, bool atEnd) {
        const std::uint8_t* const y = yRow_.place(y_, offset, atEnd);
        const std::uint8_t* const cb = cbRow_.place(cb_, (offset + 3) % kAlignments, atEnd);
        const std::uint8_t* const cr = crRow_.place(cr_, (offset + 5) % kAlignments, atEnd);
        const std::size_t plane = 2 * pixels_;
        std::uint8_t* const out = out_.place(3 * plane, offset * 7 % kAlignments, atEnd);
        kernel(out, out + plane, out + 2 * plane, y, cb, cr, pixels_, row);
        EXPECT_TRUE(out_.aroundIsUntouched()) << pixels_ << " pixels, offset " << offset;
        return {out, out + 3 * plane};
    }

    template <class Kernel>
    Bytes toPixels(Kernel kernel, const simd::DeepRow& row, unsigned pixelBytes, unsigned offset, bool atEnd) {
        const std::uint8_t* const y = yRow_.place(y_, offset, atEnd);
        const std::uint8_t* const cb = cbRow_.place(cb_, (offset + 3) % kAlignments, atEnd);
        const std::uint8_t* const cr = crRow_.place(cr_, (offset + 5) % kAlignments, atEnd);
        std::uint8_t* const out = out_.place(pixels_ * pixelBytes, offset * 7 % kAlignments, atEnd);
        kernel(out, y, cb, cr, pixels_, row);
        EXPECT_TRUE(out_.aroundIsUntouched()) << pixels_ << " pixels, offset " << offset;
        return {out, out + pixels_ * pixelBytes};
    }

private:
    std::size_t pixels_ = 0;
    Bytes y_, cb_, cr_;
    PlacedRow yRow_{8192}, cbRow_{8192}, crRow_{8192}, out_{8192};
};

TEST(ToRgbDeep, EveryLevelEqualsPortableAtEveryWidthAndPlacement) {
    Samples samples;
    const auto expectPortable = [&](OddPixel odd, const auto& row, auto kernelOf) {
        for (std::size_t pixels = 0; pixels <= kMostPixels; ++pixels) {
            samples.fill(pixels, odd, 10);
            const Bytes expected = samples.convert(kernelOf(simd::Level::Portable), row, 0, false);
            for (const simd::Level level : vectorLevels()) {
                for (unsigned offset = 0; offset < kAlignments; ++offset) {
                    for (const bool atEnd : {false, true}) {
                        ASSERT_EQ(samples.convert(kernelOf(level), row, offset, atEnd), expected)
                            << simd::levelName(level) << ", " << static_cast<int>(odd) << ", " << pixels << " pixels";
                    }
                }
            }
        }
    };
    for (const OddPixel odd : kOddPixels) {
        expectPortable(odd, row10To16(PX_MATRIX_BT709), [odd](simd::Level level) { return toWords(level, odd); });
    }
    expectPortable(OddPixel::AverageButRed, row10To8Float(PX_MATRIX_BT709), toWordsFloat);
}

// The divisions of all converters.
std::vector<simd::DeepRow> rows(PXYCBCRMatrix matrix) {
    return {row10To8(matrix),  row10To8By8(matrix), row10To10(matrix),
            row10To16(matrix), row12To16(matrix),   row8To8(matrix)};
}

// Samples of every number of bits, those that need all 16 among others in a vector and alone.
TEST(ToRgbDeep, EveryLevelEqualsPortableOnSamplesOfAnyDepth) {
    Samples samples;
    for (unsigned matrix = 0; matrix < 8; ++matrix) {
        for (const simd::DeepRow& row : rows(static_cast<PXYCBCRMatrix>(matrix))) {
            for (const OddPixel odd : kOddPixels) {
                for (unsigned bits = 8; bits <= 16; ++bits) {
                    if (odd == OddPixel::AverageButRed && bits > 10) break;
                    samples.fill(1000 + matrix, odd, bits);
                    const Bytes expected = samples.convert(toWords(simd::Level::Portable, odd), row, 0, false);
                    for (const simd::Level level : vectorLevels()) {
                        ASSERT_EQ(samples.convert(toWords(level, odd), row, 0, false), expected)
                            << simd::levelName(level) << ", " << static_cast<int>(odd) << ", matrix " << matrix
                            << ", divisor " << row.divisor << ", " << bits << " bits";
                    }
                }
            }
        }
    }
}

// Pixels at every width that a block may end in, with samples that a vector cannot take among the others.
TEST(ToRgbDeep, EveryLevelEqualsPortableInEveryLayout) {
    Samples samples;
    const auto expectPortable = [&](OddPixel odd, const simd::DeepRow& row, unsigned pixelBytes, auto kernelOf) {
        for (std::size_t pixels = 0; pixels <= kMostPixels; ++pixels) {
            samples.fill(pixels, odd, odd == OddPixel::AverageButRed || pixels % 2 == 0 ? 10 : 16);
            const Bytes expected = samples.toPixels(kernelOf(simd::Level::Portable), row, pixelBytes, 0, false);
            for (const simd::Level level : vectorLevels()) {
                for (unsigned offset = 0; offset < kAlignments; offset += 7) {
                    for (const bool atEnd : {false, true}) {
                        ASSERT_EQ(samples.toPixels(kernelOf(level), row, pixelBytes, offset, atEnd), expected)
                            << simd::levelName(level) << ", " << static_cast<int>(odd) << ", " << pixels
                            << " pixels of " << pixelBytes << " bytes";
                    }
                }
            }
        }
    };
    for (const OddPixel odd : kOddPixels) {
        for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
            expectPortable(odd, row10To8(PX_MATRIX_BT709), bytesPerPixel(static_cast<simd::Rgb8>(i)),
                           [&](simd::Level level) { return simd::kernelsAt(level).rgbDeep.of(odd).toRgb8[i]; });
        }
        for (std::size_t i = 0; i < simd::kRgb16s; ++i) {
            const auto kernelOf = [&](simd::Level level) { return simd::kernelsAt(level).rgbDeep.of(odd).toRgb16[i]; };
            const unsigned pixelBytes = bytesPerPixel(static_cast<simd::Rgb16>(i));
            expectPortable(odd, row10To16(PX_MATRIX_BT709), pixelBytes, kernelOf);
            expectPortable(odd, row12To16(PX_MATRIX_BT709), pixelBytes, kernelOf);
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
    Bytes expected(3 * 2 * kPixels);
    Bytes got(expected.size());
    const auto expectPortable = [&](unsigned matrix, const auto& row, auto kernelOf) {
        for (unsigned chroma = 0; chroma < 1024; ++chroma) {
            for (unsigned i = 0; i <= kPixels / 2; ++i) {
                put(cr, i, chroma);
                put(cb, i, (chroma * 7 + i * 5) % 1024);
            }
            const auto convert = [&](simd::Level level, Bytes& out) {
                kernelOf(level)(out.data(), out.data() + 2 * kPixels, out.data() + 4 * kPixels, y.data(), cb.data(),
                                cr.data(), kPixels, row);
            };
            convert(simd::Level::Portable, expected);
            for (const simd::Level level : vectorLevels()) {
                convert(level, got);
                ASSERT_EQ(got, expected) << simd::levelName(level) << ", matrix " << matrix << ", chroma " << chroma;
            }
        }
    };
    for (const unsigned number : {0U, 1U, 2U, 3U, 6U, 7U}) {
        const auto matrix = static_cast<PXYCBCRMatrix>(number);
        for (const simd::DeepRow& row : rows(matrix)) {
            expectPortable(number, row, [](simd::Level level) { return toWords(level, OddPixel::Own); });
        }
        expectPortable(number, row10To8Float(matrix), toWordsFloat);
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
    for (simd::DeepRow row : rows(PX_MATRIX_BT601)) {
        row.k = {0, kStep, 1, 0, 0, 1};
        row.centre = 0;
        const unsigned top = (row.max + 1) * row.divisor + 3 * kStep;
        for (const simd::Level level : vectorLevels()) {
            for (unsigned luma = 0; luma * kStep < top && luma < 32768; ++luma) {
                for (std::size_t i = 0; i < kPixels; ++i) put(y, i, luma);
                toWords(level, OddPixel::Own)(out.data(), out.data() + 2 * kPixels, out.data() + 4 * kPixels, y.data(),
                                              cb.data(), cr.data(), kPixels, row);
                for (unsigned i = 0; i < kPixels; ++i) {
                    const unsigned expected = std::min((luma * kStep + i / 2) / row.divisor, row.max);
                    ASSERT_EQ(unsigned{out[2 * i]} | unsigned{out[2 * i + 1]} << 8, expected)
                        << simd::levelName(level) << ", " << luma * kStep + i / 2 << " by " << row.divisor;
                }
            }
        }
    }
}

// The words of pixels are noise with the limit that the converters keep.
TEST(RgbWords, EveryLevelEqualsPortableAtEveryWidthAndPlacement) {
    struct Format {
        simd::PackRgbKernel (*kernel)(simd::Level, std::size_t);
        std::size_t index;
        unsigned pixelBytes;
        unsigned bits; // of a word
    };
    std::vector<Format> formats;
    for (std::size_t i = 0; i < simd::kRgb8s; ++i) {
        formats.push_back({[](simd::Level level, std::size_t f) { return simd::kernelsAt(level).rgbWords.toRgb8[f]; },
                           i, bytesPerPixel(static_cast<simd::Rgb8>(i)), 8});
    }
    formats.push_back(
        {[](simd::Level level, std::size_t) { return simd::kernelsAt(level).rgbWords.toRgb10; }, 0, 4, 16});

    PlacedRow in{4096};
    PlacedRow out{4096};
    for (const Format& format : formats) {
        for (std::size_t pixels = 0; pixels <= kMostPixels; ++pixels) {
            const Bytes rgb = words(3 * pixels, format.bits, static_cast<unsigned>(pixels));
            const auto pack = [&](simd::Level level, std::uint8_t* dst, const std::uint8_t* r) {
                format.kernel(level, format.index)(dst, r, r + 2 * pixels, r + 4 * pixels, pixels);
            };
            Bytes expected(pixels * format.pixelBytes);
            pack(simd::Level::Portable, expected.data(), rgb.data());
            for (const simd::Level level : vectorLevels()) {
                eachPlacement([&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                    pack(level, out.place(expected.size(), dstOffset, dstAtEnd), in.place(rgb, srcOffset, srcAtEnd));
                    ASSERT_TRUE(out.holds(expected) && out.aroundIsUntouched())
                        << simd::levelName(level) << ", format " << format.index << " of " << format.bits << " bits, "
                        << pixels << " pixels, offset " << dstOffset;
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
        const auto& kernels = simd::kernelsAt(level).rgbWords;
        Bytes divided = all;
        kernels.divide255(divided.data(), divided.data(), kWords);
        Bytes lower(kWords);
        kernels.toBytes(lower.data(), divided.data(), kWords);
        for (unsigned i = 0; i < kWords; ++i) {
            const unsigned expected = i % 65536 / 255 % 256;
            ASSERT_EQ(unsigned{divided[2 * i]} | unsigned{divided[2 * i + 1]} << 8, expected)
                << simd::levelName(level) << ", " << i;
            ASSERT_EQ(lower[i], expected) << simd::levelName(level) << ", " << i;
        }
    }
}

} // namespace
