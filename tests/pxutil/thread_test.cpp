// Threads and interlocked counters.
#include "tests/pxutil/waiting.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <set>
#include <system_error>
#include <vector>

#include <pthread.h>
#include <sched.h>
#include <signal.h> // NOLINT(modernize-deprecated-headers): what blocks signals is not in <csignal>
#include <sys/resource.h>

namespace {

// What a thread finds out about itself.
struct Found {
    unsigned int announcedId = 0;
    unsigned int idAtStart = 0;
    unsigned int ownId = 0;
    std::string name;
    std::thread::id thread;
    sigset_t blocked{};
    cpu_set_t processors{};
    int policy = -1;
};

struct Observed {
    Found found;
    OwnEvent done{1}; // signalled when everything was found out
};

std::string ownName() {
    std::array<char, 16> name{};
    pthread_getname_np(pthread_self(), name.data(), name.size());
    return name.data();
}

unsigned int observe(void* argument) {
    auto& observed = *static_cast<Observed*>(argument);
    observed.found.idAtStart = observed.found.announcedId;
    observed.found.ownId = static_cast<unsigned int>(gettid());
    observed.found.name = ownName();
    observed.found.thread = std::this_thread::get_id();
    pthread_sigmask(SIG_SETMASK, nullptr, &observed.found.blocked);
    sched_getaffinity(0, sizeof observed.found.processors, &observed.found.processors);
    observed.found.policy = sched_getscheduler(0);
    pxOSSetEvent(observed.done);
    return 7;
}

pxOSThread startObserver(Observed& observed, const char* name) {
    return pxOSCreateThread(nullptr, 0, observe, &observed, 0, &observed.found.announcedId, name);
}

Found runThread() {
    Observed observed;
    pxOSCloseThread(startObserver(observed, nullptr), nullptr);
    EXPECT_EQ(pxOSWaitForEvent(observed.done, kLong), 1);
    return observed.found;
}

TEST(Thread, RunsItsEntryOnAThreadOfTheGivenName) {
    const std::pair<const char*, std::string> names[]{
        {"decoder", "decoder"}, {"a name that is too long", "a name that is "}, {nullptr, ownName()}};
    for (const auto& [name, kept] : names) {
        Observed observed;
        pxOSThread thread = startObserver(observed, name);
        EXPECT_NE(thread, nullptr);
        EXPECT_NE(observed.found.announcedId, 0U);
        pxOSCloseThread(thread, "detach");
        ASSERT_EQ(pxOSWaitForEvent(observed.done, kLong), 1);
        EXPECT_NE(observed.found.thread, std::this_thread::get_id());
        EXPECT_EQ(observed.found.idAtStart, observed.found.announcedId);
        EXPECT_EQ(observed.found.name, kept);
    }
    pxOSCloseThread(nullptr, nullptr);
}

TEST(Thread, NumbersDiffer) {
    std::set<unsigned int> numbers;
    while (numbers.size() < 50) ASSERT_TRUE(numbers.insert(runThread().announcedId).second);
}

// The size of the process's address space in bytes.
std::size_t addressSpace() {
    std::ifstream file("/proc/self/statm");
    std::size_t pages = 0;
    file >> pages;
    return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

TEST(Thread, EndedThreadsLeaveNothingBehind) {
    const auto runThreads = [](int count) {
        for (int i = 0; i < count; ++i) runThread();
    };
    runThreads(20);
    const std::size_t before = addressSpace();
    runThreads(300);
    // Three hundred stacks would be more than two gigabytes. A few there may be: an event is signalled before its
    // thread has ended.
    EXPECT_LT(addressSpace(), before + (std::size_t{1} << 30));
}

TEST(Thread, EndsWithItsEntry) {
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 4; ++i) {
        const std::filesystem::path thread = "/proc/self/task/" + std::to_string(runThread().ownId);
        while (std::filesystem::exists(thread)) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

TEST(Thread, BlocksAllSignalsAndLeavesThoseOfItsCreatorAsTheyWere) {
    sigset_t some;
    sigset_t all;
    sigset_t before;
    sigset_t after;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    sigemptyset(&some);
    sigaddset(&some, SIGUSR2);
    pthread_sigmask(SIG_SETMASK, &some, &all); // of all, those that the system lets be blocked
    const sigset_t blocked = runThread().blocked;
    pthread_sigmask(SIG_SETMASK, &before, &after);
    EXPECT_EQ(sigismember(&all, SIGALRM), 1);
    for (int signal = 1; signal <= SIGRTMAX; ++signal) {
        EXPECT_EQ(sigismember(&blocked, signal), sigismember(&all, signal)) << signal;
        EXPECT_EQ(sigismember(&after, signal), signal == SIGUSR2 ? 1 : 0) << signal;
    }
}

// Its own creator, not one that came before.
TEST(Thread, HasItsCreatorsSchedulingAndProcessors) {
    cpu_set_t all;
    sched_getaffinity(0, sizeof all, &all);
    cpu_set_t one;
    CPU_ZERO(&one);
    for (std::size_t cpu = 0; CPU_COUNT(&one) == 0; ++cpu) {
        if (CPU_ISSET(cpu, &all)) CPU_SET(cpu, &one);
    }
    for (int i = 0; i < 20; ++i) {
        std::thread([&, odd = i % 2 != 0] {
            const cpu_set_t& processors = odd ? one : all;
            const int policy = odd ? SCHED_BATCH : SCHED_OTHER;
            const sched_param parameters{};
            sched_setaffinity(0, sizeof processors, &processors);
            sched_setscheduler(0, policy, &parameters);
            const Found found = runThread();
            EXPECT_TRUE(CPU_EQUAL(&found.processors, &processors));
            EXPECT_EQ(found.policy, policy);
        }).join();
    }
}

// A thread that waits for another must not keep it from being started, however many came before.
TEST(Thread, EntriesNeverWaitForOneAnother) {
    for (int round = 0; round < 20; ++round) {
        const std::array<OwnEvent, 9> events;
        struct Link {
            pxOSEvent from, to;
        };
        std::array<Link, 8> links{};
        for (std::size_t i = 0; i < links.size(); ++i) {
            links[i] = {events[i + 1], events[i]};
            const auto pass = [](void* argument) {
                const auto& link = *static_cast<Link*>(argument);
                if (pxOSWaitForEvent(link.from, kLong) == 1) pxOSSetEvent(link.to);
                return 0U;
            };
            pxOSCloseThread(pxOSCreateThread(nullptr, 0, pass, &links[i], 0, nullptr, "link"), nullptr);
        }
        pxOSSetEvent(events.back());
        EXPECT_EQ(pxOSWaitForEvent(events.front(), kLong), 1);
    }
}

// Takes from this process the right to start another thread. Root is bound by no such limit, so it ceases to be root.
bool forbidThreads() {
    const rlimit none{0, 0};
    if (setrlimit(RLIMIT_NPROC, &none) != 0) return false;
    if (geteuid() == 0 && setresuid(65534, 65534, 65534) != 0) return false;
    try {
        std::thread([] {}).join();
        return false;
    } catch (const std::system_error&) {
        return true;
    }
}

// Exit codes of the child process below; it leaves without the work that a sanitizer does at an end, which needs a
// thread.
[[noreturn]] void runRefusedThread() {
    enum {
        RanHere,
        StillAllowed,
        GaveAHandle,
        DidNotFinish,
        RanElsewhere,
        AnnouncedANumber,
        RenamedTheCaller,
        LeftSignalsBlocked
    };
    Observed observed;
    observed.found.announcedId = 1;
    if (!forbidThreads()) _exit(StillAllowed);
    const std::string name = ownName();
    if (startObserver(observed, "refused") != nullptr) _exit(GaveAHandle);
    if (pxOSWaitForEvent(observed.done, 0) != 1) _exit(DidNotFinish);
    if (observed.found.thread != std::this_thread::get_id()) _exit(RanElsewhere);
    if (observed.found.announcedId != 0) _exit(AnnouncedANumber);
    if (ownName() != name) _exit(RenamedTheCaller);
    if (sigismember(&observed.found.blocked, SIGUSR1) != 0) _exit(LeftSignalsBlocked);
    _exit(RanHere);
}

TEST(ThreadDeathTest, RefusedThreadRunsOnItsCaller) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(runRefusedThread(), testing::ExitedWithCode(0), "");
}

TEST(Interlocked, CountsUnderContention) {
    constexpr std::size_t kEach = 100'000;
    int value = -5;
    EXPECT_EQ(pxOSInterlockedIncrement(&value), -4);
    EXPECT_EQ(pxOSInterlockedDecrement(&value), -5);

    // Each result of a pure count up is returned once.
    std::vector<unsigned char> seen(2 * kEach);
    int up = 0;
    int balance = 0;
    {
        const auto count = [&] {
            for (std::size_t i = 0; i < kEach; ++i) {
                pxOSInterlockedIncrement(&balance);
                ++seen[static_cast<std::size_t>(pxOSInterlockedIncrement(&up) - 1)];
                pxOSInterlockedDecrement(&balance);
            }
        };
        const std::jthread first(count);
        const std::jthread second(count);
    }
    EXPECT_EQ(static_cast<std::size_t>(up), 2 * kEach);
    EXPECT_EQ(balance, 0);
    EXPECT_EQ(seen, std::vector<unsigned char>(2 * kEach, 1));
}

} // namespace
