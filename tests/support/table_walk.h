// SPDX-License-Identifier: MIT
// Walks over the positions of an endgame table: every placement of its men in which the side that
// is not to move is not in check. Squares are counted from a1 = 0 to h8 = 63. The rules of attack
// and of turning a board are written here once more, apart from the engine's.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/table_boards.h"

inline constexpr std::size_t walk_squares = 64;
using WalkSquares = std::array<std::uint8_t, 5>;  ///< in the order of the table's name
using SquareBits = std::uint64_t;

[[nodiscard]] constexpr SquareBits square_bit(std::size_t square) {
    return SquareBits{1} << square;
}

/// A turn of the board.
struct Turn {
    bool diagonal = false;                             ///< mirrored in the a1-h8 diagonal
    std::uint32_t flip = 0;                            ///< 1: the side named first is Black
    std::array<std::uint8_t, walk_squares> mailbox{};  ///< where each square comes to stand
};

/// All turns that keep a position's number; the first leaves it as it is.
[[nodiscard]] std::vector<Turn> turns_of(bool has_pawns);

/// One half of a table: its men and the engine's numbers of their positions.
class WalkedHalf {
  public:
    /// Row: 1 to 145.
    WalkedHalf(std::size_t row, std::size_t half);

    [[nodiscard]] std::size_t men() const { return men_; }
    [[nodiscard]] std::size_t own_king() const { return half_ == 0 ? 0 : second_king_; }
    [[nodiscard]] std::size_t other_king() const { return half_ == 0 ? second_king_ : 0; }
    [[nodiscard]] bool has_pawns() const { return name_.find('p') != std::string_view::npos; }
    [[nodiscard]] bool is_pawn(std::size_t man) const { return kinds_[man] == tb_pawn; }
    [[nodiscard]] bool is_king(std::size_t man) const { return kinds_[man] == tb_king; }

    /// Whether a man is of the kind of the one named before it.
    [[nodiscard]] bool goes_on(std::size_t man) const { return kinds_[man] == kinds_[man - 1]; }

    [[nodiscard]] std::uint32_t index(const WalkSquares& squares, const Turn& turn) {
        for (std::size_t man = 0; man < men_; ++man) {
            TbBoard& board = man < second_king_ ? boards_.first : boards_.second;
            board[turn.mailbox[squares[man]]] = kinds_[man];
        }
        return index_fn_(boards_.first, boards_.second, tb_no_en_passant, turn.flip);
    }

    /// Whether the side to move could take the other king. `occupied`: all men, a bit a square.
    [[nodiscard]] bool attacks_king(const WalkSquares& squares, SquareBits occupied) const;

    /// Table, half and squares, for messages.
    [[nodiscard]] std::string text(const WalkSquares& squares) const;

  private:
    std::string_view name_;
    std::size_t half_;
    std::size_t men_;
    std::size_t second_king_;
    TbIndexFunction index_fn_;
    std::array<std::int32_t, 5> kinds_{};
    TableBoards boards_;
};

using KingPair = std::pair<std::uint8_t, std::uint8_t>;

/// Pairs of kings as they stand after turning, that of the side to move first.
[[nodiscard]] std::vector<KingPair> king_pairs(bool has_pawns);

/// Calls `visit` for every placement of the men from `man` on, men of a kind in rising order.
template <class Visit>
void place_men(const WalkedHalf& half, WalkSquares& squares, SquareBits occupied, std::size_t man,
               Visit& visit) {
    if (man == half.men()) {
        if (!half.attacks_king(squares, occupied)) {
            visit(squares);
        }
        return;
    }
    if (half.is_king(man)) {
        place_men(half, squares, occupied, man + 1, visit);
        return;
    }
    const std::size_t lowest = half.is_pawn(man) ? 8 : 0;
    const std::size_t begin = half.goes_on(man) ? squares[man - 1] + std::size_t{1} : lowest;
    for (std::size_t square = begin; square < walk_squares - lowest; ++square) {
        if ((occupied & square_bit(square)) == 0) {
            squares[man] = static_cast<std::uint8_t>(square);
            place_men(half, squares, occupied | square_bit(square), man + 1, visit);
        }
    }
}

/// All positions of a pair of kings in which the other side is not in check.
template <class Visit>
void walk_pair(const WalkedHalf& half, const KingPair& kings, Visit visit) {
    WalkSquares squares{};
    squares[half.own_king()] = kings.first;
    squares[half.other_king()] = kings.second;
    place_men(half, squares, square_bit(kings.first) | square_bit(kings.second), 0, visit);
}
