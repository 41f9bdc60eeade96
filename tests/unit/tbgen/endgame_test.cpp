// SPDX-License-Identifier: MIT
// Tables as the generator sees them: men in the order of the layout, tables found by their men, and
// which tables captures and promotions lead to.
#include "tbgen/endgame.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <string>

#include "tb/table_names.h"

namespace {

const std::string& letters() {
    static const std::string all = " pnbrq";
    return all;
}

/// Kings left out.
std::vector<EndgameMan> men_of_name(std::string_view name) {
    std::vector<EndgameMan> men;
    const std::size_t second = name.rfind('k');
    for (std::size_t i = 1; i < name.size(); ++i) {
        if (i != second) {
            men.push_back({static_cast<std::uint8_t>(i < second ? 0 : 1),
                           static_cast<std::uint8_t>(letters().find(name[i]))});
        }
    }
    return men;
}

MenList list_of(const std::vector<EndgameMan>& men) {
    MenList list;
    for (const EndgameMan man : men) {
        list.push_back(man);
    }
    return list;
}

/// "n0 r1": kind and side.
std::string text_of(const MenList& men) {
    std::string text;
    for (const EndgameMan man : men) {
        text += text.empty() ? "" : " ";
        text += letters()[man.kind];
        text += std::to_string(man.side);
    }
    return text;
}

std::string name_of(std::int32_t row) {
    return std::string(tb_names[static_cast<std::size_t>(row)]);
}

std::set<std::string> names_needed_by(std::string_view name) {
    std::set<std::string> names;
    for (const std::int32_t row : rows_needed_by(row_of_name(name))) {
        names.insert(name_of(row));
    }
    return names;
}

}  // namespace

TEST(Endgame, RowsByName) {
    for (std::int32_t row = 1; row < tb_rows; ++row) {
        EXPECT_EQ(row_of_name(name_of(row)), row);
    }
    EXPECT_EQ(row_of_name("kqk"), 5);
    EXPECT_EQ(row_of_name("kk"), 0);
    EXPECT_EQ(row_of_name(""), 0);
    EXPECT_EQ(row_of_name("kkq"), 0);
    EXPECT_EQ(row_of_name("KQK"), 0);
}

TEST(Endgame, LayoutHasTheMenOfTheNameByMobility) {
    for (std::int32_t row = 1; row < tb_rows; ++row) {
        const Endgame endgame = endgame_of(row);
        const std::vector<EndgameMan> named = men_of_name(name_of(row));
        EXPECT_EQ(endgame.row, row);
        ASSERT_EQ(endgame.men.size(), named.size());
        EXPECT_TRUE(std::is_permutation(named.begin(), named.end(), endgame.men.begin()))
            << name_of(row);
        for (std::size_t i = 1; i < named.size(); ++i) {
            EXPECT_LE(endgame.men[i - 1].kind, endgame.men[i].kind) << name_of(row);
        }
        // Between alike men stand alike men alone.
        for (std::size_t i = 2; i < named.size(); ++i) {
            EXPECT_TRUE(!(endgame.men[0] == endgame.men[i]) || endgame.men[0] == endgame.men[1]);
        }
    }
    EXPECT_EQ(text_of(endgame_of(row_of_name("krbkn")).men), "n1 b0 r0");
    EXPECT_EQ(text_of(endgame_of(row_of_name("kppkp")).men), "p0 p0 p1");
    EXPECT_EQ(text_of(endgame_of(row_of_name("kqqkq")).men), "q0 q0 q1");
    EXPECT_EQ(text_of(endgame_of(row_of_name("kqk")).men), "q0");
}

TEST(Endgame, PawnsOfOneAndOfBothSides) {
    int with_pawns = 0;
    int with_en_passant = 0;
    for (std::int32_t row = 1; row < tb_rows; ++row) {
        const Endgame endgame = endgame_of(row);
        const std::string name = name_of(row);
        const std::string first = name.substr(0, name.rfind('k'));
        const std::string second = name.substr(name.rfind('k'));
        const bool has_first = first.find('p') != std::string::npos;
        const bool has_second = second.find('p') != std::string::npos;
        EXPECT_EQ(endgame.men.has_pawns_of(0), has_first) << name;
        EXPECT_EQ(endgame.men.has_pawns_of(1), has_second) << name;
        EXPECT_EQ(endgame.has_pawns, has_first || has_second) << name;
        EXPECT_EQ(endgame.men.has_pawns(), has_first || has_second) << name;
        EXPECT_EQ(endgame.en_passant, has_first && has_second) << name;
        with_pawns += endgame.has_pawns ? 1 : 0;
        with_en_passant += endgame.en_passant ? 1 : 0;
    }
    EXPECT_EQ(with_pawns, 61);
    EXPECT_EQ(with_en_passant, 6);
}

