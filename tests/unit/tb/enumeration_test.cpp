// SPDX-License-Identifier: MIT
// The tables behind the high part of an index: squares by kind and enemy king, pairs of kings, and
// where the positions of each pair begin. Each sum is counted a second time by walking.
#include "tb/index/enumeration.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>

#include "support/captured_output.h"
#include "support/reference_index.h"
#include "support/reset_all.h"
#include "support/table_boards.h"
#include "tb/tb_memory.h"
#include "tb/tb_settings.h"

namespace {

constexpr std::string_view letters = "pPNBRQ";

std::size_t at(const char* square) {
    return static_cast<std::size_t>(square_number(square));
}

/// The squares, among those a man of the kind can stand on, that the enemy king takes from it.
std::vector<int> left_out(std::size_t kind, const char* king) {
    std::vector<int> squares;
    const bool is_pawn = kind <= static_cast<std::size_t>(tb_pawn);
    for (int square = is_pawn ? 8 : 0; square < (is_pawn ? 56 : 64); ++square) {
        if (tb_ordinal[kind][at(king)][static_cast<std::size_t>(square)] == tb_no_square) {
            squares.push_back(square);
        }
    }
    return squares;
}

struct KingCase {
    std::size_t kind;
    const char* king;
    const char* left_out;
    int count;
};

class Enumeration : public testing::Test {
  protected:
    void SetUp() override {
        reset_all(1);
        tb_build_enumeration();
    }
    void TearDown() override { reset_all(1); }
};

/// Rising kinds are no set: a name goes from strong to weak. Pawns of the kind without a test
/// of attack mix with no others, and pawnless tables have no pawns.
bool is_set(const TbKindSet& set) {
    for (std::size_t i = 0; i < set.men; ++i) {
        if (i > 0 && set.kinds[i] > set.kinds[i - 1]) return false;
        if (set.pawnless && set.kinds[i] <= tb_pawn) return false;
        if (set.kinds[i] == tb_pawn_any && set.kinds[0] != tb_pawn_any) return false;
    }
    return true;
}

/// Every way to write down one to three kinds.
std::vector<TbKindSet> all_sets() {
    std::vector<TbKindSet> sets;
    for (const bool pawnless : {false, true}) {
        for (std::uint8_t a = 0; a < tb_kinds; ++a) {
            sets.push_back({pawnless, 1, {a}});
            for (std::uint8_t b = 0; b < tb_kinds; ++b) {
                sets.push_back({pawnless, 2, {a, b}});
                for (std::uint8_t c = 0; c < tb_kinds; ++c) {
                    sets.push_back({pawnless, 3, {a, b, c}});
                }
            }
        }
    }
    return sets;
}

std::string letters_of(const TbKindSet& set) {
    std::string text;
    for (std::size_t i = 0; i < set.men; ++i) {
        text += letters[set.kinds[i]];
    }
    return text;
}

std::uint32_t total_of(bool pawnless, const std::string& kinds) {
    TbKindSet set{pawnless, static_cast<std::uint8_t>(kinds.size()), {}};
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        set.kinds[i] = static_cast<std::uint8_t>(letters.find(kinds[i]));
    }
    return tb_total[pawnless][tb_set_number(set)];
}

std::vector<std::string> lines_of(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

}  // namespace

