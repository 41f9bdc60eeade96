// SPDX-License-Identifier: MIT
// Games that become lines: results, line ends, what begins a game and what ends its line. Faults of
// files stand in book_builder_faults_test, words of single moves in short_algebraic_test.
#include "book/book_builder.h"

#include "book/book_lines.h"
#include "support/book_scene.h"

namespace {

const std::string all_went_well = "Creating BOOK!\nDone\n";

/// One game as files of games have it.
std::string game(const std::string& result, const std::string& moves) {
    return "[Event \"a\"]\n[Result \"" + result + "\"]\n\n" + moves + " " + result + "\n\n";
}

}  // namespace

class BookBuilder : public BookScene {};

// --- who gets a line ----------------------------------------------------------------------------

TEST_F(BookBuilder, WhitesWinIsALineOfWhitesBook) {
    EXPECT_EQ(build(game("1-0", "1. e4 e5 2. Nf3")), all_went_well);
    EXPECT_EQ(read_file("corvane.tmp"), " w   1. e4 e5 2. Nf3 1-0  ");
    EXPECT_EQ(read_file("cwhite"), "\ne2e4e7e5g1f3\n");
    EXPECT_EQ(read_file("cblack"), "\n");
}

TEST_F(BookBuilder, BlacksWinIsALineOfBlacksBook) {
    EXPECT_EQ(build(game("0-1", "1. e4 e5 2. Nf3")), all_went_well);
    EXPECT_EQ(read_file("cwhite"), "\n");
    EXPECT_EQ(read_file("cblack"), "\ne2e4e7e5g1f3\n");
}

TEST_F(BookBuilder, DrawIsALineOfBothBooks) {
    EXPECT_EQ(build(game("1/2-1/2", "1. e4 e5 2. Nf3")), all_went_well);
    EXPECT_EQ(read_file("cwhite"), "\ne2e4e7e5g1f3\n");
    EXPECT_EQ(read_file("cblack"), "\ne2e4e7e5g1f3\n");
}

TEST_F(BookBuilder, LineEndOpensALineInItsOwnFilesAlone) {
    build(game("1-0", "1. e4") + game("1-0", "1. d4") + game("0-1", "1. c4") +
          game("1/2-1/2", "1. b4") + game("0-1", "1. a4"));
    EXPECT_EQ(read_file("cwhite"), "\ne2e4\nd2d4\nb2b4\n");
    EXPECT_EQ(read_file("cblack"), "\nc2c4\nb2b4\na2a4\n");
}

TEST_F(BookBuilder, LineEndAtTheEndGoesToBothWhoeverWonTheLastGame) {
    build(game("0-1", "1. e4") + game("1-0", "1. d4"));
    EXPECT_EQ(read_file("cwhite"), "\nd2d4\n");
    EXPECT_EQ(read_file("cblack"), "\ne2e4\n");
}

TEST_F(BookBuilder, WithoutALetterTheFirstGameIsADraw) {
    build("[Result \"*\"]\n1. e4 *\n");
    EXPECT_EQ(read_file("cwhite"), "e2e4\n");
    EXPECT_EQ(read_file("cblack"), "e2e4\n");
}

TEST_F(BookBuilder, GameWithoutALetterKeepsTheLastResult) {
    build(game("0-1", "1. e4") + game("*", "1. d4"));
    EXPECT_EQ(read_file("cwhite"), "\n");
    EXPECT_EQ(read_file("cblack"), "\ne2e4\nd2d4\n");
}

TEST_F(BookBuilder, LetterInACommentChangesTheResultThereAndThen) {
    build("1. e4 w e5 b 2. d4 d d5 W 3. c4 B c5 D 4. b4");
    EXPECT_EQ(read_file("cwhite"), "e2e4e7e5d7d5c2c4b2b4\n");
    EXPECT_EQ(read_file("cblack"), "e2e4d2d4d7d5c7c5b2b4\n");
}

TEST_F(BookBuilder, LetterCountsWhileAGameIsSkipped) {
    build("1. e4 oh b 1. d4 oh W 1. c4 oh d 1. b4");
    EXPECT_EQ(read_file("cwhite"), "e2e4\nc2c4\nb2b4\n");
    EXPECT_EQ(read_file("cblack"), "e2e4\nd2d4\nb2b4\n");
}

TEST_F(BookBuilder, OtherLettersAreNoResults) {
    build("w c e v a x k 0 1. e4 b. w- (b b) \"d\"");
    EXPECT_EQ(read_file("cwhite"), "\ne2e4\n");
    EXPECT_EQ(read_file("cblack"), "\n");
}

