// SPDX-License-Identifier: MIT
// The static evaluation, with its pawn entry in the cache and without.
#include <benchmark/benchmark.h>

#include "eval/pawn_structure.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

void evaluate_position(benchmark::State& state, const char* fen) {
    reset_all();
    Table table = position_from_fen(fen);
    for (auto _ : state) {
        benchmark::DoNotOptimize(table);
        benchmark::DoNotOptimize(Table::evaluate(table, 0, 0));
    }
}
BENCHMARK_CAPTURE(evaluate_position, middle_game,
                  "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1");
BENCHMARK_CAPTURE(evaluate_position, rook_ending, "8/5pk1/6p1/7p/7P/R5P1/5PK1/1r6 w - - 0 1");
BENCHMARK_CAPTURE(evaluate_position, pawn_ending, "8/1p6/p1p5/P1P2k2/1P3p2/5K2/8/8 w - - 0 1");

void fill_a_pawn_entry(benchmark::State& state) {
    const Table table = start_position();
    PawnEntry entry{};
    for (auto _ : state) {
        fill_pawn_entry(table, entry);
        benchmark::DoNotOptimize(entry);
    }
}
BENCHMARK(fill_a_pawn_entry);

}  // namespace
