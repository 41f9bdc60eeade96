// SPDX-License-Identifier: MIT
// Any content of the two book files: a game played by the books alone, hints between the moves, and
// a short search of whatever stands on the board afterwards. The part of the input before the first
// zero byte is White's book, the rest is Black's; without a zero both are the whole.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "board/set_up.h"
#include "book/book_lines.h"
#include "book/book_move.h"
#include "ending_clock.h"
#include "platform/random.h"
#include "shell/engine_state.h"
#include "support/captured_output.h"
#include "support/loaded_books.h"
#include "support/reset_all.h"

namespace {

constexpr int most_plies = 30;

void demand(bool holds) {
    if (!holds) {
        std::abort();
    }
}

void load(const std::string& input) {
    const std::size_t zero = input.find('\0');
    engine.book_out = true;
    load_books(input.substr(0, zero), zero == std::string::npos ? input : input.substr(zero + 1));
    demand(!engine.book_out);
}

void demand_rows(const BookLines& lines, std::int32_t count) {
    demand(count >= 0 && count <= static_cast<std::int32_t>(book_rows));
    for (std::int32_t row = 0; row < count; ++row) {
        demand(lines[static_cast<std::size_t>(row)][book_line_length] == '\0');
    }
}

/// The candidates of a lookup that has just been made: each has a weight, and all weights together
/// are no more than the lines. Gives how many there are.
std::int32_t demand_candidates(const CapturedOutput& output, std::size_t printed_before,
                               std::int32_t rows) {
    const std::string text = output.text().substr(printed_before);
    const auto candidates = static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\n'));
    demand(candidates <= static_cast<std::int32_t>(book_candidates));
    std::int32_t sum = 0;
    for (std::int32_t i = 0; i < candidates; ++i) {
        demand(book_weights[static_cast<std::size_t>(i)] > 0);
        sum += book_weights[static_cast<std::size_t>(i)];
    }
    demand(sum <= rows);
    return candidates;
}

/// One lookup ahead of the move, without effect on the game.
void try_lookup(const CapturedOutput& output, Side side) {
    const std::size_t printed_before = output.text().size();
    engine.root_side = side;
    const Move move = BookMove();
    const std::int32_t candidates = demand_candidates(
        output, printed_before, side == white ? book_white_count : book_black_count);
    demand(engine.book_out == (candidates == 0));
    const Move* const first = book_moves.data();
    const Move* const end = first + candidates;
    demand(candidates > 0 ? std::find(first, end, move) != end : move == Move{});
}

/// Moves of both sides until one of them finds none.
void play_by_the_books(const CapturedOutput& output, Table& table) {
    for (int i = 0; i < most_plies; ++i) {
        BookHint();
        demand(!engine.book_out);
        try_lookup(output, table.side);
        if (engine.book_out) {
            return;
        }
        const std::size_t plies = engine.game_line.size() / 4;
        table.Mashine_chod();
        demand(!engine.book_out && engine.game_line.size() / 4 == plies + 1);
        table.side ^= 1;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CapturedOutput output;
    reset_all();
    reset_ending_clock();
    load(std::string(data, data + size));
    demand_rows(book_white_lines, book_white_count);
    demand_rows(book_black_lines, book_black_count);
    seed_random(static_cast<std::uint32_t>(size));
    Table table;
    set_start_position(table);
    play_by_the_books(output, table);
    engine.book_out = true;
    engine.max_depth = 2;
    table.Mashine_chod();
    return 0;
}
