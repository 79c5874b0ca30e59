#include "tests/v210/platform.h"

#include <chrono>
#include <mutex>
#include <utility>

#include <dlfcn.h>

namespace fikleipa::tests {
namespace {

std::mutex currentMutex;
std::weak_ptr<Watch> current;

std::shared_ptr<Watch> currentWatch() {
    const std::lock_guard lock(currentMutex);
    return current.lock();
}

// The watch if the call is the watched thread's.
std::shared_ptr<Watch> watchOfCaller() {
    auto watch = currentWatch();
    return watch && watch->caller == std::this_thread::get_id() ? watch : nullptr;
}

void note(std::string call) {
    if (const auto watch = watchOfCaller()) watch->calls.push_back(std::move(call));
}

void waitUntil(const std::atomic<bool>& flag) {
    while (!flag) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

// Finds the platform library's own version of one of the functions below.
template <class Function>
Function* real(Function* /*double*/, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
#define REAL(name) real(name, #name)

struct HeldThread {
    pxOSThreadEntry entry;
    void* argument;
    std::shared_ptr<Watch> watch;
};

unsigned int runHeld(void* argument) {
    const std::unique_ptr<HeldThread> held(static_cast<HeldThread*>(argument));
    waitUntil(held->watch->waiting);
    return held->entry(held->argument);
}

} // namespace

std::shared_ptr<Watch> watchCalls(Threads threads, Signals signals) {
    auto watch = std::make_shared<Watch>(threads, signals);
    const std::lock_guard lock(currentMutex);
    current = watch;
    return watch;
}

} // namespace fikleipa::tests

using namespace fikleipa::tests;

pxOSThread pxOSCreateThread(void* security, unsigned int stackSize, pxOSThreadEntry entry, void* argument,
                            unsigned int flags, unsigned int* threadId, const char* name) {
    const auto create = REAL(pxOSCreateThread);
    const auto watch = watchOfCaller();
    if (!watch) return create(security, stackSize, entry, argument, flags, threadId, name);

    const bool plain = security == nullptr && stackSize == 0 && flags == 0;
    note(std::string("thread ") + name + (plain ? "" : " with extras"));
    if (watch->atStart) watch->atStart(entry, argument, threadId);
    if (watch->threads == Threads::Refused) {
        entry(argument);
        return nullptr;
    }
    auto held = std::make_unique<HeldThread>(HeldThread{entry, argument, watch});
    return create(security, stackSize, runHeld, held.release(), flags, threadId, name);
}

void pxOSCloseThread(pxOSThread thread, const char* mode) {
    note(std::string("close thread ") + mode);
    REAL(pxOSCloseThread)(thread, mode);
}

pxOSEvent pxOSCreateEvent(void* security, int manualReset, int initialState, const char* name) {
    const bool plain = security == nullptr && manualReset == 0 && initialState == 0;
    note(std::string("event ") + name + (plain ? "" : " with extras"));
    const pxOSEvent event = REAL(pxOSCreateEvent)(security, manualReset, initialState, name);
    if (const auto watch = watchOfCaller()) watch->event = event;
    return event;
}

void pxOSSetEvent(pxOSEvent event) {
    const auto watch = currentWatch();
    const bool watched = watch && watch->event == event;
    if (watched && watch->signals == Signals::Late) waitUntil(watch->released);
    REAL(pxOSSetEvent)(event);
    if (watched) ++watch->signalled;
}

int pxOSWaitForEvent(pxOSEvent event, unsigned int milliseconds) {
    note("wait " + std::to_string(milliseconds));
    const auto watch = watchOfCaller();
    if (watch) watch->waiting = true;
    return watch && watch->threads == Threads::Held ? 1 : REAL(pxOSWaitForEvent)(event, milliseconds);
}

void pxOSCloseEvent(pxOSEvent event) {
    note("close event");
    REAL(pxOSCloseEvent)(event);
}

int pxOSInterlockedIncrement(int* value) {
    note("increment");
    return REAL(pxOSInterlockedIncrement)(value);
}

int pxOSInterlockedDecrement(int* value) {
    note("decrement");
    return REAL(pxOSInterlockedDecrement)(value);
}
