// Frames without pixels, however high, and rows that are four gigabytes apart.
#pragma once

#include "tests/converters.h"

#include <chrono>

namespace fikleipa::tests {

// A wide range of addresses, of which as many bytes from the start on are memory as offsets of 32 bits reach: those of
// a plane's start and of a row in it, and one more.
class FarMemory {
public:
    FarMemory() {
        constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;
        void* const memory = mmap(nullptr, kReserved, PROT_NONE, kFlags, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        begin_ = static_cast<std::uint8_t*>(memory);
        if (mprotect(begin_, kReached, PROT_READ | PROT_WRITE) != 0) throw std::bad_alloc();
    }
    ~FarMemory() { munmap(begin_, kReserved); }
    FarMemory(const FarMemory&) = delete;
    FarMemory& operator=(const FarMemory&) = delete;

    [[nodiscard]] Pointers planes() const { return {begin_, begin_ + (1U << 20), begin_ + (2U << 20)}; }

private:
    static constexpr std::size_t kGibibyte = std::size_t{1} << 30;
    static constexpr std::size_t kReached = 13 * kGibibyte;
    static constexpr std::size_t kReserved = 128 * kGibibyte;

    std::uint8_t* begin_;
};

// Row offsets are products of 32 bits, on both sides: a converter that multiplies in more reads or writes where there
// is nothing. Left out is what moves whole pitches.
inline void expectRowOffsetsToWrap(const std::vector<Converter>& converters) {
    constexpr unsigned kFar = 0xFFFFFF00;
    const FarMemory far;
    const FarMemory near;
    for (const Converter& converter : converters) {
        SCOPED_TRACE(converter.name);
        converter.convert(near.planes(), far.planes(), {96, 16, 4096, kFar, 2048});
        if (converter.name.find("cyuv") == std::string::npos) {
            converter.convert(far.planes(), near.planes(), {96, 16, kFar, 4096, kFar / 2});
        }
    }
}

// What converts nothing returns at once and touches nothing.
inline void expectEmptyFramesToTakeNoTime(const std::vector<Converter>& converters) {
    const GuardedBytes nothing(0);
    const Pointers planes{nothing.begin(), nothing.begin(), nothing.begin()};
    const auto begin = std::chrono::steady_clock::now();
    for (const Converter& converter : converters) {
        if (converter.name == "toplanar_sse2") continue; // takes eight pixels of every row at least
        for (const unsigned type : {0U, 0x8000U}) {
            for (const Geometry& g : {Geometry{0, 0xFFFFFFFF, 0, 0, 0, 0, type}, Geometry{7, 0, 64, 64, 64, 0, type}}) {
                converter.convert(planes, planes, g);
            }
        }
        const auto elapsed = std::chrono::steady_clock::now() - begin;
        ASSERT_LT(elapsed, std::chrono::seconds(1)) << converter.name;
    }
}

} // namespace fikleipa::tests
