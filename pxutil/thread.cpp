#include "pxutil.h"

#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <memory>
#include <new>
#include <string_view>

#include <pthread.h>
#include <signal.h> // NOLINT(modernize-deprecated-headers): what blocks signals is not in <csignal>

namespace {

struct Task {
    pxOSThreadEntry entry;
    void* argument;
    std::array<char, 16> name{}; // as much as the system keeps of one, with the zero at its end
};

void* run(void* argument) {
    // Freed ahead of the entry, whose end may be the end of the call that started it.
    const Task task = *std::unique_ptr<const Task>(static_cast<const Task*>(argument));
    if (task.name[0] != '\0') pthread_setname_np(pthread_self(), task.name.data());
    task.entry(task.argument);
    return nullptr;
}

// A thread begins with its creator's signal mask, so while this lives the calling thread has the mask that a new one is
// to begin with. There is no moment at which a signal could run a host's handler there.
class AllSignalsBlocked {
public:
    AllSignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~AllSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    AllSignalsBlocked(const AllSignalsBlocked&) = delete;
    AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;

private:
    sigset_t before_{};
};

// Returns whether there was memory and a thread for the task.
bool start(pxOSThreadEntry entry, void* argument, const char* name) {
    std::unique_ptr<Task> task(new (std::nothrow) Task{entry, argument});
    pthread_attr_t attributes;
    if (task == nullptr || pthread_attr_init(&attributes) != 0) return false;
    if (name != nullptr) std::string_view(name).copy(task->name.data(), task->name.size() - 1);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    const AllSignalsBlocked blocked;
    pthread_t thread{};
    const bool started = pthread_create(&thread, &attributes, run, task.get()) == 0;
    if (started) static_cast<void>(task.release()); // the thread's own
    pthread_attr_destroy(&attributes);
    return started;
}

} // namespace

pxOSThread pxOSCreateThread(void* /*security*/, unsigned int /*stackSize*/, pxOSThreadEntry entry, void* argument,
                            unsigned int /*flags*/, unsigned int* threadId, const char* name) {
    static constinit std::atomic<std::uintptr_t> lastNumber{0};
    const std::uintptr_t number = ++lastNumber;
    if (threadId != nullptr) *threadId = static_cast<unsigned int>(number);
    if (start(entry, argument, name)) return std::bit_cast<pxOSThread>(number);
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
