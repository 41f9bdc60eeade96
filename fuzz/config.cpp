// SPDX-License-Identifier: MIT
// The configuration file with any content.
#include "shell/config.h"

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "shell/engine_state.h"
#include "support/captured_output.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CapturedOutput output;
    reset_engine_state();
    std::istringstream file(std::string(data, data + size));
    static_cast<void>(read_config_words(file));
    reset_log();
    log_enabled = false;
    return 0;
}