TEST_F(BookBuilder, LastResultTagOfAGameCounts) {
    build("[Round \"0-1\"][Result \"1-0\"]1. e4");
    EXPECT_EQ(read_file("cwhite"), "\ne2e4\n");
    EXPECT_EQ(read_file("cblack"), "\n");
}

// --- lines and line ends ------------------------------------------------------------------------

TEST_F(BookBuilder, FirstNumberAsFirstWordWritesNoLineEnd) {
    build("1. e4 e5\n");
    EXPECT_EQ(read_file("cwhite"), "e2e4e7e5\n");
    build("\n\n  1. d4\n");
    EXPECT_EQ(read_file("cwhite"), "e2e4e7e5\nd2d4\n");
}

TEST_F(BookBuilder, FirstNumberAsFirstWordGoesOnWithAnUnfinishedLine) {
    write_file("cwhite", "c2c4\nd2d4");
    write_file("cblack", "g2g4");
    build("1. e4 e5");
    EXPECT_EQ(read_file("cwhite"), "c2c4\nd2d4e2e4e7e5\n");
    EXPECT_EQ(read_file("cblack"), "g2g4e2e4e7e5\n");
}

TEST_F(BookBuilder, AnyWordBeforeTheFirstNumberMakesTheLineEnd) {
    for (const char* const word : {"w", "*", "hello", "...", "1-0", "2.", "{}", "\xfe"}) {
        write_file("cwhite", "");
        build(std::string(word) + " 1. e4");
        EXPECT_EQ(read_file("cwhite"), "\ne2e4\n") << word;
    }
}

TEST_F(BookBuilder, MovesBeforeTheFirstNumberAreAGameOfTheirOwn) {
    EXPECT_EQ(line_of("e4 e5 1. d4 d5"), "e2e4e7e5\nd2d4d7d5");
    EXPECT_EQ(line_of("2. e4 e5 1. d4 d5"), "e2e4e7e5\nd2d4d7d5");
}

TEST_F(BookBuilder, EveryFurtherFirstNumberBeginsAGame) {
    EXPECT_EQ(line_of("1. e4 1. d4 1. e4"), "e2e4\nd2d4\ne2e4");
    EXPECT_EQ(line_of("1. 1. 1. e4"), "\n\ne2e4") << "the first of them only opened the game";
}

TEST_F(BookBuilder, NewGameBeginsWithTheStartingPosition) {
    EXPECT_EQ(line_of("1. e4 e5 2. Nf3 1. e4 e5 2. Nf3 Nc6"), "e2e4e7e5g1f3\ne2e4e7e5g1f3b8c6");
}

TEST_F(BookBuilder, OnlyTheBareFirstNumberBeginsAGame) {
    EXPECT_EQ(line_of("1. e4 11. e5 1... d4 d5 21. (1. 1 1.. c4"), "e2e4e7e5d2d4d7d5c2c4");
}

TEST_F(BookBuilder, WordsThatEndInADotArePassedOver) {
    EXPECT_EQ(line_of("1. e4 1... e5 2. . .. Nf6. d5. Nf3 well. a6. Nc6 33."), "e2e4e7e5g1f3b8c6");
}

TEST_F(BookBuilder, NumberGluedToItsMoveLosesTheGame) {
    EXPECT_EQ(line_of("1.e4 e5 2.Nf3 Nc6"), "");
    EXPECT_EQ(line_of("1.e4 e5 2.Nf3 Nc6 1. d4"), "\nd2d4");
    EXPECT_EQ(line_of("1. e4 e5 2.Nf3 Nc3"), "e2e4e7e5b1c3") << "2.Nf3 is too long: White moves";
}

TEST_F(BookBuilder, TwoRunsAddTwice) {
    const std::string games = game("1-0", "1. e4") + game("1/2-1/2", "1. d4");
    EXPECT_EQ(build(games), all_went_well);
    EXPECT_EQ(build(games), all_went_well);
    EXPECT_EQ(read_file("cwhite"), "\ne2e4\nd2d4\n\ne2e4\nd2d4\n");
    EXPECT_EQ(read_file("cblack"), "\nd2d4\n\nd2d4\n");
}

TEST_F(BookBuilder, OldLinesStayInFront) {
    write_file("cwhite", "any text\n");
    build(game("1-0", "1. e4"));
    EXPECT_EQ(read_file("cwhite"), "any text\n\ne2e4\n");
    EXPECT_EQ(read_file("cblack"), "\n");
}

