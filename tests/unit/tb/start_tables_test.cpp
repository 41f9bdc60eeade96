// SPDX-License-Identifier: MIT
// The tables at the start of the program: what is said, and how much the cache gets.
#include "tb/start_tables.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

#include "platform/memory_limit.h"
#include "support/cache_lists.h"
#include "support/captured_errors.h"
#include "support/captured_output.h"
#include "support/endgame_files.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/block_cache.h"
#include "tb/probe_raw.h"
#include "tb/register.h"
#include "tb/tb_settings.h"

namespace {

constexpr std::uint64_t plenty = std::numeric_limits<std::uint64_t>::max();
std::uint64_t machine_memory = plenty;

}  // namespace

/// Stands in for the engine's own: what a machine has is up to the test.
std::uint64_t memory_limit_bytes() {
    return machine_memory;
}

namespace {

constexpr std::int32_t krk = 4;
constexpr std::uint32_t entries_a_megabyte = (1U << 20U) / 8260;
constexpr const char* checksum_switch = "CORVANE_TB_CHECKSUMS";

/// A variable of the environment for the life of an object.
class Environment {
  public:
    Environment(const char* name, const char* value) : name_(name) {
        const char* const before = std::getenv(name);
        if (before != nullptr) {
            before_ = before;
        }
        if (value != nullptr) {
            setenv(name, value, 1);
        } else {
            unsetenv(name);
        }
    }
    ~Environment() {
        if (before_) {
            setenv(name_, before_->c_str(), 1);
        } else {
            unsetenv(name_);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    const char* name_;
    std::optional<std::string> before_;
};

/// The machine's memory, for the life of an object.
class MachineWith {
  public:
    explicit MachineWith(std::uint64_t bytes) { machine_memory = bytes; }
    ~MachineWith() { machine_memory = plenty; }
    MachineWith(const MachineWith&) = delete;
    MachineWith& operator=(const MachineWith&) = delete;
};

/// What was printed, on both ways.
struct Words {
    std::string output;
    std::string errors;
};

Words start(const std::string& path, std::int32_t megabytes) {
    const CapturedOutput output;
    const CapturedErrors errors;
    tb_start_tables(path, megabytes);
    return {output.text(), errors.text()};
}

class StartTables : public testing::Test {
  protected:
    void SetUp() override { reset_all(); }
    void TearDown() override { reset_all(); }

    static std::string no_memory(std::int32_t megabytes) {
        return "No memory for the cache of the endgame tables (TBCacheSize: " +
               std::to_string(megabytes) + "): they are not used.\n";
    }

  private:
    TemporaryFolder folder_;
    Environment no_checksums_{checksum_switch, nullptr};
};

}  // namespace

TEST_F(StartTables, SaysHowManyMenTheLargestTableHas) {
    copy_half("krk.nbw");
    EXPECT_EQ(start("", 1).output, "Loading 3-man Endgame  Bases...\n");
    EXPECT_EQ(tb_max_men, 3);
    put_half("kqqk.nbw", 698739, {});
    EXPECT_EQ(start("", 1).output, "Loading 4-man Endgame  Bases...\n");
    EXPECT_EQ(tb_max_men, 4);
    put_half("kqqqk.nbw", 12479974, {});
    EXPECT_EQ(start("", 1).output, "Loading 5-man Endgame  Bases...\n");
    EXPECT_EQ(tb_max_men, 5);
}

TEST_F(StartTables, WithoutTablesNothingIsSaidAndThereIsNoCache) {
    const Words words = start("there-is-no-such-folder", 32);
    EXPECT_EQ(words.output, "");
    EXPECT_EQ(words.errors, "");
    EXPECT_EQ(tb_max_men, 0);
    EXPECT_EQ(tb_cache_entries, 0U);
    EXPECT_EQ(tb_cache_base, nullptr);
}

TEST_F(StartTables, CacheIsCountedInMegabytes) {
    copy_half("krk.nbw");
    const Words words = start("", 1);
    EXPECT_EQ(words.errors, "");
    EXPECT_EQ(tb_cache_entries, entries_a_megabyte);
    EXPECT_EQ(free_entries(), entries_a_megabyte);
    static_cast<void>(start("", 32));
    EXPECT_EQ(tb_cache_entries, 4062U);
    static_cast<void>(start("", 2));
    EXPECT_EQ(tb_cache_entries, (2U << 20U) / 8260);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), static_cast<std::int8_t>(read_file("krk.nbw")[0]));
}

TEST_F(StartTables, NoMegabytesTurnTheCacheOff) {
    copy_half("krk.nbw");
    const Words words = start("", 0);
    EXPECT_EQ(words.output, "Loading 3-man Endgame  Bases...\n");
    EXPECT_EQ(words.errors, "");
    EXPECT_EQ(tb_max_men, 3);
    EXPECT_EQ(tb_cache_entries, 0U);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 127);
}

