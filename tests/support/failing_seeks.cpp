// SPDX-License-Identifier: MIT
// The engine calls fseeko and ftello alone; their narrower relatives stay as they are.
#include "support/failing_seeks.h"

#include <cerrno>
#include <cstdio>
#include <sys/types.h>

namespace {

SeekFault present_fault = SeekFault::none;

}  // namespace

FailingSeeks::FailingSeeks(SeekFault fault) {
    present_fault = fault;
}

FailingSeeks::~FailingSeeks() {
    present_fault = SeekFault::none;
}

extern "C" int fseeko(std::FILE* file, off_t place, int from) {
    const SeekFault fault = from == SEEK_END ? SeekFault::of_end : SeekFault::of_place;
    if (fault == present_fault) {
        errno = EIO;
        return -1;
    }
    return std::fseek(file, place, from);
}

extern "C" off_t ftello(std::FILE* file) {
    if (present_fault == SeekFault::of_telling) {
        errno = EIO;
        return -1;
    }
    return std::ftell(file);
}
