// SPDX-License-Identifier: MIT
// Captures and promotions, for the quiescence search: men in the order of gen_all. The enemy king's
// square is among the targets.
#include "board/generate_steps.h"

namespace {

template <Side S>
void captures_of(const Table& table) {
    const Bitboard enemy_men = men_of<SideTraits<S>::enemy>(table);
    put_queens<S, Wanted::captures>(table);
    put_rooks<S, Wanted::captures>(table);
    put_knights<S>(table, enemy_men);
    put_bishops<S, Wanted::captures>(table);
    put_pawns<S, Wanted::captures>(table);
    put_king<S>(table, enemy_men);
}

}  // namespace

void gen_captures(const Table& table, Side side) {
    cur_moves->count = 0;
    if (side == white) {
        captures_of<white>(table);
    } else {
        captures_of<black>(table);
    }
}
