// SPDX-License-Identifier: MIT
// Endgame tables for tests: those of tests/data, and halves of the test's own making in the working
// directory, with chosen bytes and nothing between them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>

#include "board/table.h"
#include "support/captured_output.h"
#include "tb/catalogue.h"
#include "tb/register.h"
#include "tb/search_probe.h"
#include "tb/start_tables.h"

/// Plain and compressed tables of three men.
inline const std::string endgame_data = CORVANE_TEST_DATA "/tb";

/// Finds the tables of a path and gives the cache a megabyte; what is printed is dropped.
inline void start_endgame_tables(const std::string& path) {
    const CapturedOutput output;
    tb_start_tables(path, 1);
}

/// Every table is known by its men, and none has a file.
inline void know_all_tables() {
    const CapturedOutput output;
    static_cast<void>(TbRegisterAll("there-is-no-such-folder"));
    for (std::size_t row = 1; row < TbCatalogue.size(); ++row) {
        static_cast<void>(TbRegisterTable(TbCatalogue[row]));
    }
}

/// A half of the real tables, as a file of the working directory.
inline void copy_half(const std::string& name) {
    std::filesystem::copy_file(endgame_data + "/" + name, name);
}

/// One byte of a half.
struct HalfByte {
    std::uint32_t index;
    std::int8_t value;
};

/// Puts a plain file of `size` bytes into the working directory: zeros, which take no room on disk,
/// but for the bytes given.
inline void put_half(const std::string& name, std::uint32_t size,
                     std::initializer_list<HalfByte> bytes) {
    { const std::ofstream empty(name, std::ios::binary); }
    std::filesystem::resize_file(name, size);
    std::fstream file(name, std::ios::binary | std::ios::in | std::ios::out);
    for (const HalfByte& byte : bytes) {
        file.seekp(byte.index);
        file.put(static_cast<char>(byte.value));
    }
}

/// Row of the catalogue by the table's name; the row behind the last if there is none.
[[nodiscard]] inline std::int32_t row_named(std::string_view name) {
    std::size_t row = 0;
    while (row < TbCatalogue.size() && name != TbCatalogue[row].name.data()) {
        ++row;
    }
    return static_cast<std::int32_t>(row);
}

/// What a table's answer has to be in the place of a position; far from every score if there is
/// none.
[[nodiscard]] inline std::int32_t answer_of_table(const Table& position) {
    return tb_answer(position).value_or(std::numeric_limits<std::int32_t>::min());
}
