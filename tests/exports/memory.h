// What converters are called with: numbers, and up to six planes of memory full of noise.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace fikleipa::tests {

// How three planes, or the first samples of a packed frame, lie to one another.
enum class Places { Apart, Tight, Packed };

// Functions take of these what they have arguments for.
struct Case {
    unsigned width, height;
    std::array<unsigned, 3> pitches{}; // in the order of the arguments; the third is a mode or flags for some
    unsigned matrix = 0, type = 0;     // of RGB
    unsigned bitsPerPixel = 32;
    std::array<int, 2> choices{1, 1};       // that are int: 4:2:2 and planar, mostly
    std::array<unsigned char, 2> flags{};   // that are a byte
    Places places = Places::Apart;          // of planes
    std::array<unsigned, 3> firstSamples{}; // of packed ones
    unsigned misalignment = 0;              // of memory, in bytes
    unsigned sampleBits = 16;               // of the words of noise
    unsigned number = 0;

    // As many bytes as no function gets beyond, from the first of a plane on.
    [[nodiscard]] std::size_t room() const;
};

// Frames of many kinds, the same everywhere.
std::vector<Case> cases();

class Memory {
public:
    static constexpr unsigned kPlanes = 6;

    // Has room for each of these.
    explicit Memory(const std::vector<Case>& all);

    void fill(const Case& c);

    std::uint8_t* plane(unsigned p);

    // Whether something was written to a plane.
    [[nodiscard]] bool isChanged(unsigned p) const { return hash(p) != filled_[p]; }

    // A hash of the planes that were asked for since the last time, with the margins around them. They are then filled
    // as they were.
    std::uint64_t takeHash();

private:
    void refill(unsigned p);
    [[nodiscard]] std::uint64_t hash(unsigned p) const;

    std::size_t distance_ = 0; // from plane to plane, in words as all of these
    std::vector<std::uint64_t> noise_, words_;
    std::size_t first_, used_ = 0;

    unsigned misalignment_ = 0;
    std::uint64_t sampleMask_ = 0;
    std::array<std::uint64_t, kPlanes> filled_{};
    unsigned planesInUse_ = 0;
};

// A hash of numbers in their order. Two that differ in one number have different hashes.
class Digest {
public:
    void add(std::uint64_t number) { value_ = std::rotl(value_ ^ number, 29) * 0x9E3779B97F4A7C15; }
    [[nodiscard]] std::uint64_t value() const { return value_; }

private:
    std::uint64_t value_ = 1;
};

} // namespace fikleipa::tests
