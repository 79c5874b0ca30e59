#include "pxutil.h"

#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <latch>
#include <memory>
#include <mutex>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

#include <pthread.h>
#include <unistd.h>

namespace {

// What the system keeps of a thread's name, with the zero at its end.
using ThreadName = std::array<char, 16>;

// Without a name a thread has that of the one that started it.
ThreadName threadName(const char* name) {
    ThreadName kept{};
    if (name == nullptr) {
        pthread_getname_np(pthread_self(), kept.data(), kept.size());
    } else {
        std::string_view(name).copy(kept.data(), kept.size() - 1);
    }
    return kept;
}

struct Task {
    pxOSThreadEntry entry;
    void* argument;
    ThreadName name;

    void run() const {
        pthread_setname_np(pthread_self(), name.data());
        entry(argument);
    }
};

// A thread whose entry has ended and which waits for another.
struct Idle {
    unsigned int number = static_cast<unsigned int>(gettid());
    std::optional<Task> task;
    std::condition_variable given;
    Idle* next = nullptr;
};

// Starting a thread takes the system tens of microseconds, in which a core copies megabytes; so threads are kept for a
// moment. A thread is started only when none is idle, hence no entry waits for the end of another.
class Threads {
public:
    // Never destroyed: threads may outlive the end of main().
    static Threads& all() {
        static auto& threads = *new Threads;
        return threads;
    }

    // Hands the task to an idle thread, if there is one.
    bool giveAway(const Task& task, unsigned int* threadId) {
        const std::lock_guard lock(mutex_);
        if (idle_ == nullptr) return false;
        Idle& thread = *idle_;
        idle_ = thread.next;
        if (threadId != nullptr) *threadId = thread.number;
        thread.task = task;
        thread.given.notify_one();
        return true;
    }

    // What a thread does after its first task.
    void runTasksGiven() {
        Idle self;
        while (const auto task = nextTask(self)) task->run();
    }

private:
    static constexpr std::chrono::seconds kPatience{1};

    Threads() {
        // A child process has none of its parent's threads.
        pthread_atfork([] { all().mutex_.lock(); }, [] { all().mutex_.unlock(); },
                       [] {
                           all().idle_ = nullptr;
                           all().mutex_.unlock();
                       });
    }

    std::optional<Task> nextTask(Idle& self) {
        std::unique_lock lock(mutex_);
        self.next = idle_;
        idle_ = &self;
        self.given.wait_for(lock, kPatience, [&] { return self.task.has_value(); });
        if (!self.task) remove(self);
        return std::exchange(self.task, std::nullopt);
    }

    void remove(const Idle& thread) {
        Idle** link = &idle_;
        while (*link != &thread) link = &(*link)->next;
        *link = thread.next;
    }

    std::mutex mutex_;
    Idle* idle_ = nullptr; // the last to become idle first
};

// The new thread writes its own number, for only it knows it, and does so before `entry` might look.
void start(const Task& task, unsigned int* threadId) {
    const auto numbered = threadId != nullptr ? std::make_shared<std::latch>(1) : nullptr;
    std::thread([=] {
        if (numbered) {
            *threadId = static_cast<unsigned int>(gettid());
            numbered->count_down();
        }
        task.run();
        Threads::all().runTasksGiven();
    }).detach();
    if (numbered) numbered->wait();
}

} // namespace

pxOSThread pxOSCreateThread(void* /*security*/, unsigned int /*stackSize*/, pxOSThreadEntry entry, void* argument,
                            unsigned int /*flags*/, unsigned int* threadId, const char* name) {
    static std::atomic<std::uintptr_t> lastHandle{0};
    if (threadId != nullptr) *threadId = 0;
    try {
        const Task task{entry, argument, threadName(name)};
        if (!Threads::all().giveAway(task, threadId)) start(task, threadId);
        return std::bit_cast<pxOSThread>(++lastHandle);
    } catch (const std::exception&) {
        // No thread and no memory for one are the same refusal; `entry` is to run all the same.
    }
    entry(argument);
    return nullptr;
}

// A thread is on its own from the start and its handle is a bare number: there is nothing to give back.
void pxOSCloseThread(pxOSThread /*thread*/, const char* /*mode*/) {}

// NOLINTBEGIN(readability-non-const-parameter): the analyser does not see the write

int pxOSInterlockedIncrement(int* value) {
    return ++std::atomic_ref(*value);
}

int pxOSInterlockedDecrement(int* value) {
    return --std::atomic_ref(*value);
}

// NOLINTEND(readability-non-const-parameter)