TEST(Endgame, WordsAreDigitsOfThePostsToTheBaseOf64) {
    const Endgame three = endgame_of(row_of_name("kbnkr"));
    EXPECT_EQ(three.posts(), 2U);
    EXPECT_EQ(three.slab_words(), 64U * 64U);
    EXPECT_EQ(three.stride(0), 64U);
    EXPECT_EQ(three.stride(1), 1U);
    EXPECT_EQ(three.post_square(5 * 64 + 60, 0), 5U);
    EXPECT_EQ(three.post_square(5 * 64 + 60, 1), 60U);
    EXPECT_EQ(three.runner(), (EndgameMan{1, tb_rook}));
    const Endgame one = endgame_of(row_of_name("kpk"));
    EXPECT_EQ(one.posts(), 0U);
    EXPECT_EQ(one.slab_words(), 1U);
    EXPECT_EQ(one.runner(), (EndgameMan{0, tb_pawn}));
    const Endgame two = endgame_of(row_of_name("krkn"));
    EXPECT_EQ(two.slab_words(), 64U);
    EXPECT_EQ(two.post_square(63, 0), 63U);
}

TEST(Endgame, ListsWithoutAMan) {
    const MenList men = endgame_of(row_of_name("krbkn")).men;
    EXPECT_EQ(text_of(men.without(0)), "b0 r0");
    EXPECT_EQ(text_of(men.without(1)), "n1 r0");
    EXPECT_EQ(text_of(men.without(2)), "n1 b0");
    MenList changed = men;
    changed.set(1, {1, tb_pawn});
    EXPECT_EQ(text_of(changed), "n1 p1 r0");
    EXPECT_EQ(text_of(men), "n1 b0 r0");
}

TEST(Endgame, AddressOfMenInAnyOrderAndWithSidesExchanged) {
    std::mt19937 random(7);
    int compared = 0;
    for (std::int32_t row = 1; row < tb_rows; ++row) {
        const std::string name = name_of(row);
        const std::vector<EndgameMan> named = men_of_name(name);
        const bool is_own_mirror = name.substr(0, name.rfind('k')) == name.substr(name.rfind('k'));
        for (int i = 0; i < 12; ++i) {
            std::vector<EndgameMan> men = named;
            std::shuffle(men.begin(), men.end(), random);
            const bool is_exchanged = i % 2 == 1;
            for (EndgameMan& man : men) {
                man.side ^= is_exchanged ? 1U : 0U;
            }
            const EndgameAddress address = address_of(list_of(men));
            EXPECT_EQ(address.row, row) << name;
            EXPECT_EQ(address.swapped, is_exchanged && !is_own_mirror) << name;
            std::set<std::size_t> used;
            for (std::size_t at = 0; at < named.size(); ++at) {
                ASSERT_LT(address.order[at], men.size());
                EndgameMan man = men[address.order[at]];
                man.side ^= address.swapped ? 1U : 0U;
                EXPECT_EQ(man, named[at]) << name << ' ' << text_of(list_of(men));
                used.insert(address.order[at]);
            }
            EXPECT_EQ(used.size(), named.size());
            ++compared;
        }
    }
    EXPECT_EQ(compared, 145 * 12);
    EXPECT_EQ(address_of(MenList()).row, 0);
    EXPECT_FALSE(address_of(MenList()).swapped);
}

