// SPDX-License-Identifier: MIT
// The command loop on any input: words, numbers, commands, moves, positions set up by hand and
// short searches. The clock runs, so that every search ends.
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "board/set_up.h"
#include "ending_clock.h"
#include "shell/command_loop.h"
#include "shell/word_reader.h"
#include "support/captured_output.h"
#include "support/reset_all.h"

namespace {

/// Perft walks whole trees and has no clock: those two words, in any case of letters, are kept out.
std::string without_perft(std::string text) {
    for (std::size_t i = 0; i + 5 <= text.size(); ++i) {
        if (equal_caseless(std::string_view(text).substr(i, 5), "perft")) {
            text[i] = 'x';
        }
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CapturedOutput output;
    reset_all();
    reset_ending_clock();
    Table table;
    set_start_position(table);
    std::istringstream input(without_perft(std::string(data, data + size)));
    run_command_loop(input, table);
    return 0;
}
