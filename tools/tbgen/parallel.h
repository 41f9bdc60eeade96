// SPDX-License-Identifier: MIT
// Work on numbered pieces that are independent of each other, shared out among threads.
#pragma once

#include <atomic>
#include <cstddef>
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
    for (std::size_t i = 1; i < threads && i < count; ++i) {
        helpers.emplace_back(run);
    }
    run();
}
