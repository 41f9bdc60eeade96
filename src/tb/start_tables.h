// SPDX-License-Identifier: MIT
// The endgame tables at the start of the program: finding them, saying so, and the cache.
#pragma once

#include <cstdint>
#include <string_view>

/// Registers the tables of `path` and, if there are any, says so and gives the cache its memory.
/// `cache_megabytes` counts in 32 bits of bytes; what lies beyond wraps. Where the machine has not
/// that much, the cache stays off and standard error says so. A broken file ends the program.
void tb_start_tables(std::string_view path, std::int32_t cache_megabytes);

/// Takes the cache's memory back and forgets all tables.
void tb_stop_tables();
