#include "simd/stream.h"
#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;
using simd::Group;
using simd::Samples16;
using simd::Samples8;
using Bytes = std::vector<std::uint8_t>;
using Rows = std::vector<Bytes>;

constexpr std::size_t kMost = 64;

// A kernel with its rows: how many bytes it reads and writes for n groups, pairs or samples, and the call.
struct Kernel {
    std::string name;
    std::function<std::vector<std::size_t>(std::size_t)> sources;
    std::function<std::vector<std::size_t>(std::size_t)> destinations;
    std::function<void(const simd::V210Kernels&, const std::vector<std::uint8_t*>&, const std::vector<std::uint8_t*>&,
                       std::size_t)>
        call;
};

using Sizes = std::vector<std::size_t>;
using Pointers = std::vector<std::uint8_t*>;

auto perUnit(Sizes bytes) {
    return [bytes = std::move(bytes)](std::size_t n) {
        Sizes sizes;
        for (const std::size_t each : bytes) sizes.push_back(each * n);
        return sizes;
    };
}

// The bytes of a row of 16-bit samples of which every other one is taken: without the last, which is not.
std::size_t everyOther(std::size_t samples) {
    return samples == 0 ? 0 : 2 * samples - 2;
}

struct Named {
    const char* name;
    Samples8 samples;
    Group group;
};
constexpr Named kNamed[] = {{"YUY2", Samples8::Yuy2, {0, 1, 3}},
                            {"YVYU", Samples8::Yvyu, {0, 3, 1}},
                            {"UYVY", Samples8::Uyvy, {1, 0, 2}},
                            {"packed", Samples8::Packed, {1, 2, 0}}};

void addPacked(std::vector<Kernel>& all, const Named& named) {
    const auto at = static_cast<unsigned>(named.samples);
    const Group g = named.group;
    const std::string name = named.name;
    all.push_back({"v210 to " + name, perUnit({16}), perUnit({12}),
                   [=](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.unpack8[at](to[0] + g.y, to[0] + g.cb, to[0] + g.cr, from[0], n);
                   }});
    all.push_back({name + " to v210", perUnit({12}), perUnit({16}),
                   [=](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.pack8[at](to[0], from[0] + g.y, from[0] + g.cb, from[0] + g.cr, n);
                   }});
    for (const unsigned left : {0U, 1U}) {
        all.push_back({"v210 to 16-bit " + name + (left != 0 ? ", left" : ""), perUnit({16}), perUnit({24}),
                       [=](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                           k.unpack16[left][0](to[0] + std::size_t{2} * g.y, to[0] + std::size_t{2} * g.cb,
                                               to[0] + std::size_t{2} * g.cr, from[0], n);
                       }});
    }
}

// Where a row is aligned, it is written past the cache.
bool isStreamed(const std::uint8_t* row) {
    return reinterpret_cast<std::uintptr_t>(row) % simd::kCacheLine == 0;
}

void addPlanar(std::vector<Kernel>& all) {
    constexpr auto kAt = static_cast<unsigned>(Samples8::Planar);
    all.push_back({"v210 to 8-bit planes", perUnit({16}), perUnit({6, 3, 3}),
                   [](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.unpack8[kAt](to[0], to[1], to[2], from[0], n);
                   }});
    all.push_back({"8-bit planes to v210", perUnit({6, 3, 3}), perUnit({16}),
                   [](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.pack8[kAt](to[0], from[0], from[1], from[2], n);
                   }});
    for (const unsigned left : {0U, 1U}) {
        for (const auto samples : {Samples16::Planar, Samples16::Planar444}) {
            const std::size_t chroma = samples == Samples16::Planar ? 6 : 12;
            all.push_back({"v210 to 16-bit planes " + std::to_string(left) + std::to_string(chroma), perUnit({16}),
                           perUnit({12, chroma, chroma}),
                           [=](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                               k.unpack16[left][static_cast<unsigned>(samples)](to[0], to[1], to[2], from[0], n);
                           }});
        }
    }
    for (unsigned reduce = 0; reduce < simd::kReductions; ++reduce) {
        all.push_back({"16-bit planes to v210 " + std::to_string(reduce), perUnit({12, 6, 6}), perUnit({16}),
                       [=](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                           (isStreamed(to[0]) ? k.pack16Past : k.pack16)[reduce][0](to[0], from[0], from[1], from[2],
                                                                                    n);
                       }});
        const auto full = [](std::size_t n) { return Sizes{12 * n, everyOther(6 * n), everyOther(6 * n)}; };
        all.push_back({"16-bit 4:4:4 planes to v210 " + std::to_string(reduce), full, perUnit({16}),
                       [=](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                           (isStreamed(to[0]) ? k.pack16Past : k.pack16)[reduce][1](to[0], from[0], from[1], from[2],
                                                                                    n);
                       }});
    }
}

