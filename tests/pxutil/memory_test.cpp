// Processor features, bulk moves and memory.
#include "pxutil.h"
#include "tests/simd/rows.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <limits>
#include <set>
#include <sstream>

// Sanitizers otherwise end the process over a size that PXAlloc() is to refuse.
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
PXUTIL_API const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
PXUTIL_API const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace {

using namespace fikleipa::tests;

#if defined(__x86_64__)
// The features that the system lists for the first processor.
std::set<std::string> systemFeatures() {
    std::ifstream file("/proc/cpuinfo");
    std::string line;
    while (std::getline(file, line)) {
        if (!line.starts_with("flags")) continue;
        std::istringstream words(line.substr(line.find(':') + 1));
        return {std::istream_iterator<std::string>(words), {}};
    }
    return {};
}
#endif

TEST(CPUFeatureFlags, AgreesWithTheSystem) {
#if defined(__x86_64__)
    const std::set<std::string> features = systemFeatures();
    ASSERT_FALSE(features.empty());
    const auto bitIfAll = [&](unsigned int bit, std::initializer_list<const char*> names) {
        return std::all_of(names.begin(), names.end(), [&](const char* name) { return features.contains(name); }) ? bit
                                                                                                                  : 0;
    };
    const unsigned int sse41 = bitIfAll(0x20, {"ssse3", "sse4_1"});
    const unsigned int avx2 = bitIfAll(0x2000, {"avx2", "fma"});
    const unsigned int avx512 =
        bitIfAll(0x4000, {"avx512f", "avx512bw", "avx512dq", "avx512vl", "avx512vbmi", "avx512_vnni"});
    EXPECT_EQ(CPUFeatureFlags(), sse41 | bitIfAll(0x80, {"avx"}) | avx2 | avx512);
#else
    EXPECT_EQ(CPUFeatureFlags(), 0U);
#endif
}

// Sizes around those of vectors, and one that is written past the cache.
TEST(Moves, CopyAndSwapExactlyWhatTheyAreToldTo) {
    PlacedRows dst(std::size_t{2} << 20);
    PlacedRows src(std::size_t{2} << 20);
    CopyMemoryFast(nullptr, nullptr, 0);
    std::vector<std::size_t> sizes{127, 128, 129, 254, 256, 600, (1 << 20) + 77};
    for (std::size_t size = 0; size < 70; ++size) sizes.push_back(size);
    for (const std::size_t size : sizes) {
        const Bytes input = noise(size);
        const Bytes words(input.begin(), input.end() - static_cast<std::ptrdiff_t>(size % 2));
        Bytes swapped = words;
        for (std::size_t i = 0; i < words.size(); i += 2) std::swap(swapped[i], swapped[i + 1]);
        eachPlacement(size > 1000 ? 9 : 1, [&](unsigned srcOffset, bool srcAtEnd, unsigned dstOffset, bool dstAtEnd) {
            const auto check = [&](const Bytes& from, const Bytes& expected, auto move) {
                std::uint8_t* const to = dst.place({Bytes(expected.size())}, dstOffset, dstAtEnd)[0];
                move(to, src.place({from}, srcOffset, srcAtEnd)[0]);
                ASSERT_TRUE(dst.hold({expected}) && src.hold({from}))
                    << size << " bytes, offsets " << dstOffset << " and " << srcOffset;
            };
            check(input, input, [&](void* to, const void* from) { CopyMemoryFast(to, from, size); });
            check(words, swapped, [&](void* to, const void* from) { EndianConvertWord(to, from, size / 2); });
            check(words, swapped, [&](void* to, const void* /*from*/) {
                std::copy(words.begin(), words.end(), static_cast<std::uint8_t*>(to));
                EndianConvertWord(to, to, size / 2);
            });
        });
    }
}

TEST(PXAlloc, GivesAlignedMemoryOfTheWholeSize) {
    constexpr std::size_t kSizes[]{0, 1, 63, 64, 65, 4095, 5462, 1 << 20, (64 << 20) + 1};
    std::vector<void*> blocks;
    for (const std::size_t size : kSizes) {
        void* const block = PXAlloc(size);
        if (size > 0) {
            ASSERT_NE(block, nullptr) << size;
            std::memset(block, 0x5A, size);
        }
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 64, 0U) << size;
        blocks.push_back(block);
    }
    for (void* const block : blocks) PXFree(block);
    PXFree(nullptr);
}

TEST(PXAlloc, RefusesWhatNoMachineHas) {
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
    for (const std::size_t size : {kMost, kMost - 1, kMost - 62, kMost - 63, kMost - 64, kMost / 2}) {
        EXPECT_EQ(PXAlloc(size), nullptr) << size;
    }
}

} // namespace