TEST_F(BookBuilder, TemporaryFileIsWrittenAnew) {
    write_file("corvane.tmp", "w 1. a3 a6 and so on");
    build("1. e4");
    EXPECT_EQ(read_file("corvane.tmp"), "1. e4");
    EXPECT_EQ(read_file("cwhite"), "e2e4\n");
}

TEST_F(BookBuilder, CarriageReturnsChangeNothing) {
    build("[Result \"1-0\"]\r\n\r\n1. e4 e5\r\n2. Nf3 1-0\r\n");
    EXPECT_EQ(read_file("corvane.tmp"), "w   1. e4 e5 2. Nf3 1-0 ");
    EXPECT_EQ(read_file("cwhite"), "\ne2e4e7e5g1f3\n");
}

TEST_F(BookBuilder, AnyWhiteSpaceSeparatesWords) {
    EXPECT_EQ(line_of("1.\te4\re5\v2.\fNf3\n\nNc6"), "e2e4e7e5g1f3b8c6");
}

// --- moves --------------------------------------------------------------------------------------

TEST_F(BookBuilder, SignsOfCheckAndCaptureMeanNothing) {
    EXPECT_EQ(line_of("1. e4 d5 2. exd5 Qxd5 3. Nc3 Qe5+ 4. Be2"), "e2e4d7d5e4d5d8d5b1c3d5e5f1e2");
}

TEST_F(BookBuilder, BothSidesCastleOnBothWings) {
    EXPECT_EQ(line_of("1. e4 e5 2. Nf3 Nf6 3. Bc4 Bc5 4. O-O O-O 5. Re1 Re8"),
              "e2e4e7e5g1f3g8f6f1c4f8c5e1g1e8g8f1e1f8e8");
    EXPECT_EQ(line_of("1. d4 d5 2. Nc3 Nc6 3. Bf4 Bf5 4. Qd2 Qd7 5. O-O-O O-O-O 6. Re1 Re8"),
              "d2d4d7d5b1c3b8c6c1f4c8f5d1d2d8d7e1c1e8c8d1e1d8e8");
}

TEST_F(BookBuilder, LongCastlingIsPlayedWhateverItsLabel) {
    // The rook stands on d1 afterwards, White's king on c1, and it is Black's move.
    EXPECT_EQ(line_of("1. d4 d5 2. Nc3 Nc6 3. Bf4 Bf5 4. Qd3 a6 5. O-O-O a5 6. Rd2 a4 7. Kd1"),
              "d2d4d7d5b1c3b8c6c1f4c8f5d1d3a7a6e1c1a6a5d1d2a5a4c1d1");
}

TEST_F(BookBuilder, CastlingIsTakenWithoutAnyTest) {
    EXPECT_EQ(line_of("1. O-O O-O-O 2. Kh1 Na6 3. Kg1 Kb8"), "e1g1e8c8g1h1b8a6h1g1c8b8");
    EXPECT_EQ(line_of("1. O-O-O O-O 2. Na3 Kh8 3. Kb1"), "e1c1e8g8b1a3g8h8c1b1");
    EXPECT_EQ(line_of("1. O-O O-O 2. O-O e5"), "e1g1e8g8e1g1e7e5") << "the king has long left e1";
}

TEST_F(BookBuilder, CastlingWithoutARookBringsOne) {
    EXPECT_EQ(line_of("1. h4 a6 2. Rh3 a5 3. O-O a4 4. Re1 a3"),
              "h2h4a7a6h1h3a6a5e1g1a5a4f1e1a4a3");
    EXPECT_EQ(line_of("1. a4 h6 2. Ra3 h5 3. O-O-O h4 4. Re1 Rh5"),
              "a2a4h7h6a1a3h6h5e1c1h5h4d1e1h8h5");
    EXPECT_EQ(line_of("1. a3 h5 2. a4 Rh6 3. a5 O-O 4. a6 Re8 5. b3"),
              "a2a3h7h5a3a4h8h6a4a5e8g8a5a6f8e8b2b3");
    EXPECT_EQ(line_of("1. h3 a5 2. h4 Ra6 3. h5 O-O-O 4. h6 Re8 5. b3"),
              "h2h3a7a5h3h4a8a6h4h5e8c8h5h6d8e8b2b3");
}

