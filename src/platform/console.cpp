// SPDX-License-Identifier: MIT
// Terminal or interface: the one question is whether standard input is a terminal.
#include "platform/console.h"

#include <csignal>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

bool input_is_terminal() {
#if defined(_WIN32)
    return _isatty(0) != 0;
#else
    return isatty(STDIN_FILENO) != 0;
#endif
}

}  // namespace

void ignore_interrupt_of_interfaces() {
    if (!input_is_terminal()) {
        std::signal(SIGINT, SIG_IGN);
    }
}
