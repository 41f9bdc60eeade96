// SPDX-License-Identifier: MIT
// The road of a move from the interface.
#include "shell/move_input.h"

#include <gtest/gtest.h>
#include <memory>

#include "board/generate.h"
#include "board/set_up.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "support/captured_output.h"
#include "support/fake_clock.h"
#include "support/position.h"
#include "support/reset_all.h"

class MoveInput : public testing::Test {
  protected:
    MoveInput() {
        reset_all();
        reset_fake_clock();
        set_start_position(table_);
        game_store(white, table_.Array.data());
        engine.force_mode = true;
        engine.max_depth = 1;
    }
    ~MoveInput() override { reset_all(); }

    /// Offers a word with the legal moves of the moment; what was printed goes to `output_`.
    bool play(const std::string& word) {
        const auto legal = std::make_unique<MoveList>();
        cur_moves = legal.get();
        gen_legal(table_, table_.side);
        const CapturedOutput output;
        const bool played = play_move_word(table_, *legal, word);
        output_ = output.text();
        return played;
    }

    void play_all(std::initializer_list<const char*> words) {
        for (const char* word : words) {
            ASSERT_TRUE(play(word)) << word;
        }
    }

    Table table_;
    std::string output_;
};

TEST_F(MoveInput, RecordsAMoveWithoutAnAnswerInForceMode) {
    EXPECT_TRUE(play("e2e4"));
    EXPECT_EQ(output_, "");
    EXPECT_EQ(table_.at(e4), w_pawn);
    EXPECT_EQ(table_.side, black);
    EXPECT_EQ(table_.ep_flag, 1);
    EXPECT_EQ(engine.game_plies, 1);
    EXPECT_EQ(engine.game_line, "e2e4");
    EXPECT_EQ(engine.fifty_count, 0);
    EXPECT_EQ(game_top, 1);
    EXPECT_TRUE(play("g8f6"));
    EXPECT_EQ(engine.game_line, "e2e4g8f6");
    EXPECT_EQ(engine.game_plies, 2);
    EXPECT_EQ(engine.fifty_count, 1);
    EXPECT_EQ(game_top, 2);
}

TEST_F(MoveInput, WordThatNamesNoLegalMoveChangesNothing) {
    const Table before = table_;
    for (const char* word : {"e2e5", "E2E4", "e2", "e2e", "e2e4qq", "name", "draw", "quit", "    ",
                             "e7e5", "i9i9", "e1g1", "", "a1zz", "e4e2"}) {
        EXPECT_FALSE(play(word)) << word;
    }
    EXPECT_TRUE(table_ == before);
    EXPECT_EQ(engine.game_plies, 0);
    EXPECT_EQ(engine.game_line, "");
    EXPECT_EQ(game_top, 0);
}

TEST_F(MoveInput, FifthCharacterOfAPlainMoveIsDropped) {
    EXPECT_TRUE(play("e2e4q"));
    EXPECT_EQ(table_.at(e4), w_pawn);
    EXPECT_EQ(output_, "");
    EXPECT_TRUE(play("e7e5x"));
    EXPECT_EQ(engine.game_line, "e2e4e7e5");
}

TEST_F(MoveInput, PromotionTakesTheLetterInEitherCase) {
    for (const auto& [letter, white_man, black_man] : {std::tuple{'q', w_queen, b_queen},
                                                       {'Q', w_queen, b_queen},
                                                       {'r', w_rook, b_rook},
                                                       {'R', w_rook, b_rook},
                                                       {'b', w_bishop, b_bishop},
                                                       {'B', w_bishop, b_bishop},
                                                       {'n', w_knight, b_knight},
                                                       {'N', w_knight, b_knight}}) {
        table_ = position_from_fen("8/4P3/7k/8/8/7K/4p3/8 w - -");
        EXPECT_TRUE(play(std::string("e7e8") + letter));
        EXPECT_EQ(table_.at(e8), white_man);
        EXPECT_TRUE(play(std::string("e2e1") + letter));
        EXPECT_EQ(table_.at(e1), black_man);
        EXPECT_EQ(output_, "");
    }
    EXPECT_EQ(engine.game_line.substr(0, 16), "e7e8e2e1e7e8e2e1") << "no letters there";
}

