// SPDX-License-Identifier: MIT
// All pseudo-legal moves: queens, rooks, knights, bishops, pawns, king, castling.
#include "board/attack.h"
#include "board/generate_steps.h"

Square gen_from = 0;

void add_move(Square to) {
    put_move(to, 0);
}

namespace {

/// The tests in the order in which they fail most cheaply. The corner must hold an own rook: a
/// right outlives the capture of its rook and serves another rook that arrives there.
template <Side S>
void put_castling(const Table& table) {
    using Own = SideTraits<S>;
    constexpr Square home = Own::king_home;
    const auto empty = [&](Square square) { return table.at(square) == empty_square; };
    const auto safe = [&](Square square) { return !square_attacked(table, square, S); };

    if ((table.castling & Own::short_right) != 0 && empty(home + 1) && empty(home + 2) &&
        table.at(Own::short_rook_home) == Own::rook && !in_check(table, S) && safe(home + 1) &&
        safe(home + 2)) {
        put_move(home + 2, 0);
    }
    if ((table.castling & Own::long_right) != 0 && empty(home - 1) && empty(home - 2) &&
        empty(home - 3) && table.at(Own::long_rook_home) == Own::rook && !in_check(table, S) &&
        safe(home - 1) && safe(home - 2)) {
        put_move(home - 2, 0);
    }
}

template <Side S>
void all_moves_of(const Table& table) {
    const Bitboard not_own = ~men_of<S>(table);
    put_queens<S, Wanted::all>(table);
    put_rooks<S, Wanted::all>(table);
    put_knights<S>(table, not_own);
    put_bishops<S, Wanted::all>(table);
    put_pawns<S, Wanted::all>(table);
    put_king<S>(table, not_own);
    if (gen_from == SideTraits<S>::king_home) {
        put_castling<S>(table);
    }
}

}  // namespace

void gen_all(const Table& table, Side side) {
    cur_moves->count = 0;
    if (side == white) {
        all_moves_of<white>(table);
    } else {
        all_moves_of<black>(table);
    }
}
