// SPDX-License-Identifier: MIT
// Switches of the endgame-table code. All are off when the engine plays; tests and people who
// suspect a file turn them on.
#pragma once

#include <cstdint>

extern bool tb_verbose;       ///< each file found is told
extern bool tb_enum_verbose;  ///< the number of positions of each set of men is told

/// 1: the checksums of compressed blocks are kept and tested. 0: neither.
extern std::uint32_t tb_use_crc;

/// All off.
void reset_tb_settings();
