// SPDX-License-Identifier: MIT
// Squares become words and bits by arithmetic of their own, and turns are found by trying them all.
#include "support/endgame_layout.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "tb/index/enumeration.h"
#include "tb/index/half_index.h"
#include "tb/index/index_family.h"
#include "tb/table_names.h"

namespace {

constexpr std::uint32_t board_size = 64;
constexpr std::uint32_t files = 8;

std::uint32_t square_at(std::uint32_t file, std::uint32_t rank) {
    return rank * files + file;
}

/// Ranks of a pawn's side, the own first rank first.
std::uint32_t rank_of_side(std::uint8_t side, std::uint32_t rank) {
    return side == 0 ? rank : files - 1 - rank;
}

/// A name's men of one side, queens first.
std::string letters_of(const SlowPosition& position, std::uint8_t side) {
    std::string letters;
    for (const SlowMan& man : position.men) {
        if (man.side == side) letters += " pnbrq"[man.kind];
    }
    constexpr std::string_view order = "qrbnp";
    std::sort(letters.begin(), letters.end(),
              [&](char a, char b) { return order.find(a) < order.find(b); });
    return "k" + letters;
}

std::int32_t find_row(std::string_view name) {
    const auto* const found = std::find(tb_names.begin(), tb_names.end(), name);
    return found == tb_names.end() ? -1 : static_cast<std::int32_t>(found - tb_names.begin());
}

}  // namespace

EndgameLayout::EndgameLayout(std::string_view name)
    : endgame_(endgame_of(row_of_name(name))), pairs_(endgame_.has_pawns) {
    slabs_.assign(std::size_t{board_size} * board_size, pairs_.slabs());
    for (std::size_t slab = 0; slab < pairs_.slabs(); ++slab) {
        const KingSquares& kings = pairs_.kings(slab);
        slabs_[kings[0] * board_size + kings[1]] = slab;
    }
}

std::size_t EndgameLayout::slab_of(const KingSquares& kings) const {
    return slabs_[kings[0] * board_size + kings[1]];
}

SlowPosition EndgameLayout::position(const LayoutPlace& place, std::uint8_t to_move) const {
    SlowPosition position{pairs_.kings(place.slab), {}, to_move};
    std::size_t word = place.word;
    for (const EndgameMan& man : endgame_.men) {
        position.men.push_back({man.side, man.kind, place.square});
    }
    for (std::size_t post = endgame_.men.size() - 1; post-- > 0; word /= board_size) {
        position.men[post].square = static_cast<std::uint32_t>(word % board_size);
    }
    return position;
}

LayoutPlace EndgameLayout::place_of(const SlowPosition& position) const {
    LayoutPlace place{slab_of(position.kings), 0, position.men.back().square};
    for (std::size_t post = 0; post + 1 < position.men.size(); ++post) {
        place.word = place.word * board_size + position.men[post].square;
    }
    return place;
}

void EndgameLayout::draw_double_step(LayoutRandom& random, SlowPosition& position) const {
    const std::uint32_t file = drawn_below(random, files);
    const std::uint32_t beside = file == 0 || (file < files - 1 && random() % 2 == 0) ? 1U : ~0U;
    std::array<bool, 2> has_pawn{};
    for (SlowMan& man : position.men) {
        if (man.kind != tb_pawn || has_pawn[man.side]) continue;
        has_pawn[man.side] = true;
        man.square = man.side == position.to_move
                         ? square_at(file, rank_of_side(position.to_move, 1))
                         : square_at(file + beside, rank_of_side(position.to_move, 3));
    }
}

SlowPosition EndgameLayout::draw(LayoutRandom& random, std::size_t slab,
                                 std::uint8_t to_move) const {
    SlowPosition result = position({slab, 0, 0}, to_move);
    const bool may_pass = endgame_.en_passant && random() % 2 == 0;
    do {
        for (SlowMan& man : result.men) {
            man.square = drawn_below(random, board_size);
        }
        if (may_pass) {
            draw_double_step(random, result);
        }
    } while (!slow_legal(result));
    return result;
}

