// SPDX-License-Identifier: MIT
// The recursion. It tests legality by a shortcut that the search does not use: out of check only a
// man that leaves a line through its king can expose it, and in check only a man that lands on a
// line or a knight's step from the king can help.
#include "board/perft.h"

#include "board/attack.h"
#include "board/generate.h"
#include "board/geometry.h"
#include "board/make.h"
#include "board/move_list.h"
#include "board/search_line.h"
#include "board/side_traits.h"
#include "platform/clock.h"
#include "shell/log.h"

namespace {

constexpr std::int32_t mate_base = 600000;

/// Whether the move just made leaves the mover's king safe. Intended(perft-en-passant-line): an en
/// passant capture that opens a line through the captured pawn's square alone is not seen and is
/// counted as legal.
bool is_legal(const Table& table, const Move& move, bool attacked) {
    const PieceCode mover = table.at(move.posTo);
    const bool king_moved = mover == w_king || mover == b_king;
    const Square king = table.side == white ? table.xywK : table.xybK;
    if (attacked) {
        if (!king_moved && !on_line_or_knight(move.posTo, king)) {
            return false;
        }
        return !in_check(table, table.side);
    }
    if (king_moved) {
        return !in_check(table, table.side);
    }
    return !on_line_or_knight(move.posFrom, king) || !line_check(table, table.side, move.posFrom);
}

void generate_moves(const Table& table, MoveList& list, bool attacked) {
    cur_moves = &list;
    if (attacked) {
        gen_evasions(table, table.side);
    } else {
        gen_all(table, table.side);
    }
}

}  // namespace

std::int32_t perft(Table& table, std::int32_t depth, std::int32_t alpha, std::int32_t beta) {
    if (depth <= 0) {
        ++TotalNodes;
        return 1;
    }
    const bool attacked = in_check(table, table.side);
    MoveList list;
    generate_moves(table, list, attacked);
    std::int32_t legal = 0;
    while (list.count > 0) {
        const Move move = list.move(1);
        UndoRecord undo;
        make(table, move.posFrom, move.posTo, move.posInfo, undo);
        list.move(1) = list.move(list.count);  // perft has no use for the scores
        --list.count;
        if (is_legal(table, move, attacked)) {
            ++ply;
            ++legal;
            table.side ^= 1;
            perft(table, depth - 1, -beta, -alpha);
            --ply;
            unmake(table, undo);
            table.side ^= 1;
        } else {
            unmake(table, undo);
        }
    }
    if (legal == 0) {
        return attacked ? ply - mate_base : 0;
    }
    return alpha;
}

void perft_depths(Table& table, std::int32_t deepest) {
    std::uint64_t total = 0;
    const std::uint32_t start = GetTickCount();
    for (std::int32_t depth = 1; depth <= deepest; ++depth) {
        TotalNodes = 0;
        perft(table, depth, perft_alpha, perft_beta);
        total += TotalNodes;
        const std::uint32_t elapsed = GetTickCount() - start;
        mirror(depth, " ", TotalNodes, "  ", total, "  time: ", elapsed);
        if (elapsed != 0) {
            mirror(" speed ", TotalNodes / elapsed);
        }
        mirror(end_line);
    }
}
