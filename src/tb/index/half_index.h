// SPDX-License-Identifier: MIT
// The place of a position in a half, worked out by the half's plan.
#pragma once

#include <array>
#include <cstdint>

#include "tb/index/half_plan.h"

/// Squares of all men in the order of the table's name, kings included; 0 behind the last.
using TbMenSquares = std::array<std::uint32_t, tb_places>;

/// Place of a position; parameters as for TbIndexFunction. The tables of the enumeration have to be
/// built. Boards that lack a man, or that the numbering leaves out, give some number.
[[nodiscard]] std::uint32_t tb_half_index(const TbHalfPlan& plan, TbBoard& first, TbBoard& second,
                                          std::uint32_t ep, std::uint32_t flip);

/// The same for men by squares, those of one kind in any order.
[[nodiscard]] std::uint32_t tb_squares_index(const TbHalfPlan& plan, TbMenSquares squares,
                                             std::uint32_t ep, std::uint32_t flip);

/// How many numbers a half has. Its file may be a few bytes shorter: it ends at the last position
/// that exists. The tables of the enumeration have to be built.
[[nodiscard]] std::uint32_t tb_half_positions(const TbHalfPlan& plan);
