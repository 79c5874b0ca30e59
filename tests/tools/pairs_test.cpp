// Every conversion that the command lists, on a clip of its own, compared with the picture that went in.
#include "command.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <set>
#include <sstream>

namespace fikleipa::tool {
namespace {

// Neither whole groups of pixels nor of rows. The bars of the pattern end where samples of chroma do.
constexpr std::size_t kWidth = 112;
constexpr std::size_t kHeight = 90;
constexpr auto* kSize = "112x90";

// Bytes of a frame.
const std::map<std::string, std::size_t> kLayouts{
    {"uyvy", 112 * 90 * 2},      {"yuy2", 112 * 90 * 2},      {"yvyu", 112 * 90 * 2},      {"cyuv", 112 * 90 * 2},
    {"i420", 112 * 90 * 3 / 2},  {"yv12", 112 * 90 * 3 / 2},  {"p422", 112 * 90 * 2},      {"nv12", 112 * 90 * 3 / 2},
    {"v210", 384 * 90},          {"p010", 112 * 90 * 3},      {"yuv420p10", 112 * 90 * 3}, {"yuv422p10", 112 * 90 * 4},
    {"yuv444p10", 112 * 90 * 6}, {"yuv420p12", 112 * 90 * 3}, {"yuv422p12", 112 * 90 * 4}, {"yuv444p12", 112 * 90 * 6},
    {"yuv420p16", 112 * 90 * 3}, {"yuv422p16", 112 * 90 * 4}, {"rgb64", 112 * 90 * 8},     {"rgb48", 112 * 90 * 6},
    {"rgb32", 112 * 90 * 4},     {"rgb24", 112 * 90 * 3},     {"rgb565", 112 * 90 * 2},    {"rgb555", 112 * 90 * 2},
    {"rgb30", 112 * 90 * 4},     {"rgb10", 112 * 90 * 4},
};

// What `fikleipa formats` lists as the targets of a layout, in one line or several.
std::set<std::string> listedTargets(const std::string& formats, const std::string& from) {
    const std::string label = fmt::format("  {:<10}-> ", from);
    std::set<std::string> targets;
    bool listing = false;
    std::istringstream lines(formats);
    for (std::string line; std::getline(lines, line);) {
        const bool starts = line.rfind(label, 0) == 0;
        listing = starts || (listing && line.rfind(std::string(label.size(), ' '), 0) == 0);
        if (!listing) continue;
        std::istringstream words(line.substr(label.size()));
        for (std::string word; words >> word;) targets.insert(word.substr(0, word.find_first_of(",*")));
    }
    return targets;
}

// The mean colours of blocks of 8x8 pixels, in which chroma is the same wherever a layout takes it from.
using Means = std::vector<std::array<double, 3>>;

Means blockMeans(const std::vector<Pixel>& pixels) {
    Means means;
    for (std::size_t top = 0; top < kHeight; top += 8) {
        for (std::size_t left = 0; left < kWidth; left += 8) {
            std::array<double, 3> sum{};
            std::size_t count = 0;
            for (std::size_t y = top; y < std::min(top + 8, kHeight); ++y) {
                for (std::size_t x = left; x < std::min(left + 8, kWidth); ++x, ++count) {
                    const Pixel& pixel = pixels[y * kWidth + x];
                    sum[0] += pixel.red, sum[1] += pixel.green, sum[2] += pixel.blue;
                }
            }
            for (double& component : sum) component /= static_cast<double>(count);
            means.push_back(sum);
        }
    }
    return means;
}

class PairsTest : public CommandTest {
protected:
    void SetUp() override {
        formats_ = shell("fikleipa formats").out;
        make("truth", "rgb24");
        truth_ = shown("truth", "rgb24");
    }

    void make(const std::string& name, const std::string& layout, const std::string& options = "") const {
        mustRun(fmt::format("fikleipa pattern {} --to {} --size {} --frames 2 {}", name, layout, kSize, options));
        EXPECT_EQ(read(name).size(), 2 * kLayouts.at(layout)) << layout;
    }

    Result convert(const std::string& from, const std::string& to, const std::string& options = "") const {
        std::filesystem::remove(path("out"));
        return shell(fmt::format("fikleipa convert in out --from {} --to {} --size {} {}", from, to, kSize, options));
    }

    // Bars have sharp edges, which layouts draw more or less softly.
    void expectTruth(const std::string& name, const std::string& layout, const std::string& what) const {
        constexpr double kFarthest = 30;
        constexpr double kMean = 4;
        const Means means = shown(name, layout);
        double sum = 0;
        for (std::size_t i = 0; i < means.size(); ++i) {
            for (std::size_t c = 0; c < 3; ++c) {
                const double off = std::abs(means[i][c] - truth_[i][c]);
                EXPECT_LT(off, kFarthest) << what << ", block " << i << ", component " << c;
                sum += off;
            }
        }
        EXPECT_LT(sum / static_cast<double>(means.size() * 3), kMean) << what;
    }

    Means shown(const std::string& name, const std::string& layout, const std::string& options = "") const {
        mustRun(fmt::format("fikleipa view {} out.png --from {} --size {} --frame 1 {}", name, layout, kSize, options));
        return blockMeans(picture("out.png", kWidth, kHeight));
    }

    std::string formats_;
    Means truth_;
};

TEST_F(PairsTest, EveryListedPairKeepsThePictureAndTheRestIsRefused) {
    for (const auto& [from, ignored] : kLayouts) {
        const std::set<std::string> targets = listedTargets(formats_, from);
        if (from == "rgb10") {
            EXPECT_TRUE(targets.empty());
            continue;
        }
        make("in", from);
        expectTruth("in", from, from);
        for (const auto& [to, bytes] : kLayouts) {
            const std::string what = fmt::format("{} to {}", from, to);
            const Result result = convert(from, to);
            if (targets.contains(to)) {
                EXPECT_EQ(result.status, 0) << what << ": " << result.err;
                ASSERT_EQ(read("out").size(), 2 * bytes) << what;
                if (to != "rgb10") expectTruth("out", to, what); // the fields of which run into one another
            } else {
                EXPECT_NE(result.status, 0) << what;
                EXPECT_FALSE(std::filesystem::exists(path("out"))) << what;
            }
        }
    }
}

bool isRgb(const std::string& layout) {
    return layout.rfind("rgb", 0) == 0;
}

TEST_F(PairsTest, OrderAndDirectionOfRgbAreFollowed) {
    for (const auto& [from, ignored] : kLayouts) {
        for (const std::string& to : listedTargets(formats_, from)) {
            if (!isRgb(from) && !isRgb(to)) continue;
            Means wanted;
            for (const std::string options :
                 {"", "--rgb-order abgr", "--rgb-order rgba --bottom-up", "--rgb-order argb"}) {
                if (isRgb(from) || options.empty()) make("in", from, options);
                EXPECT_EQ(convert(from, to, options).status, 0);
                const Means seen = shown("out", to, options);
                if (options.empty()) wanted = seen;
                EXPECT_EQ(seen, wanted) << from << " to " << to << " " << options;
            }
        }
    }
}

} // namespace
} // namespace fikleipa::tool
