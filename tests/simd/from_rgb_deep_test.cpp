#include "rgb/from_rgb_deep_matrix.h"
#include "rgb/layout.h"
#include "tests/levels.h"
#include "tests/rgb/from_rgb_deep_model.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using simd::RgbSource;
using Bytes = std::vector<std::uint8_t>;

constexpr unsigned kMatrices = 10;

PXYCBCRMatrix matrixOf(unsigned matrix) {
    return static_cast<PXYCBCRMatrix>(matrix);
}

// A kernel with the rows that converters give it, and where its samples go.
enum class To { Planes444, Planes422, V210, V210Filtered, Alpha };
struct Case {
    const char* name;
    RgbSource source;
    To to;
    simd::FromRgbDeepRow (*row)(PXYCBCRMatrix);
    FromRgb arithmetic;
    RgbIn layout;

    // Into the rows y, cb and cr; into y alone if it is v210.
    void convert(simd::Level level, std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src,
                 std::size_t pixels, const simd::RgbOrder& order, const simd::FromRgbDeepRow& k) const {
        const simd::FromRgbDeepOfSource& kernels = simd::kernelsAt(level).fromRgbDeep.of(source);
        if (to == To::Planes444) return kernels.full(y, cb, cr, src, pixels, order, k);
        if (to == To::Planes422) return kernels.halved(y, cb, cr, src, pixels, order, k);
        kernels.toV210[to == To::V210Filtered ? 0 : 1](y, src, pixels, order, k);
    }
};
const Case kCases[] = {
    {"32", RgbSource::Four8, To::V210, rgb8To10, FromRgb::From8To10, RgbIn::Four8},
    {"24", RgbSource::Three8, To::V210, rgb8To10, FromRgb::From8To10, RgbIn::Three8},
    {"64", RgbSource::Four16, To::V210, rgb16To10, FromRgb::From16To10, RgbIn::Four16},
    {"48", RgbSource::Three16, To::V210, rgb16To10, FromRgb::From16To10, RgbIn::Three16},
    {"10", RgbSource::Three10, To::V210, rgb10To10, FromRgb::From10To10, RgbIn::Packed10},
    {"32, filtered", RgbSource::Four8, To::V210Filtered, rgb8To10, FromRgb::From8To10, RgbIn::Four8},
    {"24, filtered", RgbSource::Three8, To::V210Filtered, rgb8To10, FromRgb::From8To10, RgbIn::Three8},
    {"64, filtered", RgbSource::Four16, To::V210Filtered, rgb16To10, FromRgb::From16To10, RgbIn::Four16},
    {"48, filtered", RgbSource::Three16, To::V210Filtered, rgb16To10, FromRgb::From16To10, RgbIn::Three16},
    {"10, filtered", RgbSource::Three10, To::V210Filtered, rgb10To10, FromRgb::From10To10, RgbIn::Packed10},
    {"32, 4:4:4", RgbSource::Four8, To::Planes444, rgb8To10, FromRgb::From8To10, RgbIn::Four8},
    {"24, 4:4:4", RgbSource::Three8, To::Planes444, rgb8To10, FromRgb::From8To10, RgbIn::Three8},
    {"64, 4:4:4", RgbSource::Four16Upper10, To::Planes444, rgbUpper10To10, FromRgb::UpperTo10, RgbIn::Four16},
    {"48, 4:4:4", RgbSource::Three16Upper10, To::Planes444, rgbUpper10To10, FromRgb::UpperTo10, RgbIn::Three16},
    {"64, 12 bits", RgbSource::Four16Upper10, To::Planes422, rgbUpper10To12, FromRgb::UpperTo12, RgbIn::Four16},
    {"48, 12 bits", RgbSource::Three16Upper10, To::Planes422, rgbUpper10To12, FromRgb::UpperTo12, RgbIn::Three16},
    {"64, 16 bits", RgbSource::Four16, To::Planes422, rgb16To16, FromRgb::From16To16, RgbIn::Four16},
    {"48, 16 bits", RgbSource::Three16, To::Planes422, rgb16To16, FromRgb::From16To16, RgbIn::Three16},
    {"10, 16 bits", RgbSource::Three10, To::Planes422, rgb10To10, FromRgb::From10To10, RgbIn::Packed10},
};

