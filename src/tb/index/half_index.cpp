// SPDX-License-Identifier: MIT
// Four steps: take the men off the boards, turn the board about until the king of the side to move
// stands in its part of it, number the kings with that side's men, append the other men as digits.
// All arithmetic is unsigned and wraps, so that senseless boards give senseless numbers and nothing
// worse.
#include "tb/index/half_index.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "tb/index/choose.h"

namespace {

using Squares = TbMenSquares;

Squares take_squares(const TbHalfPlan& plan, TbBoard& first, TbBoard& second) {
    Squares squares{};
    for (ManPlace place = 0; place < plan.men; ++place) {
        squares[place] = take_first(place < plan.second_king ? first : second, plan.kinds[place]);
    }
    return squares;
}

/// Brings the king of the side to move to the a to d files, pawns of the first side going up, or,
/// without pawns, into the triangle. The en-passant square goes with the rest.
void normalise(const TbHalfPlan& plan, Squares& squares, std::uint32_t& ep, std::uint32_t flip) {
    const std::uint32_t king = squares[plan.own_king];
    const std::uint32_t mask = plan.has_pawns ? file_mask_of(king) ^ (flip != 0 ? tb_rank_mask : 0)
                                              : quadrant_mask_of(king);
    for (std::uint32_t& square : squares) {
        square ^= mask;
    }
    if (ep != tb_no_en_passant) {
        ep ^= mask;
    }
    if (!plan.has_pawns && !triangle_test(squares[plan.own_king], squares[plan.other_king])) {
        for (std::uint32_t& square : squares) {
            square = diagonal_mirror(square);
        }
    }
}

/// The men of the side to move among the squares that the kings leave them.
class Enumeration {
  public:
    Enumeration(const TbHalfPlan& plan, const Squares& squares)
        : plan_(plan),
          mask_(plan.flipped ? tb_rank_mask : 0),
          own_(squares[plan.own_king] ^ mask_),
          other_(squares[plan.other_king] ^ mask_) {
        for (std::size_t i = 0; i < tb_most_men; ++i) {
            men_[i] = squares[plan.enumerated[i]] ^ mask_;
        }
    }

    [[nodiscard]] std::uint32_t number() {
        return plan_.shape == TbShape::kings ? kings() : offset_of(kings()) + placement();
    }

    /// Number of the pair of kings as the enumeration sees them.
    [[nodiscard]] std::uint32_t kings() const {
        const auto& pairs = plan_.has_pawns ? *tb_kk_pawn : *tb_kk_pawnless;
        return static_cast<std::uint32_t>(pairs[own_][other_]);
    }

  private:
    [[nodiscard]] std::uint32_t offset_of(std::uint32_t pair) const {
        return pair == tb_no_pair ? 0 : (*tb_offset_entry(plan_.kind_set))[pair];
    }

    [[nodiscard]] bool own_king_is_in_the_way(std::size_t man) const {
        return tb_ordinal[plan_.enumerated_kinds[man]][other_][own_] != tb_no_square;
    }

    /// Number of a man's square among those it may stand on.
    [[nodiscard]] std::uint32_t square_number(std::size_t man) const {
        const std::uint32_t ordinal = tb_ordinal[plan_.enumerated_kinds[man]][other_][men_[man]];
        return ordinal - (own_king_is_in_the_way(man) && men_[man] > own_ ? 1U : 0U);
    }

    /// How many squares a man may stand on.
    [[nodiscard]] std::uint32_t squares_for(std::size_t man) const {
        return tb_count[plan_.enumerated_kinds[man]][other_] -
               (own_king_is_in_the_way(man) ? 1U : 0U);
    }

    void sort(std::size_t low, std::size_t high) {
        if (men_[low] > men_[high]) {
            std::swap(men_[low], men_[high]);
        }
    }

    [[nodiscard]] std::uint32_t pair_of_men() {
        sort(0, 1);
        return choose2(square_number(1)) + square_number(0);
    }

    [[nodiscard]] std::uint32_t placement() {
        switch (plan_.shape) {
            case TbShape::kings: return 0;
            case TbShape::one: return square_number(0);
            case TbShape::two: return square_number(0) * squares_for(1) + square_number(1);
            case TbShape::pair: return pair_of_men();
            case TbShape::three:
                return (square_number(0) * squares_for(1) + square_number(1)) * squares_for(2) +
                       square_number(2);
            case TbShape::pair_and_one: return pair_of_men() * squares_for(2) + square_number(2);
            case TbShape::triple: break;
        }
        sort(0, 1);
        sort(1, 2);
        sort(0, 1);
        return choose3(square_number(2)) + choose2(square_number(1)) + square_number(0);
    }

