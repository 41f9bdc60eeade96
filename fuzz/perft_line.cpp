// SPDX-License-Identifier: MIT
// Lines of perft files: the position that they set up, and its tree to a small depth.
#include <cstddef>
#include <cstdint>
#include <string>

#include "board/perft.h"
#include "board/perft_suite.h"
#include "board/search_line.h"
#include "shell/log.h"
#include "support/captured_output.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::int32_t depth = 2;
    const CapturedOutput output;  // reports of pawns that promote to nothing
    log_enabled = false;
    Table table = perft_position(std::string(data, data + size));
    perft(table, depth, perft_alpha, perft_beta);
    return 0;
}
