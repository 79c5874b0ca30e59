#include "tests/simd/rows.h"

namespace fikleipa::tests {

std::vector<RowKernel> wordKernels() {
    std::vector<RowKernel> all;
    const auto swap = [&](const char* name, simd::SwapKernel simd::Kernels::*kernel, std::ptrdiff_t unit) {
        all.push_back({name, {{{unit}}}, {{{unit}}}, [=](auto& k, auto& to, auto& from, auto n) {
                           (k.*kernel)(to[0], from[0], n);
                       }});
    };
    swap("swap16", &simd::Kernels::swap16, 2);
    swap("swap13", &simd::Kernels::swap13, 4);
    swap("swap13Of8", &simd::Kernels::swap13Of8, 8);
    for (unsigned apart = 0; apart < simd::kMostApart; ++apart) {
        const std::ptrdiff_t step = 2 << apart;
        const auto gather = [&](const char* name, auto kernels) {
            all.push_back({name + std::to_string(step),
                           {{{2}}},
                           {{{step, 2 - step}}},
                           [=](auto& k, auto& to, auto& from, auto n) {
                               if (n != 0) (k.gatherWords.*kernels)[apart](to[0], from[0], n);
                           }});
        };
        gather("words of ", &simd::GatherWordsKernels::words);
        gather("upper bytes of ", &simd::GatherWordsKernels::upperBytes);
    }
    return all;
}

std::vector<RowKernel> alphaKernels() {
    std::vector<RowKernel> all;
    const auto add = [&](const char* name, simd::MergeAlphaKernel simd::AlphaKernels::*kernel, std::ptrdiff_t bytes) {
        all.push_back({name,
                       {{{4}}},
                       {{{bytes}}},
                       [=](auto& k, auto& to, auto& from, auto n) { (k.alpha.*kernel)(to[0], from[0], n); },
                       bytes == 1 ? 16U : 10U});
    };
    add("bytes", &simd::AlphaKernels::bytes, 1);
    add("expanded bytes", &simd::AlphaKernels::expandedBytes, 1);
    add("words", &simd::AlphaKernels::words, 2);
    add("expanded words", &simd::AlphaKernels::expandedWords, 2);
    return all;
}

std::vector<RowKernel> planes8Kernels() {
    std::vector<RowKernel> all;
    const auto add = [&](std::string name, const Lengths& written, const Lengths& read, auto call) {
        all.push_back({std::move(name), written, read,
                       [=](auto& k, auto& to, auto& from, auto n) { call(k.planes8, to, from, n); }});
    };
    constexpr simd::Group kGroups[] = {{0, 1, 3}, {0, 3, 1}, {1, 0, 2}, {1, 2, 0}}; // the last has no name
    for (unsigned at = 0; at < 4; ++at) {
        const simd::Group g = kGroups[at];
        const auto join = [&](const char* name, auto kernels, const Lengths& read) {
            add(name + std::to_string(at), {{{4}}}, read, [=](auto& k, auto& to, auto& from, auto n) {
                (k.*kernels)[at](to[0] + g.y, to[0] + g.cb, to[0] + g.cr, from[0], from[1], from[2], n);
            });
        };
        join("join ", &simd::Planes8Kernels::join, {{{2}, {1}, {1}}});
        join("join 4:4:4 ", &simd::Planes8Kernels::join444, {{{2}, {2, -1}, {2, -1}}});
        add("split " + std::to_string(at), {{{2}, {1}, {1}}}, {{{4}}}, [=](auto& k, auto& to, auto& from, auto n) {
            k.split[at](to[0], to[1], to[2], from[0] + g.y, from[0] + g.cb, from[0] + g.cr, n);
        });
    }
    add("average", {{{1}}}, {{{1}, {1}}},
        [](auto& k, auto& to, auto& from, auto n) { k.average(to[0], from[0], from[1], n); });
    return all;
}

} // namespace fikleipa::tests
