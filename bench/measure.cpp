#include "bench/measure.h"

#include "pxutil/pxutil.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <new>
#include <random>
#include <utility>
#include <vector>

namespace fikleipa::bench {
namespace {

using Clock = std::chrono::steady_clock;

// Bytes aligned as allocators of video frames align them.
using Frame = std::unique_ptr<std::uint8_t, decltype(&PXFree)>;

std::vector<std::uint16_t> makeNoise(std::uint16_t bits) {
    std::vector<std::uint16_t> words(1 << 19);
    std::minstd_rand random(1);
    std::generate(words.begin(), words.end(), [&] { return static_cast<std::uint16_t>(random() >> 8 & bits); });
    return words;
}

// A frame of the same noise over and over, with room for what converters read and write beyond it.
Frame noise(std::size_t bytes, const std::vector<std::uint16_t>& words) {
    constexpr std::size_t kBeyond = 8192; // a row of the widest frames
    Frame frame(static_cast<std::uint8_t*>(PXAlloc(bytes + kBeyond)), PXFree);
    if (frame == nullptr) throw std::bad_alloc();
    const std::size_t tile = words.size() * sizeof words[0];
    for (std::size_t i = 0; i < bytes; i += tile) {
        std::memcpy(frame.get() + i, words.data(), std::min(tile, bytes - i));
    }
    return frame;
}

// A source and a destination for each frame of a clip.
class Clip {
public:
    Clip(unsigned frames, std::size_t srcBytes, std::size_t dstBytes, std::uint16_t sourceBits) {
        const auto words = makeNoise(sourceBits);
        for (unsigned i = 0; i < frames; ++i) {
            sources_.push_back(noise(srcBytes, words));
            destinations_.push_back(noise(dstBytes, words));
        }
    }

    // Seconds that work(dst, src) takes on one of the next `count` frames.
    template <class Work>
    double secondsEach(unsigned count, const Work& work) {
        const auto start = Clock::now();
        for (unsigned i = 0; i < count; ++i) {
            work(destinations_[next_].get(), sources_[next_].get());
            benchmark::ClobberMemory();
            next_ = (next_ + 1) % sources_.size();
        }
        return std::chrono::duration<double>(Clock::now() - start).count() / count;
    }

    // Frames enough that the clock does not show, few enough that both sides of a ratio see the same machine.
    template <class Work>
    unsigned batchFor(const Work& work) {
        constexpr double kBatchSeconds = 0.002;
        return std::max(1U, static_cast<unsigned>(kBatchSeconds / std::max(secondsEach(8, work), 1e-9)));
    }

private:
    std::vector<Frame> sources_;
    std::vector<Frame> destinations_;
    std::size_t next_ = 0;
};

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// One of those that take turns.
template <class Work>
class Turns {
public:
    Turns(Clip& clip, Work work) : clip_(clip), work_(std::move(work)), batch_(clip.batchFor(work_)) {}

    void take() { times_.push_back(clip_.secondsEach(batch_, work_)); }
    double last() const { return times_.back(); }
    double seconds() const { return median(times_); }

private:
    Clip& clip_;
    Work work_;
    unsigned batch_;
    std::vector<double> times_;
};

void measure(benchmark::State& state, const FrameSize& size, Traffic traffic, const Convert& convert,
             const std::vector<Rival>& rivals) {
    const double pixels = static_cast<double>(size.width) * size.height;
    const auto read = static_cast<std::size_t>(pixels * traffic.read);
    const auto written = static_cast<std::size_t>(pixels * traffic.written);
    const std::size_t copied = (read + written) / 2;
    Clip clip(size.frames, read, written, traffic.sourceBits);
    Clip copies(size.frames, copied, copied, traffic.sourceBits);

    const auto by = [&](const Convert& way) {
        return [&way, &size](std::uint8_t* dst, std::uint8_t* src) { way(dst, src, size); };
    };
    Turns copy(copies, [&](std::uint8_t* dst, std::uint8_t* src) { std::memcpy(dst, src, copied); });
    Turns conversion(clip, by(convert));
    std::vector<Turns<decltype(by(convert))>> others;
    others.reserve(rivals.size());
    for (const Rival& rival : rivals) others.emplace_back(clip, by(rival.convert));
    for (auto _ : state) {
        copy.take();
        conversion.take();
        for (auto& other : others) other.take();
        state.SetIterationTime(conversion.last());
    }
    const double seconds = conversion.seconds();
    state.counters["Mpx/s"] = pixels / seconds / 1e6;
    state.counters["GB/s"] = pixels * (traffic.read + traffic.written) / seconds / 1e9;
    state.counters["ratio"] = seconds / copy.seconds();
    for (std::size_t i = 0; i < rivals.size(); ++i) {
        state.counters[std::string(rivals[i].name) + " Mpx/s"] = pixels / others[i].seconds() / 1e6;
        state.counters[std::string("over ") + rivals[i].name] = others[i].seconds() / seconds;
    }
}

} // namespace

void registerConversion(const std::string& name, const FrameSize& size, Traffic traffic,
                        const std::function<void()>& prepare, const Convert& convert,
                        const std::vector<Rival>& rivals) {
    benchmark::RegisterBenchmark((name + "/" + size.name).c_str(),
                                 [=](benchmark::State& state) {
                                     prepare();
                                     measure(state, size, traffic, convert, rivals);
                                 })
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond)
        ->Iterations(41);
}

} // namespace fikleipa::bench
