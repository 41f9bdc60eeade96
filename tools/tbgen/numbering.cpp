// SPDX-License-Identifier: MIT
// The same rules as the engine's index functions, which read the men off scratch boards one
// position at a time; a test compares the two over all tables.
#include "tbgen/numbering.h"

#include <algorithm>

#include "tb/index/index_family.h"

Numbering::Numbering(std::int32_t row, std::int32_t half) : plan_(tb_plan_of(row, half)) {
    men_ = static_cast<std::uint8_t>(plan_.men - 2);
    enumerated_count_ = plan_.kind_set.men;
    for (std::size_t i = 0; i < enumerated_count_; ++i) {
        enumerated_[i] = man_at(plan_.enumerated[i]);
    }
    for (std::size_t i = 0; i < plan_.digit_count; ++i) {
        const TbDigit& from = plan_.digits[i];
        Digit& to = digits_[i];
        to.first = man_at(from.first);
        to.men = from.men;
        to.pawns = from.pawns;
        to.radix = from.radix;
        to.kings = (from.taken & place_bit(plan_.own_king)) != 0;
        for (ManPlace place = 0; place < plan_.men; ++place) {
            const bool is_king = place == 0 || place == plan_.second_king;
            if (!is_king && (from.taken & place_bit(place)) != 0) {
                to.taken[to.taken_count++] = man_at(place);
            }
        }
        first_radix_ *= from.radix;
    }
}

std::uint8_t Numbering::man_at(ManPlace place) const {
    return static_cast<std::uint8_t>(place - (place < plan_.second_king ? 1 : 2));
}

Numbering::Frame Numbering::frame(const KingSquares& kings) const {
    Frame frame;
    const std::size_t own_side = plan_.own_king == 0 ? 0 : 1;
    const TbSquare own = kings[own_side];
    Turn turn = file_index(own) >= 4 ? turn_files : no_turn;
    if (!plan_.has_pawns) {
        turn |= rank_index(own) >= 4 ? turn_ranks : no_turn;
        if (!triangle_test(turned(turn, own), turned(turn, kings[own_side ^ 1U]))) {
            turn |= turn_diagonal;
        }
    }
    frame.turned = turned_squares[turn].data();
    frame.kings = {turned(turn, kings[0]), turned(turn, kings[1])};
    frame.flip = plan_.flipped ? tb_rank_mask : 0;
    frame.own = frame.kings[own_side] ^ frame.flip;
    const TbSquare other = frame.kings[own_side ^ 1U] ^ frame.flip;
    const auto& pairs = plan_.has_pawns ? *tb_kk_pawn : *tb_kk_pawnless;
    const auto pair = static_cast<std::uint32_t>(pairs[frame.own][other]);
    frame.base = plan_.shape == TbShape::kings ? pair : (*tb_offset_entry(plan_.kind_set))[pair];
    frame.base *= first_radix_;
    for (std::size_t i = 0; i < enumerated_count_; ++i) {
        const std::uint8_t kind = plan_.enumerated_kinds[i];
        frame.ordinals[i] = tb_ordinal[kind][other].data();
        frame.king_in_the_way[i] = frame.ordinals[i][frame.own] != tb_no_square;
        frame.counts[i] = tb_count[kind][other] - (frame.king_in_the_way[i] ? 1U : 0U);
    }
    return frame;
}

std::uint32_t Numbering::enumerated(const Frame& frame, const MenSquares& squares) const {
    std::array<std::uint32_t, tb_most_men> a{};
    for (std::size_t i = 0; i < enumerated_count_; ++i) {
        const TbSquare square = squares[enumerated_[i]] ^ frame.flip;
        const std::uint8_t* const ordinals = frame.ordinals[i];
        const std::uint32_t ordinal = ordinals[square];
        if (ordinal == tb_no_square || square == frame.own) {
            return no_number;
        }
        a[i] = ordinal - (frame.king_in_the_way[i] && square > frame.own ? 1U : 0U);
    }
    // Squares of alike men are in the order of their ordinals.
    switch (plan_.shape) {
        case TbShape::kings: return 0;
        case TbShape::one: return a[0];
        case TbShape::two: return a[0] * frame.counts[1] + a[1];
        case TbShape::pair: return choose2(std::max(a[0], a[1])) + std::min(a[0], a[1]);
        case TbShape::three: return (a[0] * frame.counts[1] + a[1]) * frame.counts[2] + a[2];
        case TbShape::pair_and_one:
            return (choose2(std::max(a[0], a[1])) + std::min(a[0], a[1])) * frame.counts[2] + a[2];
        case TbShape::triple: break;
    }
    std::sort(a.begin(), a.end());
    return choose3(a[2]) + choose2(a[1]) + a[0];
}

std::uint32_t Numbering::digit_value(const Digit& digit, const Frame& frame,
                                     const MenSquares& squares) {
    const auto reduced = [&](TbSquare square) {
        std::uint32_t below = digit.pawns ? board_width : 0;
        if (digit.kings) {
            below += (frame.kings[0] < square ? 1U : 0U) + (frame.kings[1] < square ? 1U : 0U);
        }
        for (std::size_t i = 0; i < digit.taken_count; ++i) {
            below += squares[digit.taken[i]] < square ? 1U : 0U;
        }
        return square - below;
    };
    const std::size_t first = digit.first;
    if (digit.men == 1) {
        return reduced(squares[first]);
    }
    if (digit.men == 2) {
        const auto [low, high] = std::minmax(squares[first], squares[first + 1]);
        return choose2(reduced(high)) + reduced(low);
    }
    MenSquares sorted = squares;
    std::sort(sorted.begin(), sorted.end());
    return choose3(reduced(sorted[2])) + choose2(reduced(sorted[1])) + reduced(sorted[0]);
}

std::uint32_t Numbering::number(const Frame& frame, const MenSquares& men) const {
    MenSquares squares{};
    SquareSet occupied = square_bit(frame.kings[0]) | square_bit(frame.kings[1]);
    for (std::size_t i = 0; i < men_; ++i) {
        squares[i] = frame.turned[men[i]];
        const SquareSet bit = square_bit(squares[i]);
        if ((occupied & bit) != 0) {
            return no_number;
        }
        occupied |= bit;
    }
    return number_of_turned(frame, squares);
}

std::uint32_t Numbering::number_apart(const Frame& frame, const MenSquares& men) const {
    MenSquares squares{};
    for (std::size_t i = 0; i < men_; ++i) {
        squares[i] = frame.turned[men[i]];
    }
    return number_of_turned(frame, squares);
}

std::uint32_t Numbering::number_of_turned(const Frame& frame, const MenSquares& squares) const {
    std::uint32_t number = enumerated(frame, squares);
    if (number == no_number) {
        return no_number;
    }
    for (std::size_t i = 0; i < plan_.digit_count; ++i) {
        const Digit& digit = digits_[i];
        number = number * digit.radix + digit_value(digit, frame, squares);
    }
    return frame.base + number;
}
