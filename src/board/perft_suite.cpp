// SPDX-License-Identifier: MIT
// Times and speeds are measured from the start of a line, not of a depth.
#include "board/perft_suite.h"

#include "board/perft.h"
#include "board/set_up.h"
#include "platform/text_file.h"
#include "shell/fen_board.h"
#include "shell/log.h"

namespace {

constexpr std::int32_t deepest = 6;
constexpr std::size_t shortest_line = 7;

/// A character behind the board field: side and castling rights.
void take_state(Table& table, char character) {
    switch (character) {
        case 'w': table.side = white; break;
        case 'b': table.side = black; break;
        case 'K': table.castling |= right_white_short; break;
        case 'Q': table.castling |= right_white_long; break;
        case 'k': table.castling |= right_black_short; break;
        case 'q': table.castling |= right_black_long; break;
        default: break;
    }
}

}  // namespace

Table perft_position(std::string_view line) {
    const std::string_view fields = line.substr(0, line.find('-'));
    const std::size_t blank = fields.find(' ');
    Table table;
    clear_position(table);
    read_fen_board(fields, table, FenView::as_written);
    table.Kol_figur = 0;
    if (blank != std::string_view::npos) {
        for (const char character : fields.substr(blank)) {
            take_state(table, character);
        }
    }
    return table;
}

void perft_line(const std::string& line, std::int32_t /*flag*/) {
    mirror(line, end_line);
    Table table = perft_position(line);
    perft_depths(table, deepest);
    mirror(" ", end_line);
}

void perft_test(const std::string& file_name, std::int32_t flag) {
    mirror("PerftTest: ", file_name, end_line);
    TextFile file(file_name);
    if (!file.is_open()) {
        mirror("Sory! I cannot find or access to perfttest (", file_name, ") ", end_line);
        return;
    }
    std::string line;
    while (file.next_line(line)) {
        if (line.size() >= shortest_line) {
            perft_line(line, flag);
        }
    }
    mirror("Perft -  done", end_line);
}
