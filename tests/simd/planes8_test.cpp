#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using Bytes = std::vector<std::uint8_t>;
using Pointers = std::vector<std::uint8_t*>;

constexpr std::size_t kMostPairs = 100;

// How long a row is: bytes a pair, less those at its end that nobody reads.
struct Length {
    std::size_t each, unread = 0;
    std::size_t of(std::size_t pairs) const { return pairs == 0 ? 0 : each * pairs - unread; }
};

struct Kernel {
    std::string name;
    std::vector<Length> read, written;
    std::function<void(const simd::Planes8Kernels&, const Pointers& from, const Pointers& to, std::size_t pairs)> call;
};

std::vector<Kernel> allKernels() {
    std::vector<Kernel> all;
    constexpr simd::Group kGroups[] = {{0, 1, 3}, {0, 3, 1}, {1, 0, 2}, {1, 2, 0}}; // the last has no name
    for (unsigned at = 0; at < 4; ++at) {
        const simd::Group g = kGroups[at];
        const auto add = [&](const char* name, auto read, auto written, auto call) {
            all.push_back({name + std::to_string(at), read, written, call});
        };
        using Lengths = std::vector<Length>;
        add("join ", Lengths{{2}, {1}, {1}}, Lengths{{4}}, [=](auto& k, auto& from, auto& to, std::size_t n) {
            k.join[at](to[0] + g.y, to[0] + g.cb, to[0] + g.cr, from[0], from[1], from[2], n);
        });
        add("join 4:4:4 ", Lengths{{2}, {2, 1}, {2, 1}}, Lengths{{4}},
            [=](auto& k, auto& from, auto& to, std::size_t n) {
                k.join444[at](to[0] + g.y, to[0] + g.cb, to[0] + g.cr, from[0], from[1], from[2], n);
            });
        add("split ", Lengths{{4}}, Lengths{{2}, {1}, {1}}, [=](auto& k, auto& from, auto& to, std::size_t n) {
            k.split[at](to[0], to[1], to[2], from[0] + g.y, from[0] + g.cb, from[0] + g.cr, n);
        });
    }
    all.push_back({"average", {{1}, {1}}, {{1}}, [](auto& k, auto& from, auto& to, std::size_t n) {
                       k.average(to[0], from[0], from[1], n);
                   }});
    return all;
}

Pointers pointers(std::vector<Bytes>& rows) {
    Pointers all;
    for (Bytes& row : rows) {
        row.reserve(1); // an empty row is somewhere as well
        all.push_back(row.data());
    }
    return all;
}

TEST(Planes8, EveryLevelEqualsPortableAtEveryLengthAndPlacement) {
    PlacedRow from[3] = {PlacedRow(4096), PlacedRow(4096), PlacedRow(4096)};
    PlacedRow to[4] = {PlacedRow(4096), PlacedRow(4096), PlacedRow(4096), PlacedRow(4096)};
    for (const Kernel& kernel : allKernels()) {
        for (std::size_t n = 0; n <= kMostPairs; ++n) {
            std::vector<Bytes> sources;
            std::vector<Bytes> expected;
            for (const Length& row : kernel.read)
                sources.push_back(noise(row.of(n), static_cast<unsigned>(n + sources.size())));
            for (const Length& row : kernel.written) expected.emplace_back(row.of(n));
            kernel.call(simd::kernelsAt(simd::Level::Portable).planes8, pointers(sources), pointers(expected), n);
            const auto check = [&](simd::Level level, unsigned srcOffset, bool srcAtEnd, unsigned dstOffset,
                                   bool dstAtEnd) {
                Pointers src;
                Pointers dst;
                for (unsigned i = 0; i < sources.size(); ++i) {
                    src.push_back(from[i].place(sources[i], (srcOffset + 3 * i) % kAlignments, srcAtEnd));
                }
                for (unsigned i = 0; i < expected.size(); ++i) {
                    dst.push_back(to[i].place(expected[i].size(), (dstOffset + 5 * i) % kAlignments, dstAtEnd));
                }
                kernel.call(simd::kernelsAt(level).planes8, src, dst, n);
                for (unsigned i = 0; i < expected.size(); ++i) {
                    ASSERT_TRUE(to[i].holds(expected[i]) && to[i].aroundIsUntouched())
                        << kernel.name << " at " << simd::levelName(level) << ", " << n << " pairs, row " << i
                        << ", offset " << dstOffset;
                }
            };
            check(simd::Level::Portable, 0, true, 0, true);
            for (const simd::Level level : vectorLevels()) {
                eachPlacement([&](auto... placement) { check(level, placement...); });
                if (HasFatalFailure()) return;
            }
        }
    }
}

// Rows in one buffer, every one the same distance behind the one before it, what is read first or what is written.
TEST(Planes8, EveryLevelEqualsPortableWhereRowsOverlap) {
    constexpr std::size_t kRoom = 4096;
    const Bytes before = noise(kRoom);
    for (const Kernel& kernel : allKernels()) {
        if (kernel.name == "average") continue; // not asked to
        for (std::size_t distance = 0; distance <= 4 * kMostPairs; distance += distance < 40 ? 1 : 7) {
            for (const bool readFirst : {false, true}) {
                const auto after = [&](simd::Level level) {
                    Bytes bytes = before;
                    Pointers from(kernel.read.size());
                    Pointers to(kernel.written.size());
                    std::uint8_t* at = bytes.data();
                    const auto lay = [&](Pointers& rows) {
                        for (std::uint8_t*& row : rows) row = std::exchange(at, at + distance);
                    };
                    lay(readFirst ? from : to);
                    lay(readFirst ? to : from);
                    kernel.call(simd::kernelsAt(level).planes8, from, to, kMostPairs);
                    return bytes;
                };
                for (const simd::Level level : vectorLevels()) {
                    ASSERT_EQ(after(level), after(simd::Level::Portable))
                        << kernel.name << " at " << simd::levelName(level) << ", distance " << distance;
                }
            }
        }
    }
}

} // namespace
