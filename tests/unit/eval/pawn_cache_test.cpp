// SPDX-License-Identifier: MIT
// The cache of pawn structures: its size, the slot of a key, and when an entry is filled anew.
#include "eval/pawn_cache.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>

#include "board/square_tables.h"
#include "support/position.h"

namespace {

/// A pawn on d4 scores 45 - 25 = 20, one on a4 45 - 15 = 30; see the test of the pawn structure.
constexpr std::int32_t d4_score = 20;
constexpr std::int32_t a4_score = 30;

Table with_pawn_on(Square square, std::uint32_t pawn_hash) {
    Table table = position_from_fen("4k3/8/8/8/8/8/8/4K3");
    table.at(square) = w_pawn;
    table.WPawns = mask_of(square);
    ++table.Kol_figur;
    table.pawn_hash = pawn_hash;
    return table;
}

/// The number of the slot that serves a key.
std::ptrdiff_t slot_of(std::uint32_t pawn_hash) {
    const PawnEntry* const slot = &pawn_entry_of(with_pawn_on(d4, pawn_hash));
    return slot - &pawn_entry_of(with_pawn_on(d4, 0));
}

class PawnCache : public testing::Test {
  protected:
    void SetUp() override { pawn_cache_allocate(); }
};

}  // namespace

TEST_F(PawnCache, Has12483EntriesOf168Bytes) {
    EXPECT_EQ(pawn_cache_mb, 2U);
    EXPECT_EQ(pawn_cache_entries, 12483U);  // 2097152 / 168 = 12483.04
    EXPECT_EQ(sizeof(PawnEntry), 168U);     // 42 words
}

TEST_F(PawnCache, TheWordsOfAnEntryStandInTheirOrder) {
    static_assert(std::is_standard_layout_v<PawnEntry>);
    EXPECT_EQ(offsetof(PawnEntry, key), 0U * 4);
    EXPECT_EQ(offsetof(PawnEntry, w_count), 1U * 4);
    EXPECT_EQ(offsetof(PawnEntry, b_count), 11U * 4);
    EXPECT_EQ(offsetof(PawnEntry, pawn_score), 21U * 4);
    EXPECT_EQ(offsetof(PawnEntry, w_rear), 22U * 4);
    EXPECT_EQ(offsetof(PawnEntry, b_rear), 32U * 4);
}

TEST_F(PawnCache, TheSlotIsTheKeyModuloTheNumberOfEntries) {
    EXPECT_EQ(slot_of(0), 0);
    EXPECT_EQ(slot_of(1), 1);
    EXPECT_EQ(slot_of(12482), 12482);
    EXPECT_EQ(slot_of(12483), 0);
    EXPECT_EQ(slot_of(12484), 1);
    EXPECT_EQ(slot_of(1000000), 1360);  // 80 x 12483 = 998640
    // 344065 x 12483 = 4294963395, and 4294967295 - 4294963395 = 3900.
    EXPECT_EQ(slot_of(std::numeric_limits<std::uint32_t>::max()), 3900);
}

TEST_F(PawnCache, AFreshEntryMatchesNoKeyOfItsSlot) {
    const PawnEntry* const slots = &pawn_entry_of(with_pawn_on(d4, 0));
    std::uint32_t slot = 1;  // slot 0 was filled just now
    for (; slot < pawn_cache_entries; ++slot) {
        ASSERT_NE(slots[slot].key % pawn_cache_entries, slot);
    }
    EXPECT_EQ(slot, 12483U);
}

TEST_F(PawnCache, TheFirstLookUpInEverySlotFillsIt) {
    std::uint32_t slot = 0;
    for (; slot < pawn_cache_entries; ++slot) {
        const PawnEntry& entry = pawn_entry_of(with_pawn_on(d4, slot));
        ASSERT_EQ(entry.key, slot);
        ASSERT_EQ(entry.pawn_score, d4_score) << slot;
        ASSERT_EQ(entry.w_rear[4], 4) << slot;
    }
    EXPECT_EQ(slot, 12483U);
}

