// SPDX-License-Identifier: MIT
// Names of tables taken apart, put in the order of the layout, and found again by their men.
#include "tbgen/endgame.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <string>

#include "tb/table_names.h"

namespace {

constexpr std::string_view kind_letters = " pnbrqk";

std::uint8_t kind_of(char letter) {
    return static_cast<std::uint8_t>(kind_letters.find(letter));
}

/// The men of a name, kings left out, in its order.
MenList men_of(std::string_view name) {
    MenList men;
    std::uint8_t side = 0;
    for (const char letter : name.substr(1)) {
        if (letter == 'k') {
            side = 1;
        } else {
            men.push_back({side, kind_of(letter)});
        }
    }
    return men;
}

/// The men in another order; alike ones keep theirs.
template <class Before>
MenList sorted(const MenList& men, const Before& before) {
    std::vector<EndgameMan> list(men.begin(), men.end());
    std::stable_sort(list.begin(), list.end(), before);
    MenList result;
    for (const EndgameMan man : list) {
        result.push_back(man);
    }
    return result;
}

bool named_before(EndgameMan a, EndgameMan b) {
    return a.side != b.side ? a.side < b.side : a.kind > b.kind;
}

/// The name of men whose side 0 is named first.
std::string name_of(const MenList& men) {
    std::string name = "k";
    std::uint8_t side = 0;
    for (const EndgameMan man : sorted(men, named_before)) {
        if (man.side != side) {
            name += 'k';
            side = man.side;
        }
        name += kind_letters[man.kind];
    }
    return side == 0 ? name + "k" : name;
}

MenList with_sides_exchanged(const MenList& men) {
    MenList result;
    for (EndgameMan man : men) {
        man.side ^= 1U;
        result.push_back(man);
    }
    return result;
}

}  // namespace

MenList MenList::without(std::size_t i) const {
    MenList result;
    for (std::size_t at = 0; at < count_; ++at) {
        if (at != i) {
            result.push_back(men_[at]);
        }
    }
    return result;
}

bool MenList::has_pawns() const {
    return has_pawns_of(0) || has_pawns_of(1);
}

bool MenList::has_pawns_of(std::uint8_t side) const {
    return std::any_of(begin(), end(), [&](const EndgameMan& man) {
        return man.kind == tb_pawn && man.side == side;
    });
}

Endgame endgame_of(std::int32_t row) {
    Endgame endgame;
    endgame.row = row;
    // Kinds rise with mobility, pawns to queens.
    endgame.men =
        sorted(men_of(tb_names[static_cast<std::size_t>(row)]), [](EndgameMan a, EndgameMan b) {
            return a.kind != b.kind ? a.kind < b.kind : a.side < b.side;
        });
    endgame.has_pawns = endgame.men.has_pawns();
    endgame.en_passant = endgame.men.has_pawns_of(0) && endgame.men.has_pawns_of(1);
    return endgame;
}

EndgameAddress address_of(const MenList& men) {
    EndgameAddress address;
    if (men.size() == 0) {
        return address;
    }
    address.row = row_of_name(name_of(men));
    address.swapped = address.row == 0;
    const MenList seen = address.swapped ? with_sides_exchanged(men) : men;
    if (address.swapped) {
        address.row = row_of_name(name_of(seen));
    }
    std::array<std::uint8_t, tb_most_men> order = {0, 1, 2};
    std::stable_sort(
        order.begin(), order.begin() + seen.size(),
        [&](std::uint8_t a, std::uint8_t b) { return named_before(seen[a], seen[b]); });
    address.order = order;
    return address;
}

std::array<TbSquare, tb_most_men + 2> squares_by_name(const EndgameAddress& address,
                                                      const MenList& men,
                                                      const std::array<TbSquare, 2>& kings,
                                                      const MenSquares& squares) {
    const std::uint8_t first = address.swapped ? 1 : 0;
    std::array<TbSquare, tb_most_men + 2> result{};
    std::size_t place = 0;
    result[place++] = kings[first];
    bool second_king_stands = false;
    for (std::size_t i = 0; i < men.size(); ++i) {
        const std::size_t man = address.order[i];
        if (men[man].side != first && !second_king_stands) {
            second_king_stands = true;
            result[place++] = kings[first ^ 1U];
        }
        result[place++] = squares[man];
    }
    if (!second_king_stands) {
        result[place] = kings[first ^ 1U];
    }
    return result;
}

std::int32_t row_of_name(std::string_view name) {
    const auto* const found = std::find(tb_names.begin() + 1, tb_names.end(), name);
    return found == tb_names.end() ? 0 : static_cast<std::int32_t>(found - tb_names.begin());
}

std::vector<std::int32_t> rows_needed_by(std::int32_t row) {
    std::set<std::int32_t> rows;
    const auto add_promotions = [&](const MenList& men, std::uint8_t side) {
        for (std::size_t i = 0; i < men.size(); ++i) {
            if (men[i].kind != tb_pawn || men[i].side != side) continue;
            for (std::uint8_t kind = tb_knight; kind <= tb_queen; ++kind) {
                MenList promoted = men;
                promoted.set(i, {side, kind});
                rows.insert(address_of(promoted).row);
            }
        }
    };
    const MenList men = men_of(tb_names[static_cast<std::size_t>(row)]);
    for (std::uint8_t side = 0; side < 2; ++side) {
        add_promotions(men, side);
        for (std::size_t i = 0; i < men.size(); ++i) {
            if (men[i].side == side) continue;
            const MenList left = men.without(i);
            rows.insert(address_of(left).row);
            add_promotions(left, side);
        }
    }
    rows.erase(0);
    return {rows.begin(), rows.end()};
}
