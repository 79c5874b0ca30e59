#include "tests/v210/bands.h"
#include "tests/v210/platform.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace fikleipa::tests;

// As a host would declare it.
struct Record {
    unsigned char *dst, *y, *cb, *cr;
    unsigned width, rows, dstPitch, srcPitch;
    int* pending;
    pxOSEvent done;
    unsigned char index;
};

void expectSignal(const Watch& watch) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (watch.signalled != 1 && std::chrono::steady_clock::now() < end) std::this_thread::yield();
    EXPECT_EQ(watch.signalled, 1);
}

class Bands : public testing::TestWithParam<SplitConverter> {
protected:
    const SplitConverter& converter_ = GetParam();
};
INSTANTIATE_TEST_SUITE_P(OfEveryConverter, Bands, testing::ValuesIn(kSplitConverters));

// 47 more than a multiple of 48: what goes beyond a row's last group goes beyond its pitch.
TEST_P(Bands, MakeWhatOneThreadMakes) {
    const unsigned widest = converter_.widest;
    for (const unsigned width : {widest, widest + 1, widest + 2, roundUp(widest + 1, 48) + 47}) {
        for (unsigned height = 0; height <= kTallest; ++height) {
            const Picture picture(converter_, width, height);
            Bytes got = picture.empty();
            EXPECT_EQ(picture.run(converter_.convert, got, height), picture.dstPitch * height);
            ASSERT_TRUE(got == picture.expected()) << width << "x" << height;
        }
    }
}

TEST_P(Bands, ResultsFollowThePitchPassedOnlyWhenSplit) {
    for (const unsigned width : {converter_.widest, converter_.widest + 1}) {
        Picture picture(converter_, width, 1);
        Bytes dst = picture.empty();
        const unsigned pitch = picture.dstPitch;
        picture.dstPitch = 0;
        EXPECT_EQ(picture.run(converter_.convert, dst, 1), width == converter_.widest ? pitch : 0);
    }
}

TEST_P(Bands, CallThePlatformInOrder) {
    const auto watch = watchCalls(Threads::Held);
    const Picture narrow(converter_, converter_.widest, 9);
    Bytes dst = narrow.empty();
    narrow.run(converter_.convert, dst, 9);
    EXPECT_TRUE(watch->calls.empty()) << "the caller's thread converts by itself";

    const Picture wide(converter_, converter_.widest + 1, 9);
    dst = wide.empty();
    wide.run(converter_.convert, dst, 9);
    std::vector<std::string> expected{std::string("event ") + converter_.event};
    for (unsigned i = 0; i < 8; ++i) {
        expected.insert(expected.end(), {"increment", std::string("thread ") + converter_.thread, "close thread d"});
    }
    expected.insert(expected.end(), {"decrement", "wait 30", "close event"});
    EXPECT_EQ(watch->calls, expected);
    EXPECT_TRUE(dst == wide.expected());
    expectSignal(*watch);
}

TEST_P(Bands, DoWithoutThreads) {
    const auto watch = watchCalls(Threads::Refused);
    const Picture picture(converter_, converter_.widest + 1, 15);
    Bytes dst = picture.empty();
    EXPECT_EQ(picture.run(converter_.convert, dst, 15), picture.dstPitch * 15);
    EXPECT_TRUE(dst == picture.expected());
    EXPECT_EQ(watch->calls.back(), "close event");
    EXPECT_EQ(*(watch->calls.end() - 2), "decrement") << "nothing is left to wait for";
    EXPECT_EQ(watch->signalled, 0) << "the caller's share keeps the count above 0";
}

