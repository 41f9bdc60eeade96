// SPDX-License-Identifier: MIT
// The section behind the ordinary numbers: positions in which a capture en passant is possible, in
// kpkp and kppkp. Its numbers are a pair of kings and a capture, a file and a direction.
#include <algorithm>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <vector>

#include "support/reference_index.h"
#include "support/reset_all.h"
#include "support/table_boards.h"
#include "tb/index/enumeration.h"
#include "tb/index/index_family.h"

namespace {

constexpr std::uint64_t pairs_of_kings = 1806;
constexpr std::uint64_t one_pawn_positions = 81664;
constexpr std::uint64_t two_pawns_positions = 1806671;

class EnPassantIndex : public testing::Test {
  protected:
    void SetUp() override {
        reset_all(1);
        tb_build_enumeration();
    }
    void TearDown() override { reset_all(1); }
};

/// A capture of the side to move, the first side's pawns going up.
struct Capture {
    std::uint64_t code = 0;
    int pawn = 0;
    int passed = 0;  ///< the pawn that has just gone two steps
    int target = 0;
    int start = 0;  ///< where that pawn came from

    [[nodiscard]] bool needs(int square) const {
        return square == pawn || square == passed || square == target || square == start;
    }
};

/// All fourteen by their codes: seven towards the a-file, from the b-file on, then seven towards
/// the h-file.
std::vector<Capture> captures(std::size_t half) {
    const int forward = half == 0 ? 8 : -8;
    const int own_rank = half == 0 ? 4 : 3;
    std::vector<Capture> all;
    for (const int side : {-1, 1}) {
        for (int file = 0; file < 8; ++file) {
            if (file + side < 0 || file + side > 7) continue;
            const int pawn = 8 * own_rank + file;
            const int passed = pawn + side;
            all.push_back({all.size(), pawn, passed, passed + forward, passed + 2 * forward});
        }
    }
    return all;
}

/// A position of kpkp or kppkp: kings, and the pawns of the side to move and of the other one.
struct Kings {
    int own = 0;
    int other = 0;
    std::uint64_t pair = 0;  ///< as the half numbers it
};

/// Pairs of kings as they stand after turning; every `step`th.
std::vector<Kings> all_kings(std::size_t half, std::size_t step) {
    const int over = half == 0 ? 0 : 56;  // in the second half pairs are looked up turned over
    std::vector<Kings> all;
    for (int own = 0; own < 64; ++own) {
        for (int other = 0; other < 64; ++other) {
            const auto pair = reference_pair(false, own ^ over, other ^ over);
            if (pair && *pair % step == 0) {
                all.push_back({own, other, *pair});
            }
        }
    }
    return all;
}

std::uint32_t index_of(std::string_view name, std::size_t half, std::vector<int> squares, int ep,
                       int mask, std::uint32_t flip) {
    for (int& square : squares) {
        square ^= mask;
    }
    return engine_index(name, half, squares, static_cast<std::uint32_t>(ep ^ mask), flip);
}

/// Squares in the order of the name.
std::vector<int> kpkp_squares(std::size_t half, const Kings& kings, const Capture& capture) {
    return half == 0 ? std::vector<int>{kings.own, capture.pawn, kings.other, capture.passed}
                     : std::vector<int>{kings.other, capture.passed, kings.own, capture.pawn};
}

std::vector<int> kppkp_squares(std::size_t half, const Kings& kings, const Capture& capture,
                               int third) {
    return half == 0
               ? std::vector<int>{kings.own, capture.pawn, third, kings.other, capture.passed}
               : std::vector<int>{kings.other, capture.passed, third, kings.own, capture.pawn};
}

/// Numbers all of kpkp in one half; gives how many there were.
int walk_kpkp(std::size_t half) {
    const std::uint64_t begin = one_pawn_positions * 47;
    std::set<std::uint32_t> met;
    int walked = 0;
    for (const Kings& kings : all_kings(half, 1)) {
        for (const Capture& capture : captures(half)) {
            if (capture.needs(kings.own) || capture.needs(kings.other)) continue;
            const std::vector<int> squares = kpkp_squares(half, kings, capture);
            const std::uint32_t index = index_of("kpkp", half, squares, capture.target, 0, 0);
            EXPECT_EQ(index, begin + kings.pair * 14 + capture.code) << square_text(squares);
            EXPECT_LT(index, begin + pairs_of_kings * 14);
            // Files exchanged, colours exchanged, and both.
            for (const int mask : {7, 56, 63}) {
                const std::uint32_t flip = mask >= 56 ? 1 : 0;
                EXPECT_EQ(index_of("kpkp", half, squares, capture.target, mask, flip), index)
                    << square_text(squares) << ", mask " << mask;
            }
            EXPECT_TRUE(met.insert(index).second) << square_text(squares);
            ++walked;
        }
    }
    return walked;
}

/// Numbers of kppkp in one half, a part of the pairs of kings; gives how many positions there were.
int walk_kppkp(std::size_t half) {
    constexpr std::size_t step = 13;
    const std::uint64_t begin =
        half == 0 ? two_pawns_positions * 46 : one_pawn_positions * (47 * 46 / 2);
    // A position, its pawns in the order of their squares, by its number.
    std::map<std::uint32_t, std::vector<int>> met;
    std::set<std::vector<int>> positions;
    for (const Kings& kings : all_kings(half, step)) {
        for (const Capture& capture : captures(half)) {
            if (capture.needs(kings.own) || capture.needs(kings.other)) continue;
            for (int third = 8; third < 56; ++third) {
                if (capture.needs(third) || third == kings.own || third == kings.other) continue;
                std::vector<int> squares = kppkp_squares(half, kings, capture, third);
                const std::uint32_t index = index_of("kppkp", half, squares, capture.target, 0, 0);
                EXPECT_GE(index, begin + kings.pair * 616) << square_text(squares);
                EXPECT_LT(index, begin + (kings.pair + 1) * 616) << square_text(squares);
                EXPECT_EQ(index_of("kppkp", half, squares, capture.target, 63, 1), index)
                    << square_text(squares);
                std::sort(squares.begin() + 1, squares.begin() + 3);
                squares.push_back(capture.target);
                EXPECT_EQ(met.try_emplace(index, squares).first->second, squares)
                    << square_text(squares);
                positions.insert(squares);
            }
        }
    }
    EXPECT_EQ(met.size(), positions.size());
    return static_cast<int>(positions.size());
}

}  // namespace

