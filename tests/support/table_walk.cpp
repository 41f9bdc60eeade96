// SPDX-License-Identifier: MIT
// Attacks by table: for each man, square and king the squares between. All else is a list.
#include "support/table_walk.h"

#include <algorithm>
#include <cstdlib>

namespace {

int file_at(int square) {
    return square % 8;
}

int rank_at(int square) {
    return square / 8;
}

bool moves_along(std::int32_t kind, int files, int ranks) {
    const bool straight = files == 0 || ranks == 0;
    const bool diagonal = files == ranks || files == -ranks;
    const int steps = files * files + ranks * ranks;
    switch (kind) {
        case tb_pawn: return ranks == 1 && files * files == 1;
        case tb_knight: return steps == 5;
        case tb_bishop: return diagonal;
        case tb_rook: return straight;
        case tb_queen: return straight || diagonal;
        default: return steps <= 2;
    }
}

/// Stands for a man that cannot go there.
constexpr SquareBits never = ~SquareBits{0};

/// The squares between, if the man can capture there once they are empty. Pawns go up.
SquareBits squares_between(std::int32_t kind, int from, int to) {
    const int files = file_at(to) - file_at(from);
    const int ranks = rank_at(to) - rank_at(from);
    if (from == to || !moves_along(kind, files, ranks)) {
        return never;
    }
    if (kind == tb_knight) {
        return 0;
    }
    const int steps = std::max(std::abs(files), std::abs(ranks));
    const int step = (8 * ranks + files) / steps;
    SquareBits between = 0;
    for (int square = from + step; square != to; square += step) {
        between |= square_bit(static_cast<std::size_t>(square));
    }
    return between;
}

/// The same as a table. Index: kind, from, to.
using BetweenTable = std::array<std::array<SquareBits, walk_squares>, walk_squares>;
const std::vector<BetweenTable> squares_to_pass = [] {
    std::vector<BetweenTable> tables(tb_king + 1);
    for (std::int32_t kind = tb_pawn; kind <= tb_king; ++kind) {
        for (int from = 0; from < 64; ++from) {
            for (int to = 0; to < 64; ++to) {
                tables[static_cast<std::size_t>(kind)][static_cast<std::size_t>(from)]
                      [static_cast<std::size_t>(to)] = squares_between(kind, from, to);
            }
        }
    }
    return tables;
}();

/// Whether the king of the side to move stands where the tables want it.
bool is_turned(bool has_pawns, int own, int other) {
    const int file = file_at(own);
    const int rank = rank_at(own);
    return file <= 3 &&
           (has_pawns || rank < file || (rank == file && rank_at(other) <= file_at(other)));
}

/// `mask` exchanges files (7), ranks (56) or both.
Turn make_turn(int mask, bool diagonal, std::uint32_t flip) {
    Turn turn{diagonal, flip, {}};
    for (int square = 0; square < 64; ++square) {
        const int masked = square ^ mask;
        const int turned = diagonal ? 8 * file_at(masked) + rank_at(masked) : masked;
        turn.mailbox[static_cast<std::size_t>(square)] =
            static_cast<std::uint8_t>(mailbox_square(turned));
    }
    return turn;
}

}  // namespace

std::vector<Turn> turns_of(bool has_pawns) {
    std::vector<Turn> turns;
    for (const bool diagonal : {false, true}) {
        for (const std::uint32_t flip : {0U, 1U}) {
            for (const int mask : {0, 7, 56, 63}) {
                // With pawns, colours are exchanged together with the ranks.
                if (!has_pawns || (!diagonal && (mask >= 56) == (flip == 1))) {
                    turns.push_back(make_turn(mask, diagonal, flip));
                }
            }
        }
    }
    return turns;
}

WalkedHalf::WalkedHalf(std::size_t row, std::size_t half)
    : name_(tb_names[row]),
      half_(half),
      men_(name_.size()),
      second_king_(name_.rfind('k')),
      index_fn_(TbCatalogue[row].index_fn[half]) {
    for (std::size_t man = 0; man < men_; ++man) {
        kinds_[man] = man_code(name_[man]);
    }
}

bool WalkedHalf::attacks_king(const WalkSquares& squares, SquareBits occupied) const {
    const std::size_t king = squares[other_king()];
    const std::size_t over = half_ == 0 ? 0 : 56;  // the second side's pawns go down
    for (std::size_t man = own_king(); man < (half_ == 0 ? second_king_ : men_); ++man) {
        const auto& between = squares_to_pass[static_cast<std::size_t>(kinds_[man])];
        const SquareBits passed =
            is_pawn(man) ? between[squares[man] ^ over][king ^ over] : between[squares[man]][king];
        if (passed != never && (passed & occupied) == 0) {
            return true;
        }
    }
    return false;
}

std::string WalkedHalf::text(const WalkSquares& squares) const {
    return std::string(name_) + ", half " + std::to_string(half_) + ": " +
           square_text({squares.begin(), squares.begin() + static_cast<int>(men_)});
}

std::vector<KingPair> king_pairs(bool has_pawns) {
    std::vector<KingPair> pairs;
    for (int own = 0; own < 64; ++own) {
        for (int other = 0; other < 64; ++other) {
            const bool apart = std::abs(file_at(own) - file_at(other)) > 1 ||
                               std::abs(rank_at(own) - rank_at(other)) > 1;
            if (apart && is_turned(has_pawns, own, other)) {
                pairs.emplace_back(own, other);
            }
        }
    }
    return pairs;
}
