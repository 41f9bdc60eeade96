// SPDX-License-Identifier: MIT
// Which tables a table needs, and in which order they are made.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tbgen/table_folder.h"

/// The tables asked for and all that they depend on, each once, behind those that it needs itself.
[[nodiscard]] std::vector<std::int32_t> in_working_order(const std::vector<std::int32_t>& rows);

/// A makefile that makes the tables of `in_working_order(rows)`, one target each. `program`: how
/// the generator is called. Empty if a makefile cannot hold one of the names.
[[nodiscard]] std::string makefile(const std::vector<std::int32_t>& rows,
                                   const std::string& program, const std::string& folder,
                                   TableForm form);
