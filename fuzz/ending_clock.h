// SPDX-License-Identifier: MIT
// The clock of the fuzz targets: whatever limit the input has set, every search is out of time
// after a number of readings.
#pragma once

/// Starts the count of readings anew, so that an input does the same in every run.
void reset_ending_clock();
