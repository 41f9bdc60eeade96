// SPDX-License-Identifier: MIT
// Whole tables: those of three men are known bytes, larger ones have known lengths.
#include "tbgen/solver.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/endgame_layout.h"
#include "tb/index/enumeration.h"

namespace {

void no_report(const std::string& /*phase*/, double /*share*/) {}

std::optional<SolvedTable> solved(const char* name, std::size_t threads) {
    tb_build_enumeration();
    return Solver(row_of_name(name), threads).solve(three_men_bytes, no_report);
}

/// What a position is worth by its moves.
Value best_of_moves(const SlowPosition& position, SlowTables& tables) {
    Value best = not_reachable;
    for (const SlowMove& move : slow_moves(position)) {
        if (!move.is_legal) continue;
        const Value value = tables.value(move.after);
        best = std::max(best, static_cast<Value>(value < drawn ? -value - 1 : -value));
    }
    if (best == not_reachable) {
        best = slow_in_check(position, position.to_move) ? mated_in(0) : drawn;
    }
    return best;
}

}  // namespace

TEST(Solver, TablesOfThreeMenAreTheKnownOnes) {
    struct Known {
        const char* name;
        int longest;
    };
    for (const Known known : {Known{"kpk", 28}, {"knk", 0}, {"kbk", 0}, {"krk", 16}, {"kqk", 10}}) {
        const auto table = solved(known.name, 2);
        ASSERT_TRUE(table) << known.name;
        for (std::int32_t half = 0; half < tb_halves; ++half) {
            const Bytes& bytes = table->halves[static_cast<std::size_t>(half)];
            EXPECT_TRUE(bytes == three_men_bytes(row_of_name(known.name), half))
                << known.name << ' ' << half;
        }
        EXPECT_EQ(table->longest, (std::array{known.longest, 0})) << known.name;
    }
}

TEST(Solver, TwoQueensMateInFour) {
    const auto table = solved("kqqk", 1);
    ASSERT_TRUE(table);
    EXPECT_EQ(table->halves[0].size(), 698'739U);
    EXPECT_EQ(table->halves[1].size(), 873'642U);
    EXPECT_EQ(table->longest, (std::array{4, 0}));
}

TEST(Solver, AnyNumberOfThreadsGivesTheSameBytes) {
    const auto one = solved("krk", 1);
    const auto three = solved("krk", 3);
    ASSERT_TRUE(one && three);
    EXPECT_EQ(one->halves, three->halves);
    const auto one_with_pawns = solved("kpk", 1);
    const auto three_with_pawns = solved("kpk", 3);
    ASSERT_TRUE(one_with_pawns && three_with_pawns);
    EXPECT_EQ(one_with_pawns->halves, three_with_pawns->halves);
}

TEST(Solver, ValuesOfKnightAgainstKnightFollowFromTheirMoves) {
    const auto table = solved("knkn", 2);
    ASSERT_TRUE(table);
    EXPECT_EQ(table->longest, (std::array{1, 1}));
    const EndgameLayout layout("knkn");
    SlowTables tables([&](std::int32_t row, std::int32_t half) {
        return row == row_of_name("knkn")
                   ? std::optional(table->halves[static_cast<std::size_t>(half)])
                   : three_men_bytes(row, half);
    });
    LayoutRandom random(6);
    for (int i = 0; i < 100; ++i) {
        const SlowPosition position =
            layout.draw(random, random() % layout.pairs().slabs(), random() % 2 == 0 ? 1 : 0);
        EXPECT_EQ(tables.value(position), best_of_moves(position, tables)) << i;
    }
}

TEST(Solver, MissingTableIsTold) {
    tb_build_enumeration();
    for (const char* const missing : {"knk", "kqk"}) {
        Solver solver(row_of_name("kpk"), 1);
        EXPECT_FALSE(solver.solve(
            [&](std::int32_t row, std::int32_t half) {
                return row == row_of_name(missing) ? std::nullopt : three_men_bytes(row, half);
            },
            no_report));
    }
}

TEST(Solver, ReportsPhasesAndRisingShares) {
    tb_build_enumeration();
    std::vector<std::string> phases;
    std::vector<double> shares;
    const auto table = Solver(row_of_name("kqk"), 1)
                           .solve(three_men_bytes, [&](const std::string& phase, double share) {
                               phases.push_back(phase);
                               shares.push_back(share);
                           });
    ASSERT_TRUE(table);
    ASSERT_GT(phases.size(), 4U);
    EXPECT_EQ(phases[0], "other tables");
    EXPECT_EQ(phases[1], "positions");
    EXPECT_EQ(phases[2], "move 1");
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_GE(shares.front(), 0);
    EXPECT_LE(shares.back(), 1);
}

#ifdef CORVANE_MANY_POSITIONS
// Half a minute without optimisation.
TEST(Solver, ValuesOfPawnAgainstPawnFollowFromTheirMoves) {
    tb_build_enumeration();
    std::map<std::int32_t, SolvedTable> done;
    const LoadHalf load = [&](std::int32_t row, std::int32_t half) -> std::optional<Bytes> {
        if (row < tb_first_four_men) {
            return three_men_bytes(row, half);
        }
        return done.at(row).halves[static_cast<std::size_t>(half)];
    };
    for (const char* const name : {"knkn", "kbkn", "kbkb", "krkn", "krkb", "krkr", "kqkn", "kqkb",
                                   "kqkr", "kqkq", "knkp", "kbkp", "krkp", "kqkp", "kpkp"}) {
        auto table = Solver(row_of_name(name), 2).solve(load, no_report);
        ASSERT_TRUE(table) << name;
        done.emplace(row_of_name(name), std::move(*table));
    }
    EXPECT_EQ(done.at(row_of_name("krkp")).longest, (std::array{26, 43}));
    EXPECT_EQ(done.at(row_of_name("kpkp")).longest, (std::array{33, 33}));
    const EndgameLayout layout("kpkp");
    SlowTables tables(load);
    LayoutRandom random(6);
    int with_en_passant = 0;
    for (int i = 0; i < 5000; ++i) {
        const std::uint8_t side = random() % 2 == 0 ? 1 : 0;
        SlowPosition position = layout.draw(random, random() % layout.pairs().slabs(), side);
        for (const SlowMove& move : slow_moves(position)) {
            if (move.is_legal && move.after.en_passant != tb_no_en_passant) {
                position = move.after;  // one move on, with the right to capture
                ++with_en_passant;
                break;
            }
        }
        EXPECT_EQ(tables.value(position), best_of_moves(position, tables)) << i;
    }
    EXPECT_GT(with_en_passant, 1000);
}
#endif
