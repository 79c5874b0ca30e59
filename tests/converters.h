// Converters beside models that do the same a byte at a time and a step after the other. Both are to leave the same
// bytes and to return the same, at every level, and no converter may touch what its model does not.
#pragma once

#include "fikleipa.h"
#include "tests/guarded_bytes.h"
#include "tests/levels.h"
#include "tests/small_stack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>

namespace fikleipa::tests {

struct Geometry {
    unsigned width, height, dstPitch, srcPitch;
    unsigned chromaPitch = 0;      // where a converter has one
    unsigned matrix = 0, type = 0; // of RGB
    unsigned variant = 0;          // of a converter that has several

    [[nodiscard]] PXYCBCRMatrix matrixValue() const { return static_cast<PXYCBCRMatrix>(matrix); }
    [[nodiscard]] PXYCBCRRgbType typeValue() const { return static_cast<PXYCBCRRgbType>(type); }
};

inline std::ostream& operator<<(std::ostream& out, const Geometry& g) {
    return out << g.width << 'x' << g.height << ", pitches " << g.dstPitch << ", " << g.chromaPitch << " and "
               << g.srcPitch << ", matrix " << g.matrix << ", type " << g.type << ", variant " << g.variant;
}

// Memory that a model uses, and how much of it.
class Room {
public:
    static constexpr std::size_t kMargin = 64; // on either side of what is used

    Room(std::size_t bytes, unsigned seed) : seed_(seed), before_(noise(bytes + 2 * kMargin, seed)), after_(before_) {}

    // To 16-bit samples of so many bits, where they begin at even addresses.
    void limitSamples(unsigned bits) {
        before_ = noise(before_.size(), seed_);
        for (std::size_t i = 1; i < before_.size(); i += 2) before_[i] >>= 16 - bits;
        after_ = before_;
        used_ = 0;
    }
    void fill(const Bytes& content) {
        std::copy(content.begin(), content.end(), before_.begin() + kMargin);
        after_ = before_;
        used_ = 0;
    }

    std::uint8_t& at(std::size_t i) {
        used_ = std::max(used_, i + 1);
        return after_.at(kMargin + i);
    }
    void restore() {
        std::copy_n(before_.begin(), kMargin + used_, after_.begin());
        used_ = 0;
    }

    std::size_t used() const { return used_; }
    const std::uint8_t* before() const { return before_.data() + kMargin; }
    const std::uint8_t* after() const { return after_.data() + kMargin; }

private:
    unsigned seed_;
    Bytes before_, after_;
    std::size_t used_ = 0;
};

// What a model has for a pointer.
class At {
public:
    At(Room& room, std::size_t offset) : room_(&room), offset_(offset) {}

    std::uint8_t& operator[](std::size_t i) const { return room_->at(offset_ + i); }
    At operator+(std::size_t bytes) const { return {*room_, offset_ + bytes}; }

private:
    Room* room_;
    std::size_t offset_;
};

inline void copyBytes(At dst, At src, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) dst[i] = src[i];
}

inline void invert(At frame, unsigned pitch, unsigned height) {
    for (unsigned y = 0; y < height / 2; ++y) {
        for (unsigned i = 0; i < pitch; ++i) std::swap(frame[y * pitch + i], frame[(height - 1 - y) * pitch + i]);
    }
}

// The planes of a frame. One that is in one piece, or has its planes at places of its own, is the first alone.
using Places = std::array<At, 3>;
using Pointers = std::array<std::uint8_t*, 3>;

// Where the chroma planes of a frame begin, in quarters of its luma plane.
struct Planar {
    unsigned cb, cr;
    bool is422;

    Places in(At frame, unsigned luma) const {
        const auto plane = [&](unsigned quarters) { return frame + (luma + luma * (quarters - 4) / 4); };
        return {frame, plane(cb), plane(cr)};
    }
};
inline constexpr Planar kI420{4, 5, false};
inline constexpr Planar kYv12{5, 4, false};
inline constexpr Planar kP422{4, 6, true};

// The samples of a packed group in their order: two of luma, Cb (U) and Cr (V). The last layout has no name.
using Order = std::string;
inline const Order kYuy2 = "YUyV";
inline const Order kYvyu = "YVyU";
inline const Order kUyvy = "UYVy";
inline const std::array kOrders{kYuy2, kYvyu, kUyvy, Order("VYUy")};

// Where a packed frame has its first luma, Cb and Cr.
template <class Pointer>
std::array<Pointer, 3> firstSamples(Pointer frame, const Order& order, unsigned sampleBytes = 1) {
    const auto at = [&](char sample) { return frame + order.find(sample) * sampleBytes; };
    return {at('Y'), at('U'), at('V')};
}

using Conversion = std::function<unsigned(const Pointers& dst, const Pointers& src, const Geometry& g)>;
using Model = std::function<unsigned(const Places& dst, const Places& src, const Geometry& g)>;
using RowBytes = unsigned (*)(unsigned width);

struct Converter {
    std::string name;
    RowBytes dstRow, srcRow; // of a row, the first plane's, without a gap
    Conversion convert;
    Model model;
    bool splits = false;      // whether threads share wide frames
    unsigned sampleBits = 16; // of the source's 16-bit samples
};

inline Conversion frame(PXConvertRgbFrame* convert) {
    return [convert](const Pointers& dst, const Pointers& src, const Geometry& g) {
        return convert(dst[0], src[0], g.width, g.height, g.dstPitch, g.srcPitch, g.matrixValue(), g.typeValue());
    };
}

inline Conversion frame(PXConvertFrame* convert) {
    return [convert](const Pointers& dst, const Pointers& src, const Geometry& g) {
        return convert(dst[0], src[0], g.width, g.height, g.dstPitch, g.srcPitch);
    };
}

