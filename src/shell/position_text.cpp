// SPDX-License-Identifier: MIT
// Texts are mirrored in the fragments in which they are made.
#include "shell/position_text.h"

#include <algorithm>
#include <string>

#include "board/move_list.h"
#include "board/side_traits.h"
#include "board/square_tables.h"
#include "shell/log.h"

// clang-format off
constinit const Mailbox<std::string_view> square_names = {
    "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ",
    "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ",
    "  ", "a8", "b8", "c8", "d8", "e8", "f8", "g8", "h8", "  ",
    "  ", "a7", "b7", "c7", "d7", "e7", "f7", "g7", "h7", "  ",
    "  ", "a6", "b6", "c6", "d6", "e6", "f6", "g6", "h6", "  ",
    "  ", "a5", "b5", "c5", "d5", "e5", "f5", "g5", "h5", "  ",
    "  ", "a4", "b4", "c4", "d4", "e4", "f4", "g4", "h4", "  ",
    "  ", "a3", "b3", "c3", "d3", "e3", "f3", "g3", "h3", "  ",
    "  ", "a2", "b2", "c2", "d2", "e2", "f2", "g2", "h2", "  ",
    "  ", "a1", "b1", "c1", "d1", "e1", "f1", "g1", "h1", "  ",
    "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ",
    "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ", "  ",
};
// clang-format on

namespace {

/// The letter of a promotion by a side, or nothing: the code must be one of the side's own and the
/// squares those of its seventh and last rank.
template <Side S>
std::string_view promotion_letter(Square from, Square to, PieceCode info) {
    using Own = SideTraits<S>;
    const bool promotes = file_of[at_square(from)] % 9 != 0 && file_of[at_square(to)] % 9 != 0 &&
                          row_of[at_square(from)] == Own::seventh_row &&
                          row_of[at_square(to)] == Own::last_row;
    if (!promotes) {
        return {};
    }
    switch (info) {
        case Own::queen: return "q";
        case Own::rook: return "r";
        case Own::bishop: return "b";
        case Own::knight: return "n";
        default: return {};
    }
}

/// The letter of a man in the dump; 0 for what is no man.
char man_letter(PieceCode code) {
    switch (code) {
        case w_pawn: return 'P';
        case w_knight: return 'N';
        case w_bishop: return 'B';
        case w_rook: return 'R';
        case w_queen: return 'Q';
        case w_king: return 'K';
        case b_pawn: return 'p';
        case b_knight: return 'n';
        case b_bishop: return 'b';
        case b_rook: return 'r';
        case b_queen: return 'q';
        case b_king: return 'k';
        case empty_square: return '.';
        default: return 0;
    }
}

void dump_bitboard(std::string_view label, Bitboard word) {
    mirror(label);
    print_bitboard(word);
    mirror(end_line);
}

}  // namespace

Square square_of_text(std::string_view text) {
    const auto found = std::find(square_names.begin(), square_names.end(), text);
    return found == square_names.end() ? 0 : static_cast<Square>(found - square_names.begin());
}

bool is_on_file(Square square, char letter) {
    return square_names[at_square(square)].front() == letter;
}

bool is_on_rank(Square square, char digit) {
    return square_names[at_square(square)].back() == digit;
}

void print_move(Square from, Square to, PieceCode info) {
    mirror(square_names[at_square(from)], square_names[at_square(to)]);
    mirror(promotion_letter<white>(from, to, info), promotion_letter<black>(from, to, info), " ");
}

void print_moves(const MoveList& list) {
    constexpr std::int32_t moves_a_line = 7;
    for (std::int32_t i = 1; i <= list.count; ++i) {
        const Move& move = list.move(i);
        mirror(i, ". ");
        print_move(move.posFrom, move.posTo, move.posInfo);
        mirror(" ");
        if (i % moves_a_line == 0) {
            mirror(end_line);
        }
    }
    mirror(end_line, "All ", list.count, " moves", end_line);
}

void dump_position(const Table& table) {
    constexpr std::int32_t cells_a_line = 8;
    mirror(end_line);
    std::int32_t cells = 0;
    // By what an entry holds, not by its index: a man written off the board shows up too.
    for (const PieceCode code : table.Array) {
        const char letter = man_letter(code);
        if (letter == 0) {
            continue;
        }
        mirror(std::string{letter, ' '});
        if (++cells % cells_a_line == 0) {
            mirror(end_line);
        }
    }
    dump_bitboard("WPawns: ", table.WPawns);
    dump_bitboard("WKnight: ", table.WKnight);
    dump_bitboard("WBishop: ", table.WBishop);
    dump_bitboard("WRook: ", table.WRook);
    dump_bitboard("WQuins: ", table.WQuins);
    dump_bitboard("BPawns: ", table.BPawns);
    dump_bitboard("BKnight: ", table.BKnight);
    dump_bitboard("BBishop: ", table.BBishop);
    dump_bitboard("BRook: ", table.BRook);
    dump_bitboard("BQuins: ", table.BQuins);
    mirror("xywK= ", table.xywK, end_line);
    mirror("xybK= ", table.xybK, end_line);
    mirror("Kol_figur  is  ", table.Kol_figur, end_line);
}

void print_bitboard(Bitboard word) {
    std::string digits;
    for (std::size_t bit = 0; bit < square_of_bit.size(); ++bit) {
        digits.push_back((word >> bit & 1) != 0 ? '1' : '0');
    }
    mirror(digits);
}
