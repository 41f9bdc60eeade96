// SPDX-License-Identifier: MIT
// How much memory the machine has to give. Systems promise more than they have and end the
// process when it is used, so a request has to be judged before it is made.
#pragma once

#include <cstdint>

/// Bytes of memory that this process may hope for: the machine's, or the limit of the container
/// that it runs in. Where neither is known, the largest number.
[[nodiscard]] std::uint64_t memory_limit_bytes();
