// SPDX-License-Identifier: MIT
// The record of the game's positions.
#include "shell/game_record.h"

#include <gtest/gtest.h>

#include "board/make.h"
#include "board/square_tables.h"
#include "support/position.h"

namespace {

void store(const Table& table) {
    game_store(table.side, table.Array.data());
}

bool thrice(const Table& table) {
    return game_repeated_thrice(table.side, table.Array.data());
}

bool twice(const Table& table) {
    return game_repeated_twice(table.side, table.Array.data());
}

}  // namespace

class GameRecord : public testing::Test {
  protected:
    GameRecord() { game_reset(); }
    ~GameRecord() override { game_reset(); }
};

TEST_F(GameRecord, IsEmptyAfterAReset) {
    EXPECT_EQ(game_top, -1);
    const Table table = position_from_fen("4k3/8/8/8/8/8/8/4K3 w - -");
    EXPECT_FALSE(twice(table));
    store(table);
    store(table);
    EXPECT_EQ(game_top, 1);
    EXPECT_TRUE(twice(table));
    game_reset();
    EXPECT_EQ(game_top, -1);
    EXPECT_FALSE(twice(table));
}

TEST_F(GameRecord, CountsTwoForTheSearchAndThreeForTheClaim) {
    const Table table = start_position();
    store(table);
    EXPECT_FALSE(twice(table));
    store(table);
    EXPECT_TRUE(twice(table));
    EXPECT_FALSE(thrice(table));
    store(table);
    EXPECT_TRUE(twice(table));
    EXPECT_TRUE(thrice(table));
    store(table);
    EXPECT_TRUE(thrice(table));
}

TEST_F(GameRecord, SideToMoveIsPartOfThePosition) {
    Table table = start_position();
    store(table);
    store(table);
    table.side = black;
    store(table);
    EXPECT_FALSE(thrice(table));
    EXPECT_FALSE(twice(table));
    table.side = white;
    EXPECT_TRUE(twice(table));
    EXPECT_FALSE(thrice(table)) << "twice with White to move, once with Black";
}

TEST_F(GameRecord, RightsAndEnPassantAreNotCompared) {
    const Table with = position_from_fen("r3k2r/8/8/3pP3/8/8/8/R3K2R w KQkq d6");
    const Table without = position_from_fen("r3k2r/8/8/3pP3/8/8/8/R3K2R w - -");
    store(with);
    store(without);
    store(with);
    EXPECT_TRUE(thrice(without));
    EXPECT_TRUE(thrice(with));
}

TEST_F(GameRecord, EveryEntryOfTheMailboxIsCompared) {
    const Table table = start_position();
    store(table);
    store(table);
    for (const std::size_t entry : {std::size_t{0}, std::size_t{55}, std::size_t{119}}) {
        Table other = table;
        other.Array[entry] = w_queen;
        EXPECT_FALSE(twice(other)) << entry;
    }
    EXPECT_TRUE(twice(table));
}

TEST_F(GameRecord, OccurrencesNeedNotBeInARow) {
    Table table = start_position();
    store(table);
    for (int round = 0; round < 2; ++round) {
        for (const auto& [from, to] : {std::pair{g1, f3}, {g8, f6}, {f3, g1}, {f6, g8}}) {
            make_plain(table, from, to, 0);
            table.side ^= 1;
            store(table);
        }
    }
    EXPECT_EQ(game_top, 8);
    EXPECT_TRUE(thrice(table));
    make_plain(table, g1, f3, 0);
    table.side ^= 1;
    EXPECT_TRUE(twice(table));
    EXPECT_FALSE(thrice(table)) << "not yet stored a third time";
}

TEST_F(GameRecord, GrowsBeyondFiveHundredPositions) {
    Table table = position_from_fen("4k3/8/8/8/8/8/8/4K3 w - -");
    store(table);
    for (int i = 1; i < 1600; ++i) {
        table.Array[0] = static_cast<PieceCode>(i);
        store(table);
    }
    EXPECT_EQ(game_top, 1599);
    table.Array[0] = 0;
    store(table);
    EXPECT_TRUE(twice(table)) << "the first one is still there";
    EXPECT_FALSE(thrice(table));
    store(table);
    EXPECT_TRUE(thrice(table));
    for (const PieceCode i : {499U, 500U, 501U, 999U, 1000U, 1599U}) {
        table.Array[0] = i;
        EXPECT_FALSE(twice(table)) << i;
        store(table);
        EXPECT_TRUE(twice(table)) << i;
    }
}