std::vector<LayoutPlace> EndgameLayout::places_after(const SlowPosition& before,
                                                     const SlowMove& move) const {
    SlowPosition after = before;
    after.kings = move.after.kings;
    if (move.moved < before.men.size()) {
        std::uint32_t& square = after.men[move.moved].square;
        square = move.after.men[move.moved].square;
        if (move.after.en_passant != tb_no_en_passant) {
            square = square_at(square % files, rank_of_side(before.to_move, 0));
        }
    }
    std::vector<LayoutPlace> places;
    for (Turn turn = 0; turn < (endgame_.has_pawns ? 2U : turns); ++turn) {
        SlowPosition seen = after;
        for (std::uint32_t& king : seen.kings) {
            king = turned(turn, king);
        }
        for (SlowMan& man : seen.men) {
            man.square = turned(turn, man.square);
        }
        if (slab_of(seen.kings) < pairs_.slabs()) {
            places.push_back(place_of(seen));
        }
    }
    if (places.empty()) {
        throw std::logic_error("no slab for a pair of kings");
    }
    return places;
}

std::optional<Bytes> three_men_bytes(std::int32_t row, std::int32_t half) {
    const std::string name = CORVANE_TEST_DATA "/tb/" +
                             std::string(tb_names[static_cast<std::size_t>(row)]) +
                             (half == 0 ? ".nbw" : ".nbb");
    std::ifstream file(name, std::ios::binary);
    if (!file.is_open()) {
        return std::nullopt;
    }
    return Bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::optional<Bytes> made_up_bytes(std::int32_t row, std::int32_t half) {
    constexpr std::size_t period = 8191;  // no neighbours of any digit come back in step
    const std::array<Value, 8> values = {not_reachable, drawn,       mates_in(1), mates_in(2),
                                         mates_in(3),   mated_in(0), mated_in(1), mated_in(2)};
    LayoutRandom random(static_cast<std::uint32_t>(row * 2 + half));
    Bytes bytes(tb_half_positions(tb_plan_of(row, half)));
    for (std::size_t i = 0; i < std::min(period, bytes.size()); ++i) {
        bytes[i] = static_cast<std::uint8_t>(values[drawn_below(random, values.size())]);
    }
    for (std::size_t done = period; done < bytes.size(); done += period) {
        std::copy_n(bytes.begin(), std::min(period, bytes.size() - done),
                    bytes.begin() + static_cast<std::ptrdiff_t>(done));
    }
    return bytes;
}

Value SlowTables::value(const SlowPosition& position) {
    const std::string first = letters_of(position, 0);
    const std::string second = letters_of(position, 1);
    const std::int32_t row = find_row(first + second);
    return row >= 0 ? value_of(position, false, row)
                    : value_of(position, true, find_row(second + first));
}

Value SlowTables::value_of(const SlowPosition& position, bool is_swapped, std::int32_t row) {
    if (row <= 0) {
        return drawn;
    }
    std::array<std::uint32_t, tb_places> squares{};
    std::vector<SlowMan> left = position.men;
    const std::string_view name = tb_names[static_cast<std::size_t>(row)];
    std::uint8_t side = is_swapped ? 0 : 1;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] == 'k') {
            side ^= 1U;
            squares[i] = position.kings[side];
            continue;
        }
        const auto man = std::find_if(left.begin(), left.end(), [&](const SlowMan& one) {
            return one.side == side && " pnbrq"[one.kind] == name[i];
        });
        squares[i] = man->square;
        left.erase(man);
    }
    const std::int32_t half = position.to_move ^ (is_swapped ? 1 : 0);
    if (!halves_.contains({row, half})) {
        halves_[{row, half}] = load_half_(row, half).value();
    }
    const Bytes& bytes = halves_[{row, half}];
    const std::uint32_t number =
        tb_squares_index(tb_plan_of(row, half), squares, position.en_passant, is_swapped ? 1 : 0);
    return number < bytes.size() ? static_cast<Value>(bytes[number]) : not_reachable;
}

Value SlowTables::value_behind(const SlowPosition& before, const SlowMove& move) {
    if (!move.is_legal) {
        return not_reachable;
    }
    if (move.promoted_to == 0) {
        return value(move.after);
    }
    Value best = not_reachable;
    const std::size_t man = move.moved - (move.captured < move.moved ? 1 : 0);
    for (std::uint8_t kind = tb_knight; kind <= tb_queen; ++kind) {
        SlowPosition after = move.after;
        after.men[man].kind = kind;
        const Value found = slow_in_check(after, before.to_move) ? not_reachable : value(after);
        const bool is_better = best == not_reachable || found < best;
        best = found != not_reachable && is_better ? found : best;
    }
    return best;
}
