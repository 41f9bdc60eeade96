// SPDX-License-Identifier: MIT
// Numbers of the endgame tables are one to one: whole tables of three and four men, large samples
// of five. Different positions have different numbers, below the count of the half; a position
// turned about, or with colours exchanged, keeps its number.
#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "support/reset_all.h"
#include "support/table_walk.h"
#include "tb/index/enumeration.h"
#include "tb/index/index_family.h"

namespace {

enum class Turns { one, all };

class Check {
  public:
    Check(std::size_t row, std::size_t half)
        : half_(row, half),
          positions_(tb_half_positions(
              tb_plan_of(static_cast<std::int32_t>(row), static_cast<std::int32_t>(half)))),
          turns_(turns_of(half_.has_pawns())) {}

    [[nodiscard]] const WalkedHalf& half() const { return half_; }
    [[nodiscard]] std::uint32_t positions() const { return positions_; }
    [[nodiscard]] std::uint32_t highest() const { return highest_; }
    [[nodiscard]] std::uint64_t checked() const { return checked_; }

    /// The first fault; empty if there is none.
    [[nodiscard]] const std::string& fault() const { return fault_; }

    void note(const std::string& what, const WalkSquares& squares) {
        if (fault_.empty()) {
            fault_ = half_.text(squares) + ": " + what;
        }
    }

    /// The number of a position. It is below the count of the half, and it stays in one turn drawn
    /// by chance or in all.
    std::uint32_t number(const WalkSquares& squares, Turns turns) {
        ++checked_;
        const std::uint32_t index = half_.index(squares, turns_[0]);
        if (index >= positions_) {
            note("number " + std::to_string(index) + " is not in the half", squares);
            return 0;
        }
        highest_ = std::max(highest_, index);
        const std::size_t drawn = 1 + random_() % (turns_.size() - 1);
        for (std::size_t i = 1; i < turns_.size(); ++i) {
            if (turns == Turns::all || i == drawn) {
                compare_turned(squares, turns_[i], index);
            }
        }
        return index;
    }

  private:
    void compare_turned(const WalkSquares& squares, const Turn& turn, std::uint32_t index) {
        // With both kings on the diagonal a position and its mirror keep a number each.
        const bool kings_on_diagonal =
            squares[half_.own_king()] % 9 == 0 && squares[half_.other_king()] % 9 == 0;
        if (turn.diagonal && kings_on_diagonal) {
            return;
        }
        if (half_.index(squares, turn) != index) {
            note("has another number when turned", squares);
        }
    }

    WalkedHalf half_;
    std::uint32_t positions_;
    std::vector<Turn> turns_;
    std::minstd_rand random_{1};
    std::uint32_t highest_ = 0;
    std::uint64_t checked_ = 0;
    std::string fault_;
};

/// Every so many-th pair of kings is walked; 1 for whole tables.
constexpr std::size_t walk_step = CORVANE_TB_WALK_STEP;
static_assert(walk_step == 1 || walk_step == 29, "counted are the positions of these steps alone");

/// Positions of the tables of four men that are met: all, or those of every 29th pair.
constexpr std::uint64_t met_with_pawns = walk_step == 1 ? 84254632 : 2936169;
constexpr std::uint64_t met_without_pawns = walk_step == 1 ? 51248568 : 1791211;

/// Walks a half; a bit for each number shows the second use of one.
void check_walk(Check& check, std::size_t step, Turns turns) {
    std::vector<bool> used(check.positions());
    const std::vector<KingPair> pairs = king_pairs(check.half().has_pawns());
    for (std::size_t i = 0; i < pairs.size() && check.fault().empty(); i += step) {
        walk_pair(check.half(), pairs[i], [&](const WalkSquares& squares) {
            const std::uint32_t index = check.number(squares, turns);
            if (used[index]) {
                check.note("number " + std::to_string(index) + " is used twice", squares);
            }
            used[index] = true;
        });
    }
}

/// Walks both halves of some tables, with pawns or without; gives how many positions there were.
std::uint64_t walk_tables(std::size_t first_row, std::size_t end_row, bool with_pawns,
                          std::size_t step, Turns turns) {
    std::uint64_t positions = 0;
    for (std::size_t row = first_row; row < end_row; ++row) {
        for (const std::size_t half : {0U, 1U}) {
            Check check(row, half);
            if (check.half().has_pawns() != with_pawns) continue;
            check_walk(check, step, turns);
            EXPECT_EQ(check.fault(), "");
            positions += check.checked();
        }
    }
    return positions;
}

// ---- Samples: a number and its position in one word, so that sorting brings equal numbers
// together

constexpr unsigned position_bits = 30;

std::uint64_t pack(std::uint32_t index, const WalkSquares& squares) {
    std::uint64_t word = index;
    for (const std::uint8_t square : squares) {
        word = word << 6 | square;
    }
    return word;
}

WalkSquares unpack(std::uint64_t word) {
    WalkSquares squares{};
    for (std::size_t man = squares.size(); man-- > 0; word >>= 6) {
        squares[man] = static_cast<std::uint8_t>(word & 63);
    }
    return squares;
}

/// Men on squares drawn by chance, those of a kind in rising order; false if two share one.
bool draw_men(const WalkedHalf& half, WalkSquares& squares, SquareBits& occupied,
              std::mt19937& random) {
    for (std::size_t man = 1; man < half.men(); ++man) {
        if (half.is_king(man)) continue;
        const std::size_t lowest = half.is_pawn(man) ? 8 : 0;
        const std::size_t square = lowest + random() % (walk_squares - 2 * lowest);
        if ((occupied & square_bit(square)) != 0) {
            return false;
        }
        occupied |= square_bit(square);
        squares[man] = static_cast<std::uint8_t>(square);
        for (std::size_t i = man; half.goes_on(i) && squares[i] < squares[i - 1]; --i) {
            std::swap(squares[i], squares[i - 1]);
        }
    }
    return true;
}

/// One half of the sample are pairs of kings walked whole, the other one are single positions.
void check_sample(Check& check, std::size_t size, std::mt19937& random) {
    std::vector<std::uint64_t> words;
    words.reserve(size);
    const WalkedHalf& half = check.half();
    const auto visit = [&](const WalkSquares& squares, std::size_t limit) {
        if (words.size() < limit) {
            words.push_back(pack(check.number(squares, Turns::one), squares));
        }
    };
    std::vector<KingPair> pairs = king_pairs(half.has_pawns());
    std::shuffle(pairs.begin(), pairs.end(), random);
    for (std::size_t i = 0; words.size() < size / 2 && i < pairs.size(); ++i) {
        walk_pair(half, pairs[i], [&](const WalkSquares& squares) { visit(squares, size / 2); });
    }
    while (words.size() < size) {
        const KingPair& kings = pairs[random() % pairs.size()];
        WalkSquares squares{};
        squares[half.own_king()] = kings.first;
        squares[half.other_king()] = kings.second;
        SquareBits occupied = square_bit(kings.first) | square_bit(kings.second);
        if (draw_men(half, squares, occupied, random) && !half.attacks_king(squares, occupied)) {
            visit(squares, size);
        }
    }
    std::sort(words.begin(), words.end());
    words.erase(std::unique(words.begin(), words.end()), words.end());
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (words[i] >> position_bits == words[i - 1] >> position_bits) {
            check.note("has the number of " + half.text(unpack(words[i - 1])), unpack(words[i]));
        }
    }
}

