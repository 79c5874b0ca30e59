#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using Bytes = std::vector<std::uint8_t>;

struct Kind {
    const char* name;
    simd::MergeAlphaKernel simd::AlphaKernels::*kernel;
    std::size_t sampleBytes;
};
constexpr Kind kKinds[] = {{"bytes", &simd::AlphaKernels::bytes, 1},
                           {"expanded bytes", &simd::AlphaKernels::expandedBytes, 1},
                           {"words", &simd::AlphaKernels::words, 2},
                           {"expanded words", &simd::AlphaKernels::expandedWords, 2}};

simd::MergeAlphaKernel kernel(const Kind& kind, simd::Level level) {
    return simd::kernelsAt(level).alpha.*kind.kernel;
}

// Every sample in turn.
Bytes samples(const Kind& kind, std::size_t count) {
    Bytes row(kind.sampleBytes * count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto sample = static_cast<std::uint16_t>(i % (kind.sampleBytes == 1 ? 256 : 1024));
        std::memcpy(row.data() + kind.sampleBytes * i, &sample, kind.sampleBytes);
    }
    return row;
}

TEST(MergeAlpha, EveryLevelEqualsPortableAtEveryLengthAndPlacement) {
    PlacedRow from(4096);
    PlacedRow to(4096);
    for (const Kind& kind : kKinds) {
        for (std::size_t pixels = 0; pixels <= 200; ++pixels) {
            const Bytes alpha = samples(kind, pixels);
            const Bytes before = noise(4 * pixels, static_cast<unsigned>(pixels));
            Bytes expected = before;
            kernel(kind, simd::Level::Portable)(expected.data(), alpha.data(), pixels);
            for (const simd::Level level : vectorLevels()) {
                eachPlacement([&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
                    const std::uint8_t* const src = from.place(alpha, srcOffset, srcAtEnd);
                    kernel(kind, level)(to.place(before, dstOffset, dstAtEnd), src, pixels);
                    ASSERT_TRUE(to.holds(expected) && to.aroundIsUntouched())
                        << kind.name << " at " << simd::levelName(level) << ", " << pixels << " pixels";
                });
            }
        }
    }
}

TEST(MergeAlpha, EveryLevelEqualsPortableOnEverySample) {
    for (const Kind& kind : kKinds) {
        constexpr std::size_t kPixels = 1024;
        const Bytes alpha = samples(kind, kPixels);
        Bytes expected(4 * kPixels);
        kernel(kind, simd::Level::Portable)(expected.data(), alpha.data(), kPixels);
        for (const simd::Level level : vectorLevels()) {
            Bytes got(expected.size());
            kernel(kind, level)(got.data(), alpha.data(), kPixels);
            ASSERT_EQ(got, expected) << kind.name << " at " << simd::levelName(level);
        }
    }
}

} // namespace
