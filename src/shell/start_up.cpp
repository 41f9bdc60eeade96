// SPDX-License-Identifier: MIT
// The order of the steps is the order of what a user sees.
#include "shell/start_up.h"

#include "board/set_up.h"
#include "book/book_lines.h"
#include "eval/pawn_cache.h"
#include "platform/clock.h"
#include "platform/random.h"
#include "search/computer_move.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "shell/config.h"
#include "shell/engine_state.h"
#include "shell/log.h"
#include "tb/start_tables.h"

namespace {

void print_banner() {
    mirror("Corvane version " CORVANE_VERSION " by Orlen Vastrik", end_line);
    mirror("2024-2026", end_line);
    mirror("https://corvane.example", end_line);
    mirror(end_line);
}

}  // namespace

void start_up(Table& table) {
    seed_random(calendar_seconds());
    read_config();
    open_log();
    print_banner();
    tb_start_tables(engine.TbPath, engine.tb_cache_megabytes);
    pawn_cache_allocate();
    hash_allocate();
    hash_clear();
    forget_previous_score();
    LoadBooks();
    engine.game_line.clear();
    history_reset();
    set_start_position(table);
}
