#include "fikleipa.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(Version, IsThreeNumbers) {
    int parts[3] = {-1, -1, -1};
    ASSERT_EQ(std::sscanf(fikleipa_version(), "%d.%d.%d", &parts[0], &parts[1], &parts[2]), 3);
}

TEST(Version, EveryKernelHasANameOfItsOwnAndALevel) {
    const std::set<std::string> levels{"portable", "sse4.1", "avx2", "avx512"};
    std::set<std::string> names;
    const char* name = nullptr;
    const char* level = nullptr;
    unsigned count = 0;
    for (; fikleipa_kernel(count, &name, &level) != 0; ++count) {
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_EQ(levels.count(level), 1U) << level;
    }
    EXPECT_GE(count, 2U);
    EXPECT_EQ(fikleipa_kernel(0xFFFFFFFF, &name, &level), 0);
}

} // namespace
