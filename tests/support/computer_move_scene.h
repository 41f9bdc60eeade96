// SPDX-License-Identifier: MIT
// The computer's move on any position, with scores made to order.
#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "board/table.h"

class ComputerMoveScene : public testing::Test {
  protected:
    void SetUp() override;

    /// A new position in the same game.
    void set(const char* fen);

    /// The lines that a move prints.
    std::vector<std::string> play();

    /// Makes depth 1 of a search score exactly this: the hash table knows every reply's score.
    void plant(std::int32_t score) const;

    /// Makes every depth of a search score 0: each move repeats a position a third time.
    void repeat_every_move() const;

    /// A move whose search ended with this score. Game record and hash table are empty afterwards.
    void play_with_score(std::int32_t score);

    /// The lines of a search to this depth that scores 0 all the way, without claim and move.
    std::vector<std::string> play_with_zeros(std::int32_t depth);

    /// The first move of the list is played without a search.
    static void no_time();

    [[nodiscard]] static std::string last_of(const std::vector<std::string>& lines);
    [[nodiscard]] static bool is_move_line(const std::string& line);

    Table table;
};
