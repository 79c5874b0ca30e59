// Subcommands, their options, and what becomes of errors.
#include "command_line.h"

#include "commands.h"
#include "error.h"
#include "fikleipa.h"
#include "output_file.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <thread>

namespace fikleipa::tool {
namespace {

constexpr int kFailed = 1;
constexpr int kMisused = 2;
constexpr std::uint32_t kMostJobs = 256;

std::uint32_t defaultJobs() {
    return std::clamp(std::thread::hardware_concurrency(), 1U, kMostJobs);
}

void print(std::string_view text) {
    OutputFile output("-");
    output.write(text);
    output.commit();
}

void addSource(CLI::App& app, std::string& input, ClipOptions& source) {
    app.add_option("IN", input, "Raw frames, a Y4M clip or a PNG picture; - for standard input")->required();
    app.add_option("--from", source.layout,
                   "Layout of the source; a Y4M clip tells it itself, and of a PNG picture it is "
                   "rgb32 or, with 16 bits, rgb64 unless another of RGB is given")
        ->type_name("LAYOUT");
    app.add_option("--size", source.size, "Size of a frame; a Y4M clip and a PNG picture tell it themselves")
        ->type_name("WxH");
    app.add_option("--src-pitch", source.pitch,
                   "Bytes from row to row in the source (default: no more than the layout needs)")
        ->type_name("BYTES");
}

void addColour(CLI::App& app, ColourText& colour) {
    app.add_option("--matrix", colour.matrix, "Colour matrix and range, by name or number")->capture_default_str();
    app.add_option("--rgb-order", colour.rgbOrder, "Components of RGB frames: bgra, abgr, rgba or argb")
        ->type_name("ORDER")
        ->capture_default_str();
    app.add_flag("--bottom-up", colour.bottomUp, "RGB frames have the bottom row first");
}

template <typename Command>
void addDestination(CLI::App& app, Command& command) {
    app.add_option("OUT", command.output, "Raw frames, or a Y4M clip if it ends in .y4m; - for standard output")
        ->required();
    app.add_option("--dst-pitch", command.dstPitch,
                   "Bytes from row to row in the output (default: no more than the layout needs)")
        ->type_name("BYTES");
    app.add_flag("--y4m", command.y4m, "Write a Y4M clip whatever the output's name");
    command.jobs = defaultJobs();
    app.add_option("--jobs,-j", command.jobs, "Frames to work on at the same time")
        ->check(CLI::Range(1U, kMostJobs))
        ->capture_default_str();
}

void addConvert(CLI::App& app, ConvertCommand& command) {
    CLI::App& sub = *app.add_subcommand("convert", "Convert the frames of a clip to another layout");
    addSource(sub, command.input, command.source);
    addDestination(sub, command);
    sub.add_option("--to", command.to, "Layout of the output")->type_name("LAYOUT")->required();
    addColour(sub, command.colour);
    sub.add_option("--frames", command.frames, "Frames to convert, counted from 0: 7, 10-19 or 10-")
        ->type_name("RANGE");
    sub.final_callback([&command] { run(command); });
}

void addView(CLI::App& app, ViewCommand& command) {
    CLI::App& sub = *app.add_subcommand("view", "Show a frame of a clip as a PNG picture");
    addSource(sub, command.input, command.source);
    sub.add_option("OUT", command.output, "The PNG file; - for standard output")->required();
    addColour(sub, command.colour);
    sub.add_option("--frame", command.frame, "The frame, counted from 0")
        ->check(CLI::Range(std::uint64_t{0}, kLastFrame))
        ->capture_default_str();
    sub.final_callback([&command] { run(command); });
}

void addPattern(CLI::App& app, PatternCommand& command) {
    CLI::App& sub = *app.add_subcommand("pattern", "Make a moving test clip");
    addDestination(sub, command);
    sub.add_option("--to", command.to, "Layout of the clip (default for a Y4M clip: i420)")->type_name("LAYOUT");
    sub.add_option("--size", command.size, "Size of a frame")->type_name("WxH")->required();
    addColour(sub, command.colour);
    sub.add_option("--frames", command.frames, "How many frames")
        ->check(CLI::Range(std::uint64_t{1}, kLastFrame))
        ->capture_default_str();
    sub.final_callback([&command] { run(command); });
}

int complain(std::string line, int status) {
    // Names may hold anything; the message stays one line.
    std::replace_if(
        line.begin(), line.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    std::fputs(fmt::format("fikleipa: {}\n", line).c_str(), stderr);
    return status;
}

constexpr auto* kFilesKept =
    "An output file appears when it is complete; until then what was there stays. A file that is there\n"
    "keeps its owner, permissions, attributes and hard links, and a link stays a link.";

int runSubcommand(int argc, const char* const* argv) {
    CLI::App app{"Converts uncompressed video frames between pixel layouts.", "fikleipa"};
    app.footer(kFilesKept);
    app.require_subcommand(0, 1);
    app.set_version_flag("--version", std::string("fikleipa ") + fikleipa_version());
    ConvertCommand convert;
    ViewCommand view;
    PatternCommand pattern;
    addConvert(app, convert);
    addView(app, view);
    addPattern(app, pattern);
    app.add_subcommand("formats", "List layouts, conversions and matrices")->final_callback([] {
        print(formatsText());
    });
    app.add_subcommand("info", "Tell the version and the kernels in use")->final_callback([] { print(infoText()); });
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty())
            return complain("one of convert, view, pattern, formats and info is needed", kMisused);
    } catch (const CLI::CallForHelp&) {
        print(app.help());
    } catch (const CLI::CallForVersion& version) {
        print(std::string(version.what()) + "\n");
    } catch (const CLI::ParseError& error) {
        return complain(error.what(), kMisused);
    }
    return 0;
}

} // namespace

int runCommandLine(int argc, const char* const* argv) {
    try {
        return runSubcommand(argc, argv);
    } catch (const std::bad_alloc&) {
        return complain("not enough memory", kFailed);
    } catch (const std::exception& error) {
        return complain(error.what(), kFailed);
    }
}

} // namespace fikleipa::tool
