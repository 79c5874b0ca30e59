// Processor features, bulk moves and memory.
#include "pxutil.h"
#include "tests/guarded_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

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

using Bytes = std::vector<std::uint8_t>;

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

// Bytes that repeat with no power of two.
Bytes pattern(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(i % 251);
    return bytes;
}

Bytes withSwappedWords(Bytes bytes) {
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) std::swap(bytes[i], bytes[i + 1]);
    return bytes;
}

constexpr std::uint8_t kUntouched = 0xA5;
constexpr std::array<std::size_t, 4> kDstOffsets{0, 1, 2, 31};
constexpr std::array<std::size_t, 4> kSrcOffsets{0, 1, 6, 63};

// How far two buffers lie from the start of their guarded memory or, `atEnd`, from its end.
struct Placement {
    std::size_t dstOffset;
    std::size_t srcOffset;
    bool atEnd;
};

class Moves : public testing::Test {
protected:
    static constexpr std::size_t kRoom = 4096;

    // Runs the operation on buffers so placed, and checks what it wrote and that it wrote nothing else.
    template <typename Operation>
    void check(const Bytes& input, const Bytes& expected, Placement place, Operation operation) {
        std::uint8_t* const dst = at(dst_, place.dstOffset, expected.size(), place.atEnd);
        std::uint8_t* const src = at(src_, place.srcOffset, input.size(), place.atEnd);
        std::fill(dst_.begin(), dst_.end(), kUntouched);
        std::copy(input.begin(), input.end(), src);
        operation(dst, src);
        const auto untouched = [](std::uint8_t byte) { return byte == kUntouched; };
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), dst)) << describe(input, place);
        ASSERT_TRUE(std::all_of(dst_.begin(), dst, untouched)) << describe(input, place);
        ASSERT_TRUE(std::all_of(dst + expected.size(), dst_.end(), untouched)) << describe(input, place);
        ASSERT_TRUE(std::equal(input.begin(), input.end(), src)) << describe(input, place);
    }

    static std::uint8_t* at(const GuardedBytes& memory, std::size_t offset, std::size_t size, bool atEnd) {
        return atEnd ? memory.end() - offset - size : memory.begin() + offset;
    }

    static std::string describe(const Bytes& input, Placement place) {
        std::ostringstream text;
        text << input.size() << " bytes, offsets " << place.dstOffset << " and " << place.srcOffset
             << (place.atEnd ? " from the end" : " from the start");
        return text.str();
    }

    GuardedBytes dst_{kRoom};
    GuardedBytes src_{kRoom};
};

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

TEST_F(Moves, EndianConvertWordSwapsEveryCountAtEveryOffset) {
    for (std::size_t count = 0; count <= 300; ++count) {
        const Bytes input = pattern(2 * count);
        const Bytes expected = withSwappedWords(input);
        for (const std::size_t dstOffset : kDstOffsets) {
            for (const std::size_t srcOffset : kSrcOffsets) {
                for (const bool atEnd : {false, true}) {
                    const auto swap = [count](void* dst, const void* src) { EndianConvertWord(dst, src, count); };
                    ASSERT_NO_FATAL_FAILURE(check(input, expected, {dstOffset, srcOffset, atEnd}, swap));
                }
            }
        }
    }
}

TEST_F(Moves, EndianConvertWordSwapsInPlace) {
    for (std::size_t count = 0; count <= 300; ++count) {
        const Bytes input = pattern(2 * count);
        const Bytes expected = withSwappedWords(input);
        for (const std::size_t offset : kDstOffsets) {
            for (const bool atEnd : {false, true}) {
                const auto swap = [&](std::uint8_t* dst, const std::uint8_t*) {
                    std::copy(input.begin(), input.end(), dst);
                    EndianConvertWord(dst, dst, count);
                };
                ASSERT_NO_FATAL_FAILURE(check(input, expected, {offset, 0, atEnd}, swap));
            }
        }
    }
}

TEST_F(Moves, CopyMemoryFastCopiesExactly) {
    for (std::size_t size = 0; size <= 600; ++size) {
        const Bytes input = pattern(size);
        for (const bool atEnd : {false, true}) {
            const auto copy = [size](void* dst, const void* src) { CopyMemoryFast(dst, src, size); };
            ASSERT_NO_FATAL_FAILURE(check(input, input, {size % 5, size % 7, atEnd}, copy));
        }
    }
    CopyMemoryFast(nullptr, nullptr, 0);
}

TEST(PXAlloc, GivesAlignedMemoryOfTheWholeSize) {
    constexpr std::array<std::size_t, 9> kSizes{0, 1, 63, 64, 65, 4095, 5462, 1 << 20, (64 << 20) + 1};
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