TEST_F(StartTables, BytesAreCountedIn32Bits) {
    copy_half("krk.nbw");
    for (const std::int32_t megabytes : {4096, -4096, 1 << 30}) {
        EXPECT_EQ(start("", megabytes).errors, "");
        EXPECT_EQ(tb_cache_entries, 0U) << megabytes;
    }
    for (const std::int32_t megabytes : {4097, -4095, (1 << 30) + 1}) {
        EXPECT_EQ(start("", megabytes).errors, "");
        EXPECT_EQ(tb_cache_entries, entries_a_megabyte) << megabytes;
    }
}

TEST_F(StartTables, CacheThatTheMachineHasNotIsRefused) {
    constexpr std::uint64_t megabyte = std::uint64_t{1} << 20U;
    copy_half("krk.nbw");
    const MachineWith machine(20 * megabyte);
    for (const std::int32_t megabytes : {20, 21, 2000, -1}) {
        static_cast<void>(start("", 2));
        ASSERT_EQ(tb_cache_entries, (2U << 20U) / 8260);
        const Words words = start("", megabytes);
        EXPECT_EQ(words.output, "Loading 3-man Endgame  Bases...\n");
        EXPECT_EQ(words.errors, no_memory(megabytes));
        EXPECT_EQ(tb_cache_entries, 0U);
        EXPECT_EQ(tb_max_men, 3);
        EXPECT_EQ(TbProbeRaw(krk, 0, 0), 127);
    }
    EXPECT_EQ(start("", 19).errors, "");
    EXPECT_EQ(tb_cache_entries, (19U << 20U) / 8260);
}

#if !defined(__SANITIZE_ADDRESS__)
// The address sanitizer needs the address space that this test takes away.
TEST_F(StartTables, WithoutTheMemoryTheCacheStaysOffAndTheErrorsSayWhy) {
    copy_half("krk.nbw");
    const auto try_it = [] {
        constexpr rlim_t address_space = rlim_t{300} << 20U;
        rlimit limit{};
        getrlimit(RLIMIT_AS, &limit);
        limit.rlim_cur = address_space;
        setrlimit(RLIMIT_AS, &limit);
        bool good = true;
        for (const std::int32_t megabytes : {-1, 4095, 1000, 2147483647}) {
            const Words words = start("", megabytes);
            good = good && words.errors == no_memory(megabytes) && tb_cache_entries == 0 &&
                   words.output == "Loading 3-man Endgame  Bases...\n" && tb_max_men == 3 &&
                   TbProbeRaw(krk, 0, 0) == 127;
        }
        static_cast<void>(start("", 1));
        _exit(good && tb_cache_entries == entries_a_megabyte ? 0 : 1);
    };
    EXPECT_EXIT(try_it(), testing::ExitedWithCode(0), "");
}
#endif

TEST_F(StartTables, ChecksumsAreTestedWhenTheEnvironmentSaysOne) {
    copy_half("krk.nbw.emd");
    int values = 0;
    for (const char* const value : {"0", "", "2", "11", "1 ", "yes", "on"}) {
        const Environment switched(checksum_switch, value);
        static_cast<void>(start("", 1));
        EXPECT_EQ(tb_use_crc, 0U) << value;
        EXPECT_EQ(TbCatalogue[krk].decoder[0]->has_crc, 0U) << value;
        ++values;
    }
    EXPECT_EQ(values, 7);
    {
        const Environment switched(checksum_switch, "1");
        static_cast<void>(start("", 1));
        EXPECT_EQ(tb_use_crc, 1U);
        EXPECT_EQ(TbCatalogue[krk].decoder[0]->has_crc, 1U);
    }
    static_cast<void>(start("", 1));
    EXPECT_EQ(tb_use_crc, 0U);
    EXPECT_EQ(TbCatalogue[krk].decoder[0]->has_crc, 0U);
}

TEST_F(StartTables, StartedAgainItFollowsTheNewPath) {
    std::filesystem::create_directory("a");
    std::filesystem::create_directory("b");
    put_half("a/krk.nbw", 1, {{0, 11}});
    put_half("b/krk.nbw", 2, {{0, 22}});
    static_cast<void>(start("a", 1));
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 11);
    static_cast<void>(start("b", 1));
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 22);
    static_cast<void>(start("there-is-no-such-folder", 1));
    EXPECT_EQ(tb_max_men, 0);
    EXPECT_EQ(TbProbeRaw(krk, 0, 0), 127);
}

TEST_F(StartTables, StoppedItForgetsTheTablesAndTheCache) {
    copy_half("krk.nbw");
    static_cast<void>(start("", 1));
    EXPECT_NE(TbProbeRaw(krk, 0, 0), 127);
    tb_stop_tables();
    EXPECT_EQ(tb_max_men, 0);
    EXPECT_EQ(tb_cache_entries, 0U);
    EXPECT_EQ(tb_cache_base, nullptr);
    EXPECT_EQ(TbCatalogue[krk].path[0], nullptr);
    EXPECT_EQ(TbCatalogue[krk].file[0], nullptr);
    tb_stop_tables();
    EXPECT_EQ(tb_cache_entries, 0U);
}
