// What befalls a host while frames are split: threads that the system refuses, signals, forks.
#include "tests/sanitizers.h"
#include "tests/v210/bands.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <functional>
#include <thread>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace fikleipa::tests;

// Which of the threads that the library asks for, counted from 1, are refused.
std::function<bool(int)> refused;
int asked = 0;

// What stands behind the test's own pthread_create(). A sanitizer has one that must not be left out.
int createThread(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*), void* argument) {
    for (const char* name : {"__interceptor_pthread_create", "pthread_create"}) {
        void* const next = dlsym(name[0] == '_' ? RTLD_DEFAULT : RTLD_NEXT, name);
        if (next != nullptr)
            return reinterpret_cast<decltype(&pthread_create)>(next)(thread, attributes, entry, argument);
    }
    return ENOSYS;
}

} // namespace

// Takes the place of the system's, also for the libraries.
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the system's have names that are its own
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*entry)(void*),
                   void* argument) noexcept {
    if (refused && refused(++asked)) return EAGAIN;
    return createThread(thread, attributes, entry, argument);
}

namespace {

TEST(BandFaults, BandsOfRefusedThreadsAreConvertedToo) {
    const std::array<std::function<bool(int)>, 3> whichAreRefused{
        [](int thread) { return thread == 1; }, [](int thread) { return thread == 3; }, [](int) { return true; }};
    for (const auto& which : whichAreRefused) {
        for (const SplitConverter& converter : kSplitConverters) {
            asked = 0;
            refused = which;
            EXPECT_TRUE(Picture(converter, converter.widest + 2, 17).isRightInBands()) << converter.thread;
            refused = nullptr;
            EXPECT_EQ(asked, 8) << converter.thread;
        }
    }
}

std::atomic<pid_t> caller;
std::atomic<int> handledByCaller;
std::atomic<int> handledElsewhere;

void countSignal(int /*signal*/) {
    const int error = errno;
    ++(gettid() == caller ? handledByCaller : handledElsewhere);
    errno = error;
}

// A timer of 1 kHz whose handler interrupts what waits, for as long as this lives.
class FastTimer {
public:
    FastTimer() {
        struct sigaction action {};
        action.sa_handler = countSignal;
        sigaction(SIGALRM, &action, &before_);
        const itimerval often{{0, 1000}, {0, 1000}};
        setitimer(ITIMER_REAL, &often, nullptr);
    }
    ~FastTimer() {
        const itimerval never{};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &before_, nullptr);
    }
    FastTimer(const FastTimer&) = delete;
    FastTimer& operator=(const FastTimer&) = delete;

private:
    struct sigaction before_ {};
};

// Of the host's own threads only the caller takes the signal, so that the workers are the others to whom it could go.
TEST(BandFaults, SignalsDisturbNoFrameAndReachNoWorker) {
    sigset_t alarm;
    sigset_t before;
    sigemptyset(&alarm);
    sigaddset(&alarm, SIGALRM);
    pthread_sigmask(SIG_BLOCK, &alarm, &before);
    int wrong = 0;
    std::thread([&] {
        caller = gettid();
        pthread_sigmask(SIG_UNBLOCK, &alarm, nullptr);
        const FastTimer timer;
        for (unsigned round = 0; handledByCaller < 500; ++round) {
            const SplitConverter& converter = kSplitConverters[round % 4];
            wrong += Picture(converter, converter.widest + 2, 1 + round % kTallest).isRightInBands() ? 0 : 1;
        }
    }).join();
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(handledElsewhere, 0);
}

unsigned int signalEvent(void* event) {
    pxOSSetEvent(event);
    return 0;
}

// Creates, sets, waits for and closes events.
bool eventsWork() {
    const pxOSEvent event = pxOSCreateEvent(nullptr, 0, 0, "event");
    pxOSSetEvent(event);
    const int signalled = pxOSWaitForEvent(event, 60'000);
    const int stillSignalled = pxOSWaitForEvent(event, 0);
    pxOSCloseEvent(event);
    return signalled == 1 && stillSignalled == 0 && pxOSWaitForEvent(event, 60'000) == 0;
}

// Exit codes of a forked child that uses everything, 0 if all of it works. The alarm ends it if it hangs.
[[noreturn]] void runChild(pxOSEvent openAtFork) {
    enum { Works, EventsFail, OpenEventFails, ThreadFails, WrongFrame };
    alarm(20);
    if (!eventsWork()) _exit(EventsFail);
    if (pxOSWaitForEvent(openAtFork, 0) != 0) _exit(OpenEventFails);
    if (pxOSCreateThread(nullptr, 0, signalEvent, openAtFork, 0, nullptr, "child") == nullptr) _exit(ThreadFails);
    if (pxOSWaitForEvent(openAtFork, 60'000) != 1) _exit(OpenEventFails);
    pxOSCloseEvent(openAtFork);
    for (const SplitConverter& converter : kSplitConverters) {
        if (!Picture(converter, converter.widest + 2, 17).isRightInBands()) _exit(WrongFrame);
    }
    _exit(Works);
}

TEST(BandFaultsDeathTest, AChildForkedAtAnyMomentWorks) {
    if (kAddressSanitizer) GTEST_SKIP() << "Clang 14's allocator does not outlive a fork amid another thread's call";
    if (kThreadSanitizer) GTEST_SKIP() << "a forked process may not start threads";
    std::atomic<bool> over{false};
    std::atomic<int> faults{0};
    const pxOSEvent open = pxOSCreateEvent(nullptr, 0, 0, "open");
    ASSERT_TRUE(Picture(kSplitConverters[0], 2050, 17).isRightInBands());
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            while (!over) faults += eventsWork() ? 0 : 1;
        });
    }
    // Its wait is the parent's alone.
    threads.emplace_back([&] { faults += pxOSWaitForEvent(open, 600'000) == 1 ? 0 : 1; });
    int status = 0;
    for (int i = 0; i < 60 && status == 0; ++i) {
        const pid_t child = fork();
        if (child == 0) runChild(open);
        ASSERT_EQ(waitpid(child, &status, 0), child);
    }
    over = true;
    pxOSSetEvent(open);
    for (std::thread& thread : threads) thread.join();
    pxOSCloseEvent(open);
    EXPECT_EQ(status, 0) << "of a child, as waitpid() has it";
    EXPECT_EQ(faults, 0);
}

} // namespace
