// A line on standard error that tells how far the work is, where that is a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace fikleipa::tool {

class Progress {
public:
    explicit Progress(std::optional<std::uint64_t> total);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Wipes the line unless finish() has completed it.
    ~Progress();

    void advance();
    void finish();

private:
    using Clock = std::chrono::steady_clock;

    void show(double seconds) const;

    bool visible_;
    bool drawn_ = false;
    std::optional<std::uint64_t> total_;
    std::uint64_t done_ = 0;
    Clock::time_point start_ = Clock::now();
    Clock::time_point shown_ = start_;
};

} // namespace fikleipa::tool
