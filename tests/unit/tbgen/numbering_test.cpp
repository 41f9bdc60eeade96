// SPDX-License-Identifier: MIT
// The generator's numbers of positions against the engine's, which read one position at a time.
#include "tbgen/numbering.h"

#include <gtest/gtest.h>
#include <random>
#include <string>

#include "support/slow_endgame.h"
#include "tb/index/half_index.h"
#include "tb/index/index_family.h"
#include "tb/table_names.h"

namespace {

#ifdef CORVANE_MANY_POSITIONS
constexpr int positions_a_half = 3000;
#else
constexpr int positions_a_half = 200;
#endif

/// A half and squares in the order of its name, kings included.
struct Case {
    std::int32_t row;
    std::int32_t half;
    TbMenSquares squares{};

    [[nodiscard]] std::string_view name() const { return tb_names[static_cast<std::size_t>(row)]; }
    [[nodiscard]] std::size_t second_king() const { return name().rfind('k'); }
    [[nodiscard]] std::uint8_t kind(std::size_t place) const {
        return static_cast<std::uint8_t>(std::string_view(" pnbrqk").find(name()[place]));
    }
    [[nodiscard]] std::string text() const {
        std::string text = std::string(name()) + (half == 0 ? " first" : " second");
        for (std::size_t i = 0; i < name().size(); ++i) {
            text += ' ' + std::to_string(squares[i]);
        }
        return text;
    }
};

/// Two men meet, or a man of the side to move touches the enemy king.
bool is_out(const Case& one) {
    const std::size_t second = one.second_king();
    const std::uint32_t enemy_king = one.squares[one.half == 0 ? second : 0];
    for (std::size_t i = 0; i < one.name().size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (one.squares[i] == one.squares[j]) return true;
        }
        const std::uint8_t side = i < second ? 0 : 1;
        const std::uint32_t square = one.squares[i];
        const bool is_near =
            slow_attacks(0, tb_king, square, enemy_king, 0) || one.kind(i) == tb_knight;
        if (side == one.half && one.kind(i) != tb_king && is_near &&
            slow_attacks(side, one.kind(i), square, enemy_king, 0)) {
            return true;
        }
    }
    return false;
}

std::uint32_t number_of(const Numbering& numbering, const Case& one) {
    const std::size_t second = one.second_king();
    MenSquares men{};
    std::size_t count = 0;
    for (std::size_t i = 1; i < one.name().size(); ++i) {
        if (i != second) men[count++] = one.squares[i];
    }
    return numbering.number(numbering.frame({one.squares[0], one.squares[second]}), men);
}

/// Compares one position; gives whether it has a number.
bool compare(const Numbering& numbering, const Case& one) {
    const std::uint32_t number = number_of(numbering, one);
    if (is_out(one)) {
        EXPECT_EQ(number, no_number) << one.text();
        return false;
    }
    EXPECT_EQ(number,
              tb_squares_index(tb_plan_of(one.row, one.half), one.squares, tb_no_en_passant, 0))
        << one.text();
    return true;
}

/// Squares for all men; pawns where they can stand, kings apart. Every second one has its men
/// close together.
void draw(std::mt19937& random, Case& one) {
    const auto below = [&](std::uint32_t limit) {
        return static_cast<std::uint32_t>(random() % limit);
    };
    const std::size_t second = one.second_king();
    const bool is_close = below(2) == 0;
    do {
        const std::uint32_t corner_file = below(5);
        const std::uint32_t corner_rank = below(5);
        for (std::size_t i = 0; i < one.name().size(); ++i) {
            const bool is_pawn = one.kind(i) == tb_pawn;
            std::uint32_t rank = below(8);
            std::uint32_t file = below(8);
            if (is_close) {
                rank = corner_rank + rank % 4;
                file = corner_file + file % 4;
            }
            rank = is_pawn && rank == 0 ? 1 : rank;
            rank = is_pawn && rank == 7 ? 6 : rank;
            one.squares[i] = rank * 8 + file;
        }
    } while (one.squares[0] == one.squares[second] ||
             slow_attacks(0, tb_king, one.squares[0], one.squares[second], 0));
}

class NumberingTest : public testing::Test {
  protected:
    NumberingTest() { tb_build_enumeration(); }
};

TEST_F(NumberingTest, NumbersOfAllHalvesAreTheEngines) {
    int halves = 0;
    int with_number = 0;
    int without_number = 0;
    for (std::int32_t row = 1; row < tb_rows; ++row) {
        for (std::int32_t half = 0; half < tb_halves; ++half) {
            const Numbering numbering(row, half);
            std::mt19937 random(static_cast<std::uint32_t>(row * 2 + half));
            Case one{row, half};
            for (int i = 0; i < positions_a_half && !HasFailure(); ++i) {
                draw(random, one);
                ++(compare(numbering, one) ? with_number : without_number);
            }
            ++halves;
        }
    }
    EXPECT_EQ(halves, 290);
    EXPECT_GT(with_number, positions_a_half * 290 / 3);
    EXPECT_GT(without_number, positions_a_half * 290 / 20);
}

TEST_F(NumberingTest, AllPositionsOfThreeMen) {
    std::uint64_t with_number = 0;
#ifdef CORVANE_MANY_POSITIONS
    constexpr std::uint32_t step = 1;
#else
    constexpr std::uint32_t step = 7;  // every rank and file is met all the same
#endif
    for (std::int32_t row = 1; row < tb_first_four_men; ++row) {
        for (std::int32_t half = 0; half < tb_halves; ++half) {
            const Numbering numbering(row, half);
            Case one{row, half};
            for (std::uint32_t i = 0; i < 64 * 64 * 64 && !HasFailure(); i += step) {
                one.squares = {i % 64, i / 64 % 64, i / 64 / 64};
                const bool is_pawn_out =
                    one.kind(1) == tb_pawn && (one.squares[1] < 8 || one.squares[1] >= 56);
                if (is_pawn_out || one.squares[0] == one.squares[2] ||
                    slow_attacks(0, tb_king, one.squares[0], one.squares[2], 0)) {
                    continue;
                }
                with_number += compare(numbering, one) ? 1U : 0U;
            }
        }
    }
    EXPECT_GT(with_number, 1'900'000U / step);
}

TEST_F(NumberingTest, NumbersStayBelowTheSizeOfTheHalf) {
    std::uint32_t highest = 0;
    const Numbering numbering(3, 0);
    const std::uint32_t size = tb_half_positions(tb_plan_of(3, 0));
    for (TbSquare own = 0; own < 64; ++own) {
        for (TbSquare other = 0; other < 64; ++other) {
            if (own == other || slow_attacks(0, tb_king, own, other, 0)) continue;
            const Numbering::Frame frame = numbering.frame({own, other});
            for (TbSquare man = 0; man < 64; ++man) {
                const std::uint32_t number = numbering.number(frame, {man});
                highest = number != no_number ? std::max(highest, number) : highest;
            }
        }
    }
    EXPECT_EQ(highest, size - 1);
}

}  // namespace
