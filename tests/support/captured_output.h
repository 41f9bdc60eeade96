// SPDX-License-Identifier: MIT
// Standard output, caught for the life of an object.
#pragma once

#include <sstream>
#include <string>

#include "shell/log.h"

class CapturedOutput {
  public:
    CapturedOutput() : before_(exchange_output(&stream_)) {}
    ~CapturedOutput() { exchange_output(before_); }
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    /// What was printed so far.
    [[nodiscard]] std::string text() const { return stream_.str(); }

  private:
    std::ostringstream stream_;
    std::ostream* before_;
};
