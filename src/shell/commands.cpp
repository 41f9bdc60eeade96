// SPDX-License-Identifier: MIT
// One table, word to handler. A handler whose argument is no number leaves its setting as it was;
// the word then goes through the loop as a word of its own.
#include "shell/commands.h"

#include <algorithm>
#include <array>
#include <string>

#include "board/generate.h"
#include "board/perft.h"
#include "board/perft_suite.h"
#include "board/set_up.h"
#include "book/book_builder.h"
#include "book/book_move.h"
#include "drivers/epd_test.h"
#include "drivers/eval_test.h"
#include "platform/int32_math.h"
#include "search/computer_move.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "shell/draw_claims.h"
#include "shell/edit_command.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "shell/log.h"
#include "shell/move_input.h"
#include "shell/position_text.h"

namespace {

/// A word of the protocol that needs no answer. Thinking lines are always printed, nothing ponders.
void do_nothing(const CommandContext& /*context*/) {}

void new_game(const CommandContext& context) {
    hash_clear();
    set_start_position(context.table);
    engine.fifty_count = 0;
    engine.force_mode = false;
    engine.st_mode = false;
    engine.make_moves_game = 0;
    engine.all_moves_game = EngineState{}.all_moves_game;
    engine.clock_left = EngineState{}.clock_left;
    engine.max_depth = usual_max_depth;
    engine.hint_valid = false;
    engine.game_plies = 0;
    game_reset();
    game_store(context.table.side, context.table.Array.data());
    history_reset();
    engine.book_out = false;
    engine.game_line.clear();
    hash_clear();
    forget_previous_score();
}

void run_epd_test(const CommandContext& context) {
    const auto file_name = context.in.word();
    if (!file_name) {
        return;
    }
    if (const auto seconds = context.in.integer()) {
        epd_test(*seconds, *file_name);
    }
}

void run_eval_test(const CommandContext& context) {
    if (const auto file_name = context.in.word()) {
        eval_test(*file_name, eval_test_static);
    }
}

void run_quiescence_test(const CommandContext& context) {
    if (const auto file_name = context.in.word()) {
        eval_test(*file_name, eval_test_quiescence);
    }
}

void run_perft_test(const CommandContext& context) {
    constexpr std::int32_t flag = 1;
    if (const auto file_name = context.in.word()) {
        perft_test(*file_name, flag);
    }
}

void edit(const CommandContext& context) {
    run_edit(context.table, context.in);
}

void protover(const CommandContext& context) {
    static_cast<void>(context.in.word());  // the interface's version
    mirror("feature myname=\"Corvane " CORVANE_VERSION "\"", end_line);
    mirror("feature done=1", end_line);
}

void sd(const CommandContext& context) {
    if (const auto depth = context.in.integer()) {
        engine.max_depth = *depth;
    }
}

void st(const CommandContext& context) {
    if (const auto time = context.in.integer()) {
        engine.st_mode = true;
        engine.st_time = *time;
        log_info("ST MODE ", engine.st_time, end_line);
    }
}

void hint(const CommandContext& /*context*/) {
    if (engine.hint_valid) {
        mirror("Hint: ");
        print_move(engine.hint_move.posFrom, engine.hint_move.posTo, engine.hint_move.posInfo);
        mirror(end_line);
    }
    BookHint();
}

void show_table(const CommandContext& context) {
    dump_position(context.table);
}

void force(const CommandContext& /*context*/) {
    engine.force_mode = true;
}

void run_perft(const CommandContext& context) {
    constexpr std::int32_t deepest = 7;
    perft_depths(context.table, deepest);
    mirror("Perft -  done", end_line);
}

/// One search on a copy of the position, without book and with a clock that does not run out. Its
/// traces in the engine state stay: the record and the count of moves grow.
void analyze(const CommandContext& context) {
    constexpr std::int32_t endless_clock = 999999999;
    const std::int32_t clock_left = engine.clock_left;
    const bool book_out = engine.book_out;
    engine.book_out = true;
    engine.clock_left = endless_clock;
    Table copy = context.table;
    copy.Mashine_chod();
    engine.clock_left = clock_left;
    engine.book_out = book_out;
}

void set_time(const CommandContext& context) {
    constexpr std::int32_t ms_per_hundredth = 10;
    if (const auto hundredths = context.in.integer()) {
        engine.clock_left = *hundredths;
        if (engine.st_mode) {
            engine.st_time = *hundredths;
        }
        log_info("<<<<<<<  time ", engine.clock_left, end_line);
        log_info("<<<<<<<  UKRALI VREMJA: ",
                 wrap_sub(expected_clock, wrap_mul(ms_per_hundredth, engine.clock_left)), end_line);
    }
}

void otim(const CommandContext& context) {
    if (const auto hundredths = context.in.integer()) {
        engine.other_clock = *hundredths;
        log_info("<<<<<<<  otim ", engine.other_clock, end_line);
    }
}

/// Passes over the result and its comment, up to a word that ends in a brace.
void result(const CommandContext& context) {
    static_cast<void>(context.in.word());
    auto word = context.in.word();
    while (word && !word->ends_with('}')) {
        word = context.in.word();
    }
}

void create_book(const CommandContext& context) {
    if (const auto file_name = context.in.word()) {
        createbook(*file_name);
    }
}

void level(const CommandContext& context) {
    constexpr std::int32_t most_moves = 200;
    const auto moves = context.in.integer();
    if (!moves) {
        return;
    }
    engine.all_moves_game = std::min(*moves, most_moves);
    static_cast<void>(context.in.word());  // the base time; the clock comes from `time`
    if (const auto increment = context.in.integer()) {
        engine.time_plus = *increment;
    }
}

void all_moves(const CommandContext& context) {
    gen_legal(context.table, context.table.side);
    score_moves(context.table, context.legal);
    print_moves(context.legal);
}

void strong(const CommandContext& context) {
    if (const auto strength = context.in.integer()) {
        set_strong_level(*strength);
    }
}

void go(const CommandContext& context) {
    engine.force_mode = false;
    if (!claim_before_go(context.table)) {
        let_computer_move(context.table);
    }
}

void white_to_move(const CommandContext& context) {
    context.table.side = white;
}

void black_to_move(const CommandContext& context) {
    context.table.side = black;
}

struct Command {
    std::string_view word;
    void (*run)(const CommandContext&);
};

constexpr std::array<Command, 32> commands = {{
    {"xboard", do_nothing},
    {"accepted", do_nothing},
    {"post", do_nothing},
    {"done", do_nothing},
    {"myname", do_nothing},
    {"new", new_game},
    {"epdtest", run_epd_test},
    {"test", run_epd_test},
    {"perfttest", run_perft_test},
    {"evaltest", run_eval_test},
    {"qevaltest", run_quiescence_test},
    {"edit", edit},
    {"hard", do_nothing},
    {"protover", protover},
    {"sd", sd},
    {"easy", do_nothing},
    {"st", st},
    {"hint", hint},
    {"table", show_table},
    {"force", force},
    {"perft", run_perft},
    {"analyze", analyze},
    {"time", set_time},
    {"otim", otim},
    {"result", result},
    {"createbook", create_book},
    {"level", level},
    {"all_moves", all_moves},
    {"strong", strong},
    {"go", go},
    {"white", white_to_move},
    {"black", black_to_move},
}};

}  // namespace

bool run_command(std::string_view word, const CommandContext& context) {
    const auto* const found =
        std::find_if(commands.begin(), commands.end(),
                     [&](const Command& command) { return equal_caseless(command.word, word); });
    if (found == commands.end()) {
        return false;
    }
    found->run(context);
    return true;
}
