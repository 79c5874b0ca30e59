#include "pxutil.h"

#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <latch>
#include <memory>
#include <string_view>
#include <thread>

#include <pthread.h>
#include <unistd.h>

namespace {

// What the system keeps of a thread's name, with the zero at its end.
using ThreadName = std::array<char, 16>;

ThreadName threadName(const char* name) {
    ThreadName kept{};
    if (name != nullptr) std::string_view(name).copy(kept.data(), kept.size() - 1);
    return kept;
}

// The new thread writes its own number, for only it knows it, and does so before `entry` might look.
void start(pxOSThreadEntry entry, void* argument, unsigned int* threadId, const ThreadName& name) {
    const auto numbered = threadId != nullptr ? std::make_shared<std::latch>(1) : nullptr;
    std::thread([=] {
        if (name.front() != '\0') pthread_setname_np(pthread_self(), name.data());
        if (numbered) {
            *threadId = static_cast<unsigned int>(gettid());
            numbered->count_down();
        }
        entry(argument);
    }).detach();
    if (numbered) numbered->wait();
}

} // namespace

pxOSThread pxOSCreateThread(void* /*security*/, unsigned int /*stackSize*/, pxOSThreadEntry entry, void* argument,
                            unsigned int /*flags*/, unsigned int* threadId, const char* name) {
    static std::atomic<std::uintptr_t> lastHandle{0};
    if (threadId != nullptr) *threadId = 0;
    try {
        start(entry, argument, threadId, threadName(name));
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
