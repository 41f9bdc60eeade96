// SPDX-License-Identifier: MIT
// Runs every file given, or every file of the folders given, through a fuzz target once: the corpus
// as an ordinary test, with any compiler.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

int replay(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    const std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(data.data(), data.size());
    return 1;
}

int replay_all(const std::filesystem::path& path) {
    if (!std::filesystem::is_directory(path)) {
        return replay(path);
    }
    int runs = 0;
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        runs += replay(entry.path());
    }
    return runs;
}

}  // namespace

int main(int count, char** arguments) {
    int runs = 0;
    for (int i = 1; i < count; ++i) {
        runs += replay_all(arguments[i]);
    }
    std::printf("%d inputs\n", runs);
    return runs > 0 ? 0 : 1;  // a corpus that is empty tests nothing
}
