#include "tests/rgb/model.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

using namespace fikleipa::tests;

// First calls race to probe the level and to choose kernels, and a host may set the level meanwhile.
TEST(Threads, ManyCallersConvertAtOnce) {
    constexpr unsigned kWidth = 66;
    constexpr unsigned kHeight = 4;
    constexpr unsigned kThreads = 16;
    const Model m{kWidth, kHeight, 1, 0, 2, false, true, false, 2, 2};
    const Bytes source = sourceFor(m);
    Bytes expected(std::size_t{kWidth} * 4 * kHeight);
    toRgb(m, Arithmetic::Integer, source, expected, kWidth * 4, 32);

    std::atomic<unsigned> wrong{0};
    std::vector<std::thread> callers;
    for (unsigned i = 0; i < kThreads; ++i) {
        callers.emplace_back([&, i] {
            Bytes src = source;
            Bytes dst(expected.size());
            for (unsigned round = 0; round < 50; ++round) {
                cycbcr_transcode(dst.data(), src.data(), kWidth, kHeight, kWidth * 4, 0, PX_MATRIX_BT709, PX_RGB_RGBA,
                                 PX_FOURCC_RGB32, PX_FOURCC_UYVY);
                if (dst != expected) ++wrong;
                if (i == 0) cycbcr_set_cpu(round % 7);
            }
        });
    }
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(wrong, 0U);
}

} // namespace
