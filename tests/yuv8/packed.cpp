#include "tests/yuv8/models.h"

namespace fikleipa::tests {
namespace {

void copyRows(At dst, At src, const Geometry& g) {
    const unsigned bytes = std::min(g.dstPitch, g.srcPitch);
    for (unsigned y = 0; y < g.height; ++y) copyBytes(dst + y * g.dstPitch, src + y * g.srcPitch, bytes);
}

void reverseRows(At dst, At src, const Geometry& g) {
    const unsigned bytes = std::min(g.dstPitch, g.srcPitch);
    for (unsigned y = 0; y < g.height; ++y) {
        copyBytes(dst + (g.height - 1 - y) * g.dstPitch, src + y * g.srcPitch, bytes);
    }
}

void swapWords(At dst, At src, unsigned words) {
    for (unsigned i = 0; i < 2 * words; i += 2) {
        const std::uint8_t first = src[i];
        dst[i] = src[i + 1];
        dst[i + 1] = first;
    }
}

void swapPitches(At dst, At src, const Geometry& g) {
    if (g.dstPitch == g.srcPitch) {
        swapWords(dst, src, g.dstPitch * g.height / 2);
        return;
    }
    const unsigned words = std::min(g.dstPitch, g.srcPitch) / 2;
    for (unsigned y = 0; y < g.height; ++y) swapWords(dst + y * g.dstPitch, src + y * g.srcPitch, words);
}

void swapGroups(At dst, At src, const Geometry& g) {
    for (unsigned y = 0; y < g.height; ++y) swapWords(dst + y * g.dstPitch, src + y * g.srcPitch, g.width / 2 * 2);
}

void exchangeChroma(At dst, At src, const Geometry& g) {
    for (unsigned y = 0; y < g.height; ++y) {
        for (unsigned i = 0; i < g.width / 2 * 4; i += 4) {
            const At s = src + (y * g.srcPitch + i);
            const std::array<std::uint8_t, 4> group{s[0], s[3], s[2], s[1]};
            for (unsigned b = 0; b < 4; ++b) dst[y * g.dstPitch + i + b] = group[b];
        }
    }
}

} // namespace

std::vector<Converter> packedConverters() {
    std::vector<Converter> all;
    const auto add = [&](const char* name, PXConvertFrame* convert, auto model, bool flip = false) {
        const bool bulk = model == copyRows || model == reverseRows;
        const auto run = [=](const Places& dst, const Places& src, const Geometry& g) {
            model(dst[0], src[0], g);
            if (flip) invert(dst[0], g.dstPitch, g.height);
            return g.dstPitch * g.height;
        };
        all.push_back({name, packedRow, packedRow, frame(convert), run, !bulk});
    };
    add("yuy2_to_yuy2", cycbcr_yuy2_to_yuy2, copyRows);
    add("yvyu_to_yvyu", cycbcr_yvyu_to_yvyu, copyRows);
    add("uyvy_to_uyvy", cycbcr_uyvy_to_uyvy, copyRows);
    add("cyuv_to_cyuv", cycbcr_cyuv_to_cyuv, copyRows);
    add("interleaved_copy", cycbcr_interleaved_copy, copyRows);
    add("uyvy_to_cyuv", cycbcr_uyvy_to_cyuv, reverseRows);
    add("cyuv_to_uyvy", cycbcr_cyuv_to_uyvy, reverseRows);
    add("yuy2_to_uyvy", cycbcr_yuy2_to_uyvy, swapPitches);
    add("uyvy_to_yuy2", cycbcr_uyvy_to_yuy2, swapPitches);
    add("yuy2_to_cyuv", cycbcr_yuy2_to_cyuv, swapPitches, true);
    add("cyuv_to_yuy2", cycbcr_cyuv_to_yuy2, swapPitches, true);
    add("yvyu_to_uyvy", cycbcr_yvyu_to_uyvy, swapGroups);
    add("uyvy_to_yvyu", cycbcr_uyvy_to_yvyu, swapGroups);
    add("yvyu_to_cyuv", cycbcr_yvyu_to_cyuv, swapGroups, true);
    add("cyuv_to_yvyu", cycbcr_cyuv_to_yvyu, swapGroups, true);
    add("yuy2_to_yvyu", cycbcr_yuy2_to_yvyu, exchangeChroma);
    add("yvyu_to_yuy2", cycbcr_yvyu_to_yuy2, exchangeChroma);
    return all;
}

} // namespace fikleipa::tests
