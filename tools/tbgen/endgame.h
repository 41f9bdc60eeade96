// SPDX-License-Identifier: MIT
// One table as the generator sees it: its men in the order in which positions are laid out, and
// what follows from them. The side named first is 0 and its pawns go up the board.
//
// Positions lie in slabs, one for each pair of kings, and in a slab in words of 64 bits. A bit is
// the square of the last man, the runner; the squares of the one or two men before it, the posts,
// choose the word. The runner is the most mobile man, since its moves stay within a word.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "tb/tb_types.h"
#include "tbgen/square_set.h"

/// A man beside the kings.
struct EndgameMan {
    std::uint8_t side = 0;  ///< 0: the side named first
    std::uint8_t kind = 0;  ///< as on scratch boards: `tb_pawn` to `tb_queen`

    friend bool operator==(const EndgameMan&, const EndgameMan&) = default;
};

/// Squares of up to three men.
using MenSquares = std::array<TbSquare, tb_most_men>;

/// One side's or both sides' men beside the kings; at most three.
class MenList {
  public:
    MenList() = default;

    [[nodiscard]] std::size_t size() const { return count_; }
    [[nodiscard]] const EndgameMan& operator[](std::size_t i) const { return men_[i]; }
    [[nodiscard]] const EndgameMan* begin() const { return men_.data(); }
    [[nodiscard]] const EndgameMan* end() const { return men_.data() + count_; }

    void push_back(EndgameMan man) { men_[count_++] = man; }
    void set(std::size_t i, EndgameMan man) { men_[i] = man; }

    /// The list without its i-th man.
    [[nodiscard]] MenList without(std::size_t i) const;

    /// Whether there are pawns, of any side or of one.
    [[nodiscard]] bool has_pawns() const;
    [[nodiscard]] bool has_pawns_of(std::uint8_t side) const;

  private:
    std::array<EndgameMan, tb_most_men> men_{};
    std::size_t count_ = 0;
};

/// A table and the layout of its positions.
struct Endgame {
    std::int32_t row = 0;  ///< of the catalogue, 1 to 145
    MenList men;           ///< the posts, then the runner; alike men stand together
    bool has_pawns = false;
    bool en_passant = false;  ///< both sides have pawns

    [[nodiscard]] std::size_t posts() const { return men.size() - 1; }
    [[nodiscard]] const EndgameMan& runner() const { return men[men.size() - 1]; }

    /// Words of a slab: 64 for each post.
    [[nodiscard]] std::size_t slab_words() const { return std::size_t{1} << (6 * posts()); }

    /// How far apart the words of neighbouring squares of a post are.
    [[nodiscard]] std::size_t stride(std::size_t post) const {
        return std::size_t{1} << (6 * (posts() - 1 - post));
    }

    /// The square of a post in a word.
    [[nodiscard]] TbSquare post_square(std::size_t word, std::size_t post) const {
        return static_cast<TbSquare>(word / stride(post)) % 64;
    }

    /// The word with a post on another square.
    [[nodiscard]] std::size_t with_post(std::size_t word, std::size_t post, TbSquare to) const {
        return word + to * stride(post) - post_square(word, post) * stride(post);
    }
};

/// The table of a row, 1 to 145.
[[nodiscard]] Endgame endgame_of(std::int32_t row);

/// A table by some men, who need not stand in any order.
struct EndgameAddress {
    std::int32_t row = 0;  ///< 0: bare kings
    bool swapped = false;  ///< side 1 of the men is the one that the table names first
    /// For each man of the table's name, kings left out, which of the given men it is.
    std::array<std::uint8_t, tb_most_men> order{};
};

/// The table of at most three men. Every such set has one.
[[nodiscard]] EndgameAddress address_of(const MenList& men);

/// Squares in the order of the table's name, kings included. The sides of `kings` and `squares` are
/// those of the men that the address was asked for.
[[nodiscard]] std::array<TbSquare, tb_most_men + 2> squares_by_name(
    const EndgameAddress& address, const MenList& men, const std::array<TbSquare, 2>& kings,
    const MenSquares& squares);

/// The row of a name, 1 to 145; 0 if there is no such table.
[[nodiscard]] std::int32_t row_of_name(std::string_view name);

/// Rows of the tables that captures and promotions of a table lead to, each once, in their order.
[[nodiscard]] std::vector<std::int32_t> rows_needed_by(std::int32_t row);
