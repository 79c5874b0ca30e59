// What all fuzz targets share.
#pragma once

#include <cstdlib>
#include <fmt/format.h>
#include <string>
#include <unistd.h>

namespace fikleipa::fuzz {

// Where people read, also while a target has taken standard error away.
inline int peopleRead = STDERR_FILENO;

inline void say(const std::string& line) {
    const std::string text = line + "\n";
    if (::write(peopleRead, text.data(), text.size()) < 0) std::abort();
}

// Says what an input stands for, to a person who asks for it.
template <typename... Args>
void tell(fmt::format_string<Args...> format, Args&&... args) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nobody sets it
    static const bool isAsked = std::getenv("FIKLEIPA_FUZZ_TELL") != nullptr;
    if (isAsked) say(fmt::format(format, std::forward<Args>(args)...));
}

// Ends the program as a finding.
template <typename... Args>
[[noreturn]] void found(fmt::format_string<Args...> format, Args&&... args) {
    say("FINDING: " + fmt::format(format, std::forward<Args>(args)...));
    std::abort();
}

} // namespace fikleipa::fuzz
