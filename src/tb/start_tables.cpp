// SPDX-License-Identifier: MIT
// The one allocation of the cache is made here; the cache itself only takes a buffer.
#include "tb/start_tables.h"

#include <cstdlib>
#include <iostream>
#include <string_view>

#include "platform/memory_limit.h"
#include "shell/log.h"
#include "tb/block_cache.h"
#include "tb/register.h"
#include "tb/tb_settings.h"

namespace {

std::uint8_t* cache_buffer = nullptr;

/// For people who suspect a file: 1 in this variable of the environment has all blocks tested.
bool checksums_are_wanted() {
    const char* const value = std::getenv("CORVANE_TB_CHECKSUMS");
    return value != nullptr && std::string_view(value) == "1";
}

void allocate_cache(std::int32_t megabytes) {
    constexpr unsigned megabyte_bits = 20;
    const std::uint32_t bytes = static_cast<std::uint32_t>(megabytes) << megabyte_bits;
    std::free(cache_buffer);
    cache_buffer =
        bytes < memory_limit_bytes() ? static_cast<std::uint8_t*>(std::calloc(1, bytes)) : nullptr;
    if (cache_buffer == nullptr && bytes > 0) {
        std::cerr << "No memory for the cache of the endgame tables (TBCacheSize: " << megabytes
                  << "): they are not used.\n";
    }
    TbCacheInit(cache_buffer, cache_buffer != nullptr ? bytes : 0);
}

}  // namespace

void tb_start_tables(std::string_view path, std::int32_t cache_megabytes) {
    tb_use_crc = checksums_are_wanted() ? 1 : 0;
    tb_max_men = TbRegisterAll(path);
    if (tb_max_men > 0) {
        mirror("Loading ", tb_max_men, "-man Endgame  Bases...", end_line);
        allocate_cache(cache_megabytes);
    }
}

void tb_stop_tables() {
    reset_tables();
    std::free(cache_buffer);
    cache_buffer = nullptr;
}
