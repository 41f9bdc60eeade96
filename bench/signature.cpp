// SPDX-License-Identifier: MIT
// The bench signature: fixed-depth searches over fixed positions through the real driver. Standard
// output holds a line a position and the total of nodes, equal on every build and machine; time and
// speed go to standard error. Any change of the tree shows here.
#include <chrono>
#include <fstream>
#include <iostream>
#include <limits>
#include <string>

#include "search/search_state.h"
#include "shell/engine_state.h"
#include "shell/log.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

constexpr int table_megabytes = 16;
constexpr std::int32_t search_depth = 7;

/// Lets the driver move in the position, from empty tables and without a limit of time.
void search_position(const std::string& fen) {
    reset_all(table_megabytes);
    engine.max_depth = search_depth;
    engine.book_out = true;
    // The driver multiplies by ten in 32 bits; all of this is for one move, 24 days.
    engine.st_mode = true;
    engine.st_time = std::numeric_limits<std::int32_t>::max() / 10;
    Table table = position_from_fen(fen);
    table.Mashine_chod();
}

}  // namespace

int main(int count, char** arguments) {
    using Clock = std::chrono::steady_clock;
    std::ifstream file(count > 1 ? arguments[1] : CORVANE_BENCH_POSITIONS);
    std::ofstream nowhere;
    exchange_output(&nowhere);
    std::uint64_t nodes = 0;
    std::int32_t positions = 0;
    Clock::duration used{};
    for (std::string fen; std::getline(file, fen);) {
        if (fen.empty() || fen[0] == '#') {
            continue;
        }
        const auto start = Clock::now();
        search_position(fen);
        used += Clock::now() - start;
        nodes += TotalNodes;
        ++positions;
        std::cout << positions << ' ' << TotalNodes << ' ' << fen << '\n';
    }
    if (positions == 0) {
        std::cerr << "signature: no positions\n";
        return 1;
    }
    std::cout << "nodes " << nodes << '\n' << std::flush;
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(used).count();
    std::cerr << "milliseconds " << ms << "\nnodes per second "
              << nodes * 1000 / static_cast<std::uint64_t>(ms > 0 ? ms : 1) << '\n';
    return 0;
}