TEST_F(MoveInput, PromotionWithoutALetterIsPlayedAndReported) {
    for (const char* word : {"e7e8", "e7e8k", "e7e8x"}) {
        table_ = position_from_fen("8/4P3/7k/8/8/7K/4p3/8 w - -");
        EXPECT_TRUE(play(word));
        EXPECT_EQ(output_.substr(0, 47), "SUPER ERROR w_figure(posInfo)  == 0 pos Info: 0") << word;
        EXPECT_EQ(table_.at(e8), empty_square) << "the pawn vanishes";
        EXPECT_EQ(table_.at(e7), empty_square);
        EXPECT_EQ(table_.side, black);
    }
}

TEST_F(MoveInput, CaptureAndPawnMoveSetTheFiftyCountBack) {
    play_all({"g1f3", "g8f6", "f3e5"});
    EXPECT_EQ(engine.fifty_count, 3);
    play_all({"f6e4", "e5d7"});
    EXPECT_EQ(engine.fifty_count, 0) << "a capture";
    play_all({"e8d7", "b1c3"});
    EXPECT_EQ(engine.fifty_count, 1);
    play_all({"h7h6"});
    EXPECT_EQ(engine.fifty_count, 0) << "a pawn move";
}

TEST_F(MoveInput, StartingPositionOfTheRecordCountsTowardsARepetition) {
    play_all({"g1f3", "g8f6", "f3g1", "f6g8", "g1f3", "g8f6", "f3g1"});
    engine.force_mode = false;
    engine.make_moves_game = 5;
    EXPECT_TRUE(play("f6g8"));
    EXPECT_EQ(output_, "1/2-1/2 {Draw by repetition}\n") << "and no answer";
    EXPECT_EQ(table_.side, white);
    EXPECT_EQ(engine.make_moves_game, 5);
}

TEST_F(MoveInput, NoClaimInForceMode) {
    engine.fifty_count = 150;
    play_all({"g1f3", "g8f6", "f3g1", "f6g8", "g1f3", "g8f6", "f3g1", "f6g8"});
    EXPECT_EQ(output_, "");
    EXPECT_EQ(engine.fifty_count, 158);
}

TEST_F(MoveInput, FiftyMovesStopTheAnswer) {
    engine.force_mode = false;
    engine.fifty_count = 99;
    EXPECT_TRUE(play("g1f3"));
    EXPECT_EQ(output_, "1/2-1/2 {Draw by the 50 moves rule}\n");
    EXPECT_EQ(table_.side, black);
}

TEST_F(MoveInput, InsufficientMaterialIsClaimedAndAnswered) {
    table_ = position_from_fen("4k3/8/8/8/8/8/8/4K1N1 w - -");
    engine.force_mode = false;
    EXPECT_TRUE(play("g1f3"));
    EXPECT_EQ(output_.substr(0, 40), "1/2-1/2 {Draw by insufficient material}\n");
    const std::size_t answer = output_.find("\nmove e8");
    ASSERT_NE(answer, std::string::npos) << output_;
    // The answer is claimed again, before it is announced.
    EXPECT_NE(output_.find("1/2-1/2 {Draw by insufficient material}\n", 1), std::string::npos);
    EXPECT_EQ(table_.side, white);
    EXPECT_EQ(game_top, 2) << "the start, the user's move and the answer";
    EXPECT_EQ(engine.fifty_count, 0) << "every searched move sets it back";
}

TEST_F(MoveInput, OrdinaryMoveIsAnswered) {
    engine.force_mode = false;
    EXPECT_TRUE(play("e2e4"));
    EXPECT_NE(output_.find("\nmove "), std::string::npos) << output_;
    EXPECT_EQ(table_.side, white);
    EXPECT_EQ(game_top, 2);
    EXPECT_EQ(engine.make_moves_game, 1);
}

TEST_F(MoveInput, ComputerMovesForTheSideToMove) {
    const CapturedOutput output;
    let_computer_move(table_);
    EXPECT_EQ(table_.side, black);
    let_computer_move(table_);
    EXPECT_EQ(table_.side, white);
    EXPECT_EQ(engine.make_moves_game, 2);
    EXPECT_EQ(game_top, 2);
}

TEST_F(MoveInput, CastlingAndEnPassantArePlayedWhole) {
    play_all({"e2e4", "a7a6", "e4e5", "d7d5", "e5d6"});
    EXPECT_EQ(table_.at(d5), empty_square);
    EXPECT_EQ(table_.Kol_figur, 31);
    play_all({"a6a5", "g1f3", "a5a4", "f1e2", "a4a3", "e1g1"});
    EXPECT_EQ(table_.at(g1), w_king);
    EXPECT_EQ(table_.at(f1), w_rook);
    EXPECT_EQ(table_.at(h1), empty_square);
}
