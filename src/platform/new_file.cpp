// SPDX-License-Identifier: MIT
// Write, flush to the disk, rename: in this order no crash can leave a short file under the name.
#include "platform/new_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/disk_sync.h"

namespace {

/// A word that no other program writes under at the same time.
std::string own_word() {
    constexpr std::string_view digits = "0123456789abcdef";
    constexpr int length = 8;
    std::random_device random;
    std::string word;
    for (int i = 0; i < length; ++i) {
        word += digits[random() % digits.size()];
    }
    return word;
}

}  // namespace

NewFile::NewFile(std::string name)
    : name_(std::move(name)),
      part_name_(name_ + "." + own_word() + ".part"),
      file_(std::fopen(part_name_.c_str(), "wb")) {
    if (file_ == nullptr) {
        fail();
    }
}

NewFile::~NewFile() {
    if (file_ != nullptr) {
        file_.reset();
        std::error_code ignored;
        std::filesystem::remove(part_name_, ignored);
    }
}

bool NewFile::fail() {
    if (error_.empty()) {
        error_ = std::generic_category().message(errno);
    }
    return false;
}

bool NewFile::write(std::span<const std::uint8_t> bytes) {
    if (!error_.empty()) {
        return false;
    }
    return bytes.empty() ||
           std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) == bytes.size() || fail();
}

bool NewFile::finish() {
    if (!error_.empty()) {
        return false;
    }
    if (std::fflush(file_.get()) != 0 || !sync_file(file_.get())) {
        return fail();
    }
    const bool closed = std::fclose(file_.release()) == 0 || fail();
    std::error_code error;
    if (closed) {
        std::filesystem::rename(part_name_, name_, error);
        error_ = error ? error.message() : "";
    }
    if (!error_.empty()) {
        std::error_code ignored;
        std::filesystem::remove(part_name_, ignored);
        return false;
    }
    sync_folder_of(name_);
    return true;
}
