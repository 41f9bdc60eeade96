// SPDX-License-Identifier: MIT
// The positions with known perft counts, read from tests/data/perft.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct PerftPosition {
    std::string name;
    std::string fen;
    std::vector<std::uint64_t> chess;  ///< leaves by the rules of chess, depth 1 first
    std::vector<std::uint64_t> here;   ///< leaves that perft counts, where they differ; else empty

    /// The counts that perft is held to.
    [[nodiscard]] const std::vector<std::uint64_t>& counted() const {
        return here.empty() ? chess : here;
    }
};

/// All rows of the file. An empty result: it cannot be read.
[[nodiscard]] std::vector<PerftPosition> read_perft_positions(const std::string& file_name);

/// How many leading depths of `counts` have at most `most` leaves.
[[nodiscard]] std::size_t depths_up_to(const std::vector<std::uint64_t>& counts,
                                       std::uint64_t most);
