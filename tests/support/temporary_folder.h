// SPDX-License-Identifier: MIT
// An empty working directory for the life of an object: the log and the configuration file are
// found there.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

class TemporaryFolder {
  public:
    TemporaryFolder() : before_(std::filesystem::current_path()) {
        std::string name = (std::filesystem::temp_directory_path() / "corvane-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary folder");
        }
        folder_ = name;
        std::filesystem::current_path(folder_);
    }

    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
        std::filesystem::remove_all(folder_, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  private:
    std::filesystem::path before_;
    std::filesystem::path folder_;
};

/// Writes a file of the working directory, byte for byte.
inline void write_file(const std::string& name, const std::string& text) {
    std::ofstream(name, std::ios::binary) << text;
}

/// What a file of the working directory holds; "(none)" if it is not there.
[[nodiscard]] inline std::string read_file(const std::string& name) {
    const std::ifstream file(name, std::ios::binary);
    if (!file.is_open()) {
        return "(none)";
    }
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}
