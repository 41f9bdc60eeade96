// SPDX-License-Identifier: MIT
// Everything between the start of the process and the first word.
#pragma once

#include "board/table.h"

/// Reads the configuration, opens the log, greets, allocates the tables and sets up the starting
/// position. The geometry and the evaluation's tables need no step: the compiler has made them.
void start_up(Table& table);
