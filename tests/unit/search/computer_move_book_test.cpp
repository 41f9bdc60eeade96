// SPDX-License-Identifier: MIT
// The computer's move out of the opening book: what is announced and counted, and what is left as
// it was. A book is trusted: impossible moves are made as they stand.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/random.h"
#include "search/computer_move.h"
#include "search/hash_table.h"
#include "search/search_state.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "shell/log.h"
#include "support/computer_move_scene.h"
#include "support/fake_clock.h"
#include "support/loaded_books.h"
#include "support/position.h"
#include "support/search_scene.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* bare_kings_and_rooks = "r3k2r/8/8/8/8/8/8/R3K2R w KQkq -";

class ComputerMoveBook : public ComputerMoveScene {
  protected:
    void SetUp() override {
        ComputerMoveScene::SetUp();
        engine.book_out = false;
        table = start_position();
        no_time();  // where it comes to a search, it is none
    }

    /// Plays one move of a book of this line for either side.
    Lines play_of_book(const std::string& line) {
        load_books(line + "\n", line + "\n");
        return play();
    }

    /// Plays one move from the position as it stands at the start of a game.
    Lines play_from(const char* fen, const std::string& line) {
        engine.game_plies = 0;
        engine.game_line.clear();
        set(fen);
        return play_of_book(line);
    }
};

}  // namespace

TEST_F(ComputerMoveBook, CandidatesAreListedBeforeTheMove) {
    load_books("e2e4\ne2e4\ne2e4\n", "");
    EXPECT_EQ(play(), (Lines{"1 e2e4 3 ", "move e2e4 "}));
    load_books("", "e2e4e7e5\n");
    table.side = black;
    EXPECT_EQ(play(), (Lines{"1 e7e5 1 ", "move e7e5 "}));
}

TEST_F(ComputerMoveBook, DrawnMoveIsPlayed) {
    load_books("e2e4\nd2d4\n", "");
    seed_random(1);  // 41: the second of two
    EXPECT_EQ(play(), (Lines{"1 e2e4 1 ", "2 d2d4 1 ", "move d2d4 "}));
    EXPECT_EQ(table.at(d4), w_pawn);
}

TEST_F(ComputerMoveBook, MoveIsMadeAndTheSideIsKept) {
    Table expected = after(table, {"e2e4"});
    expected.side = white;
    play_of_book("e2e4");
    EXPECT_EQ(table, expected);
}

TEST_F(ComputerMoveBook, MoveIsCountedAndWritten) {
    engine.game_plies = 2;
    engine.game_line = "e2e4e7e5";
    engine.make_moves_game = 1;
    play_of_book("e2e4e7e5g1f3");
    EXPECT_EQ(engine.game_plies, 3);
    EXPECT_EQ(engine.game_line, "e2e4e7e5g1f3");
    EXPECT_EQ(engine.make_moves_game, 2);
    EXPECT_FALSE(engine.book_out);
}

// The mark book-move-leaves-no-record.
TEST_F(ComputerMoveBook, MovesMadeDoNotWrapAtTheControl) {
    engine.all_moves_game = 2;
    engine.make_moves_game = 1;
    play_of_book("e2e4");
    EXPECT_EQ(engine.make_moves_game, 2);
    engine.all_moves_game = 40;
    engine.make_moves_game = 39;
    play_of_book("e2e4e7e5");
    EXPECT_EQ(engine.make_moves_game, 40);
}

TEST_F(ComputerMoveBook, SideThatIsPlayedForChoosesTheBook) {
    load_books("e2e4\n", "d2d4\n");
    table.side = black;
    engine.root_side = white;
    EXPECT_EQ(play(), (Lines{"1 d2d4 1 ", "move d2d4 "}));
    EXPECT_EQ(engine.root_side, black);
}

