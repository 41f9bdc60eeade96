// SPDX-License-Identifier: MIT
// make and make_plain are two instances of one body: with a record and without.
#include "board/make.h"

#include "board/make_steps.h"

namespace {

/// Whether the pawn itself arrives on `to`. With a record the kind of move decides, without one the
/// rank. They differ only for a pawn that reaches the last rank without a proper piece: with a
/// record it stands there as a pawn, without one it vanishes.
template <Side S, bool Recorded>
bool pawn_arrives(Square to, [[maybe_unused]] const UndoRecord* undo) {
    if constexpr (Recorded) {
        return undo->undo_kind < undo_promotion;
    } else {
        return !SideTraits<S>::on_last_rank(to);
    }
}

template <Side S, bool Recorded>
void promote(Table& table, Square from, Square to, PieceCode info,
             [[maybe_unused]] UndoRecord* undo) {
    if ((info & SideTraits<S>::colour_bit) == 0) {
        report_wrong_promotion(table, S, from, to, info);
        return;
    }
    const bool known = put_promoted<S>(table, to, info);
    if constexpr (Recorded) {
        undo->undo_kind = undo->undo_kind == undo_capture ? undo_capture_promotion : undo_promotion;
        if (known) {
            undo->promoted = info;
        }
    }
    if (!known) {
        report_unknown_promotion(info);
    }
}

/// The pawn beside the arrival square is taken; it is known by the diagonal step to an empty
/// square, not by `ep_flag`.
template <Side S, bool Recorded>
void take_en_passant(Table& table, Square to, [[maybe_unused]] UndoRecord* undo) {
    using Own = SideTraits<S>;
    using Enemy = SideTraits<Own::enemy>;
    const Square taken = to - Own::forward;
    table.capture_flag = 1;
    if constexpr (Recorded) {
        undo->en_passant = 1;
        undo->undo_kind = undo_capture;
        undo->captured = Enemy::pawn;
    }
    lift_pawn<Enemy::self>(table, taken);
    table.at(taken) = empty_square;
    --table.Kol_figur;
}

template <Side S, bool Recorded>
void move_pawn(Table& table, Square from, Square to, PieceCode info, UndoRecord* undo) {
    using Own = SideTraits<S>;
    lift_pawn<S>(table, from);
    if (!Own::on_last_rank(to)) [[likely]] {
        toggle_pawn_keys<S>(table, to);
        table.*Own::pawns |= mask_of(to);
    } else {
        promote<S, Recorded>(table, from, to, info, undo);
    }
    const Square step = to - from;
    if (step == 2 * Own::forward) {
        table.ep_flag = 1;
        table.ep_square = to;
    }
    if ((step == Own::first_capture || step == Own::second_capture) &&
        table.at(to) == empty_square) {
        take_en_passant<S, Recorded>(table, to, undo);
    }
    if (pawn_arrives<S, Recorded>(to, undo)) {
        table.at(to) = table.at(from);
    }
    table.at(from) = empty_square;
}

template <Side S, bool Recorded>
void move_king_recorded(Table& table, Square from, Square to, [[maybe_unused]] UndoRecord* undo) {
    if constexpr (Recorded) {
        undo->undo_kind = move_king<S>(table, from, to, undo->undo_kind);
    } else {
        static_cast<void>(move_king<S>(table, from, to, undo_plain));
    }
}

void save_before(const Table& table, Square from, Square to, UndoRecord& undo) {
    undo.en_passant = 0;
    undo.hash_lock = table.hash_lock;
    undo.hash_index = table.hash_index;
    undo.pawn_hash = table.pawn_hash;
    undo.castling = table.castling;
    undo.posFrom = from;
    undo.posTo = to;
    undo.ep_flag = table.ep_flag;
    undo.ep_square = table.ep_square;
    undo.undo_kind = undo_plain;
    undo.capture_flag = table.capture_flag;
    undo.promoted = off_board;
    undo.captured = off_board;
}

template <bool Recorded>
void play(Table& table, Square from, Square to, PieceCode info, UndoRecord* undo) {
    if constexpr (Recorded) {
        save_before(table, from, to, *undo);
    }
    table.capture_flag = 0;
    const PieceCode target = table.at(to);
    if (target != empty_square) {
        table.capture_flag = 1;
        --table.Kol_figur;
        if constexpr (Recorded) {
            undo->undo_kind = undo_capture;
            undo->captured = target;
        }
        lift_captured(table, target, to);  // the mailbox entry is overwritten by the mover below
    }
    table.ep_flag = 0;  // ep_square keeps its old value
    switch (table.at(from)) {
        case w_pawn: move_pawn<white, Recorded>(table, from, to, info, undo); break;
        case w_knight: move_officer<w_knight>(table, from, to); break;
        case w_bishop: move_officer<w_bishop>(table, from, to); break;
        case w_rook: move_rook<white>(table, from, to); break;
        case w_queen: move_officer<w_queen>(table, from, to); break;
        case w_king: move_king_recorded<white, Recorded>(table, from, to, undo); break;
        case b_pawn: move_pawn<black, Recorded>(table, from, to, info, undo); break;
        case b_knight: move_officer<b_knight>(table, from, to); break;
        case b_bishop: move_officer<b_bishop>(table, from, to); break;
        case b_rook: move_rook<black>(table, from, to); break;
        case b_queen: move_officer<b_queen>(table, from, to); break;
        case b_king: move_king_recorded<black, Recorded>(table, from, to, undo); break;
        default: break;  // no man: the capture is already done
    }
}

}  // namespace

void make(Table& table, Square from, Square to, PieceCode info, UndoRecord& undo) {
    play<true>(table, from, to, info, &undo);
}

void make_plain(Table& table, Square from, Square to, PieceCode info) {
    play<false>(table, from, to, info, nullptr);
}
