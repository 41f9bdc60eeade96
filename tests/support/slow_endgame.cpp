// SPDX-License-Identifier: MIT
// Every square of the board is asked whether a man can go there.
#include "support/slow_endgame.h"

#include <bit>
#include <cstdlib>

namespace {

constexpr int board_side = 8;
constexpr int board_size = 64;

int file_of(std::uint32_t square) {
    return static_cast<int>(square) % board_side;
}

int rank_of(std::uint32_t square) {
    return static_cast<int>(square) / board_side;
}

bool has(std::uint64_t set, int file, int rank) {
    return ((set >> static_cast<unsigned>(rank * board_side + file)) & 1U) != 0;
}

int sign(int number) {
    return (number > 0 ? 1 : 0) - (number < 0 ? 1 : 0);
}

int forward(std::uint8_t side) {
    return side == 0 ? 1 : -1;
}

class Mover {
  public:
    explicit Mover(const SlowPosition& position)
        : position_(position), occupied_(slow_occupied(position)) {}

    std::vector<SlowMove> moves() {
        const std::uint8_t side = position_.to_move;
        for (std::uint32_t to = 0; to < board_size; ++to) {
            if (slow_attacks(side, tb_king, position_.kings[side], to, occupied_)) {
                add(position_.men.size(), to, man_on(to), 0);
            }
            for (std::size_t man = 0; man < position_.men.size(); ++man) {
                if (position_.men[man].side == side) {
                    man_moves(man, to);
                }
            }
        }
        return moves_;
    }

  private:
    std::size_t man_on(std::uint32_t square) const {
        std::size_t man = 0;
        while (man < position_.men.size() && position_.men[man].square != square) {
            ++man;
        }
        return man;
    }

    bool is_empty(std::uint32_t square) const {
        return !has(occupied_, file_of(square), rank_of(square));
    }

    void man_moves(std::size_t man, std::uint32_t to) {
        const SlowMan& mover = position_.men[man];
        const bool attacks = slow_attacks(mover.side, mover.kind, mover.square, to, occupied_);
        if (mover.kind != tb_pawn) {
            if (attacks) add(man, to, man_on(to), 0);
            return;
        }
        const int ranks = (rank_of(to) - rank_of(mover.square)) * forward(mover.side);
        const bool is_ahead = file_of(to) == file_of(mover.square);
        if (attacks && to == position_.en_passant) {
            const int passed = static_cast<int>(to) - forward(mover.side) * board_side;
            add(man, to, man_on(static_cast<std::uint32_t>(passed)), 0);
        } else if ((attacks && !is_empty(to)) || (is_ahead && ranks == 1 && is_empty(to))) {
            pawn_arrives(man, to);
        } else if (is_ahead && ranks == 2 && is_empty(to)) {
            const int start = mover.side == 0 ? 1 : board_side - 2;
            const std::uint32_t between = (mover.square + to) / 2;
            if (rank_of(mover.square) == start && is_empty(between)) {
                add(man, to, position_.men.size(), 0);
                note_en_passant(moves_.back(), man, between);
            }
        }
    }

    void pawn_arrives(std::size_t man, std::uint32_t to) {
        if (rank_of(to) != 0 && rank_of(to) != board_side - 1) {
            add(man, to, man_on(to), 0);
            return;
        }
        for (std::uint8_t kind = tb_knight; kind <= tb_queen; ++kind) {
            add(man, to, man_on(to), kind);
        }
    }

    static void note_en_passant(SlowMove& move, std::size_t man, std::uint32_t passed) {
        const SlowMan pawn = move.after.men[man];
        for (const SlowMan& other : move.after.men) {
            if (other.kind == tb_pawn && other.side != pawn.side &&
                rank_of(other.square) == rank_of(pawn.square) &&
                std::abs(file_of(other.square) - file_of(pawn.square)) == 1) {
                move.after.en_passant = passed;
            }
        }
    }

