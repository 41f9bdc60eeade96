// SPDX-License-Identifier: MIT
// Indexes that can be worked out by hand: kings in the corners, the other men near a1. What comes
// from the enumeration's sums is counted by the slow reference.
#include "tb/index/half_index.h"

#include <gtest/gtest.h>
#include <vector>

#include "support/reference_index.h"
#include "support/reset_all.h"
#include "support/table_boards.h"
#include "tb/index/enumeration.h"

namespace {

// Kings on a1 and h8, that of the side to move first.
constexpr std::size_t corners_with_pawns = 59;
constexpr std::size_t corners = 32;

class HalfIndex : public testing::Test {
  protected:
    void SetUp() override {
        reset_all(1);
        tb_build_enumeration();
    }
    void TearDown() override { reset_all(1); }
};

/// First position of the pair of kings in the corners.
std::uint64_t base(bool pawnless, const std::string& kinds) {
    return reference_set(pawnless, kinds).offsets[pawnless ? corners : corners_with_pawns];
}

struct FormCase {
    std::string_view name;
    std::size_t half;
    std::string_view squares;  ///< in the order of the name
    std::uint64_t index;
};

std::uint32_t flipped_index(std::string_view name, std::size_t half, std::string_view squares) {
    return engine_index(name, half, square_numbers(squares), tb_no_en_passant, 1);
}

}  // namespace

TEST_F(HalfIndex, FormsOfTheIndexByHand) {
    const std::uint64_t pawn = base(false, "P");
    const std::uint64_t pawns = base(false, "PP");
    const std::uint64_t knight = base(false, "N");
    // clang-format off
    const std::vector<FormCase> cases = {
        {"kqk",   0, "a1 b3 h8",       base(true, "Q") + 16},
        {"kqk",   1, "h1 b3 a1",       5 * 62 + 15},
        {"kpk",   0, "a1 d2 h8",       pawn + 3},
        {"kpk",   1, "h1 d7 a8",       base(false, "p") + 3},
        {"knkn",  0, "a1 c1 h8 d1",    (base(true, "N") + 1) * 61 + 1},
        {"knkn",  1, "h8 d1 a1 c1",    (base(true, "N") + 1) * 61 + 1},
        {"knkp",  0, "a1 b1 h8 d2",    knight * 48 + 3},
        {"knkp",  1, "h1 b1 a8 d7",    (pawn + 3) * 61 + 1},
        {"kpkp",  0, "a1 d2 h8 b3",    (pawn + 3) * 47 + 8},
        {"kpkp",  1, "h1 b3 a8 d7",    (pawn + 3) * 47 + 9},
        {"kqqk",  1, "h8 e1 c1 a1",    corners * 1891 + 3 + 1},
        {"kbnk",  1, "h8 d1 b1 a1",    corners * 3782 + 2 * 61},
        {"kbnk",  1, "h8 b1 d1 a1",    corners * 3782 + 1},
        {"kppkp", 0, "a1 d2 b2 h8 b3", (pawns + 3 + 1) * 46 + 7},
        {"kppkp", 1, "h1 b3 c2 a8 d7", (pawn + 3) * 1081 + 36 + 2},
        {"kppkn", 0, "a1 d2 b2 h8 c3", (pawns + 3 + 1) * 60 + 15},
        {"kppkn", 1, "h8 d2 b2 a1 b1", knight * 1128 + 3 + 1},
        {"knnkp", 1, "h1 b1 d1 a8 d7", (pawn + 3) * 1830 + 3 + 1},
        {"kbnkp", 1, "h1 b1 d1 a8 d7", (pawn + 3) * 3660 + 1 * 60 + 2},
        {"knpkn", 0, "a1 c1 d2 h8 c3", (base(false, "NP") + 1 * 47 + 3) * 60 + 15},
        {"knpkn", 1, "h8 c3 d2 a1 b1", knight * 2880 + 15 * 48 + 3},
        {"kpppk", 0, "a1 d2 b2 f2 h8", base(false, "PPP") + 10 + 3 + 1},
        {"kpppk", 1, "h1 d7 b7 f7 a8", base(false, "ppp") + 10 + 3 + 1},
        {"knppk", 0, "a1 c1 d2 b2 h8", base(false, "NPP") + (3 + 1) * 60 + 1},
        {"kqqqk", 0, "a1 e1 c1 b1 h8", base(true, "QQQ") + 1},
        {"krbnk", 0, "a1 c1 d1 e1 h8", base(true, "RBN") + (1 * 61 + 2) * 60 + 3},
        {"knnnk", 1, "h8 b1 c1 e1 a1", corners * 37820 + 1},
        {"kbnnk", 1, "h8 d1 c1 e1 a1", corners * 113460 + 2 * 1830 + 1 + 1},
        {"kbbnk", 1, "h8 c1 e1 d1 a1", corners * 113460 + (1 + 1) * 62 + 2},
        {"krbnk", 1, "h8 c1 b1 d1 a1", corners * 226920 + 1 * 3660},
    };
    // clang-format on
    for (const FormCase& row : cases) {
        EXPECT_EQ(engine_index(row.name, row.half, row.squares), row.index)
            << row.name << ", half " << row.half << ", " << row.squares;
    }
    EXPECT_EQ(cases.size(), 30U);
}