// Runs converters and models on frames of up to `room` bytes a plane.
class Comparison {
public:
    explicit Comparison(std::size_t room)
        : rooms_{Room(room, 1), Room(room, 2), Room(room, 3), Room(room, 4), Room(room, 5), Room(room, 6)},
          memory_{Guarded(room), Guarded(room), Guarded(room), Guarded(room), Guarded(room), Guarded(room)} {}
    ~Comparison() { simd::useLevel(simd::bestLevel()); }
    Comparison(const Comparison&) = delete;
    Comparison& operator=(const Comparison&) = delete;

    void limitSamples(unsigned bits) {
        if (std::exchange(sampleBits_, bits) == bits) return;
        for (std::size_t r = 3; r < kPlanes; ++r) rooms_[r].limitSamples(bits);
    }
    void fillSource(const Bytes& content) { rooms_[3].fill(content); }

    // Every plane lies right behind a page that nobody may touch, and then right before one.
    void check(const Converter& converter, const Geometry& g) {
        compare(converter, g, {{{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}});
    }

    // The planes of the destination lie right behind one another, so that what one has beyond its rows falls on the
    // next.
    void checkTight(const Converter& converter, const Geometry& g) {
        const std::size_t luma = std::size_t{g.dstPitch} * g.height;
        const std::size_t chroma = std::size_t{g.chromaPitch} * g.height;
        compare(converter, g, {{{0, 0}, {0, luma}, {0, luma + chroma}, {3, 0}, {4, 0}, {5, 0}}});
    }

private:
    static constexpr std::size_t kPlanes = 6; // of the destination, then of the source

    struct Spot {
        std::size_t room, offset;
    };
    struct Guarded : GuardedBytes {
        explicit Guarded(std::size_t room) : GuardedBytes(room + 2 * Room::kMargin) {}
    };

    // Frames that take every converter's ways of several rows and past the cache: what needs the most stack.
    static bool isLarge(const Geometry& g) { return std::uint64_t{g.width} * g.height >= 100'000; }

    // The bytes of a room that count, `at` its first one. Where the guard pages are there is no margin.
    template <class Use>
    auto useRoom(std::size_t r, bool atEnd, Use use) {
        const auto used = static_cast<std::ptrdiff_t>(rooms_[r].used());
        constexpr auto kMargin = static_cast<std::ptrdiff_t>(Room::kMargin);
        std::uint8_t* const at = atEnd ? memory_[r].end() - used : memory_[r].begin();
        return use(at, atEnd ? -kMargin : 0, atEnd ? used : used + kMargin);
    }

    std::uint8_t* lay(std::size_t r, bool atEnd) {
        return useRoom(r, atEnd, [&](std::uint8_t* at, std::ptrdiff_t first, std::ptrdiff_t end) {
            std::copy(rooms_[r].before() + first, rooms_[r].before() + end, at + first);
            return at;
        });
    }

    testing::AssertionResult holds(std::size_t r, bool atEnd) {
        return useRoom(r, atEnd, [&](const std::uint8_t* at, std::ptrdiff_t first, std::ptrdiff_t end) {
            const std::uint8_t* const wanted = rooms_[r].after();
            if (std::equal(at + first, at + end, wanted + first)) return testing::AssertionSuccess();
            const auto differing = std::mismatch(at + first, at + end, wanted + first).first;
            return testing::AssertionFailure()
                   << "byte " << differing - at << " of plane " << r << " is " << int{*differing} << " and not "
                   << int{wanted[differing - at]} << ", of " << rooms_[r].used();
        });
    }

    void compare(const Converter& converter, const Geometry& g, const std::array<Spot, kPlanes>& spots) {
        const auto place = [&](std::size_t p) { return At(rooms_[spots[p].room], spots[p].offset); };
        for (Room& room : rooms_) room.restore();
        const unsigned result = converter.model({place(0), place(1), place(2)}, {place(3), place(4), place(5)}, g);
        for (const simd::Level level : simd::kLevels) {
            if (level > simd::bestLevel()) continue;
            simd::useLevel(level);
            for (const bool atEnd : {false, true}) {
                std::array<std::uint8_t*, kPlanes> planes{};
                for (std::size_t r = 0; r < kPlanes; ++r) planes[r] = lay(r, atEnd);
                const auto pointer = [&](std::size_t p) { return planes[spots[p].room] + spots[p].offset; };
                unsigned got = 0;
                const auto convert = [&] {
                    got = converter.convert({pointer(0), pointer(1), pointer(2)}, {pointer(3), pointer(4), pointer(5)},
                                            g);
                };
                isLarge(g) ? onSmallStack(convert) : convert();
                ASSERT_EQ(got, result) << converter.name << ' ' << g;
                for (std::size_t r = 0; r < kPlanes; ++r) {
                    ASSERT_TRUE(holds(r, atEnd)) << converter.name << ' ' << g << ", " << simd::levelName(level);
                }
            }
        }
    }

    unsigned sampleBits_ = 16;
    std::array<Room, kPlanes> rooms_;
    std::array<Guarded, kPlanes> memory_;
};

// Checks converters on what geometries(converter) gives, up to the first that fails.
template <class Geometries>
void checkAll(const std::vector<Converter>& converters, std::size_t room, Geometries geometries) {
    Comparison comparison(room);
    for (const Converter& converter : converters) {
        comparison.limitSamples(converter.sampleBits);
        for (const Geometry& g : geometries(converter)) {
            comparison.check(converter, g);
            if (testing::Test::HasFatalFailure()) return;
        }
    }
}

} // namespace fikleipa::tests
