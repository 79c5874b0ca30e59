// Bytes as an open file, so that an input comes from nowhere on disk.
#pragma once

#include "fuzz/fuzz.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace fikleipa::fuzz {

class MemoryFile {
public:
    enum class Kind { Regular, Pipe };

    // A pipe holds no more than 64 KiB; a fuzzer's inputs are shorter.
    MemoryFile(std::span<const std::uint8_t> content, Kind kind) {
        if (kind == Kind::Regular) {
            descriptor_ = ::memfd_create("input", MFD_CLOEXEC);
            fill(descriptor_, content);
            ::lseek(descriptor_, 0, SEEK_SET);
        } else {
            std::array<int, 2> ends{-1, -1};
            if (::pipe(ends.data()) != 0) found("no pipe to be had");
            descriptor_ = ends[0];
            fill(ends[1], content);
            ::close(ends[1]);
        }
    }
    ~MemoryFile() { ::close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    int descriptor() const { return descriptor_; }
    std::string path() const { return fmt::format("/proc/self/fd/{}", descriptor_); }

private:
    static void fill(int descriptor, std::span<const std::uint8_t> content) {
        if (!content.empty() && ::write(descriptor, content.data(), content.size()) != std::ssize(content))
            found("an input of {} bytes does not fit into a file", content.size());
    }

    int descriptor_ = -1;
};

} // namespace fikleipa::fuzz
