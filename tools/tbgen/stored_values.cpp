// SPDX-License-Identifier: MIT
// The engine's probe has one cache and no locks, so that halves are read through it first, each
// byte once, and compared afterwards by many threads.
#include "tbgen/stored_values.h"

#include <filesystem>
#include <system_error>

#include "tb/block_cache.h"
#include "tb/catalogue.h"
#include "tb/index/half_index.h"
#include "tb/index/index_family.h"
#include "tb/probe_raw.h"
#include "tb/register.h"
#include "tb/tb_settings.h"

namespace {

constexpr std::size_t cache_blocks = 64;

/// Bytes of a registered half.
std::uint64_t size_of(std::int32_t row, std::size_t half) {
    const TbEntry& entry = TbCatalogue[static_cast<std::size_t>(row)];
    if (entry.decoder[half] != nullptr) {
        return entry.size[half];
    }
    std::error_code error;
    const std::uintmax_t length = std::filesystem::file_size(entry.path[half], error);
    return error ? 0 : length;
}

}  // namespace

StoredHalves::StoredHalves(const std::string& folder)
    : folder_(folder), cache_(cache_blocks * tb_entry_size) {
    tb_use_crc = 1;  // a proof tests the checksums too
    static_cast<void>(TbRegisterAll(folder));
    static_cast<void>(TbCacheInit(cache_.data(), static_cast<std::uint32_t>(cache_.size())));
}

StoredHalves::~StoredHalves() {
    reset_tables();  // the cache's memory goes with this object
}

const Bytes* StoredHalves::half(std::int32_t row, std::int32_t half, std::string& fault) {
    const auto found = halves_.find({row, half});
    if (found != halves_.end()) {
        return &found->second;
    }
    const TbEntry& entry = TbCatalogue[static_cast<std::size_t>(row)];
    const auto at = static_cast<std::size_t>(half);
    const std::string name =
        std::string(entry.name.data()) + (half == 0 ? " (first half)" : " (second half)");
    if (entry.path[at] == nullptr) {
        fault = name + " is not there";
        return nullptr;
    }
    Bytes bytes(size_of(row, at));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::uint8_t>(TbProbeRaw(row, half, static_cast<std::uint32_t>(i)));
    }
    if (entry.path[at] == nullptr || bytes.empty()) {
        fault = name + " cannot be read";
        return nullptr;
    }
    return &halves_.emplace(std::pair{row, half}, std::move(bytes)).first->second;
}

std::unique_ptr<Material> Material::read(const MenList& men, int depth, StoredHalves& stored,
                                         std::string& fault) {
    auto material = std::make_unique<Material>();
    material->men_ = men;
    material->address_ = address_of(men);
    const std::int32_t row = material->address_.row;
    for (std::int32_t half = 0; row != 0 && half < tb_halves; ++half) {
        const auto at = static_cast<std::size_t>(half);
        material->plans_[at] = &tb_plan_of(row, half);
        material->bytes_[at] = stored.half(row, half, fault);
        if (material->bytes_[at] == nullptr) {
            return nullptr;
        }
    }
    for (std::size_t man = 0; depth > 0 && man < men.size(); ++man) {
        material->without_[man] = read(men.without(man), depth - 1, stored, fault);
        if (material->without_[man] == nullptr) {
            return nullptr;
        }
        if (men[man].kind != tb_pawn) continue;
        for (std::uint8_t kind = tb_knight; kind <= tb_queen; ++kind) {
            MenList promoted = men;
            promoted.set(man, {men[man].side, kind});
            material->promoted_[man][kind] = read(promoted, 0, stored, fault);
            if (material->promoted_[man][kind] == nullptr) {
                return nullptr;
            }
        }
    }
    return material;
}

std::uint32_t Material::number(const MenPosition& position) const {
    const std::uint32_t flip = address_.swapped && men_.has_pawns() ? 1 : 0;
    return tb_squares_index(*plans_[half_of(position.to_move)],
                            squares_by_name(address_, men_, position.kings, position.squares),
                            position.en_passant, flip);
}

Value Material::value(const MenPosition& position) const {
    if (address_.row == 0) {
        return drawn;
    }
    const Bytes& half = bytes(position.to_move);
    const std::uint32_t index = number(position);
    return index < half.size() ? static_cast<Value>(half[index]) : not_reachable;
}

bool Material::keeps_en_passant() const {
    return plans_[0] != nullptr && plans_[0]->en_passant_numbers != 0;
}
