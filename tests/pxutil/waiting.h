// Events that close themselves, and threads of which one can tell that they wait.
#pragma once

#include "pxutil.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <string>
#include <thread>
#include <utility>

#include <unistd.h>

constexpr unsigned int kLong = 60'000;

class OwnEvent {
public:
    explicit OwnEvent(int manualReset = 0, int initialState = 0, const char* name = nullptr)
        : event_(pxOSCreateEvent(nullptr, manualReset, initialState, name)) {}
    ~OwnEvent() { pxOSCloseEvent(event_); }
    OwnEvent(const OwnEvent&) = delete;
    OwnEvent& operator=(const OwnEvent&) = delete;

    operator pxOSEvent() const { return event_; }

private:
    pxOSEvent event_;
};

class SleepingThread {
public:
    template <typename Task>
    explicit SleepingThread(Task task)
        : thread_([this, task = std::move(task)] {
              id_ = gettid();
              task();
          }) {}

    // Returns once the thread was found asleep several times in a row, so that a short wait for a lock does not count.
    // A thread that has ended counts as asleep.
    void waitUntilAsleep() const {
        for (int inARow = 0; inARow < 5; inARow = isAsleep() ? inARow + 1 : 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

private:
    [[nodiscard]] bool isAsleep() const {
        if (id_ == 0) return false;
        std::ifstream stat("/proc/self/task/" + std::to_string(id_) + "/stat");
        std::string text;
        if (!std::getline(stat, text)) return true;
        return text.at(text.rfind(')') + 2) == 'S';
    }

    std::atomic<pid_t> id_{0};
    std::jthread thread_;
};
