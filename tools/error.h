// The one exception of the command: what() is the line that the user reads.
#pragma once

#include <cerrno>
#include <fmt/format.h>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace fikleipa::tool {

class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

template <typename... Args>
[[noreturn]] void fail(fmt::format_string<Args...> format, Args&&... args) {
    throw Error(fmt::format(format, std::forward<Args>(args)...));
}

// For a system call that has just failed: "cannot read x: Is a directory".
[[noreturn]] inline void failSystem(const std::string& what) {
    throw Error(what + ": " + std::system_category().message(errno));
}

} // namespace fikleipa::tool
