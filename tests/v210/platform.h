// The test program's own versions of the platform library's events, threads and counters, which take the place of the
// real ones. They pass calls on to those, and while a test watches keep a record and do as the test says.
#pragma once

#include "pxutil/pxutil.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace fikleipa::tests {

enum class Threads {
    Refused, // run on the calling thread, as where the system has no thread to give
    Held     // begin when the caller waits for the event, a wait that is over at once
};

enum class Signals {
    Real,
    Late // wait until the test releases them
};

// What is seen of the calls that one thread makes, and of the signals of the events that it creates.
struct Watch {
    Watch(Threads threadsWanted, Signals signalsWanted) : threads(threadsWanted), signals(signalsWanted) {}

    const Threads threads;
    const Signals signals;
    const std::thread::id caller = std::this_thread::get_id();
    std::vector<std::string> calls; // in order
    std::function<void(pxOSThreadEntry entry, const void* argument, const unsigned int* threadId)> atStart;
    std::atomic<pxOSEvent> event{nullptr}; // the last one created
    std::atomic<bool> waiting{false};      // the caller has come to wait
    std::atomic<bool> released{false};     // late signals may go
    std::atomic<int> signalled{0};         // signals that were passed on
};

// Watches the calling thread for as long as the watch is kept. Threads that were started meanwhile may outlive it.
std::shared_ptr<Watch> watchCalls(Threads threads, Signals signals = Signals::Real);

} // namespace fikleipa::tests
