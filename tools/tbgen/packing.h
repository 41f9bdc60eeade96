// SPDX-License-Identifier: MIT
// Compresses both halves of a table, their blocks shared out among threads.
#pragma once

#include <array>
#include <functional>
#include <optional>

#include "tbgen/half_bytes.h"

/// The compressed files of two halves, neither of them empty. `report` is told the share that is
/// done, 0 to 1, by the calling thread. Empty if a file would be longer than 4 GB.
[[nodiscard]] std::optional<std::array<Bytes, 2>> pack_halves(
    const std::array<Bytes, 2>& halves, std::size_t threads,
    const std::function<void(double share)>& report);
