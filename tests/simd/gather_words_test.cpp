#include "tests/levels.h"
#include "tests/simd/placement.h"

#include <gtest/gtest.h>

namespace {

using namespace fikleipa;
using namespace fikleipa::tests;

// Against a forbidden page on both sides of the words.
TEST(GatherWords, EveryLevelTakesTheRightWordsAndNoOthers) {
    PlacedRow in{8192};
    PlacedRow out{8192};
    for (unsigned apart = 0; apart < simd::kMostApart; ++apart) {
        for (std::size_t count = 1; count <= 140; ++count) {
            const std::size_t step = std::size_t{2} << apart;
            const std::vector<std::uint8_t> src = noise((count - 1) * step + 2, static_cast<unsigned>(count));
            std::vector<std::uint8_t> words;
            std::vector<std::uint8_t> upper;
            for (std::size_t i = 0; i < count; ++i) {
                words.insert(words.end(), {src[i * step], src[i * step + 1]});
                upper.insert(upper.end(), {src[i * step + 1], 0});
            }
            for (const simd::Level level : simd::kLevels) {
                const simd::GatherWordsKernels& kernels = simd::kernelsAt(level).gatherWords;
                for (const bool atEnd : {false, true}) {
                    for (unsigned offset = 0; offset < kAlignments; offset += 13) {
                        kernels.words[apart](out.place(words.size(), offset, atEnd), in.place(src, offset, atEnd),
                                             count);
                        ASSERT_TRUE(out.holds(words) && out.aroundIsUntouched())
                            << simd::levelName(level) << ", " << count << " words, " << step << " bytes apart";
                        kernels.upperBytes[apart](out.place(upper.size(), offset, atEnd), in.place(src, offset, atEnd),
                                                  count);
                        ASSERT_TRUE(out.holds(upper) && out.aroundIsUntouched())
                            << simd::levelName(level) << ", " << count << " upper bytes, " << step << " bytes apart";
                    }
                }
            }
        }
    }
}

} // namespace
