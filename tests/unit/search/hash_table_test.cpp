// SPDX-License-Identifier: MIT
// The table: its size, its empty entries, what is a hit, what gives way to what.
#include "search/hash_table.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#if !defined(__SANITIZE_ADDRESS__) && defined(__unix__)
#include <sys/resource.h>
#endif

#include "platform/memory_limit.h"
#include "search/search_state.h"
#include "shell/log.h"
#include "support/captured_output.h"
#include "support/fixed_depth.h"
#include "support/position.h"
#include "support/reset_all.h"
#include "support/search_scene.h"
#include "support/temporary_folder.h"

namespace {

constexpr std::uint64_t megabyte = 1048576;
constexpr std::uint64_t plenty = std::numeric_limits<std::uint64_t>::max();

std::uint64_t machine_memory = plenty;

/// What a fresh allocation of so many megabytes prints.
std::string printed_for(std::int32_t megabytes) {
    hash_mb = megabytes;
    const CapturedOutput output;
    hash_allocate();
    return output.text();
}

/// The machine's memory, for the life of an object.
class MachineWith {
  public:
    explicit MachineWith(std::uint64_t bytes) { machine_memory = bytes; }
    ~MachineWith() { machine_memory = plenty; }
    MachineWith(const MachineWith&) = delete;
    MachineWith& operator=(const MachineWith&) = delete;
};

/// An entry of another position, of the present search.
HashEntry stranger(std::int8_t depth) {
    return {1234567, -77, depth, hash_lower, black, 1, e2, e4, 5, hash_age};
}

const Move some_move{b1, c3, 0};

class HashTable : public testing::Test {
  protected:
    void SetUp() override {
        reset_all();
        position = start_position();
    }

    Table position;
};

}  // namespace

/// In the place of the platform's, so that a test can say what the machine has.
std::uint64_t memory_limit_bytes() {
    return machine_memory;
}

TEST_F(HashTable, EntryIsSixteenBytesInOrder) {
    EXPECT_EQ(sizeof(HashEntry), 16U);
    EXPECT_EQ(offsetof(HashEntry, key), 0U);
    EXPECT_EQ(offsetof(HashEntry, score), 4U);
    EXPECT_EQ(offsetof(HashEntry, depth), 8U);
    EXPECT_EQ(offsetof(HashEntry, type), 9U);
    EXPECT_EQ(offsetof(HashEntry, side), 10U);
    EXPECT_EQ(offsetof(HashEntry, has_move), 11U);
    EXPECT_EQ(offsetof(HashEntry, from), 12U);
    EXPECT_EQ(offsetof(HashEntry, to), 13U);
    EXPECT_EQ(offsetof(HashEntry, info), 14U);
    EXPECT_EQ(offsetof(HashEntry, age), 15U);
}

TEST_F(HashTable, TypesAreExactLowerUpper) {
    EXPECT_EQ(hash_exact, 0);
    EXPECT_EQ(hash_lower, 1);
    EXPECT_EQ(hash_upper, 2);
}

TEST_F(HashTable, AMegabyteHolds65536Entries) {
    EXPECT_EQ(printed_for(1), "Hashsize 1048576 bytes\n");
    EXPECT_EQ(hash_entries, 65536U);
    EXPECT_EQ(printed_for(16), "Hashsize 16777216 bytes\n");
    EXPECT_EQ(hash_entries, 1048576U);
    EXPECT_EQ(printed_for(5), "Hashsize 5242880 bytes\n");
    EXPECT_EQ(hash_entries, 327680U);
}