// Bytes of the rows y, cb and cr for so many pixels.
struct RowBytes {
    std::size_t y, cb, cr;
    [[nodiscard]] std::size_t all() const { return y + cb + cr; }
};
RowBytes rowBytes(To to, std::size_t pixels) {
    const std::size_t halved = (pixels + 1) / 2 * 2;
    if (to == To::Planes444) return {2 * pixels, 2 * pixels, 2 * pixels};
    if (to == To::Planes422) return {2 * pixels, halved, halved};
    if (to == To::Alpha) return {(pixels + 2) / 3 * 4, 0, 0};
    return {pixels / 6 * 16 + (pixels % 6 >= 2 ? 8 : 0), 0, 0};
}

const Case& kBytesTo444 = kCases[10];
constexpr simd::RgbOrder kOrder{2, 1, 0};
constexpr simd::RgbOrder k10Order{0, 1, 2};

const simd::RgbOrder& orderOf(const Case& c) {
    return c.layout == RgbIn::Packed10 ? k10Order : kOrder;
}

// Calls kernel(y, cb, cr) with room for what `pixels` pixels become, which comes back one row after the other.
template <class Kernel>
Bytes rowsFrom(std::size_t pixels, To to, const Kernel& kernel) {
    const RowBytes bytes = rowBytes(to, pixels);
    Bytes out(bytes.all());
    kernel(out.data(), out.data() + bytes.y, out.data() + bytes.y + bytes.cb);
    return out;
}

Bytes convert(const Case& c, simd::Level level, const Bytes& src, const simd::RgbOrder& order,
              const simd::FromRgbDeepRow& row) {
    const std::size_t pixels = src.size() / bytesPerPixel(c.source);
    return rowsFrom(pixels, c.to, [&](std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr) {
        c.convert(level, y, cb, cr, src.data(), pixels, order, row);
    });
}

void expectEveryLevelEqualsPortable(const Case& c, const Bytes& src, unsigned matrix) {
    const simd::FromRgbDeepRow row = c.row(matrixOf(matrix));
    const Bytes expected = convert(c, simd::Level::Portable, src, orderOf(c), row);
    for (const simd::Level level : vectorLevels()) {
        ASSERT_EQ(convert(c, level, src, orderOf(c), row), expected)
            << simd::levelName(level) << ", " << c.name << ", matrix " << matrix;
    }
}

// Not a byte is touched that is not the row's: neither of pixels nor of samples.
class Placed {
public:
    // Calls kernel(y, cb, cr, src) with all rows against one end of their rooms.
    template <class Kernel>
    Bytes convert(const Bytes& src, const RowBytes& bytes, unsigned offset, bool atEnd, const Kernel& kernel) {
        const std::uint8_t* const from = src_.place(src, offset, atEnd);
        std::uint8_t* const y = y_.place(bytes.y, offset * 7 % kAlignments, atEnd);
        std::uint8_t* const cb = cb_.place(bytes.cb, (offset + 3) % kAlignments, atEnd);
        std::uint8_t* const cr = cr_.place(bytes.cr, (offset + 5) % kAlignments, atEnd);
        kernel(y, cb, cr, from);
        EXPECT_TRUE(y_.aroundIsUntouched() && cb_.aroundIsUntouched() && cr_.aroundIsUntouched())
            << "offset " << offset;
        Bytes out(y, y + bytes.y);
        out.insert(out.end(), cb, cb + bytes.cb);
        out.insert(out.end(), cr, cr + bytes.cr);
        return out;
    }

private:
    PlacedRow src_{8192}, y_{8192}, cb_{8192}, cr_{8192};
};

