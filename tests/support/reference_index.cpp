// SPDX-License-Identifier: MIT
// Everything is a list or a walk. Only what would be counted again for each position is kept: the
// pairs of kings, the sets of men, and how many sets a number of squares has.
#include "support/reference_index.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <numeric>
#include <utility>

namespace {

constexpr int all_squares = 64;

using SquareList = std::vector<int>;
using KingPair = std::pair<int, int>;

int file_of(int square) {
    return square & 7;
}

int rank_of(int square) {
    return square >> 3;
}

bool contains(const SquareList& list, int square) {
    return std::find(list.begin(), list.end(), square) != list.end();
}

// ---- Pairs of kings

bool is_used(bool pawnless, int own, int other) {
    static const SquareList triangle = {0, 1, 2, 3, 9, 10, 11, 18, 19, 27};
    const int files = std::abs(file_of(own) - file_of(other));
    const int ranks = std::abs(rank_of(own) - rank_of(other));
    if (files < 2 && ranks < 2) {
        return false;
    }
    if (!pawnless) {
        return file_of(own) < 4;
    }
    const bool on_diagonal = file_of(own) == rank_of(own);
    return contains(triangle, own) && (!on_diagonal || rank_of(other) <= file_of(other));
}

std::vector<KingPair> walk_pairs(bool pawnless) {
    std::vector<KingPair> pairs;
    for (int own = 0; own < all_squares; ++own) {
        for (int other = 0; other < all_squares; ++other) {
            if (is_used(pawnless, own, other)) {
                pairs.emplace_back(own, other);
            }
        }
    }
    return pairs;
}

/// All pairs in use, rising.
const std::vector<KingPair>& used_pairs(bool pawnless) {
    static const std::vector<KingPair> with_pawns = walk_pairs(false);
    static const std::vector<KingPair> without = walk_pairs(true);
    return pawnless ? without : with_pawns;
}

// ---- Sets of men of a kind, ordered by their highest man, then by the next

/// The next set. Numbers rise within a set; the highest has no bound.
void advance(SquareList& set) {
    std::size_t moved = 0;
    while (moved + 1 < set.size() && set[moved] + 1 == set[moved + 1]) {
        ++moved;
    }
    ++set[moved];
    std::iota(set.begin(), set.begin() + static_cast<std::ptrdiff_t>(moved), 0);
}

SquareList first_set(std::size_t men) {
    SquareList set(men);
    std::iota(set.begin(), set.end(), 0);
    return set;
}

/// How many sets come before one, given by the numbers of its squares.
std::uint64_t sets_before(SquareList wanted) {
    std::sort(wanted.begin(), wanted.end());
    std::uint64_t count = 0;
    for (SquareList set = first_set(wanted.size()); set != wanted; advance(set)) {
        ++count;
    }
    return count;
}

/// How many sets of so many men there are on a number of squares.
std::uint64_t count_sets(std::size_t squares, std::size_t men) {
    static std::map<std::pair<std::size_t, std::size_t>, std::uint64_t> known;
    const auto [place, is_new] = known.try_emplace({squares, men}, 0);
    if (is_new) {
        for (SquareList set = first_set(men); set.back() < static_cast<int>(squares);
             advance(set)) {
            ++place->second;
        }
    }
    return place->second;
}

// ---- Where the men of the side to move may stand

struct Step {
    int files;
    int ranks;
};

/// From a man's square to the enemy king that it touches.
std::vector<Step> touching_steps(char kind) {
    switch (kind) {
        case 'P': return {{-1, 1}, {1, 1}};
        case 'N': return {{1, 2}, {2, 1}, {2, -1}, {1, -2}, {-1, -2}, {-2, -1}, {-2, 1}, {-1, 2}};
        case 'B': return {{1, 1}, {1, -1}, {-1, 1}, {-1, -1}};
        case 'R': return {{1, 0}, {-1, 0}, {0, 1}, {0, -1}};
        case 'Q': return {{1, 1}, {1, -1}, {-1, 1}, {-1, -1}, {1, 0}, {-1, 0}, {0, 1}, {0, -1}};
        default: return {};
    }
}

/// Squares of a kind that leave the enemy king untouched, without that of the own king; rising.
SquareList allowed_squares(char kind, int own, int other) {
    const bool is_pawn = kind == 'p' || kind == 'P';
    SquareList touching;
    for (const Step step : touching_steps(kind)) {
        const int file = file_of(other) - step.files;
        const int rank = rank_of(other) - step.ranks;
        if (file >= 0 && file < 8 && rank >= 0 && rank < 8) {
            touching.push_back(8 * rank + file);
        }
    }
    SquareList squares;
    for (int square = is_pawn ? 8 : 0; square < (is_pawn ? 56 : all_squares); ++square) {
        if (square != own && square != other && !contains(touching, square)) {
            squares.push_back(square);
        }
    }
    return squares;
}

/// Men of one kind.
struct Group {
    char kind = ' ';
    SquareList squares;
};

/// The places of a group's men in a list of squares; empty if one of them is not in it.
std::optional<SquareList> places_in(const SquareList& list, const Group& group) {
    SquareList places;
    for (const int square : group.squares) {
        const auto place = std::find(list.begin(), list.end(), square);
        if (place == list.end()) {
            return std::nullopt;
        }
        places.push_back(static_cast<int>(place - list.begin()));
    }
    return places;
}

/// Appends the men to the number, as the digit that the list of squares gives them.
[[nodiscard]] bool append(ReferenceNumber& number, const SquareList& list, const Group& group) {
    const auto places = places_in(list, group);
    if (!places) {
        return false;
    }
    const std::uint64_t radix = count_sets(list.size(), group.squares.size());
    number.index = number.index * radix + sets_before(*places);
    number.positions *= radix;
    return true;
}

// ---- The enumeration

std::vector<Group> groups_of(const std::string& kinds) {
    std::vector<Group> groups;
    for (const char kind : kinds) {
        if (groups.empty() || groups.back().kind != kind) {
            groups.push_back({kind, {}});
        }
        groups.back().squares.push_back(0);
    }
    return groups;
}

const ReferenceSet& known_set(bool pawnless, const std::string& kinds) {
    static std::map<std::pair<bool, std::string>, ReferenceSet> known;
    const auto [place, is_new] = known.try_emplace({pawnless, kinds});
    if (is_new) {
        place->second = reference_set(pawnless, kinds);
    }
    return place->second;
}

/// Number of the kings and the men that are counted together with them.
std::optional<ReferenceNumber> enumerate(bool pawnless, int own, int other,
                                         std::vector<Group> groups) {
    const auto pair = reference_pair(pawnless, own, other);
    if (!pair) {
        return std::nullopt;
    }
    if (groups.empty()) {
        return ReferenceNumber{*pair, used_pairs(pawnless).size()};
    }
    std::string kinds;
    for (const Group& group : groups) {
        kinds.append(group.squares.size(), group.kind);
    }
    // Two men of a kind are counted before a single one.
    if (groups.size() == 2 && groups[1].squares.size() == 2) {
        std::swap(groups[0], groups[1]);
    }
    ReferenceNumber among_men;
    for (const Group& group : groups) {
        if (!append(among_men, allowed_squares(group.kind, own, other), group)) {
            return std::nullopt;
        }
    }
    const ReferenceSet& set = known_set(pawnless, kinds);
    return ReferenceNumber{set.offsets[*pair] + among_men.index, set.total};
}

// ---- A position

struct Position {
    bool pawnless = true;
    bool second_moves = false;
    int own_king = 0;
    int other_king = 0;
    std::vector<Group> own;
    std::vector<Group> other;
};

/// Turns the board: the king of the side to move to its part of it.
SquareList turned(SquareList squares, bool pawnless, std::size_t own, std::size_t other,
                  bool flip) {
    const auto turn = [&squares](auto change) {
        std::transform(squares.begin(), squares.end(), squares.begin(), change);
    };
    if (file_of(squares[own]) > 3) {
        turn([](int square) { return 8 * rank_of(square) + 7 - file_of(square); });
    }
    if (pawnless ? rank_of(squares[own]) > 3 : flip) {
        turn([](int square) { return 8 * (7 - rank_of(square)) + file_of(square); });
    }
    const int files_less_ranks = file_of(squares[own]) - rank_of(squares[own]);
    const bool other_above = rank_of(squares[other]) > file_of(squares[other]);
    if (pawnless && (files_less_ranks < 0 || (files_less_ranks == 0 && other_above))) {
        turn([](int square) { return 8 * file_of(square) + rank_of(square); });
    }
    return squares;
}

Position read_position(std::string_view name, int half, const std::vector<int>& squares,
                       bool flip) {
    const std::size_t second_king = name.rfind('k');
    Position position;
    position.pawnless = name.find('p') == std::string_view::npos;
    position.second_moves = half == 1;
    const std::size_t own = position.second_moves ? second_king : 0;
    const std::size_t other = position.second_moves ? 0 : second_king;
    const SquareList at = turned(squares, position.pawnless, own, other, flip);
    position.own_king = at[own];
    position.other_king = at[other];
    for (std::size_t man = 0; man < name.size(); ++man) {
        if (man == 0 || man == second_king) continue;
        auto& side = (man > second_king) == position.second_moves ? position.own : position.other;
        if (side.empty() || side.back().kind != name[man]) {
            side.push_back({name[man], {}});
        }
        side.back().squares.push_back(at[man]);
    }
    return position;
}

void take_out(SquareList& list, const SquareList& squares) {
    for (const int square : squares) {
        list.erase(std::remove(list.begin(), list.end(), square), list.end());
    }
}

/// The men of the other side behind a number of kings and enumerated men.
bool append_other_men(ReferenceNumber& number, const Position& position,
                      const std::vector<Group>& enumerated, const std::vector<Group>& digits) {
    SquareList pawn_squares(48);
    std::iota(pawn_squares.begin(), pawn_squares.end(), 8);
    SquareList piece_squares(all_squares);
    std::iota(piece_squares.begin(), piece_squares.end(), 0);
    take_out(piece_squares, {position.own_king, position.other_king});
    for (const Group& group : enumerated) {
        take_out(piece_squares, group.squares);
        if (group.kind == 'p') {
            take_out(pawn_squares, group.squares);
        }
    }
    for (const Group& group : digits) {
        if (group.kind == 'p') {
            take_out(piece_squares, group.squares);
        }
    }
    // Against a bare king without pawns a single man is placed before two of a kind.
    if (enumerated.empty() && digits.size() == 2 && digits[0].squares.size() == 2) {
        SquareList for_pair = piece_squares;
        take_out(for_pair, digits[1].squares);
        return append(number, for_pair, digits[0]) && append(number, piece_squares, digits[1]);
    }
    for (const Group& group : digits) {
        if (!append(number, group.kind == 'p' ? pawn_squares : piece_squares, group)) {
            return false;
        }
        take_out(piece_squares, group.squares);
    }
    return true;
}

}  // namespace

