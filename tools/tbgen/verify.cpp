// SPDX-License-Identifier: MIT
// Positions are set up man by man, pair of kings by pair of kings; alike men in rising order.
#include "tbgen/verify.h"

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "tb/table_names.h"
#include "tbgen/king_pairs.h"
#include "tbgen/parallel.h"
#include "tbgen/pawn_steps.h"
#include "tbgen/successors.h"

namespace {

std::string square_text(TbSquare square) {
    return {static_cast<char>('a' + square % board_width),
            static_cast<char>('1' + square / board_width)};
}

class Verifier {
  public:
    Verifier(std::int32_t row, const Material& material)
        : name_(tb_names[static_cast<std::size_t>(row)]),
          material_(material),
          men_(material.men()),
          pairs_(men_.has_pawns()) {
        for (std::uint8_t side = 0; side < 2; ++side) {
            seen_[side].resize(material.bytes(side).size());
        }
    }

    VerifyResult run(std::size_t threads, const std::function<void(double)>& report) {
        const std::thread::id caller = std::this_thread::get_id();
        std::atomic<std::size_t> done{0};
        in_parallel(threads, pairs_.slabs(), [&](std::size_t slab) {
            MenPosition position{pairs_.kings(slab), {}, 0};
            place_man(0, position);
            ++done;
            if (std::this_thread::get_id() == caller) {
                report(static_cast<double>(done) / static_cast<double>(pairs_.slabs()));
            }
        });
        for (std::uint8_t side = 0; side < 2; ++side) {
            compare_rest(side);
        }
        return {positions_, fault_};
    }

  private:
    void place_man(std::size_t man, MenPosition& position) {
        if (man == men_.size()) {
            for (std::uint8_t side = 0; side < 2; ++side) {
                position.to_move = side;
                compare(position);
            }
            return;
        }
        const bool is_alike = man > 0 && men_[man] == men_[man - 1];
        SquareSet free = men_[man].kind == tb_pawn ? pawn_ranks : all_squares;
        free &= ~(square_bit(position.kings[0]) | square_bit(position.kings[1]));
        for (std::size_t i = 0; i < man; ++i) {
            free &= ~square_bit(position.squares[i]);
        }
        if (is_alike) {
            free &= ~(square_bit(position.squares[man - 1]) - 1);
        }
        for_each_square(free, [&](TbSquare square) {
            position.squares[man] = square;
            place_man(man + 1, position);
        });
    }

    void compare(MenPosition& position) {
        if (is_in_check(men_, position, position.to_move ^ 1U)) {
            return;
        }
        compare_one(position);
        if (material_.keeps_en_passant()) {
            compare_double_steps(position);
        }
    }

    /// The position after each double step that can have led to it past an enemy pawn.
    void compare_double_steps(MenPosition position) {
        const std::uint8_t mover = position.to_move ^ 1U;
        const PawnWay way = pawn_way(mover);
        for (std::size_t man = 0; man < men_.size(); ++man) {
            const TbSquare square = position.squares[man];
            if (men_[man].side != mover || men_[man].kind != tb_pawn ||
                square / board_width != way.double_rank) {
                continue;
            }
            const TbSquare passed = square_behind(way, square, 1);
            MenPosition before = position;
            before.to_move = mover;
            before.squares[man] = square_behind(way, square, 2);
            bool is_free = true;
            bool is_beside = false;
            for (std::size_t i = 0; i < men_.size(); ++i) {
                const TbSquare other = position.squares[i];
                is_free =
                    is_free && (i == man || (other != passed && other != before.squares[man]));
                is_beside = is_beside || (men_[i].side != mover && men_[i].kind == tb_pawn &&
                                          (beside(square_bit(square)) & square_bit(other)) != 0);
            }
            for (const TbSquare king : position.kings) {
                is_free = is_free && king != passed && king != before.squares[man];
            }
            if (is_free && is_beside && !is_in_check(men_, before, position.to_move)) {
                position.en_passant = passed;
                compare_one(position);
                position.en_passant = tb_no_en_passant;
            }
        }
    }

    void compare_one(const MenPosition& position) {
        ++positions_;
        const Value stored = material_.value(position);
        const Value wanted = value_by_successors(material_, position);
        if (stored != wanted || wanted == not_reachable) {
            tell(position, stored, wanted);
        }
        const std::uint32_t number = material_.number(position);
        std::vector<std::uint8_t>& seen = seen_[position.to_move];
        if (number < seen.size()) {
            std::atomic_ref(seen[number]).store(1, std::memory_order_relaxed);
        }
    }

    /// Numbers that no position has hold no value.
    void compare_rest(std::uint8_t side) {
        const Bytes& bytes = material_.bytes(side);
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            if (seen_[side][i] == 0 && static_cast<Value>(bytes[i]) != not_reachable &&
                fault_.empty()) {
                fault_ = name_ + ": a value at " + std::to_string(i) + " of half " +
                         std::to_string(side) + ", where no position is";
            }
        }
    }

    void tell(const MenPosition& position, Value stored, Value wanted) {
        const std::lock_guard lock(mutex_);
        if (!fault_.empty()) {
            return;
        }
        const auto side_text = [](std::uint8_t side) { return side == 0 ? "first" : "second"; };
        fault_ = name_ + ": kings " + square_text(position.kings[0]) + " " +
                 square_text(position.kings[1]) + ", men";
        for (std::size_t i = 0; i < men_.size(); ++i) {
            fault_ += ' ';
            fault_ += " pnbrq"[men_[i].kind];
            fault_ += square_text(position.squares[i]);
            fault_ += std::string(" (") + side_text(men_[i].side) + ")";
        }
        fault_ += std::string(", ") + side_text(position.to_move) + " to move: stored " +
                  std::to_string(stored) + ", by its successors " + std::to_string(wanted);
    }

    std::string name_;
    const Material& material_;
    const MenList& men_;
    KingPairs pairs_;
    std::array<std::vector<std::uint8_t>, 2> seen_;  ///< by side to move; 1: has a position
    std::atomic<std::uint64_t> positions_{0};
    std::mutex mutex_;
    std::string fault_;
};

}  // namespace

VerifyResult verify_table(std::int32_t row, StoredHalves& stored, std::size_t threads,
                          const std::function<void(double)>& report) {
    constexpr int moves_out = 2;  // a capture, and the promotion that goes with it
    VerifyResult result;
    const std::unique_ptr<Material> material =
        Material::read(endgame_of(row).men, moves_out, stored, result.fault);
    if (material == nullptr) {
        return result;
    }
    return Verifier(row, *material).run(threads, report);
}
