// SPDX-License-Identifier: MIT
// The search runs without book, aspiration window and time allocation, so that a test measures the
// search alone.
#include "drivers/epd_test.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "board/generate.h"
#include "board/position_keys.h"
#include "drivers/epd_line.h"
#include "drivers/epd_solution.h"
#include "platform/int32_math.h"
#include "platform/text_file.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/root.h"
#include "search/search_state.h"
#include "search/thinking_line.h"
#include "shell/engine_state.h"
#include "shell/log.h"
#include "shell/position_text.h"

namespace {

constexpr std::int32_t deepest_iteration = 100;
constexpr std::int32_t infinity = 600001;
constexpr std::int32_t ms_per_second = 1000;

/// Speeds are whole thousands of nodes a second, that is nodes a millisecond.
constexpr std::string_view speed_unit = " KNodes/sec";

/// What a suite has come to.
class SuiteResult {
  public:
    void add(bool solved, std::uint32_t speed) {
        solved_.push_back(solved);
        max_speed_ = std::max(max_speed_, speed);
        min_speed_ = solved_.size() == 1 ? speed : std::min(min_speed_, speed);
        sum_of_speeds_ += speed;
    }

    void print() const {
        const auto errors = std::count(solved_.begin(), solved_.end(), false);
        const auto total = static_cast<std::ptrdiff_t>(solved_.size());
        // A file without a test has no average speed: 0 stands for it.
        const std::uint64_t speed = solved_.empty() ? 0 : sum_of_speeds_ / solved_.size();
        mirror("Total: ", total, end_line);
        mirror("Solutions: ", total - errors, end_line);
        mirror("Errors: ", errors, end_line);
        mirror("MaxSpeed: ", max_speed_, speed_unit, end_line);
        mirror("MinSpeed: ", min_speed_, speed_unit, end_line);
        mirror("Speed: ", speed, speed_unit, end_line);
        mirror("Solitions", end_line);
        print_numbers(true);
        mirror(end_line);
        mirror("NoSolitions", end_line);
        print_numbers(false);
    }

  private:
    void print_numbers(bool solved) const {
        for (std::size_t i = 0; i < solved_.size(); ++i) {
            if (solved_[i] == solved) {
                mirror(i + 1, " ");
            }
        }
        mirror(end_line);
    }

    std::vector<bool> solved_;  ///< a test each, in the order of the file
    std::uint32_t max_speed_ = 0;
    std::uint32_t min_speed_ = 0;
    std::uint64_t sum_of_speeds_ = 0;
};

void print_heading(std::size_t number, std::string_view line, const Table& table) {
    mirror(end_line);
    mirror(number, " ", line, end_line);
    dump_position(table);
}

/// Fills and shows the list of legal moves and readies all that the search reads.
void prepare(Table& table, MoveList& list) {
    hash_clear();
    compute_keys(table);
    cur_moves = &list;
    list.move(1) = Move{};  // what is announced when there is not even a move to try
    gen_legal(table, table.side);
    score_moves(table, list);
    print_moves(list);
    TotalNodes = 0;
    ply = 0;
    vetka = {};
    search_start_tick = GetTickCount();
    stop_flag = 0;
    mirror("Start...", end_line);
    hash_flip_age();
}

std::uint32_t elapsed_ms() {
    return GetTickCount() - search_start_tick;
}

/// Deepens until the time is up; the best move then stands first in the list.
void deepen(const Table& table, MoveList& list) {
    for (iteration_depth = 1; iteration_depth <= deepest_iteration && list.count > 1;
         ++iteration_depth) {
        ply = 0;
        follow_pv = 1;
        const std::int32_t score =
            Table::search_root(table, iteration_depth, -infinity, infinity, list);
        if (stop_flag != 0) {
            return;
        }
        sort_root_list(list);
        print_iteration(score, elapsed_ms());
    }
}

/// One test, on the board of the suite.
void test_line(const std::string& line, std::size_t number, Table& table, SuiteResult& result) {
    history_reset();
    set_epd_position(line, table);
    engine.root_side = table.side;
    print_heading(number, line, table);
    MoveList list;
    prepare(table, list);
    deepen(table, list);

    const Move found = list.move(1);
    mirror("move: ");
    print_move(found.posFrom, found.posTo, found.posInfo);
    mirror(end_line);
    const bool solved = is_solved(epd_solutions(line), table, found);
    mirror(solved ? "Ok " : "Error ");
    const std::uint32_t speed = TotalNodes / std::max<std::uint32_t>(elapsed_ms(), 1);
    mirror("Speed: ", speed, speed_unit, end_line);
    result.add(solved, speed);
}

}  // namespace

void epd_test(std::int32_t seconds, const std::string& file_name) {
    mirror("EPD-Test: ", file_name, end_line);
    mirror("Time:", seconds, end_line);
    mirror(end_line);
    time_limit_ms = static_cast<std::uint32_t>(wrap_mul(ms_per_second, seconds));
    TextFile file(file_name);
    if (!file.is_open()) {
        mirror("Can't find test ", file_name, end_line);
        return;
    }
    SuiteResult result;
    // Intended(epd-kings-stay): one board for the whole suite. A line without a king is tested with
    // that king where the last line had it, as clearing a position leaves the king squares.
    Table table;
    std::size_t number = 0;
    std::string line;
    while (file.next_line(line)) {
        if (line.size() >= shortest_epd_line) {
            ++number;
            test_line(line, number, table, result);
        }
    }
    result.print();
}