TEST_F(HashTable, ZeroAndNegativeSizesGiveAMegabyteAndNoLine) {
    for (const std::int32_t megabytes : {0, -1, -64, std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(printed_for(megabytes), "");
        EXPECT_EQ(hash_entries, 65536U);
        EXPECT_EQ(hash_mb, megabytes);
    }
}

TEST_F(HashTable, SizeIsMirroredInTheLog) {
    const TemporaryFolder folder;
    log_enabled = true;
    static_cast<void>(printed_for(1));
    log_enabled = false;
    EXPECT_EQ(log_lines(), std::vector<std::string>{"Hashsize 1048576 bytes"});
}

TEST_F(HashTable, LastEntryAndTheSpareOnesCanBeWritten) {
    static_cast<void>(printed_for(1));
    for (std::uint32_t slot = hash_entries - 1; slot < hash_entries + 10; ++slot) {
        hash_table[slot] = stranger(1);
    }
    EXPECT_EQ(hash_table[hash_entries + 9].key, 1234567U);
}

TEST_F(HashTable, SizeThatTheMachineHasNotIsHalvedUntilItFits) {
    const MachineWith machine(100 * megabyte);
    EXPECT_EQ(printed_for(512), "Hashsize 67108864 bytes\n");  // 512, 256, 128, 64
    EXPECT_EQ(hash_entries, 64U * 65536U);
    EXPECT_EQ(printed_for(99), "Hashsize 103809024 bytes\n");
    EXPECT_EQ(hash_entries, 99U * 65536U);
}

TEST_F(HashTable, LargestSizeThatCanBeAskedForComesDownToo) {
    const MachineWith machine(20 * megabyte);
    const std::string printed = printed_for(std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(printed, "Hashsize " + std::to_string(std::uint64_t{hash_entries} * 16) + " bytes\n");
    EXPECT_GE(hash_entries, 5U * 65536U);
    EXPECT_LT(hash_entries, 20U * 65536U);
    hash_table[hash_entries - 1] = stranger(1);
    EXPECT_EQ(hash_table[hash_entries - 1].depth, 1);
}

#if !defined(__SANITIZE_ADDRESS__) && defined(__unix__)
// The address sanitizer needs the address space that this test takes away.
TEST_F(HashTable, AllocationThatFailsIsHalvedToo) {
    const auto try_it = [] {
        rlimit limit{};
        getrlimit(RLIMIT_AS, &limit);
        limit.rlim_cur = 300 * megabyte;
        setrlimit(RLIMIT_AS, &limit);
        const std::string printed = printed_for(4096);
        const std::uint64_t bytes = std::uint64_t{hash_entries} * 16;
        const bool good = printed == "Hashsize " + std::to_string(bytes) + " bytes\n" &&
                          bytes >= 16 * megabyte && bytes < 300 * megabyte;
        hash_table[hash_entries - 1] = stranger(1);
        _exit(good ? 0 : 1);
    };
    EXPECT_EXIT(try_it(), testing::ExitedWithCode(0), "");
}
#endif

TEST_F(HashTable, ClearSetsTheFillValuesInEveryEntry) {
    for (std::uint32_t slot = 0; slot < hash_entries; ++slot) {
        hash_table[slot] = {position.hash_lock, 1, 2, 0, 0, 1, 3, 4, 5, '1'};
    }
    hash_clear();
    for (std::uint32_t slot = 0; slot < hash_entries; ++slot) {
        const HashEntry& entry = hash_table[slot];
        ASSERT_EQ(entry.key, 777U);
        ASSERT_EQ(entry.score, 220);
        ASSERT_EQ(entry.depth, -50);
        ASSERT_EQ(entry.type, 100);
        ASSERT_EQ(entry.side, 5);
        ASSERT_EQ(entry.has_move, 0);
        ASSERT_EQ(entry.age, 0);
        // The words of the move stay.
        ASSERT_EQ(entry.from, 3);
        ASSERT_EQ(entry.to, 4);
        ASSERT_EQ(entry.info, 5);
    }
}

TEST_F(HashTable, NoPositionHitsAnEmptyEntry) {
    position.hash_lock = 777;
    for (const Side side : {white, black}) {
        position.side = side;
        EXPECT_FALSE(hash_hit(hash_slot(position), position));
    }
}

TEST_F(HashTable, SlotIsTheIndexModuloTheEntries) {
    for (const std::uint32_t index : {0U, 1U, 65535U, 65536U, 200000U, 4294967295U}) {
        position.hash_index = index;
        EXPECT_EQ(&hash_slot(position), hash_table + index % 65536);
    }
    hash_entries = 1000;
    position.hash_index = 123456;
    EXPECT_EQ(&hash_slot(position), hash_table + 456);
}

TEST_F(HashTable, HitNeedsKeyAndSide) {
    HashEntry& entry = put_entry(position, 3, hash_exact, 0);
    EXPECT_TRUE(hash_hit(entry, position));
    entry.key ^= 1;
    EXPECT_FALSE(hash_hit(entry, position));
    entry.key ^= 1;
    position.side = black;
    EXPECT_FALSE(hash_hit(entry, position));
    entry.side = 1;
    EXPECT_TRUE(hash_hit(entry, position));
}

TEST_F(HashTable, PositionsThatDifferInRightsOrEnPassantShareAnEntry) {
    const Table one = position_from_fen("r3k2r/8/8/3pP3/8/8/8/R3K2R w KQkq d6");
    const Table two = position_from_fen("r3k2r/8/8/3pP3/8/8/8/R3K2R w - -");
    const HashEntry& entry = put_entry(one, 3, hash_exact, 0);
    EXPECT_EQ(&hash_slot(two), &entry);
    EXPECT_TRUE(hash_hit(entry, two));
}

TEST_F(HashTable, ExactEntryCutsAnyWindow) {
    const HashEntry& entry = put_entry(position, 3, hash_exact, 50);
    EXPECT_TRUE(hash_cuts(entry, 100, 200));
    EXPECT_TRUE(hash_cuts(entry, -200, -100));
    EXPECT_TRUE(hash_cuts(entry, 0, 100));
}

TEST_F(HashTable, LowerBoundCutsFromBetaOn) {
    const HashEntry& entry = put_entry(position, 3, hash_lower, 50);
    EXPECT_TRUE(hash_cuts(entry, 0, 49));
    EXPECT_TRUE(hash_cuts(entry, 0, 50));
    EXPECT_FALSE(hash_cuts(entry, 0, 51));
    EXPECT_FALSE(hash_cuts(entry, 60, 70));
}

TEST_F(HashTable, UpperBoundCutsUpToAlpha) {
    const HashEntry& entry = put_entry(position, 3, hash_upper, 50);
    EXPECT_TRUE(hash_cuts(entry, 51, 100));
    EXPECT_TRUE(hash_cuts(entry, 50, 100));
    EXPECT_FALSE(hash_cuts(entry, 49, 100));
    EXPECT_FALSE(hash_cuts(entry, 0, 40));
}

TEST_F(HashTable, StoreFillsEveryWord) {
    HashEntry& entry = hash_slot(position);
    position.side = black;
    hash_store(entry, position, 7, hash_lower, -123456, &some_move);
    EXPECT_EQ(entry.key, position.hash_lock);
    EXPECT_EQ(entry.score, -123456);
    EXPECT_EQ(entry.depth, 7);
    EXPECT_EQ(entry.type, 1);
    EXPECT_EQ(entry.side, 1);
    EXPECT_EQ(entry.has_move, 1);
    EXPECT_EQ(entry.from, b1);
    EXPECT_EQ(entry.to, c3);
    EXPECT_EQ(entry.info, 0);
    EXPECT_EQ(entry.age, '1');
}

TEST_F(HashTable, ShallowerEntryOfThisSearchGivesWay) {
    HashEntry& entry = hash_slot(position) = stranger(4);
    hash_store(entry, position, 5, hash_exact, 9, &some_move);
    EXPECT_EQ(entry.key, position.hash_lock);
    EXPECT_EQ(entry.depth, 5);
}

TEST_F(HashTable, EntryOfThisSearchAsDeepIsNotOverwritten) {
    HashEntry& entry = hash_slot(position) = stranger(5);
    hash_store(entry, position, 5, hash_exact, 9, &some_move);
    EXPECT_EQ(entry.key, 1234567U);
    EXPECT_EQ(entry.score, -77);
    hash_store(entry, position, 4, hash_exact, 9, &some_move);
    EXPECT_EQ(entry.key, 1234567U);
}

TEST_F(HashTable, OwnEntryAsDeepIsNotOverwrittenEither) {
    HashEntry& entry = put_entry(position, 5, hash_upper, 1);
    hash_store(entry, position, 5, hash_exact, 9, &some_move);
    EXPECT_EQ(entry.type, hash_upper);
    EXPECT_EQ(entry.score, 1);
}

TEST_F(HashTable, EntryOfThePreviousSearchIsOverwrittenAtAnyDepth) {
    HashEntry& entry = hash_slot(position) = stranger(60);
    hash_flip_age();
    hash_store(entry, position, -3, hash_exact, 9, &some_move);
    EXPECT_EQ(entry.key, position.hash_lock);
    EXPECT_EQ(entry.depth, -3);
    EXPECT_EQ(entry.age, '0');
}

TEST_F(HashTable, EntryTwoSearchesOldCountsAsCurrent) {
    HashEntry& entry = hash_slot(position) = stranger(5);
    hash_flip_age();
    hash_flip_age();
    hash_store(entry, position, 5, hash_exact, 9, &some_move);
    EXPECT_EQ(entry.key, 1234567U);
}

TEST_F(HashTable, EmptyEntryGivesWayToAnyDepth) {
    HashEntry& entry = hash_slot(position);
    hash_store(entry, position, -20, hash_upper, 9, nullptr);
    EXPECT_EQ(entry.depth, -20);
}

TEST_F(HashTable, StoreWithoutMoveLeavesTheWordsOfTheOldMove) {
    HashEntry& entry = hash_slot(position) = stranger(2);
    hash_store(entry, position, 3, hash_upper, 9, nullptr);
    EXPECT_EQ(entry.has_move, 0);
    EXPECT_EQ(entry.from, e2);
    EXPECT_EQ(entry.to, e4);
    EXPECT_EQ(entry.info, 5);
    EXPECT_EQ(entry.type, hash_upper);
    EXPECT_EQ(entry.score, 9);
}

TEST_F(HashTable, PromotionKeepsOnlyTheLowByteOfItsCode) {
    HashEntry& entry = hash_slot(position);
    std::int32_t depth = 1;
    const auto stored = [&](PieceCode code) {
        const Move promotion{a7, a8, code};
        hash_store(entry, position, ++depth, hash_exact, 0, &promotion);
        return static_cast<std::int32_t>(entry.info);
    };
    EXPECT_EQ(stored(w_queen), 16);
    EXPECT_EQ(stored(w_rook), 8);
    EXPECT_EQ(stored(w_bishop), 4);
    EXPECT_EQ(stored(w_knight), 2);
    EXPECT_EQ(stored(b_queen), 0);
    EXPECT_EQ(stored(b_rook), 0);
    EXPECT_EQ(stored(b_bishop), 0);
    EXPECT_EQ(stored(b_knight), -128);
}

TEST_F(HashTable, AgeIsACharacterThatFlips) {
    EXPECT_EQ(hash_age, '1');
    hash_flip_age();
    EXPECT_EQ(hash_age, '0');
    hash_flip_age();
    EXPECT_EQ(hash_age, '1');
}

TEST_F(HashTable, FreeGivesTheMemoryBackAndAllocateTakesItAgain) {
    hash_free();
    EXPECT_EQ(hash_table, nullptr);
    EXPECT_EQ(hash_entries, 0U);
    hash_free();
    EXPECT_EQ(printed_for(2), "Hashsize 2097152 bytes\n");
    EXPECT_NE(hash_table, nullptr);
}

TEST_F(HashTable, EachSearchStoresWithItsOwnAge) {
    std::int32_t depth = 1;
    for (const int age : {'0', '1', '0'}) {
        ++depth;
        std::vector<std::uint32_t> keys;
        for (std::uint32_t slot = 0; slot < hash_entries; ++slot) {
            keys.push_back(hash_table[slot].key);
        }
        search_fixed_depth(position, depth, [](const Iteration&) {});
        EXPECT_EQ(hash_age, age);
        int stored = 0;
        for (std::uint32_t slot = 0; slot < hash_entries; ++slot) {
            if (hash_table[slot].key != keys[slot]) {
                ASSERT_EQ(hash_table[slot].age, age);
                ++stored;
            }
        }
        EXPECT_GT(stored, 0) << depth;
    }
}
