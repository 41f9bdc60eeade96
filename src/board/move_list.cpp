// SPDX-License-Identifier: MIT
// The pointer to the list being filled.
#include "board/move_list.h"

MoveList* cur_moves = nullptr;
