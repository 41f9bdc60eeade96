// SPDX-License-Identifier: MIT
// The command words and what they do.
#pragma once

#include <string_view>

#include "board/move_list.h"
#include "board/table.h"
#include "shell/word_reader.h"

/// What a command works on: the game's position, the loop's list of legal moves, and the input that
/// its arguments come from.
struct CommandContext {
    Table& table;
    MoveList& legal;
    WordReader& in;
};

/// Runs the command that `word` names, in any case of letters. False: it names none.
[[nodiscard]] bool run_command(std::string_view word, const CommandContext& context);
