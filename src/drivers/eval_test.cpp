// SPDX-License-Identifier: MIT
// White is to move in the position as it is written, Black in its mirror image.
#include "drivers/eval_test.h"

#include "board/position_keys.h"
#include "board/set_up.h"
#include "platform/text_file.h"
#include "search/search_state.h"
#include "shell/fen_board.h"
#include "shell/log.h"
#include "shell/position_text.h"

namespace {

constexpr std::size_t shortest_line = 7;
constexpr std::uint32_t quiescence_limit_ms = 10000;

struct Window {
    std::int32_t alpha;
    std::int32_t beta;
};

// Intended(eval-test-windows): the bounds are neither symmetrical nor equal for the two positions.
// A score that depends on them fails the test.
constexpr Window static_window = {-100000000, 10000000};
constexpr Window static_window_mirrored = {-1000000, 100000};
constexpr Window quiescence_window = {-100000000, 10000000};
constexpr Window quiescence_window_mirrored = {-900000, 900000};

Table position_of(const std::string& text, FenView view, Side side) {
    Table table;
    clear_position(table);
    read_fen_board(text, table, view);
    table.side = side;
    table.pawn_hash = pawn_hash_from_scratch(table);
    return table;
}

std::int32_t static_score(const Table& table, const Window& window) {
    return Table::evaluate(table, window.alpha, window.beta);
}

std::int32_t quiescence_score(Table& table, const Window& window) {
    time_limit_ms = quiescence_limit_ms;
    search_start_tick = GetTickCount();
    return Table::quiesce(table, window.alpha, window.beta);
}

void print_score(const Table& table, std::int32_t score) {
    dump_position(table);
    mirror("Evaluate: ", score, end_line);
}

}  // namespace

std::int32_t eval_test_line(const std::string& text, std::int32_t mode) {
    const bool is_static = mode == eval_test_static;
    Table table = position_of(text, FenView::as_written, white);
    const std::int32_t score =
        is_static ? static_score(table, static_window) : quiescence_score(table, quiescence_window);
    Table mirrored = position_of(text, FenView::mirrored, black);
    const std::int32_t mirrored_score =
        is_static ? static_score(mirrored, static_window_mirrored)
                  : quiescence_score(mirrored, quiescence_window_mirrored);
    if (score == mirrored_score) {
        return 1;
    }
    mirror("Position: ", text, end_line);
    print_score(table, score);
    print_score(mirrored, mirrored_score);
    return 0;
}

void eval_test(const std::string& file_name, std::int32_t mode) {
    mirror("Testing Evaluate function: ", file_name, end_line);
    TextFile file(file_name);
    if (!file.is_open()) {
        mirror("Sory! I cannot find or access to test!", file_name, end_line);
        return;
    }
    std::int32_t tested = 0;
    std::int32_t failed = 0;
    std::string line;
    while (file.next_line(line)) {
        if (line.size() >= shortest_line) {
            ++tested;
            if (eval_test_line(line, mode) == 0) {
                ++failed;
                mirror("ERROR!", end_line);
            }
        }
    }
    if (failed == 0) {
        mirror("Ok!", end_line);
    } else {
        mirror("Fail!", end_line);
        mirror("Erros: ", failed, "/", tested, end_line);
    }
}
