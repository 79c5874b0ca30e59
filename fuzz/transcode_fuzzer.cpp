// cycbcr_transcode() between buffers that hold what fikleipa.h says and end where nobody may touch a byte. Every level
// is to leave what the portable one leaves.
#include "fuzz/fuzz.h"
#include "fuzz/transcode_reach.h"

#include "core/fourcc.h"
#include "simd/level.h"
#include "tests/guarded_bytes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <string>
#include <vector>

namespace {

using namespace fikleipa;
using namespace fikleipa::fuzz;

// Frames of a MiB and more are written past the cache, in another way than smaller ones. They take long.
constexpr std::uint64_t kMostBytes = 1 << 15;
constexpr std::uint64_t kMostBytesOfLarge = 3 << 19;
constexpr unsigned kOneOfSoManyIsLarge = 16;

// Of every range that a size has a meaning in.
unsigned someWidth(FuzzedDataProvider& input) {
    switch (input.ConsumeIntegralInRange(0, 3)) {
    case 0:
        return input.ConsumeIntegralInRange(0U, 64U);
    case 1:
        return input.ConsumeIntegralInRange(0U, 5000U);
    case 2:
        return 48 * input.ConsumeIntegralInRange(0U, 100U) + input.ConsumeIntegralInRange(0U, 1U);
    default:
        return input.ConsumeIntegral<unsigned>();
    }
}
unsigned someHeight(FuzzedDataProvider& input) {
    switch (input.ConsumeIntegralInRange(0, 2)) {
    case 0:
        return input.ConsumeIntegralInRange(0U, 16U);
    case 1:
        return input.ConsumeIntegralInRange(0U, 1200U);
    default:
        return input.ConsumeIntegral<unsigned>();
    }
}
unsigned somePitch(FuzzedDataProvider& input, unsigned width) {
    const unsigned more = input.ConsumeIntegralInRange(0U, 260U);
    switch (input.ConsumeIntegralInRange(0, 7)) {
    case 0:
        return 0;
    case 1:
        return width + more;
    case 2:
        return 2 * width + more;
    case 3:
        return 4 * width + more;
    case 4:
        return (width + 47) / 48 * 128 + more * 16;
    case 5:
        return width / 6 * 16 + more * 16;
    case 6:
        return input.ConsumeIntegralInRange(0U, 0xFFFFU);
    default:
        return input.ConsumeIntegral<unsigned>();
    }
}
int someFourCC(FuzzedDataProvider& input) {
    const auto which = input.ConsumeIntegralInRange<std::size_t>(0, kCodes.size() + 1);
    if (which < kCodes.size()) return kCodes.at(which).fourcc;
    return which == kCodes.size() ? PX_FOURCC_422P : input.ConsumeIntegral<int>();
}

std::string codeText(int code) {
    std::string text = fmt::format("0x{:08X}", static_cast<unsigned>(code));
    std::array<char, 4> letters{};
    std::memcpy(letters.data(), &code, letters.size());
    if (std::all_of(letters.begin(), letters.end(), [](char c) { return c >= ' ' && c <= '~'; }))
        text += fmt::format(" '{}'", std::string_view(letters.data(), letters.size()));
    return text;
}

// A buffer that nobody may leave, filled with noise.
class Buffer {
public:
    Buffer(std::size_t bytes, bool endsAtGuard, std::uint64_t seed)
        : memory_(bytes), bytes_(bytes), start_(endsAtGuard ? memory_.end() - bytes : memory_.begin()),
          noise_(static_cast<std::size_t>(memory_.end() - memory_.begin())) {
        std::size_t i = 0;
        for (; i + sizeof seed <= noise_.size(); i += sizeof seed) {
            seed = seed * 6364136223846793005U + 1442695040888963407U;
            const std::uint64_t mixed = seed ^ seed >> 29;
            std::memcpy(&noise_[i], &mixed, sizeof mixed);
        }
    }

    unsigned char* start() const { return start_; }
    void restore() { std::copy(noise_.begin(), noise_.end(), memory_.begin()); }
    std::vector<unsigned char> content() const { return {memory_.begin(), memory_.end()}; }
    bool isUntouched() const { return firstDifferenceFrom(noise_) == kNone; }
    // The guards are pages apart: what lies between them and the buffer is to stay.
    bool isUntouchedAround() const {
        const unsigned char* const end = start_ + bytes_;
        return std::equal(memory_.begin(), start_, noise_.begin()) &&
               std::equal(end, static_cast<const unsigned char*>(memory_.end()),
                          noise_.begin() + (end - memory_.begin()));
    }

