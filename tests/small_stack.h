// A thread with as small a stack as hosts give theirs.
#pragma once

#include "tests/sanitizers.h"

#include <cstddef>
#include <system_error>

#include <pthread.h>

namespace fikleipa::tests {

// Runs work() on a thread with a stack of 64 KiB, at the end of which no memory is. Sanitizers make frames several
// times as large, so under them the stack is of the usual size.
template <class Work>
void onSmallStack(const Work& work) {
    constexpr std::size_t kBytes = std::size_t{64} << 10;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    if (!kAddressSanitizer && !kThreadSanitizer) pthread_attr_setstacksize(&attributes, kBytes);
    const auto entry = [](void* given) -> void* {
        (*static_cast<const Work*>(given))();
        return nullptr;
    };
    pthread_t thread{};
    const int error = pthread_create(&thread, &attributes, entry, const_cast<Work*>(&work));
    pthread_attr_destroy(&attributes);
    if (error != 0) throw std::system_error(error, std::generic_category(), "a thread with a small stack");
    pthread_join(thread, nullptr);
}

} // namespace fikleipa::tests
