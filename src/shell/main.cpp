// SPDX-License-Identifier: MIT
// The program: start, read words, end.
#include <iostream>

#include "platform/console.h"
#include "search/hash_table.h"
#include "shell/command_loop.h"
#include "shell/start_up.h"

int main() {
    std::ios::sync_with_stdio(false);
    ignore_interrupt_of_interfaces();
    Table table;
    start_up(table);
    run_command_loop(std::cin, table);
    hash_free();
    return 0;
}
