// SPDX-License-Identifier: MIT
// The program emd_pack: packs a table half, unpacks a compressed file, or tests one. A file that is
// written gets its name when it is complete.
#include <array>
#include <charconv>
#include <cstdint>
#include <iostream>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "emd/pack.h"
#include "emd/reader.h"
#include "platform/binary_file.h"
#include "platform/new_file.h"

namespace {

constexpr int failed = 1;
constexpr int wrong_arguments = 2;

/// Tells of a fault of a file; gives the exit status.
int fail(const std::string& name, std::string_view fault) {
    std::cerr << "emd_pack: " << name << ": " << fault << '\n';
    return failed;
}

int usage() {
    std::cerr << "usage: emd_pack [--block-shift N] IN OUT   pack IN, blocks of 2^N bytes (0 to 16,"
                 " else 13)\n"
                 "       emd_pack --unpack IN OUT            unpack IN\n"
                 "       emd_pack --check IN                 decode all blocks of IN\n";
    return wrong_arguments;
}

int pack(const std::string& in, const std::string& out, const EmdPackOptions& options) {
    const auto bytes = read_binary(in.c_str());
    if (!bytes) {
        return fail(in, "cannot be read");
    }
    if (bytes->empty()) {
        return fail(in, "is empty");
    }
    const std::vector<std::uint8_t> packed = emd_pack(*bytes, options);
    if (packed.empty()) {
        return fail(in, "is too long for one compressed file");
    }
    NewFile file(out);
    if (!file.write(packed) || !file.finish()) {
        return fail(out, "cannot be written");
    }
    return 0;
}

/// A compressed file, open for reading.
struct Source {
    explicit Source(const std::string& name) : file(open_binary(name.c_str())) {
        if (file != nullptr) {
            reader.emplace(file.get());
        }
    }

    BinaryStream file;
    std::optional<EmdReader> reader;
};

/// Hands all blocks of a file on, in order; gives the exit status. `take` gives false to end.
template <class Take>
int read_blocks(const std::string& in, const Take& take) {
    Source source(in);
    if (!source.reader) {
        return fail(in, "cannot be read");
    }
    if (!source.reader->is_open()) {
        return fail(in, "is no compressed table file, or its header is broken");
    }
    const std::int32_t count = source.reader->decoder().block_count;
    for (std::int32_t i = 0; i < count; ++i) {
        const auto block = source.reader->block(i);
        if (!block) {
            return fail(in, "block " + std::to_string(i + 1) + " of " + std::to_string(count) +
                                " is broken");
        }
        if (!take(*block)) {
            return failed;
        }
    }
    return 0;
}

int unpack(const std::string& in, const std::string& out) {
    std::optional<NewFile> file;
    const auto cannot_write = [&] { return fail(out, "cannot be written"); };
    const int status = read_blocks(in, [&](std::span<const std::uint8_t> block) {
        if (!file) {
            file.emplace(out);  // not before there is something to write
        }
        if (!file->write(block)) {
            cannot_write();
            return false;
        }
        return true;
    });
    if (status != 0) {
        return status;
    }
    return file->finish() ? 0 : cannot_write();
}

int check(const std::string& in) {
    std::uint64_t bytes = 0;
    std::uint64_t blocks = 0;
    const int status = read_blocks(in, [&](std::span<const std::uint8_t> block) {
        bytes += block.size();
        ++blocks;
        return true;
    });
    if (status == 0) {
        std::cout << in << ": " << bytes << " bytes in " << blocks << " blocks\n";
    }
    return status;
}

std::optional<unsigned> read_block_shift(std::string_view text) {
    constexpr unsigned largest = 16;
    unsigned shift = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), shift);
    if (error != std::errc{} || end != text.data() + text.size() || shift > largest) {
        return std::nullopt;
    }
    return shift;
}

int run(std::span<const std::string> words) {
    std::string option;
    if (!words.empty() && words[0].starts_with("--")) {
        option = words[0];
        words = words.subspan(1);
    }
    EmdPackOptions options;
    if (option == "--block-shift" && !words.empty()) {
        const auto shift = read_block_shift(words[0]);
        if (!shift) {
            return usage();
        }
        options.block_shift = *shift;
        option.clear();
        words = words.subspan(1);
    }
    if (option == "--check" && words.size() == 1) {
        return check(words[0]);
    }
    if (option == "--unpack" && words.size() == 2) {
        return unpack(words[0], words[1]);
    }
    if (option.empty() && words.size() == 2) {
        return pack(words[0], words[1], options);
    }
    return usage();
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    try {
        return run(words);
    } catch (const std::bad_alloc&) {
        std::cerr << "emd_pack: out of memory\n";
        return failed;
    }
}