void addPairs(std::vector<Kernel>& all) {
    const auto groups = [](std::size_t pairs) { return Sizes{(pairs + 2) / 3 * 16}; };
    all.push_back({"v210 to UYVY, rounded", groups, perUnit({4}),
                   [](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.unpackUyvy(to[0], from[0], n);
                   }});
    all.push_back({"10-bit planes to UYVY", perUnit({4, 2, 2}), perUnit({4}),
                   [=](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       (isStreamed(to[0]) ? k.uyvyFrom10Past : k.uyvyFrom10)(to[0], from[0], from[1], from[2], n);
                   }});
    all.push_back({"16-bit planes to UYVY", perUnit({4, 2, 2}), perUnit({4}),
                   [=](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.uyvyFrom16(to[0], from[0], from[1], from[2], n);
                   }});
    const auto apart = [](std::size_t n) { return Sizes{4 * n, everyOther(2 * n), everyOther(2 * n)}; };
    all.push_back({"interleaved chroma to UYVY, apart", apart, perUnit({4}),
                   [](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.uyvyFrom16BiPlanar(to[0], from[0], from[1], from[2], n);
                   }});
    all.push_back({"interleaved chroma to UYVY", perUnit({4, 4}), perUnit({4}),
                   [](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.uyvyFrom16BiPlanar(to[0], from[0], from[1], from[1] + 2, n);
                   }});
    all.push_back({"UYVY to 16-bit planes", perUnit({4}), perUnit({4, 2, 2}),
                   [](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.uyvyTo16(to[0], to[1], to[2], from[0], n);
                   }});
    all.push_back({"UYVY to 10-bit 4:4:4 planes", perUnit({4}), perUnit({4, 4, 4}),
                   [](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.uyvyTo10Planar444(to[0], to[1], to[2], from[0], n);
                   }});
    all.push_back({"average", perUnit({2, 2}), perUnit({2}),
                   [](const simd::V210Kernels& k, const Pointers& from, const Pointers& to, std::size_t n) {
                       k.average16(to[0], from[0], from[1], n);
                   }});
}

std::vector<Kernel> allKernels() {
    std::vector<Kernel> all;
    for (const Named& named : kNamed) addPacked(all, named);
    addPlanar(all);
    addPairs(all);
    return all;
}

Rows run(const Kernel& kernel, simd::Level level, Rows sources, std::size_t n) {
    Rows destinations;
    for (const std::size_t bytes : kernel.destinations(n)) destinations.emplace_back(bytes);
    const auto pointers = [](Rows& rows) {
        Pointers all;
        for (Bytes& row : rows) {
            row.reserve(1); // an empty row is somewhere as well
            all.push_back(row.data());
        }
        return all;
    };
    const Pointers from = pointers(sources);
    const Pointers to = pointers(destinations);
    kernel.call(simd::kernelsAt(level).v210, from, to, n);
    return destinations;
}

