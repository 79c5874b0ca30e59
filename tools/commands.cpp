#include "commands.h"

#include "colour.h"
#include "conversions.h"
#include "error.h"
#include "output_file.h"
#include "pipeline.h"
#include "png.h"
#include "store.h"

#include <algorithm>
#include <vector>

namespace fikleipa::tool {
namespace {

ColourOptions parseColour(const ColourText& text) {
    return {parseMatrix(text.matrix), parseRgbType(text.rgbOrder, text.bottomUp)};
}

ClipOptions sourceOptions(const ClipOptions& source, const ColourOptions& colour) {
    ClipOptions options = source;
    options.rgbType = colour.rgbType;
    return options;
}

// What the output is to be: the geometry of its frames, and a header if it is a Y4M clip.
struct Target {
    Geometry geometry;
    std::optional<Y4mHeader> header;
};

Target makeTarget(const std::string& output, bool y4m, const Layout& layout, Size size,
                  std::optional<std::uint32_t> pitch, const Y4mHeader* source) {
    Target target{frameGeometry(layout, size, pitch), {}};
    if (!y4m && !isY4mName(output)) return target;
    if (pitch) fail("a Y4M clip has no pitch");
    target.header = makeY4mHeader(layout, size, source);
    return target;
}

// Of frames made of RGB by that matrix.
void tellRange(Target& target, PXYCBCRMatrix matrix) {
    for (const Matrix& each : matrices()) {
        if (target.header && each.value == matrix && each.weights)
            target.header->extensions.emplace_back(each.weights->fullRange ? "COLORRANGE=FULL" : "COLORRANGE=LIMITED");
    }
}

unsigned int usefulJobs(unsigned int jobs, std::optional<std::uint64_t> frames) {
    return static_cast<unsigned int>(std::min<std::uint64_t>(jobs, frames.value_or(jobs)));
}

} // namespace

void run(const ConvertCommand& command) {
    const ColourOptions colour = parseColour(command.colour);
    const Layout& to = findLayout(command.to, Role::Destination);
    const FrameRange range = parseRange(command.frames);
    InputFile input(command.input);
    FrameReader reader(input, sourceOptions(command.source, colour), range);
    const FrameConverter converter(reader.layout(), to, reader.size(), colour);
    Target target = makeTarget(command.output, command.y4m, to, reader.size(), command.dstPitch, reader.y4mHeader());
    if (reader.layout().isRgb()) tellRange(target, colour.matrix);

    OutputFile output(command.output, &input);
    FrameWriter writer(output, target.geometry, converter.destination(), target.header);
    Progress progress(reader.frameCount());
    const Stages stages{
        .destinationBytes = converter.destination().bytes(),
        .read = [&](FrameBuffer& frame) { return reader.read(frame, converter.source()); },
        .convert = [&](auto /*index*/, auto* dst, auto* src) { converter.convert(dst, src); },
        .write = [&](auto frame) { writer.write(frame); },
    };
    runPipeline(stages, usefulJobs(command.jobs, reader.frameCount()), progress);
    output.commit();
}

void run(const ViewCommand& command) {
    ColourOptions colour = parseColour(command.colour);
    InputFile input(command.input);
    FrameReader reader(input, sourceOptions(command.source, colour), {command.frame, command.frame});
    const Size size = reader.size();
    const Layout* layout = &reader.layout();
    if (!layout->isRgb()) colour.rgbType = PX_RGB_BGRA;
    std::vector<FrameConverter> steps;
    for (; !layout->isRgb(); layout = &stepToPicture(*layout))
        steps.emplace_back(*layout, stepToPicture(*layout), size, colour);

    FrameBuffer frame;
    reader.read(frame, steps.empty() ? frameGeometry(*layout, size) : steps.front().source());
    for (const FrameConverter& step : steps) {
        FrameBuffer converted(step.destination().bytes());
        step.convert(converted.data(), frame.data());
        frame = std::move(converted);
    }
    OutputFile output(command.output, &input);
    output.write(encodePng(loadPicture(*layout, size, colour.rgbType, frame.data())));
    output.commit();
}

void run(const PatternCommand& command) {
    const ColourOptions colour = parseColour(command.colour);
    const bool y4m = command.y4m || isY4mName(command.output);
    if (command.to.empty() && !y4m) fail("the layout of {} must be given with --to", command.output);
    const Layout& layout = command.to.empty() ? layoutNamed("i420") : findLayout(command.to, Role::Destination);
    const Size size = parseSize(command.size);
    const PatternStore store(layout, size, colour);
    Target target = makeTarget(command.output, y4m, layout, size, command.dstPitch, nullptr);
    tellRange(target, colour.matrix);

    OutputFile output(command.output);
    FrameWriter writer(output, target.geometry, store.geometry(), target.header);
    Progress progress(command.frames);
    std::uint64_t counted = 0;
    const Stages stages{
        .destinationBytes = store.geometry().bytes(),
        .read = [&](FrameBuffer& /*frame*/) { return counted++ < command.frames; },
        .convert = [&](auto index, auto* dst, auto* /*src*/) { store.draw(index, dst); },
        .write = [&](auto frame) { writer.write(frame); },
    };
    runPipeline(stages, usefulJobs(command.jobs, command.frames), progress);
    output.commit();
}

} // namespace fikleipa::tool
