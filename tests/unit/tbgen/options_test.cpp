// SPDX-License-Identifier: MIT
// The words of the command line, good ones and bad ones.
#include "tbgen/options.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tbgen/endgame.h"

namespace {

using Words = std::vector<std::string>;
using Rows = std::vector<std::int32_t>;

std::optional<Options> read(const Words& words) {
    std::string fault;
    const std::optional<Options> options = read_options(words, fault);
    EXPECT_EQ(fault.empty(), options.has_value()) << fault;
    return options;
}

std::string fault_of(const Words& words) {
    std::string fault;
    EXPECT_FALSE(read_options(words, fault).has_value());
    return fault;
}

}  // namespace

TEST(GeneratorOptions, UnlessTold) {
    const auto options = read({"kqk"});
    ASSERT_TRUE(options);
    EXPECT_EQ(options->folder, "");
    EXPECT_EQ(options->rows, Rows{row_of_name("kqk")});
    EXPECT_EQ(options->threads, std::max(1U, std::thread::hardware_concurrency()));
    EXPECT_EQ(options->form, TableForm::packed);
    EXPECT_FALSE(options->verify);
    EXPECT_FALSE(options->graph);
    EXPECT_FALSE(options->help);
}

TEST(GeneratorOptions, EachOption) {
    EXPECT_EQ(read({"kqk", "--out", "some folder"})->folder, "some folder");
    EXPECT_EQ(read({"--threads", "7", "kqk"})->threads, 7U);
    EXPECT_EQ(read({"--threads", "1", "kqk"})->threads, 1U);
    EXPECT_EQ(read({"--threads", "256", "kqk"})->threads, 256U);
    EXPECT_EQ(read({"--plain", "kqk"})->form, TableForm::plain);
    EXPECT_TRUE(read({"--verify", "kqk"})->verify);
    EXPECT_TRUE(read({"--graph", "kqk"})->graph);
    EXPECT_TRUE(read({"--help"})->help);
    EXPECT_TRUE(read({"-h"})->help);
}

TEST(GeneratorOptions, TablesByNameAndByMenEachOnceInTheirOrder) {
    EXPECT_EQ(read({"krk", "kqk", "kpk", "krk"})->rows, (Rows{1, 4, 5}));
    EXPECT_EQ(read({"--men", "3"})->rows, (Rows{1, 2, 3, 4, 5}));
    EXPECT_EQ(read({"--men", "4"})->rows.size(), 35U);
    EXPECT_EQ(read({"--men", "5"})->rows.size(), 145U);
    EXPECT_EQ(read({"kqqkq", "--men", "3", "kqk"})->rows, (Rows{1, 2, 3, 4, 5, 110}));
}

TEST(GeneratorOptions, WordsThatMakeNoSense) {
    EXPECT_EQ(fault_of({}), "which tables? Name them, or say --men N");
    EXPECT_EQ(fault_of({"--plain"}), "which tables? Name them, or say --men N");
    EXPECT_EQ(fault_of({"kxk"}), "no such table: kxk");
    EXPECT_EQ(fault_of({"kk"}), "no such table: kk");
    EXPECT_EQ(fault_of({""}), "no such table: ");
    EXPECT_EQ(fault_of({"kqk", "--quick"}), "no such option: --quick");
    EXPECT_EQ(fault_of({"-x"}), "no such option: -x");
    for (const char* const option : {"--out", "--men", "--threads"}) {
        EXPECT_EQ(fault_of({"kqk", option}), std::string(option) + " needs a value");
        EXPECT_EQ(fault_of({"kqk", option, ""}), std::string(option) + " needs a value");
    }
    for (const char* const number : {"2", "6", "x", "3x", "-3", "99999999999999999999"}) {
        EXPECT_EQ(fault_of({"--men", number}), "--men is 3, 4 or 5, not " + std::string(number));
    }
    for (const char* const number : {"0", "257", "x", "1.5", "+1", "-1"}) {
        EXPECT_EQ(fault_of({"kqk", "--threads", number}),
                  "--threads is 1 to 256, not " + std::string(number));
    }
}

TEST(GeneratorOptions, UsageNamesEveryOption) {
    for (const char* const option :
         {"--men", "--out", "--threads", "--plain", "--verify", "--graph"}) {
        EXPECT_NE(usage_text().find(option), std::string_view::npos) << option;
    }
    EXPECT_EQ(usage_text().back(), '\n');
}
