// A host that unloads the library right after a call, while workers of the call have yet to return through its code.
#include "fikleipa.h"
#include "pxutil/pxutil.h"
#include "tests/v210/model.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

#include <dlfcn.h>
#include <unistd.h>

namespace {

std::thread::id caller;
std::array<std::atomic<pid_t>, 8> workers;
std::atomic<std::size_t> begun{0};

bool running(pid_t thread) {
    return thread == 0 || std::filesystem::exists("/proc/self/task/" + std::to_string(thread));
}

} // namespace

// Takes the place of the platform library's. Workers have it return long after the caller has seen the count.
int pxOSInterlockedDecrement(int* value) {
    const bool worker = std::this_thread::get_id() != caller;
    if (worker) workers.at(begun++) = gettid();
    const int left = --std::atomic_ref(*value);
    if (worker) usleep(200'000);
    return left;
}

namespace {

using namespace fikleipa::tests;

TEST(Unload, WorkersReturnThroughALibraryThatWasClosed) {
    caller = std::this_thread::get_id();
    void* const library = dlopen(FIKLEIPA_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror(); // NOLINT(concurrency-mt-unsafe): one thread
    auto* const convert = reinterpret_cast<PXJoinPlanes*>(dlsym(library, "cycbcr_yuv422p10_to_012v"));
    ASSERT_NE(convert, nullptr);

    constexpr unsigned kWidth = 2052;
    Bytes dst(naturalPitch(kWidth) + 64);
    Bytes plane = noise(2 * kWidth);
    convert(dst.data(), plane.data(), plane.data(), plane.data(), kWidth, 1, naturalPitch(kWidth), 2 * kWidth);
    EXPECT_EQ(dlclose(library), 0);

    // What they return to is there or the program crashes.
    for (const auto& worker : workers) {
        while (running(worker)) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(begun, workers.size());
}

} // namespace