TEST_F(Enumeration, SquaresThatTheEnemyKingTakesAway) {
    // clang-format off
    const KingCase cases[] = {
        {tb_pawn_any, "e1", "",                                  48},
        {tb_pawn_any, "e4", "e4",                                47},
        {tb_pawn_any, "a7", "a7",                                47},
        {1,           "e1", "",                                  48},
        {1,           "e2", "e2",                                47},
        {1,           "e3", "d2 f2 e3",                          45},
        {1,           "e4", "d3 f3 e4",                          45},
        {1,           "a4", "b3 a4",                             46},
        {1,           "h4", "g3 h4",                             46},
        {1,           "a3", "b2 a3",                             46},
        {1,           "e7", "d6 f6 e7",                          45},
        {1,           "e8", "d7 f7",                             46},
        {1,           "h8", "g7",                                47},
        {tb_knight,   "a1", "a1 c2 b3",                          61},
        {tb_knight,   "h1", "h1 f2 g3",                          61},
        {tb_knight,   "e4", "d2 f2 c3 g3 e4 c5 g5 d6 f6",        55},
        {tb_knight,   "b8", "d7 a6 c6 b8",                       60},
        {tb_bishop,   "a1", "a1 b2",                             62},
        {tb_bishop,   "h5", "g4 h5 g6",                          61},
        {tb_bishop,   "e4", "d3 f3 e4 d5 f5",                    59},
        {tb_rook,     "a1", "a1 b1 a2",                          61},
        {tb_rook,     "h5", "h4 g5 h5 h6",                       60},
        {tb_rook,     "e4", "e3 d4 e4 f4 e5",                    59},
        {tb_queen,    "a1", "a1 b1 a2 b2",                       60},
        {tb_queen,    "h5", "g4 h4 g5 h5 g6 h6",                 58},
        {tb_queen,    "e4", "d3 e3 f3 d4 e4 f4 d5 e5 f5",        55},
    };
    // clang-format on
    for (const KingCase& row : cases) {
        std::vector<int> expected = square_numbers(row.left_out);
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(square_text(left_out(row.kind, row.king)), square_text(expected))
            << letters[row.kind] << ", king on " << row.king;
        EXPECT_EQ(tb_count[row.kind][at(row.king)], row.count)
            << letters[row.kind] << ", king on " << row.king;
    }
    EXPECT_EQ(std::size(cases), 26U);
}

TEST_F(Enumeration, PawnsStandOnTheSecondToTheSeventhRank) {
    int outside = 0;
    for (const std::size_t kind : {std::size_t{tb_pawn_any}, std::size_t{tb_pawn}}) {
        for (std::size_t king = 0; king < tb_squares; ++king) {
            for (const char* const square : {"a1", "h1", "a8", "h8", "d1", "d8"}) {
                EXPECT_EQ(tb_ordinal[kind][king][at(square)], tb_no_square);
                ++outside;
            }
        }
    }
    EXPECT_EQ(outside, 2 * 64 * 6);
    EXPECT_EQ(tb_ordinal[tb_pawn_any][at("a1")][at("a2")], 0);
    EXPECT_EQ(tb_ordinal[tb_pawn_any][at("a1")][at("h7")], 47);
}

TEST_F(Enumeration, OrdinalsRiseWithoutAGap) {
    int allowed = 0;
    for (std::size_t kind = 0; kind < tb_kinds; ++kind) {
        for (std::size_t king = 0; king < tb_squares; ++king) {
            int next = 0;
            for (const std::uint8_t ordinal : tb_ordinal[kind][king]) {
                if (ordinal != tb_no_square) {
                    EXPECT_EQ(ordinal, next++);
                }
            }
            EXPECT_EQ(tb_count[kind][king], next);
            EXPECT_EQ(tb_ordinal[kind][king][king], tb_no_square);
            allowed += next;
        }
    }
    // 64 x 48 - 48 pawns of each kind, of those that give check one less for each of the 84
    // squares that a pawn attacks; 64 x 63 pieces less 336, 196, 224 and 420 contacts.
    EXPECT_EQ(allowed, 2 * 3024 - 84 + 4 * 4032 - 336 - 196 - 224 - 420);
}

TEST_F(Enumeration, OrdinalsByHand) {
    EXPECT_EQ(tb_ordinal[tb_queen][at("a1")][at("c1")], 0);
    EXPECT_EQ(tb_ordinal[tb_queen][at("a1")][at("h1")], 5);
    EXPECT_EQ(tb_ordinal[tb_queen][at("a1")][at("c2")], 6);
    EXPECT_EQ(tb_ordinal[tb_queen][at("a1")][at("h8")], 59);
    EXPECT_EQ(tb_ordinal[tb_queen][at("h8")][at("b3")], 17);
    EXPECT_EQ(tb_ordinal[tb_rook][at("h8")][at("g8")], tb_no_square);
    EXPECT_EQ(tb_ordinal[tb_rook][at("h8")][at("g7")], 54);
    EXPECT_EQ(tb_ordinal[tb_knight][at("h1")][at("h2")], 13);
    EXPECT_EQ(tb_ordinal[tb_bishop][at("e4")][at("h8")], 58);
    EXPECT_EQ(tb_ordinal[tb_pawn][at("e4")][at("h3")], 13);
}