TEST_P(Bands, RecordsDescribeTheBands) {
    const auto watch = watchCalls(Threads::Held);
    const Picture picture(converter_, converter_.widest + 1, 23);
    Bytes dst = picture.empty();
    unsigned index = 0;
    watch->atStart = [&](pxOSThreadEntry entry, const void* argument, const unsigned* threadId) {
        const auto& record = *static_cast<const Record*>(argument);
        const unsigned luma = index * 2 * picture.srcPitch;
        const unsigned chroma = converter_.fullChroma ? luma : luma / 2;
        EXPECT_EQ(entry, converter_.worker);
        EXPECT_EQ(record.dst, dst.data() + index * 2 * picture.dstPitch);
        EXPECT_EQ(record.y, Picture::plane(0) + luma);
        EXPECT_EQ(record.cb, Picture::plane(1) + chroma);
        EXPECT_EQ(record.cr, Picture::plane(2) + chroma);
        EXPECT_EQ(record.width, picture.width);
        EXPECT_EQ(record.rows, index == 7 && !converter_.leavesRest ? 9U : 2U);
        EXPECT_EQ(record.dstPitch, picture.dstPitch);
        EXPECT_EQ(record.srcPitch, picture.srcPitch);
        EXPECT_EQ(*record.pending, static_cast<int>(index) + 2) << "the caller and each band so far";
        EXPECT_NE(record.done, nullptr);
        EXPECT_EQ(record.index, converter_.numbered ? index : 0);
        EXPECT_EQ(*threadId == 0, index == 0) << "one number for all threads, of the last started";
        ++index;
    };
    picture.run(converter_.convert, dst, 23);
    EXPECT_EQ(index, 8U);
    expectSignal(*watch);
}

TEST_P(Bands, ASignalThatComesLateDoesNoHarm) {
    const auto watch = watchCalls(Threads::Held, Signals::Late);
    const Picture picture(converter_, converter_.widest + 1, 16);
    Bytes dst = picture.empty();
    picture.run(converter_.convert, dst, 16);
    EXPECT_EQ(watch->signalled, 0) << "the call returned before the signal";
    EXPECT_TRUE(dst == picture.expected());
    watch->released = true;
    expectSignal(*watch);
}

TEST_P(Bands, AWorkerTakesAnyRecord) {
    const Picture picture(converter_, 100, 3);
    for (const int others : {0, 1}) {
        Bytes dst = picture.empty();
        int pending = 1 + others;
        const pxOSEvent done = pxOSCreateEvent(nullptr, 0, 0, "done");
        const auto planes = Picture::plane;
        Record record{dst.data(),       planes(0),        planes(1), planes(2), 100, 3,
                      picture.dstPitch, picture.srcPitch, &pending,  done,      0};
        EXPECT_EQ(converter_.worker(&record), picture.dstPitch * 3);
        EXPECT_TRUE(dst == picture.expected());
        EXPECT_EQ(pending, others);
        EXPECT_EQ(pxOSWaitForEvent(done, 0), others == 0 ? 1 : 0);
        pxOSCloseEvent(done);
    }
}

std::chrono::seconds stressTime() {
    const char* const seconds = std::getenv("FIKLEIPA_STRESS_SECONDS"); // NOLINT(concurrency-mt-unsafe): nobody sets it
    return std::chrono::seconds(seconds != nullptr ? std::strtol(seconds, nullptr, 10) : 2);
}

TEST(BandsStress, ManyCallersSplitFramesAtOnce) {
    constexpr unsigned kCallers = 64;
    const auto end = std::chrono::steady_clock::now() + stressTime();
    std::atomic<unsigned> wrong{0};
    std::vector<std::thread> callers;
    for (unsigned i = 0; i < kCallers; ++i) {
        callers.emplace_back([&, i] {
            for (unsigned round = i; std::chrono::steady_clock::now() < end; ++round) {
                const SplitConverter& converter = kSplitConverters[round % 4];
                const Picture picture(converter, converter.widest + 1, round % (kTallest + 1));
                wrong += picture.isRightInBands() ? 0 : 1;
            }
        });
    }
    for (std::thread& caller : callers) caller.join();
    EXPECT_EQ(wrong, 0U);
}

} // namespace
