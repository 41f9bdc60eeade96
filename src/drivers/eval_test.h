// SPDX-License-Identifier: MIT
// Symmetry of the evaluation: a position and its mirror image with the colours exchanged must score
// the same for the side to move. No expected values are needed.
#pragma once

#include <cstdint>
#include <string>

// What is compared.
inline constexpr std::int32_t eval_test_static = 1;      ///< the static evaluation
inline constexpr std::int32_t eval_test_quiescence = 0;  ///< the quiescence search

/// Tests each line of a file and prints the verdict.
void eval_test(const std::string& file_name, std::int32_t mode);

/// Tests the board field of one line: 1 if both scores are equal; otherwise prints both positions
/// with their scores and gives 0. The time limit and the start of the clock are changed in
/// quiescence mode; the state of the search is taken as the last search left it.
[[nodiscard]] std::int32_t eval_test_line(const std::string& text, std::int32_t mode);
