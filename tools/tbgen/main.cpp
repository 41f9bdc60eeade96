// SPDX-License-Identifier: MIT
// The program corvane-tbgen: makes endgame tables, one after the other, and proves them. What it
// made goes to standard output, a line a table; faults go to standard error.
#include <algorithm>
#include <iomanip>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/console.h"
#include "tb/index/enumeration.h"
#include "tb/index/half_index.h"
#include "tb/index/index_family.h"
#include "tb/table_names.h"
#include "tbgen/options.h"
#include "tbgen/packing.h"
#include "tbgen/progress.h"
#include "tbgen/solver.h"
#include "tbgen/stored_values.h"
#include "tbgen/table_folder.h"
#include "tbgen/verify.h"
#include "tbgen/work_order.h"

namespace {

constexpr int failed = 1;
constexpr int wrong_arguments = 2;

int fail(std::string_view fault) {
    std::cerr << "corvane-tbgen: " << fault << '\n';
    return failed;
}

/// Positions of both halves, the measure of a table's work.
double work_of(std::int32_t row) {
    double work = 0;
    for (std::int32_t half = 0; half < tb_halves; ++half) {
        work += tb_half_positions(tb_plan_of(row, half));
    }
    return work;
}

double work_of(const std::vector<std::int32_t>& rows) {
    double work = 0;
    for (const std::int32_t row : rows) {
        work += work_of(row);
    }
    return work;
}

std::string name_of(std::int32_t row) {
    return std::string(tb_names[static_cast<std::size_t>(row)]);
}

class Maker {
  public:
    explicit Maker(const Options& options) : options_(options), folder_(options.folder) {}

    int run() {
        if (const std::string fault = folder_.make(); !fault.empty()) {
            return fail(fault);
        }
        folder_.remove_old_parts();
        std::vector<std::int32_t> missing;
        for (const std::int32_t row : in_working_order(options_.rows)) {
            if (!is_complete(row)) {
                missing.push_back(row);
            }
        }
        const double verify_work = options_.verify ? work_of(options_.rows) : 0;
        Progress progress(work_of(missing) + verify_work, error_output_is_terminal());
        for (const std::int32_t row : missing) {
            progress.begin(name_of(row), work_of(row));
            if (const int status = make(row, progress); status != 0) {
                return status;
            }
            progress.end();
        }
        return options_.verify ? verify(progress) : 0;
    }

  private:
    /// A table that was asked for has to be there in the form that was asked for.
    [[nodiscard]] bool is_complete(std::int32_t row) const {
        const bool is_asked_for =
            std::find(options_.rows.begin(), options_.rows.end(), row) != options_.rows.end();
        return is_asked_for ? folder_.has(row, options_.form) : folder_.has_any(row);
    }

    int make(std::int32_t row, Progress& progress) {
        // Of the time that a table takes, the solver has about this share, packing the rest.
        const double solver_share = options_.form == TableForm::packed ? 0.5 : 1;
        std::string fault;
        std::optional<SolvedTable> table =
            Solver(row, options_.threads)
                .solve(
                    [&](std::int32_t needed, std::int32_t half) {
                        return folder_.load(needed, half, options_.threads, fault);
                    },
                    [&](const std::string& phase, double share) {
                        progress.report(phase, share * solver_share);
                    });
        if (!table) {
            progress.clear();
            return fail(fault);
        }
        const std::array<std::size_t, 2> sizes = {table->halves[0].size(), table->halves[1].size()};
        if (options_.form == TableForm::packed) {
            std::optional<std::array<Bytes, 2>> packed =
                pack_halves(table->halves, options_.threads, [&](double share) {
                    progress.report("packing", solver_share + share * (1 - solver_share));
                });
            if (!packed) {
                progress.clear();
                return fail(name_of(row) + " is too long for one compressed file");
            }
            table->halves = std::move(*packed);
        }
        for (std::int32_t half = 0; half < tb_halves; ++half) {
            const Bytes& bytes = table->halves[static_cast<std::size_t>(half)];
            fault = folder_.save(row, half, options_.form, bytes);
            if (!fault.empty()) {
                progress.clear();
                return fail(fault);
            }
        }
        progress.clear();
        std::cout << std::left << std::setw(6) << name_of(row) << std::right << std::setw(11)
                  << sizes[0] << std::setw(11) << sizes[1] << "  longest win " << table->longest[0]
                  << ", of the other side " << table->longest[1] << std::endl;
        return 0;
    }

    int verify(Progress& progress) {
        // The engine ends with a message at the first broken file of a folder, whatever it is of.
        if (const std::string fault = folder_.find_broken(); !fault.empty()) {
            return fail(fault);
        }
        int status = 0;
        StoredHalves stored(options_.folder);
        for (const std::int32_t row : options_.rows) {
            progress.begin(name_of(row), work_of(row));
            const VerifyResult result =
                verify_table(row, stored, options_.threads,
                             [&](double share) { progress.report("verifying", share); });
            progress.end();
            progress.clear();
            stored.clear();
            if (!result.fault.empty()) {
                status = fail(result.fault);
                continue;
            }
            std::cout << std::left << std::setw(6) << name_of(row) << std::right << std::setw(22)
                      << result.positions << "  positions agree" << std::endl;
        }
        return status;
    }

    const Options& options_;
    TableFolder folder_;
};

int print_graph(const Options& options, const std::string& program) {
    const std::string text = makefile(options.rows, program, options.folder, options.form);
    if (text.empty()) {
        return fail("a makefile cannot hold a name such as " + program + " or " + options.folder);
    }
    std::cout << text << std::flush;
    return std::cout ? 0 : fail("standard output cannot be written");
}

int run(const std::string& program, const std::vector<std::string>& words) {
    std::string fault;
    const std::optional<Options> options = read_options(words, fault);
    if (!options) {
        std::cerr << "corvane-tbgen: " << fault << '\n' << usage_text();
        return wrong_arguments;
    }
    if (options->help) {
        std::cout << usage_text();
        return 0;
    }
    if (options->graph) {
        return print_graph(*options, program);
    }
    tb_build_enumeration();
    const int status = Maker(*options).run();
    return status != 0 || std::cout ? status : fail("standard output cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const std::vector<std::string> words(argv + 1, argv + argc);
        return run(argv[0], words);
    } catch (const std::bad_alloc&) {
        return fail("out of memory");
    }
}
