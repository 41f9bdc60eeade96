// SPDX-License-Identifier: MIT
// The numbers that order moves: captures by attacker and victim, history, hash move, old line.
#include "search/move_order.h"

#include <array>
#include <gtest/gtest.h>
#include <limits>

#include "board/move_list.h"
#include "search/node_steps.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/search_scene.h"

namespace {

constexpr std::size_t men = 6;
constexpr std::array<PieceCode, men> white_men = {w_king,   w_queen,  w_rook,
                                                  w_knight, w_bishop, w_pawn};
constexpr std::array<PieceCode, men> black_men = {b_king,   b_queen,  b_rook,
                                                  b_knight, b_bishop, b_pawn};

// clang-format off
constexpr std::array<std::array<std::int32_t, men>, men> expected_captures = {{
//   king queen rook knight bishop pawn
    {{ 6,  12,  18,   24,    24,   36 }},  // king takes
    {{ 5,  11,  17,   23,    23,   35 }},  // queen takes
    {{ 4,  10,  16,   22,    22,   34 }},  // rook takes
    {{ 2,   8,  14,   20,    26,   32 }},  // knight takes
    {{ 2,   8,  14,   20,    20,   32 }},  // bishop takes
    {{ 1,   7,  13,   19,    19,   31 }},  // pawn takes
}};
// clang-format on

constexpr Move capture{e4, d5, 0};
constexpr Move quiet{e2, e4, 0};
constexpr Move other{g1, f3, 0};
constexpr Move third{b1, c3, 0};

MoveList list_of(const std::vector<Move>& moves) {
    MoveList list{};
    for (const Move& move : moves) {
        list.move(++list.count) = move;
    }
    return list;
}

std::int32_t score_of(const Table& position, const Move& move) {
    MoveList list = list_of({move});
    score_moves(position, list);
    return list.score(1);
}

/// With a hash move that is not in the list.
std::int32_t score_beside_hash_move(const Table& position, const Move& move) {
    MoveList list = list_of({move});
    score_moves_hash(position, list, h1, h2, 0);
    return list.score(1);
}

Table two_men(PieceCode attacker, PieceCode victim) {
    Table position = position_from_fen("8/8/8/8/8/8/8/8 w - -");
    position.at(capture.posFrom) = attacker;
    position.at(capture.posTo) = victim;
    return position;
}

class MoveOrder : public testing::Test {
  protected:
    void SetUp() override {
        begin_scene();
        position = start_position();
    }

    Table position;
};

}  // namespace

TEST_F(MoveOrder, ResetGivesTheStartValuesEverywhere) {
    history_good[e2][e4] = 1;
    history_cut[e2][e4] = 1;
    history_reset();
    for (std::size_t from = 0; from < mailbox_size; ++from) {
        for (std::size_t to = 0; to < mailbox_size; ++to) {
            ASSERT_EQ(history_good[from][to], 0);
            ASSERT_EQ(history_cut[from][to], 1000000);
        }
    }
}

TEST_F(MoveOrder, EveryCaptureGoesByTheTableBesideAHashMove) {
    int captures = 0;
    for (std::size_t attacker = 0; attacker < men; ++attacker) {
        for (std::size_t victim = 0; victim < men; ++victim) {
            const std::int32_t expected = expected_captures[attacker][victim];
            EXPECT_EQ(
                score_beside_hash_move(two_men(white_men[attacker], black_men[victim]), capture),
                expected);
            EXPECT_EQ(
                score_beside_hash_move(two_men(black_men[attacker], white_men[victim]), capture),
                expected);
            captures += 2;
        }
    }
    EXPECT_EQ(captures, 72);
}

TEST_F(MoveOrder, EveryCaptureButQueenTakesPawnGoesByTheTableWithoutAHashMove) {
    history_good[e4][d5] = 17;
    int by_history = 0;
    for (std::size_t attacker = 0; attacker < men; ++attacker) {
        for (std::size_t victim = 0; victim < men; ++victim) {
            const bool queen_takes_pawn = attacker == 1 && victim == 5;
            const std::int32_t expected =
                queen_takes_pawn ? 1000000 - 17 : expected_captures[attacker][victim];
            EXPECT_EQ(score_of(two_men(white_men[attacker], black_men[victim]), capture), expected);
            EXPECT_EQ(score_of(two_men(black_men[attacker], white_men[victim]), capture), expected);
            by_history += queen_takes_pawn ? 1 : 0;
        }
    }
    EXPECT_EQ(by_history, 1);
}

