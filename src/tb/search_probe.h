// SPDX-License-Identifier: MIT
// The seam between the search and the tables: whether a node can be answered from a table, and the
// score that a stored byte stands for.
#pragma once

#include <cstdint>
#include <optional>

#include "board/table.h"
#include "tb/key_tree.h"
#include "tb/register.h"

/// The men of the position that was asked for last; kings do not count.
extern TbCounts tb_counts;

/// Fills `tb_counts` from the board.
void TbCountMen(const Table& table);

/// The stored byte as a score, view of the side to move, on a scale of its own around 32640: 0 a
/// draw, 32640 + v a win, v - 32640 a loss, nearer to 32767 or -32767 the sooner the mate. What
/// cannot be read gives 32767. Row: 1 to 145; a half with no file gives what is left of it.
[[nodiscard]] std::int32_t TbProbe(std::int32_t id, std::int32_t half, std::uint32_t index);

/// The cheap part of the node's test: there are tables, and few enough men.
[[nodiscard]] inline bool tb_may_answer(const Table& position) {
    constexpr std::int32_t too_many_men = 6;
    return tb_max_men >= 1 && position.Kol_figur < too_many_men;
}

/// Which half of which table a position belongs to.
struct TbAddress {
    std::int32_t tb_key = 0;    ///< +row or -row, as from TbLookupKey; 0: no table
    std::int32_t row = 0;       ///< 1 to 145
    std::int32_t tb_half = 0;   ///< 0: the side named first is to move
    std::uint32_t tb_flip = 0;  ///< 1: the side named first is Black
};

/// The address of a position by its men and its side to move, whether there are files or not.
[[nodiscard]] TbAddress tb_address(const Table& position);

/// The place of a position's byte in the half of its address, whose row is not 0.
[[nodiscard]] std::uint32_t tb_index_of(const Table& position, const TbAddress& address);

/// The score of the position, view of `side`, as TbProbe gives it; empty if there is no table for
/// the men or no file for the side to move. A capture en passant that is possible is not seen.
[[nodiscard]] std::optional<std::int32_t> tb_answer(const Table& position);
