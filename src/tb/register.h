// SPDX-License-Identifier: MIT
// Finding the table files at start-up. A file that is not there is no fault; one that is there and
// cannot be used ends the program with exit code 1 and a message, since the user has to know.
#pragma once

#include <cstdint>
#include <string_view>

#include "tb/catalogue.h"

/// The largest number of men of a table with a file, kings included: 0, 3, 4 or 5. It tells nothing
/// of which tables those are.
extern std::int32_t tb_max_men;

/// How many compressed files registration has opened.
extern std::int32_t tb_emd_count;

/// Undoes the previous registration and looks for all tables in the directories of `path`, which
/// stand between commas or semicolons; an empty one is the working directory. The first file found
/// for a half counts. Gives what `tb_max_men` has to be.
[[nodiscard]] std::int32_t TbRegisterAll(std::string_view path);

/// Looks for one half in one directory: plain, then compressed, then compressed under a name of
/// eight and three letters. Gives 1 if the half has a file now or had one before, 0 if none was
/// found. Row: 1 to 145.
std::int32_t TbRegisterFile(std::string_view directory, std::int32_t id, std::int32_t half);

/// Makes a table known by its men. False if it has more of them than any table.
[[nodiscard]] bool TbRegisterTable(const TbEntry& row);

/// No table is registered, none is known by its men, the cache is off.
void reset_tables();
