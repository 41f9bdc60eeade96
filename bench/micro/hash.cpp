// SPDX-License-Identifier: MIT
// The transposition table and the clock, which nearly every node reads.
#include <benchmark/benchmark.h>

#include "platform/clock.h"
#include "search/hash_table.h"
#include "support/position.h"
#include "support/reset_all.h"

namespace {

void probe_slots(benchmark::State& state) {
    reset_all(16);
    Table table = start_position();
    for (auto _ : state) {
        table.hash_index = table.hash_index * 1664525 + 1013904223;
        benchmark::DoNotOptimize(hash_hit(hash_slot(table), table));
    }
}
BENCHMARK(probe_slots);

void clear_the_table(benchmark::State& state) {
    reset_all(16);
    for (auto _ : state) {
        hash_clear();
    }
}
BENCHMARK(clear_the_table)->Unit(benchmark::kMillisecond);

void read_the_clock(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(GetTickCount());
    }
}
BENCHMARK(read_the_clock);

}  // namespace
