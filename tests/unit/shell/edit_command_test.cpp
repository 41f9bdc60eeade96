// SPDX-License-Identifier: MIT
// The position set-up dialogue.
#include "shell/edit_command.h"

#include <gtest/gtest.h>
#include <sstream>

#include "board/set_up.h"
#include "board/square_tables.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "support/generated.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

/// Runs the dialogue on `table`; gives the first word that it left.
std::string edit(Table& table, const std::string& words) {
    std::istringstream stream(words);
    WordReader in(stream);
    run_edit(table, in);
    return in.word().value_or("(end)");
}

}  // namespace

class EditCommand : public testing::Test {
  protected:
    EditCommand() {
        reset_all();
        set_start_position(table_);
        before_ = table_;
    }
    ~EditCommand() override { reset_all(); }

    Table table_;
    Table before_;
};

TEST_F(EditCommand, EndsAtEndOrDotOrTheEndOfTheInput) {
    EXPECT_EQ(edit(table_, "end after"), "after");
    EXPECT_EQ(edit(table_, ". after"), "after");
    EXPECT_EQ(edit(table_, "END after"), "after");
    EXPECT_EQ(edit(table_, "e4 Xa1"), "(end)");
    EXPECT_EQ(edit(table_, ""), "(end)");
    EXPECT_TRUE(table_ == before_);
}

TEST_F(EditCommand, SetsTheCountsOfTheGame) {
    engine.fifty_count = 7;
    engine.game_plies = 9;
    engine.force_mode = true;
    game_store(white, table_.Array.data());
    edit(table_, ".");
    EXPECT_EQ(engine.fifty_count, 0);
    EXPECT_EQ(engine.game_plies, 1);
    EXPECT_TRUE(engine.force_mode) << "the mode stays";
    EXPECT_EQ(game_top, 0) << "nothing is stored and nothing forgotten";
}

TEST_F(EditCommand, CapitalLettersFollowTheColour) {
    edit(table_, "# Pa2 Nb3 Bc3 Rd3 Qe3 Kf3 c Pa5 Nb5 Bc5 Rd5 Qe5 Kf5 .");
    Table expected = before_;
    clear_position(expected);
    expected.at(a2) = w_pawn;
    expected.at(b3) = w_knight;
    expected.at(c3) = w_bishop;
    expected.at(d3) = w_rook;
    expected.at(e3) = w_queen;
    expected.at(f3) = w_king;
    expected.at(a5) = b_pawn;
    expected.at(b5) = b_knight;
    expected.at(c5) = b_bishop;
    expected.at(d5) = b_rook;
    expected.at(e5) = b_queen;
    expected.at(f5) = b_king;
    expected.xywK = f3;
    expected.xybK = f5;
    expected.Kol_figur = 12;
    EXPECT_TRUE(table_ == expected);
}

TEST_F(EditCommand, SmallLettersAreAlwaysBlack) {
    edit(table_, "# pa2 nb2 bc2 rd2 qe2 kf2 c pa3 kf3 .");
    EXPECT_EQ(table_.at(a2), b_pawn);
    EXPECT_EQ(table_.at(b2), b_knight);
    EXPECT_EQ(table_.at(c2), b_bishop);
    EXPECT_EQ(table_.at(d2), b_rook);
    EXPECT_EQ(table_.at(e2), b_queen);
    EXPECT_EQ(table_.at(f2), b_king);
    EXPECT_EQ(table_.at(a3), b_pawn);
    EXPECT_EQ(table_.at(f3), b_king);
    EXPECT_EQ(table_.xybK, f3);
    EXPECT_EQ(table_.xywK, e1);
    EXPECT_EQ(table_.Kol_figur, 8);
}

TEST_F(EditCommand, ColourDoesNotComeBackToWhite) {
    edit(table_, "# C Pa2 c Pb2 w Pc2 clear Pd2 .");
    EXPECT_EQ(table_.at(a2), empty_square) << "cleared";
    EXPECT_EQ(table_.at(d2), b_pawn);
    edit(table_, "Pa2 .");
    EXPECT_EQ(table_.at(a2), w_pawn) << "every dialogue begins with White";
}

TEST_F(EditCommand, ClearsByThreeSpellings) {
    for (const char* word : {"#", "clear", "CLEAR"}) {
        table_ = before_;
        Table expected = before_;
        clear_position(expected);
        edit(table_, std::string(word) + " .");
        EXPECT_TRUE(table_ == expected) << word;
    }
}

TEST_F(EditCommand, DigitZeroEmptiesASquareAndCountsNothing) {
    edit(table_, "0e2 .");
    EXPECT_EQ(table_.at(e2), empty_square);
    EXPECT_EQ(table_.Kol_figur, 32);
    before_.at(e2) = empty_square;
    EXPECT_TRUE(table_ == before_);
}

TEST_F(EditCommand, OtherFirstCharactersDoNothing) {
    edit(table_, "xe4 Xe2 1e2 ee2 Oe2 oe2 wPa2 end");
    EXPECT_TRUE(table_ == before_);
}

TEST_F(EditCommand, WordWithoutASquareWritesBesideTheBoard) {
    edit(table_, "P .");
    EXPECT_EQ(table_.Array[0], w_pawn);
    EXPECT_EQ(table_.Kol_figur, 33);
    edit(table_, "qi9 .");
    EXPECT_EQ(table_.Array[0], b_queen);
    edit(table_, "K .");
    EXPECT_EQ(table_.Array[0], w_king);
    EXPECT_EQ(table_.xywK, 0);
    edit(table_, "PE2 .");
    EXPECT_EQ(table_.Array[0], w_pawn) << "names of squares are small letters";
    edit(table_, "0 .");
    EXPECT_EQ(table_.Array[0], empty_square);
    EXPECT_EQ(table_.Kol_figur, 36);
}

TEST_F(EditCommand, ManOnAnOccupiedSquareCountsTwice) {
    edit(table_, "Qe2 .");
    EXPECT_EQ(table_.at(e2), w_queen);
    EXPECT_EQ(table_.Kol_figur, 33);
}

// Bitboards, rights, side, en passant state and keys stay: after a clearing the generators, which
// work from the bitboards, find king moves only.
TEST_F(EditCommand, OnlyMailboxMenAndKingsChange) {
    edit(table_, "# Ke1 Qd1 Ra1 c Ke8 Qd8 .");
    EXPECT_EQ(table_.WQuins | table_.WRook | table_.BQuins, 0U);
    EXPECT_EQ(table_.castling, 0U);
    EXPECT_EQ(table_.hash_lock, 0U);
    EXPECT_EQ(generated_text(gen_all, table_), "e1d2 e1e2 e1f2 e1d1 e1f1");
}

TEST_F(EditCommand, WithoutClearingTheBitboardsShowTheOldPosition) {
    edit(table_, "0a2 0b1 Pe4 .");
    EXPECT_EQ(table_.WPawns, before_.WPawns);
    EXPECT_EQ(table_.WKnight, before_.WKnight);
    EXPECT_EQ(table_.castling, 15U);
    EXPECT_EQ(table_.Kol_figur, 33);
    EXPECT_EQ(table_.hash_lock, before_.hash_lock);
}
