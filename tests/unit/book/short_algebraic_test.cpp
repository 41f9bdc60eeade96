// SPDX-License-Identifier: MIT
// Short moves found in the list of a position. The answers are told as coordinates, or `none`.
#include "book/short_algebraic.h"

#include <gtest/gtest.h>

#include "board/generate.h"
#include "support/position.h"

namespace {

/// The move that a word means in a position.
std::string find(const std::string& word, const Table& table) {
    MoveList moves;
    cur_moves = &moves;
    gen_all(table, table.side);
    cur_moves = nullptr;
    const std::int32_t slot = find_short_algebraic(word, table, moves);
    if (slot == 0) {
        return "none";
    }
    EXPECT_GE(slot, 1);
    EXPECT_LE(slot, moves.count);
    const Move& move = moves.move(slot);
    return move_text(move.posFrom, move.posTo, move.posInfo);
}

std::string find(const std::string& word, const char* fen) {
    return find(word, position_from_fen(fen));
}

}  // namespace

TEST(ShortAlgebraic, WordsOfTwoToFourCharactersAreAsLongAsMoves) {
    const std::string letters = "abcdefg";
    for (std::size_t length = 0; length <= letters.size(); ++length) {
        EXPECT_EQ(is_as_long_as_a_move(letters.substr(0, length)), length >= 2 && length <= 4)
            << length;
    }
}

TEST(ShortAlgebraic, TargetIsTheLastTwoCharacters) {
    EXPECT_EQ(target_of("e4"), "e4");
    EXPECT_EQ(target_of("Nf3"), "f3");
    EXPECT_EQ(target_of("Nbd2"), "d2");
}

TEST(ShortAlgebraic, TwoCharactersAreAPawnMove) {
    EXPECT_EQ(find("e4", start_position()), "e2e4");
    EXPECT_EQ(find("e3", start_position()), "e2e3");
    EXPECT_EQ(find("e5", start_position()), "none");
    EXPECT_EQ(find("f3", start_position()), "f2f3") << "not the knight";
    EXPECT_EQ(find("e5", "4k3/4p3/8/8/8/8/8/4K3 b - -"), "e7e5");
    EXPECT_EQ(find("e7", "4k3/8/8/8/8/8/8/4K3 b - -"), "none") << "the king is no pawn";
}

TEST(ShortAlgebraic, TwoCharactersMayBeAPawnsCapture) {
    EXPECT_EQ(find("d5", "4k3/8/8/3p4/4P3/8/8/4K3 w - -"), "e4d5");
}

TEST(ShortAlgebraic, EachLetterNamesItsMan) {
    const char* const men = "4k3/8/8/8/8/p7/8/NBRQK3 w - -";
    EXPECT_EQ(find("Nb3", men), "a1b3");
    EXPECT_EQ(find("Be4", men), "b1e4");
    EXPECT_EQ(find("Rc8", men), "c1c8");
    EXPECT_EQ(find("Qd8", men), "d1d8");
    EXPECT_EQ(find("Kf2", men), "e1f2");
    const char* const black_men = "nbrqk3/8/8/8/8/8/8/4K3 b - -";
    EXPECT_EQ(find("Nb6", black_men), "a8b6");
    EXPECT_EQ(find("Be5", black_men), "b8e5");
    EXPECT_EQ(find("Rc1", black_men), "c8c1");
    EXPECT_EQ(find("Qd1", black_men), "d8d1");
    EXPECT_EQ(find("Kf7", black_men), "e8f7");
}

TEST(ShortAlgebraic, LetterOfAnotherManFindsNothing) {
    // The square e2 can be reached by every man, but by one kind each time.
    const char* const fens[] = {
        "7k/8/8/8/8/2N5/8/7K w - -", "7k/8/8/8/8/3B4/8/7K w - -", "7k/8/8/8/8/4R3/8/7K w - -",
        "7k/8/8/8/8/4Q3/8/7K w - -", "7k/8/8/8/8/4K3/8/8 w - -",
    };
    const std::string letters = "NBRQK";
    for (std::size_t man = 0; man < letters.size(); ++man) {
        for (std::size_t letter = 0; letter < letters.size(); ++letter) {
            const std::string found = find(letters.substr(letter, 1) + "e2", fens[man]);
            EXPECT_EQ(found == "none", letter != man) << letters[letter] << " for " << fens[man];
        }
    }
}

TEST(ShortAlgebraic, OtherLettersNameNoMan) {
    for (const char* const word : {"Pe4", "pe4", "nf3", "kf3", "Xe4", " e4", ".e4", "=e4", "1e4"}) {
        EXPECT_EQ(find(word, start_position()), "none") << word;
    }
}

TEST(ShortAlgebraic, LowerCaseLetterIsTheFileOfAPawn) {
    const char* const both = "4k3/8/8/3p4/2P1P3/8/8/4K3 w - -";
    EXPECT_EQ(find("cd5", both), "c4d5");
    EXPECT_EQ(find("ed5", both), "e4d5");
    EXPECT_EQ(find("dd5", both), "none");
    EXPECT_EQ(find("ee5", both), "e4e5") << "a file may name a push as well";
    EXPECT_EQ(find("ed5", "4k3/8/8/3p4/4B3/8/8/4K3 w - -"), "none") << "a bishop on the file";
}

