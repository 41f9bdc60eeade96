// SPDX-License-Identifier: MIT
// What is known of each table, and what of it has been found on disk.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

#include "tb/decoder.h"
#include "tb/tb_types.h"

/// Heads of the chains of cached blocks that each half has.
inline constexpr std::size_t tb_bucket_count = 32;
using TbBuckets = std::array<std::uint32_t, tb_bucket_count>;

/// One table. The first four fields are constant, but for `size`; the others tell what is on disk.
/// Index of the arrays: 0 for the half with the side named first to move, 1 for the other.
struct TbEntry {
    std::int32_t id;                                  ///< the row's own number
    std::array<TbIndexFunction, tb_halves> index_fn;  ///< place of a position in a half
    std::array<char, 8> name;                         ///< ended by zeros
    std::array<std::uint32_t, tb_halves> size;        ///< bytes when decoded; 0: not known
    std::array<char*, tb_halves> path;                ///< the file to read; null: none
    std::array<std::FILE*, tb_halves> file;           ///< null while it is not open
    std::array<TbDecoder*, tb_halves> decoder;        ///< null for a plain file
    std::array<TbBuckets*, tb_halves> buckets;        ///< null for a half that was never found
    std::array<const std::uint8_t*, tb_halves> view;  ///< the whole half in memory, or null
    std::array<std::uint32_t, tb_halves> view_size;   ///< bytes in `view`
};

/// Row 0 is empty; rows 1 to 5 have three men, 6 to 35 four, 36 to 145 five.
extern std::array<TbEntry, tb_rows> TbCatalogue;

/// Sizes of a table's halves as they are known beforehand; 0 where they are not.
[[nodiscard]] std::array<std::uint32_t, tb_halves> tb_known_size(std::int32_t row);