    /// Adds a move to a square that no own man and no king stands on.
    void add(std::size_t man, std::uint32_t to, std::size_t captured, std::uint8_t promoted_to) {
        const std::size_t count = position_.men.size();
        const std::uint8_t side = position_.to_move;
        const bool is_own = captured < count && position_.men[captured].side == side;
        if (is_own || to == position_.kings[0] || to == position_.kings[1]) {
            return;
        }
        SlowMove move{position_, man, captured, promoted_to, false};
        move.after.to_move = side ^ 1U;
        move.after.en_passant = tb_no_en_passant;
        if (man == count) {
            move.after.kings[side] = to;
        } else {
            move.after.men[man].square = to;
            move.after.men[man].kind = promoted_to != 0 ? promoted_to : position_.men[man].kind;
        }
        if (captured < count) {
            move.after.men.erase(move.after.men.begin() + static_cast<std::ptrdiff_t>(captured));
        }
        move.is_legal = !slow_in_check(move.after, side);
        moves_.push_back(move);
    }

    const SlowPosition& position_;
    std::uint64_t occupied_;
    std::vector<SlowMove> moves_;
};

}  // namespace

std::uint32_t named_square(std::string_view name) {
    return static_cast<std::uint32_t>((name[1] - '1') * board_side + (name[0] - 'a'));
}

bool slow_attacks(std::uint8_t side, std::uint8_t kind, std::uint32_t from, std::uint32_t to,
                  std::uint64_t occupied) {
    const int files = file_of(to) - file_of(from);
    const int ranks = rank_of(to) - rank_of(from);
    const bool is_straight = (files == 0) != (ranks == 0);
    const bool is_diagonal = files != 0 && std::abs(files) == std::abs(ranks);
    switch (kind) {
        case tb_pawn: return ranks == forward(side) && std::abs(files) == 1;
        case tb_knight: return files * files + ranks * ranks == 5;
        case tb_king: return from != to && std::abs(files) <= 1 && std::abs(ranks) <= 1;
        case tb_bishop:
            if (!is_diagonal) return false;
            break;
        case tb_rook:
            if (!is_straight) return false;
            break;
        default:
            if (!is_diagonal && !is_straight) return false;
    }
    int file = file_of(from) + sign(files);
    int rank = rank_of(from) + sign(ranks);
    while (file != file_of(to) || rank != rank_of(to)) {
        if (has(occupied, file, rank)) {
            return false;
        }
        file += sign(files);
        rank += sign(ranks);
    }
    return true;
}

std::uint64_t slow_occupied(const SlowPosition& position) {
    std::uint64_t occupied = 0;
    for (const std::uint32_t king : position.kings) {
        occupied |= std::uint64_t{1} << king;
    }
    for (const SlowMan& man : position.men) {
        occupied |= std::uint64_t{1} << man.square;
    }
    return occupied;
}

bool slow_in_check(const SlowPosition& position, std::uint8_t side) {
    const std::uint64_t occupied = slow_occupied(position);
    const std::uint32_t king = position.kings[side];
    bool is_attacked = slow_attacks(side, tb_king, position.kings[side ^ 1U], king, occupied);
    for (const SlowMan& man : position.men) {
        is_attacked = is_attacked || (man.side != side &&
                                      slow_attacks(man.side, man.kind, man.square, king, occupied));
    }
    return is_attacked;
}

bool slow_legal(const SlowPosition& position) {
    const auto men = static_cast<int>(position.men.size() + position.kings.size());
    if (std::popcount(slow_occupied(position)) != men) {
        return false;
    }
    for (const SlowMan& man : position.men) {
        const int rank = rank_of(man.square);
        if (man.kind == tb_pawn && (rank == 0 || rank == board_side - 1)) {
            return false;
        }
    }
    return !slow_in_check(position, position.to_move ^ 1U);
}

std::vector<SlowMove> slow_moves(const SlowPosition& position) {
    return Mover(position).moves();
}