TEST_F(ComputerMoveBook, NothingIsSearched) {
    TotalNodes = 77;
    ply = 3;
    vetka[0][1] = {e7, e5, 0};
    search_start_tick = 5;
    time_limit_ms = 6;
    expected_clock = 123;
    const int age = hash_age;
    play_of_book("e2e4");
    EXPECT_EQ(TotalNodes, 77U);
    EXPECT_EQ(ply, 3);
    EXPECT_EQ(vetka[0][1], (Move{e7, e5, 0}));
    EXPECT_EQ(search_start_tick, 5U);
    EXPECT_EQ(time_limit_ms, 6U);
    EXPECT_EQ(expected_clock, 123);
    EXPECT_EQ(hash_age, age);
    EXPECT_EQ(fake_clock_readings, 0U);
}

// The mark book-move-leaves-no-record.
TEST_F(ComputerMoveBook, RecordCountOfFiftyAndHintStay) {
    stood_in_game(table, 1);
    engine.fifty_count = 7;
    engine.hint_valid = true;
    engine.hint_move = {d7, d5, 0};
    play_of_book("g1f3");
    EXPECT_EQ(game_top, 0);
    EXPECT_EQ(engine.fifty_count, 7);
    EXPECT_TRUE(engine.hint_valid);
    EXPECT_EQ(engine.hint_move, (Move{d7, d5, 0}));
    play_of_book("g1f3d2d4");  // a pawn does not set the count back
    EXPECT_EQ(engine.fifty_count, 7);
}

TEST_F(ComputerMoveBook, NothingIsClaimed) {
    set("7k/8/8/8/8/8/8/K7 w - -");
    stood_in_game(after(table, {"a1b1"}), 2);
    engine.fifty_count = 100;
    EXPECT_EQ(play_of_book("a1b1"), (Lines{"1 a1b1 1 ", "move a1b1 "}));
}

TEST_F(ComputerMoveBook, BookThatIsOutIsNotAsked) {
    engine.book_out = true;
    book_white_lines[0] = {'e', '2', 'e', '4'};
    book_white_count = 1;
    EXPECT_EQ(play(), Lines{"move b1a3 "});
    EXPECT_EQ(engine.game_line, "");
    EXPECT_EQ(engine.game_plies, 1);
}

TEST_F(ComputerMoveBook, WithoutACandidateTheSearchGoesOnAndTheBookIsOut) {
    EXPECT_EQ(play_of_book("e2e4"), (Lines{"1 e2e4 1 ", "move e2e4 "}));
    engine.game_line = "d2d4";
    table = start_position();
    EXPECT_EQ(play(), Lines{"move b1a3 "});
    EXPECT_TRUE(engine.book_out);
    EXPECT_EQ(engine.game_line, "d2d4");
    EXPECT_EQ(engine.game_plies, 2);
    EXPECT_EQ(game_top, 0);
}

TEST_F(ComputerMoveBook, LogTellsOfALookupWithoutACandidate) {
    const TemporaryFolder folder;
    for (const bool information : {false, true}) {
        write_file("corvane.log", "");
        log_enabled = true;
        add_info_in_log = information;
        engine.book_out = false;
        play();
        const Lines lines = log_lines();
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines.front() == "OPEN BOOK DO NOT", information) << lines.front();
        write_file("corvane.log", "");
        play();  // the book is out: it is not said again
        for (const std::string& line : log_lines()) {
            EXPECT_NE(line, "OPEN BOOK DO NOT");
        }
    }
}

TEST_F(ComputerMoveBook, LogOfABookMoveIsWhatIsPrinted) {
    const TemporaryFolder folder;
    log_enabled = add_info_in_log = true;
    load_books("e2e4\n", "");
    write_file("corvane.log", "");
    play();
    EXPECT_EQ(log_lines(), (Lines{"1 e2e4 1 ", "move e2e4 "}));
}

