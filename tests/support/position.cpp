// SPDX-License-Identifier: MIT
// FEN both ways and the mirror.
#include "support/position.h"

#include <sstream>

#include "board/position_keys.h"
#include "board/set_up.h"
#include "board/side_traits.h"
#include "board/square_tables.h"
#include "shell/fen_board.h"
#include "shell/position_text.h"

namespace {

constexpr std::string_view letters = "PNBRQKpnbrqk";
constexpr std::array<PieceCode, 12> codes = {w_pawn, w_knight, w_bishop, w_rook, w_queen, w_king,
                                             b_pawn, b_knight, b_bishop, b_rook, b_queen, b_king};

char letter_of(PieceCode code) {
    for (std::size_t i = 0; i < codes.size(); ++i) {
        if (codes[i] == code) {
            return letters[i];
        }
    }
    return '?';
}

PieceCode other_colour(PieceCode code) {
    for (std::size_t i = 0; i < codes.size(); ++i) {
        if (codes[i] == code) {
            return codes[(i + codes.size() / 2) % codes.size()];
        }
    }
    return code;
}

Square turned_over(Square square) {
    constexpr Square rows_sum = 11;
    return 10 * (rows_sum - square / 10) + square % 10;
}

}  // namespace

Table position_from_fen(std::string_view fen) {
    std::istringstream in{std::string(fen)};
    std::string board;
    std::string side;
    std::string rights;
    std::string en_passant;
    in >> board >> side >> rights >> en_passant;
    Table table;
    clear_position(table);
    read_fen_board(board, table, FenView::as_written);
    table.side = side == "b" ? black : white;
    for (const char right : rights) {
        table.castling |= right == 'K'   ? right_white_short
                          : right == 'Q' ? right_white_long
                          : right == 'k' ? right_black_short
                          : right == 'q' ? right_black_long
                                         : 0;
    }
    if (const Square skipped = square_of_text(en_passant); skipped != 0) {
        table.ep_flag = 1;
        table.ep_square = skipped + (table.side == white ? 10 : -10);
    }
    compute_keys(table);
    return table;
}

Table start_position() {
    Table table;
    set_start_position(table);
    compute_keys(table);
    return table;
}

Table mirrored(const Table& table) {
    Table mirror;
    clear_position(mirror);
    for (const Square square : square_of_bit) {
        const PieceCode code = table.at(square);
        if (code == empty_square) {
            continue;
        }
        const PieceCode other = other_colour(code);
        const Square to = turned_over(square);
        mirror.at(to) = other;
        if (const auto bitboard = bitboard_of(other); bitboard != nullptr) {
            mirror.*bitboard |= mask_of(to);
        }
    }
    mirror.Kol_figur = table.Kol_figur;
    mirror.castling = ((table.castling & 3) << 2) | ((table.castling >> 2) & 3);
    mirror.xywK = turned_over(table.xybK);
    mirror.xybK = turned_over(table.xywK);
    mirror.ep_flag = table.ep_flag;
    mirror.ep_square = table.ep_flag != 0 ? turned_over(table.ep_square) : 0;
    mirror.side = table.side ^ 1;
    mirror.capture_flag = table.capture_flag;
    compute_keys(mirror);
    return mirror;
}

std::string fen_of(const Table& table) {
    std::string text;
    for (std::size_t bit = 0; bit < square_of_bit.size(); ++bit) {
        if (bit != 0 && bit % 8 == 0) {
            text += '/';
        }
        const PieceCode code = table.at(square_of_bit[bit]);
        if (code != empty_square) {
            text += letter_of(code);
        } else if (!text.empty() && text.back() >= '1' && text.back() <= '7') {
            ++text.back();
        } else {
            text += '1';
        }
    }
    text += table.side == white ? " w " : " b ";
    std::string rights;
    rights += (table.castling & right_white_short) != 0 ? "K" : "";
    rights += (table.castling & right_white_long) != 0 ? "Q" : "";
    rights += (table.castling & right_black_short) != 0 ? "k" : "";
    rights += (table.castling & right_black_long) != 0 ? "q" : "";
    text += rights.empty() ? "-" : rights;
    text += ' ';
    if (table.ep_flag != 0) {
        text += square_names[at_square(table.ep_square + (table.side == white ? -10 : 10))];
    } else {
        text += '-';
    }
    return text;
}

std::string move_text(Square from, Square to, PieceCode info) {
    std::string text;
    text += square_names[at_square(from)];
    text += square_names[at_square(to)];
    if (info != 0) {
        text += static_cast<char>(letter_of(info) | 0x20);
    }
    return text;
}
