#include "fikleipa.h"
#include "pxutil.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace {

std::vector<std::size_t> allocations;
std::size_t releases = 0;
bool outOfMemory = false;

} // namespace

// The test's own allocator takes the place of the platform library's.
void* PXAlloc(size_t size) {
    allocations.push_back(size);
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

TEST(Invert, LongRowsTakeOneScratchRowIfThereIsMemory) {
    for (const unsigned height : {0U, 1U, 2U, 3U, 8U, 9U}) {
        for (const unsigned pitch : {1U, 3U, 64U, 5461U, 5462U, 16384U}) {
            for (const bool refused : {false, true}) {
                outOfMemory = refused;
                releases = 0;
                allocations.clear();
                auto bytes = frame(pitch, height, false);
                cycbcr_invert(bytes.data(), pitch, height);
                EXPECT_EQ(bytes, frame(pitch, height, true)) << pitch << " x " << height;
                EXPECT_EQ(allocations, pitch < 5462 ? std::vector<std::size_t>{} : std::vector<std::size_t>{pitch});
                EXPECT_EQ(releases, refused ? 0 : allocations.size());
            }
        }
    }
}

} // namespace
