// SPDX-License-Identifier: MIT
// Files in which no place can be found, as on a disk with faults: two calls of the C library,
// replaced for the whole test program.
#pragma once

enum class SeekFault { none, of_place, of_end, of_telling };

/// For the life of an object, seeks from the start, seeks from the end, or the question for the
/// place fail.
class FailingSeeks {
  public:
    explicit FailingSeeks(SeekFault fault);
    ~FailingSeeks();
    FailingSeeks(const FailingSeeks&) = delete;
    FailingSeeks& operator=(const FailingSeeks&) = delete;
};
