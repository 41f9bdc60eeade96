// SPDX-License-Identifier: MIT
// Every table comes after those that it needs, and the makefile says the same.
#include "tbgen/work_order.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

#include "tb/table_names.h"
#include "tbgen/endgame.h"

namespace {

std::vector<std::string> names_in_order(std::initializer_list<const char*> names) {
    std::vector<std::int32_t> rows;
    for (const char* const name : names) {
        rows.push_back(row_of_name(name));
    }
    std::vector<std::string> ordered;
    for (const std::int32_t row : in_working_order(rows)) {
        ordered.emplace_back(tb_names[static_cast<std::size_t>(row)]);
    }
    return ordered;
}

std::size_t lines_with(const std::string& text, const std::string& piece) {
    std::size_t count = 0;
    for (std::size_t at = text.find(piece); at != std::string::npos;
         at = text.find(piece, at + 1)) {
        ++count;
    }
    return count;
}

}  // namespace

TEST(WorkOrder, TablesComeAfterThoseTheyNeed) {
    std::vector<std::int32_t> rows;
    for (std::int32_t row = tb_rows - 1; row > 0; --row) {
        rows.push_back(row);
    }
    const std::vector<std::int32_t> order = in_working_order(rows);
    EXPECT_EQ(order.size(), 145U);
    std::set<std::int32_t> made;
    for (const std::int32_t row : order) {
        for (const std::int32_t needed : rows_needed_by(row)) {
            EXPECT_TRUE(made.contains(needed)) << row << ' ' << needed;
        }
        EXPECT_TRUE(made.insert(row).second) << "once";
    }
}

TEST(WorkOrder, NeededTablesAreAddedAndNoOthers) {
    using Names = std::vector<std::string>;
    EXPECT_EQ(names_in_order({"kqk"}), (Names{"kqk"}));
    EXPECT_EQ(names_in_order({"kpk"}), (Names{"knk", "kbk", "krk", "kqk", "kpk"}));
    EXPECT_EQ(names_in_order({"krkn", "krk"}), (Names{"knk", "krk", "krkn"}));
    EXPECT_EQ(names_in_order({}), Names{});
    EXPECT_EQ(names_in_order({"kqqkr"}).size(), 5U);  // kqk, krk, kqkr, kqqk
}

TEST(WorkOrder, MakefileHasARuleForEachTable) {
    const std::string text =
        makefile({row_of_name("krkn")}, "bin/corvane-tbgen", "out/tables", TableForm::packed);
    EXPECT_NE(text.find("TBGEN = bin/corvane-tbgen\n"), std::string::npos);
    EXPECT_NE(text.find("OUT = out/tables\n"), std::string::npos);
    EXPECT_NE(text.find("all: knk krk krkn\n"), std::string::npos);
    EXPECT_NE(text.find("\nknk: $(OUT)/knk.nbb.emd\n$(OUT)/knk.nbb.emd:\n"), std::string::npos);
    EXPECT_NE(text.find("\nkrkn: $(OUT)/krkn.nbb.emd\n$(OUT)/krkn.nbb.emd: | "
                        "$(OUT)/knk.nbb.emd $(OUT)/krk.nbb.emd\n"),
              std::string::npos);
    EXPECT_EQ(lines_with(text, "\n\t$(TBGEN) "), 3U);
    EXPECT_EQ(lines_with(text, "--plain"), 0U);
    EXPECT_EQ(text.back(), '\n');
}

TEST(WorkOrder, MakefileOfPlainTables) {
    const std::string text = makefile({row_of_name("kqk")}, "tbgen", "", TableForm::plain);
    EXPECT_NE(text.find("OUT = .\n"), std::string::npos);
    EXPECT_NE(text.find("kqk: $(OUT)/kqk.nbb\n"), std::string::npos);
    EXPECT_EQ(lines_with(text, " --plain kqk"), 1U);
    EXPECT_EQ(text.find(".emd"), std::string::npos);
}

TEST(WorkOrder, NamesThatAMakefileCannotHold) {
    const std::vector<std::int32_t> rows = {row_of_name("kqk")};
    for (const char* const name : {"a b", "a#b", "a$b", "a:b", "a\tb", "a%b", "\xc3\xa4"}) {
        EXPECT_TRUE(makefile(rows, name, "out", TableForm::plain).empty()) << name;
        EXPECT_TRUE(makefile(rows, "tbgen", name, TableForm::plain).empty()) << name;
    }
    EXPECT_FALSE(makefile(rows, "/a-1/b_c/D.e+f,@", "../x", TableForm::plain).empty());
}
