// SPDX-License-Identifier: MIT
// The C library's streams, with 64-bit places on every system.
#include "platform/binary_file.h"

#include <filesystem>
#include <limits>
#include <system_error>

namespace {

#if defined(_WIN32)
bool seek(std::FILE* file, std::int64_t place, int from) {
    return _fseeki64(file, place, from) == 0;
}

std::int64_t tell(std::FILE* file) {
    return _ftelli64(file);
}
#else
bool seek(std::FILE* file, std::int64_t place, int from) {
    return fseeko(file, place, from) == 0;
}

std::int64_t tell(std::FILE* file) {
    return ftello(file);
}
#endif

}  // namespace

std::FILE* open_binary(const char* name) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(name, error) || error) {
        return nullptr;
    }
    return std::fopen(name, "rb");
}

bool seek_binary(std::FILE* file, std::uint64_t place) {
    return place <= std::numeric_limits<std::int64_t>::max() &&
           seek(file, static_cast<std::int64_t>(place), SEEK_SET);
}

std::optional<std::uint64_t> length_of_binary(std::FILE* file) {
    if (!seek(file, 0, SEEK_END)) {
        return std::nullopt;
    }
    const std::int64_t length = tell(file);
    if (length < 0) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(length);
}

std::optional<std::vector<std::uint8_t>> read_binary(const char* name) {
    const BinaryStream file(open_binary(name));
    if (file == nullptr) {
        return std::nullopt;
    }
    const std::optional<std::uint64_t> length = length_of_binary(file.get());
    if (!length || !seek_binary(file.get(), 0)) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes(*length);
    if (std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) {
        return std::nullopt;
    }
    return bytes;
}
