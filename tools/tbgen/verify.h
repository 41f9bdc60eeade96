// SPDX-License-Identifier: MIT
// The proof of a finished table: the value of each position follows from the values one move on.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tbgen/stored_values.h"

struct VerifyResult {
    std::uint64_t positions = 0;  ///< compared, of both halves
    std::string fault;            ///< the first one found; empty if there is none
};

/// Compares all positions of a table with their successors, there and in the smaller tables, and
/// looks that no other number has a value. `report` is told the share that is done.
[[nodiscard]] VerifyResult verify_table(std::int32_t row, StoredHalves& stored, std::size_t threads,
                                        const std::function<void(double share)>& report);
