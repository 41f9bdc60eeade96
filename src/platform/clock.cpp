// SPDX-License-Identifier: MIT
// The search reads the clock in almost every node. The coarse clock of Linux costs a few
// nanoseconds and moves every few milliseconds, which is fine enough for limits in milliseconds;
// elsewhere the steady clock of the library serves.
#include "platform/clock.h"

#include <chrono>
#include <ctime>

namespace {

constexpr std::uint64_t ms_per_second = 1000;
constexpr std::uint64_t ns_per_ms = 1000000;

}  // namespace

std::uint32_t GetTickCount() {
#if defined(CLOCK_MONOTONIC_COARSE)
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    const auto ms = static_cast<std::uint64_t>(now.tv_sec) * ms_per_second +
                    static_cast<std::uint64_t>(now.tv_nsec) / ns_per_ms;
#else
    const auto since_start = std::chrono::steady_clock::now().time_since_epoch();
    const auto ms = static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(since_start).count());
    static_cast<void>(ns_per_ms);
    static_cast<void>(ms_per_second);
#endif
    return static_cast<std::uint32_t>(ms);
}

std::uint32_t calendar_seconds() {
    return static_cast<std::uint32_t>(std::time(nullptr));
}
