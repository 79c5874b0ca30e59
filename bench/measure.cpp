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

std::vector<std::uint16_t> makeNoise(std::uint16_t bits) {
    std::vector<std::uint16_t> words(1 << 19);
    std::minstd_rand random(1);
    std::generate(words.begin(), words.end(), [&] { return static_cast<std::uint16_t>(random() >> 8 & bits); });
    return words;
}

// The same noise over and over.
void fill(std::uint8_t* memory, std::size_t bytes, const std::vector<std::uint16_t>& words) {
    const std::size_t tile = words.size() * sizeof words[0];
    for (std::size_t i = 0; i < bytes; i += tile) std::memcpy(memory + i, words.data(), std::min(tile, bytes - i));
}

// What all clips of a benchmark lie in. It stays for the next one, which need not wait for the system to find and clear
// as many pages again.
class Pool {
public:
    // Begins anew with room for that many bytes.
    void reserve(std::size_t bytes, const std::vector<std::uint16_t>& words) {
        next_ = 0;
        if (bytes <= size_) return;
        memory_.reset();
        memory_.reset(static_cast<std::uint8_t*>(PXAlloc(bytes)));
        if (memory_ == nullptr) throw std::bad_alloc();
        size_ = bytes;
        fill(memory_.get(), bytes, words);
    }

    // Bytes aligned as allocators of video frames align them, with room for what converters read and write beyond them.
    std::uint8_t* take(std::size_t bytes) {
        std::uint8_t* const frame = memory_.get() + next_;
        next_ += taken(bytes);
        return frame;
    }

    static std::size_t taken(std::size_t bytes) {
        constexpr std::size_t kBeyond = 8192; // a row of the widest frames
        constexpr std::size_t kAlignment = 64;
        return (bytes + kBeyond + kAlignment - 1) / kAlignment * kAlignment;
    }

private:
    std::unique_ptr<std::uint8_t, decltype(&PXFree)> memory_{nullptr, PXFree};
    std::size_t size_ = 0;
    std::size_t next_ = 0;
};

// A source and a destination for each frame of a clip.
class Clip {
public:
    Clip(Pool& pool, unsigned frames, std::size_t srcBytes, std::size_t dstBytes,
         const std::vector<std::uint16_t>& words) {
        for (unsigned i = 0; i < frames; ++i) {
            sources_.push_back(pool.take(srcBytes));
            destinations_.push_back(pool.take(dstBytes));
            fill(sources_.back(), srcBytes, words);
        }
    }

    // Seconds that work(dst, src) takes on one of the next `count` frames.
    template <class Work>
    double secondsEach(unsigned count, const Work& work) {
        const auto start = Clock::now();
        for (unsigned i = 0; i < count; ++i) {
            work(destinations_[next_], sources_[next_]);
            benchmark::ClobberMemory();
            next_ = (next_ + 1) % sources_.size();
        }
        return std::chrono::duration<double>(Clock::now() - start).count() / count;
    }

    // Leaves a frame out, so that one who takes a turn does not get the same frames each time.
    void skip() { next_ = (next_ + 1) % sources_.size(); }

    // Frames enough that the clock does not show, few enough that both sides of a ratio see the same machine.
    template <class Work>
    unsigned batchFor(const Work& work) {
        constexpr double kBatchSeconds = 0.002;
        unsigned count = 1;
        secondsEach(count, work); // the first time is unlike any other
        double seconds = secondsEach(count, work);
        while (seconds * count < kBatchSeconds / 4) {
            count *= 2;
            seconds = secondsEach(count, work);
        }
        return std::max(1U, static_cast<unsigned>(kBatchSeconds / seconds));
    }

private:
    std::vector<std::uint8_t*> sources_;
    std::vector<std::uint8_t*> destinations_;
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

    [[nodiscard]] double last() const { return times_.back(); }
    [[nodiscard]] double seconds() const { return median(times_); }

private:
    Clip& clip_;
    Work work_;
    unsigned batch_;
    std::vector<double> times_;
};

constexpr FrameSize kPart{"1920x1080", 1920, 1080, 0, 0};

void measure(benchmark::State& state, const FrameSize& size, Traffic traffic, const Convert& convert,
             const std::vector<Rival>& rivals) {
    const double pixels = static_cast<double>(size.width) * size.height;
    const auto read = static_cast<std::size_t>(pixels * traffic.read);
    const auto written = static_cast<std::size_t>(pixels * traffic.written);
    const std::size_t copied = (read + written) / 2;
    static Pool pool;
    const auto words = makeNoise(traffic.sourceBits);
    pool.reserve(size.frames * (Pool::taken(read) + Pool::taken(written) + 2 * Pool::taken(copied)), words);
    Clip clip(pool, size.frames, read, written, words);
    Clip copies(pool, size.frames, copied, copied, words);

    const auto by = [&](const Convert& way) {
        return [&way, &size](std::uint8_t* dst, std::uint8_t* src) { way(dst, src, size); };
    };
    Turns copy(copies, [&](std::uint8_t* dst, std::uint8_t* src) { std::memcpy(dst, src, copied); });
    Turns conversion(clip, by(convert));
    std::vector<Turns<decltype(by(convert))>> others;
    others.reserve(rivals.size());
    for (const Rival& rival : rivals) others.emplace_back(clip, by(rival.convert));
    const auto convertParts = [&](std::uint8_t* dst, std::uint8_t* src) {
        for (unsigned i = 0; i < size.parts; ++i) {
            convert(dst + written / size.parts * i, src + read / size.parts * i, kPart);
        }
    };
    std::vector<Turns<decltype(convertParts)>> parts; // at most one
    if (size.parts != 0) parts.emplace_back(clip, convertParts);
    std::size_t turn = 0;
    for (auto _ : state) {
        copy.take();
        conversion.take();
        for (auto& part : parts) part.take();
        for (auto& other : others) {
            // One that is slower beyond doubt need not be waited for each time.
            if (turn % 8 == 0 || other.last() < 3 * conversion.last()) other.take();
        }
        ++turn;
        clip.skip();
        state.SetIterationTime(conversion.last());
    }
    const double seconds = conversion.seconds();
    state.counters["Mpx/s"] = pixels / seconds / 1e6;
    state.counters["GB/s"] = pixels * (traffic.read + traffic.written) / seconds / 1e9;
    state.counters["ratio"] = seconds / copy.seconds();
    for (const auto& part : parts) state.counters["growth"] = seconds / part.seconds();
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
        ->Iterations(size.turns);
}

void registerShort(const std::string& name, const std::function<void()>& work) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) {
                                     std::vector<double> times;
                                     for (auto _ : state) {
                                         const auto start = Clock::now();
                                         work();
                                         const auto took = std::chrono::duration<double>(Clock::now() - start);
                                         times.push_back(took.count());
                                         state.SetIterationTime(took.count());
                                     }
                                     state.counters["us"] = median(times) * 1e6;
                                 })
        ->UseManualTime()
        ->Unit(benchmark::kMicrosecond)
        ->Iterations(1001);
}

} // namespace fikleipa::bench
