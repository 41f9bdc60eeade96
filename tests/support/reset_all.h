// SPDX-License-Identifier: MIT
// The whole engine as at program start, for every test that touches its globals.
#pragma once

/// All globals at their start values, the log off, a hash table of `megabytes` and the pawn cache
/// empty. Nothing is printed.
void reset_all(int megabytes = 1);
