// SPDX-License-Identifier: MIT
// The legal moves, by trying each on a copy of the position.
#include "board/attack.h"
#include "board/generate.h"
#include "board/make.h"
#include "board/move_list.h"

void gen_legal(const Table& table, Side side) {
    gen_all(table, side);
    MoveList& list = *cur_moves;
    std::int32_t slot = 1;
    while (slot <= list.count) {
        const Move move = list.move(slot);
        Table copy = table;
        make_plain(copy, move.posFrom, move.posTo, move.posInfo);
        if (in_check(copy, copy.side)) {
            // Intended(legal-scan-restarts): moves that have passed are tried again and pass again.
            // The list is the same as without; what trying them reports is printed once more.
            list.take_out(slot);
            slot = 1;
        } else {
            ++slot;
        }
    }
}