    static constexpr std::ptrdiff_t kNone = PTRDIFF_MIN;
    std::ptrdiff_t firstDifferenceFrom(const std::vector<unsigned char>& wanted) const {
        const auto differing = std::mismatch(memory_.begin(), memory_.end(), wanted.begin()).first;
        return differing == memory_.end() ? kNone : differing - start_;
    }

private:
    GuardedBytes memory_;
    std::size_t bytes_;
    unsigned char* start_;
    std::vector<unsigned char> noise_;
};

unsigned transcode(const Call& c, const Buffer& dst, const Buffer& src) {
    return cycbcr_transcode(dst.start(), src.start(), c.width, c.height, c.dstPitch, c.srcPitch,
                            static_cast<PXYCBCRMatrix>(c.matrix), static_cast<PXYCBCRRgbType>(c.rgbType), c.dstFourCC,
                            c.srcFourCC);
}

void compareLevels(const Call& call, const Reach& reach, Buffer& dst, Buffer& src) {
    dst.restore();
    src.restore();
    simd::useLevel(simd::Level::Portable);
    const unsigned result = transcode(call, dst, src);
    if (!dst.isUntouchedAround()) found("bytes around the destination were written");
    if (!src.isUntouchedAround()) found("bytes around the source were written");
    if (!reach.writesSource && !src.isUntouched()) found("the source was written");
    const auto wantedDst = dst.content();
    const auto wantedSrc = src.content();

    for (const simd::Level level : simd::kLevels) {
        if (level == simd::Level::Portable || level > simd::bestLevel()) continue;
        dst.restore();
        src.restore();
        simd::useLevel(level);
        const unsigned got = transcode(call, dst, src);
        const auto name = simd::levelName(level);
        if (got != result) found("{} returns {}, the portable level {}", name, got, result);
        const auto compare = [&](const char* which, const Buffer& buffer, const std::vector<unsigned char>& wanted) {
            const std::ptrdiff_t at = buffer.firstDifferenceFrom(wanted);
            if (at != Buffer::kNone) found("{} differs from the portable level in byte {} of the {}", name, at, which);
        };
        compare("destination", dst, wantedDst);
        compare("source", src, wantedSrc);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    Call call{};
    call.srcFourCC = someFourCC(input);
    call.dstFourCC = someFourCC(input);
    call.width = someWidth(input);
    call.height = someHeight(input);
    call.dstPitch = somePitch(input, call.width);
    call.srcPitch = somePitch(input, call.width);
    call.matrix = input.ConsumeBool() ? input.ConsumeIntegralInRange(0U, 11U) : input.ConsumeIntegral<unsigned>();
    call.rgbType = input.ConsumeIntegralInRange(0U, 5U) | (input.ConsumeBool() ? PX_RGB_BOTTOM_UP : 0U);
    const bool dstEndsAtGuard = input.ConsumeBool();
    const bool srcEndsAtGuard = input.ConsumeBool();
    const unsigned level = input.ConsumeIntegralInRange(0U, 7U);
    const bool isLarge = input.ConsumeIntegralInRange(1U, kOneOfSoManyIsLarge) == kOneOfSoManyIsLarge;
    const std::uint64_t most = isLarge ? kMostBytesOfLarge : kMostBytes;
    const auto seed = input.ConsumeIntegral<std::uint64_t>();

    const Reach reach = reachOf(call);
    if (std::max({reach.dst, reach.src, reach.scratch}) > most || reach.touched > 4 * most) return 0;
    gdwProcType = level < 6 ? level : level == 6 ? 0xFFFFFFFE : 0x12345678;
    tell("{} to {}, {} x {}, pitches {} to {}, matrix {}, type {:#x}, level {:#x}: {} bytes of source{}, {} of "
         "destination{}",
         codeText(call.srcFourCC), codeText(call.dstFourCC), call.width, call.height, call.srcPitch, call.dstPitch,
         call.matrix, call.rgbType, gdwProcType, reach.src, srcEndsAtGuard ? " before a guard" : " behind a guard",
         reach.dst, dstEndsAtGuard ? " before a guard" : " behind a guard");

    Buffer dst(reach.dst, dstEndsAtGuard, seed);
    Buffer src(reach.src, srcEndsAtGuard, seed + 1);
    compareLevels(call, reach, dst, src);
    return 0;
}
