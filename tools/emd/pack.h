// SPDX-License-Identifier: MIT
// A whole table half packed into a compressed file.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "emd/model.h"

/// The compressed file. Empty if there are no bytes or too many of them for one file of 4 GB.
[[nodiscard]] std::vector<std::uint8_t> emd_pack(std::span<const std::uint8_t> bytes,
                                                 const EmdPackOptions& options);
