// SPDX-License-Identifier: MIT
// Endgame tables: the place of a position, a byte from the cache, a block from a compressed half.
#include <benchmark/benchmark.h>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "platform/binary_file.h"
#include "shell/log.h"
#include "support/position.h"
#include "tb/block_cache.h"
#include "tb/catalogue.h"
#include "tb/decoder.h"
#include "tb/index/index_family.h"
#include "tb/search_probe.h"
#include "tb/start_tables.h"

namespace {

const std::string table_folder = CORVANE_BENCH_TABLES;

/// Registers the tables of the tests and gives them a cache; prints nothing.
void start_tables() {
    std::ostringstream nowhere;
    std::ostream* const before = exchange_output(&nowhere);
    log_enabled = false;
    tb_start_tables(table_folder, 32);
    exchange_output(before);
}

/// A man and where it stands, on the board of one of the sides.
struct PlacedMan {
    std::size_t square;
    std::int32_t kind;
    bool of_first;
};

using Position = std::vector<PlacedMan>;

/// Men of a table on squares of their own; pawns off the outer ranks.
Position random_position(const TbHalfPlan& plan, std::mt19937& random) {
    Position position;
    std::vector<bool> taken(mailbox_size, false);
    for (std::uint8_t place = 0; place < plan.men; ++place) {
        std::size_t square = 0;
        do {
            const bool is_pawn = plan.kinds[place] == tb_pawn;
            const std::size_t row = is_pawn ? 1 + random() % 6 : random() % 8;
            square = static_cast<std::size_t>(a8) + row * 10 + random() % 8;
        } while (taken[square]);
        taken[square] = true;
        position.push_back({square, plan.kinds[place], place < plan.second_king});
    }
    return position;
}

/// Both halves of every five-man table in turn. The boards are filled anew for each position, since
/// an index function takes the men off them.
void index_of_five_men(benchmark::State& state) {
    start_tables();
    std::mt19937 random(1);
    struct Question {
        TbIndexFunction index_fn;
        Position position;
    };
    std::vector<Question> questions;
    for (std::int32_t row = tb_first_five_men; row < tb_rows; ++row) {
        for (std::size_t half = 0; half < tb_halves; ++half) {
            const TbHalfPlan& plan = tb_plan_of(row, static_cast<std::int32_t>(half));
            questions.push_back({TbCatalogue[static_cast<std::size_t>(row)].index_fn[half],
                                 random_position(plan, random)});
        }
    }
    TbBoard first{};
    TbBoard second{};
    for (auto _ : state) {
        for (const Question& question : questions) {
            for (const PlacedMan& man : question.position) {
                (man.of_first ? first : second)[man.square] = man.kind;
            }
            benchmark::DoNotOptimize(question.index_fn(first, second, tb_no_en_passant, 0));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(questions.size()));
}
BENCHMARK(index_of_five_men);

/// Bytes of random positions of ten halves, all of them in the cache.
void cached_probe(benchmark::State& state) {
    start_tables();
    std::mt19937 random(1);
    struct Question {
        std::int32_t row;
        std::int32_t half;
        std::uint32_t index;
    };
    std::vector<Question> questions(1U << 14U);
    for (Question& question : questions) {
        question.row = 1 + static_cast<std::int32_t>(random() % 5);
        question.half = static_cast<std::int32_t>(random() % 2);
        const TbEntry& row = TbCatalogue[static_cast<std::size_t>(question.row)];
        question.index = static_cast<std::uint32_t>(
            random() % row.size[static_cast<std::size_t>(question.half)]);
    }
    for (auto _ : state) {
        for (const Question& question : questions) {
            benchmark::DoNotOptimize(TbProbe(question.row, question.half, question.index));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(questions.size()));
}
BENCHMARK(cached_probe);

/// All that a node of the search does: men, key, boards, index, byte, score.
void answer_of_a_node(benchmark::State& state) {
    start_tables();
    const std::vector<Table> positions = {position_from_fen("8/8/8/8/8/2k5/8/K6Q w - - 0 1"),
                                          position_from_fen("8/8/8/4k3/3P4/8/8/K7 b - - 0 1"),
                                          position_from_fen("8/4K3/8/8/8/4r1k1/8/8 w - - 0 1")};
    for (auto _ : state) {
        for (const Table& position : positions) {
            benchmark::DoNotOptimize(tb_answer(position));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(positions.size()));
}
BENCHMARK(answer_of_a_node);

/// Every block of a compressed half read from its file and decoded.
void decode_half(benchmark::State& state, const char* name) {
    std::FILE* const file = open_binary((table_folder + "/" + name).c_str());
    TbDecoder* decoder = nullptr;
    TbBlockState* block_state = nullptr;
    if (file == nullptr || TbReadHeader(&decoder, file, 0) != 0 ||
        TbNewBlockState(&block_state, tb_block_size) != 0) {
        state.SkipWithError("no such half");
        return;
    }
    std::vector<std::uint8_t> room(tb_entry_data_size);
    std::int64_t bytes = 0;
    for (auto _ : state) {
        for (std::int32_t block = 0; block < decoder->block_count; ++block) {
            TbInitBlockState(*block_state, room.data());
            if (TbReadBlock(*block_state, *decoder, file, block) != 0 ||
                TbDecodeBlock(*block_state, *decoder, block_state->decoded_length, 0) != 0) {
                state.SkipWithError("broken block");
                return;
            }
            bytes += block_state->decoded_length;
        }
    }
    state.SetBytesProcessed(bytes);
    TbFreeBlockState(block_state);
    TbFreeDecoder(decoder);
    std::fclose(file);
}
BENCHMARK_CAPTURE(decode_half, kpk_first_side, "kpk.nbw.emd");
BENCHMARK_CAPTURE(decode_half, kqk_second_side, "kqk.nbb.emd");

}  // namespace
