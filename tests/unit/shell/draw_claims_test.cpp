// SPDX-License-Identifier: MIT
// Claims of a draw on their three occasions.
#include "shell/draw_claims.h"

#include <gtest/gtest.h>

#include "board/square_tables.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "support/captured_output.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

const std::string repetition = "1/2-1/2 {Draw by repetition}\n";
const std::string fifty_at_go = "1/2-1/2 {50 moves}\n";
const std::string fifty = "1/2-1/2 {Draw by the 50 moves rule}\n";
const std::string material = "1/2-1/2 {Draw by insufficient material}\n";

/// A position that is drawn by nothing, and one with too little material.
const char* const rich = "4k3/4p3/8/8/8/8/4P3/4K3 w - -";
const char* const poor = "4k3/8/8/8/8/8/8/4K1N1 w - -";

void store(const Table& table, int times) {
    for (int i = 0; i < times; ++i) {
        game_store(table.side, table.Array.data());
    }
}

struct Claim {
    std::string text;
    bool stops;
    friend bool operator==(const Claim&, const Claim&) = default;
};

Claim before_go(const Table& table) {
    const CapturedOutput output;
    const bool stops = claim_before_go(table);
    return {output.text(), stops};
}

Claim after_user(const Table& table) {
    const CapturedOutput output;
    const bool stops = claim_after_user_move(table);
    return {output.text(), stops};
}

std::string after_computer(const Table& table, std::int32_t score) {
    const CapturedOutput output;
    claim_after_computer_move(table, table.side, score);
    return output.text();
}

bool too_little(const char* men) {
    return material_is_insufficient(
        position_from_fen(std::string("k6K/8/") + men + "/8/8/8/8/8 w - -"), 1);
}

}  // namespace

class DrawClaims : public testing::Test {
  protected:
    DrawClaims() { reset_all(); }
    ~DrawClaims() override { reset_all(); }
};

TEST_F(DrawClaims, BareKingsAndOneMinorPieceAreTooLittle) {
    for (const char* men : {"8", "N7", "B7", "n7", "b7"}) {
        EXPECT_TRUE(too_little(men)) << men;
    }
    for (const char* men :
         {"NN6", "Nn6", "Bb6", "BN6", "bb6", "P7", "p7", "R7", "r7", "Q7", "q7", "NP6"}) {
        EXPECT_FALSE(too_little(men)) << men;
    }
}

TEST_F(DrawClaims, UsersTestBeginsAtEntryOneAndTheComputersAtZero) {
    Table table = position_from_fen("4k3/8/8/8/8/8/8/4K3 w - -");
    table.Array[0] = w_pawn;
    EXPECT_TRUE(material_is_insufficient(table, 1));
    EXPECT_FALSE(material_is_insufficient(table, 0));
    table.Array[1] = w_pawn;
    EXPECT_FALSE(material_is_insufficient(table, 1));
}

TEST_F(DrawClaims, FiftyCountGrowsWithQuietMovesOfMen) {
    const Table table = position_from_fen("4k3/4p3/8/8/8/3n4/4P3/4K1N1 w - -");
    count_fifty(table, g1, f3);
    EXPECT_EQ(engine.fifty_count, 1);
    count_fifty(table, e1, f1);
    EXPECT_EQ(engine.fifty_count, 2);
    count_fifty(table, e2, e4);
    EXPECT_EQ(engine.fifty_count, 0) << "a white pawn";
    engine.fifty_count = 9;
    count_fifty(table, e7, e5);
    EXPECT_EQ(engine.fifty_count, 0) << "a black pawn";
    engine.fifty_count = 9;
    count_fifty(table, e1, d3);
    EXPECT_EQ(engine.fifty_count, 0) << "a capture";
}

TEST_F(DrawClaims, NothingIsClaimedWithoutAReason) {
    const Table table = position_from_fen(rich);
    store(table, 2);
    engine.fifty_count = 99;
    EXPECT_EQ(before_go(table), (Claim{"", false}));
    EXPECT_EQ(after_user(table), (Claim{"", false}));
    EXPECT_EQ(after_computer(table, 0), "");
}

