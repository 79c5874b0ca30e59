#include "pxutil.h"
#include "sleeping_thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;

constexpr unsigned int kLong = 60'000;
constexpr int kAuto = 0;
constexpr int kManual = 1;

pxOSEvent createEvent(int manualReset, int initialState = 0) {
    return pxOSCreateEvent(nullptr, manualReset, initialState, nullptr);
}

// Waits on an event in threads of its own, and counts how the waits end.
class Waiters {
public:
    Waiters(pxOSEvent event, int count, unsigned int milliseconds = kLong) {
        for (int i = 0; i < count; ++i) {
            threads_.push_back(std::make_unique<SleepingThread>([this, event, milliseconds] {
                ++(pxOSWaitForEvent(event, milliseconds) != 0 ? signalled : unsignalled);
            }));
        }
        for (const auto& thread : threads_) thread->waitUntilAsleep();
    }

    // For waits that an event is to end, not their time-out.
    void join() {
        const auto start = std::chrono::steady_clock::now();
        threads_.clear();
        EXPECT_LT(std::chrono::steady_clock::now() - start, 30s);
    }

    std::atomic<int> signalled{0};
    std::atomic<int> unsignalled{0};

private:
    std::vector<std::unique_ptr<SleepingThread>> threads_;
};

void waitUntil(const std::function<bool()>& condition) {
    while (!condition()) std::this_thread::sleep_for(1ms);
}

TEST(Event, AutoResetSignalIsConsumedByOneWait) {
    pxOSEvent event = createEvent(kAuto);
    ASSERT_NE(event, nullptr);
    EXPECT_EQ(pxOSWaitForEvent(event, 0), 0);
    pxOSSetEvent(event);
    pxOSSetEvent(event);
    EXPECT_EQ(pxOSWaitForEvent(event, kLong), 1);
    EXPECT_EQ(pxOSWaitForEvent(event, 0), 0);
    pxOSCloseEvent(event);
}

TEST(Event, ManualResetSignalStays) {
    pxOSEvent event = createEvent(kManual);
    EXPECT_EQ(pxOSWaitForEvent(event, 0), 0);
    pxOSSetEvent(event);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(pxOSWaitForEvent(event, kLong), 1);
    pxOSCloseEvent(event);
}

TEST(Event, InitialStateCountsAsASignal) {
    for (const int manualReset : {kAuto, kManual}) {
        pxOSEvent event = createEvent(manualReset, 1);
        EXPECT_EQ(pxOSWaitForEvent(event, 0), 1);
        EXPECT_EQ(pxOSWaitForEvent(event, 0), manualReset);
        pxOSCloseEvent(event);
    }
}

TEST(Event, EventsOfOneNameAreTwoEvents) {
    pxOSEvent first = pxOSCreateEvent(nullptr, kAuto, 0, "frame done");
    pxOSEvent second = pxOSCreateEvent(nullptr, kAuto, 0, "frame done");
    EXPECT_NE(first, second);
    pxOSSetEvent(first);
    EXPECT_EQ(pxOSWaitForEvent(second, 0), 0);
    EXPECT_EQ(pxOSWaitForEvent(first, 0), 1);
    pxOSCloseEvent(first);
    pxOSSetEvent(second);
    EXPECT_EQ(pxOSWaitForEvent(second, 0), 1);
    pxOSCloseEvent(second);
}

TEST(Event, WaitLastsAsLongAsAsked) {
    pxOSEvent event = createEvent(kAuto);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(pxOSWaitForEvent(event, 40), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 40ms);
    pxOSCloseEvent(event);
}

TEST(Event, LongestWaitIsNoShortOne) {
    pxOSEvent event = createEvent(kAuto);
    Waiters waiters(event, 1, 0xFFFFFFFFU);
    EXPECT_EQ(waiters.unsignalled, 0);
    pxOSSetEvent(event);
    waiters.join();
    EXPECT_EQ(waiters.signalled, 1);
    pxOSCloseEvent(event);
}

TEST(Event, AutoResetReleasesOneWaiterForEachSignal) {
    pxOSEvent event = createEvent(kAuto);
    Waiters waiters(event, 5);
    pxOSSetEvent(event);
    waitUntil([&] { return waiters.signalled == 1; });
    std::this_thread::sleep_for(30ms);
    EXPECT_EQ(waiters.signalled, 1);
    // Signals that outrun the waiters are not lost: four for the four that are left, and one for the next wait.
    for (int i = 0; i < 6; ++i) pxOSSetEvent(event);
    waiters.join();
    EXPECT_EQ(waiters.signalled, 5);
    EXPECT_EQ(pxOSWaitForEvent(event, 0), 1);
    EXPECT_EQ(pxOSWaitForEvent(event, 0), 0);
    pxOSCloseEvent(event);
}

TEST(Event, ManualResetReleasesAllWaiters) {
    pxOSEvent event = createEvent(kManual);
    Waiters waiters(event, 5);
    pxOSSetEvent(event);
    waiters.join();
    EXPECT_EQ(waiters.signalled, 5);
    pxOSCloseEvent(event);
}

TEST(Event, CloseWakesAllWaitersUnsignalled) {
    for (const int manualReset : {kAuto, kManual}) {
        pxOSEvent event = createEvent(manualReset);
        Waiters waiters(event, 5);
        pxOSCloseEvent(event);
        waiters.join();
        EXPECT_EQ(waiters.unsignalled, 5);
    }
}

TEST(Event, WaitersThatWereSignalledBeforeTheCloseLearnOfIt) {
    pxOSEvent event = createEvent(kAuto);
    Waiters waiters(event, 3);
    pxOSSetEvent(event);
    pxOSSetEvent(event);
    pxOSCloseEvent(event);
    waiters.join();
    EXPECT_EQ(waiters.signalled, 2);
    EXPECT_EQ(waiters.unsignalled, 1);
}

TEST(Event, ClosedAndNullHandlesAreHarmless) {
    pxOSEvent closed = createEvent(kManual, 1);
    pxOSCloseEvent(closed);
    int noEvent = 0;
    for (pxOSEvent handle : {closed, pxOSEvent{nullptr}, static_cast<pxOSEvent>(&noEvent)}) {
        pxOSSetEvent(handle);
        EXPECT_EQ(pxOSWaitForEvent(handle, kLong), 0);
        pxOSCloseEvent(handle);
    }
}

} // namespace
