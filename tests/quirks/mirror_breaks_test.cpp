// SPDX-License-Identifier: MIT
// Where the score of a position is not that of the same position with the colours exchanged, and
// two rules that look as if they broke it and do not. Everything else keeps it: see the property
// test of mirrored scores.
#include "support/mirror_breaks.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "board/table.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

std::int32_t score_of(const Table& table) {
    return Table::evaluate(table, 0, 0);
}

struct Example {
    std::string fen;
    std::int32_t score;           ///< from the side to move
    std::int32_t mirrored_score;  ///< of the position with the colours exchanged
};

}  // namespace

TEST(MirrorBreaks, TrappedBishopsOfBothSidesCountAsOneBlackOne) {
    reset_all();
    // But for the bishops all cancels in the first four: seen from White both the position and its
    // mirror score +130. In the fifth White has a knight more: b1 195, and 20 + 100 for the lead.
    const std::vector<Example> examples = {
        {"4k3/7B/6p1/8/8/6P1/7b/4K3 w - -", 130, -130},   // h7 and h2
        {"4k3/7B/6p1/8/8/1P6/b7/4K3 b - -", -130, 130},   // h7 and a2
        {"4k3/B7/1p6/8/8/6P1/7b/4K3 b - -", -130, 130},   // a7 and h2
        {"4k3/B7/1p6/8/8/1P6/b7/4K3 w - -", 130, -130},   // a7 and a2
        {"4k3/7B/6p1/8/8/6P1/7b/1N2K3 w - -", 445, 185},  // 315 + 130; 315 - 130
        {"4k3/7B/6p1/8/8/6P1/7b/1N2K3 b - -", -445, -185},
    };
    int compared = 0;
    for (const Example& example : examples) {
        const Table table = position_from_fen(example.fen);
        EXPECT_TRUE(both_sides_have_a_trapped_bishop(table)) << example.fen;
        EXPECT_EQ(score_of(table), example.score) << example.fen;
        EXPECT_EQ(score_of(mirrored(table)), example.mirrored_score) << example.fen;
        ++compared;
    }
    EXPECT_EQ(compared, 6);
}

TEST(MirrorBreaks, ABishopTrappedOnOneSideOnlyKeepsTheMirror) {
    reset_all();
    int compared = 0;
    for (const char* fen : {"4k3/8/8/6p1/8/6P1/7b/2B1K3 w - -", "4k3/8/8/8/8/1P6/b6p/2B1K3 w - -",
                            "2b1k3/7B/6p1/8/8/8/6P1/4K3 b - -", "2b1k3/B7/1p6/8/8/8/6P1/4K3 b - -",
                            "4k3/8/8/6p1/8/1P4P1/b6b/2B1K3 w - -"}) {
        const Table table = position_from_fen(fen);
        EXPECT_FALSE(both_sides_have_a_trapped_bishop(table)) << fen;
        EXPECT_EQ(score_of(table), score_of(mirrored(table))) << fen;
        ++compared;
    }
    EXPECT_EQ(compared, 5);
}

TEST(MirrorBreaks, TheOnlyPawnsKingDistancesKeepTheMirrorWithTheSameSignsForBothColours) {
    // The term compares the two kings, whose roles change with the colours: a near white king helps
    // White, and with the colours exchanged a near black king helps Black.
    reset_all();
    int compared = 0;
    for (const char* fen : {"4k3/8/8/8/4p3/8/6K1/8 w - -", "4k3/8/8/8/4P3/8/6K1/8 b - -",
                            "4k2r/8/8/8/4p3/8/6K1/R7 w - -", "4k2r/8/8/8/4P3/8/6K1/R7 b - -"}) {
        const Table table = position_from_fen(fen);
        EXPECT_EQ(score_of(table), score_of(mirrored(table))) << fen;
        ++compared;
    }
    EXPECT_EQ(compared, 4);
}

TEST(MirrorBreaks, TheRuleOfTheSquareKeepsTheMirror) {
    // White's limit is the row and 2, Black's 9 less the row: the same once the rows are turned
    // over.
    reset_all();
    int compared = 0;
    for (const char* fen : {"8/8/8/5k2/P7/8/8/4K3 w - -", "8/8/8/6k1/P7/8/8/4K3 w - -",
                            "4k3/8/8/p7/5K2/8/8/8 w - -", "4k3/8/8/p7/6K1/8/8/8 w - -"}) {
        const Table table = position_from_fen(fen);
        EXPECT_EQ(score_of(table), score_of(mirrored(table))) << fen;
        ++compared;
    }
    EXPECT_EQ(compared, 4);
}
