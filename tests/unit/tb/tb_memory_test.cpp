// SPDX-License-Identifier: MIT
// Memory that is counted, the way to give up, and the switches.
#include "tb/tb_memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <memory>

#include "support/expect_exit.h"
#include "support/reset_all.h"
#include "tb/tb_settings.h"

namespace {

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
using Bytes = std::unique_ptr<unsigned char, FreeMemory>;

Bytes allocated(std::size_t bytes) {
    return Bytes(static_cast<unsigned char*>(TbAlloc(bytes)));
}

class TbMemory : public testing::Test {
  protected:
    void SetUp() override {
        reset_all();
        tb_alloc_total = 0;
    }
    void TearDown() override { reset_all(); }
};

}  // namespace

TEST_F(TbMemory, IsZeroedAndCounted) {
    { std::memset(allocated(5000).get(), 0xff, 5000); }
    const Bytes memory = allocated(5000);
    EXPECT_EQ(std::count(memory.get(), memory.get() + 5000, 0), 5000);
    EXPECT_EQ(tb_alloc_total, 10'000U);
    const Bytes more = allocated(1);
    EXPECT_EQ(tb_alloc_total, 10'001U);
}

TEST_F(TbMemory, NoBytesAreSomeMemoryToo) {
    const Bytes memory = allocated(0);
    EXPECT_NE(memory, nullptr);
    EXPECT_EQ(tb_alloc_total, 0U);
}

TEST_F(TbMemory, ArrayIsCountedInBytes) {
    const std::unique_ptr<std::uint32_t, FreeMemory> array(tb_alloc_array<std::uint32_t>(32));
    EXPECT_EQ(std::count(array.get(), array.get() + 32, 0U), 32);
    EXPECT_EQ(tb_alloc_total, 128U);
}

TEST_F(TbMemory, CountWrapsIn32Bits) {
    tb_alloc_total = std::numeric_limits<std::uint32_t>::max();
    const Bytes memory = allocated(3);
    EXPECT_EQ(tb_alloc_total, 2U);
}

#if !defined(__SANITIZE_ADDRESS__)
// The address sanitizer ends the program in its own words.
TEST_F(TbMemory, MoreThanThereIsEndsTheProgram) {
    expect_exit("*** Cannot allocate 9223372036854775807 bytes of memory\n",
                [] { static_cast<void>(TbAlloc(std::numeric_limits<std::size_t>::max() / 2)); });
}
#endif

TEST_F(TbMemory, GivingUpSaysNothingItself) {
    expect_exit("", [] { tb_give_up(); });
}

TEST(TbSettings, AreOffAtTheStartAndAfterAReset) {
    tb_verbose = true;
    tb_enum_verbose = true;
    tb_use_crc = 1;
    reset_tb_settings();
    EXPECT_FALSE(tb_verbose);
    EXPECT_FALSE(tb_enum_verbose);
    EXPECT_EQ(tb_use_crc, 0U);
}
