// SPDX-License-Identifier: MIT
// Captures take a man away and promotions a pawn, so that no table depends on itself.
#include "tbgen/work_order.h"

#include <algorithm>
#include <string_view>

#include "tb/table_names.h"
#include "tbgen/endgame.h"

namespace {

void add_with_needs(std::int32_t row, std::vector<std::int32_t>& order) {
    if (std::find(order.begin(), order.end(), row) != order.end()) {
        return;
    }
    for (const std::int32_t needed : rows_needed_by(row)) {
        add_with_needs(needed, order);
    }
    order.push_back(row);
}

/// Whether make takes a name as it stands.
bool is_plain_name(std::string_view name) {
    constexpr std::string_view marks = "/._-+@,";
    return std::all_of(name.begin(), name.end(), [&](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
               marks.find(c) != std::string_view::npos;
    });
}

std::string name_of(std::int32_t row) {
    return std::string(tb_names[static_cast<std::size_t>(row)]);
}

}  // namespace

std::vector<std::int32_t> in_working_order(const std::vector<std::int32_t>& rows) {
    std::vector<std::int32_t> order;
    for (const std::int32_t row : rows) {
        add_with_needs(row, order);
    }
    return order;
}

std::string makefile(const std::vector<std::int32_t>& rows, const std::string& program,
                     const std::string& folder, TableForm form) {
    const std::string out = folder.empty() ? "." : folder;
    if (!is_plain_name(program) || !is_plain_name(out)) {
        return {};
    }
    // The second half's file is the last to get its name: it stands for the table.
    const std::string ending = form == TableForm::packed ? ".nbb.emd" : ".nbb";
    const std::vector<std::int32_t> order = in_working_order(rows);
    const std::string make_table = "\n\t$(TBGEN) --out $(OUT) --threads $(THREADS)" +
                                   std::string(form == TableForm::plain ? " --plain " : " ");
    const auto target_of = [&](std::int32_t row) { return "$(OUT)/" + name_of(row) + ending; };
    std::string all;
    std::string rules;
    for (const std::int32_t row : order) {
        const std::string name = name_of(row);
        all.append(" ").append(name);
        rules.append("\n").append(name).append(": ").append(target_of(row));
        rules.append("\n").append(target_of(row)).append(":");
        // Behind the bar: made before, but an older table is none the worse for a newer one.
        std::string_view between = " | ";
        for (const std::int32_t needed : rows_needed_by(row)) {
            rules.append(between).append(target_of(needed));
            between = " ";
        }
        rules.append(make_table).append(name).append("\n");
    }
    return "# Endgame tables, one target each; make -jN makes N at a time.\nTBGEN = " + program +
           "\nOUT = " + out + "\nTHREADS = 1\n\n.PHONY: all" + all + "\nall:" + all + "\n" + rules;
}