    const TbHalfPlan& plan_;
    std::uint32_t mask_;
    std::uint32_t own_;    ///< king of the side to move
    std::uint32_t other_;  ///< the other king
    std::array<std::uint32_t, tb_most_men> men_{};
};

/// How many of the squares in `taken` lie below one.
std::uint32_t taken_below(const Squares& squares, PlaceSet taken, std::uint32_t square) {
    std::uint32_t below = 0;
    for (std::size_t place = 0; place < tb_places; ++place) {
        below += (taken >> place) & (squares[place] < square ? 1U : 0U);
    }
    return below;
}

/// Puts two squares in rising order, if they are in use.
void sort_pair(std::uint32_t& low, std::uint32_t& high, bool is_used) {
    if (is_used && low > high) {
        std::swap(low, high);
    }
}

/// One to three men of a kind among the squares that are left.
std::uint32_t digit_value(const TbDigit& digit, const Squares& squares) {
    constexpr std::uint32_t first_pawn_square = 8;
    std::array<std::uint32_t, tb_most_men> men{};
    for (std::size_t i = 0; i < digit.men; ++i) {
        men[i] = squares[digit.first + i];
    }
    // Steps that the compiler can follow: it takes std::sort of one to three for one of many.
    sort_pair(men[0], men[1], digit.men > 1);
    sort_pair(men[1], men[2], digit.men > 2);
    sort_pair(men[0], men[1], digit.men > 2);
    for (std::uint32_t& man : men) {
        man -= taken_below(squares, digit.taken, man) + (digit.pawns ? first_pawn_square : 0);
    }
    switch (digit.men) {
        case 1: return men[0];
        case 2: return choose2(men[1]) + men[0];
        default: return choose3(men[2]) + choose2(men[1]) + men[0];
    }
}

/// Numbers without the section of captures en passant.
std::uint32_t plain_positions(const TbHalfPlan& plan) {
    std::uint32_t positions = plan.shape == TbShape::kings
                                  ? tb_pawnless_pairs
                                  : tb_total[plan.kind_set.pawnless][tb_set_number(plan.kind_set)];
    for (std::size_t i = 0; i < plan.digit_count; ++i) {
        positions *= plan.digits[i].radix;
    }
    return positions;
}

/// A capture en passant that the side to move can make, in squares as normalised.
struct Capture {
    std::uint32_t code;                   ///< 0 to 13: file and direction
    std::array<std::uint32_t, 4> needed;  ///< the two pawns' squares, the target, the start
    PlaceSet pawns;                       ///< the two pawns
};

/// The pawn at `place` captures on `ep`, if it stands beside the pawn that has just passed by.
std::optional<Capture> capture_by(const TbHalfPlan& plan, const Squares& squares, ManPlace place,
                                  std::uint32_t ep) {
    const std::uint32_t pawn = squares[place];
    const std::uint32_t forward = plan.own_king == 0 ? 8 : 0U - 8;  // own pawns' way; wraps
    const bool towards_a = ep + 1 == pawn + forward && file_index(pawn) > 0;
    const bool towards_h = ep == pawn + forward + 1 && file_index(ep) > 0;
    if (!towards_a && !towards_h) {
        return std::nullopt;
    }
    constexpr std::uint32_t towards_h_codes = 7;
    Capture capture{towards_a ? file_index(pawn) - 1 : file_index(pawn) + towards_h_codes,
                    {pawn, ep - forward, ep, ep + forward},
                    place_bit(place)};
    const ManPlace enemy_king = plan.other_king;
    for (ManPlace enemy = enemy_king + 1; enemy < half_plan_detail::end_of_side(plan, enemy_king);
         ++enemy) {
        capture.pawns |= squares[enemy] == ep - forward ? place_bit(enemy) : 0;
    }
    return capture;
}

/// Number of a position in which a capture en passant is possible; empty if no pawn can make it.
/// Where two can, the one on the lower square counts. The third pawn of kppkp, which no rule of the
/// format that we know places, is numbered on the squares that the capture leaves.
[[gnu::cold]] std::optional<std::uint32_t> en_passant_index(const TbHalfPlan& plan,
                                                            const Squares& squares,
                                                            std::uint32_t kings, std::uint32_t ep) {
    std::optional<Capture> capture;
    for (ManPlace place = plan.own_king + 1;
         place < half_plan_detail::end_of_side(plan, plan.own_king); ++place) {
        const std::optional<Capture> other = capture_by(plan, squares, place, ep);
        if (other && (!capture || other->needed[0] < capture->needed[0])) {
            capture = other;
        }
    }
    if (!capture) {
        return std::nullopt;
    }
    std::uint32_t number = capture->code;
    for (ManPlace place = 0; place < plan.men; ++place) {
        const bool is_third =
            plan.kinds[place] == tb_pawn && (capture->pawns & place_bit(place)) == 0;
        if (is_third) {
            const std::uint32_t square = squares[place];
            const auto below = std::count_if(capture->needed.begin(), capture->needed.end(),
                                             [&](std::uint32_t needed) { return needed < square; });
            number = number * half_plan_detail::third_pawn_squares + square - 8 -
                     static_cast<std::uint32_t>(below);
        }
    }
    return plain_positions(plan) + kings * plan.en_passant_numbers + number;
}

}  // namespace

std::uint32_t tb_half_index(const TbHalfPlan& plan, TbBoard& first, TbBoard& second,
                            std::uint32_t ep, std::uint32_t flip) {
    return tb_squares_index(plan, take_squares(plan, first, second), ep, flip);
}

std::uint32_t tb_squares_index(const TbHalfPlan& plan, TbMenSquares squares, std::uint32_t ep,
                               std::uint32_t flip) {
    normalise(plan, squares, ep, flip);
    Enumeration enumeration(plan, squares);
    if (ep != tb_no_en_passant && plan.en_passant_numbers != 0) {
        if (const auto index = en_passant_index(plan, squares, enumeration.kings(), ep)) {
            return *index;
        }
    }
    std::uint32_t index = enumeration.number();
    for (std::size_t i = 0; i < plan.digit_count; ++i) {
        index = index * plan.digits[i].radix + digit_value(plan.digits[i], squares);
    }
    return index;
}

std::uint32_t tb_half_positions(const TbHalfPlan& plan) {
    return plain_positions(plan) +
           static_cast<std::uint32_t>(tb_pawn_pairs) * plan.en_passant_numbers;
}
