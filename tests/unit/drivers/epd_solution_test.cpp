// SPDX-License-Identifier: MIT
// Which texts mean which moves.
#include "drivers/epd_solution.h"

#include <gtest/gtest.h>

#include "board/set_up.h"
#include "shell/position_text.h"

namespace {

struct ManOfLetter {
    char letter;
    PieceCode man;
};

constexpr std::array<ManOfLetter, 5> white_pieces = {
    {{'N', w_knight}, {'B', w_bishop}, {'R', w_rook}, {'Q', w_queen}, {'K', w_king}}};
constexpr std::array<ManOfLetter, 5> black_pieces = {
    {{'n', b_knight}, {'b', b_bishop}, {'r', b_rook}, {'q', b_queen}, {'k', b_king}}};

constexpr PieceCode no_promotion = 0;

/// Whether the text means the move of `man`, which stands alone on the board.
bool means(std::string_view text, PieceCode man, std::string_view squares,
           PieceCode info = no_promotion) {
    Table table;
    clear_position(table);
    const Square from = square_of_text(squares.substr(0, 2));
    table.at(from) = man;
    return is_solution(text, table, {from, square_of_text(squares.substr(2, 2)), info});
}

char capital(char letter) {
    return static_cast<char>(letter & ~0x20);
}

}  // namespace

TEST(EpdSolution, TwoCharactersAreAPawnsTarget) {
    EXPECT_TRUE(means("e4", w_pawn, "e2e4"));
    EXPECT_TRUE(means("e4", b_pawn, "e5e4"));
    EXPECT_TRUE(means("e4", w_pawn, "d3e4")) << "a capture too";
    EXPECT_FALSE(means("e4", w_pawn, "e2e3"));
    EXPECT_FALSE(means("e4", w_pawn, "e4e5")) << "the target, not the origin";
    EXPECT_FALSE(means("e4", w_pawn, "d2d4"));
    EXPECT_FALSE(means("4e", w_pawn, "e2e4"));
    for (const ManOfLetter& piece : white_pieces) {
        EXPECT_FALSE(means("e4", piece.man, "e3e4")) << piece.letter;
    }
    for (const ManOfLetter& piece : black_pieces) {
        EXPECT_FALSE(means("e4", piece.man, "e3e4")) << piece.letter;
    }
}

TEST(EpdSolution, CapitalLetterFitsBothColoursAndASmallOneBlackAlone) {
    int fits = 0;
    for (const ManOfLetter& named : black_pieces) {
        for (const ManOfLetter& piece : black_pieces) {
            const bool same = named.letter == piece.letter;
            const std::string text = {named.letter, 'f', '3'};
            const std::string capitals = {capital(named.letter), 'f', '3'};
            EXPECT_EQ(means(text, piece.man, "g1f3"), same) << text << piece.letter;
            EXPECT_EQ(means(capitals, piece.man, "g1f3"), same) << capitals << piece.letter;
            fits += same ? 1 : 0;
        }
        for (const ManOfLetter& piece : white_pieces) {
            const bool same = capital(named.letter) == piece.letter;
            const std::string text = {named.letter, 'f', '3'};
            const std::string capitals = {capital(named.letter), 'f', '3'};
            EXPECT_FALSE(means(text, piece.man, "g1f3")) << text << piece.letter;
            EXPECT_EQ(means(capitals, piece.man, "g1f3"), same) << capitals << piece.letter;
            fits += same ? 1 : 0;
        }
    }
    EXPECT_EQ(fits, 10);
}

TEST(EpdSolution, ARookOfEitherColourIsMeantByRd1) {
    EXPECT_TRUE(means("Rd1", w_rook, "d8d1"));
    EXPECT_TRUE(means("Rd1", b_rook, "d8d1"));
    EXPECT_FALSE(means("Rd1", w_rook, "d8d2"));
    EXPECT_FALSE(means("Rd1", w_rook, "d1d8"));
    EXPECT_FALSE(means("Rd1", w_pawn, "d2d1"));
}