TEST_F(BookBuilder, CastlingWordsAreExact) {
    const std::string opening = "e2e4e7e5g1f3g8f6f1c4f8c5";
    const std::string moves = "1. e4 e5 2. Nf3 Nf6 3. Bc4 Bc5 4. ";
    EXPECT_EQ(line_of(moves + "O-O d6"), opening + "e1g1d7d6");
    EXPECT_EQ(line_of(moves + "O-O+ d6"), opening + "e1g1d7d6") << "the sign of check is dropped";
    EXPECT_EQ(line_of(moves + "0-0 d6"), opening);
    EXPECT_EQ(line_of(moves + "o-o d6"), opening);
    EXPECT_EQ(line_of(moves + "O-O! d6"), opening);
    EXPECT_EQ(line_of(moves + "0-0-0 d3"), opening + "d2d3") << "passed over, White to move";
    EXPECT_EQ(line_of(moves + "O-O-O! d3"), opening + "d2d3");
    EXPECT_EQ(line_of(moves + "O-O-O-O d3"), opening + "d2d3");
}

TEST_F(BookBuilder, EnPassantIsPlayed) {
    // 4. Nd5 needs d5 empty: the pawn taken in passing is gone.
    EXPECT_EQ(line_of("1. e4 a6 2. e5 d5 3. exd6 a5 4. Qf3 a4 5. Qd5"),
              "e2e4a7a6e4e5d7d5e5d6a6a5d1f3a5a4f3d5");
}

TEST_F(BookBuilder, OtherLengthsLeaveThePosition) {
    EXPECT_EQ(line_of("1. e4 ! $14567 hello e5 {or}! 2. ed8=Q 1/2-1/2 Nb1d2 * Nf3"),
              "e2e4e7e5g1f3");
}

TEST_F(BookBuilder, PromotionsEndTheLineOrChangeTheSide) {
    const std::string moves = "1. b4 a5 2. bxa5 Nc6 3. a6 Nb4 4. a7 Nc6 ";
    const std::string line = "b2b4a7a5b4a5b8c6a5a6c6b4a6a7b4c6";
    EXPECT_EQ(line_of(moves + "5. a8=Q e5 6. d4"), line);
    EXPECT_EQ(line_of("1. b4 a5 2. bxa5 e6 3. a6 e5 4. axb7 Nf6 5. bxa8=Q Nc6 6. h4"),
              "b2b4a7a5b4a5e7e6a5a6e6e5a6b7g8f6")
        << "ba8=Q is passed over, so Nc6 is looked for among White's moves";
    EXPECT_EQ(line_of("1. b4 a5 2. bxa5 e6 3. a6 e5 4. axb7 Nf6 5. bxa8=Q h4 Nc6"),
              "b2b4a7a5b4a5e7e6a5a6e6e5a6b7g8f6h2h4b8c6");
}

TEST_F(BookBuilder, BarePromotionIsPlayedAsAQueen) {
    EXPECT_EQ(line_of("1. b4 a5 2. bxa5 e6 3. a6 e5 4. axb7 Nf6 5. bxa8 Nd5 6. Qxb8"),
              "b2b4a7a5b4a5e7e6a5a6e6e5a6b7g8f6b7a8f6d5a8b8");
}

TEST_F(BookBuilder, BarePromotionOfBlackIsPlayedAsABlackQueen) {
    EXPECT_EQ(line_of("1. a4 b5 2. h3 bxa4 3. h4 a3 4. h5 axb2 5. h6 bxa1 6. hxg7 Qxb1"),
              "a2a4b7b5h2h3b5a4h3h4a4a3h4h5a3b2h5h6b2a1h6g7a1b1");
}

TEST_F(BookBuilder, FirstManInTheListIsTakenEvenIfItIsPinned) {
    // The knight on c3 is pinned; the list gives it before the one on g1, so the line says c3e2.
    EXPECT_EQ(line_of("1. d4 e6 2. Nc3 Bb4 3. e4 Nf6 4. Ne2 Nxe4"),
              "d2d4e7e6b1c3f8b4e2e4g8f6c3e2f6e4");
}

TEST_F(BookBuilder, OriginsTellMenApart) {
    EXPECT_EQ(line_of("1. Nf3 d5 2. d4 Nf6 3. Nbd2 Nbd7 4. h4 h5 5. Rh3 Rh6 6. Ne5 Nb6"),
              "g1f3d7d5d2d4g8f6b1d2b8d7h2h4h7h5h1h3h8h6f3e5d7b6");
}

// --- the end of a line --------------------------------------------------------------------------

TEST_F(BookBuilder, WordThatIsNoMoveEndsTheLineAndWhatWasWrittenStays) {
    for (const char* const word : {"1-0", "0-1", "0-0", "oh", "and", "even", "Ke2", "Ncd2", "e2e4",
                                   "(e3", "d4)", "$1", "!!"}) {
        EXPECT_EQ(line_of("1. e4 " + std::string(word) + " d5 2. c4 1. g4 g5"), "e2e4\ng2g4g7g5")
            << word;
    }
}

