// SPDX-License-Identifier: MIT
// Moves are made one at a time on lists of squares.
#include "tbgen/successors.h"

#include <algorithm>
#include <array>

#include "tbgen/pawn_steps.h"
#include "tbgen/square_set.h"

namespace {

SquareSet occupied_squares(const MenList& men, const MenPosition& position) {
    SquareSet occupied = square_bit(position.kings[0]) | square_bit(position.kings[1]);
    for (std::size_t i = 0; i < men.size(); ++i) {
        occupied |= square_bit(position.squares[i]);
    }
    return occupied;
}

/// A value for the side that has moved, from that of the side to move then: one move longer.
Value seen_from_before(Value after) {
    if (after < drawn) {
        return static_cast<Value>(-after - 1);
    }
    return static_cast<Value>(-after);
}

class Successors {
  public:
    Successors(const Material& material, const MenPosition& position)
        : material_(material),
          men_(material.men()),
          position_(position),
          side_(position.to_move),
          occupied_(occupied_squares(men_, position)) {}

    Value value() {
        king_moves();
        for (std::size_t man = 0; man < men_.size(); ++man) {
            if (men_[man].side != side_) continue;
            if (men_[man].kind == tb_pawn) {
                pawn_moves(man);
            } else {
                piece_moves(man);
            }
        }
        if (is_faulty_) {
            return not_reachable;
        }
        if (!has_move_) {
            return is_in_check(men_, position_, side_) ? mated_in(0) : drawn;
        }
        return best_;
    }

    [[nodiscard]] bool has_move() const { return has_move_; }

  private:
    [[nodiscard]] std::size_t man_on(TbSquare square) const {
        std::size_t man = 0;
        while (man < men_.size() && position_.squares[man] != square) {
            ++man;
        }
        return man;
    }

    /// A move has been made on `after`; `material` is what it leaves.
    void add(const Material& material, MenPosition after) {
        after.to_move = side_ ^ 1U;
        if (is_in_check(material.men(), after, side_)) {
            return;
        }
        has_move_ = true;
        const Value value = material.value(after);
        is_faulty_ = is_faulty_ || value == not_reachable;
        best_ = std::max(best_, seen_from_before(value));
    }

    [[nodiscard]] MenPosition moved(std::size_t man, TbSquare to) const {
        MenPosition after = position_;
        after.en_passant = tb_no_en_passant;
        after.squares[man] = to;
        return after;
    }

    /// The position without a man that has been captured.
    [[nodiscard]] MenPosition taken_off(MenPosition after, std::size_t captured) const {
        for (std::size_t i = captured; i + 1 < men_.size(); ++i) {
            after.squares[i] = after.squares[i + 1];
        }
        return after;
    }

    void king_moves() {
        const TbSquare other = position_.kings[side_ ^ 1U];
        const SquareSet forbidden = king_reach(square_bit(other)) | square_bit(other);
        for_each_square(king_reach(square_bit(position_.kings[side_])) & ~forbidden,
                        [&](TbSquare to) {
                            MenPosition after = position_;
                            after.en_passant = tb_no_en_passant;
                            after.kings[side_] = to;
                            finish(after, man_on(to));
                        });
    }

    /// Adds a move that may capture the man there.
    void finish(const MenPosition& after, std::size_t captured) {
        if (captured == men_.size()) {
            add(material_, after);
        } else if (men_[captured].side != side_) {
            add(*material_.without(captured), taken_off(after, captured));
        }
    }

    void piece_moves(std::size_t man) {
        const SquareSet kings = square_bit(position_.kings[0]) | square_bit(position_.kings[1]);
        const SquareSet targets =
            piece_attacks(men_[man].kind, position_.squares[man], occupied_) & ~kings;
        for_each_square(targets, [&](TbSquare to) { finish(moved(man, to), man_on(to)); });
    }

    /// A pawn arrives, perhaps on its last rank, perhaps with a capture.
    void pawn_arrives(std::size_t man, TbSquare to, std::size_t captured) {
        if ((square_bit(to) & pawn_ranks) != 0) {
            finish(moved(man, to), captured);
            return;
        }
        for (std::uint8_t kind = tb_knight; kind <= tb_queen; ++kind) {
            if (captured == men_.size()) {
                add(*material_.promoted(man, kind), moved(man, to));
            } else if (men_[captured].side != side_) {
                const std::size_t left = man - (captured < man ? 1 : 0);
                add(*material_.without(captured)->promoted(left, kind),
                    taken_off(moved(man, to), captured));
            }
        }
    }

    void pawn_moves(std::size_t man) {
        const PawnWay way = pawn_way(side_);
        const TbSquare from = position_.squares[man];
        const TbSquare one = square_ahead(way, from, 1);
        if ((occupied_ & square_bit(one)) == 0) {
            pawn_arrives(man, one, men_.size());
            const TbSquare two = square_ahead(way, one, 1);
            if (from / board_width == way.start_rank && (occupied_ & square_bit(two)) == 0) {
                double_step(man, one, two);
            }
        }
        for_each_square(pawn_attacks(side_, from), [&](TbSquare to) {
            if (const std::size_t captured = man_on(to); captured != men_.size()) {
                pawn_arrives(man, to, captured);
            } else if (to == position_.en_passant) {
                const std::size_t passed = man_on(square_behind(way, to, 1));
                finish(moved(man, to), passed);
            }
        });
    }

    void double_step(std::size_t man, TbSquare passed, TbSquare to) {
        MenPosition after = moved(man, to);
        bool can_capture = false;
        for (std::size_t i = 0; i < men_.size(); ++i) {
            can_capture =
                can_capture || (men_[i].side != side_ && men_[i].kind == tb_pawn &&
                                (beside(square_bit(to)) & square_bit(position_.squares[i])) != 0);
        }
        if (!can_capture || material_.keeps_en_passant()) {
            after.en_passant = can_capture ? passed : tb_no_en_passant;
            add(material_, after);
            return;
        }
        after.to_move = side_ ^ 1U;
        if (is_in_check(men_, after, side_)) {
            return;
        }
        // The table does not keep the position with the capture: one move more has to be made.
        has_move_ = true;
        after.en_passant = passed;
        const Value value = value_by_successors(material_, after);
        is_faulty_ = is_faulty_ || value == not_reachable;
        best_ = std::max(best_, seen_from_before(value));
    }

    const Material& material_;
    const MenList& men_;
    const MenPosition& position_;
    std::uint8_t side_;
    SquareSet occupied_;
    Value best_ = not_reachable;
    bool has_move_ = false;
    bool is_faulty_ = false;
};

}  // namespace

bool is_in_check(const MenList& men, const MenPosition& position, std::uint8_t side) {
    const SquareSet king = square_bit(position.kings[side]);
    const SquareSet occupied = occupied_squares(men, position);
    for (std::size_t i = 0; i < men.size(); ++i) {
        if (men[i].side == side) continue;
        const SquareSet attacked = men[i].kind == tb_pawn
                                       ? pawn_attacks(men[i].side, position.squares[i])
                                       : piece_attacks(men[i].kind, position.squares[i], occupied);
        if ((attacked & king) != 0) {
            return true;
        }
    }
    return false;
}

Value value_by_successors(const Material& material, const MenPosition& position) {
    return Successors(material, position).value();
}
