#include "tests/pxutil/waiting.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace {

using namespace std::chrono_literals;

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

TEST(Event, ASignalIsConsumedByOneWaitOrStays) {
    for (const int manualReset : {0, 1}) {
        for (const int initialState : {0, 1}) {
            const OwnEvent event(manualReset, initialState);
            EXPECT_EQ(pxOSWaitForEvent(event, 0), initialState);
            EXPECT_EQ(pxOSWaitForEvent(event, 0), initialState * manualReset);
            pxOSSetEvent(event);
            pxOSSetEvent(event);
            EXPECT_EQ(pxOSWaitForEvent(event, kLong), 1);
            EXPECT_EQ(pxOSWaitForEvent(event, 0), manualReset);
        }
    }
}

TEST(Event, EventsOfOneNameAreTwoEvents) {
    const OwnEvent first(0, 0, "frame done");
    const OwnEvent second(0, 0, "frame done");
    pxOSSetEvent(first);
    EXPECT_EQ(pxOSWaitForEvent(second, 0), 0);
    EXPECT_EQ(pxOSWaitForEvent(first, 0), 1);
    pxOSCloseEvent(first);
    pxOSSetEvent(second);
    EXPECT_EQ(pxOSWaitForEvent(second, 0), 1);
}

TEST(Event, WaitsLastAsLongAsAsked) {
    const OwnEvent event;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(pxOSWaitForEvent(event, 40), 0);
    EXPECT_GE(std::chrono::steady_clock::now() - start, 40ms);

    Waiters longest(event, 1, 0xFFFFFFFFU);
    EXPECT_EQ(longest.unsignalled, 0);
    pxOSSetEvent(event);
    longest.join();
    EXPECT_EQ(longest.signalled, 1);
}

TEST(Event, AutoResetReleasesOneWaiterForEachSignal) {
    const OwnEvent event;
    Waiters waiters(event, 5);
    pxOSSetEvent(event);
    while (waiters.signalled != 1) std::this_thread::sleep_for(1ms);
    std::this_thread::sleep_for(30ms);
    EXPECT_EQ(waiters.signalled, 1);
    // Signals that outrun the waiters are not lost: four for the four that are left, and one for the next wait.
    for (int i = 0; i < 6; ++i) pxOSSetEvent(event);
    waiters.join();
    EXPECT_EQ(waiters.signalled, 5);
    EXPECT_EQ(pxOSWaitForEvent(event, 0), 1);
    EXPECT_EQ(pxOSWaitForEvent(event, 0), 0);
}

TEST(Event, WaitersLearnOfSignalsThenOfTheClose) {
    struct Case {
        int manualReset, signals, signalled;
    };
    for (const auto& [manualReset, signals, signalled] : {Case{0, 0, 0}, {0, 2, 2}, {1, 0, 0}, {1, 1, 5}}) {
        const OwnEvent event(manualReset);
        Waiters waiters(event, 5);
        for (int i = 0; i < signals; ++i) pxOSSetEvent(event);
        if (signalled != 5) pxOSCloseEvent(event);
        waiters.join();
        EXPECT_EQ(waiters.signalled, signalled);
        EXPECT_EQ(waiters.unsignalled, 5 - signalled);
    }
}

TEST(Event, ClosedAndNullHandlesAreHarmless) {
    const OwnEvent closed(1, 1);
    pxOSCloseEvent(closed);
    int noEvent = 0;
    for (pxOSEvent handle : {pxOSEvent{closed}, pxOSEvent{nullptr}, static_cast<pxOSEvent>(&noEvent)}) {
        pxOSSetEvent(handle);
        EXPECT_EQ(pxOSWaitForEvent(handle, kLong), 0);
        pxOSCloseEvent(handle);
    }
}

} // namespace
