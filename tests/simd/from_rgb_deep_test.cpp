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
enum class To { Planes444, Planes422, V210 };
struct Case {
    const char* name;
    RgbSource source;
    To to;
    simd::FromRgbDeepRow (*row)(PXYCBCRMatrix);
    FromRgb arithmetic;
    RgbIn layout;

    [[nodiscard]] auto kernel(simd::Level level) const {
        const simd::FromRgbDeepOfSource& kernels = simd::kernelsAt(level).fromRgbDeep.of(source);
        return to == To::V210 ? kernels.forV210 : to == To::Planes422 ? kernels.halved : kernels.full;
    }
};
const Case kCases[] = {
    {"32", RgbSource::Four8, To::V210, rgb8To10, FromRgb::From8To10, RgbIn::Four8},
    {"24", RgbSource::Three8, To::V210, rgb8To10, FromRgb::From8To10, RgbIn::Three8},
    {"64", RgbSource::Four16, To::V210, rgb16To10, FromRgb::From16To10, RgbIn::Four16},
    {"48", RgbSource::Three16, To::V210, rgb16To10, FromRgb::From16To10, RgbIn::Three16},
    {"10", RgbSource::Three10, To::V210, rgb10To10, FromRgb::From10To10, RgbIn::Packed10},
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

// Bytes of the second and of the third row for so many pixels.
struct ChromaBytes {
    std::size_t second, third;
};
ChromaBytes chromaBytes(To to, std::size_t pixels) {
    const std::size_t pairs = (pixels + 1) / 2;
    if (to == To::V210) return {4 * pairs, pixels / 2 * 4};
    return to == To::Planes422 ? ChromaBytes{2 * pairs, 2 * pairs} : ChromaBytes{2 * pixels, 2 * pixels};
}

constexpr simd::RgbOrder kOrder{2, 1, 0};
constexpr simd::RgbOrder k10Order{0, 1, 2};

const simd::RgbOrder& orderOf(const Case& c) {
    return c.layout == RgbIn::Packed10 ? k10Order : kOrder;
}

// Calls kernel(y, cb, cr) with room for the samples of `pixels` pixels, which come back one row after the other.
template <class Kernel>
Bytes samplesFrom(std::size_t pixels, To to, const Kernel& kernel) {
    const ChromaBytes bytes = chromaBytes(to, pixels);
    Bytes out(2 * pixels + bytes.second + bytes.third);
    kernel(out.data(), out.data() + 2 * pixels, out.data() + 2 * pixels + bytes.second);
    return out;
}

Bytes convert(const Case& c, simd::Level level, const Bytes& src, const simd::RgbOrder& order,
              const simd::FromRgbDeepRow& row) {
    const std::size_t pixels = src.size() / bytesPerPixel(c.source);
    return samplesFrom(pixels, c.to, [&](std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr) {
        c.kernel(level)(y, cb, cr, src.data(), pixels, order, row);
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
    Bytes convert(const Bytes& src, std::size_t pixels, const ChromaBytes& chroma, unsigned offset, bool atEnd,
                  const Kernel& kernel) {
        const std::uint8_t* const from = src_.place(src, offset, atEnd);
        std::uint8_t* const y = y_.place(2 * pixels, offset * 7 % kAlignments, atEnd);
        std::uint8_t* const cb = cb_.place(chroma.second, (offset + 3) % kAlignments, atEnd);
        std::uint8_t* const cr = cr_.place(chroma.third, (offset + 5) % kAlignments, atEnd);
        kernel(y, cb, cr, from);
        EXPECT_TRUE(y_.aroundIsUntouched() && cb_.aroundIsUntouched() && cr_.aroundIsUntouched())
            << pixels << " pixels, offset " << offset;
        Bytes out(y, y + 2 * pixels);
        out.insert(out.end(), cb, cb + chroma.second);
        out.insert(out.end(), cr, cr + chroma.third);
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
                             c.kernel(level)(y, cb, cr, src, pixels, kOrder, row);
                         }});
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
            const ChromaBytes chroma = chromaBytes(c.to, pixels);
            const auto at = [&](simd::Level level, unsigned offset, bool atEnd) {
                const auto kernel = [&](auto* y, auto* cb, auto* cr, auto* from) {
                    c.convert(level, y, cb, cr, from, pixels);
                };
                return placed.convert(src, pixels, chroma, offset, atEnd, kernel);
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
            ASSERT_NO_FATAL_FAILURE(expectEveryLevelEqualsPortable(kCases[0], src, matrix)) << "R " << r;
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
    const std::size_t rounds = (wanted == nullptr ? 10'000'000 : std::stoul(wanted)) / kPixels + 1;
    std::mt19937_64 random(1);
    for (std::size_t round = 0; round < rounds; ++round) {
        const Bytes src = fastNoise(8 * kPixels, random);
        for (const Case& c : kCases) {
            if (c.layout != RgbIn::Four16 && c.source != RgbSource::Three10) continue;
            for (unsigned matrix = 0; matrix < kMatrices; ++matrix) {
                ASSERT_NO_FATAL_FAILURE(expectEveryLevelEqualsPortable(c, src, matrix)) << "round " << round;
            }
        }
    }
}

void put(std::uint8_t* samples, std::size_t i, unsigned sample) {
    std::memcpy(samples + 2 * i, &sample, 2);
}

// The samples that a row is to have, to the letter.
Bytes literal(const Case& c, unsigned matrix, const std::vector<RgbColour>& colours) {
    std::vector<YccSamples> row;
    for (const RgbColour& colour : colours) row.push_back(fromRgb(c.arithmetic, matrix, colour));
    const unsigned left = c.to == To::Planes422 && c.source == RgbSource::Three10 ? 6 : 0;
    return samplesFrom(row.size(), c.to, [&](std::uint8_t* y, std::uint8_t* second, std::uint8_t* third) {
        for (std::size_t x = 0; x < row.size(); ++x) {
            put(y, x, row[x].y << left);
            const YccSamples& next = row[std::min(x + 1, row.size() - 1)];
            if (c.to == To::Planes444) {
                put(second, x, row[x].cb);
                put(third, x, row[x].cr);
            } else if (c.to == To::V210) {
                put(x % 2 == 0 ? second : third, x / 2 * 2, row[x].cb);
                put(x % 2 == 0 ? second : third, x / 2 * 2 + 1, row[x].cr);
            } else if (x % 2 == 0) {
                put(second, x / 2, ((row[x].cb << left) + (next.cb << left)) >> 1);
                put(third, x / 2, ((row[x].cr << left) + (next.cr << left)) >> 1);
            }
        }
    });
}

TEST(FromRgbDeep, EveryLevelFollowsTheEquationsAtEveryStep) {
    for (const Case& c : kCases) {
        for (unsigned matrix = 0; matrix < kMatrices; ++matrix) {
            const std::vector<RgbColour> colours = coloursAtSteps(c.arithmetic, matrix);
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
        Bytes chroma(2 * std::size_t{c.step});
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
                    reinterpret_cast<std::uint8_t*>(y.data()), chroma.data(), chroma.data() + c.step,
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
            return samplesFrom(kPixels, To::Planes444, [&](std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr) {
                simd::kernelsAt(level).fromRgbDeep.fullFloat[0](y, cb, cr, src.data(), kPixels, kOrder, row);
            });
        };
        const Bytes expected = at(simd::Level::Portable);
        for (const simd::Level level : vectorLevels()) {
            ASSERT_EQ(at(level), expected) << simd::levelName(level) << ", matrix " << matrix;
        }
    }
}

// Whether rows begin or end at a page that nobody may touch, but for the samples beside them that a kernel may read.
TEST(FromRgbDeep, PairsArePackedAtEveryWidthAndPlacement) {
    PlacedRow evenRow{8192};
    PlacedRow oddRow{8192};
    PlacedRow yRow{8192};
    PlacedRow dstRow{8192};
    constexpr auto kReach = static_cast<std::size_t>(simd::kPackReach);
    for (unsigned groups = 0; groups <= 40; ++groups) {
        const auto samples = [&](unsigned seed, std::size_t bytes) {
            Bytes data = noise(bytes, groups + seed);
            for (std::size_t i = 1; i < bytes; i += 2)
                data[i] = static_cast<std::uint8_t>(groups == 40 ? 3 : data[i] % 4);
            return data;
        };
        const Bytes y = samples(1, 12 * std::size_t{groups} + kReach);
        const Bytes even = samples(2, 12 * std::size_t{groups} + kReach);
        const Bytes odd = samples(3, 12 * std::size_t{groups} + kReach + 4); // from the sample ahead on
        for (const bool filtered : {true, false}) {
            const auto at = [](const Bytes& row, std::size_t i) { return row[2 * i] | unsigned{row[2 * i + 1]} << 8; };
            const auto chroma = [&](std::size_t i) {
                if (!filtered) return at(even, i);
                return (at(odd, i) + 2 * at(even, i) + 2 * at(odd, i + 2) + at(even, i + 2)) / 6;
            };
            Bytes expected(std::size_t{16} * groups);
            for (std::size_t i = 0; i < std::size_t{12} * groups; ++i) {
                const unsigned component = i % 2 == 0 ? chroma(i / 2) : at(y, i / 2);
                std::uint32_t word = 0;
                std::memcpy(&word, &expected[i / 3 * 4], 4);
                word |= component << 10 * (i % 3);
                std::memcpy(&expected[i / 3 * 4], &word, 4);
            }
            for (const simd::Level level : simd::kLevels) {
                if (level > simd::bestLevel()) break;
                const auto& kernels = simd::kernelsAt(level).fromRgbDeep;
                eachPlacement([&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                    std::uint8_t* const to = dstRow.place(expected.size(), dstOffset, dstAtEnd);
                    (filtered ? kernels.packFiltered : kernels.packEven)(
                        to, yRow.place(y, srcOffset, srcAtEnd), evenRow.place(even, srcOffset, srcAtEnd),
                        oddRow.place(odd, srcOffset, srcAtEnd) + 4, groups);
                    ASSERT_TRUE(dstRow.holds(expected) && dstRow.aroundIsUntouched())
                        << simd::levelName(level) << ", " << groups << " groups";
                });
            }
        }
    }
}

} // namespace
