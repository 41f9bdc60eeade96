// SPDX-License-Identifier: MIT
// What distinguishes the numbering of one half of a table from another, worked out from the table's
// name by the compiler: which men are enumerated together with the kings, which follow as digits,
// and how many squares each digit has to choose from.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <string_view>

#include "tb/index/choose.h"
#include "tb/index/enumeration.h"
#include "tb/tb_types.h"

/// Where a man's square stands when all have been taken: the first side's king, its men in the
/// order of the name, the other king, its men.
using ManPlace = std::uint8_t;
inline constexpr std::size_t tb_places = 5;

/// A set of places, a bit each.
using PlaceSet = std::uint32_t;

[[nodiscard]] constexpr PlaceSet place_bit(ManPlace place) {
    return PlaceSet{1} << place;
}

/// One, two or three men of a kind that make one digit.
struct TbDigit {
    ManPlace first = 0;    ///< the others follow
    std::uint8_t men = 0;  ///< 1 to 3
    bool pawns = false;
    PlaceSet taken = 0;  ///< men whose squares are left out
    std::uint32_t radix = 1;
};

/// How the enumerated men are put together.
enum class TbShape : std::uint8_t { kings, one, two, pair, three, pair_and_one, triple };

/// The numbering of one half.
struct TbHalfPlan {
    std::array<std::uint8_t, tb_places> kinds{};  ///< by place
    ManPlace men = 0;                             ///< kings included
    ManPlace second_king = 0;
    bool has_pawns = false;

    // The enumeration. Of `pair_and_one` the pair stands first, whatever the name says.
    ManPlace own_king = 0;  ///< of the side to move
    ManPlace other_king = 0;
    TbShape shape = TbShape::kings;
    bool flipped = false;  ///< ranks exchanged, so that the second side's pawns go up as well
    std::array<ManPlace, tb_most_men> enumerated{};
    std::array<std::uint8_t, tb_most_men> enumerated_kinds{};
    TbKindSet kind_set{};

    std::array<TbDigit, tb_most_men> digits{};
    std::uint8_t digit_count = 0;

    /// Numbers of a pair of kings in the section of captures en passant; 0 without a section.
    std::uint32_t en_passant_numbers = 0;
};

