// SPDX-License-Identifier: MIT
// Faults that end the program: tried in a child process, whose output and exit code are compared.
#pragma once

#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <string>

#include "shell/log.h"

/// Expects that `act` ends the program with exit code 1 and prints a message and nothing else.
template <class Act>
void expect_exit(const std::string& message, const Act& act) {
    const auto in_child = [&act] {
        exchange_output(&std::cerr);
        act();
        std::exit(0);
    };
    EXPECT_EXIT(in_child(), testing::ExitedWithCode(1), testing::Eq(message)) << message;
}
