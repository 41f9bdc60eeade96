// SPDX-License-Identifier: MIT
// Standard error, caught for the life of an object.
#pragma once

#include <iostream>
#include <sstream>
#include <string>

class CapturedErrors {
  public:
    CapturedErrors() : before_(std::cerr.rdbuf(text_.rdbuf())) {}
    ~CapturedErrors() { std::cerr.rdbuf(before_); }
    CapturedErrors(const CapturedErrors&) = delete;
    CapturedErrors& operator=(const CapturedErrors&) = delete;

    /// What was said so far.
    [[nodiscard]] std::string text() const { return text_.str(); }

  private:
    std::ostringstream text_;
    std::streambuf* before_;
};
