// SPDX-License-Identifier: MIT
// The index function of each half of each table. They differ only in the plan that the compiler
// makes of the table's name.
#pragma once

#include <array>

#include "tb/index/half_index.h"
#include "tb/table_names.h"

/// The numbering of a half. Row: 1 to 145.
template <std::size_t Row, std::int32_t Half>
inline constexpr TbHalfPlan tb_plan = tb_half_plan(tb_names[Row], Half);

/// The index function of a half; parameters as for TbIndexFunction.
template <std::size_t Row, std::int32_t Half>
std::uint32_t tb_index(TbBoard& first, TbBoard& second, std::uint32_t ep, std::uint32_t flip) {
    return tb_half_index(tb_plan<Row, Half>, first, second, ep, flip);
}

/// Both index functions of a row; row 0 has none.
template <std::size_t Row>
[[nodiscard]] constexpr std::array<TbIndexFunction, tb_halves> tb_index_functions() {
    if constexpr (Row == 0) {
        return {};
    } else {
        return {tb_index<Row, 0>, tb_index<Row, 1>};
    }
}

/// The plan of a half, found at run time. Row: 1 to 145.
[[nodiscard]] const TbHalfPlan& tb_plan_of(std::int32_t row, std::int32_t half);
