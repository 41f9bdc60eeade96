// SPDX-License-Identifier: MIT
// Positions of endgame tables by words: "a1 b3 h8" are the squares of the men of kqk in the order
// of its name. From them the scratch boards that an index function reads.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tb/catalogue.h"
#include "tb/table_names.h"

/// One man of a table's name, and its code on the scratch boards.
[[nodiscard]] inline std::int32_t man_code(char letter) {
    constexpr std::string_view letters = " pnbrqk";
    return static_cast<std::int32_t>(letters.find(letter));
}

/// The mailbox square of a square counted from a1 = 0 to h8 = 63.
[[nodiscard]] inline std::size_t mailbox_square(int square) {
    constexpr int a1_in_mailbox = 91;
    return static_cast<std::size_t>(a1_in_mailbox - square / 8 * 10 + square % 8);
}

/// a1 = 0, b1 = 1, h8 = 63.
[[nodiscard]] inline int square_number(std::string_view text) {
    return (text[1] - '1') * 8 + text[0] - 'a';
}

/// The squares of a text, two letters each with blanks between.
[[nodiscard]] inline std::vector<int> square_numbers(std::string_view text) {
    std::vector<int> squares;
    for (std::size_t at = 0; at < text.size(); at += 3) {
        squares.push_back(square_number(text.substr(at, 2)));
    }
    return squares;
}

/// The squares as text, for messages.
[[nodiscard]] inline std::string square_text(const std::vector<int>& squares) {
    std::string text;
    for (const int square : squares) {
        text += text.empty() ? "" : " ";
        text += static_cast<char>('a' + square % 8);
        text += static_cast<char>('1' + square / 8);
    }
    return text;
}

/// The row of a table.
[[nodiscard]] inline std::int32_t table_row(std::string_view name) {
    const auto found = std::find(tb_names.begin(), tb_names.end(), name);
    if (found == tb_names.end()) {
        throw std::invalid_argument("no table " + std::string(name));
    }
    return static_cast<std::int32_t>(found - tb_names.begin());
}

struct TableBoards {
    TbBoard first{};
    TbBoard second{};
};

/// The men of a table's name on squares in the order of the name.
[[nodiscard]] inline TableBoards boards_of(std::string_view name, const std::vector<int>& squares) {
    TableBoards boards;
    const std::size_t second_king = name.rfind('k');
    for (std::size_t man = 0; man < name.size(); ++man) {
        TbBoard& board = man < second_king ? boards.first : boards.second;
        board[mailbox_square(squares[man])] = man_code(name[man]);
    }
    return boards;
}

/// The engine's number of a position; parameters as for TbIndexFunction.
[[nodiscard]] inline std::uint32_t engine_index(std::string_view name, std::size_t half,
                                                const std::vector<int>& squares, std::uint32_t ep,
                                                std::uint32_t flip) {
    TableBoards boards = boards_of(name, squares);
    const TbEntry& entry = TbCatalogue[static_cast<std::size_t>(table_row(name))];
    return entry.index_fn[half](boards.first, boards.second, ep, flip);
}

/// The same for a position in words, without a capture en passant, the side named first White.
[[nodiscard]] inline std::uint32_t engine_index(std::string_view name, std::size_t half,
                                                std::string_view squares) {
    return engine_index(name, half, square_numbers(squares), tb_no_en_passant, 0);
}