namespace half_plan_detail {

constexpr std::uint32_t pawn_squares = 48;

// Codes of a capture en passant: a file and a direction. In kppkp the third pawn adds its square,
// one of those that the two pawns, the target and the start of the pawn that passed by leave.
constexpr std::uint32_t capture_codes = 14;
constexpr std::uint32_t third_pawn_squares = pawn_squares - 4;

constexpr std::uint8_t kind_of(char letter) {
    switch (letter) {
        case 'n': return tb_knight;
        case 'b': return tb_bishop;
        case 'r': return tb_rook;
        case 'q': return tb_queen;
        case 'k': return tb_king;
        default: return tb_pawn;
    }
}

/// Places and kinds, and who is to move.
constexpr TbHalfPlan read_name(std::string_view name, std::int32_t half) {
    TbHalfPlan plan;
    for (const char letter : name) {
        plan.kinds[plan.men] = kind_of(letter);
        plan.second_king = letter == 'k' ? plan.men : plan.second_king;
        plan.has_pawns = plan.has_pawns || letter == 'p';
        ++plan.men;
    }
    plan.own_king = half == 0 ? ManPlace{0} : plan.second_king;
    plan.other_king = half == 0 ? plan.second_king : ManPlace{0};
    return plan;
}

/// Places behind a king, up to the next king or the end.
constexpr ManPlace end_of_side(const TbHalfPlan& plan, ManPlace king) {
    return king == 0 ? plan.second_king : plan.men;
}

constexpr TbShape shape_of(const std::array<std::uint8_t, tb_most_men>& kinds, std::size_t count) {
    switch (count) {
        case 0: return TbShape::kings;
        case 1: return TbShape::one;
        case 2: return kinds[0] == kinds[1] ? TbShape::pair : TbShape::two;
        default: break;
    }
    if (kinds[0] == kinds[1] && kinds[1] == kinds[2]) {
        return TbShape::triple;
    }
    return kinds[0] == kinds[1] || kinds[1] == kinds[2] ? TbShape::pair_and_one : TbShape::three;
}

/// Chooses the enumerated men: those of the side to move; where it has none, the pawns.
constexpr PlaceSet choose_enumerated(TbHalfPlan& plan) {
    const ManPlace own_end = end_of_side(plan, plan.own_king);
    const bool bare = own_end == plan.own_king + 1;
    const ManPlace king = bare ? plan.other_king : plan.own_king;
    PlaceSet chosen = 0;
    std::size_t count = 0;
    for (ManPlace place = king + 1; place < end_of_side(plan, king); ++place) {
        if (bare && plan.kinds[place] != tb_pawn) continue;
        plan.enumerated[count] = place;
        // A pawn may give check to a bare king that is to move: no square is left out for that.
        plan.enumerated_kinds[count] = bare ? tb_pawn_any : plan.kinds[place];
        chosen |= place_bit(place);
        plan.flipped = plan.flipped || (plan.own_king != 0 && plan.kinds[place] == tb_pawn);
        ++count;
    }
    plan.kind_set = {!plan.has_pawns, static_cast<std::uint8_t>(count), plan.enumerated_kinds};
    plan.shape = shape_of(plan.enumerated_kinds, count);
    if (plan.shape == TbShape::pair_and_one &&
        plan.enumerated_kinds[0] != plan.enumerated_kinds[1]) {
        std::rotate(plan.enumerated.begin(), plan.enumerated.begin() + 1, plan.enumerated.end());
        std::rotate(plan.enumerated_kinds.begin(), plan.enumerated_kinds.begin() + 1,
                    plan.enumerated_kinds.end());
    }
    return chosen;
}

/// The men of the other side that are not enumerated, those of one kind together.
constexpr void group_digits(TbHalfPlan& plan, PlaceSet enumerated) {
    for (ManPlace place = plan.other_king + 1; place < end_of_side(plan, plan.other_king);
         ++place) {
        if ((enumerated & place_bit(place)) != 0) continue;
        const bool goes_on = plan.digit_count > 0 && plan.kinds[place] == plan.kinds[place - 1];
        if (!goes_on) {
            plan.digits[plan.digit_count++].first = place;
        }
        TbDigit& digit = plan.digits[plan.digit_count - 1];
        digit.pawns = plan.kinds[place] == tb_pawn;
        ++digit.men;
    }
}

/// Which squares each digit leaves out. Pawns leave out the pawns of the enumeration alone; pieces
/// leave out kings, pawns, enumerated men, and the pieces named before them.
constexpr void set_radices(TbHalfPlan& plan, PlaceSet enumerated) {
    PlaceSet pawns = 0;
    for (ManPlace place = 0; place < plan.men; ++place) {
        pawns |= plan.kinds[place] == tb_pawn ? place_bit(place) : 0;
    }
    PlaceSet placed = place_bit(0) | place_bit(plan.second_king) | pawns | enumerated;
    // A pair and a single piece against a bare king: the single one is placed first, also where its
    // digit stands behind the pair's.
    if (plan.shape == TbShape::kings && plan.digit_count == 2) {
        TbDigit& single = plan.digits[plan.digits[0].men == 1 ? 0 : 1];
        TbDigit& pair = plan.digits[plan.digits[0].men == 1 ? 1 : 0];
        single.taken = placed;
        pair.taken = placed | place_bit(single.first);
    } else {
        for (std::size_t i = 0; i < plan.digit_count; ++i) {
            TbDigit& digit = plan.digits[i];
            digit.taken = digit.pawns ? enumerated & pawns : placed;
            placed |= place_bit(digit.first);  // only single pieces are followed by another
        }
    }
    for (std::size_t i = 0; i < plan.digit_count; ++i) {
        TbDigit& digit = plan.digits[i];
        const std::uint32_t all = digit.pawns ? pawn_squares : tb_squares;
        digit.radix =
            choose(all - static_cast<std::uint32_t>(std::popcount(digit.taken)), digit.men);
    }
}

}  // namespace half_plan_detail

/// The plan of a half, 0 or 1, of the table `name`.
[[nodiscard]] constexpr TbHalfPlan tb_half_plan(std::string_view name, std::int32_t half) {
    using namespace half_plan_detail;
    TbHalfPlan plan = read_name(name, half);
    const PlaceSet enumerated = choose_enumerated(plan);
    group_digits(plan, enumerated);
    set_radices(plan, enumerated);
    if (name == "kpkp") {
        plan.en_passant_numbers = capture_codes;
    } else if (name == "kppkp") {
        plan.en_passant_numbers = capture_codes * third_pawn_squares;
    }
    return plan;
}
