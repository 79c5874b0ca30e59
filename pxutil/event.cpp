// A handle is a number that is looked up and never a pointer that is followed, so a stale one leads nowhere. Whoever
// finds an event shares it: one that is closed goes away when the last call that still uses it returns.
#include "pxutil.h"

#include <array>
#include <atomic>
#include <bit>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <unordered_map>
#include <utility>

namespace {

class Event {
public:
    Event(bool manualReset, bool signalled) : manualReset_(manualReset), signals_(signalled ? 1 : 0) {}

    void set() {
        const std::lock_guard lock(mutex_);
        if (manualReset_) {
            signals_ = 1;
            changed_.notify_all();
        } else if (signals_ <= waits_) {
            ++signals_;
            changed_.notify_one();
        }
    }

    bool wait(std::chrono::milliseconds limit) {
        std::unique_lock lock(mutex_);
        ++waits_;
        changed_.wait_for(lock, limit, [this] { return signals_ != 0 || closed_; });
        --waits_;
        if (signals_ == 0) return false;
        if (!manualReset_) --signals_;
        return true;
    }

    void close() {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    const bool manualReset_;
    bool closed_ = false;
    // Without manual reset: one signal for each wait to be released and one for the next, so that two signals in quick
    // succession release two waits even if neither has woken up in between.
    std::size_t signals_;
    std::size_t waits_ = 0;
};

using EventPointer = std::shared_ptr<Event>;

// The events that are open, spread by handle over shards so that threads with different events seldom meet at a lock.
class Registry {
public:
    pxOSEvent add(EventPointer event) {
        const std::uintptr_t id = ++lastId_;
        Shard& shard = shardOf(id);
        const std::lock_guard lock(shard.mutex);
        shard.events.emplace(id, std::move(event));
        return std::bit_cast<pxOSEvent>(id);
    }

    EventPointer find(pxOSEvent handle) {
        const auto id = std::bit_cast<std::uintptr_t>(handle);
        Shard& shard = shardOf(id);
        const std::lock_guard lock(shard.mutex);
        const auto found = shard.events.find(id);
        return found == shard.events.end() ? nullptr : found->second;
    }

    EventPointer remove(pxOSEvent handle) {
        const auto id = std::bit_cast<std::uintptr_t>(handle);
        Shard& shard = shardOf(id);
        const std::lock_guard lock(shard.mutex);
        const auto node = shard.events.extract(id);
        return node ? node.mapped() : nullptr;
    }

private:
    static_assert(sizeof(std::uintptr_t) >= 8, "a smaller handle would come up again");

    static constexpr std::size_t kCacheLine = 64;

    struct alignas(kCacheLine) Shard {
        std::mutex mutex;
        std::unordered_map<std::uintptr_t, EventPointer> events;
    };

    Shard& shardOf(std::uintptr_t id) { return shards_[id % shards_.size()]; }

    std::array<Shard, 16> shards_;
    std::atomic<std::uintptr_t> lastId_{0};
};

// Never destroyed: threads may still signal while the process ends.
Registry& registry() {
    alignas(Registry) static std::array<std::byte, sizeof(Registry)> room;
    static auto* const events = new (room.data()) Registry; // NOLINT(cppcoreguidelines-owning-memory)
    return *events;
}

} // namespace

pxOSEvent pxOSCreateEvent(void* /*security*/, int manualReset, int initialState, const char* /*name*/) {
    try {
        return registry().add(std::make_shared<Event>(manualReset != 0, initialState != 0));
    } catch (const std::exception&) {
        return nullptr;
    }
}

void pxOSSetEvent(pxOSEvent event) {
    if (const EventPointer found = registry().find(event)) found->set();
}

int pxOSWaitForEvent(pxOSEvent event, unsigned int milliseconds) {
    const EventPointer found = registry().find(event);
    return found && found->wait(std::chrono::milliseconds(milliseconds)) ? 1 : 0;
}

void pxOSCloseEvent(pxOSEvent event) {
    if (const EventPointer removed = registry().remove(event)) removed->close();
}