TEST_F(ComputerMoveBook, KingsCastle) {
    for (const char* move : {"e1g1", "e1c1", "e8g8", "e8c8"}) {
        set(bare_kings_and_rooks);
        table.side = move[1] == '1' ? white : black;
        Table expected = after(table, {move});
        expected.side = table.side;
        const Side side = table.side;
        set(bare_kings_and_rooks);
        table.side = side;
        engine.game_plies = 0;
        EXPECT_EQ(play_of_book(move),
                  (Lines{std::string("1 ") + move + " 1 ", std::string("move ") + move + " "}));
        EXPECT_EQ(table.Array, expected.Array) << move;
        EXPECT_EQ(table.castling, expected.castling) << move;
    }
}

// A pawn has no business on its last rank. Should it stand there, the report of a promotion without
// a piece shows what the move was labelled with.
TEST_F(ComputerMoveBook, OnlyAKingCastles) {
    for (const char* move : {"e8g8", "e8c8"}) {
        const Lines lines = play_from("4P3/8/7k/8/8/8/8/K7 w - -", move);
        ASSERT_GT(lines.size(), 2U);
        EXPECT_EQ(lines[1], std::string("move ") + move + " ");
        EXPECT_EQ(lines[2], "SUPER ERROR w_figure(posInfo)  == 0 pos Info: 0");
    }
    for (const char* move : {"e1g1", "e1c1"}) {
        const Lines lines = play_from("7k/8/8/8/8/7K/8/4p3 b - -", move);
        ASSERT_GT(lines.size(), 2U);
        EXPECT_EQ(lines[2], "SUPER ERROR b_figure(posInfo)  == 0 pos Info: 0");
    }
}

TEST_F(ComputerMoveBook, MoveFromAnEmptySquareOnlyTakes) {
    const Table before = table;
    EXPECT_EQ(play_of_book("e4e5"), (Lines{"1 e4e5 1 ", "move e4e5 "}));
    EXPECT_EQ(table.Array, before.Array);
    EXPECT_EQ(engine.game_line, "e4e5");
    play_from("7k/8/8/4p3/8/8/8/K7 w - -", "e4e5");
    EXPECT_EQ(table.BPawns, 0U);
    EXPECT_EQ(table.Kol_figur, 2);
}

TEST_F(ComputerMoveBook, MoveAgainstTheRulesIsMade) {
    play_of_book("a1a8");
    EXPECT_EQ(table.at(a8), w_rook);
    EXPECT_EQ(table.at(a1), empty_square);
    play_from("7k/8/8/8/8/8/8/K7 w - -", "h8g8");  // the other side's man
    EXPECT_EQ(table.at(g8), b_king);
    play_from("7k/8/8/8/8/8/4P3/K7 w - -", "e2e2");
    EXPECT_EQ(table.at(e2), empty_square);
}

TEST_F(ComputerMoveBook, PawnVanishesOnTheLastRankWithAReport) {
    const Lines lines = play_from("7k/4P3/8/8/8/8/8/K7 w - -", "e7e8");
    ASSERT_GT(lines.size(), 6U);
    EXPECT_EQ(lines[0], "1 e7e8 1 ");
    EXPECT_EQ(lines[1], "move e7e8 ");
    EXPECT_EQ(lines[2], "SUPER ERROR w_figure(posInfo)  == 0 pos Info: 0");
    EXPECT_EQ(table.at(e7), empty_square);
    EXPECT_EQ(table.at(e8), empty_square);
    EXPECT_EQ(engine.game_line, "e7e8");
}

TEST_F(ComputerMoveBook, SearchAfterATakenKingComesToItsEnd) {
    engine.st_mode = false;
    engine.max_depth = 3;
    for (const Side side : {white, black}) {
        engine.book_out = false;
        Lines lines = play_from("r3k2r/8/8/8/8/8/4R3/R3K2R w KQkq -", "e2e8");
        EXPECT_EQ(lines, (Lines{"1 e2e8 1 ", "move e2e8 "}));
        EXPECT_EQ(table.at(e8), w_rook);
        table.side = side;
        engine.book_out = true;
        lines = play();
        EXPECT_TRUE(is_move_line(last_of(lines)));
    }
}