TEST_F(DrawClaims, GoClaimsRepetitionFirstAndThenFiftyMoves) {
    const Table table = position_from_fen(rich);
    engine.fifty_count = 100;
    EXPECT_EQ(before_go(table), (Claim{fifty_at_go, true}));
    store(table, 3);
    EXPECT_EQ(before_go(table), (Claim{repetition, true}));
    engine.fifty_count = 0;
    EXPECT_EQ(before_go(table), (Claim{repetition, true}));
}

TEST_F(DrawClaims, GoLooksAtNoMaterial) {
    EXPECT_EQ(before_go(position_from_fen(poor)), (Claim{"", false}));
}

TEST_F(DrawClaims, UsersMoveClaimsMaterialAndTheGameGoesOn) {
    EXPECT_EQ(after_user(position_from_fen(poor)), (Claim{material, false}));
}

TEST_F(DrawClaims, UsersMoveClaimsFiftyMovesBeforeRepetition) {
    const Table table = position_from_fen(rich);
    store(table, 3);
    EXPECT_EQ(after_user(table), (Claim{repetition, true}));
    engine.fifty_count = 100;
    EXPECT_EQ(after_user(table), (Claim{fifty, true}));
    engine.fifty_count = 101;
    EXPECT_EQ(after_user(table), (Claim{fifty, true}));
}

TEST_F(DrawClaims, UsersMoveClaimsMaterialAndAnotherReason) {
    const Table table = position_from_fen(poor);
    store(table, 3);
    EXPECT_EQ(after_user(table), (Claim{material + repetition, true}));
    engine.fifty_count = 100;
    EXPECT_EQ(after_user(table), (Claim{material + fifty, true}));
}

TEST_F(DrawClaims, ComputersMoveClaimsRepetitionOrFiftyMovesAndThenMaterial) {
    const Table table = position_from_fen(rich);
    const Table bare = position_from_fen(poor);
    engine.fifty_count = 100;
    EXPECT_EQ(after_computer(table, 0), fifty);
    EXPECT_EQ(after_computer(bare, 0), fifty + material);
    store(table, 3);
    store(bare, 3);
    EXPECT_EQ(after_computer(table, 0), repetition);
    EXPECT_EQ(after_computer(bare, 0), repetition + material);
    game_reset();
    engine.fifty_count = 99;
    EXPECT_EQ(after_computer(bare, 0), material);
}

TEST_F(DrawClaims, ComputersFiftyMovesAreNotClaimedWithMateOnTheBoard) {
    const Table table = position_from_fen(rich);
    engine.fifty_count = 100;
    EXPECT_EQ(after_computer(table, 600000), "");
    EXPECT_EQ(after_computer(table, -600000), "");
    EXPECT_EQ(after_computer(table, 599999), fifty);
    EXPECT_EQ(after_computer(table, -599998), fifty);
    EXPECT_EQ(after_computer(position_from_fen(poor), 600000), material);
}

TEST_F(DrawClaims, ComputersMoveAsksForTheOpponentsSide) {
    Table table = position_from_fen(rich);
    game_store(black, table.Array.data());
    game_store(black, table.Array.data());
    game_store(black, table.Array.data());
    {
        const CapturedOutput output;
        claim_after_computer_move(table, black, 0);
        EXPECT_EQ(output.text(), repetition) << "the position's own side is still the mover's";
    }
    EXPECT_EQ(after_computer(table, 0), "");
}

TEST_F(DrawClaims, CastlingRightsMakeNoDifferenceToARepetition) {
    const Table with = position_from_fen("r3k2r/8/8/8/8/8/8/R3K2R w KQkq -");
    const Table without = position_from_fen("r3k2r/8/8/8/8/8/8/R3K2R w - -");
    store(with, 1);
    store(without, 2);
    EXPECT_EQ(after_user(with), (Claim{repetition, true}));
}
