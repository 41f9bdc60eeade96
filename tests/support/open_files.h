// SPDX-License-Identifier: MIT
// The files that the process has open, and a limit to them for the life of an object.
#pragma once

#include <fcntl.h>
#include <stdexcept>
#include <sys/resource.h>

/// How many files below a number are open.
[[nodiscard]] inline int open_files_below(int end) {
    int open = 0;
    for (int file = 0; file < end; ++file) {
        open += fcntl(file, F_GETFD) != -1 ? 1 : 0;
    }
    return open;
}

[[nodiscard]] inline int open_files() {
    constexpr int enough = 1024;
    return open_files_below(enough);
}

/// No more than so many further files can be opened.
class OpenFileLimit {
  public:
    explicit OpenFileLimit(int further) {
        if (getrlimit(RLIMIT_NOFILE, &before_) != 0) {
            throw std::runtime_error("no limit known");
        }
        int end = 0;
        while (end - open_files_below(end) < further) {
            ++end;
        }
        const rlimit limit = {static_cast<rlim_t>(end), before_.rlim_max};
        if (setrlimit(RLIMIT_NOFILE, &limit) != 0) {
            throw std::runtime_error("no limit set");
        }
    }
    ~OpenFileLimit() { setrlimit(RLIMIT_NOFILE, &before_); }

    OpenFileLimit(const OpenFileLimit&) = delete;
    OpenFileLimit& operator=(const OpenFileLimit&) = delete;

  private:
    rlimit before_{};
};