// A kernel of either kind with its row.
struct RowCase {
    std::string name;
    unsigned pixelBytes;
    To to;
    std::function<void(simd::Level, std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, const std::uint8_t* src,
                       std::size_t pixels)>
        convert;
};

std::vector<RowCase> rowCases() {
    std::vector<RowCase> cases;
    for (const Case& c : kCases) {
        cases.push_back({c.name, bytesPerPixel(c.source), c.to,
                         [&c, row = c.row(PX_MATRIX_BT709)](simd::Level level, auto* y, auto* cb, auto* cr, auto* src,
                                                            std::size_t pixels) {
                             c.convert(level, y, cb, cr, src, pixels, kOrder, row);
                         }});
    }
    for (const auto alpha : {&simd::FromRgbDeepKernels::alpha, &simd::FromRgbDeepKernels::scaledAlpha}) {
        cases.push_back({"alpha", 4, To::Alpha,
                         [alpha](simd::Level level, auto* y, auto* /*cb*/, auto* /*cr*/, auto* src,
                                 std::size_t pixels) { (simd::kernelsAt(level).fromRgbDeep.*alpha)(y, src, pixels); }});
    }
    for (const unsigned three : {0U, 1U}) {
        cases.push_back({"double", three == 0 ? 8U : 6U, To::Planes444,
                         [three, row = rgb16To10Float(PX_MATRIX_BT709)](simd::Level level, auto* y, auto* cb, auto* cr,
                                                                        auto* src, std::size_t pixels) {
                             simd::kernelsAt(level).fromRgbDeep.fullFloat[three](y, cb, cr, src, pixels, kOrder, row);
                         }});
    }
    return cases;
}

TEST(FromRgbDeep, EveryLevelEqualsPortableAtEveryWidthAndPlacement) {
    Placed placed;
    for (const RowCase& c : rowCases()) {
        for (std::size_t pixels = 0; pixels <= 200; ++pixels) {
            const Bytes src = noise(pixels * c.pixelBytes, static_cast<unsigned>(pixels) + 1);
            const RowBytes bytes = rowBytes(c.to, pixels);
            const auto at = [&](simd::Level level, unsigned offset, bool atEnd) {
                const auto kernel = [&](auto* y, auto* cb, auto* cr, auto* from) {
                    c.convert(level, y, cb, cr, from, pixels);
                };
                return placed.convert(src, bytes, offset, atEnd, kernel);
            };
            const Bytes expected = at(simd::Level::Portable, 0, true);
            for (const simd::Level level : vectorLevels()) {
                for (unsigned offset = 0; offset < kAlignments; offset += 5) {
                    for (const bool atEnd : {false, true}) {
                        ASSERT_EQ(at(level, offset, atEnd), expected)
                            << simd::levelName(level) << ", " << c.name << ", " << pixels << " pixels";
                    }
                }
            }
        }
    }
}

TEST(FromRgbDeep, EveryLevelEqualsPortableOnAllTriplesOfBytes) {
    constexpr unsigned kPixels = 65536;
    Bytes src(std::size_t{4} * kPixels);
    for (unsigned r = 0; r < 256; ++r) {
        for (unsigned i = 0; i < kPixels; ++i)
            storeRgb(&src[std::size_t{4} * i], RgbIn::Four8, 0, {r, i / 256, i % 256});
        for (unsigned matrix = 0; matrix < kMatrices; ++matrix) {
            ASSERT_NO_FATAL_FAILURE(expectEveryLevelEqualsPortable(kBytesTo444, src, matrix)) << "R " << r;
        }
    }
}

Bytes fastNoise(std::size_t bytes, std::mt19937_64& random) {
    Bytes data(bytes);
    for (std::size_t i = 0; i + 8 <= bytes; i += 8) {
        const std::uint64_t word = random();
        std::memcpy(&data[i], &word, sizeof word);
    }
    return data;
}

