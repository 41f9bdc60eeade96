// SPDX-License-Identifier: MIT
// The keys of men on squares. Digest and corners come from a second run of the published generator
// outside the engine.
#include "board/piece_keys.h"

#include <gtest/gtest.h>
#include <set>

#include "board/square_tables.h"
#include "support/word_digest.h"

namespace {

constexpr std::array<PieceCode, 12> codes_by_slot = {w_pawn,   w_knight, w_bishop, w_rook,
                                                     w_queen,  w_king,   b_pawn,   b_knight,
                                                     b_bishop, b_rook,   b_queen,  b_king};

using KeyIterator = std::array<std::uint32_t, 3120>::const_iterator;

std::size_t different_keys(KeyIterator begin, KeyIterator end) {
    return std::set<std::uint32_t>(begin, end).size();
}

}  // namespace

TEST(PieceKeys, AreTheNumbersOfTheGenerator) {
    EXPECT_EQ(piece_keys.size(), 3120U);
    EXPECT_EQ(word_digest(piece_keys), 0x7a68e04753dc5686U);
    EXPECT_EQ(piece_keys.front(), 0x1e46c2c7U);
    EXPECT_EQ(piece_keys.back(), 0x4d001db7U);
}

TEST(PieceKeys, StandInThreeBlocks) {
    EXPECT_EQ(lock_key(0, 0), piece_keys[0]);
    EXPECT_EQ(lock_key(11, 119), piece_keys[1439]);
    EXPECT_EQ(index_key(0, 0), piece_keys[1440]);
    EXPECT_EQ(index_key(11, 119), piece_keys[2879]);
    EXPECT_EQ(pawn_key(white, 0), piece_keys[2880]);
    EXPECT_EQ(pawn_key(black, 119), piece_keys[3119]);
    EXPECT_EQ(lock_key(3, a1), piece_keys[3 * 120 + 91]);
    EXPECT_EQ(index_key(10, d8), piece_keys[1440 + 10 * 120 + 24]);
    EXPECT_EQ(pawn_key(black, e5), piece_keys[2880 + 120 + 55]);
}

TEST(PieceKeys, NoKeyOccursTwice) {
    const auto begin = piece_keys.begin();
    EXPECT_EQ(different_keys(begin, begin + 1440), 1440U);
    EXPECT_EQ(different_keys(begin + 1440, begin + 2880), 1440U);
    EXPECT_EQ(different_keys(begin + 2880, begin + 3120), 240U);
    EXPECT_EQ(different_keys(begin, begin + 3120), 3120U);
    EXPECT_EQ(std::set<std::uint32_t>(begin, begin + 3120).count(0), 0U);
}

TEST(PieceKeys, EveryBitIsSetInAboutHalfOfTheKeys) {
    for (std::uint32_t bit = 0; bit < 32; ++bit) {
        int set = 0;
        for (const std::uint32_t key : piece_keys) {
            set += (key >> bit & 1) != 0 ? 1 : 0;
        }
        EXPECT_GT(set, 1400) << bit;
        EXPECT_LT(set, 1720) << bit;
    }
}

TEST(PieceKeys, SlotsFollowTheKindBits) {
    for (std::size_t slot = 0; slot < codes_by_slot.size(); ++slot) {
        EXPECT_EQ(key_slot(codes_by_slot[slot]), slot);
    }
}
