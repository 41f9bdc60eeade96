// SPDX-License-Identifier: MIT
// A word is a command, a move, or unknown. Lines mean nothing: a command reads its arguments
// itself, as further words.
#include "shell/command_loop.h"

#include <string>

#include "board/generate.h"
#include "shell/commands.h"
#include "shell/engine_state.h"
#include "shell/log.h"
#include "shell/move_input.h"

namespace {

constexpr std::string_view quit_word = "quit";

/// Reports a word that is neither command nor move. With both switches on it stands in the log
/// twice: once as a copy of what was printed, once as information.
void report_unknown(const std::string& word) {
    constexpr std::string_view unknown_command = "Error (unknown command): ";
    if (engine.check_on) {
        mirror(unknown_command, word, end_line);
    }
    log_info(unknown_command, word, end_line);
}

}  // namespace

void run_command_loop(std::istream& input, Table& table) {
    WordReader in(input);
    MoveList legal;
    bool quit = false;
    while (!quit) {
        const auto word = in.word();
        if (!word) {
            return;
        }
        quit = equal_caseless(*word, quit_word);
        log_info("<<<<<<<<<<<<<< Stroka: ", *word, end_line);
        cur_moves = &legal;
        gen_legal(table, table.side);
        if (!run_command(*word, {table, legal, in}) && !play_move_word(table, legal, *word) &&
            !quit) {
            report_unknown(*word);
        }
    }
}