// As many pixels as FIKLEIPA_TEST_PIXELS says for each row of coefficients.
TEST(FromRgbDeep, EveryLevelEqualsPortableOnNoise) {
    constexpr std::size_t kPixels = 16384;
    const char* const wanted = std::getenv("FIKLEIPA_TEST_PIXELS"); // NOLINT(concurrency-mt-unsafe): nobody sets it
    const std::size_t rounds = (wanted == nullptr ? 3'000'000 : std::stoul(wanted)) / kPixels + 1;
    std::mt19937_64 random(1);
    for (std::size_t round = 0; round < rounds; ++round) {
        const Bytes src = fastNoise(8 * kPixels, random);
        for (const Case& c : kCases) {
            // The filter would hide differences.
            if (c.layout != RgbIn::Four16 && c.source != RgbSource::Three10) continue;
            if (c.to == To::V210Filtered) continue;
            for (unsigned matrix = 0; matrix < kMatrices; ++matrix) {
                ASSERT_NO_FATAL_FAILURE(expectEveryLevelEqualsPortable(c, src, matrix)) << "round " << round;
            }
        }
    }
}

void put(std::uint8_t* samples, std::size_t i, unsigned sample) {
    std::memcpy(samples + 2 * i, &sample, 2);
}

// What a row is to become, to the letter.
Bytes literal(const Case& c, unsigned matrix, const std::vector<RgbColour>& colours) {
    std::vector<YccSamples> row;
    for (const RgbColour& colour : colours) row.push_back(fromRgb(c.arithmetic, matrix, colour));
    if (c.to == To::V210 || c.to == To::V210Filtered) return v210Row(row, c.to == To::V210Filtered);
    const unsigned left = c.source == RgbSource::Three10 ? 6 : 0;
    return rowsFrom(row.size(), c.to, [&](std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr) {
        for (std::size_t x = 0; x < row.size(); ++x) {
            put(y, x, row[x].y << left);
            const YccSamples& next = row[std::min(x + 1, row.size() - 1)];
            if (c.to == To::Planes444) {
                put(cb, x, row[x].cb);
                put(cr, x, row[x].cr);
            } else if (x % 2 == 0) {
                put(cb, x / 2, ((row[x].cb << left) + (next.cb << left)) >> 1);
                put(cr, x / 2, ((row[x].cr << left) + (next.cr << left)) >> 1);
            }
        }
    });
}

TEST(FromRgbDeep, EveryLevelFollowsTheEquationsAtEveryStep) {
    for (const Case& c : kCases) {
        for (unsigned matrix = 0; matrix < kMatrices; ++matrix) {
            std::vector<RgbColour> colours;
            for (const RgbColour& colour : coloursAtSteps(c.arithmetic, matrix)) {
                colours.insert(colours.end(), c.to == To::Planes444 ? 1 : 2, colour); // each has its chroma seen
            }
            ASSERT_GT(colours.size(), 1000U);
            Bytes src(colours.size() * bytesOf(c.layout));
            for (std::size_t x = 0; x < colours.size(); ++x) {
                storeRgb(&src[x * bytesOf(c.layout)], c.layout, 0, colours[x]);
            }
            const Bytes expected = literal(c, matrix, colours);
            for (const simd::Level level : simd::kLevels) {
                if (level > simd::bestLevel()) break;
                ASSERT_EQ(convert(c, level, src, orderOf(c), c.row(matrixOf(matrix))), expected)
                    << simd::levelName(level) << ", " << c.name << ", matrix " << matrix;
            }
        }
    }
}

// Rows in which luma is every sum from 0 to beyond what the limit allows, divided: R counts the lowest `step` of them,
// G and B the rest.
struct SumsCase {
    RgbSource source;
    unsigned step;
    unsigned shift; // of what counts within a component
    std::uint32_t divisor;
    std::uint32_t max;
};

