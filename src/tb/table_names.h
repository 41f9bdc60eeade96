// SPDX-License-Identifier: MIT
// The names of all tables in the order of their rows. A name lists the men of the stronger side,
// its king first, then those of the other side; within a side queens, rooks, bishops, knights and
// pawns follow one another. The side named first is tied to no colour.
#pragma once

#include <array>
#include <string_view>

#include "tb/tb_types.h"

// clang-format off
/// Index: row of the catalogue, which is the table's number. Row 0 is empty.
inline constexpr std::array<std::string_view, tb_rows> tb_names = {
    "kk",
    // 1: Three men.
    "kpk", "knk", "kbk", "krk", "kqk",
    // 6: Four men, on both sides.
    "kpkp", "knkp", "knkn", "kbkp", "kbkn", "kbkb", "krkp", "krkn", "krkb", "krkr", "kqkp",
    "kqkn", "kqkb", "kqkr", "kqkq",
    // 21: Four men, all on one side.
    "kppk", "knpk", "knnk", "kbpk", "kbnk", "kbbk", "krpk", "krnk", "krbk", "krrk", "kqpk",
    "kqnk", "kqbk", "kqrk", "kqqk",
    // 36: Five men, on both sides.
    "kppkp", "kppkn", "kppkb", "kppkr", "kppkq", "knpkp", "knpkn", "knpkb", "knpkr", "knpkq",
    "knnkp", "knnkn", "knnkb", "knnkr", "knnkq", "kbpkp", "kbpkn", "kbpkb", "kbpkr", "kbpkq",
    "kbnkp", "kbnkn", "kbnkb", "kbnkr", "kbnkq", "kbbkp", "kbbkn", "kbbkb", "kbbkr", "kbbkq",
    "krpkp", "krpkn", "krpkb", "krpkr", "krpkq", "krnkp", "krnkn", "krnkb", "krnkr", "krnkq",
    "krbkp", "krbkn", "krbkb", "krbkr", "krbkq", "krrkp", "krrkn", "krrkb", "krrkr", "krrkq",
    "kqpkp", "kqpkn", "kqpkb", "kqpkr", "kqpkq", "kqnkp", "kqnkn", "kqnkb", "kqnkr", "kqnkq",
    "kqbkp", "kqbkn", "kqbkb", "kqbkr", "kqbkq", "kqrkp", "kqrkn", "kqrkb", "kqrkr", "kqrkq",
    "kqqkp", "kqqkn", "kqqkb", "kqqkr", "kqqkq",
    // 111: Five men, all on one side.
    "kpppk", "knppk", "knnpk", "knnnk", "kbppk", "kbnpk", "kbnnk", "kbbpk", "kbbnk", "kbbbk",
    "krppk", "krnpk", "krnnk", "krbpk", "krbnk", "krbbk", "krrpk", "krrnk", "krrbk", "krrrk",
    "kqppk", "kqnpk", "kqnnk", "kqbpk", "kqbnk", "kqbbk", "kqrpk", "kqrnk", "kqrbk", "kqrrk",
    "kqqpk", "kqqnk", "kqqbk", "kqqrk", "kqqqk",
};
// clang-format on
