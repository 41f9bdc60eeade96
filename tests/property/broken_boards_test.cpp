// SPDX-License-Identifier: MIT
// Seeded boards whose mailbox, bitboards and king squares disagree, as setting up by hand, books
// and test files can leave them: every move and every list of legal moves as by a second writing.
#include <array>
#include <gtest/gtest.h>
#include <sstream>

#include "board/generate.h"
#include "board/make.h"
#include "board/side_traits.h"
#include "board/square_tables.h"
#include "support/captured_output.h"
#include "support/generated.h"
#include "support/position.h"
#include "support/random_game.h"
#include "support/reference_moves.h"
#include "support/reset_all.h"

namespace {

constexpr std::uint64_t seed = 20261122;
constexpr int boards = 6000;

constexpr std::array<PieceCode, 13> contents = {w_pawn,  w_knight, w_bishop,    w_rook,   w_queen,
                                                w_king,  b_pawn,   b_knight,    b_bishop, b_rook,
                                                b_queen, b_king,   empty_square};

/// Third words of a move: the eight pieces, none, a castling label, a king, a pawn.
constexpr std::array<PieceCode, 12> infos = {w_knight, w_bishop, w_rook, w_queen,
                                             b_knight, b_bishop, b_rook, b_queen,
                                             0,        17,       w_king, b_pawn};

template <class Values>
auto one_of(const Values& values, RandomNumbers& random) {
    return values[random.below(static_cast<std::uint32_t>(values.size()))];
}

/// A position of a random game with up to eleven entries, bits, king squares or rights changed.
Table broken_board(RandomNumbers& random) {
    Table table = start_position();
    for (std::uint32_t plies = random.below(60); plies > 0; --plies) {
        if (!play_random_move(table, random)) {
            break;
        }
    }
    for (std::uint32_t faults = random.below(12); faults > 0; --faults) {
        const Square square = one_of(square_of_bit, random);
        switch (random.below(5)) {
            case 0:
            case 1: table.at(square) = one_of(contents, random); break;
            case 2:
                if (const auto bits = bitboard_of(one_of(contents, random))) {
                    table.*bits ^= mask_of(square);
                }
                break;
            case 3: (random.below(2) == 0 ? table.xywK : table.xybK) = square; break;
            default: table.castling = random.below(16); break;
        }
    }
    table.capture_flag = static_cast<std::int32_t>(random.below(2));
    return table;
}

/// The moves that are generated for the side to move, and as many pairs of squares at random.
std::vector<Move> moves_to_try(const Table& table, RandomNumbers& random) {
    std::vector<Move> moves = generated(gen_all, table);
    for (std::size_t i = moves.size(); i > 0; --i) {
        moves.push_back({one_of(square_of_bit, random), one_of(square_of_bit, random), 0});
    }
    // The king's squares of castling, whatever stands there.
    for (const Square home : {e1, e8}) {
        moves.push_back({home, home + 2, 0});
        moves.push_back({home, home - 2, 0});
    }
    for (Move& move : moves) {
        if (random.below(3) == 0) {
            move.posInfo = one_of(infos, random);
        }
    }
    return moves;
}

bool castles_without_a_rook(const Table& board, const Move& move) {
    return board.at(e1) == w_king && move.posFrom == e1 &&
           ((move.posTo == g1 && board.at(h1) != w_rook) ||
            (move.posTo == c1 && board.at(a1) != w_rook));
}

/// The first lines of the reports in a text.
Reports reports_in(const std::string& text) {
    Reports reports;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("SUPER ERROR") || line.starts_with("ERRPR")) {
            reports.push_back(line);
        }
    }
    return reports;
}

std::string where(int board) {
    return "seed " + std::to_string(seed) + ", board " + std::to_string(board);
}

std::string where(int board, const Move& move) {
    return where(board) + ", " + std::to_string(move.posFrom) + " " + std::to_string(move.posTo) +
           " " + std::to_string(move.posInfo);
}

/// Makes the move in both forms and takes it back, beside the second writing.
void try_move(const Table& board, const Move& move, Reports& reports) {
    Table plain = board;
    make_plain(plain, move.posFrom, move.posTo, move.posInfo);
    Table same = board;
    reference_make_plain(same, move, reports);
    ASSERT_TRUE(plain == same);

    Table recorded = board;
    UndoRecord undo;
    make(recorded, move.posFrom, move.posTo, move.posInfo, undo);
    same = board;
    const UndoRecord same_undo = reference_make(same, move, reports);
    ASSERT_TRUE(recorded == same);
    ASSERT_TRUE(undo == same_undo);

    unmake(recorded, undo);
    reference_unmake(same, same_undo);
    ASSERT_TRUE(recorded == same);
}

bool leaves_king_attacked(const Table& table, const Move& move, Reports& reports) {
    Table copy = table;
    reference_make_plain(copy, move, reports);
    return in_check(copy, copy.side);
}

/// Those of the moves that are legal, by a plain scan: whenever one is taken out, all are tried
/// again.
std::vector<Move> legal_by_scan(const Table& table, std::vector<Move> moves, Reports& reports) {
    std::size_t i = 0;
    while (i < moves.size()) {
        if (leaves_king_attacked(table, moves[i], reports)) {
            moves[i] = moves.back();
            moves.pop_back();
            i = 0;
        } else {
            ++i;
        }
    }
    return moves;
}

/// How many reports there are if every move is tried once.
std::size_t reports_of_one_pass(const Table& table, const std::vector<Move>& moves) {
    Reports reports;
    for (const Move& move : moves) {
        static_cast<void>(leaves_king_attacked(table, move, reports));
    }
    return reports.size();
}

}  // namespace

TEST(BrokenBoards, MovesAreMadeAndTakenBackAsByTheSecondWriting) {
    RandomNumbers random(seed);
    reset_all();
    int moves_made = 0;
    std::size_t reported = 0;
    std::size_t castled = 0;
    for (int number = 0; number < boards; ++number) {
        const Table board = broken_board(random);
        for (const Move& move : moves_to_try(board, random)) {
            const CapturedOutput output;
            Reports reports;
            try_move(board, move, reports);
            ASSERT_FALSE(HasFatalFailure()) << where(number, move);
            ASSERT_EQ(reports_in(output.text()), reports) << where(number, move);
            ++moves_made;
            reported += reports.size();
            castled += castles_without_a_rook(board, move) ? 1U : 0U;
        }
    }
    EXPECT_GT(moves_made, 200000);
    EXPECT_GT(reported, 1000U);
    EXPECT_GT(castled, 500U) << "castling without a rook on the corner";
}

TEST(BrokenBoards, LegalMovesAndTheirReportsAreThoseOfAPlainScan) {
    RandomNumbers random(seed);
    reset_all();
    int repeated = 0;
    for (int number = 0; number < boards; ++number) {
        const Table board = broken_board(random);
        const std::vector<Move> moves = generated(gen_all, board);
        Reports reports;
        const std::vector<Move> expected = legal_by_scan(board, moves, reports);
        const CapturedOutput output;
        ASSERT_EQ(generated(gen_legal, board), expected) << where(number);
        ASSERT_EQ(reports_in(output.text()), reports) << where(number);
        repeated += reports.size() > reports_of_one_pass(board, moves) ? 1 : 0;
    }
    EXPECT_GT(repeated, 20) << "boards on which a move that passed reports again";
}
