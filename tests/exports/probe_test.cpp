// Hosts can tell by gdwProcType which functions probe the processor level.
#include "fikleipa.h"
#include "tests/exports/exports.h"

#include <gtest/gtest.h>

#include <regex>

namespace fikleipa::tests {
namespace {

// Those that do not. All others do, whatever they are given.
const std::regex kWithoutProbe(
    // Nothing to do with frames, or on purpose.
    R"(_fixPitch\(\)|cycbcr_can_transcode|cycbcr_interleaved_copy|cycbcr_yvyu_to_uyvy|cycbcr_uyvy_to_yvyu)"
    R"(|cycbcr_yuy2_to_yvyu\(\))"
    // v210
    R"(|cycbcr_012v_to_(012v|uyvy|uyvy_opt)|cycbcr_uyvy_to_012v(_opt)?|px_v210_planar(16)?_unpack_(un)?aligned_ssse3)"
    // The engines to RGB, but for one, and alpha.
    R"(|cycbcr_ToRGB(Int|Float|Int16)?(\(\))?|cycbcr_ToRGBPlanar(Int|Float|Int16)?(\(\))?|cycbcrBi_ToRGBInt\(\))"
    R"(|cycbcr_v210ToRGB(Int|Float|Int16|PlanarInt16|PlanarC16|PlanarSSE16)(\(\))?|planar10ToRGBInt)"
    R"(|cycbcr_10ToRGB(Planar)?Int(10|16)?|cycbcr_12ToRGB(Planar)?(Int16)?|cycbcr_16ToRGB8)"
    R"(|cycbcr_(uyvy|012v)_to_rgb32_Alpha)"
    // From RGB, but for what is turned over, and 8 bits to v210.
    R"(|FromRGB|FromRGBInt\(\)|v210FromRGB(NoFilter)?\(\)|cycbcr_RGB(24|32)_to_(yuy2|yvyu|uyvy|i420|yv12|p422))"
    R"(|cycbcr_RGB32_to_(planar|yuv444p10|uyvy_Alpha|012v_Alpha)|cycbcr_RGB10_to_(012v|YCbCrPlanar16))"
    R"(|cycbcr_RGB64_to_(uyvy|p422|012v|YCbCrPlanar16|yuv422p12|yuv444p10(_float_BAD_ONLY_LUMA_WORKS)?))");

TEST(Exports, ProbeOrDoNot) {
    constexpr unsigned kUnprobed = 0xFFFFFFFE;
    constexpr unsigned kSmall = 100; // rows
    const std::vector<Case> all = cases();
    Memory memory(all);
    for (const Export& function : exports()) {
        const bool probes = !std::regex_match(function.name, kWithoutProbe);
        for (const Case& c : all) {
            if (c.height > kSmall) continue;
            gdwProcType = kUnprobed;
            memory.fill(c);
            function.call(c, memory);
            ASSERT_EQ(gdwProcType != kUnprobed, probes) << function.name << ", " << c.width << 'x' << c.height
                                                        << ", pitches " << c.pitches[0] << " and " << c.pitches[1];
        }
    }
}

} // namespace
} // namespace fikleipa::tests
