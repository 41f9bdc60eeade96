// SPDX-License-Identifier: MIT
// Making and taking back, generating, attack tests, perft.
#include <benchmark/benchmark.h>

#include "board/attack.h"
#include "board/generate.h"
#include "board/make.h"
#include "board/move_list.h"
#include "board/perft.h"
#include "board/search_line.h"
#include "support/position.h"

namespace {

constexpr const char* busy_position =
    "r3k2r/p1ppqpb1/bn2pnp1/3PN3/1p2P3/2N2Q1p/PPPBBPPP/R3K2R w KQkq - 0 1";

void make_and_unmake(benchmark::State& state) {
    Table table = position_from_fen(busy_position);
    MoveList list;
    cur_moves = &list;
    gen_all(table, table.side);
    std::int64_t moves = 0;
    for (auto _ : state) {
        for (std::int32_t i = 1; i <= list.count; ++i) {
            UndoRecord undo;
            const Move& move = list.move(i);
            make(table, move.posFrom, move.posTo, move.posInfo, undo);
            unmake(table, undo);
        }
        benchmark::DoNotOptimize(table);
        moves += list.count;
    }
    state.SetItemsProcessed(moves);
}
BENCHMARK(make_and_unmake);

void generate_all(benchmark::State& state) {
    const Table table = position_from_fen(busy_position);
    MoveList list;
    cur_moves = &list;
    for (auto _ : state) {
        gen_all(table, table.side);
        benchmark::DoNotOptimize(list);
    }
}
BENCHMARK(generate_all);

void generate_captures(benchmark::State& state) {
    const Table table = position_from_fen(busy_position);
    MoveList list;
    cur_moves = &list;
    for (auto _ : state) {
        gen_captures(table, table.side);
        benchmark::DoNotOptimize(list);
    }
}
BENCHMARK(generate_captures);

void king_in_check(benchmark::State& state) {
    Table table = position_from_fen(busy_position);
    for (auto _ : state) {
        benchmark::DoNotOptimize(table);
        benchmark::DoNotOptimize(in_check(table, white));
    }
}
BENCHMARK(king_in_check);

void perft_of_the_start(benchmark::State& state) {
    Table table = start_position();
    std::int64_t leaves = 0;
    for (auto _ : state) {
        TotalNodes = 0;
        perft(table, static_cast<std::int32_t>(state.range(0)), perft_alpha, perft_beta);
        leaves += TotalNodes;
    }
    state.SetItemsProcessed(leaves);
}
BENCHMARK(perft_of_the_start)->Arg(4)->Arg(6)->Unit(benchmark::kMillisecond);

}  // namespace