std::optional<std::size_t> reference_pair(bool pawnless, int own, int other) {
    const auto& pairs = used_pairs(pawnless);
    const auto place = std::find(pairs.begin(), pairs.end(), KingPair{own, other});
    if (place == pairs.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(place - pairs.begin());
}

ReferenceSet reference_set(bool pawnless, const std::string& kinds) {
    ReferenceSet set;
    for (const auto& [own, other] : used_pairs(pawnless)) {
        set.offsets.push_back(set.total);
        std::uint64_t ways = 1;
        for (const Group& group : groups_of(kinds)) {
            const std::size_t squares = allowed_squares(group.kind, own, other).size();
            ways *= count_sets(squares, group.squares.size());
        }
        set.total += ways;
    }
    return set;
}

std::optional<ReferenceNumber> reference_index(std::string_view name, int half,
                                               const std::vector<int>& squares, bool flip) {
    const Position position = read_position(name, half, squares, flip);
    std::vector<Group> enumerated = position.own;
    std::vector<Group> digits = position.other;
    const bool pawns_for_bare_king = position.own.empty() && !position.pawnless;
    if (pawns_for_bare_king) {
        enumerated.push_back(position.other.back());  // pawns end a side's men
        digits.pop_back();
    }
    // Pawns of the second side, or against it, are counted on the board turned over.
    const bool own_pawns = !position.own.empty() && position.own.back().kind == 'p';
    const int over = pawns_for_bare_king || (position.second_moves && own_pawns) ? 56 : 0;
    std::vector<Group> counted = enumerated;
    for (Group& group : counted) {
        for (int& square : group.squares) {
            square ^= over;
        }
        if (!pawns_for_bare_king) {
            group.kind = static_cast<char>(group.kind - 'a' + 'A');
        }
    }
    auto number =
        enumerate(position.pawnless, position.own_king ^ over, position.other_king ^ over, counted);
    if (!number || !append_other_men(*number, position, enumerated, digits)) {
        return std::nullopt;
    }
    return number;
}