TEST_F(EnPassantIndex, CodesOfTheFourteenCaptures) {
    // Kings on a1 and c1 are the first pair, from either side.
    const std::uint32_t begin = 81664 * 47;
    const auto index = [](const char* squares, const char* ep) {
        return index_of("kpkp", 0, square_numbers(squares), square_number(ep), 0, 0);
    };
    EXPECT_EQ(index("a1 b5 c1 a5", "a6"), begin);
    EXPECT_EQ(index("a1 h5 c1 g5", "g6"), begin + 6);
    EXPECT_EQ(index("a1 a5 c1 b5", "b6"), begin + 7);
    EXPECT_EQ(index("a1 g5 c1 h5", "h6"), begin + 13);
    const auto second = [](const char* squares, const char* ep) {
        return index_of("kpkp", 1, square_numbers(squares), square_number(ep), 0, 0);
    };
    EXPECT_EQ(second("c8 a4 a8 b4", "a3"), begin);
    EXPECT_EQ(second("c8 g4 a8 h4", "g3"), begin + 6);
    EXPECT_EQ(second("c8 b4 a8 a4", "b3"), begin + 7);
    EXPECT_EQ(second("c8 h4 a8 g4", "h3"), begin + 13);
}

TEST_F(EnPassantIndex, FirstHalfOfOnePawnAgainstOneIsOneToOne) {
    EXPECT_EQ(captures(0).size(), 14U);
    EXPECT_EQ(walk_kpkp(0), 22208);
}

