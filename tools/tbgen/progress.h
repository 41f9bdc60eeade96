// SPDX-License-Identifier: MIT
// One line on standard error that tells how far the work is; nothing where that is no terminal.
#pragma once

#include <chrono>
#include <string>

class Progress {
  public:
    /// `work`: how much there is to do in all, in any unit.
    Progress(double work, bool is_shown);

    /// Takes the line away.
    ~Progress();

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Begins a table that is so much of the work.
    void begin(std::string name, double work);

    /// The table in work is in a phase now; `share` of it is done, 0 to 1.
    void report(const std::string& phase, double share);

    /// The table in work is done.
    void end();

    /// Takes the line away, so that something else can be printed.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    double work_;
    double done_ = 0;
    double table_ = 0;
    bool is_shown_;
    bool is_drawn_ = false;
    std::string name_;
    Clock::time_point began_ = Clock::now();
    Clock::time_point drawn_;
};

/// A time in words: "12 s", "3 min", "1 h 20 min".
[[nodiscard]] std::string time_text(double seconds);
