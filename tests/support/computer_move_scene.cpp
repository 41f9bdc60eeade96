// SPDX-License-Identifier: MIT
// Scores come from planted entries or from a planted game record, not from the evaluation.
#include "support/computer_move_scene.h"

#include <sstream>

#include "search/hash_table.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "support/captured_output.h"
#include "support/position.h"
#include "support/search_scene.h"

namespace {

constexpr const char* pawn_ending = "7k/8/8/8/8/8/P7/K7 w - -";
constexpr std::int32_t deep = 60;  ///< an entry that every node believes

}  // namespace

void ComputerMoveScene::SetUp() {
    begin_scene();
    engine.book_out = true;
}

void ComputerMoveScene::set(const char* fen) {
    table = position_from_fen(fen);
}

std::vector<std::string> ComputerMoveScene::play() {
    const CapturedOutput output;
    table.Mashine_chod();
    std::istringstream text(output.text());
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) {
        lines.push_back(line);
    }
    return lines;
}

void ComputerMoveScene::plant(std::int32_t score) const {
    for (const std::string& move : legal_moves(table)) {
        put_entry(after(table, {move}), deep, hash_exact, -score);
    }
}

void ComputerMoveScene::repeat_every_move() const {
    for (const std::string& move : legal_moves(table)) {
        stood_in_game(after(table, {move}), 2);
    }
}

void ComputerMoveScene::play_with_score(std::int32_t score) {
    hash_clear();
    game_reset();
    set(pawn_ending);
    plant(score);
    engine.max_depth = 1;
    const std::vector<std::string> lines = play();
    ASSERT_EQ(lines.size(), 2U);
    ASSERT_EQ(lines[0].substr(0, lines[0].find(' ', 2)), "1 " + std::to_string(score));
    hash_clear();
    game_reset();
}

std::vector<std::string> ComputerMoveScene::play_with_zeros(std::int32_t depth) {
    set(pawn_ending);
    repeat_every_move();
    engine.max_depth = depth;
    std::vector<std::string> lines = play();
    EXPECT_GE(lines.size(), 2U);
    lines.resize(lines.size() - 2);
    return lines;
}

void ComputerMoveScene::no_time() {
    engine.st_mode = true;
    engine.st_time = 0;
}

std::string ComputerMoveScene::last_of(const std::vector<std::string>& lines) {
    return lines.empty() ? "" : lines.back();
}

bool ComputerMoveScene::is_move_line(const std::string& line) {
    return line.starts_with("move ");
}