/// The highest number that a position has. Numbers rise with the pairs of kings where no ranks are
/// exchanged: the last pair that has positions decides.
std::uint32_t highest_number(Check& check) {
    const std::vector<KingPair> pairs = king_pairs(check.half().has_pawns());
    for (std::size_t i = pairs.size(); i-- > 0 && check.checked() == 0;) {
        walk_pair(check.half(), pairs[i],
                  [&](const WalkSquares& squares) { check.number(squares, Turns::one); });
    }
    return check.highest();
}

struct HalfName {
    const char* table;
    std::size_t half;
};

class TbWalk : public testing::Test {
  protected:
    void SetUp() override {
        reset_all(1);
        tb_build_enumeration();
    }
    void TearDown() override { reset_all(1); }
};

}  // namespace

TEST_F(TbWalk, TablesOfThreeMenAreOneToOneInAllTurns) {
    EXPECT_EQ(walk_tables(1, tb_first_four_men, true, 1, Turns::all), 165676U);
    EXPECT_EQ(walk_tables(1, tb_first_four_men, false, 1, Turns::all), 206486U);
}

TEST_F(TbWalk, TablesOfFourMenWithPawnsAreOneToOne) {
    EXPECT_EQ(walk_tables(tb_first_four_men, tb_first_five_men, true, walk_step, Turns::one),
              met_with_pawns);
}

TEST_F(TbWalk, TablesOfFourMenWithoutPawnsAreOneToOne) {
    EXPECT_EQ(walk_tables(tb_first_four_men, tb_first_five_men, false, walk_step, Turns::one),
              met_without_pawns);
}

TEST_F(TbWalk, SamplesOfFiveMenAreOneToOne) {
    constexpr std::size_t size = 1000000 / walk_step;  // of a half
    constexpr unsigned seed = 20;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::uint64_t positions = 0;
    for (const char* const name : {"kppkp", "kppkn", "kqqqk", "knpkn", "kbbnk", "kbnnk", "krbnk",
                                   "kpppk", "knppk", "kbnkp", "kqqkq", "knnkp"}) {
        for (const std::size_t half : {0U, 1U}) {
            Check check(static_cast<std::size_t>(table_row(name)), half);
            check_sample(check, size, random);
            EXPECT_EQ(check.fault(), "");
            positions += check.checked();
        }
    }
    EXPECT_EQ(positions, 24 * size);
}

TEST_F(TbWalk, FilesEndAtTheLastPositionThatExists) {
    const std::vector<HalfName> halves = {
        {"kpk", 0},   {"knk", 0},   {"knk", 1},   {"kqk", 0},   {"kqk", 1},
        {"knkp", 0},  {"kppk", 0},  {"kqqk", 0},  {"kqqk", 1},  {"kppkn", 0},
        {"krbnk", 0}, {"krbnk", 1}, {"kqqpk", 0}, {"kqqqk", 0}, {"kqqqk", 1},
    };
    for (const auto& [table, half] : halves) {
        const std::int32_t row = table_row(table);
        Check check(static_cast<std::size_t>(row), half);
        EXPECT_EQ(highest_number(check) + 1, tb_known_size(row)[half]) << table << half;
        EXPECT_EQ(check.fault(), "");
    }
    EXPECT_EQ(halves.size(), 15U);
}
