// SPDX-License-Identifier: MIT
// Only final names count: an interrupted run leaves parts, which are no tables.
#include "tbgen/table_folder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

#include "emd/reader.h"
#include "platform/binary_file.h"
#include "platform/new_file.h"
#include "tb/table_names.h"
#include "tb/tb_types.h"
#include "tbgen/endgame.h"
#include "tbgen/half_length.h"
#include "tbgen/parallel.h"

namespace {

/// The length of a plain file; empty if there is none.
std::optional<std::size_t> plain_length(const std::string& name) {
    const BinaryStream file(open_binary(name.c_str()));
    return file == nullptr ? std::nullopt : length_of_binary(file.get());
}

/// The decoded length that a header tells.
std::size_t decoded_length(const TbDecoder& decoder) {
    return static_cast<std::size_t>(decoder.block_count - 1) *
               static_cast<std::size_t>(decoder.block_size) +
           static_cast<std::size_t>(decoder.last_block_size);
}

/// A compressed file that is open, with a reader of its own.
struct PackedFile {
    explicit PackedFile(const std::string& name) : file(open_binary(name.c_str())) {
        if (file != nullptr) {
            reader = std::make_unique<EmdReader>(file.get());
        }
    }

    [[nodiscard]] bool is_open() const {
        return reader != nullptr && reader->is_open() && reader->decoder().block_count > 0;
    }

    BinaryStream file;
    std::unique_ptr<EmdReader> reader;
};

/// The decoded length of a compressed file; empty if there is none or its header is broken.
std::optional<std::size_t> packed_length(const std::string& name) {
    const PackedFile file(name);
    return file.is_open() ? std::optional(decoded_length(file.reader->decoder())) : std::nullopt;
}

/// Decodes some blocks of a file into their places. False if one is broken.
bool load_blocks(EmdReader& reader, std::int32_t begin, std::int32_t end, Bytes& bytes) {
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
    // Headers are read one after the other: the engine counts their memory without a lock.
    std::vector<std::unique_ptr<PackedFile>> parts;
    for (std::size_t i = 0; i < threads; ++i) {
        parts.push_back(std::make_unique<PackedFile>(name));
        if (!parts.back()->is_open()) {
            return std::nullopt;
        }
    }
    const TbDecoder& decoder = parts.front()->reader->decoder();
    const std::int32_t blocks = decoder.block_count;
    const std::int32_t share = blocks / static_cast<std::int32_t>(threads) + 1;
    Bytes bytes(decoded_length(decoder));
    std::atomic<bool> sound{true};
    in_parallel(threads, threads, [&](std::size_t i) {
        const std::int32_t begin = std::min(blocks, static_cast<std::int32_t>(i) * share);
        if (!load_blocks(*parts[i]->reader, begin, std::min(blocks, begin + share), bytes)) {
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
    std::error_code look_error;
    if (std::filesystem::is_directory(path_, look_error)) {
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
    const std::string name = file_name(row, half, form);
    const std::optional<std::size_t> length =
        form == TableForm::plain ? plain_length(name) : packed_length(name);
    return length && *length == half_length(row, half);
}

std::string TableFolder::find_broken() const {
    for (std::int32_t row = 1; row < tb_rows; ++row) {
        for (std::int32_t half = 0; half < tb_halves; ++half) {
            for (const TableForm form : {TableForm::plain, TableForm::packed}) {
                const std::string name = file_name(row, half, form);
                std::error_code ignored;
                if (std::filesystem::exists(name, ignored) && !has_half(row, half, form)) {
                    return name + ": is broken";
                }
            }
        }
    }
    return {};
}

void TableFolder::remove_old_parts() const {
    constexpr auto old = std::chrono::hours(1);  // nobody writes one file for so long
    std::error_code error;
    const std::filesystem::path folder(path_.empty() ? "." : path_);
    std::filesystem::directory_iterator entries(folder, error);
    for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
        const std::filesystem::directory_entry& entry = *entries;
        std::error_code time_error;
        const auto written = entry.last_write_time(time_error);
        const std::string table = entry.path().stem().stem().stem().stem().string();
        if (!time_error && entry.path().extension() == ".part" && row_of_name(table) != 0 &&
            std::filesystem::file_time_type::clock::now() - written > old) {
            std::filesystem::remove(entry.path(), time_error);
        }
    }
}

bool TableFolder::has(std::int32_t row, TableForm form) const {
    return has_half(row, 0, form) && has_half(row, 1, form);
}

bool TableFolder::has_any(std::int32_t row) const {
    return has(row, TableForm::packed) || has(row, TableForm::plain);
}

std::optional<Bytes> TableFolder::load(std::int32_t row, std::int32_t half, std::size_t threads,
                                       std::string& fault) const {
    const TableForm form =
        has_half(row, half, TableForm::plain) ? TableForm::plain : TableForm::packed;
    const std::string name = file_name(row, half, form);
    std::optional<Bytes> bytes =
        form == TableForm::plain ? read_binary(name.c_str()) : load_packed(name, threads);
    if (!bytes || bytes->size() != half_length(row, half)) {
        fault = name + ": cannot be read, or is broken";
        return std::nullopt;
    }
    return bytes;
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
