// Whether every exported function and every cell of the dispatcher is measured.
#include "bench/converters.h"

#include <cxxabi.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <memory>
#include <sstream>
#include <string_view>

namespace fikleipa::bench {
namespace {

// Functions that are one with another, or reach its row kernels by arguments alone, and the name that it is measured
// under.
struct Alias {
    std::string_view function;
    std::string_view name;
};
constexpr Alias kMeasuredAs[] = {
    {"FromRGB", "RGB32_to_uyvy"},
    {"FromRGBInt", "RGB32_to_uyvy"},
    {"Fromv210", "012v_to_yuy2"},
    {"Tov210", "yuy2_to_012v"},
    {"cycbcrBi_ToRGBInt", "nv12_to_rgb32"},
    {"cycbcr_012v_to_planar422", "012v_to_p422"},
    {"cycbcr_012v_to_planar422_16", "Fromv210_16"},
    {"cycbcr_012v_to_uyvy_opt", "012v_to_uyvy"},
    {"cycbcr_RGB32_to_planar", "RGB32_to_i420"},
    {"cycbcr_RGB64_to_yuv444p10_float_BAD_ONLY_LUMA_WORKS", "RGB64_to_yuv444p10_float(64)"},
    {"cycbcr_ToRGB", "yuy2_to_rgb32"},
    {"cycbcr_ToRGBInt", "yuy2_to_rgb32"},
    {"cycbcr_ToRGBPlanar", "ToRGBPlanarInt"},
    {"cycbcr_planar_422_420", "p422_to_i420"},
    {"cycbcr_planar_copy", "i420_to_i420"},
    {"cycbcr_planar_to_012v", "p422_to_012v"},
    {"cycbcr_uyvy_to_012v_opt", "uyvy_to_012v"},
    {"cycbcr_v210ToRGB", "012v_to_rgb32"},
    {"cycbcr_v210ToRGBInt", "012v_to_rgb32"},
    {"cycbcr_v210ToRGBPlanarC16", "v210ToRGBPlanarInt16"},
    {"cycbcr_v210ToRGBPlanarSSE16", "v210ToRGBPlanarInt16"},
    {"cycbcr_yuv422p10_to_012v_internal", "yuv422p10_to_012v"},
    {"cycbcr_yuv422p10_to_012v_worker", "yuv422p10_to_012v"},
    {"cycbcr_yuv422p10_to_uyvy_internal", "yuv422p10_to_uyvy"},
    {"cycbcr_yuv422p10_to_uyvy_worker", "yuv422p10_to_uyvy"},
    {"cycbcr_yuv422p12_to_012v_internal", "yuv422p12_to_012v"},
    {"cycbcr_yuv422p12_to_012v_worker", "yuv422p12_to_012v"},
    {"cycbcr_yuv444p12_to_012v_internal", "yuv444p12_to_012v"},
    {"cycbcr_yuv444p12_to_012v_worker", "yuv444p12_to_012v"},
    {"cycbcr_yuy2_to_yvyu(unsigned char*, unsigned char*, unsigned long, unsigned long, unsigned long)",
     "yuy2_to_yvyu(units)"},
    {"v210FromRGB", "RGB32_to_012v"},
};

// Functions that touch no pixel.
constexpr std::string_view kNoPixels[] = {
    "CPUFeatureFlags",          "PXAlloc",         "PXFree",           "_fixPitch",        "cycbcr_can_transcode",
    "cycbcr_get_cpu",           "cycbcr_set_cpu",  "cycbcr_transcode", "fikleipa_kernel",  "fikleipa_version",
    "pxOSCloseEvent",           "pxOSCloseThread", "pxOSCreateEvent",  "pxOSCreateThread", "pxOSInterlockedDecrement",
    "pxOSInterlockedIncrement", "pxOSSetEvent",    "pxOSWaitForEvent"};

// As the header spells it.
std::string demangled(const std::string& symbol) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status), std::free);
    return status == 0 ? name.get() : symbol;
}

std::string withoutArguments(const std::string& name) {
    return name.substr(0, name.find('('));
}

// The functions among what `nm --format=posix` prints. One of C++ that has the name of one of C keeps its arguments.
std::set<std::string> exportedFunctions(std::istream& in) {
    std::set<std::string> plain;
    std::set<std::string> mangled;
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::string symbol;
        std::string type;
        words >> symbol >> type;
        if (type != "T" && type != "W") continue;
        (symbol.starts_with("_Z") ? mangled : plain).insert(symbol);
    }
    std::set<std::string> functions = plain;
    for (const std::string& symbol : mangled) {
        const std::string name = demangled(symbol);
        const std::string shortName = withoutArguments(name);
        functions.insert(plain.contains(shortName) ? name : shortName);
    }
    return functions;
}

bool isMeasured(const std::string& function) {
    const std::set<std::string>& names = measuredNames();
    for (const Alias& alias : kMeasuredAs) {
        if (alias.function == function) return names.contains(std::string(alias.name));
    }
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        const std::string measured = withoutArguments(name);
        return function == measured || function == "cycbcr_" + measured;
    });
}

} // namespace

std::set<std::string>& measuredNames() {
    static std::set<std::string> names;
    return names;
}

int printUncovered() {
    int uncovered = 0;
    const auto report = [&uncovered](const char* what, const std::string& name) {
        std::cerr << "not measured: " << what << ' ' << name << '\n';
        ++uncovered;
    };
    const std::set<std::string> functions = exportedFunctions(std::cin);
    if (functions.empty()) report("anything, for nm names no function on", "standard input");
    for (const std::string& function : functions) {
        const bool pixels = std::find(std::begin(kNoPixels), std::end(kNoPixels), function) == std::end(kNoPixels);
        if (pixels && !isMeasured(function)) report("function", function);
    }
    for (const std::string& cell : dispatcherCells()) {
        if (!measuredNames().contains(cell)) report("cell", cell);
    }
    for (const std::string& name : namesWithRivals()) {
        if (!measuredNames().contains(name)) report("what a peer does as", name);
    }
    return uncovered;
}

} // namespace fikleipa::bench
