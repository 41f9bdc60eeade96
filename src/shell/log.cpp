// SPDX-License-Identifier: MIT
// One open, write and close for each fragment.
#include "shell/log.h"

#include <fstream>
#include <iostream>
#include <utility>

bool log_enabled = true;
bool add_info_in_log = false;
bool new_log_after_start = false;

namespace {

constexpr const char* log_name = "corvane.log";

std::ostream* output = &std::cout;

}  // namespace

void mirror_fragment(std::string_view text) {
    if (text.empty()) {
        return;
    }
    *output << text;
    if (log_enabled) {
        log_fragment(text);
    }
}

void mirror_fragment(LineEnd) {
    *output << '\n' << std::flush;
    if (log_enabled) {
        log_fragment(end_line);
    }
}

void log_fragment(std::string_view text) {
    std::ofstream log(log_name, std::ios::app);
    log << text;
}

void log_fragment(LineEnd) {
    log_fragment(std::string_view("\n"));
}

void open_log() {
    if (log_enabled) {
        std::ofstream log(log_name, new_log_after_start ? std::ios::trunc : std::ios::app);
    }
}

std::ostream* exchange_output(std::ostream* stream) {
    return std::exchange(output, stream);
}

void reset_log() {
    log_enabled = true;
    add_info_in_log = false;
    new_log_after_start = false;
}