TEST(Endgame, SquaresByNamePutTheKingsInFrontOfTheirMen) {
    const auto by_name = [](const std::vector<EndgameMan>& men, const MenSquares& squares) {
        return squares_by_name(address_of(list_of(men)), list_of(men), {40, 50}, squares);
    };
    using Squares = std::array<TbSquare, 5>;
    const EndgameMan queen{0, tb_queen};
    const EndgameMan pawn{0, tb_pawn};
    const EndgameMan enemy_knight{1, tb_knight};
    EXPECT_EQ(by_name({enemy_knight, pawn, queen}, {1, 2, 3}), (Squares{40, 3, 2, 50, 1}));
    EXPECT_EQ(by_name({pawn, queen, pawn}, {1, 2, 3}), (Squares{40, 2, 1, 3, 50}));
    EXPECT_EQ(by_name({queen}, {9, 0, 0}), (Squares{40, 9, 50, 0, 0}));
    // The side with more men is named first.
    EXPECT_EQ(by_name({enemy_knight}, {9, 0, 0}), (Squares{50, 9, 40, 0, 0}));
    const EndgameMan enemy_rook{1, tb_rook};
    EXPECT_EQ(by_name({pawn, enemy_rook}, {8, 9, 0}), (Squares{50, 9, 40, 8, 0}));
    EXPECT_EQ(by_name({enemy_knight, pawn, enemy_rook}, {7, 8, 9}), (Squares{50, 9, 7, 40, 8}));
}

TEST(Endgame, TablesNeededWorkedOutByHand) {
    using Names = std::set<std::string>;
    EXPECT_EQ(names_needed_by("kqk"), Names{});
    EXPECT_EQ(names_needed_by("kpk"), (Names{"knk", "kbk", "krk", "kqk"}));
    EXPECT_EQ(names_needed_by("krkn"), (Names{"krk", "knk"}));
    EXPECT_EQ(names_needed_by("kqkq"), (Names{"kqk"}));
    EXPECT_EQ(names_needed_by("knnk"), (Names{"knk"}));
    EXPECT_EQ(names_needed_by("kbnk"), (Names{"kbk", "knk"}));
    EXPECT_EQ(names_needed_by("kbnkr"), (Names{"krkb", "krkn", "kbnk"}));
    EXPECT_EQ(names_needed_by("kppk"), (Names{"kpk", "knpk", "kbpk", "krpk", "kqpk"}));
    EXPECT_EQ(names_needed_by("kpkp"),
              (Names{"kpk", "knk", "kbk", "krk", "kqk", "knkp", "kbkp", "krkp", "kqkp"}));
    EXPECT_EQ(names_needed_by("krkp"),
              (Names{"krk", "kpk", "knk", "kbk", "kqk", "krkn", "krkb", "krkr", "kqkr"}));
    EXPECT_EQ(names_needed_by("knkp"),
              (Names{"knk", "kpk", "kbk", "krk", "kqk", "knkn", "kbkn", "krkn", "kqkn"}));
    EXPECT_EQ(names_needed_by("kbpk"), (Names{"kpk", "kbk", "kbnk", "kbbk", "krbk", "kqbk"}));
    EXPECT_EQ(names_needed_by("kqqkr"), (Names{"kqkr", "kqqk"}));
    EXPECT_EQ(names_needed_by("kpppk"), (Names{"kppk", "knppk", "kbppk", "krppk", "kqppk"}));
    EXPECT_EQ(names_needed_by("kppkn"), (Names{"kppk", "knpk", "kbpk", "krpk", "kqpk", "knkp",
                                               "knpkn", "kbpkn", "krpkn", "kqpkn"}));
}

TEST(Endgame, TablesNeededHaveFewerMenOrFewerPawns) {
    std::size_t needed_rows = 0;
    const auto pawns = [](const std::string& name) {
        return std::count(name.begin(), name.end(), 'p');
    };
    for (std::int32_t row = 1; row < tb_rows; ++row) {
        const std::string name = name_of(row);
        const std::vector<std::int32_t> rows = rows_needed_by(row);
        EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end()));
        EXPECT_EQ(std::set<std::int32_t>(rows.begin(), rows.end()).size(), rows.size());
        for (const std::int32_t needed : rows) {
            ASSERT_GE(needed, 1);
            const std::string other = name_of(needed);
            EXPECT_TRUE(other.size() < name.size() || pawns(other) < pawns(name))
                << name << ' ' << other;
            ++needed_rows;
        }
    }
    EXPECT_GT(needed_rows, 145U);
}