TEST_F(Enumeration, PairsOfKingsAreCountedInRisingOrder) {
    for (const bool pawnless : {false, true}) {
        const auto& pairs = pawnless ? *tb_kk_pawnless : *tb_kk_pawn;
        int used = 0;
        for (int own = 0; own < 64; ++own) {
            for (int other = 0; other < 64; ++other) {
                const std::int16_t number =
                    pairs[static_cast<std::size_t>(own)][static_cast<std::size_t>(other)];
                const auto expected = reference_pair(pawnless, own, other);
                ASSERT_EQ(number, expected ? static_cast<int>(*expected) : 4000)
                    << square_text({own, other});
                used += expected ? 1 : 0;
            }
        }
        EXPECT_EQ(used, pawnless ? 462 : 1806);
    }
}

TEST_F(Enumeration, FirstAndLastPairsWithPawns) {
    const auto& pairs = *tb_kk_pawn;
    EXPECT_EQ(pairs[at("a1")][at("c1")], 0);
    EXPECT_EQ(pairs[at("a1")][at("h8")], 59);
    EXPECT_EQ(pairs[at("b1")][at("d1")], 60);
    EXPECT_EQ(pairs[at("d8")][at("h8")], 1805);
    EXPECT_EQ(pairs[at("d8")][at("g8")], 1804);
    EXPECT_EQ(pairs[at("a1")][at("a8")], 52);
    EXPECT_EQ(pairs[at("a1")][at("a1")], tb_no_pair);
    EXPECT_EQ(pairs[at("a1")][at("b2")], tb_no_pair);
    EXPECT_EQ(pairs[at("e1")][at("a8")], tb_no_pair);
    EXPECT_EQ(tb_no_pair, 4000);
}

TEST_F(Enumeration, FirstAndLastPairsWithoutPawns) {
    const auto& pairs = *tb_kk_pawnless;
    EXPECT_EQ(pairs[at("a1")][at("c1")], 0);
    EXPECT_EQ(pairs[at("a1")][at("h8")], 32);
    EXPECT_EQ(pairs[at("b1")][at("d1")], 33);
    EXPECT_EQ(pairs[at("d4")][at("h8")], 461);
    EXPECT_EQ(pairs[at("d4")][at("g7")], 459);
    EXPECT_EQ(pairs[at("a1")][at("a8")], tb_no_pair);  // above the diagonal
    EXPECT_NE(pairs[at("b1")][at("a8")], tb_no_pair);
    EXPECT_EQ(pairs[at("a2")][at("h8")], tb_no_pair);
    EXPECT_EQ(pairs[at("d4")][at("e5")], tb_no_pair);
}

TEST_F(Enumeration, SetsThatTablesUseExistAndNoOthers) {
    int with_pawns = 0;
    int without = 0;
    int missing = 0;
    for (const TbKindSet& set : all_sets()) {
        const bool exists = *tb_offset_entry(set) != nullptr;
        ASSERT_EQ(exists, is_set(set)) << letters_of(set) << ", pawnless " << set.pawnless;
        EXPECT_EQ(tb_total[set.pawnless][tb_set_number(set)] != 0, exists) << letters_of(set);
        ++(!exists ? missing : set.pawnless ? without : with_pawns);
    }
    EXPECT_EQ(with_pawns, 6 + 16 + 36);
    EXPECT_EQ(without, 4 + 10 + 20);
    EXPECT_EQ(with_pawns + without + missing, 2 * 258);
}

TEST_F(Enumeration, SetNumbersAreAllDifferent) {
    std::vector<int> met(tb_sets1 + tb_sets2 + tb_sets3);
    for (const TbKindSet& set : all_sets()) {
        ASSERT_LT(tb_set_number(set), met.size());
        ++met[tb_set_number(set)];
    }
    EXPECT_EQ(met, std::vector<int>(met.size(), 2));  // with pawns and without
}

