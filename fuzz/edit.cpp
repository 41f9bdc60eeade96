// SPDX-License-Identifier: MIT
// Positions set up by hand, on the board of a running game, and what the rules of the board make of
// them: lists, attacks, moves made and taken back, the evaluation and a short search.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "board/position_keys.h"
#include "board/set_up.h"
#include "ending_clock.h"
#include "shell/edit_command.h"
#include "shell/engine_state.h"
#include "support/captured_output.h"
#include "support/reset_all.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CapturedOutput output;
    reset_all();
    reset_ending_clock();
    Table table;
    set_start_position(table);
    if (size > 0) {
        table.side = data[0] & 1;
    }
    std::istringstream input(std::string(data, data + size));
    WordReader in(input);
    run_edit(table, in);
    engine.max_depth = 3;
    table.Mashine_chod();
    return 0;
}
