// SPDX-License-Identifier: MIT
// The rows are made of the names and of the few sizes that are known for certain: a wrong size
// would refuse a genuine file, an unknown one refuses none.
#include <algorithm>
#include <utility>

#include "tb/catalogue.h"
#include "tb/index/index_family.h"
#include "tb/table_names.h"

namespace {

struct KnownSize {
    std::string_view name;
    std::array<std::uint32_t, tb_halves> size;  ///< bytes; 0: not known
};

// clang-format off
// Lengths of the published files. A half ends at its last position that exists, so that a length
// may be less than the count of its numbers.
constexpr std::array known_sizes = {
    KnownSize{"kpk",   {    81664,     84012}},
    KnownSize{"knk",   {    26282,     28644}},
    KnownSize{"kqk",   {    25629,     28644}},
    KnownSize{"kpkp",  {  3863492,   3863492}},
    KnownSize{"knkp",  {  4931904,   4981504}},
    KnownSize{"kppk",  {  1806671,         0}},
    KnownSize{"kqqk",  {   698739,    873642}},
    KnownSize{"kppkp", { 84219361,  89391280}},
    KnownSize{"kppkn", {108400260,         0}},
    KnownSize{"krbnk", { 90787358, 104837040}},
    KnownSize{"kqqpk", {123688859, 153741960}},
    KnownSize{"kqqqk", { 12479974,  17472840}},
};
// clang-format on

constexpr std::array<std::uint32_t, tb_halves> known_size_of(std::string_view name) {
    for (const KnownSize& known : known_sizes) {
        if (known.name == name) {
            return known.size;
        }
    }
    return {};
}

template <std::size_t Row>
constexpr TbEntry make_row() {
    TbEntry entry{};
    entry.id = static_cast<std::int32_t>(Row);
    entry.index_fn = tb_index_functions<Row>();
    std::copy(tb_names[Row].begin(), tb_names[Row].end(), entry.name.begin());
    entry.size = known_size_of(tb_names[Row]);
    return entry;
}

template <std::size_t... Rows>
constexpr std::array<TbEntry, tb_rows> make_rows(std::index_sequence<Rows...>) {
    return {make_row<Rows>()...};
}

}  // namespace

constinit std::array<TbEntry, tb_rows> TbCatalogue = make_rows(std::make_index_sequence<tb_rows>{});

std::array<std::uint32_t, tb_halves> tb_known_size(std::int32_t row) {
    return known_size_of(tb_names[static_cast<std::size_t>(row)]);
}
