// SPDX-License-Identifier: MIT
// Terminal or not is asked of the descriptors themselves.
#include "platform/console.h"

#include <csignal>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

enum StandardStream { standard_input = 0, standard_error = 2 };

bool is_terminal(StandardStream stream) {
#if defined(_WIN32)
    return _isatty(stream) != 0;
#else
    return isatty(stream) != 0;
#endif
}

}  // namespace

void ignore_interrupt_of_interfaces() {
    if (!is_terminal(standard_input)) {
        std::signal(SIGINT, SIG_IGN);
    }
}

bool error_output_is_terminal() {
    return is_terminal(standard_error);
}