TEST_F(BookBuilder, LineThatWentAstrayIsTakenUpByTheNextGame) {
    build(game("1-0", "1. e4 1-0 e5") + game("0-1", "1. d4 d4 d5") + game("1-0", "1. c4 c5"));
    EXPECT_EQ(read_file("cwhite"), "\ne2e4\nc2c4c7c5\n");
    EXPECT_EQ(read_file("cblack"), "\nd2d4\n");
}

TEST_F(BookBuilder, CastlingIsSkippedInASkippedGame) {
    EXPECT_EQ(line_of("1. e4 oh O-O 2. O-O-O 1. d4"), "e2e4\nd2d4");
}

TEST_F(BookBuilder, LineHasTwentyFivePlies) {
    std::string moves = "1.";
    for (int i = 0; i < 10; ++i) {
        moves += " Nf3 Nf6 Ng1 Ng8";
    }
    const std::string round = "g1f3g8f6f3g1f6g8";
    const std::string expected = round + round + round + round + round + round + "g1f3";
    EXPECT_EQ(expected.size(), 25U * 4);
    EXPECT_EQ(line_of(moves), expected);
    EXPECT_EQ(line_of(moves + " 1. e4 " + moves), expected + "\ne2e4\n" + expected)
        << "each game counts for itself";
}

TEST_F(BookBuilder, CastlingCountsAsAPly) {
    EXPECT_EQ(line_of("1. O-O O-O " + std::string("Nc3 Nc6 Nb1 Nb8 Nc3 Nc6 Nb1 Nb8 Nc3 Nc6 Nb1 "
                                                  "Nb8 Nc3 Nc6 Nb1 Nb8 Nc3 Nc6 Nb1 Nb8 e4 e5 d4 d5 "
                                                  "c4 c5")),
              "e1g1e8g8b1c3b8c6c3b1c6b8b1c3b8c6c3b1c6b8b1c3b8c6c3b1c6b8b1c3b8c6c3b1c6b8"
              "b1c3b8c6c3b1c6b8e2e4e7e5d2d4");
}

TEST_F(BookBuilder, WordsThatArePassedOverAreNoPlies) {
    std::string moves = "1.";
    for (int i = 0; i < 6; ++i) {
        moves += " hello 1/2-1/2 Nf3 2. * b Nf6 Ng1 d Ng8";
    }
    const std::string round = "g1f3g8f6f3g1f6g8";
    moves += " e4 e5";
    build(moves);
    EXPECT_EQ(read_file("cblack"), round + round + round + round + round + round + "e2e4\n");
}

TEST_F(BookBuilder, LastPlyMayBeACastling) {
    std::string moves = "1.";
    std::string expected;
    for (int i = 0; i < 6; ++i) {
        moves += " Nf3 Nf6 Ng1 Ng8";
        expected += "g1f3g8f6f3g1f6g8";
    }
    EXPECT_EQ(line_of(moves + " O-O O-O"), expected + "e1g1");
}

// --- messages -----------------------------------------------------------------------------------

TEST_F(BookBuilder, MessagesGoToTheLogAsWell) {
    log_enabled = true;
    EXPECT_EQ(build("1. e4"), all_went_well);
    EXPECT_EQ(read_file("corvane.log"), all_went_well);
}

TEST_F(BookBuilder, LoadedBookStaysAsItIs) {
    book_white_count = 1;
    book_white_lines[0] = {'d', '2', 'd', '4'};
    book_black_count = 1;
    book_black_lines[0] = {'c', '2', 'c', '4'};
    build("1. e4 e5");
    EXPECT_EQ(book_white_count, 1);
    EXPECT_STREQ(book_white_lines[0].data(), "d2d4");
    EXPECT_EQ(book_black_count, 1);
    EXPECT_STREQ(book_black_lines[0].data(), "c2c4");
}

TEST_F(BookBuilder, WrittenBooksCanBeLoaded) {
    build(game("1-0", "1. e4 e5") + game("1/2-1/2", "1. d4 d5"));
    const CapturedOutput output;
    EXPECT_TRUE(LoadBooks());
    EXPECT_EQ(book_white_count, 3);
    EXPECT_STREQ(book_white_lines[0].data(), "") << "the first line end came before the first game";
    EXPECT_STREQ(book_white_lines[1].data(), "e2e4e7e5");
    EXPECT_STREQ(book_white_lines[2].data(), "d2d4d7d5");
    EXPECT_EQ(book_black_count, 2);
    EXPECT_STREQ(book_black_lines[1].data(), "d2d4d7d5");
}
