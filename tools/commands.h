// What the subcommands do, with their options as typed.
#pragma once

#include "frame_io.h"

#include <cstdint>
#include <optional>
#include <string>

namespace fikleipa::tool {

struct ColourText {
    std::string matrix = "bt601";
    std::string rgbOrder = "bgra";
    bool bottomUp = false;
};

struct ConvertCommand {
    std::string input;
    std::string output;
    ClipOptions source;
    std::string to;
    std::optional<std::uint32_t> dstPitch;
    ColourText colour;
    std::string frames = "0-";
    std::uint32_t jobs = 1;
    bool y4m = false;
};

struct ViewCommand {
    std::string input;
    std::string output;
    ClipOptions source;
    ColourText colour;
    std::uint64_t frame = 0;
};

struct PatternCommand {
    std::string output;
    std::string to;
    std::string size;
    std::optional<std::uint32_t> dstPitch;
    ColourText colour;
    std::uint64_t frames = 100;
    std::uint32_t jobs = 1;
    bool y4m = false;
};

void run(const ConvertCommand& command);
void run(const ViewCommand& command);
void run(const PatternCommand& command);

// The texts of `fikleipa formats` and `fikleipa info`.
std::string formatsText();
std::string infoText();

} // namespace fikleipa::tool