TEST_F(MoveOrder, KnightTakesBishopStandsBehindAllOtherCapturesOfMinorPieces) {
    EXPECT_EQ(score_of(two_men(w_knight, b_bishop), capture), 26);
    for (const PieceCode attacker : white_men) {
        EXPECT_LT(score_of(two_men(attacker, b_knight), capture), 26);
        if (attacker != w_knight) {
            EXPECT_LT(score_of(two_men(attacker, b_bishop), capture), 26);
        }
    }
}

TEST_F(MoveOrder, QueenTakesPawnIsHistoryOr35WhereverItStandsInTheList) {
    const Table board = position_from_fen("4k3/8/8/3p4/4Q3/8/8/4K3 w - -");
    history_cut[e4][d5] = 999990;
    for (int place = 1; place <= 3; ++place) {
        std::vector<Move> moves = {{e1, e2, 0}, {e1, d1, 0}};
        moves.insert(moves.begin() + place - 1, capture);
        MoveList list = list_of(moves);
        score_moves(board, list);
        EXPECT_EQ(list.score(place), 999990);
        score_moves_hash(board, list, e1, e2, 0);
        EXPECT_EQ(list.score(place), 35);
    }
}

TEST_F(MoveOrder, QuietMoveWithoutHistoryIsAMillion) {
    EXPECT_EQ(score_of(position, quiet), 1000000);
    EXPECT_EQ(score_beside_hash_move(position, quiet), 1000000);
}

TEST_F(MoveOrder, MoveThatCutOnceAtDepthFive) {
    history_lower_cut(quiet, 5);
    EXPECT_EQ(score_of(position, quiet), 999995);
}

TEST_F(MoveOrder, MoveThatOnlyRaisedAlphaAtDepthFiveScoresTheSame) {
    history_raise(quiet, 5);
    EXPECT_EQ(score_of(position, quiet), 999995);
}

TEST_F(MoveOrder, CutsAloneCountForAMoveThatHasEverCut) {
    history_lower_cut(quiet, 2);
    history_raise(quiet, 30);
    EXPECT_EQ(score_of(position, quiet), 999998);
}

TEST_F(MoveOrder, CutRaisedAboveItsStartValueCountsAsNone) {
    history_lower_cut(quiet, -3);
    EXPECT_EQ(cut_by(quiet), 1000003);
    EXPECT_EQ(score_of(position, quiet), 1000000);
    history_raise(quiet, 4);
    EXPECT_EQ(score_of(position, quiet), 999996);
}

TEST_F(MoveOrder, NegativeDepthsLowerWhatRaisedAlpha) {
    history_raise(quiet, -2);
    EXPECT_EQ(score_of(position, quiet), 1000002);
}

TEST_F(MoveOrder, HistoryIsByTheTwoSquaresInOrder) {
    history_raise(quiet, 5);
    EXPECT_EQ(raised_by(quiet), 5);
    EXPECT_EQ(raised_by({e4, e2, 0}), 0);
    EXPECT_EQ(cut_by(quiet), 1000000);
    history_lower_cut(quiet, 6);
    EXPECT_EQ(cut_by(quiet), 999994);
    EXPECT_EQ(cut_by({e4, e2, 0}), 1000000);
    EXPECT_EQ(raised_by(quiet), 5);
}

TEST_F(MoveOrder, HistoryDoesNotTellMenOrColoursApart) {
    history_raise({e4, d5, 0}, 9);
    EXPECT_EQ(score_of(two_men(w_queen, empty_square), capture), 999991);
    EXPECT_EQ(score_of(two_men(b_bishop, empty_square), capture), 999991);
}

