// Events under threads that use, close and misuse the same handles at once.
#include "tests/pxutil/waiting.h"

#include <gtest/gtest.h>

#include <array>
#include <barrier>

#include <malloc.h>

namespace {

pxOSEvent createEvent(bool manualReset = false) {
    return pxOSCreateEvent(nullptr, manualReset ? 1 : 0, 0, nullptr);
}

TEST(EventStress, StaleHandlesNeverReachAnotherEvent) {
    constexpr int kRounds = 10'000;
    std::array<std::atomic<pxOSEvent>, 8> shared{};
    std::atomic<int> makersLeft{2};
    std::atomic<int> faults{0};
    const auto expect = [&](bool ok) { faults += ok ? 0 : 1; };

    // Hands out events for others to misuse, and between times has one that nobody else knows.
    const auto make = [&] {
        for (std::size_t i = 0; i < kRounds; ++i) {
            pxOSEvent own = createEvent();
            pxOSCloseEvent(shared[i % shared.size()].exchange(createEvent(i % 2 != 0)));
            expect(pxOSWaitForEvent(own, 0) == 0);
            pxOSSetEvent(own);
            expect(pxOSWaitForEvent(own, 0) == 1);
            pxOSCloseEvent(own);
            expect(pxOSWaitForEvent(own, kLong) == 0);
            shared[(i + 1) % shared.size()] = own;
        }
        --makersLeft;
    };
    const auto misuse = [&] {
        for (std::size_t i = 0; makersLeft > 0; ++i) {
            pxOSEvent event = shared[i % shared.size()];
            pxOSSetEvent(event);
            pxOSWaitForEvent(event, i % 64 == 0 ? 1 : 0);
            if (i % 4 == 0) pxOSCloseEvent(event);
            pxOSSetEvent(event);
        }
    };
    {
        const std::array<std::jthread, 2> makers{std::jthread(make), std::jthread(make)};
        const std::array<std::jthread, 3> misusers{std::jthread(misuse), std::jthread(misuse), std::jthread(misuse)};
    }
    for (auto& event : shared) pxOSCloseEvent(event);
    EXPECT_EQ(faults, 0);
}

TEST(EventStress, CloseAgainstSetAndWaitLeavesNobodyWaiting) {
    constexpr int kRounds = 3'000;
    std::atomic<pxOSEvent> event{nullptr};
    std::barrier sync(4);
    const auto each = [&](auto use) {
        return [&sync, &event, use] {
            for (int i = 0; i < kRounds; ++i) {
                sync.arrive_and_wait();
                use(event.load(), i);
                sync.arrive_and_wait();
            }
        };
    };
    {
        const std::jthread waiter(each([](pxOSEvent e, int) { pxOSWaitForEvent(e, kLong); }));
        const std::jthread otherWaiter(each([](pxOSEvent e, int) { pxOSWaitForEvent(e, kLong); }));
        const std::jthread setter(each([](pxOSEvent e, int i) {
            if (i % 2 != 0) pxOSSetEvent(e);
        }));
        for (int i = 0; i < kRounds; ++i) {
            event = createEvent(i % 3 == 0);
            sync.arrive_and_wait();
            pxOSCloseEvent(event);
            sync.arrive_and_wait();
        }
    }
}

TEST(EventStress, NoSignalIsLostBetweenTwoThreads) {
    constexpr int kRounds = 20'000;
    const OwnEvent ping;
    const OwnEvent pong;
    int answers = 0;
    {
        const std::jthread partner([&] {
            for (int i = 0; i < kRounds && pxOSWaitForEvent(ping, kLong) != 0; ++i) pxOSSetEvent(pong);
        });
        do pxOSSetEvent(ping);
        while (pxOSWaitForEvent(pong, kLong) != 0 && ++answers < kRounds);
        pxOSCloseEvent(ping);
    }
    EXPECT_EQ(answers, kRounds);
}

TEST(EventStress, ClosedEventsLeaveNothingBehind) {
    const auto createAndClose = [](int count) {
        for (int i = 0; i < count; ++i) pxOSSetEvent(OwnEvent());
    };
    createAndClose(1'000);
    const std::size_t before = mallinfo2().uordblks;
    createAndClose(1'000'000);
    EXPECT_LT(mallinfo2().uordblks, before + std::size_t{64} * 1024);
}

} // namespace
