// SPDX-License-Identifier: MIT
// How the process behaves at a terminal and how it behaves under an interface.
#pragma once

/// Where standard input is no terminal, ignores the interrupt signal. Interfaces on POSIX systems
/// send it before a line to every engine that has not asked them not to; the default action would
/// end the program at its second move. At a terminal the key keeps its meaning.
void ignore_interrupt_of_interfaces();

/// Whether standard error is a terminal: progress is shown only to a person.
[[nodiscard]] bool error_output_is_terminal();
