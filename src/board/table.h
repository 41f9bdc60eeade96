// SPDX-License-Identifier: MIT
// The class Table: one chess position with its derived data, and the operations that search it.
// The board is held twice: the mailbox says in one load what stands on a square, the bitboards say
// where all the men of a kind stand. Every move keeps both up to date.
#pragma once

#include "board/types.h"

struct MoveList;

/// A position: a plain value, copied by assignment.
class Table {
  public:
    Mailbox<PieceCode> Array{};  ///< piece codes; 16384 on an empty square, 0 off the board
    Bitboard WKnight = 0;
    Bitboard BKnight = 0;
    Bitboard WRook = 0;
    Bitboard BRook = 0;
    Bitboard WBishop = 0;
    Bitboard BBishop = 0;
    Bitboard WQuins = 0;  ///< white queens
    Bitboard BQuins = 0;  ///< black queens
    Bitboard WPawns = 0;
    Bitboard BPawns = 0;
    std::int32_t Kol_figur = 0;  ///< men on the board, both kings included
    std::uint32_t castling = 0;  ///< bits 1 and 2 White short and long, 4 and 8 Black
    Square xywK = e1;            ///< the white king; clearing leaves it, so it starts on the board
    Square xybK = e8;            ///< the black king, likewise
    std::int32_t ep_flag = 0;    ///< 1 when the move just made was a double pawn push
    Square ep_square = 0;        ///< where that pawn stands now, not the square that it skipped
    Side side = white;           ///< side to move
    std::int32_t capture_flag = 0;  ///< 1 when the move just made took a man
    std::uint32_t hash_lock = 0;    ///< key of the men's placement: the table's check word
    std::uint32_t hash_index = 0;   ///< key of the men's placement: the table's slot
    std::uint32_t pawn_hash = 0;    ///< key of the pawns alone

    friend bool operator==(const Table&, const Table&) = default;

    /// What stands on `square` (0..119).
    [[nodiscard]] PieceCode at(Square square) const {
        return Array[static_cast<std::size_t>(square)];
    }
    [[nodiscard]] PieceCode& at(Square square) { return Array[static_cast<std::size_t>(square)]; }

    // The operations below belong to the search and the evaluation and are defined there. Scores
    // are seen from the side to move, on a scale where a pawn is 72; a side mated at `ply` scores
    // ply - 600000.

    /// Finds, announces and makes the computer's move on this position. `side` stays as it is.
    void Mashine_chod();

    /// One iteration at the root over `list`, which must hold legal moves. Neither the position
    /// nor the list changes; `root_scores` and row 0 of `vetka` do. With `stop_flag` set
    /// afterwards the result means nothing.
    [[nodiscard]] static std::int32_t search_root(const Table& position, std::int32_t depth,
                                                  std::int32_t alpha, std::int32_t beta,
                                                  const MoveList& list);

    /// The normal node. `depth` in plies, 0 or below only in check.
    [[nodiscard]] static std::int32_t search_main(Table& position, std::int32_t depth,
                                                  std::int32_t alpha, std::int32_t beta);

    /// The node straight after an extended move.
    [[nodiscard]] static std::int32_t search_extended(Table& position, std::int32_t depth,
                                                      std::int32_t alpha, std::int32_t beta);

    /// The line that verifies a null move.
    [[nodiscard]] static std::int32_t search_null(Table& position, std::int32_t depth,
                                                  std::int32_t alpha, std::int32_t beta);

    /// Captures, promotions and evasions until the position is quiet.
    [[nodiscard]] static std::int32_t quiesce(Table& position, std::int32_t alpha,
                                              std::int32_t beta);

    /// The static score. The bounds are given by every caller and are not used: there is no lazy
    /// exit. Changes nothing but the pawn cache; the position's `pawn_hash` must be right.
    [[nodiscard]] static std::int32_t evaluate(const Table& position, std::int32_t alpha,
                                               std::int32_t beta);

    /// The static score of a position with kings and pawns alone.
    [[nodiscard]] static std::int32_t evaluate_pawn_ending(const Table& position);
};
