// SPDX-License-Identifier: MIT
// Moves of a side in check. A move that ends on a square with no line and no knight's step to the
// own king cannot block the check or capture the checker, so it is not generated; knights, the king
// and en passant captures are not filtered.
#include "board/generate_steps.h"

namespace {

/// Intended(evasion-king-before-knights): Black's king is generated before its knights, White's
/// after. List order settles ties between equal scores.
template <Side S>
constexpr bool king_before_knights = S == black;

template <Side S>
void evasions_of(const Table& table) {
    const Bitboard not_own = ~men_of<S>(table);
    put_queens<S, Wanted::evasions>(table);
    put_rooks<S, Wanted::evasions>(table);
    put_bishops<S, Wanted::evasions>(table);
    put_pawns<S, Wanted::evasions>(table);
    if constexpr (king_before_knights<S>) {
        put_king<S>(table, not_own);
        put_knights<S>(table, not_own);
    } else {
        put_knights<S>(table, not_own);
        put_king<S>(table, not_own);
    }
}

}  // namespace

void gen_evasions(const Table& table, Side side) {
    cur_moves->count = 0;
    if (side == white) {
        evasions_of<white>(table);
    } else {
        evasions_of<black>(table);
    }
}
