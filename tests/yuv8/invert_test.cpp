#include "fikleipa.h"
#include "pxutil.h"
#include "tests/bytes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

std::vector<std::size_t> allocations;
std::size_t releases = 0;
std::size_t failing = 0; // which allocation fails, counted from 1; 0 is none, and kAll every one
constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

} // namespace

// The test's own allocator takes the place of the platform library's.
void* PXAlloc(size_t size) {
    allocations.push_back(size);
    return failing == kAll || failing == allocations.size() ? nullptr : std::malloc(size);
}

void PXFree(void* memory) {
    ++releases;
    std::free(memory);
}

namespace {

using namespace fikleipa::tests;

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
                failing = refused ? kAll : 0;
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

// All that turn a frame over by cycbcr_invert(), each with every one of its allocations failing in turn. Rows are
// longer than their pitch, so that the frame is not turned over while it is converted.
TEST(Invert, ConvertedFramesAreTheSameWithWhateverMemoryThereIs) {
    constexpr unsigned kWidth = 6000;
    constexpr unsigned kHeight = 6;
    constexpr unsigned kPitch = 5473;
    const Bytes source = noise(std::size_t{4} * kWidth * kHeight);
    const auto convert = [&](auto convertFrame, std::size_t failingNow) {
        Bytes src = source;
        Bytes dst(src.size());
        allocations.clear();
        failing = failingNow;
        if constexpr (std::is_same_v<decltype(convertFrame), PXConvertFrame*>) {
            convertFrame(dst.data(), src.data(), kWidth, kHeight, kPitch, kPitch);
        } else {
            convertFrame(dst.data(), src.data(), kWidth, kHeight, kPitch, kPitch, PX_MATRIX_BT709, PX_RGB_BGRA);
        }
        failing = 0;
        return dst;
    };
    const auto check = [&](const char* name, auto convertFrame) {
        const Bytes wanted = convert(convertFrame, 0);
        const std::size_t count = allocations.size();
        EXPECT_GT(count, 0U) << name;
        for (std::size_t n = 1; n <= count; ++n) EXPECT_TRUE(convert(convertFrame, n) == wanted) << name << ' ' << n;
    };
#define CHECK(converter) check(#converter, &(converter))
    CHECK(cycbcr_yuy2_to_cyuv);
    CHECK(cycbcr_yvyu_to_cyuv);
    CHECK(cycbcr_i420_to_cyuv);
    CHECK(cycbcr_yv12_to_cyuv);
    CHECK(cycbcr_p422_to_cyuv);
    CHECK(cycbcr_RGB32_to_cyuv);
    CHECK(cycbcr_cyuv_to_yuy2);
    CHECK(cycbcr_cyuv_to_yvyu);
    CHECK(cycbcr_cyuv_to_i420);
    CHECK(cycbcr_cyuv_to_yv12);
    CHECK(cycbcr_cyuv_to_p422);
    CHECK(cycbcr_cyuv_to_012v);
    CHECK(cycbcr_cyuv_to_rgb32);
    CHECK(cycbcr_cyuv_to_rgb555);
#undef CHECK
}

} // namespace
