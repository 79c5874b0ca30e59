// A handle is a number that is looked up and never a pointer that is followed, so a stale one leads nowhere. Whoever
// finds an event shares it: one that is closed goes away when the last call that still uses it returns.
//
// One lock guards all events, so that a process that forks can take it: the child then finds every event whole.
#include "pxutil.h"

#include <bit>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include <pthread.h>

namespace {

struct Event {
    Event(bool manual, bool signalled) : manualReset(manual), signals(signalled ? 1 : 0) {}

    std::condition_variable changed;
    const bool manualReset;
    bool closed = false;
    // Without manual reset: one signal for each wait to be released and one for the next, so that two signals in quick
    // succession release two waits even if neither has woken up in between.
    std::size_t signals;
    std::size_t waits = 0;
};

using EventPointer = std::shared_ptr<Event>;
using Events = std::map<std::uintptr_t, EventPointer>;

static_assert(sizeof(std::uintptr_t) >= 8, "a smaller handle would come up again");

// The events that are open. Nothing is allocated or freed under the lock, as an allocator may have a lock of its own
// that a fork takes first.
class Registry {
public:
    Registry() {
        pthread_atfork([] { all().mutex.lock(); }, [] { all().mutex.unlock(); },
                       [] {
                           all().forgetWaits();
                           all().mutex.unlock();
                       });
    }

    // Never destroyed: threads may still signal while the process ends.
    static Registry& all() {
        static auto& registry = *new Registry;
        return registry;
    }

    // Null where there is none. To be called with the lock taken.
    [[nodiscard]] EventPointer find(pxOSEvent handle) const {
        const auto found = open.find(std::bit_cast<std::uintptr_t>(handle));
        return found == open.end() ? nullptr : found->second;
    }

    std::mutex mutex;
    Events open;
    std::uintptr_t lastId = 0;

private:
    // Those who wait are threads that a forked child does not have. Its condition variables still count them, and to
    // destroy one would be to wait for them, so new ones take their place.
    void forgetWaits() {
        for (const auto& [id, event] : open) {
            event->waits = 0;
            new (&event->changed) std::condition_variable;
        }
    }
};

// Made while the library is loaded, when there is no other thread in it: a fork amid its making would leave the child
// half of it.
[[maybe_unused]] const Registry& madeAtLoad = Registry::all();

} // namespace

pxOSEvent pxOSCreateEvent(void* /*security*/, int manualReset, int initialState, const char* /*name*/) {
    try {
        Registry& registry = Registry::all();
        Events created;
        created.emplace(0, std::make_shared<Event>(manualReset != 0, initialState != 0));
        auto node = created.extract(created.begin());
        const std::lock_guard lock(registry.mutex);
        node.key() = ++registry.lastId;
        return std::bit_cast<pxOSEvent>(registry.open.insert(registry.open.end(), std::move(node))->first);
    } catch (const std::exception&) {
        return nullptr;
    }
}

void pxOSSetEvent(pxOSEvent handle) {
    EventPointer event; // let go of after the lock
    const std::lock_guard lock(Registry::all().mutex);
    event = Registry::all().find(handle);
    if (event == nullptr) return;
    if (event->manualReset) {
        event->signals = 1;
        event->changed.notify_all();
    } else if (event->signals <= event->waits) {
        ++event->signals;
        event->changed.notify_one();
    }
}

int pxOSWaitForEvent(pxOSEvent handle, unsigned int milliseconds) {
    EventPointer event;
    std::unique_lock lock(Registry::all().mutex);
    event = Registry::all().find(handle);
    if (event == nullptr) return 0;
    ++event->waits;
    event->changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                            [&] { return event->signals != 0 || event->closed; });
    --event->waits;
    if (event->signals == 0) return 0;
    if (!event->manualReset) --event->signals;
    return 1;
}

void pxOSCloseEvent(pxOSEvent handle) {
    Events::node_type closed;
    const std::lock_guard lock(Registry::all().mutex);
    closed = Registry::all().open.extract(std::bit_cast<std::uintptr_t>(handle));
    if (!closed) return;
    closed.mapped()->closed = true;
    closed.mapped()->changed.notify_all();
}
