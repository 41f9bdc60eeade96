// SPDX-License-Identifier: MIT
// The engine's numbers against data that another program made: the index of positions of every
// table, and value and score of positions of the three-man tables, from plain and from packed
// files.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "support/captured_output.h"
#include "support/position.h"
#include "support/reset_all.h"
#include "support/temporary_folder.h"
#include "tb/catalogue.h"
#include "tb/probe_raw.h"
#include "tb/register.h"
#include "tb/search_probe.h"
#include "tb/start_tables.h"

namespace {

const std::string data_folder = CORVANE_TEST_DATA "/tb/";

/// One line: a position and what is expected of it; raw byte and score only where there are files.
struct Row {
    std::string fen;
    std::int32_t key = 0;
    std::int32_t half = 0;
    std::uint32_t flip = 0;
    std::uint32_t index = 0;
    std::int32_t raw = 0;
    std::int32_t score = 0;
};

std::vector<Row> read_rows(const std::string& name) {
    std::vector<Row> rows;
    std::ifstream file(data_folder + name);
    std::string line;
    while (std::getline(file, line)) {
        Row row;
        row.fen = line.substr(0, line.find(" | "));
        std::istringstream numbers(line.substr(line.find(" | ") + 3));
        numbers >> row.key >> row.half >> row.flip >> row.index >> row.raw >> row.score;
        rows.push_back(row);
    }
    return rows;
}

void expect_address(const Table& position, const Row& row) {
    const TbAddress address = tb_address(position);
    EXPECT_EQ(address.tb_key, row.key) << row.fen;
    EXPECT_EQ(address.tb_half, row.half) << row.fen;
    EXPECT_EQ(address.tb_flip, row.flip) << row.fen;
    ASSERT_NE(address.row, 0) << row.fen;
    EXPECT_EQ(tb_index_of(position, address), row.index) << row.fen;
}

class RealDataTest : public testing::Test {
  protected:
    void SetUp() override { reset_all(1); }
    void TearDown() override { reset_all(1); }
};

TEST_F(RealDataTest, IndexesOfAllTables) {
    CapturedOutput output;
    ASSERT_EQ(TbRegisterAll(data_folder + "nowhere"), 0);
    for (std::size_t id = 1; id < TbCatalogue.size(); ++id) {
        ASSERT_TRUE(TbRegisterTable(TbCatalogue[id]));
    }
    const std::vector<Row> rows = read_rows("indexes.expected");
    for (const Row& row : rows) {
        expect_address(position_from_fen(row.fen), row);
    }
    EXPECT_EQ(rows.size(), 387U);
}

/// Registers the three-man tables of a folder and compares all positions.
void expect_values(const std::string& folder) {
    CapturedOutput output;
    tb_start_tables(folder, 1);
    EXPECT_EQ(output.text(), "Loading 3-man Endgame  Bases...\n");
    const std::vector<Row> rows = read_rows("positions.expected");
    int without_table = 0;
    for (const Row& row : rows) {
        const Table position = position_from_fen(row.fen);
        if (row.key == 0) {
            EXPECT_EQ(tb_address(position).tb_key, 0) << row.fen;
            EXPECT_EQ(tb_answer(position), std::nullopt) << row.fen;
            ++without_table;
            continue;
        }
        expect_address(position, row);
        const TbAddress address = tb_address(position);
        EXPECT_EQ(TbProbeRaw(address.row, address.tb_half, row.index), row.raw) << row.fen;
        EXPECT_EQ(TbProbe(address.row, address.tb_half, row.index), row.score) << row.fen;
        EXPECT_EQ(tb_answer(position), row.score) << row.fen;
    }
    EXPECT_EQ(rows.size(), 500U);
    EXPECT_EQ(without_table, 3);
}

TEST_F(RealDataTest, ValuesFromPlainFiles) {
    expect_values(data_folder);
    for (const std::size_t id : {1U, 4U, 5U}) {
        EXPECT_EQ(TbCatalogue[id].decoder[0], nullptr);
    }
}

/// The compressed files alone, in a folder of their own.
TEST_F(RealDataTest, ValuesFromPackedFiles) {
    const TemporaryFolder folder;
    for (const char* const name : {"kqk", "kpk", "krk"}) {
        for (const char* const half : {".nbw.emd", ".nbb.emd"}) {
            const std::string file = std::string(name) + half;
            std::filesystem::copy_file(data_folder + file, file);
        }
    }
    expect_values("");
    for (const std::size_t id : {1U, 4U, 5U}) {
        EXPECT_NE(TbCatalogue[id].decoder[0], nullptr);
        EXPECT_NE(TbCatalogue[id].decoder[1], nullptr);
    }
}

}  // namespace
