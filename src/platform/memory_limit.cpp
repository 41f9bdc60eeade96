// SPDX-License-Identifier: MIT
// The limit is the smaller of the machine's memory and the control group's.
#include "platform/memory_limit.h"

#include <algorithm>
#include <fstream>
#include <limits>

#if defined(__unix__)
#include <unistd.h>
#endif

namespace {

constexpr std::uint64_t unknown = std::numeric_limits<std::uint64_t>::max();

std::uint64_t machine_bytes() {
#if defined(_SC_PHYS_PAGES) && defined(_SC_PAGESIZE)
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long page_size = sysconf(_SC_PAGESIZE);
    if (pages > 0 && page_size > 0) {
        return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(page_size);
    }
#endif
    return unknown;
}

/// Containers limit a process below the machine's memory; the file holds a number or "max".
std::uint64_t control_group_bytes() {
    std::ifstream file("/sys/fs/cgroup/memory.max");
    std::uint64_t bytes = 0;
    return file >> bytes ? bytes : unknown;
}

}  // namespace

std::uint64_t memory_limit_bytes() {
    return std::min(machine_bytes(), control_group_bytes());
}
