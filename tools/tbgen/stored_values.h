// SPDX-License-Identifier: MIT
// Finished tables read back as the engine reads them: registered, decoded and indexed by its own
// code.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "tb/index/half_plan.h"
#include "tb/tb_types.h"
#include "tbgen/endgame.h"
#include "tbgen/half_bytes.h"
#include "tbgen/king_pairs.h"

/// Halves in memory, each read once.
class StoredHalves {
  public:
    /// Registers the tables of a folder, which ends the program if one of them is broken.
    explicit StoredHalves(const std::string& folder);

    /// No table is registered any more.
    ~StoredHalves();

    StoredHalves(const StoredHalves&) = delete;
    StoredHalves& operator=(const StoredHalves&) = delete;

    /// All bytes of a half; null, and `fault` tells why, if it cannot be read.
    [[nodiscard]] const Bytes* half(std::int32_t row, std::int32_t half, std::string& fault);

    /// Forgets what was read.
    void clear() { halves_.clear(); }

  private:
    std::string folder_;
    Bytes cache_;
    std::map<std::pair<std::int32_t, std::int32_t>, Bytes> halves_;
};

/// A position of some men.
struct MenPosition {
    KingSquares kings;
    MenSquares squares;
    std::uint8_t to_move;
    TbSquare en_passant = tb_no_en_passant;
};

/// Some men, the table of them, and what becomes of them by captures and promotions.
class Material {
  public:
    /// Reads both halves of the table and of all that a move can lead to. `depth`: how many moves
    /// out of the table may follow each other. Null, and `fault` tells why, if one is missing.
    [[nodiscard]] static std::unique_ptr<Material> read(const MenList& men, int depth,
                                                        StoredHalves& stored, std::string& fault);

    [[nodiscard]] const MenList& men() const { return men_; }

    /// The men without one of them; null if it cannot be captured.
    [[nodiscard]] const Material* without(std::size_t man) const { return without_[man].get(); }

    /// The men with a pawn promoted; null for other men.
    [[nodiscard]] const Material* promoted(std::size_t man, std::uint8_t kind) const {
        return promoted_[man][kind].get();
    }

    /// The number of a position in its half, a capture en passant included if the half keeps such.
    [[nodiscard]] std::uint32_t number(const MenPosition& position) const;

    /// The stored value; `not_reachable` beyond the half's end. Bare kings are a draw.
    [[nodiscard]] Value value(const MenPosition& position) const;

    /// The bytes of the half that a side is to move in.
    [[nodiscard]] const Bytes& bytes(std::uint8_t to_move) const {
        return *bytes_[half_of(to_move)];
    }

    /// Whether positions with captures en passant have numbers of their own.
    [[nodiscard]] bool keeps_en_passant() const;

  private:
    [[nodiscard]] std::size_t half_of(std::uint8_t to_move) const {
        return to_move ^ (address_.swapped ? 1U : 0U);
    }

    MenList men_;
    EndgameAddress address_;
    std::array<const Bytes*, 2> bytes_{};
    std::array<const TbHalfPlan*, 2> plans_{};
    std::array<std::unique_ptr<Material>, tb_most_men> without_;
    std::array<std::array<std::unique_ptr<Material>, tb_king>, tb_most_men> promoted_;
};
