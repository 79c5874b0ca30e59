#include "tests/simd/rows.h"

namespace fikleipa::tests {
namespace {

using Table = simd::V210Kernels;
using simd::Group;

// The packed layouts; the last has no name.
constexpr Group kGroups[] = {{0, 1, 3}, {0, 3, 1}, {1, 0, 2}, {1, 2, 0}};
constexpr Lengths kGroup{{{16}}};

// Adds a kernel of groups, which take that many bytes in each row, or of pairs.
class Kernels {
public:
    std::vector<RowKernel> all;

    template <class Call>
    void add(const std::string& name, const Lengths& written, const Lengths& read, Call call) {
        all.push_back({name, written, read, [=](auto& k, auto& to, auto& from, auto n) { call(k.v210, to, from, n); }});
    }
    void unpack(const std::string& name, const Lengths& written,
                const std::function<simd::UnpackKernel(const Table&)>& kernel, unsigned sampleBytes = 1,
                std::optional<Group> packed = {}) {
        add("v210 to " + name, written, kGroup, [=](auto& k, auto& to, auto& from, auto n) {
            const auto [y, cb, cr] = first(to, packed, sampleBytes);
            kernel(k)(y, cb, cr, from[0], n);
        });
    }
    // kernel(k, past) is the one for that place to write to.
    void pack(const std::string& name, const Lengths& written, const Lengths& read,
              const std::function<simd::PackKernel(const Table&, bool past)>& kernel,
              std::optional<Group> packed = {}) {
        add(name, written, read, [=](auto& k, auto& to, auto& from, auto n) {
            const auto [y, cb, cr] = first(from, packed, 1);
            kernel(k, beginsCacheLine(to[0]))(to[0], y, cb, cr, n);
        });
    }
    void split(const std::string& name, const Lengths& written, simd::SplitPairsKernel Table::*kernel) {
        add("UYVY to " + name, written, {{{4}}},
            [=](auto& k, auto& to, auto& from, auto n) { (k.*kernel)(to[0], to[1], to[2], from[0], n); });
    }

private:
    // The rows, or the first samples of one.
    template <class Pointers>
    static Pointers first(const Pointers& rows, const std::optional<Group>& packed, unsigned sampleBytes) {
        if (!packed) return rows;
        const auto at = [&](unsigned sample) { return rows[0] + std::size_t{sample} * sampleBytes; };
        return {at(packed->y), at(packed->cb), at(packed->cr)};
    }
};

} // namespace

std::vector<RowKernel> v210Kernels() {
    Kernels kernels;
    for (unsigned at = 0; at < std::size(kGroups); ++at) {
        const std::string name = "packed " + std::to_string(at);
        kernels.unpack(
            name, {{{12}}}, [=](auto& k) { return k.unpack8[at]; }, 1, kGroups[at]);
        kernels.pack(
            name, {{{16}}}, {{{12}}}, [=](auto& k, bool) { return k.pack8[at]; }, kGroups[at]);
        for (const unsigned left : {0U, 1U}) {
            kernels.unpack(
                "16-bit " + name, {{{24}}}, [=](auto& k) { return k.unpack16[left][0]; }, 2, kGroups[at]);
        }
    }
    constexpr auto kPlanar = static_cast<unsigned>(simd::Samples8::Planar);
    kernels.unpack("planes", {{{6}, {3}, {3}}}, [](auto& k) { return k.unpack8[kPlanar]; });
    kernels.pack("planes", kGroup, {{{6}, {3}, {3}}}, [](auto& k, bool) { return k.pack8[kPlanar]; });
    for (const unsigned left : {0U, 1U}) {
        kernels.unpack("4:2:2", {{{12}, {6}, {6}}}, [=](auto& k) { return k.unpack16[left][1]; });
        kernels.unpack("4:4:4", {{{12}, {12}, {12}}}, [=](auto& k) { return k.unpack16[left][2]; });
    }
    for (unsigned reduce = 0; reduce < simd::kReductions; ++reduce) {
        kernels.add("16-bit planes, chroma in turns", kGroup, {{{12}, {12}}},
                    [=](auto& k, auto& to, auto& from, auto n) {
                        k.pack16[reduce][2](to[0], from[0], from[1], from[1] + 2, n);
                    });
        for (const unsigned full : {0U, 1U}) {
            const Length chroma = full == 0 ? Length{6} : Length{12, -2}; // whose last odd sample is not read
            kernels.pack("16-bit planes " + std::to_string(reduce), kGroup, {{{12}, chroma, chroma}},
                         [=](auto& k, bool past) { return (past ? k.pack16Past : k.pack16)[reduce][full]; });
        }
    }
    kernels.add("v210 to UYVY", {{{4}}}, {{{16, 0, 3}}},
                [](auto& k, auto& to, auto& from, auto n) { k.unpackUyvy(to[0], from[0], n); });
    const Lengths planes{{{4}, {2}, {2}}};
    kernels.pack("10-bit planes to UYVY", {{{4}}}, planes,
                 [](auto& k, bool past) { return past ? k.uyvyFrom10Past : k.uyvyFrom10; });
    kernels.pack("16-bit planes to UYVY", {{{4}}}, planes, [](auto& k, bool) { return k.uyvyFrom16[0]; });
    kernels.pack("interleaved chroma, apart", {{{4}}}, {{{4}, {4, -2}, {4, -2}}},
                 [](auto& k, bool) { return k.uyvyFrom16[1]; });
    kernels.add("interleaved chroma", {{{4}}}, {{{4}, {4}}}, [](auto& k, auto& to, auto& from, auto n) {
        k.uyvyFrom16[2](to[0], from[0], from[1], from[1] + 2, n);
    });
    kernels.split("16-bit planes", planes, &Table::uyvyTo16);
    kernels.split("10-bit 4:4:4 planes", {{{4}, {4}, {4}}}, &Table::uyvyTo10Planar444);
    kernels.add("average", {{{2}}}, {{{2}, {2}}},
                [](auto& k, auto& to, auto& from, auto n) { k.average16(to[0], from[0], from[1], n); });
    return kernels.all;
}

namespace {

// Words count up at a stride of their own in each row, so that every sample of 10 or 16 bits stands everywhere.
TEST(V210, EveryLevelEqualsPortableOnEverySample) {
    constexpr std::size_t kUnits = 65536 * 3;
    for (const RowKernel& kernel : v210Kernels()) {
        Rows from;
        for (std::size_t r = 0; r < from.size(); ++r) {
            from[r].resize(kernel.read[r].of(kUnits));
            for (std::size_t i = 0; i + 1 < from[r].size(); i += 2) {
                store16(&from[r][i], static_cast<unsigned>(i / 2 * (1 + 6 * r) + i / 24));
            }
        }
        ASSERT_NO_FATAL_FAILURE(expectPortable(kernel, from, kUnits));
    }
}

} // namespace
} // namespace fikleipa::tests