// ---- The board turned about

TEST_F(HalfIndex, KingInTheCornerOfTheTriangleIsNotTurned) {
    // The 32 pairs of kings before a1 and h8 leave the queen 57 squares on the edge, 59 in the
    // corner and 54 elsewhere.
    EXPECT_EQ(engine_index("kqk", 0, "a1 b3 h8"), 11U * 57 + 59 + 20 * 54 + 16);
}

TEST_F(HalfIndex, KingOnE1IsReadOnD1) {
    EXPECT_EQ(engine_index("kqk", 0, "e1 b3 h8"), engine_index("kqk", 0, "d1 g3 a8"));
    EXPECT_EQ(engine_index("kpk", 0, "e1 b3 h8"), engine_index("kpk", 0, "d1 g3 a8"));
    EXPECT_NE(engine_index("kpk", 0, "e1 b3 h8"), engine_index("kpk", 0, "d1 b3 h8"));
}

TEST_F(HalfIndex, OtherKingBelowTheDiagonalIsNotMirrored) {
    EXPECT_EQ(engine_index("kqk", 1, "h1 c2 a1"), 5U * 62 + 10 - 2);
}

TEST_F(HalfIndex, OtherKingAboveTheDiagonalIsMirrored) {
    EXPECT_EQ(engine_index("kqk", 1, "a8 b3 a1"), engine_index("kqk", 1, "h1 c2 a1"));
    EXPECT_NE(engine_index("kqk", 1, "a8 b3 a1"), engine_index("kqk", 1, "h1 b3 a1"));
}

TEST_F(HalfIndex, BothKingsOnTheDiagonalKeepTwoNumbers) {
    EXPECT_NE(engine_index("kqk", 1, "h8 b3 a1"), engine_index("kqk", 1, "h8 c2 a1"));
    EXPECT_NE(engine_index("kqk", 0, "a1 b3 h8"), engine_index("kqk", 0, "a1 c2 h8"));
}

TEST_F(HalfIndex, PawnOnE2WithItsKingOnH1IsReadOnD2) {
    EXPECT_EQ(engine_index("kpk", 0, "h1 e2 a8"), base(false, "P") + 3);
}

TEST_F(HalfIndex, PawnOnA7OfBlackAsFirstSideIsReadOnA2) {
    EXPECT_EQ(flipped_index("kpk", 0, "a8 a7 h1"), base(false, "P"));
    EXPECT_EQ(engine_index("kpk", 0, "a1 a2 h8"), base(false, "P"));
}

TEST_F(HalfIndex, FlipAndFileMaskWorkTogether) {
    EXPECT_EQ(flipped_index("kpk", 0, "h8 e7 a1"), base(false, "P") + 3);
    EXPECT_EQ(flipped_index("knkp", 1, "a8 g8 h1 e2"), engine_index("knkp", 1, "h1 b1 a8 d7"));
}