TEST(FromRgbDeep, EverySumDividesExactly) {
    constexpr SumsCase kSums[] = {{RgbSource::Four16Upper10, 1000, 6, 625, 4095},
                                  {RgbSource::Four16Upper10, 1000, 6, 15625, 1023},
                                  {RgbSource::Four16, 32767, 0, 625, 65535}};
    for (const SumsCase& c : kSums) {
        const auto step = static_cast<std::int32_t>(c.step);
        const std::int32_t upper = c.shift == 0 ? step : 1000 * step;
        simd::FromRgbDeepRow row{{0, {1, step, upper}, {}, {}}, c.divisor, c.max, {}, {}, {}};
        std::vector<std::uint16_t> src(std::size_t{4} * c.step);
        std::vector<std::uint16_t> y(c.step);
        Bytes chroma(4 * std::size_t{c.step});
        const unsigned top = (c.max + 2) * c.divisor;
        for (unsigned count = 0; count * c.step < top; ++count) {
            const unsigned g = c.shift == 0 ? count : count % 1000;
            const unsigned b = c.shift == 0 ? 0 : count / 1000;
            for (unsigned i = 0; i < c.step; ++i) {
                const unsigned components[] = {i, g, b};
                for (unsigned j = 0; j < 3; ++j) src[4 * i + j] = static_cast<std::uint16_t>(components[j] << c.shift);
            }
            for (const simd::Level level : vectorLevels()) {
                simd::kernelsAt(level).fromRgbDeep.of(c.source).halved(
                    reinterpret_cast<std::uint8_t*>(y.data()), chroma.data(), chroma.data() + 2 * std::size_t{c.step},
                    reinterpret_cast<const std::uint8_t*>(src.data()), c.step, {0, 1, 2}, row);
                for (unsigned i = 0; i < c.step; ++i) {
                    const unsigned sum = count * c.step + i;
                    ASSERT_EQ(y[i], std::min(sum / c.divisor, c.max))
                        << simd::levelName(level) << ", " << sum << " by " << c.divisor;
                }
            }
        }
    }
}

TEST(FromRgbDeep, EveryAlphaIsScaledExactly) {
    constexpr std::size_t kPixels = 3 * 256;
    Bytes src(4 * kPixels);
    for (std::size_t x = 0; x < kPixels; ++x) src[4 * x + 3] = static_cast<std::uint8_t>(x / 3);
    for (const simd::Level level : vectorLevels()) {
        std::vector<std::uint32_t> words(256);
        simd::kernelsAt(level).fromRgbDeep.scaledAlpha(reinterpret_cast<std::uint8_t*>(words.data()), src.data(),
                                                       kPixels);
        for (unsigned a = 0; a < 256; ++a) {
            ASSERT_EQ(words[a], (a * 876 / 255 + 64) * (1U + (1U << 10) + (1U << 20))) << simd::levelName(level);
        }
    }
}

// All greys and as much noise.
TEST(FromRgbDeep, DoublePrecisionIsTheSameAtEveryLevel) {
    constexpr std::size_t kPixels = 2 * 65536;
    std::mt19937_64 random(1);
    Bytes src = fastNoise(8 * kPixels, random);
    for (std::size_t i = 0; i < 4 * kPixels; ++i) {
        src[2 * i] = static_cast<std::uint8_t>(i / 4);
        src[2 * i + 1] = static_cast<std::uint8_t>(i / 1024);
        if (i / 4 == 65535) break;
    }
    for (unsigned matrix = 0; matrix < kMatrices; ++matrix) {
        const simd::FromRgbFloatRow row = rgb16To10Float(matrixOf(matrix));
        const auto at = [&](simd::Level level) {
            return rowsFrom(kPixels, To::Planes444, [&](std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr) {
                simd::kernelsAt(level).fromRgbDeep.fullFloat[0](y, cb, cr, src.data(), kPixels, kOrder, row);
            });
        };
        const Bytes expected = at(simd::Level::Portable);
        for (const simd::Level level : vectorLevels()) {
            ASSERT_EQ(at(level), expected) << simd::levelName(level) << ", matrix " << matrix;
        }
    }
}

} // namespace