TEST_F(PawnCache, WithoutPawnsTheSlotIsThatOfKey0WithScore0) {
    const Table table = position_from_fen("4k3/8/8/8/8/8/8/R3K3");
    ASSERT_EQ(table.pawn_hash, 0U);
    const PawnEntry& entry = pawn_entry_of(table);
    EXPECT_EQ(entry.key, 0U);
    EXPECT_EQ(entry.pawn_score, 0);
    EXPECT_EQ(entry.w_count[4], 0);
    EXPECT_EQ(entry.w_rear[4], -1);
    EXPECT_EQ(entry.b_rear[4], 8);
}

TEST_F(PawnCache, AnEntryWithTheSameKeyIsUsedAsItIs) {
    // Two structures with one key share the entry of the first: the key is the whole check.
    EXPECT_EQ(pawn_entry_of(with_pawn_on(d4, 777)).pawn_score, d4_score);
    EXPECT_EQ(pawn_entry_of(with_pawn_on(a4, 777)).pawn_score, d4_score);
}

TEST_F(PawnCache, AnotherKeyInTheSameSlotOverwritesTheEntry) {
    const PawnEntry& first = pawn_entry_of(with_pawn_on(d4, 777));
    EXPECT_EQ(first.pawn_score, d4_score);
    const PawnEntry& second = pawn_entry_of(with_pawn_on(a4, 777 + 12483));
    EXPECT_EQ(&second, &first);
    EXPECT_EQ(second.key, 777U + 12483U);
    EXPECT_EQ(second.pawn_score, a4_score);
    EXPECT_EQ(second.w_count, (FileCounts{0, 1, 0, 0, 0, 0, 0, 0, 0, 0}));
    // The first structure is gone: its key is filled anew, here with other pawns.
    EXPECT_EQ(pawn_entry_of(with_pawn_on(a4, 777)).pawn_score, a4_score);
    EXPECT_EQ(first.key, 777U);
}

TEST_F(PawnCache, AllBitsOfTheKeyAreCompared) {
    // Keys of one slot that differ only from some bit on: 12483 is odd.
    int compared = 0;
    for (std::uint32_t multiple = 1; multiple <= 0x40000; multiple *= 2) {
        EXPECT_EQ(pawn_entry_of(with_pawn_on(d4, 777)).pawn_score, d4_score) << multiple;
        const std::uint32_t key = 777 + pawn_cache_entries * multiple;
        EXPECT_EQ(pawn_entry_of(with_pawn_on(a4, key)).pawn_score, a4_score) << multiple;
        ++compared;
    }
    EXPECT_EQ(compared, 19);
}

TEST_F(PawnCache, NeighbouringSlotsKeepTheirEntries) {
    EXPECT_EQ(pawn_entry_of(with_pawn_on(d4, 777)).pawn_score, d4_score);
    EXPECT_EQ(pawn_entry_of(with_pawn_on(a4, 778)).pawn_score, a4_score);
    EXPECT_EQ(pawn_entry_of(with_pawn_on(a4, 777)).pawn_score, d4_score);
    EXPECT_EQ(pawn_entry_of(with_pawn_on(d4, 778)).pawn_score, a4_score);
}

TEST_F(PawnCache, AllocatingAgainEmptiesIt) {
    EXPECT_EQ(pawn_entry_of(with_pawn_on(d4, 777)).pawn_score, d4_score);
    pawn_cache_allocate();
    EXPECT_EQ(pawn_entry_of(with_pawn_on(a4, 777)).pawn_score, a4_score);
}

TEST_F(PawnCache, BothEvaluationsReadTheSameEntries) {
    // The entry of d4 under a key that a position with a pawn on a4 claims for itself: its score
    // and its file facts are believed, 20 for 30 points.
    Table ending = with_pawn_on(a4, 777);
    Table full = ending;
    full.at(h8) = b_rook;
    full.BRook = mask_of(h8);
    full.at(h1) = w_rook;
    full.WRook = mask_of(h1);
    full.Kol_figur += 2;

    pawn_cache_allocate();
    const std::int32_t true_ending = Table::evaluate(ending, 0, 0);
    const std::int32_t true_full = Table::evaluate(full, 0, 0);
    pawn_cache_allocate();
    EXPECT_EQ(pawn_entry_of(with_pawn_on(d4, 777)).pawn_score, d4_score);
    EXPECT_EQ(Table::evaluate(ending, 0, 0), true_ending - a4_score + d4_score);
    EXPECT_EQ(Table::evaluate(full, 0, 0), true_full - a4_score + d4_score);
}
