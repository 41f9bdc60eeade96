// SPDX-License-Identifier: MIT
// From the men on the board to a table. Ten counts lead through a tree of counted arrays; a walk
// that would spend more men than any table has falls out of it at once.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

/// Men by colour and kind: White's pawns, knights, bishops, rooks, queens, then Black's.
inline constexpr std::size_t tb_count_kinds = 10;
inline constexpr std::size_t tb_kinds_a_side = 5;
using TbCounts = std::array<std::int32_t, tb_count_kinds>;

/// The tree. A node is a number of men that are left to spend and, for each number that may be
/// spent here, the place of the next node; the last level holds keys in the place of nodes.
class TbKeyTree {
  public:
    TbKeyTree();

    /// The key of a material, 0 if it has none. Counts that no table has give 0.
    [[nodiscard]] std::int32_t key(const TbCounts& counts) const;

    /// Stores a key. False, and nothing stored, for counts beyond the tree.
    [[nodiscard]] bool insert(std::int32_t key, const TbCounts& counts);

    /// Forgets all keys.
    void clear();

  private:
    std::int32_t build(std::size_t level, std::int32_t men_left);
    [[nodiscard]] std::size_t leaf(const TbCounts& counts) const;

    std::vector<std::int32_t> words_;  ///< all nodes; the root is at 0
    std::vector<std::size_t> leaves_;  ///< where keys stand
};

/// The key of a material: +row where White has the men named first, -row where Black has them, 0
/// where no table is registered.
[[nodiscard]] std::int32_t TbLookupKey(const TbCounts& counts);

/// Stores the key of a material. False for counts beyond the tree.
[[nodiscard]] bool TbInsertKey(std::int32_t key, const TbCounts& counts);

/// The counts of a table's name, the side named first as White. A letter that names no man counts
/// as a pawn.
void TbParseName(TbCounts& counts, std::string_view name);

/// The tree is empty again.
void reset_key_tree();
