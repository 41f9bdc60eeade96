// SPDX-License-Identifier: MIT
// Work on numbered pieces that are independent of each other, shared out among threads.
#pragma once

#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

/// Calls `work(i)` for all i below `count`, on `threads` threads, the calling one among them; ends
/// when all are done. What `work` throws is thrown here, once the others have stopped.
template <class Work>
void in_parallel(std::size_t threads, std::size_t count, const Work& work) {
    std::atomic<std::size_t> next{0};
    std::exception_ptr fault;
    std::mutex fault_mutex;
    const auto run = [&] {
        try {
            for (std::size_t i = next++; i < count; i = next++) {
                work(i);
            }
        } catch (...) {
            next = count;
            const std::lock_guard lock(fault_mutex);
            fault = std::current_exception();
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
    helpers.clear();  // waits for them
    if (fault) {
        std::rethrow_exception(fault);
    }
}
