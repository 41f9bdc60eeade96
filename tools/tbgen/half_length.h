// SPDX-License-Identifier: MIT
// How long a half's file has to be.
#pragma once

#include <cstdint>

/// Bytes of a half when decoded: up to the last position that can be reached. Row 1 to 145, half 0
/// or 1. The plans' tables have to be built.
[[nodiscard]] std::uint32_t half_length(std::int32_t row, std::int32_t half);
