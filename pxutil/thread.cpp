#include "pxutil.h"

#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <string_view>
#include <thread>

#include <pthread.h>

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

// Starting a thread takes the system tens of microseconds, in which a core copies megabytes; so threads are kept for a
// moment. A task is queued only when there is a thread without one for it, hence no entry waits for the end of another;
// but a thread whose entry ends takes what is queued before those it was meant for have woken up.
class Threads {
public:
    // Never destroyed: threads may outlive the end of main().
    static Threads& all() {
        static auto& threads = *new Threads;
        return threads;
    }

    // Hands the task to a thread without one, if there is any. Unlocks first, so that nobody wakes up to find the lock
    // taken.
    bool giveAway(const Task& task) {
        {
            const std::lock_guard lock(mutex_);
            if (free_ <= tasks_.size()) return false;
            tasks_.push_back(task);
        }
        given_.notify_one();
        return true;
    }

    // What a thread does after its first task.
    void runTasksGiven() {
        stepBack();
        while (const auto task = nextTask()) task->run();
    }

private:
    static constexpr std::chrono::seconds kPatience{1};

    Threads() {
        // A child process has none of its parent's threads, but would remember that they wait.
        pthread_atfork([] { all().mutex_.lock(); }, [] { all().mutex_.unlock(); },
                       [] {
                           all().tasks_.clear();
                           all().free_ = 0;
                           new (&all().given_) std::condition_variable;
                           all().mutex_.unlock();
                       });
    }

    // To a thread of the batch class the system gives a fair share too, but never takes the processor from whoever
    // wakes it: a caller that gives out many tasks is to get through with it.
    static void stepBack() {
        int policy = 0;
        sched_param parameters{};
        if (pthread_getschedparam(pthread_self(), &policy, &parameters) != 0 || policy != SCHED_OTHER) return;
        pthread_setschedparam(pthread_self(), SCHED_BATCH, &parameters);
    }

    std::optional<Task> nextTask() {
        std::unique_lock lock(mutex_);
        ++free_;
        const bool found = given_.wait_for(lock, kPatience, [this] { return !tasks_.empty(); });
        --free_;
        if (!found) return std::nullopt;
        const Task task = tasks_.front();
        tasks_.pop_front();
        return task;
    }

    std::mutex mutex_;
    std::condition_variable given_;
    std::deque<Task> tasks_;
    std::size_t free_ = 0; // threads without a task, never fewer than there are tasks
};

void start(const Task& task) {
    std::thread([=] {
        task.run();
        Threads::all().runTasksGiven();
    }).detach();
}

} // namespace

pxOSThread pxOSCreateThread(void* /*security*/, unsigned int /*stackSize*/, pxOSThreadEntry entry, void* argument,
                            unsigned int /*flags*/, unsigned int* threadId, const char* name) {
    static std::atomic<std::uintptr_t> lastNumber{0};
    const std::uintptr_t number = ++lastNumber;
    if (threadId != nullptr) *threadId = static_cast<unsigned int>(number);
    try {
        const Task task{entry, argument, threadName(name)};
        if (!Threads::all().giveAway(task)) start(task);
        return std::bit_cast<pxOSThread>(number);
    } catch (const std::exception&) {
        // No thread and no memory for one are the same refusal; `entry` is to run all the same.
    }
    if (threadId != nullptr) *threadId = 0;
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
