// SPDX-License-Identifier: MIT
// The program tb_value: asks endgame tables for positions and prints the bytes as they are stored,
// without the scores that the search makes of them. It answers line by line, so that another
// program can ask one position after the other.
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

#include "board/geometry.h"
#include "board/set_up.h"
#include "board/square_tables.h"
#include "board/table.h"
#include "shell/fen_board.h"
#include "shell/log.h"
#include "tb/catalogue.h"
#include "tb/probe_raw.h"
#include "tb/search_probe.h"
#include "tb/start_tables.h"

namespace {

constexpr int wrong_arguments = 2;
constexpr std::int32_t cache_megabytes = 32;

/// Whether the text is a board field: eight rows of eight squares.
bool is_board_field(std::string_view text) {
    constexpr std::size_t files = 8;
    constexpr std::size_t ranks = 8;
    constexpr std::string_view men = "PNBRQKpnbrqk";
    std::size_t column = 0;
    std::size_t rows = 1;
    for (const char character : text) {
        if (character == '/') {
            if (column != files) {
                return false;
            }
            column = 0;
            ++rows;
        } else if (character >= '1' && character <= '8') {
            column += static_cast<std::size_t>(character - '0');
        } else if (men.find(character) != std::string_view::npos) {
            ++column;
        } else {
            return false;
        }
    }
    return rows == ranks && column == files;
}

/// One king each, not side by side; men that a table can have; pawns where pawns stand.
bool has_legal_shape(std::string_view board, const Table& table) {
    constexpr std::int32_t most_men = 5;
    constexpr Bitboard outer_ranks = 0xff000000000000ff;
    const auto has_one = [&](char king) {
        const std::size_t at = board.find(king);
        return at != std::string_view::npos && board.find(king, at + 1) == std::string_view::npos;
    };
    return has_one('K') && has_one('k') && table.Kol_figur <= most_men &&
           ((table.WPawns | table.BPawns) & outer_ranks) == 0 &&
           (king_attacks[at_square(table.xywK)] & mask_of(table.xybK)) == 0;
}

/// The position of a line's first two fields; empty if they are none. Who gives check is not
/// looked at: a table has numbers for positions that no game reaches, too.
std::optional<Table> read_position(const std::string& line) {
    std::istringstream in(line);
    std::string board;
    std::string side;
    in >> board >> side;
    if (!is_board_field(board) || (side != "w" && side != "b")) {
        return std::nullopt;
    }
    Table table;
    clear_position(table);
    read_fen_board(board, table, FenView::as_written);
    table.side = side == "w" ? white : black;
    if (!has_legal_shape(board, table)) {
        return std::nullopt;
    }
    return table;
}

/// The stored byte; empty without a table, without its file, or beyond the end of it.
std::optional<std::int8_t> stored_byte(const Table& position) {
    const TbAddress address = tb_address(position);
    if (address.tb_key == 0) {
        return std::nullopt;
    }
    const TbEntry& row = TbCatalogue[static_cast<std::size_t>(address.row)];
    const auto half = static_cast<std::size_t>(address.tb_half);
    const std::uint32_t index = tb_index_of(position, address);
    if (row.path[half] == nullptr || index >= row.size[half]) {
        return std::nullopt;
    }
    const std::int8_t value = TbProbeRaw(address.row, address.tb_half, index);
    return value == tb_no_value ? std::nullopt : std::optional(value);
}

std::string answer(const std::string& line) {
    const std::optional<Table> position = read_position(line);
    if (!position) {
        return "bad";
    }
    const std::optional<std::int8_t> value = stored_byte(*position);
    return value ? std::to_string(*value) : "none";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 || std::string_view(argv[1]).starts_with('-')) {
        std::cerr
            << "usage: tb_value DIR[,DIR...]   the stored byte of each FEN line of the input\n";
        return wrong_arguments;
    }
    log_enabled = false;
    exchange_output(&std::cerr);  // standard output holds nothing but answers
    tb_start_tables(argv[1], cache_megabytes);
    std::string line;
    while (std::getline(std::cin, line)) {
        std::cout << answer(line) << std::endl;
    }
    tb_stop_tables();
    return 0;
}
