// SPDX-License-Identifier: MIT
// Move ordering: one number a move, lower meaning earlier. The hash move, the previous line,
// captures by attacker and victim, then history; no killer moves and no exchange evaluation.
#pragma once

#include <array>

#include "board/move_list.h"
#include "board/table.h"

using HistoryTable = std::array<Mailbox<std::int32_t>, mailbox_size>;

/// How much a move raised alpha, by its two squares; starts at 0.
extern HistoryTable history_good;

/// Falls when a move cuts; 1000000 means that it never has.
extern HistoryTable history_cut;

inline constexpr std::int32_t history_never_cut = 1000000;
inline constexpr std::int32_t hash_move_score = -10000000;
inline constexpr std::int32_t old_line_score = -100000;

/// Both tables at their start values.
void history_reset();

/// Adds to a move's record of raising alpha.
void history_raise(const Move& move, std::int32_t by);

/// Takes from a move's record of cuts.
void history_lower_cut(const Move& move, std::int32_t by);

/// Scores the moves of a list.
void score_moves(const Table& position, MoveList& list);

/// The same for a node with a hash move: it comes first, and every capture goes by the table of
/// captures. `info` is the entry's byte, sign-extended: a promotion's code does not survive it, so
/// a promotion is never found.
void score_moves_hash(const Table& position, MoveList& list, Square from, Square to,
                      PieceCode info);
