#include "v210/row_unpack.h"

#include "tests/v210/models.h"

namespace fikleipa::tests {
namespace {

// The planes of a row, apart or one behind the other without a gap.
template <class Pointer>
std::array<Pointer, 3> planesOf(const std::array<Pointer, 3>& dst, bool gaps, unsigned width) {
    const unsigned pixels = roundUp(width, 6);
    return gaps ? dst : std::array<Pointer, 3>{dst[0], dst[0] + 2 * pixels, dst[0] + 3 * pixels};
}

// Group by group, each with zeros behind it that the next one overwrites.
void unpackModel(const Places& dst, At row, unsigned width, unsigned shift) {
    const auto put = [&](At plane, unsigned index, unsigned of, unsigned i) {
        store16(plane + 2 * index, index < of ? component(row, i) << shift : 0);
    };
    for (unsigned x = 0; x < width; x += 6) {
        for (unsigned i = x; i < x + 8; ++i) put(dst[0], i, x + 6, lumaOf(i));
        for (unsigned i = x / 2; i < x / 2 + 4; ++i) put(dst[1], i, x / 2 + 3, cbOf(i));
        for (unsigned i = x / 2; i < x / 2 + 4; ++i) put(dst[2], i, x / 2 + 3, crOf(i));
    }
}

} // namespace

std::vector<Converter> rowUnpackers() {
    std::vector<Converter> all;
    const auto add = [&](const char* name, unsigned shift, auto unpack) {
        for (const bool gaps : {false, true}) {
            all.push_back({name, bytes2, naturalPitch,
                           [=](const Pointers& dst, const Pointers& src, const Geometry& g) {
                               const auto [y, cb, cr] = planesOf(dst, gaps, g.width);
                               unpack(src[0], y, cb, cr, g.width);
                               return 0U;
                           },
                           [=](const Places& dst, const Places& src, const Geometry& g) {
                               unpackModel(planesOf(dst, gaps, g.width), src[0], g.width, shift);
                               return 0U;
                           }});
        }
    };
    const auto own = [](simd::Justify justify) {
        return [=](auto* src, auto* y, auto* cb, auto* cr, unsigned width) {
            unpackRow16({y, cb, cr}, src, width, justify);
        };
    };
    add("unpackRow16 right", 0, own(simd::Justify::Right));
    add("unpackRow16 left", 6, own(simd::Justify::Left));
#if defined(__x86_64__)
    const auto words = [](PXUnpackV210Row* unpack) {
        return [=](std::uint8_t* src, std::uint8_t* y, std::uint8_t* cb, std::uint8_t* cr, unsigned width) {
            const auto at = [](std::uint8_t* plane) { return reinterpret_cast<unsigned short*>(plane); };
            unpack(src, at(y), at(cb), at(cr), width);
        };
    };
    add("planar aligned", 0, words(px_v210_planar_unpack_aligned_ssse3));
    add("planar unaligned", 0, words(px_v210_planar_unpack_unaligned_ssse3));
    add("planar16 aligned", 6, words(px_v210_planar16_unpack_aligned_ssse3));
    add("planar16 unaligned", 6, words(px_v210_planar16_unpack_unaligned_ssse3));
#endif
    return all;
}

} // namespace fikleipa::tests
