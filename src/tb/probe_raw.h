// SPDX-License-Identifier: MIT
// One byte of a half: from memory, from the cache, or from disk.
#pragma once

#include <cstdint>

/// The internal result for no value at all. No half holds it for a position.
inline constexpr std::int8_t tb_no_value = 127;

/// The byte of a half at `index`, or `tb_no_value` when it cannot be had. A half that cannot be
/// read is out of use from then on: its `path` is cleared. Row: 1 to 145. Never fails otherwise.
[[nodiscard]] std::int8_t TbProbeRaw(std::int32_t id, std::int32_t half, std::uint32_t index);
