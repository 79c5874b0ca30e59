#include "pipeline.h"

#include "error.h"

#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

namespace fikleipa::tool {
namespace {

// Every worker takes the next frame from the reader, converts it, and waits for the frame's turn to write it.
class Pipeline {
public:
    Pipeline(const Stages& stages, Progress& progress) : stages_(stages), progress_(progress) {}

    void work() {
        try {
            FrameBuffer source;
            FrameBuffer destination;
            while (const auto index = take(source)) {
                destination.resize(stages_.destinationBytes);
                stages_.convert(*index, destination.data(), source.data());
                deliver(*index, destination);
            }
        } catch (...) {
            stop(std::current_exception());
        }
    }

    void stop(std::exception_ptr error) {
        {
            const std::lock_guard lock(outputMutex_);
            if (!stopError_) stopError_ = std::move(error);
        }
        turn_.notify_all();
    }

    void rethrow() {
        if (stopError_) std::rethrow_exception(stopError_);
        if (readError_) std::rethrow_exception(readError_);
    }

private:
    std::optional<std::uint64_t> take(FrameBuffer& source) {
        const std::lock_guard lock(inputMutex_);
        if (ended_ || isStopped()) return {};
        // A frame that cannot be read ends the input; those before it are on their way and still come out.
        try {
            ended_ = !stages_.read(source);
        } catch (...) {
            ended_ = true;
            readError_ = std::current_exception();
        }
        if (ended_) return {};
        return taken_++;
    }

    void deliver(std::uint64_t index, const FrameBuffer& destination) {
        std::unique_lock lock(outputMutex_);
        turn_.wait(lock, [&] { return written_ == index || stopError_; });
        if (stopError_) return;
        stages_.write(destination.frame());
        progress_.advance();
        ++written_;
        lock.unlock();
        turn_.notify_all();
    }

    bool isStopped() {
        const std::lock_guard lock(outputMutex_);
        return stopError_ != nullptr;
    }

    const Stages& stages_;
    Progress& progress_;

    std::mutex inputMutex_;
    bool ended_ = false;
    std::uint64_t taken_ = 0;
    std::exception_ptr readError_;

    std::mutex outputMutex_;
    std::condition_variable turn_;
    std::uint64_t written_ = 0;
    std::exception_ptr stopError_;
};

} // namespace

void runPipeline(const Stages& stages, unsigned int jobs, Progress& progress) {
    Pipeline pipeline(stages, progress);
    {
        std::vector<std::jthread> workers;
        try {
            for (unsigned int job = 1; job < jobs; ++job) workers.emplace_back([&pipeline] { pipeline.work(); });
        } catch (const std::system_error&) {
            // Fewer threads than asked for do the same work.
        }
        pipeline.work();
    }
    pipeline.rethrow();
    progress.finish();
}

} // namespace fikleipa::tool
