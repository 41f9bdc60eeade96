// SPDX-License-Identifier: MIT
// One call for each owner of globals.
#include "support/reset_all.h"

#include <sstream>

#include "book/book_lines.h"
#include "book/book_move.h"
#include "eval/pawn_cache.h"
#include "platform/random.h"
#include "search/computer_move.h"
#include "search/hash_table.h"
#include "search/move_order.h"
#include "search/search_state.h"
#include "shell/engine_state.h"
#include "shell/game_record.h"
#include "shell/log.h"
#include "tb/start_tables.h"

void reset_all(int megabytes) {
    reset_log();
    log_enabled = false;
    reset_engine_state();
    seed_random(0);
    reset_book_lines();
    reset_book_move();
    reset_search_state();
    reset_computer_move();
    tb_stop_tables();
    game_reset();
    history_reset();
    pawn_cache_allocate();
    std::ostringstream nowhere;
    std::ostream* const before = exchange_output(&nowhere);
    hash_mb = megabytes;
    hash_age = '1';
    hash_allocate();
    hash_clear();
    exchange_output(before);
}
