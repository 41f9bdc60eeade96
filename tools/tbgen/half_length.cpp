// SPDX-License-Identifier: MIT
// Numbers rise with the pairs of kings, so that the last position is one of the last pair that has
// any. The two tables with a section of captures en passant behind the others have known lengths.
#include "tbgen/half_length.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "tb/catalogue.h"
#include "tbgen/endgame.h"
#include "tbgen/king_pairs.h"
#include "tbgen/legality.h"
#include "tbgen/numbering.h"

namespace {

/// The highest number of a legal position of a slab, plus 1; 0 if it has none.
std::uint32_t end_of_slab(const Endgame& endgame, const KingSquares& kings, std::uint8_t to_move,
                          const Numbering& numbering) {
    const EndgameAddress address = address_of(endgame.men);
    const Numbering::Frame frame = numbering.frame(kings);
    std::uint32_t end = 0;
    for (std::size_t word = 0; word < endgame.slab_words(); ++word) {
        const SquareSet possible = possible_squares(endgame, kings, word);
        if (possible == 0) continue;
        MenSquares squares{};
        for (std::size_t post = 0; post < endgame.posts(); ++post) {
            squares[post] = endgame.post_square(word, post);
        }
        for_each_square(possible & ~attacking_squares(endgame, kings, word, to_move),
                        [&](TbSquare square) {
                            squares[endgame.posts()] = square;
                            MenSquares named{};
                            for (std::size_t i = 0; i < endgame.men.size(); ++i) {
                                named[i] = squares[address.order[i]];
                            }
                            end = std::max(end, numbering.number(frame, named) + 1);
                        });
    }
    return end;
}

}  // namespace

std::uint32_t half_length(std::int32_t row, std::int32_t half) {
    if (const std::uint32_t known = tb_known_size(row)[static_cast<std::size_t>(half)];
        known != 0) {
        return known;
    }
    const Endgame endgame = endgame_of(row);
    const KingPairs pairs(endgame.has_pawns);
    const Numbering numbering(row, half);
    std::vector<std::size_t> slabs(pairs.slabs());
    std::iota(slabs.begin(), slabs.end(), std::size_t{0});
    const auto base = [&](std::size_t slab) { return numbering.frame(pairs.kings(slab)).base; };
    std::sort(slabs.begin(), slabs.end(),
              [&](std::size_t a, std::size_t b) { return base(a) > base(b); });
    for (const std::size_t slab : slabs) {
        const std::uint32_t end =
            end_of_slab(endgame, pairs.kings(slab), static_cast<std::uint8_t>(half), numbering);
        if (end != 0) {
            return end;
        }
    }
    return 0;
}
