// Compares what every exported function does with every case, at every level, with what tests/digests.txt has recorded:
// for each a hash of all memory it was given, margins included, and of all results. A line that changes is a result
// that changes. After a change that is meant to, or where an export was added or taken out,
//     FIKLEIPA_WRITE_DIGESTS=1 build/bin/digests_test
// writes the file anew.
#include "tests/digests/exports.h"
#include "tests/levels.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>

namespace fikleipa::tests {
namespace {

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

using Digests = std::map<std::string, std::uint64_t>;

Digests recordedDigests() {
    Digests digests;
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

class DigestsAt : public testing::TestWithParam<simd::Level> {};

TEST_P(DigestsAt, AreThoseRecorded) {
    const std::string level = simd::levelName(GetParam());
    if (GetParam() > simd::bestLevel())
        GTEST_SKIP() << "level not executed: " << level << ", which this processor lacks";
    static const std::vector<Export> functions = exports();
    const std::vector<std::uint64_t> digests = digestsAt(GetParam(), functions);
    const bool writes = std::getenv("FIKLEIPA_WRITE_DIGESTS") != nullptr;
    if (writes && GetParam() == simd::Level::Portable) write(functions, digests);
    Digests recorded = recordedDigests();
    for (std::size_t i = 0; i < functions.size(); ++i) {
        const auto entry = recorded.extract(functions[i].name);
        if (entry.empty())
            ADD_FAILURE() << functions[i].name << " has no digest";
        else if (entry.mapped() != digests[i]) {
            ADD_FAILURE() << functions[i].name << ' ' << firstDifference(functions[i], GetParam());
        }
    }
    for (const auto& entry : recorded) ADD_FAILURE() << entry.first << " is not exported";
    std::cout << "level executed: " << level << '\n';
}

INSTANTIATE_TEST_SUITE_P(Levels, DigestsAt, testing::ValuesIn(simd::kLevels),
                         [](const auto& level) { return std::to_string(static_cast<int>(level.param)); });

} // namespace
} // namespace fikleipa::tests