TEST(ShortAlgebraic, LowerCaseBIsAFileAndUpperCaseBAMan) {
    const char* const both = "4k3/8/8/2p5/1P6/B7/8/4K3 w - -";
    EXPECT_EQ(find("bc5", both), "b4c5");
    EXPECT_EQ(find("Bc5", "4k3/8/8/2p5/8/B7/8/4K3 w - -"), "a3c5");
    EXPECT_EQ(find("Bc5", both), "none") << "its own pawn stands between";
    EXPECT_EQ(find("bc5", "4k3/8/8/2p5/3B4/8/8/4K3 w - -"), "none");
}

TEST(ShortAlgebraic, EnPassantIsAPawnsCapture) {
    EXPECT_EQ(find("ed6", "4k3/8/8/3pP3/8/8/8/4K3 w - d6"), "e5d6");
    EXPECT_EQ(find("ed6", "4k3/8/8/3pP3/8/8/8/4K3 w - -"), "none");
    EXPECT_EQ(find("de3", "4k3/8/8/8/3pP3/8/8/4K3 b - e3"), "d4e3");
}

TEST(ShortAlgebraic, SecondOfFourCharactersIsAFile) {
    const char* const knights = "4k3/8/8/8/8/5N2/8/1N2K3 w - -";
    EXPECT_EQ(find("Nbd2", knights), "b1d2");
    EXPECT_EQ(find("Nfd2", knights), "f3d2");
    EXPECT_EQ(find("Ncd2", knights), "none");
}

TEST(ShortAlgebraic, SecondOfFourCharactersIsARank) {
    const char* const rooks = "4k3/8/4R3/8/8/8/8/K3R3 w - -";
    EXPECT_EQ(find("R1e2", rooks), "e1e2");
    EXPECT_EQ(find("R6e2", rooks), "e6e2");
    EXPECT_EQ(find("R2e2", rooks), "none");
}

TEST(ShortAlgebraic, FourCharactersNeedTheManToo) {
    const char* const men = "4k3/8/8/8/8/5N2/8/1B2K3 w - -";
    EXPECT_EQ(find("Bfd2", men), "none");
    EXPECT_EQ(find("Nfd2", men), "f3d2");
    EXPECT_EQ(find("e2e4", start_position()), "none") << "pawns have no such words";
    EXPECT_EQ(find("Pee4", start_position()), "none");
    EXPECT_EQ(find("eee4", start_position()), "none");
}

TEST(ShortAlgebraic, FirstOfTwoMenInTheListIsTaken) {
    // Lists go from the eighth rank to the first, from the a-file to the h-file.
    EXPECT_EQ(find("Nd2", "4k3/8/8/8/8/5N2/8/1N2K3 w - -"), "f3d2");
    EXPECT_EQ(find("Rd1", "4k3/8/8/8/8/8/8/R4RK1 w - -"), "a1d1");
    EXPECT_EQ(find("d5", "4k3/8/8/3p4/2P1P3/8/8/4K3 w - -"), "c4d5");
}

TEST(ShortAlgebraic, PinnedManIsTakenIfItComesFirst) {
    // The knight on e5 shields its king, so only the one on b2 may go to d3 by the rules.
    EXPECT_EQ(find("Nd3", "4r1k1/8/8/4N3/8/8/1N6/4K3 w - -"), "e5d3");
    EXPECT_EQ(find("Nbd3", "4r1k1/8/8/4N3/8/8/1N6/4K3 w - -"), "b2d3");
}

TEST(ShortAlgebraic, MovesIntoCheckAreFoundToo) {
    EXPECT_EQ(find("Kd2", "3r2k1/8/8/8/8/8/8/4K3 w - -"), "e1d2");
}

TEST(ShortAlgebraic, KingMayBeTaken) {
    EXPECT_EQ(find("Re8", "4k3/8/8/8/8/8/8/K3R3 w - -"), "e1e8");
}

TEST(ShortAlgebraic, BarePromotionIsTheOneToAQueen) {
    EXPECT_EQ(find("a8", "4k3/P7/8/8/8/8/8/4K3 w - -"), "a7a8q");
    EXPECT_EQ(find("ab8", "1n2k3/P7/8/8/8/8/8/4K3 w - -"), "a7b8q");
    EXPECT_EQ(find("a1", "4k3/8/8/8/8/8/p7/4K3 b - -"), "a2a1q");
}

TEST(ShortAlgebraic, PromotionWithAPieceIsNotKnown) {
    const char* const pawn = "4k3/P7/8/8/8/8/8/4K3 w - -";
    EXPECT_EQ(find("a8=Q", pawn), "none");
    EXPECT_EQ(find("a8Q", pawn), "none");
}

TEST(ShortAlgebraic, WordsThatNameNoSquareFindNothing) {
    for (const char* const word : {"1-0", "0-1", "0-0", "O-O", "ab", "44", "e9", "i4", "E4", "..",
                                   "Nf9", "Nff9", "and", "if", "the", "e4!", "e4?", "Nf3!", "4e"}) {
        EXPECT_EQ(find(word, start_position()), "none") << word;
    }
}

TEST(ShortAlgebraic, BlanksAreNoSquare) {
    EXPECT_EQ(find("  ", start_position()), "none");
    EXPECT_EQ(find("N  ", start_position()), "none");
}

TEST(ShortAlgebraic, NoMovesNothingFound) {
    MoveList moves;
    moves.count = 0;
    EXPECT_EQ(find_short_algebraic("e4", start_position(), moves), 0);
}
