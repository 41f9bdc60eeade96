// SPDX-License-Identifier: MIT
// Only final names count: an interrupted run leaves parts, which are no tables.
#include "tbgen/table_folder.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>
#include <system_error>

#include "emd/reader.h"
#include "platform/binary_file.h"
#include "platform/new_file.h"
#include "tb/table_names.h"
#include "tbgen/parallel.h"

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

std::optional<Bytes> load_plain(const std::string& name) {
    const File file(open_binary(name.c_str()));
    if (file == nullptr) {
        return std::nullopt;
    }
    const std::optional<std::uint64_t> length = length_of_binary(file.get());
    if (!length || !seek_binary(file.get(), 0)) {
        return std::nullopt;
    }
    Bytes bytes(*length);
    if (std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
        return std::nullopt;
    }
    return bytes;
}

/// Decodes some blocks of a file into their places. False if one is broken.
bool load_blocks(const std::string& name, std::int32_t begin, std::int32_t end, Bytes& bytes) {
    const File file(open_binary(name.c_str()));
    if (file == nullptr) {
        return false;
    }
    EmdReader reader(file.get());
    if (!reader.is_open()) {
        return false;
    }
    for (std::int32_t i = begin; i < end; ++i) {
        const auto block = reader.block(i);
        const std::size_t place =
            static_cast<std::size_t>(i) * static_cast<std::size_t>(reader.decoder().block_size);
        if (!block || place + block->size() > bytes.size()) {
            return false;
        }
        std::copy(block->begin(), block->end(), bytes.begin() + static_cast<std::ptrdiff_t>(place));
    }
    return true;
}

std::optional<Bytes> load_packed(const std::string& name, std::size_t threads) {
    const File file(open_binary(name.c_str()));
    if (file == nullptr) {
        return std::nullopt;
    }
    const EmdReader reader(file.get());
    if (!reader.is_open() || reader.decoder().block_count == 0) {
        return std::nullopt;
    }
    const std::int32_t blocks = reader.decoder().block_count;
    Bytes bytes(static_cast<std::size_t>(blocks - 1) *
                    static_cast<std::size_t>(reader.decoder().block_size) +
                static_cast<std::size_t>(reader.decoder().last_block_size));
    // A part has a reader of its own, whose header takes a while: few parts, of many blocks each.
    const auto parts = static_cast<std::int32_t>(threads);
    std::atomic<bool> sound{true};
    in_parallel(threads, threads, [&](std::size_t i) {
        const auto part = static_cast<std::int32_t>(i);
        const std::int32_t share = blocks / parts + 1;
        const std::int32_t begin = std::min(blocks, part * share);
        if (!load_blocks(name, begin, std::min(blocks, begin + share), bytes)) {
            sound = false;
        }
    });
    return sound ? std::optional(std::move(bytes)) : std::nullopt;
}

}  // namespace

std::string TableFolder::make() const {
    if (path_.empty()) {
        return {};
    }
    std::error_code error;
    std::filesystem::create_directories(path_, error);
    if (std::filesystem::is_directory(path_)) {
        return {};
    }
    return path_ + ": " + (error ? error.message() : "is no folder");
}

std::string TableFolder::file_name(std::int32_t row, std::int32_t half, TableForm form) const {
    std::string name(tb_names[static_cast<std::size_t>(row)]);
    name += half == 0 ? ".nbw" : ".nbb";
    name += form == TableForm::packed ? ".emd" : "";
    return (std::filesystem::path(path_) / name).string();
}

bool TableFolder::has_half(std::int32_t row, std::int32_t half, TableForm form) const {
    std::error_code error;
    const std::string name = file_name(row, half, form);
    return std::filesystem::is_regular_file(name, error) &&
           std::filesystem::file_size(name, error) > 0 && !error;
}

bool TableFolder::has(std::int32_t row, TableForm form) const {
    return has_half(row, 0, form) && has_half(row, 1, form);
}

bool TableFolder::has_any(std::int32_t row) const {
    return has(row, TableForm::packed) || has(row, TableForm::plain);
}

std::optional<Bytes> TableFolder::load(std::int32_t row, std::int32_t half,
                                       std::size_t threads) const {
    if (has_half(row, half, TableForm::plain)) {
        return load_plain(file_name(row, half, TableForm::plain));
    }
    return load_packed(file_name(row, half, TableForm::packed), threads);
}

std::string TableFolder::save(std::int32_t row, std::int32_t half, TableForm form,
                              const Bytes& file) const {
    const std::string name = file_name(row, half, form);
    NewFile out(name);
    if (!out.write(file) || !out.finish()) {
        return name + ": " + out.error();
    }
    return {};
}
