// SPDX-License-Identifier: MIT
// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tbgen/table_folder.h"

struct Options {
    std::string folder;              ///< empty: the working directory
    std::vector<std::int32_t> rows;  ///< asked for, in the order of the rows, each once
    std::size_t threads = 1;
    TableForm form = TableForm::packed;
    bool verify = false;
    bool graph = false;
    bool help = false;
};

/// The options of some words. Without a table by name or number of men, and where a word makes no
/// sense, empty: `fault` then tells why.
[[nodiscard]] std::optional<Options> read_options(std::span<const std::string> words,
                                                  std::string& fault);

/// How the program is called, several lines.
[[nodiscard]] std::string_view usage_text();