TEST_F(HalfIndex, FlipIsNotUsedWithoutPawns) {
    for (const char* const squares : {"a1 b3 h8", "e1 b3 h8", "g6 b7 c1"}) {
        for (const std::size_t half : {0U, 1U}) {
            EXPECT_EQ(flipped_index("kqk", half, squares), engine_index("kqk", half, squares));
        }
    }
}

TEST_F(HalfIndex, OnlyTheKingOfTheSideToMoveTurnsTheBoard) {
    // The king on e1 would turn the board; the other half has the king on a1 decide.
    EXPECT_EQ(engine_index("kpk", 1, "e1 b2 a1"),
              reference_index("kpk", 1, square_numbers("d1 g2 h1"), false)->index);
    EXPECT_EQ(engine_index("kqk", 1, "e1 g5 a1"), 2U * 62 + 38 - 2);
}

// ---- Checks that a numbering knows of, and those that it leaves out

TEST_F(HalfIndex, PawnThatChecksTheBareKingHasANumber) {
    // Read with the files exchanged and turned over: king d4, other king d8, pawn e5.
    const auto pair = reference_pair(false, square_number("d4"), square_number("d8"));
    ASSERT_TRUE(pair);
    const std::uint64_t begin = reference_set(false, "p").offsets[*pair];
    EXPECT_EQ(engine_index("kpk", 1, "e1 d4 e5"), begin + 28 - 1);
}

TEST_F(HalfIndex, PawnThatCouldTakeTheKingHasNone) {
    const auto king = static_cast<std::size_t>(square_number("e5"));
    EXPECT_EQ(tb_ordinal[tb_pawn][king][static_cast<std::size_t>(square_number("d4"))], 255);
    EXPECT_EQ(tb_ordinal[tb_pawn][king][static_cast<std::size_t>(square_number("f4"))], 255);
    EXPECT_FALSE(reference_index("kpk", 0, square_numbers("a1 d4 e5"), false));
}

TEST_F(HalfIndex, KnightThatCouldTakeTheKingHasNone) {
    const auto king = static_cast<std::size_t>(square_number("h1"));
    EXPECT_EQ(tb_ordinal[tb_knight][king][static_cast<std::size_t>(square_number("g3"))], 255);
    EXPECT_FALSE(reference_index("knk", 0, square_numbers("a1 g3 h1"), false));
}

// ---- Senseless boards

TEST_F(HalfIndex, BoardWithoutTheManCountsItOnA1) {
    const TbEntry& entry = TbCatalogue[static_cast<std::size_t>(table_row("kqk"))];
    for (const char* const king : {"a1", "b1"}) {
        TableBoards boards = boards_of("kqk", {square_number("h8"), 0, square_number(king)});
        boards.first[mailbox_square(0)] = 0;
        const auto pair = reference_pair(true, square_number(king), square_number("h8"));
        ASSERT_TRUE(pair);
        EXPECT_EQ(entry.index_fn[1](boards.first, boards.second, tb_no_en_passant, 0), *pair * 62)
            << king;
    }
}

TEST_F(HalfIndex, KingsSideBySideHaveTheNumberOfNoPair) {
    EXPECT_EQ(engine_index("kqk", 1, "b1 h8 a1"), 4000U * 62 + 63 - 2);
}

TEST_F(HalfIndex, KingsSideBySideBeginAtZeroWithEnumeratedMen) {
    EXPECT_EQ(engine_index("kpk", 0, "a1 c2 b1"), 2U);
}

TEST_F(HalfIndex, BoardsAreEmptiedOfTheirMen) {
    TableBoards boards = boards_of("kbnkp", square_numbers("e1 a3 g8 c6 f5"));
    const TbEntry& entry = TbCatalogue[static_cast<std::size_t>(table_row("kbnkp"))];
    static_cast<void>(entry.index_fn[0](boards.first, boards.second, tb_no_en_passant, 0));
    EXPECT_EQ(boards.first, TbBoard{});
    EXPECT_EQ(boards.second, TbBoard{});
}
