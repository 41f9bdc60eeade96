// SPDX-License-Identifier: MIT
// Seeded random games: what must hold of the generators, of make and of the mirror everywhere.
#include <gtest/gtest.h>
#include <set>
#include <tuple>

#include "board/geometry.h"
#include "support/board_invariants.h"
#include "support/generated.h"
#include "support/perft_positions.h"
#include "support/position.h"
#include "support/random_game.h"

namespace {

constexpr std::uint64_t seed = 20240611;
constexpr std::size_t games = 136;
constexpr int longest_game = 150;  ///< plies

/// Every position of the games, the first of each included. The games begin at the starting
/// position and at the perft positions in turns.
template <class Look>
int for_each_position(Look look) {
    const auto rows = read_perft_positions(CORVANE_TEST_DATA "/perft/positions.txt");
    EXPECT_FALSE(rows.empty());
    RandomNumbers random(seed);
    int positions = 0;
    for (std::size_t game = 0; game < games; ++game) {
        const bool from_start = game % 2 == 0 || rows.empty();
        Table table =
            from_start ? start_position() : position_from_fen(rows[game / 2 % rows.size()].fen);
        for (int plies = 0; plies < longest_game; ++plies) {
            ++positions;
            look(table);
            if (testing::Test::HasFatalFailure() || !play_random_move(table, random)) {
                break;
            }
        }
    }
    return positions;
}

std::string where(const Table& table) {
    return "seed " + std::to_string(seed) + ", " + fen_of(table);
}

using MoveWords = std::tuple<Square, Square, PieceCode>;

std::set<MoveWords> as_set(const std::vector<Move>& moves) {
    std::set<MoveWords> words;
    for (const Move& move : moves) {
        words.insert({move.posFrom, move.posTo, move.posInfo});
    }
    return words;
}

/// White's promoting capture towards the a-file whose square ahead has nothing to do with the king.
bool is_left_out_of_evasions(const Table& table, const Move& move) {
    return table.at(move.posFrom) == w_pawn && move.posInfo != 0 &&
           move.posTo == move.posFrom - 11 && !on_line_or_knight(table.xywK, move.posFrom - 10);
}

Square turned_over(Square square) {
    return 10 * (11 - square / 10) + square % 10;
}

PieceCode other_colour(PieceCode code) {
    switch (code) {
        case w_queen: return b_queen;
        case w_rook: return b_rook;
        case w_bishop: return b_bishop;
        case w_knight: return b_knight;
        case b_queen: return w_queen;
        case b_rook: return w_rook;
        case b_bishop: return w_bishop;
        case b_knight: return w_knight;
        default: return code;
    }
}

std::set<MoveWords> turned_over(const std::vector<Move>& moves) {
    std::set<MoveWords> words;
    for (const Move& move : moves) {
        words.insert(
            {turned_over(move.posFrom), turned_over(move.posTo), other_colour(move.posInfo)});
    }
    return words;
}

}  // namespace

TEST(RandomGames, PositionsStaySound) {
    const int positions = for_each_position(
        [](const Table& table) { ASSERT_EQ(broken_invariant(table), "") << where(table); });
    EXPECT_EQ(positions, 18933);
}

TEST(RandomGames, EveryPseudoLegalMoveIsTakenBackWhole) {
    std::size_t moves_made = 0;
    for_each_position([&](const Table& position) {
        for (const Move& move : generated(gen_all, position)) {
            Table table = position;
            UndoRecord undo;
            make(table, move.posFrom, move.posTo, move.posInfo, undo);
            Table plain = position;
            make_plain(plain, move.posFrom, move.posTo, move.posInfo);
            ASSERT_TRUE(plain == table) << where(position);
            unmake(table, undo);
            ASSERT_TRUE(table == position) << where(position);
            ++moves_made;
        }
    });
    EXPECT_EQ(moves_made, 379479U);
}

TEST(RandomGames, CapturesAreAmongAllMoves) {
    std::size_t captures = 0;
    for_each_position([&](const Table& table) {
        const auto all = as_set(generated(gen_all, table));
        const auto some = generated(gen_captures, table);
        for (const Move& move : some) {
            ASSERT_TRUE(all.count({move.posFrom, move.posTo, move.posInfo}) == 1) << where(table);
        }
        // And they are all the captures and promotions there are.
        std::size_t sharp = 0;
        for (const auto& [from, to, info] : all) {
            const bool is_pawn = table.at(from) == w_pawn || table.at(from) == b_pawn;
            const bool is_en_passant =
                is_pawn && file_of[at_square(from)] != file_of[at_square(to)];
            sharp += info != 0 || is_en_passant || table.at(to) != empty_square ? 1U : 0U;
        }
        ASSERT_EQ(some.size(), sharp) << where(table);
        captures += some.size();
    });
    EXPECT_EQ(captures, 24605U);
}

TEST(RandomGames, EvasionsMissNoLegalMoveButTheNamedOne) {
    int checks = 0;
    int left_out = 0;
    const auto compare = [&](const Table& table) {
        if (!in_check(table, table.side)) {
            return;
        }
        ++checks;
        std::vector<Move> expected;
        for (const Move& move : generated(gen_all, table)) {
            if (is_left_out_of_evasions(table, move)) {
                left_out += leaves_king_safe(table, move) ? 1 : 0;
            } else {
                expected.push_back(move);
            }
        }
        ASSERT_EQ(sorted_legal(generated(gen_evasions, table), table),
                  sorted_legal(expected, table))
            << where(table);
    };
    for_each_position(compare);
    for_each_position([&](const Table& table) { compare(mirrored(table)); });
    compare(position_from_fen("r7/1P6/8/8/8/8/8/K6k w - -"));
    EXPECT_EQ(checks, 1769);
    EXPECT_EQ(left_out, 20);
}

TEST(RandomGames, LegalMovesAreThoseThatLeaveTheKingSafe) {
    std::size_t moves = 0;
    for_each_position([&](const Table& table) {
        const auto legal = generated(gen_legal, table);
        ASSERT_EQ(sorted_legal(legal, table), sorted_legal(generated(gen_all, table), table))
            << where(table);
        ASSERT_EQ(sorted_legal(legal, table).size(), legal.size()) << where(table);
        moves += legal.size();
    });
    EXPECT_EQ(moves, 344370U);
}

TEST(RandomGames, MirroredPositionsHaveTheMirroredMoves) {
    std::size_t moves = 0;
    for_each_position([&](const Table& table) {
        const auto legal = generated(gen_legal, table);
        const Table mirror = mirrored(table);
        ASSERT_EQ(turned_over(legal), as_set(generated(gen_legal, mirror))) << where(table);
        ASSERT_EQ(in_check(table, table.side), in_check(mirror, mirror.side)) << where(table);
        moves += legal.size();
    });
    EXPECT_EQ(moves, 344370U);
}
