// SPDX-License-Identifier: MIT
// A disk that is nearly full, for the life of an object: no file grows past a number of bytes.
#pragma once

#include <csignal>
#include <stdexcept>
#include <sys/resource.h>

class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : handler_before_(std::signal(SIGXFSZ, SIG_IGN)) {
        if (getrlimit(RLIMIT_FSIZE, &before_) != 0) {
            throw std::runtime_error("no limit known");
        }
        const rlimit limit = {bytes, before_.rlim_max};
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) {
            throw std::runtime_error("no limit set");
        }
    }

    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_before_);
    }

    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    using Handler = void (*)(int);
    Handler handler_before_;
    rlimit before_{};
};
