#include "tests/exports/memory.h"

#include "fikleipa.h"
#include "v210/pitch.h"

#include <algorithm>
#include <random>

namespace fikleipa::tests {
namespace {

// Choices that are the same everywhere, which those of the standard library's distributions are not.
class Chooser {
public:
    template <class T, std::size_t kCount>
    T of(const T (&list)[kCount]) {
        return list[(random_() >> 8) % kCount];
    }

private:
    std::minstd_rand random_{20};
};

// Where packed samples begin: Y, Cb, Cr.
constexpr std::array<unsigned, 3> kOrders[] = {{1, 0, 2}, {0, 1, 3}, {0, 3, 1}, {1, 2, 0}};

constexpr unsigned kWidths[] = {0,  1,  2,  3,  5,  6,  7,  8,  11, 12, 13, 16,  23,  24,  31,  32, 33,
                                46, 47, 48, 49, 50, 64, 65, 94, 96, 97, 98, 130, 191, 193, 258, 390};
constexpr unsigned kHeights[] = {1, 2, 3, 4, 5, 7, 8, 9};
constexpr unsigned kLowHeights[] = {0, 1, 2, 3};
constexpr unsigned kWide = 100;

constexpr unsigned kDepths[] = {15, 16, 24, 32, 48, 64, 25};
constexpr unsigned kMatrices[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 0xFFFFFFFF};
constexpr unsigned kTypes[] = {0, 1, 2, 3, 4, 0x8000, 0x8001, 0x8002, 0x8003, 0x8004, 0x7FFF, 0x10001};

// What has nothing to do with the size of the frame.
Case ofSize(unsigned width, unsigned height, Chooser& choose) {
    Case c{width, height};
    c.matrix = choose.of(kMatrices);
    c.type = choose.of(kTypes);
    c.bitsPerPixel = choose.of(kDepths);
    c.places = choose.of({Places::Apart, Places::Tight, Places::Packed, Places::Packed});
    c.choices = {choose.of({0, 1, -1}), c.places == Places::Packed ? 0 : choose.of({0, 1, 2})};
    c.flags = {choose.of<unsigned char>({0, 1, 2, 255}), choose.of<unsigned char>({0, 1, 2, 255})};
    c.firstSamples = choose.of(kOrders);
    c.misalignment = choose.of({0U, 0U, 1U, 2U, 12U});
    c.sampleBits = choose.of({16U, 10U, 12U});
    return c;
}

Case smallCase(Chooser& choose) {
    const unsigned width = choose.of(kWidths);
    Case c = ofSize(width, width < kWide ? choose.of(kHeights) : choose.of(kLowHeights), choose);
    const unsigned v210 = naturalV210Pitch(width);
    const auto pitch = [&] {
        return choose.of({0U, 16U, width / 2, width, 2 * width, 2 * width + 2, 3 * width, 4 * width, 4 * width + 7,
                          v210, v210 + 16, 8 * width, 8 * width + 24});
    };
    c.pitches = {pitch(), pitch(), choose.of({0U, 1U, 2U, 3U, width, 2 * width, 4 * width, 4 * width + 7})};
    if (choose.of({true, false, false})) c.pitches[1] = c.pitches[0];
    return c;
}

// With rows that do not lie on one another where threads share the frame.
Case wideCase(unsigned width, unsigned height, Chooser& choose) {
    Case c = ofSize(width, height, choose);
    c.pitches = {4 * width, 4 * width, 2 * width};
    return c;
}

// With rows that lie as kernels like them, or not. So much that everything but alpha is written past the cache.
Case largeCase(unsigned width, unsigned depth, unsigned type, Chooser& choose) {
    Case c = wideCase(width, 344 * 32 / depth, choose);
    c.pitches = {width * depth / 8, width * depth / 8, width * depth / 16};
    c.bitsPerPixel = depth;
    c.type = type;
    c.places = Places::Apart;
    c.choices = {1, 1};
    c.misalignment = 0;
    return c;
}

constexpr std::size_t kWord = sizeof(std::uint64_t);
constexpr std::size_t kMargin = 64; // before a plane, and more behind it
constexpr std::size_t kLanes = 8;

// What a plane takes with its margins.
std::size_t wordsOf(const Case& c) {
    const std::size_t lines = (c.room() + 3 * kMargin) / kMargin;
    return lines * kMargin / kWord;
}

} // namespace

std::size_t Case::room() const {
    const unsigned widest = std::max({pitches[0], pitches[1], pitches[2], naturalV210Pitch(width)});
    const std::size_t planes = places == Places::Tight ? 3 : 2;
    return planes * widest * (height + 4) + 8 * std::size_t{width} + 512;
}

std::vector<Case> cases() {
    constexpr unsigned kSmallCases = 200;
    Chooser choose;
    std::vector<Case> all;
    while (all.size() < kSmallCases) all.push_back(smallCase(choose));
    // Beyond these widths threads share a frame. With so many rows, some of them have none, or more than others.
    for (const unsigned width : {1924U, 2052U}) {
        for (const unsigned height : {3U, 8U, 21U}) all.push_back(wideCase(width, height, choose));
    }
    all.push_back(largeCase(2048, 32, PX_RGB_BGRA, choose));
    all.push_back(largeCase(2052, 64, PX_RGB_RGBA | PX_RGB_BOTTOM_UP, choose));
    for (unsigned i = 0; i < all.size(); ++i) all[i].number = i;
    return all;
}

Memory::Memory(const std::vector<Case>& all) {
    for (const Case& c : all) distance_ = std::max(distance_, wordsOf(c));
    std::minstd_rand random(1);
    noise_.resize(kPlanes * distance_);
    for (std::uint64_t& word : noise_) word = std::uint64_t{random()} << 32 ^ std::uint64_t{random()} << 16 ^ random();
    words_.resize(kPlanes * distance_ + kMargin / kWord);
    first_ = -reinterpret_cast<std::uintptr_t>(words_.data()) % kMargin / kWord;
}

void Memory::fill(const Case& c) {
    used_ = wordsOf(c);
    misalignment_ = c.misalignment;
    sampleMask_ = (std::uint64_t{1} << c.sampleBits) - 1;
    for (unsigned p = 0; p < kPlanes; ++p) {
        refill(p);
        filled_[p] = hash(p);
    }
    planesInUse_ = 0;
}

std::uint8_t* Memory::plane(unsigned p) {
    planesInUse_ = std::max(planesInUse_, p + 1);
    std::uint64_t* const words = words_.data() + first_ + p * distance_;
    return reinterpret_cast<std::uint8_t*>(words) + kMargin + misalignment_;
}

std::uint64_t Memory::takeHash() {
    Digest digest;
    for (unsigned p = 0; p < planesInUse_; ++p) {
        const std::uint64_t now = hash(p);
        digest.add(now);
        if (now != filled_[p]) refill(p);
    }
    planesInUse_ = 0;
    return digest.value();
}

void Memory::refill(unsigned p) {
    const auto from = noise_.begin() + static_cast<std::ptrdiff_t>(p * distance_);
    const auto to = words_.begin() + static_cast<std::ptrdiff_t>(first_ + p * distance_);
    const std::uint64_t mask = sampleMask_ * 0x0001000100010001;
    std::transform(from, from + static_cast<std::ptrdiff_t>(used_), to,
                   [mask](std::uint64_t word) { return word & mask; });
}

// Several at a time, which takes a fraction of the time.
std::uint64_t Memory::hash(unsigned p) const {
    std::array<Digest, kLanes> lanes;
    const std::uint64_t* const words = words_.data() + first_ + p * distance_;
    for (std::size_t i = 0; i < used_; i += kLanes) {
        for (std::size_t lane = 0; lane < kLanes; ++lane) lanes[lane].add(words[i + lane]);
    }
    Digest all;
    for (const Digest& lane : lanes) all.add(lane.value());
    return all.value();
}

} // namespace fikleipa::tests
