// SPDX-License-Identifier: MIT
// Words that begin with "--" are options, all others tables.
#include "tbgen/options.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <thread>

#include "tb/table_names.h"
#include "tb/tb_types.h"
#include "tbgen/endgame.h"

namespace {

constexpr std::size_t fewest_men = 3;
constexpr std::size_t most_men = 5;
constexpr std::size_t most_threads = 256;

/// A number of some range, digits alone.
std::optional<std::size_t> read_number(std::string_view text, std::size_t low, std::size_t high) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool whole = error == std::errc{} && end == text.data() + text.size();
    return whole && number >= low && number <= high ? std::optional(number) : std::nullopt;
}

class Reader {
  public:
    Reader(std::span<const std::string> words, std::string& fault) : words_(words), fault_(fault) {
        options_.threads = std::max(1U, std::thread::hardware_concurrency());
    }

    std::optional<Options> read() {
        while (!words_.empty()) {
            const std::string word = words_.front();
            words_ = words_.subspan(1);
            if (!take(word)) {
                return std::nullopt;
            }
        }
        if (rows_.empty() && !options_.help) {
            fault_ = "which tables? Name them, or say --men N";
            return std::nullopt;
        }
        options_.rows.assign(rows_.begin(), rows_.end());
        return options_;
    }

  private:
    bool fail(std::string fault) {
        fault_ = std::move(fault);
        return false;
    }

    bool take(const std::string& word) {
        if (word == "--plain") {
            options_.form = TableForm::plain;
        } else if (word == "--verify") {
            options_.verify = true;
        } else if (word == "--graph") {
            options_.graph = true;
        } else if (word == "--help" || word == "-h") {
            options_.help = true;
        } else if (word == "--out" || word == "--men" || word == "--threads") {
            return take_value(word);
        } else if (word.starts_with("-")) {
            return fail("no such option: " + word);
        } else if (const std::int32_t row = row_of_name(word); row != 0) {
            rows_.insert(row);
        } else {
            return fail("no such table: " + word);
        }
        return true;
    }

    bool take_value(const std::string& option) {
        if (words_.empty() || words_.front().empty()) {
            return fail(option + " needs a value");
        }
        const std::string value = words_.front();
        words_ = words_.subspan(1);
        if (option == "--out") {
            options_.folder = value;
        } else if (option == "--men") {
            const auto men = read_number(value, fewest_men, most_men);
            if (!men) {
                return fail("--men is 3, 4 or 5, not " + value);
            }
            for (std::size_t row = 1; row < tb_names.size(); ++row) {
                if (tb_names[row].size() <= *men) {
                    rows_.insert(static_cast<std::int32_t>(row));
                }
            }
        } else {
            const auto threads = read_number(value, 1, most_threads);
            if (!threads) {
                return fail("--threads is 1 to 256, not " + value);
            }
            options_.threads = *threads;
        }
        return true;
    }

    std::span<const std::string> words_;
    std::string& fault_;
    Options options_;
    std::set<std::int32_t> rows_;
};

}  // namespace

std::optional<Options> read_options(std::span<const std::string> words, std::string& fault) {
    return Reader(words, fault).read();
}

std::string_view usage_text() {
    return "usage: corvane-tbgen [options] [TABLE...]\n"
           "\n"
           "Makes endgame tables, such as kqk or krpkr, and first the ones they depend on.\n"
           "Tables that are complete are left alone.\n"
           "\n"
           "  --men N      all tables of up to N men, kings included: 3, 4 or 5\n"
           "  --out DIR    folder of the tables; the working directory unless told\n"
           "  --threads N  as many as there are cores unless told\n"
           "  --plain      write files that are not compressed\n"
           "  --verify     read the tables back and compare every position with its successors\n"
           "  --graph      make nothing; print a makefile with a target for each table\n";
}
