// SPDX-License-Identifier: MIT
// The trees of the perft positions, walked by a walker that is not the engine's and that tests
// every move by the king's safety alone. In each node every pseudo-legal move is made and taken
// back.
#include <gtest/gtest.h>

#include "support/board_invariants.h"
#include "support/generated.h"
#include "support/perft_positions.h"
#include "support/position.h"

namespace {

/// The walk ends at the first thing that does not hold.
class TreeWalk {
  public:
    /// Leaves of the legal tree at `depth`; 0 after a fault.
    std::uint64_t leaves(Table& table, std::size_t depth);

    [[nodiscard]] const std::string& fault() const { return fault_; }
    [[nodiscard]] std::uint64_t moves_made() const { return moves_made_; }

  private:
    std::uint64_t leaves_after(Table& table, const Move& move, std::size_t depth);
    bool note(const std::string& what, const Table& table, const Move& move);

    std::string fault_;
    std::uint64_t moves_made_ = 0;
};

bool TreeWalk::note(const std::string& what, const Table& table, const Move& move) {
    fault_ = what + ": " + move_text(move.posFrom, move.posTo, move.posInfo) + ", " + fen_of(table);
    return false;
}

std::uint64_t TreeWalk::leaves_after(Table& table, const Move& move, std::size_t depth) {
    const Table before = table;
    UndoRecord undo;
    make(table, move.posFrom, move.posTo, move.posInfo, undo);
    ++moves_made_;
    Table plain = before;
    make_plain(plain, move.posFrom, move.posTo, move.posInfo);
    if (!(plain == table)) {
        note("make_plain differs from make", before, move);
    }
    if (const std::string broken = broken_invariant(table); !broken.empty()) {
        note(broken, before, move);
    }
    std::uint64_t count = 0;
    if (fault_.empty() && !in_check(table, table.side)) {
        table.side ^= 1;
        count = leaves(table, depth - 1);
        table.side ^= 1;
    }
    unmake(table, undo);
    if (!(table == before)) {
        note("unmake does not restore the position", before, move);
    }
    return count;
}

std::uint64_t TreeWalk::leaves(Table& table, std::size_t depth) {
    if (depth == 0) {
        return 1;
    }
    MoveList list;
    cur_moves = &list;
    gen_all(table, table.side);
    std::uint64_t count = 0;
    for (std::int32_t i = 1; i <= list.count && fault_.empty(); ++i) {
        count += leaves_after(table, list.move(i), depth);
    }
    return fault_.empty() ? count : 0;
}

constexpr std::uint64_t most_leaves = 1000000;

}  // namespace

TEST(PerftTrees, EveryMoveIsTakenBackWholeAndKeepsKeysAndBoards) {
    const auto positions = read_perft_positions(CORVANE_TEST_DATA "/perft/positions.txt");
    ASSERT_EQ(positions.size(), 34U);
    std::uint64_t moves_made = 0;
    std::uint64_t leaves = 0;
    for (const PerftPosition& position : positions) {
        Table table = position_from_fen(position.fen);
        ASSERT_EQ(broken_invariant(table), "");
        const std::size_t depth = depths_up_to(position.chess, most_leaves);
        ASSERT_GT(depth, 0U) << position.name;
        TreeWalk walk;
        // By full tests of legality the counts are those of chess in every row.
        const std::uint64_t counted = walk.leaves(table, depth);
        ASSERT_EQ(walk.fault(), "") << position.name;
        EXPECT_EQ(counted, position.chess[depth - 1]) << position.name << ", depth " << depth;
        moves_made += walk.moves_made();
        leaves += counted;
    }
    EXPECT_EQ(leaves, 12639049U);
    EXPECT_EQ(moves_made, 15110463U);
}
