// SPDX-License-Identifier: MIT
// The legal moves of positions, for a comparison with another program. It reads lines:
//   position FEN    sets a position up; "position startpos" the start of a game
//   move e2e4       plays a legal move
// and answers each with the legal moves in one line, sorted. A move that is not legal, or a line
// that is neither, ends the program with status 1.
#include <algorithm>
#include <iostream>
#include <string>

#include "support/generated.h"
#include "support/position.h"

namespace {

bool play(Table& table, const std::string& text) {
    for (const Move& move : generated(gen_legal, table)) {
        if (move_text(move.posFrom, move.posTo, move.posInfo) == text) {
            make_plain(table, move.posFrom, move.posTo, move.posInfo);
            table.side ^= 1;
            return true;
        }
    }
    return false;
}

bool obey(Table& table, const std::string& line) {
    const std::size_t blank = std::min(line.find(' '), line.size() - 1);
    const std::string word = line.substr(0, blank);
    const std::string rest = line.substr(blank + 1);
    if (word == "position") {
        table = rest == "startpos" ? start_position() : position_from_fen(rest);
        return true;
    }
    return word == "move" && play(table, rest);
}

void print_legal_moves(const Table& table) {
    std::vector<std::string> moves;
    for (const Move& move : generated(gen_legal, table)) {
        moves.push_back(move_text(move.posFrom, move.posTo, move.posInfo));
    }
    std::sort(moves.begin(), moves.end());
    for (const std::string& move : moves) {
        std::cout << move << ' ';
    }
    std::cout << std::endl;
}

}  // namespace

int main() {
    Table table = start_position();
    for (std::string line; std::getline(std::cin, line);) {
        if (line.empty() || !obey(table, line)) {
            std::cerr << "legal_moves_of: cannot do: " << line << '\n';
            return 1;
        }
        print_legal_moves(table);
    }
    return 0;
}