TEST(V210, EveryLevelEqualsPortableAtEveryLengthAndPlacement) {
    PlacedRow from[3] = {PlacedRow(4096), PlacedRow(4096), PlacedRow(4096)};
    PlacedRow to[3] = {PlacedRow(4096), PlacedRow(4096), PlacedRow(4096)};
    for (const Kernel& kernel : allKernels()) {
        for (std::size_t n = 0; n <= kMost; ++n) {
            Rows sources;
            for (const std::size_t bytes : kernel.sources(n))
                sources.push_back(noise(bytes, static_cast<unsigned>(sources.size() + n)));
            const Rows expected = run(kernel, simd::Level::Portable, sources, n);
            const auto check = [&](simd::Level level, unsigned srcOffset, bool srcAtEnd, unsigned dstOffset,
                                   bool dstAtEnd) {
                Pointers src;
                Pointers dst;
                for (std::size_t i = 0; i < sources.size(); ++i) {
                    const auto offset = (srcOffset + 3 * static_cast<unsigned>(i)) % kAlignments;
                    src.push_back(from[i].place(sources[i], offset, srcAtEnd));
                }
                for (std::size_t i = 0; i < expected.size(); ++i) {
                    const auto offset = (dstOffset + 5 * static_cast<unsigned>(i)) % kAlignments;
                    dst.push_back(to[i].place(expected[i].size(), offset, dstAtEnd));
                }
                kernel.call(simd::kernelsAt(level).v210, src, dst, n);
                for (std::size_t i = 0; i < expected.size(); ++i) {
                    ASSERT_TRUE(to[i].holds(expected[i]) && to[i].aroundIsUntouched())
                        << kernel.name << " at " << simd::levelName(level) << ", " << n << " units, row " << i
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

// Words count up at a stride of their own in each row, so that every sample of 10 or 16 bits stands everywhere.
TEST(V210, EveryLevelEqualsPortableOnEverySample) {
    constexpr std::size_t kUnits = 65536 * 3;
    for (const Kernel& kernel : allKernels()) {
        Rows sources;
        unsigned stride = 1;
        for (const std::size_t bytes : kernel.sources(kUnits)) {
            Bytes row(bytes);
            for (std::size_t i = 0; i + 1 < bytes; i += 2) {
                const std::size_t word = i / 2 * stride + i / 24;
                row[i] = static_cast<std::uint8_t>(word);
                row[i + 1] = static_cast<std::uint8_t>(word >> 8);
            }
            sources.push_back(std::move(row));
            stride += 6;
        }
        const Rows expected = run(kernel, simd::Level::Portable, sources, kUnits);
        for (const simd::Level level : vectorLevels()) {
            ASSERT_EQ(run(kernel, level, sources, kUnits), expected) << kernel.name << " at " << simd::levelName(level);
        }
    }
}

// Samples, and the group that the picture of its four words gives for them, written down bit by bit.
struct Model {
    static constexpr std::size_t kGroups = 1024;
    std::vector<unsigned> y, cb, cr;
    Bytes v210;

    // Every value stands in every place.
    explicit Model(unsigned highestBits) {
        for (unsigned i = 0; i < kGroups; ++i) {
            for (unsigned j = 0; j < 6; ++j) y.push_back((i * 5 + j * 171) % 1024);
            for (unsigned j = 0; j < 3; ++j) cb.push_back((i * 7 + j * 341 + 100) % 1024);
            for (unsigned j = 0; j < 3; ++j) cr.push_back((i * 11 + j * 341 + 200) % 1024);
            const auto component = [i](const std::vector<unsigned>& plane, unsigned perGroup, unsigned at) {
                return plane[std::size_t{i} * perGroup + at];
            };
            const auto luma = [&](unsigned at) { return component(y, 6, at); };
            const auto blue = [&](unsigned at) { return component(cb, 3, at); };
            const auto red = [&](unsigned at) { return component(cr, 3, at); };
            put(blue(0), luma(0), red(0), highestBits);
            put(luma(1), blue(1), luma(2), highestBits);
            put(red(1), luma(3), blue(2), highestBits);
            put(luma(4), red(2), luma(5), highestBits);
        }
    }

private:
    void put(unsigned lowest, unsigned middle, unsigned highest, unsigned highestBits) {
        const unsigned word = lowest + middle * 1024 + highest * 1048576 + (highestBits << 30);
        for (unsigned shift = 0; shift < 32; shift += 8) v210.push_back(static_cast<std::uint8_t>(word >> shift));
    }
};

Bytes words(const std::vector<unsigned>& values) {
    Bytes bytes;
    for (const unsigned value : values) {
        bytes.push_back(static_cast<std::uint8_t>(value));
        bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    }
    return bytes;
}

std::vector<unsigned> mapped(std::vector<unsigned> values, unsigned (*by)(unsigned)) {
    std::transform(values.begin(), values.end(), values.begin(), by);
    return values;
}

const simd::V210Kernels& portable() {
    return simd::kernelsAt(simd::Level::Portable).v210;
}

class V210Model : public testing::TestWithParam<unsigned> {
protected:
    Model model{GetParam()};
    Rows planes{Bytes(Model::kGroups * 12), Bytes(Model::kGroups * 12), Bytes(Model::kGroups * 12)};
};

TEST_P(V210Model, UnpacksToBytes) {
    portable().unpack8[static_cast<unsigned>(Samples8::Planar)](planes[0].data(), planes[1].data(), planes[2].data(),
                                                                model.v210.data(), Model::kGroups);
    Bytes rounded(Model::kGroups * 12);
    portable().unpackUyvy(rounded.data(), model.v210.data(), Model::kGroups * 3);
    for (std::size_t i = 0; i < model.y.size(); ++i) {
        ASSERT_EQ(planes[0][i], model.y[i] / 4);
        ASSERT_EQ(rounded[2 * i + 1], std::min(255U, (model.y[i] + 2) / 4));
    }
    for (std::size_t i = 0; i < model.cb.size(); ++i) {
        ASSERT_EQ(planes[1][i], model.cb[i] / 4);
        ASSERT_EQ(planes[2][i], model.cr[i] / 4);
        ASSERT_EQ(rounded[4 * i], std::min(255U, (model.cb[i] + 2) / 4));
        ASSERT_EQ(rounded[4 * i + 2], std::min(255U, (model.cr[i] + 2) / 4));
    }
    for (const Named& named : kNamed) {
        Bytes packed(Model::kGroups * 12);
        const Group g = named.group;
        portable().unpack8[static_cast<unsigned>(named.samples)](
            packed.data() + g.y, packed.data() + g.cb, packed.data() + g.cr, model.v210.data(), Model::kGroups);
        for (std::size_t i = 0; i < model.cb.size(); ++i) {
            ASSERT_EQ(packed[4 * i + g.y], planes[0][2 * i]) << named.name;
            ASSERT_EQ(packed[4 * i + g.y + 2], planes[0][2 * i + 1]) << named.name;
            ASSERT_EQ(packed[4 * i + g.cb], planes[1][i]) << named.name;
            ASSERT_EQ(packed[4 * i + g.cr], planes[2][i]) << named.name;
        }
    }
}

TEST_P(V210Model, UnpacksToWords) {
    const auto unpack = [&](simd::Justify justify, Samples16 samples) {
        portable().unpack16[static_cast<unsigned>(justify)][static_cast<unsigned>(samples)](
            planes[0].data(), planes[1].data(), planes[2].data(), model.v210.data(), Model::kGroups);
    };
    unpack(simd::Justify::Right, Samples16::Planar);
    for (Bytes* const chroma : {&planes[1], &planes[2]}) chroma->resize(Model::kGroups * 6);
    EXPECT_EQ(planes, (Rows{words(model.y), words(model.cb), words(model.cr)}));
    unpack(simd::Justify::Left, Samples16::Planar);
    const auto left = [](unsigned v) { return v * 64; };
    EXPECT_EQ(planes,
              (Rows{words(mapped(model.y, left)), words(mapped(model.cb, left)), words(mapped(model.cr, left))}));
    for (Bytes* const chroma : {&planes[1], &planes[2]}) chroma->resize(Model::kGroups * 12);
    unpack(simd::Justify::Right, Samples16::Planar444);
    const auto twice = [](const std::vector<unsigned>& values) {
        std::vector<unsigned> both;
        for (const unsigned value : values) both.insert(both.end(), 2, value);
        return words(both);
    };
    EXPECT_EQ(planes, (Rows{words(model.y), twice(model.cb), twice(model.cr)}));
}

INSTANTIATE_TEST_SUITE_P(HighestBits, V210Model, testing::Values(0U, 3U));

TEST(V210, PacksWhatItUnpacks) {
    const Model model(0);
    Bytes packed(model.v210.size());
    // Bits that a reduction drops are set.
    const std::array<unsigned (*)(unsigned), simd::kReductions> widen{
        [](unsigned v) { return v | 0xFC00; }, [](unsigned v) { return v * 4 | 0xF003; },
        [](unsigned v) { return v * 64 | 0x3F; }, [](unsigned v) { return v * 64; }};
    for (unsigned reduce = 0; reduce < simd::kReductions; ++reduce) {
        const auto sixteen = [&](const std::vector<unsigned>& values) { return words(mapped(values, widen[reduce])); };
        const Bytes y = sixteen(model.y);
        const Bytes cb = sixteen(model.cb);
        const Bytes cr = sixteen(model.cr);
        portable().pack16[reduce][0](packed.data(), y.data(), cb.data(), cr.data(), Model::kGroups);
        EXPECT_EQ(packed, model.v210) << reduce;
        const auto spread = [](const Bytes& row) {
            Bytes spreadRow(2 * row.size(), 0x5A);
            for (std::size_t i = 0; i < row.size(); ++i) spreadRow[i / 2 * 4 + i % 2] = row[i];
            return spreadRow;
        };
        portable().pack16[reduce][1](packed.data(), y.data(), spread(cb).data(), spread(cr).data(), Model::kGroups);
        EXPECT_EQ(packed, model.v210) << reduce;
    }
    for (const Named& named : kNamed) {
        const Group g = named.group;
        const Bytes bytes = noise(Model::kGroups * 12);
        Bytes back(bytes.size());
        const auto at = static_cast<unsigned>(named.samples);
        portable().pack8[at](packed.data(), bytes.data() + g.y, bytes.data() + g.cb, bytes.data() + g.cr,
                             Model::kGroups);
        portable().unpack8[at](back.data() + g.y, back.data() + g.cb, back.data() + g.cr, packed.data(),
                               Model::kGroups);
        EXPECT_EQ(back, bytes) << named.name;
        for (std::size_t i = 0; i < packed.size(); i += 4) {
            // The two low bits of a component from a byte are 0, and so are the two highest of the word.
            ASSERT_EQ((packed[i] & 3) + (packed[i + 1] & 0xC) + (packed[i + 2] & 0x30) + (packed[i + 3] & 0xC0), 0);
        }
    }
}

TEST(V210, SamplesOfDifferentDepth) {
    const Bytes y = words({0x0402, 0xFFFF, 0x1234, 0x03FC});
    const Bytes cb = words({0x0ABC, 0xFF00});
    const Bytes cr = words({0x0003, 0x8000});
    Bytes uyvy(8);
    portable().uyvyFrom10(uyvy.data(), y.data(), cb.data(), cr.data(), 2);
    EXPECT_EQ(uyvy, (Bytes{0xAF, 0x00, 0x00, 0xFF, 0xC0, 0x8D, 0x00, 0xFF}));
    portable().uyvyFrom16(uyvy.data(), y.data(), cb.data(), cr.data(), 2);
    EXPECT_EQ(uyvy, (Bytes{0x0A, 0x04, 0x00, 0xFF, 0xFF, 0x12, 0x80, 0x03}));

    Rows planes{Bytes(8), Bytes(4), Bytes(4)};
    portable().uyvyTo16(planes[0].data(), planes[1].data(), planes[2].data(), uyvy.data(), 2);
    EXPECT_EQ(planes, (Rows{words({0x0400, 0xFF00, 0x1200, 0x0300}), words({0x0A00, 0xFF00}), words({0, 0x8000})}));
    planes = {Bytes(8), Bytes(8), Bytes(8)};
    portable().uyvyTo10Planar444(planes[0].data(), planes[1].data(), planes[2].data(), uyvy.data(), 2);
    EXPECT_EQ(planes,
              (Rows{words({0x10, 0x3FC, 0x48, 0xC}), words({0x28, 0x28, 0x3FC, 0x3FC}), words({0, 0, 0x200, 0x200})}));

    const Bytes other = words({1, 0xFFFF, 0x1235, 0});
    portable().average16(planes[0].data(), y.data(), other.data(), 4);
    EXPECT_EQ(planes[0], words({0x0201, 0xFFFF, 0x1234, 0x01FE}));
}

} // namespace
