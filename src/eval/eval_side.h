// SPDX-License-Identifier: MIT
// What differs between the colours in the evaluation, beside the board's own traits: the tables of
// each side, and the sides' fields of a pawn entry. A term is written once and added with `sign`.
#pragma once

#include "board/side_traits.h"
#include "eval/eval_tables.h"
#include "eval/pawn_structure.h"

template <Side S>
struct EvalSide;

template <>
struct EvalSide<white> : SideTraits<white> {
    static constexpr const MailboxTable& pst_pawn = pst_WPawns;
    static constexpr const MailboxTable& pst_knight = pst_WKnight;
    static constexpr const MailboxTable& pst_bishop = pst_WBishop;
    static constexpr const MailboxTable& pst_rook = pst_WRook;
    static constexpr const MailboxTable& pst_queen = pst_WQuins;
    static constexpr const MailboxTable& pst_king = pst_WKing;
    static constexpr const MailboxTable& pst_king_half = pst_WKing_half;
    static constexpr const MailboxTable& outpost = outpost_white;
    static constexpr FileCounts PawnEntry::*count = &PawnEntry::w_count;
    static constexpr FileCounts PawnEntry::*rear = &PawnEntry::w_rear;

    /// Steps from `row` towards the last rank, counted from the own first rank: 7 on the last.
    static constexpr std::int32_t advance(std::int32_t row) { return 7 - row; }
};

template <>
struct EvalSide<black> : SideTraits<black> {
    static constexpr const MailboxTable& pst_pawn = pst_BPawns;
    static constexpr const MailboxTable& pst_knight = pst_BKnight;
    static constexpr const MailboxTable& pst_bishop = pst_BBishop;
    static constexpr const MailboxTable& pst_rook = pst_BRook;
    static constexpr const MailboxTable& pst_queen = pst_BQuins;
    static constexpr const MailboxTable& pst_king = pst_BKing;
    static constexpr const MailboxTable& pst_king_half = pst_BKing_half;
    static constexpr const MailboxTable& outpost = outpost_black;
    static constexpr FileCounts PawnEntry::*count = &PawnEntry::b_count;
    static constexpr FileCounts PawnEntry::*rear = &PawnEntry::b_rear;

    static constexpr std::int32_t advance(std::int32_t row) { return row; }
};