TEST(EpdSolution, ThreeCharactersAreAPawnsFileAndTarget) {
    EXPECT_TRUE(means("ed5", w_pawn, "e4d5"));
    EXPECT_TRUE(means("ed5", b_pawn, "e6d5"));
    EXPECT_FALSE(means("ed5", w_pawn, "c4d5"));
    EXPECT_FALSE(means("ed5", w_pawn, "e4f5"));
    EXPECT_FALSE(means("ed5", w_rook, "e5d5")) << "no letter of a rook";
    EXPECT_FALSE(means("4d5", w_pawn, "e4d5")) << "a rank is no file";
    EXPECT_FALSE(means("=d5", w_pawn, "e4d5"));
    EXPECT_TRUE(means("ah8", w_pawn, "a7h8")) << "every file";
    EXPECT_TRUE(means("ha1", b_pawn, "h2a1"));
}

TEST(EpdSolution, SmallBIsAFileOrABlackBishop) {
    EXPECT_TRUE(means("bc3", w_pawn, "b2c3"));
    EXPECT_TRUE(means("bc3", b_pawn, "b4c3"));
    EXPECT_TRUE(means("bc3", b_bishop, "a5c3"));
    EXPECT_FALSE(means("bc3", w_bishop, "b2c3"));
    EXPECT_FALSE(means("bc3", w_pawn, "d2c3"));
    EXPECT_FALSE(means("bc3", b_pawn, "d4c3"));
    EXPECT_FALSE(means("Bc3", w_pawn, "b2c3")) << "a capital is no file";
}

TEST(EpdSolution, FourCharactersHaveTheFileOrTheRankOfTheOrigin) {
    EXPECT_TRUE(means("Nbd7", w_knight, "b8d7"));
    EXPECT_TRUE(means("Nbd7", b_knight, "b8d7"));
    EXPECT_TRUE(means("nbd7", b_knight, "b8d7"));
    EXPECT_FALSE(means("nbd7", w_knight, "b8d7"));
    EXPECT_FALSE(means("Nbd7", w_knight, "f8d7")) << "file";
    EXPECT_FALSE(means("Nbd7", w_knight, "b8d6")) << "target";
    EXPECT_FALSE(means("Nbd7", w_knight, "b6c8")) << "target";
    EXPECT_FALSE(means("Rbd7", w_knight, "b8d7")) << "piece";
    EXPECT_TRUE(means("R1d2", w_rook, "d1d2"));
    EXPECT_TRUE(means("R8d2", b_rook, "d8d2"));
    EXPECT_FALSE(means("R1d2", w_rook, "d8d2")) << "rank";
    EXPECT_TRUE(means("Kee2", w_king, "e1e2"));
    EXPECT_TRUE(means("Q8h4", w_queen, "d8h4"));
    EXPECT_FALSE(means("eed5", w_pawn, "e4d5")) << "pawns have no such text";
    EXPECT_FALSE(means("Ned7", w_knight, "b8d7"));
}

TEST(EpdSolution, PromotionToAKnightIsNoneToAQueen) {
    EXPECT_TRUE(means("e8==N", w_pawn, "e7e8", 8194));
    EXPECT_FALSE(means("e8==N", w_pawn, "e7e8", 8208));
    EXPECT_TRUE(means("e8==Q", w_pawn, "e7e8", 8208));
    EXPECT_FALSE(means("e8==Q", w_pawn, "e7e8", no_promotion));
}

