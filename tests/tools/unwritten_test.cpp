// No conversion and no picture may hold what happened to lie in memory: whatever new memory is filled with, the output
// is the same.
#include "folder.h"
#include "tools/commands.h"
#include "tools/conversions.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <new>
#include <random>

namespace {
unsigned char filling = 0; // NOLINT(*-avoid-non-const-global-variables): of all memory that is asked for
} // namespace

void* operator new(std::size_t bytes) {
    void* memory = std::malloc(bytes); // NOLINT(*-no-malloc,*-owning-memory)
    if (memory == nullptr) throw std::bad_alloc();
    return std::memset(memory, filling, bytes);
}

void operator delete(void* memory) noexcept {
    std::free(memory); // NOLINT(*-no-malloc,*-owning-memory)
}

void operator delete(void* memory, std::size_t /*bytes*/) noexcept {
    std::free(memory); // NOLINT(*-no-malloc,*-owning-memory)
}

namespace fikleipa::tool {
namespace {

// Narrower and wider than what the library splits among threads, whole groups of pixels and not.
constexpr std::array kWidths{2U, 46U, 1922U, 2050U, 4096U};
constexpr std::uint32_t kLowest = 2;
constexpr std::uint32_t kHighest = 20;
constexpr std::uint32_t kFew = 9; // step between heights where each takes long

constexpr std::uint32_t kStep = FIKLEIPA_HEIGHT_STEP;

std::string noise(std::size_t bytes) {
    std::mt19937 generator(20);
    std::string text(bytes, 0);
    for (char& byte : text) byte = static_cast<char>(generator() >> 24);
    return text;
}

class UnwrittenTest : public testing::Test {
protected:
    // Runs the command twice, memory filled with ones and zeros of the opposite places.
    template <typename Command>
    void expectSame(const Command& command, const std::string& what) {
        std::array<std::string, 2> outputs;
        for (std::size_t i = 0; i < 2; ++i) {
            filling = i == 0 ? 0x5A : 0xA5;
            run(command);
            outputs[i] = slurp(command.output);
        }
        EXPECT_FALSE(outputs[0].empty()) << what;
        EXPECT_TRUE(outputs[0] == outputs[1]) << what;
    }

    template <typename Body>
    void forEachSize(const Layout& layout, std::uint32_t step, const Body& body) {
        for (const std::uint32_t width : kWidths) {
            for (std::uint32_t height = kLowest; height <= kHighest; height += step) {
                if (height % layout.chromaHeight() != 0) continue;
                const Size size{width, height};
                spill(input_, noise(frameGeometry(layout, size).bytes()));
                body(size, fmt::format("{}x{}", width, height));
            }
        }
    }

    Folder folder_;
    std::string input_ = folder_.path() / "in";
    std::string output_ = folder_.path() / "out";
};

TEST_F(UnwrittenTest, EveryConversionWritesAllOfItsOutput) {
    for (const Layout& from : layouts()) {
        forEachSize(from, kStep, [&](Size size, const std::string& sizeText) {
            for (const Conversion& each : conversions()) {
                if (each.from != from.name || size.height % layoutNamed(each.to).chromaHeight() != 0) continue;
                ConvertCommand command;
                command.input = input_;
                command.output = output_;
                command.source.layout = from.name;
                command.source.size = sizeText;
                command.to = each.to;
                expectSame(command, fmt::format("{} to {}, {}", from.name, each.to, sizeText));
            }
        });
    }
}

TEST_F(UnwrittenTest, PicturesShowAllOfTheirFrame) {
    for (const Layout& from : layouts()) {
        if (from.fieldsOverlap) continue;
        forEachSize(from, kFew, [&](Size /*size*/, const std::string& sizeText) {
            ViewCommand command;
            command.input = input_;
            command.output = output_;
            command.source.layout = from.name;
            command.source.size = sizeText;
            expectSame(command, fmt::format("view of {}, {}", from.name, sizeText));
        });
    }
}

TEST_F(UnwrittenTest, DrawingsFillTheirFrame) {
    for (const Layout& to : layouts()) {
        if (to.fieldsOverlap) continue;
        forEachSize(to, kFew, [&](Size /*size*/, const std::string& sizeText) {
            PatternCommand command;
            command.output = output_;
            command.to = to.name;
            command.size = sizeText;
            command.frames = 1;
            expectSame(command, fmt::format("pattern of {}, {}", to.name, sizeText));
        });
    }
}

} // namespace
} // namespace fikleipa::tool
