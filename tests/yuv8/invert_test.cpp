#include "fikleipa.h"
#include "pxutil.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace {

unsigned allocations = 0;
unsigned releases = 0;
std::size_t allocated = 0;
bool outOfMemory = false;

} // namespace

// The test's own allocator takes the place of the platform library's.
void* PXAlloc(size_t size) {
    ++allocations;
    allocated = size;
    return outOfMemory ? nullptr : std::malloc(size);
}

void PXFree(void* memory) {
    ++releases;
    std::free(memory);
}

namespace {

// Every row holds its own number, and its bytes theirs.
std::vector<unsigned char> frame(unsigned pitch, unsigned height, bool upsideDown) {
    std::vector<unsigned char> bytes;
    for (unsigned y = 0; y < height; ++y) {
        const unsigned row = upsideDown ? height - 1 - y : y;
        for (unsigned x = 0; x < pitch; ++x) bytes.push_back(static_cast<unsigned char>(row * 31 + x % 29));
    }
    return bytes;
}

void flips(unsigned pitch, unsigned height) {
    auto bytes = frame(pitch, height, false);
    cycbcr_invert(bytes.data(), pitch, height);
    EXPECT_EQ(bytes, frame(pitch, height, true)) << pitch << " x " << height;
}

TEST(Invert, TurnsFramesUpsideDown) {
    for (const unsigned height : {0U, 1U, 2U, 3U, 8U, 9U}) {
        for (const unsigned pitch : {1U, 3U, 64U, 5461U, 5462U, 16384U}) flips(pitch, height);
    }
}

TEST(Invert, LongRowsTakeOneScratchRow) {
    allocations = releases = 0;
    flips(5461, 4);
    EXPECT_EQ(allocations, 0U);
    flips(5462, 4);
    EXPECT_EQ(allocations, 1U);
    EXPECT_EQ(releases, 1U);
    EXPECT_EQ(allocated, 5462U);
}

TEST(Invert, FlipsWithoutScratchWhenMemoryRunsOut) {
    outOfMemory = true;
    flips(5462, 5);
    flips(3 * 5461 + 7, 4);
    outOfMemory = false;
}

} // namespace
