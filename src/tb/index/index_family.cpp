// SPDX-License-Identifier: MIT
// All plans, for those who walk over the tables: reports, tools and tests.
#include "tb/index/index_family.h"

namespace {

using RowPlans = std::array<TbHalfPlan, tb_halves>;

constexpr std::array<RowPlans, tb_rows> make_plans() {
    std::array<RowPlans, tb_rows> plans{};
    for (std::size_t row = 1; row < tb_rows; ++row) {
        plans[row] = {tb_half_plan(tb_names[row], 0), tb_half_plan(tb_names[row], 1)};
    }
    return plans;
}

constexpr std::array<RowPlans, tb_rows> all_plans = make_plans();

}  // namespace

const TbHalfPlan& tb_plan_of(std::int32_t row, std::int32_t half) {
    return all_plans[static_cast<std::size_t>(row)][static_cast<std::size_t>(half)];
}