TEST(EpdSolution, FiveCharactersArePromotionAndTarget) {
    for (const ManOfLetter& piece : white_pieces) {
        if (piece.man == w_king) {
            EXPECT_FALSE(means("d8==K", w_pawn, "d7d8", w_queen));
            continue;
        }
        const std::string text = std::string("d8==") + piece.letter;
        const std::string small = std::string("d8==") + static_cast<char>(piece.letter | 0x20);
        EXPECT_TRUE(means(text, w_pawn, "d7d8", piece.man)) << text;
        EXPECT_FALSE(means(small, w_pawn, "d7d8", piece.man)) << small;
    }
    for (const ManOfLetter& piece : black_pieces) {
        if (piece.man == b_king) {
            EXPECT_FALSE(means("d1==k", b_pawn, "d2d1", b_queen));
            continue;
        }
        const std::string text = std::string("d1==") + capital(piece.letter);
        const std::string small = std::string("d1==") + piece.letter;
        EXPECT_TRUE(means(text, b_pawn, "d2d1", piece.man)) << text;
        EXPECT_TRUE(means(small, b_pawn, "d2d1", piece.man)) << small;
    }
    EXPECT_TRUE(means("d8==Q", w_pawn, "e7d8", w_queen)) << "the origin is not asked for";
    EXPECT_TRUE(means("d8abQ", w_pawn, "d7d8", w_queen)) << "nor what stands between";
    EXPECT_FALSE(means("d8==Q", w_pawn, "e7e8", w_queen)) << "target";
    EXPECT_FALSE(means("d8==Q", w_rook, "d7d8", w_queen)) << "no pawn";
    EXPECT_FALSE(means("d8==R", w_pawn, "d7d8", w_queen)) << "piece";
    EXPECT_FALSE(means("d8Q==", w_pawn, "d7d8", w_queen)) << "the letter stands fifth";
    EXPECT_FALSE(means("d8=Q", w_pawn, "d7d8", w_queen)) << "one sign is no promotion";
}

TEST(EpdSolution, SixCharactersHaveThePawnsFileToo) {
    EXPECT_TRUE(means("ed8==Q", w_pawn, "e7d8", w_queen));
    EXPECT_TRUE(means("ed1==n", b_pawn, "e2d1", b_knight));
    EXPECT_TRUE(means("ed1==N", b_pawn, "e2d1", b_knight));
    EXPECT_TRUE(means("ed8abQ", w_pawn, "e7d8", w_queen)) << "the middle is not looked at";
    EXPECT_FALSE(means("ed8==q", w_pawn, "e7d8", w_queen));
    EXPECT_FALSE(means("ed8==Q", w_pawn, "c7d8", w_queen)) << "file";
    EXPECT_FALSE(means("ed8==Q", w_pawn, "e7f8", w_queen)) << "target";
    EXPECT_FALSE(means("ed8==Q", w_rook, "e7d8", w_queen)) << "no pawn";
    EXPECT_FALSE(means("ed8==N", w_pawn, "e7d8", w_queen)) << "piece";
    EXPECT_FALSE(means("7d8==Q", w_pawn, "e7d8", w_queen)) << "a rank is no file";
}

TEST(EpdSolution, OtherLengthsMeanNothing) {
    EXPECT_FALSE(means("", w_pawn, "e2e4"));
    EXPECT_FALSE(means("e", w_pawn, "e2e4"));
    EXPECT_FALSE(means("ed8==QQ", w_pawn, "e7d8", w_queen));
    EXPECT_FALSE(means("Nb8d7e5", w_knight, "b8d7"));
    EXPECT_FALSE(means(std::string(1000, 'e'), w_pawn, "e2e4"));
}

TEST(EpdSolution, NoTextMeansTheMoveThatIsNone) {
    Table table;
    clear_position(table);
    int tried = 0;
    for (const char* text : {"", "  ", "e4", "Ne4", "K  ", "Nbd7", "K   ", "d8==Q", "ed8==Q"}) {
        EXPECT_FALSE(is_solution(text, table, Move{})) << text;
        ++tried;
    }
    EXPECT_EQ(tried, 9);
}

TEST(EpdSolution, AnyWordOfTheListSolves) {
    Table table;
    clear_position(table);
    table.at(g1) = w_knight;
    const Move move = {g1, f3, no_promotion};
    EXPECT_TRUE(is_solved({"Nf3"}, table, move));
    EXPECT_TRUE(is_solved({"Nf3", "e4", ""}, table, move));
    EXPECT_TRUE(is_solved({"", "e4", "d", "Nf3"}, table, move));
    EXPECT_FALSE(is_solved({"Nh3", "e4", ""}, table, move));
    EXPECT_FALSE(is_solved({}, table, move));
    std::vector<std::string> many(60, "e4");
    EXPECT_FALSE(is_solved(many, table, move));
    many.emplace_back("Nf3");
    EXPECT_TRUE(is_solved(many, table, move));
}
