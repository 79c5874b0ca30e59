// Memory between two pages that nobody may touch: a byte too far in either direction ends the test.
#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

class GuardedBytes {
public:
    // Room for at least `bytes` bytes.
    explicit GuardedBytes(std::size_t bytes) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        room_ = (bytes + page - 1) / page * page;
        mapped_ = room_ + 2 * page;
        void* const memory = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        base_ = static_cast<std::uint8_t*>(memory);
        begin_ = base_ + page;
        if (room_ != 0 && mprotect(begin_, room_, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
    }
    ~GuardedBytes() { munmap(base_, mapped_); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes(GuardedBytes&&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;
    GuardedBytes& operator=(GuardedBytes&&) = delete;

    [[nodiscard]] std::uint8_t* begin() const { return begin_; }
    [[nodiscard]] std::uint8_t* end() const { return begin_ + room_; }

private:
    std::size_t room_ = 0;
    std::size_t mapped_ = 0;
    std::uint8_t* base_ = nullptr;
    std::uint8_t* begin_ = nullptr;
};