TEST_F(EnPassantIndex, SecondHalfOfOnePawnAgainstOneIsOneToOne) {
    EXPECT_EQ(walk_kpkp(1), 22208);
}

// In the first half both pawns of the side to move may be able to capture: that is one position.
TEST_F(EnPassantIndex, FirstHalfOfTwoPawnsAgainstOneIsInsideAndDistinct) {
    EXPECT_EQ(walk_kppkp(0), 72219);
}

TEST_F(EnPassantIndex, SecondHalfOfTwoPawnsAgainstOneIsInsideAndDistinct) {
    EXPECT_EQ(walk_kppkp(1), 72933);
}

TEST_F(EnPassantIndex, OfTwoPawnsThatCanCaptureTheLowerSquareCounts) {
    // Code 10: from the d-file towards the h-file. The other pawn, f5, is behind the squares d5
    // and e5 alone.
    const std::uint32_t begin = 1806671 * 46;
    const int target = square_number("e6");
    const std::uint32_t expected = begin + 10 * 44 + 37 - 8 - 2;
    EXPECT_EQ(index_of("kppkp", 0, square_numbers("a1 d5 f5 c1 e5"), target, 0, 0), expected);
    EXPECT_EQ(index_of("kppkp", 0, square_numbers("a1 f5 d5 c1 e5"), target, 0, 0), expected);
}

TEST_F(EnPassantIndex, LastNumbersAreThoseOfTheLastPairAndCapture) {
    const int target = square_number("h6");
    EXPECT_EQ(index_of("kpkp", 0, square_numbers("d8 g5 h8 h5"), target, 0, 0), 3863491U);
    // A pawn on g7 would give check: the file ends one number before the half.
    EXPECT_EQ(index_of("kppkp", 0, square_numbers("d8 g5 f7 h8 h5"), target, 0, 0), 84219360U);
    EXPECT_EQ(index_of("kppkp", 0, square_numbers("d8 g5 g7 h8 h5"), target, 0, 0), 84219361U);
    const std::vector<int> second = square_numbers("h1 h4 h7 d1 g4");
    EXPECT_EQ(index_of("kppkp", 1, second, square_number("h3"), 0, 0), 89391279U);
}

TEST_F(EnPassantIndex, SquareThatNoPawnCanCaptureOnIsPassedOver) {
    for (const char* const squares : {"a1 c5 c1 e5", "a1 d4 c1 e5", "a1 e4 c1 e5", "a1 d6 c1 e5"}) {
        const std::vector<int> position = square_numbers(squares);
        EXPECT_EQ(index_of("kpkp", 0, position, square_number("e6"), 0, 0),
                  reference_index("kpkp", 0, position, false)->index)
            << squares;
    }
}

TEST_F(EnPassantIndex, CaptureDoesNotReachRoundTheEdgeOfTheBoard) {
    const std::vector<int> from_a = square_numbers("a1 a5 c1 g4");
    EXPECT_EQ(index_of("kpkp", 0, from_a, square_number("h5"), 0, 0),
              reference_index("kpkp", 0, from_a, false)->index);
    const std::vector<int> from_h = square_numbers("a1 h5 c1 b6");
    EXPECT_EQ(index_of("kpkp", 0, from_h, square_number("a7"), 0, 0),
              reference_index("kpkp", 0, from_h, false)->index);
}

TEST_F(EnPassantIndex, TablesWithoutASectionDoNotReadTheSquare) {
    int tables = 0;
    for (const char* const name : {"knpkp", "krpkp", "kqpkp", "kbpkp"}) {
        const std::vector<int> position = square_numbers("a1 g8 d5 c1 e5");
        EXPECT_EQ(index_of(name, 0, position, square_number("e6"), 0, 0),
                  reference_index(name, 0, position, false)->index)
            << name;
        ++tables;
    }
    EXPECT_EQ(tables, 4);
}
