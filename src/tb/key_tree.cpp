// SPDX-License-Identifier: MIT
// The tree's shape never changes; it is built when the first key is asked for or stored.
#include "tb/key_tree.h"

#include "tb/tb_types.h"

namespace {

constexpr std::size_t outside = 0;  // the word at 0 is the root's count, never a leaf

TbKeyTree& key_tree() {
    static TbKeyTree tree;
    return tree;
}

/// Place of a letter among the counts of its side.
std::size_t kind_of(char letter) {
    switch (letter) {
        case 'n': return 1;
        case 'b': return 2;
        case 'r': return 3;
        case 'q': return 4;
        default: return 0;
    }
}

}  // namespace

TbKeyTree::TbKeyTree() {
    build(0, tb_most_men);
}

std::int32_t TbKeyTree::build(std::size_t level, std::int32_t men_left) {
    const std::size_t node = words_.size();
    const auto children = static_cast<std::size_t>(men_left) + 1;
    words_.push_back(men_left);
    words_.resize(words_.size() + children, 0);
    for (std::size_t spent = 0; spent < children; ++spent) {
        if (level + 1 < tb_count_kinds) {
            const std::int32_t child =
                build(level + 1, men_left - static_cast<std::int32_t>(spent));
            words_[node + 1 + spent] = child;
        } else {
            leaves_.push_back(node + 1 + spent);
        }
    }
    return static_cast<std::int32_t>(node);
}

std::size_t TbKeyTree::leaf(const TbCounts& counts) const {
    std::size_t node = 0;
    for (std::size_t level = 0; level < tb_count_kinds; ++level) {
        const std::int32_t spent = counts[level];
        if (spent < 0 || spent > words_[node]) {
            return outside;
        }
        const std::size_t entry = node + 1 + static_cast<std::size_t>(spent);
        if (level + 1 == tb_count_kinds) {
            return entry;
        }
        node = static_cast<std::size_t>(words_[entry]);
    }
    return outside;
}

std::int32_t TbKeyTree::key(const TbCounts& counts) const {
    const std::size_t place = leaf(counts);
    return place == outside ? 0 : words_[place];
}

bool TbKeyTree::insert(std::int32_t key, const TbCounts& counts) {
    const std::size_t place = leaf(counts);
    if (place == outside) {
        return false;
    }
    words_[place] = key;
    return true;
}

void TbKeyTree::clear() {
    for (const std::size_t place : leaves_) {
        words_[place] = 0;
    }
}

std::int32_t TbLookupKey(const TbCounts& counts) {
    return key_tree().key(counts);
}

bool TbInsertKey(std::int32_t key, const TbCounts& counts) {
    return key_tree().insert(key, counts);
}

void TbParseName(TbCounts& counts, std::string_view name) {
    counts = {};
    std::size_t kings = 0;
    for (const char letter : name) {
        if (letter == 'k') {
            ++kings;
        } else {
            const bool of_first_side = kings <= 1;
            ++counts[kind_of(letter) + (of_first_side ? 0 : tb_kinds_a_side)];
        }
    }
}

void reset_key_tree() {
    key_tree().clear();
}
