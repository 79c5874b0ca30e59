// Compares what every exported function does with every case, at every level, with what tests/digests.txt has recorded:
// for each a hash of all memory it was given, margins included, and of all results. A line that changes is a result
// that changes. After a change that is meant to, or where an export was added or taken out,
//     FIKLEIPA_WRITE_DIGESTS=1 build/bin/exports_test
// writes the file anew.
#include "tests/exports/exports.h"
#include "tests/levels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>
#include <string_view>

namespace fikleipa::tests {
namespace {

#if defined(__x86_64__)
constexpr std::string_view kProcessor = "x86-64";
#else
constexpr std::string_view kProcessor = "arm64";
#endif

const std::vector<Case>& allCases() {
    static const std::vector<Case> all = cases();
    return all;
}

Memory& memory() {
    static Memory memory(allCases());
    return memory;
}

// Of one call, for which memory() has been filled.
std::uint64_t digestOf(const Export& function, const Case& c) {
    Digest digest;
    digest.add(function.call(c, memory()));
    digest.add(memory().takeHash());
    return digest.value();
}

std::vector<std::uint64_t> digestsAt(simd::Level level, const std::vector<Export>& functions) {
    simd::useLevel(level);
    std::vector<Digest> digests(functions.size());
    for (const Case& c : allCases()) {
        memory().fill(c);
        for (std::size_t i = 0; i < functions.size(); ++i) digests[i].add(digestOf(functions[i], c));
    }
    simd::useLevel(simd::bestLevel());
    std::vector<std::uint64_t> values;
    for (const Digest& digest : digests) values.push_back(digest.value());
    return values;
}

// The first case in which a level does not do what the portable one does, for people to read.
std::string firstDifference(const Export& function, simd::Level level) {
    for (const Case& c : allCases()) {
        memory().fill(c);
        simd::useLevel(simd::Level::Portable);
        const std::uint64_t wanted = digestOf(function, c);
        simd::useLevel(level);
        if (digestOf(function, c) == wanted) continue;
        std::ostringstream text;
        text << "differs from the portable level in case " << c.number << ": " << c.width << 'x' << c.height
             << ", pitches " << c.pitches[0] << ", " << c.pitches[1] << " and " << c.pitches[2];
        return text.str();
    }
    return "is what the portable level does";
}

std::map<std::string, std::uint64_t> recordedDigests() {
    std::map<std::string, std::uint64_t> digests;
    std::ifstream file(DIGESTS_FILE);
    std::uint64_t digest = 0;
    for (std::string name; file >> name >> std::hex >> digest;) digests[name] = digest;
    return digests;
}

void write(const std::vector<Export>& functions, const std::vector<std::uint64_t>& digests) {
    std::ofstream file(DIGESTS_FILE);
    file << std::hex << std::setfill('0');
    for (std::size_t i = 0; i < functions.size(); ++i) {
        file << functions[i].name << ' ' << std::setw(16) << digests[i] << '\n';
    }
}

// Those that the library is built with.
std::vector<simd::Level> builtLevels() {
#if defined(__x86_64__)
    return {simd::kLevels.begin(), simd::kLevels.end()};
#else
    return {simd::Level::Portable};
#endif
}

class Digests : public testing::TestWithParam<simd::Level> {};

// The lines say for which levels a run on this processor stands.
TEST_P(Digests, AreThoseRecorded) {
    const std::string level = std::string(kProcessor) + ' ' + simd::levelName(GetParam());
    if (GetParam() > simd::bestLevel()) GTEST_SKIP() << "level not executed: " << level << ", which is not there";
    static const std::vector<Export> functions = exports();
    const std::vector<std::uint64_t> digests = digestsAt(GetParam(), functions);
    const bool writes = std::getenv("FIKLEIPA_WRITE_DIGESTS") != nullptr; // NOLINT(concurrency-mt-unsafe)
    if (writes && GetParam() == simd::Level::Portable) write(functions, digests);
    std::map<std::string, std::uint64_t> recorded = recordedDigests();
    for (std::size_t i = 0; i < functions.size(); ++i) {
        const auto entry = recorded.extract(functions[i].name);
        if (entry.empty()) {
            ADD_FAILURE() << functions[i].name << " has no digest";
        } else if (entry.mapped() != digests[i]) {
            ADD_FAILURE() << functions[i].name << ' ' << firstDifference(functions[i], GetParam());
        }
    }
    for (const auto& entry : recorded) {
        // Some functions are there on this processor alone.
        EXPECT_NE(kProcessor, "x86-64") << entry.first << " has a digest and is not exported";
    }
    std::cout << "level executed: " << level << '\n';
}

INSTANTIATE_TEST_SUITE_P(Levels, Digests, testing::ValuesIn(builtLevels()), [](const auto& level) {
    std::string name = simd::levelName(level.param);
    name.erase(std::remove(name.begin(), name.end(), '.'), name.end());
    return name;
});

} // namespace
} // namespace fikleipa::tests
