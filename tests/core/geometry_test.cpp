#include "tests/core/codes.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace {

using namespace fikleipa::tests;

struct Case {
    unsigned width, pitch, fixed;
};

void check(std::initializer_list<Codes> layouts, std::initializer_list<Case> cases) {
    for (const Codes& codes : layouts) {
        for (const int code : codes) {
            for (const auto& [width, pitch, fixed] : cases) {
                unsigned got = pitch;
                _fixPitch(static_cast<unsigned>(code), width, got);
                EXPECT_EQ(got, fixed) << "code " << code << ", width " << width << ", pitch " << pitch;
            }
        }
    }
}

TEST(FixPitch, PackedRowsHoldTheirPixels) {
    check({kYuy2Codes, kUyvyCodes, kYvyuCodes, kCyuvCodes},
          {{720, 0, 1440}, {720, 1000, 1440}, {720, 1440, 1440}, {720, 2048, 2048}, {0, 7, 7}, {0x80000001, 0, 2}});
}

TEST(FixPitch, PlanarPitchesAboveTheAlignedWidthAreReplaced) {
    check({kI420Codes, kYv12Codes, kP422Codes}, {{720, 0, 0},
                                                 {720, 500, 500},
                                                 {720, 720, 720},
                                                 {720, 768, 768},
                                                 {700, 768, 768},
                                                 {720, 769, 720},
                                                 {720, 2048, 720},
                                                 {0, 1, 0},
                                                 {0xFFFFFFFF, 5, 0xFFFFFFFF}}); // the aligned width wraps to 0
}

TEST(FixPitch, V210PitchesAreWholeGroups) {
    for (const unsigned width : {1920U, 1921U}) {
        check({kV210Codes},
              {{width, 0, 0}, {width, 4096, 5120}, {width, 5120, 5120}, {width, 5121, 5120}, {width, 6144, 6144}});
    }
    // No product of the width may wrap before it is divided.
    check({kV210Codes}, {{0, 17, 0}, {0, 32, 32}, {0xFFFFFFFF, 1, 0xFFFFFFFF / 6 * 16}});
}

TEST(FixPitch, OthersAreLeftAlone) {
    check({kRgb32Codes, {PX_FOURCC_422P}, kUnknownCodes}, {{720, 0, 0}, {720, 1, 1}, {720, 5000, 5000}});
}

} // namespace
