// SPDX-License-Identifier: MIT
// Work on numbered pieces that are independent of each other, shared out among threads.
#pragma once

#include <atomic>
#include <cstddef>
#include <system_error>
#include <thread>
#include <vector>

/// Calls `work(i)` for all i below `count`, on `threads` threads, the calling one among them; ends
/// when all are done. `work` does not throw.
template <class Work>
void in_parallel(std::size_t threads, std::size_t count, const Work& work) {
    std::atomic<std::size_t> next{0};
    const auto run = [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            work(i);
        }
    };
    std::vector<std::jthread> helpers;
    try {
        for (std::size_t i = 1; i < threads && i < count; ++i) {
            helpers.emplace_back(run);
        }
    } catch (const std::system_error&) {
        // The system gives no more threads: those that there are do the work.
    }
    run();
}