TEST_F(Enumeration, OffsetsAndTotalsAreSumsOverThePairs) {
    int sets = 0;
    for (const TbKindSet& set : all_sets()) {
        if (!is_set(set)) continue;
        const ReferenceSet counted = reference_set(set.pawnless, letters_of(set));
        const std::uint32_t* const offsets = *tb_offset_entry(set);
        ASSERT_NE(offsets, nullptr) << letters_of(set);
        ASSERT_EQ(counted.offsets.size(), set.pawnless ? tb_pawnless_pairs : tb_pawn_pairs);
        for (std::size_t pair = 0; pair < counted.offsets.size(); ++pair) {
            ASSERT_EQ(offsets[pair], counted.offsets[pair]) << letters_of(set) << ", " << pair;
        }
        EXPECT_EQ(tb_total[set.pawnless][tb_set_number(set)], counted.total) << letters_of(set);
        ++sets;
    }
    EXPECT_EQ(sets, 92);
}

TEST_F(Enumeration, TotalsByHand) {
    EXPECT_EQ(total_of(false, "P"), 81664U);
    EXPECT_EQ(total_of(false, "p"), 84012U);
    EXPECT_EQ(total_of(false, "PP"), 1806671U);
    EXPECT_EQ(total_of(true, "Q"), 25635U);
}

TEST_F(Enumeration, SecondBuildDoesNothing) {
    const auto* const ordinal = tb_ordinal;
    const std::uint32_t* const offsets = tb_offset1[0][tb_pawn];
    const std::uint32_t bytes = tb_alloc_total;
    tb_enum_verbose = true;
    const CapturedOutput output;
    tb_build_enumeration();
    EXPECT_EQ(output.text(), "");
    EXPECT_EQ(tb_ordinal, ordinal);
    EXPECT_EQ(tb_offset1[0][tb_pawn], offsets);
    EXPECT_EQ(tb_alloc_total, bytes);
}

// ---- Messages. The tables are built once in the life of a process: each test has a child for it.

namespace {

/// Builds and ends the process; what is printed goes to standard error, where the parent reads.
[[noreturn]] void build_in_child(bool verbose) {
    reset_all(1);
    tb_enum_verbose = verbose;
    const CapturedOutput output;
    tb_build_enumeration();
    std::fputs(output.text().c_str(), stderr);
    std::exit(tb_ordinal != nullptr ? 0 : 1);
}

/// What should be printed: one, two and three men, each with pawns first, then without.
std::string expected_messages() {
    std::string text;
    for (const std::size_t men : {1U, 2U, 3U}) {
        for (const bool pawnless : {false, true}) {
            for (const TbKindSet& set : all_sets()) {
                if (set.men != men || set.pawnless != pawnless || !is_set(set)) continue;
                const std::string kinds = letters_of(set);
                text += (pawnless ? "pawnless " : "") + kinds + " - " +
                        std::to_string(reference_set(pawnless, kinds).total) +
                        " enumerated positions\n";
            }
        }
    }
    // Ordinals and counts, two tables of pairs, offsets of 58 and of 34 sets, in kilobytes.
    constexpr int bytes = 6 * 64 * 65 + 2 * 64 * 64 * 2 + (58 * 1806 + 34 * 462) * 4;
    return text + "\nAllocated " + std::to_string((bytes + 1023) / 1024) + "k\n\n";
}

}  // namespace

TEST(EnumerationDeathTest, TotalsArePrintedWhenAsked) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::string expected = expected_messages();
    const std::vector<std::string> lines = lines_of(expected);
    ASSERT_EQ(lines.size(), 92U + 3U);
    EXPECT_EQ(lines[0], "p - 84012 enumerated positions");
    EXPECT_EQ(lines[1], "P - 81664 enumerated positions");
    EXPECT_EQ(lines[6], "pawnless N - 26282 enumerated positions");
    EXPECT_EQ(lines[11], "PP - 1806671 enumerated positions");
    EXPECT_EQ(lines[93], "Allocated 511k");
    EXPECT_EXIT(build_in_child(true), testing::ExitedWithCode(0), testing::Eq(expected));
}

TEST(EnumerationDeathTest, NothingIsPrintedOtherwise) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(build_in_child(false), testing::ExitedWithCode(0), testing::Eq(std::string()));
}
