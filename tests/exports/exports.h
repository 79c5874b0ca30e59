// Every exported function of the library as something that can be called with the numbers of a case. The functions are
// listed by what the built library exports and called by their types, so that a new export is here by itself.
#pragma once

#include "tests/exports/memory.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace fikleipa::tests {

struct Export {
    std::string name;
    // Returns the function's result.
    std::function<std::uint64_t(const Case& c, Memory& memory)> call;
};

// cycbcr_transcode() is here once for each pair of layouts, and with codes that it does not know.
std::vector<Export> exports();

} // namespace fikleipa::tests
