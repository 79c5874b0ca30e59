#include "progress.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fmt/format.h>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>

namespace fikleipa::tool {
namespace {

constexpr auto kInterval = std::chrono::milliseconds(100);
constexpr std::size_t kWidestBar = 40;
constexpr std::size_t kNarrowestBar = 5;

std::size_t terminalWidth() {
    struct winsize window {};
    const bool known = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &window) == 0 && window.ws_col != 0;
    return known ? window.ws_col : 80;
}

std::string clockText(double seconds) {
    const auto whole = static_cast<std::uint64_t>(std::ceil(seconds));
    return whole < 3600 ? fmt::format("{}:{:02}", whole / 60, whole % 60)
                        : fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

std::string bar(double share, std::size_t width) {
    const auto filled = static_cast<std::size_t>(share * static_cast<double>(width));
    return fmt::format("[{:#<{}}{:.<{}}] ", "", filled, "", width - filled);
}

} // namespace

Progress::Progress(std::optional<std::uint64_t> total) : visible_(::isatty(STDERR_FILENO) == 1), total_(total) {}

Progress::~Progress() {
    if (drawn_) std::fputs("\r\x1b[K", stderr);
}

void Progress::advance() {
    ++done_;
    const Clock::time_point now = Clock::now();
    if (!visible_ || now - shown_ < kInterval) return;
    shown_ = now;
    drawn_ = true;
    show(std::chrono::duration<double>(now - start_).count());
}

void Progress::show(double seconds) const {
    const double speed = static_cast<double>(done_) / std::max(seconds, 1e-6);
    std::string line = total_ ? fmt::format("{}/{} frames, {:.1f} a second", done_, *total_, speed)
                              : fmt::format("{} frames, {:.1f} a second", done_, speed);
    const std::size_t width = terminalWidth() - 1;
    if (total_) {
        line += fmt::format(", {} left", clockText(static_cast<double>(*total_ - done_) / speed));
        const std::size_t room = width - std::min(width, line.size() + 3);
        const double share = static_cast<double>(done_) / static_cast<double>(*total_);
        if (room >= kNarrowestBar) line.insert(0, bar(share, std::min(room, kWidestBar)));
    }
    std::fputs(fmt::format("\r{}\x1b[K", line.substr(0, width)).c_str(), stderr);
}

void Progress::finish() {
    if (!visible_) return;
    const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    const double speed = static_cast<double>(done_) / std::max(seconds, 1e-6);
    std::fputs(fmt::format("\r{} frames in {:.1f} s, {:.1f} a second\x1b[K\n", done_, seconds, speed).c_str(), stderr);
    drawn_ = false;
}

} // namespace fikleipa::tool