TEST_F(MoveOrder, HistoryWrapsIn32Bits) {
    history_good[e2][e4] = std::numeric_limits<std::int32_t>::max();
    history_raise(quiet, 1);
    EXPECT_EQ(raised_by(quiet), std::numeric_limits<std::int32_t>::min());
    history_cut[e2][e4] = std::numeric_limits<std::int32_t>::min();
    history_lower_cut(quiet, 1);
    EXPECT_EQ(cut_by(quiet), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(score_of(position, quiet), -2146483648);  // 1000000 less the lowest, wrapped
}

TEST_F(MoveOrder, EnPassantGoesByHistory) {
    const Table board = position_from_fen("4k3/8/8/3pP3/8/8/8/4K3 w - d6");
    EXPECT_EQ(score_of(board, move_of(board, "e5d6")), 1000000);
    EXPECT_EQ(score_beside_hash_move(board, move_of(board, "e5d6")), 1000000);
}

TEST_F(MoveOrder, PromotionWithoutCaptureGoesByHistoryAndWithOneByTheTable) {
    const Table board = position_from_fen("3r3k/4P3/8/8/8/8/8/4K3 w - -");
    history_raise({e7, e8, 0}, 12);
    EXPECT_EQ(score_of(board, move_of(board, "e7e8q")), 999988);
    EXPECT_EQ(score_of(board, move_of(board, "e7e8n")), 999988);
    EXPECT_EQ(score_of(board, move_of(board, "e7d8q")), 13);
    EXPECT_EQ(score_of(board, move_of(board, "e7d8n")), 13);
}

TEST_F(MoveOrder, WholeListIsScoredAndNothingBehindIt) {
    MoveList list = list_of({quiet, other, third});
    list.count = 2;
    list.score(3) = 4711;
    score_moves(position, list);
    EXPECT_EQ(list.score(1), 1000000);
    EXPECT_EQ(list.score(2), 1000000);
    EXPECT_EQ(list.score(3), 4711);
}

TEST_F(MoveOrder, HashMoveComesFirst) {
    MoveList list = list_of({quiet, other, third});
    score_moves_hash(position, list, other.posFrom, other.posTo, 0);
    EXPECT_EQ(list.score(1), 1000000);
    EXPECT_EQ(list.score(2), -10000000);
    EXPECT_EQ(list.score(3), 1000000);
}

TEST_F(MoveOrder, HashMoveNeedsAllThreeWords) {
    for (const Move& absent : {Move{e2, e3, 0}, Move{d2, e4, 0}, Move{e2, e4, 16}}) {
        MoveList list = list_of({quiet, other, third});
        score_moves_hash(position, list, absent.posFrom, absent.posTo, absent.posInfo);
        for (std::int32_t i = 1; i <= list.count; ++i) {
            EXPECT_EQ(list.score(i), 1000000);
        }
    }
}

TEST_F(MoveOrder, OnlyTheFirstEqualMoveIsMarked) {
    MoveList list = list_of({other, quiet, quiet});
    score_moves_hash(position, list, e2, e4, 0);
    EXPECT_EQ(list.score(2), -10000000);
    EXPECT_EQ(list.score(3), 1000000);
}

TEST_F(MoveOrder, HashMoveMayBeACapture) {
    const Table board = two_men(w_rook, b_rook);
    MoveList list = list_of({capture});
    score_moves_hash(board, list, e4, d5, 0);
    EXPECT_EQ(list.score(1), -10000000);
}

TEST_F(MoveOrder, StoredPromotionIsNeverFound) {
    const Table white_board = position_from_fen("7k/4P3/8/8/8/8/8/4K3 w - -");
    const Table black_board = mirrored(white_board);
    int promotions = 0;
    for (const Table& board : {white_board, black_board}) {
        for (const char letter : {'q', 'r', 'b', 'n'}) {
            const std::string text =
                (board.side == white ? "e7e8" : "e2e1") + std::string(1, letter);
            const Move promotion = move_of(board, text);
            const auto byte = static_cast<std::int8_t>(promotion.posInfo);
            MoveList list = list_of({promotion});
            score_moves_hash(board, list, promotion.posFrom, promotion.posTo,
                             static_cast<PieceCode>(static_cast<std::int32_t>(byte)));
            EXPECT_EQ(list.score(1), 1000000) << text;
            ++promotions;
        }
    }
    EXPECT_EQ(promotions, 8);
}

TEST_F(MoveOrder, MarksAreAHundredThousandAndTenMillionBelow) {
    EXPECT_EQ(hash_move_score, -10000000);
    EXPECT_EQ(old_line_score, -100000);
    EXPECT_EQ(history_never_cut, 1000000);
}

TEST_F(MoveOrder, LowestScoreIsPickedTheLowestSlotAmongEquals) {
    MoveList list = list_of({quiet, other, third, quiet});
    list.score(1) = 30;
    list.score(2) = 20;
    list.score(3) = 20;
    list.score(4) = 25;
    EXPECT_EQ(lowest_slot(list), 2);
    list.score(4) = -5;
    EXPECT_EQ(lowest_slot(list), 4);
    list.score(1) = -5;
    EXPECT_EQ(lowest_slot(list), 1);
}

TEST_F(MoveOrder, LastMoveAndItsScoreTakeThePlaceOfTheChosen) {
    MoveList list = list_of({quiet, other, third});
    list.score(1) = 10;
    list.score(2) = 20;
    list.score(3) = 30;
    list.take_out(1);
    EXPECT_EQ(list.count, 2);
    EXPECT_EQ(list.move(1), third);
    EXPECT_EQ(list.score(1), 30);
    EXPECT_EQ(list.move(2), other);
    list.take_out(2);
    EXPECT_EQ(list.count, 1);
    EXPECT_EQ(list.move(1), third);
}

TEST_F(MoveOrder, OldLinesMoveOfThisPlyIsMarkedWhileTheWalkGoesOn) {
    ply = 3;
    vetka[0][3] = other;
    vetka[3][3] = quiet;
    follow_pv = 1;
    MoveList list = list_of({quiet, other, other});
    score_moves(position, list);
    mark_old_line(list);
    EXPECT_EQ(list.score(1), 1000000);
    EXPECT_EQ(list.score(2), -100000);
    EXPECT_EQ(list.score(3), 1000000);
    EXPECT_EQ(follow_pv, 1U);
}

TEST_F(MoveOrder, WalkAlongTheOldLineEndsWhereItsMoveIsMissing) {
    ply = 3;
    vetka[0][3] = {other.posFrom, other.posTo, w_queen};
    follow_pv = 1;
    MoveList list = list_of({quiet, other});
    score_moves(position, list);
    mark_old_line(list);
    EXPECT_EQ(list.score(2), 1000000);
    EXPECT_EQ(follow_pv, 0U);
}

TEST_F(MoveOrder, NothingIsMarkedOffTheOldLine) {
    vetka[0][0] = other;
    follow_pv = 0;
    MoveList list = list_of({quiet, other});
    score_moves(position, list);
    mark_old_line(list);
    EXPECT_EQ(list.score(2), 1000000);
    EXPECT_EQ(follow_pv, 0U);
}

TEST_F(MoveOrder, WalkEndsPastTheTableOfLines) {
    ply = 70;
    follow_pv = 1;
    MoveList list = list_of({Move{}});
    mark_old_line(list);
    EXPECT_EQ(follow_pv, 0U);
}

TEST_F(MoveOrder, TablesAreKeptBetweenIterationsAndEmptiedBetweenSearches) {
    std::vector<std::int32_t> raised;
    std::vector<std::int32_t> cut;
    const auto snapshot = [](const HistoryTable& table) {
        std::vector<std::int32_t> values;
        for (const auto& row : table) {
            values.insert(values.end(), row.begin(), row.end());
        }
        return values;
    };
    // No check is possible within three plies, so no depth is below 1 and the counters only grow.
    int grown = 0;
    search_fixed_depth(start_position(), 3, [&](const Iteration&) {
        const auto raised_now = snapshot(history_good);
        const auto cut_now = snapshot(history_cut);
        for (std::size_t i = 0; i < raised.size(); ++i) {
            ASSERT_GE(raised_now[i], raised[i]);
            ASSERT_LE(cut_now[i], cut[i]);
            grown += raised_now[i] > raised[i] && raised[i] > 0 ? 1 : 0;
        }
        raised = raised_now;
        cut = cut_now;
    });
    EXPECT_GT(grown, 0);
    history_good[a1][a8] = 77;
    search_fixed_depth(start_position(), 1, [](const Iteration&) {});
    EXPECT_EQ(history_good[a1][a8], 0);
}
