// SPDX-License-Identifier: MIT
// Board fields of FEN text, whatever they hold, and the board's rules on what comes out.
#include "shell/fen_board.h"

#include <cstddef>
#include <cstdint>
#include <string>

#include "board/set_up.h"
#include "ending_clock.h"
#include "shell/engine_state.h"
#include "support/captured_output.h"
#include "support/reset_all.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CapturedOutput output;
    reset_all();
    reset_ending_clock();
    Table table;
    clear_position(table);
    if (size > 0) {
        table.side = data[0] & 1;
        table.castling = (data[0] >> 1) & all_rights;
    }
    read_fen_board(std::string(data, data + size), table, FenView::as_written);
    engine.max_depth = 2;
    table.Mashine_chod();
    return 0;
}
