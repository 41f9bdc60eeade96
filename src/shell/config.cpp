// SPDX-License-Identifier: MIT
// The file is a stream of words: a key ends in a colon, its value is the next word. A word that is
// no key is skipped alone.
#include "shell/config.h"

#include <array>
#include <fstream>
#include <string>
#include <string_view>

#include "search/hash_table.h"
#include "shell/engine_state.h"
#include "shell/log.h"
#include "shell/word_reader.h"

namespace {

constexpr const char* config_name = "corvane.ini";

/// Whether the value is "on"; every other word, or none, means off.
bool value_is_on(WordReader& in) {
    const auto value = in.word();
    return value && equal_caseless(*value, "on");
}

void set_if_number(WordReader& in, std::int32_t& setting) {
    if (const auto number = in.integer()) {
        setting = *number;
    }
}

struct ConfigKey {
    std::string_view word;
    void (*read_value)(WordReader&);
};

constexpr std::array<ConfigKey, 9> config_keys = {{
    {"hash:", [](WordReader& in) { set_if_number(in, hash_mb); }},
    {"TbPath:",
     [](WordReader& in) {
         if (auto path = in.word()) {
             engine.TbPath = *path;
         }
     }},
    {"resign:", [](WordReader& in) { engine.resign_on = value_is_on(in); }},
    {"TBCacheSize:", [](WordReader& in) { set_if_number(in, engine.tb_cache_megabytes); }},
    {"check:",
     [](WordReader& in) {
         // Intended(check-stays-on): once on, another word does not take it back.
         if (value_is_on(in)) {
             engine.check_on = true;
         }
     }},
    {"strong:",
     [](WordReader& in) {
         if (const auto level = in.integer()) {
             set_strong_level(*level);
         }
     }},
    {"log:", [](WordReader& in) { log_enabled = value_is_on(in); }},
    {"add_info_in_log:", [](WordReader& in) { add_info_in_log = value_is_on(in); }},
    {"new_log_after_start:", [](WordReader& in) { new_log_after_start = value_is_on(in); }},
}};

void set_defaults() {
    engine.TbPath.clear();
    hash_mb = usual_hash_mb;
    engine.resign_on = false;
    log_enabled = true;
    new_log_after_start = false;
    add_info_in_log = false;
}

void write_default_file() {
    std::ofstream file(config_name);
    file << "hash: 16\n"
            "resign: off\n"
            "      \n"
            "      \n";
}

}  // namespace

bool read_config_words(std::istream& stream) {
    WordReader in(stream);
    bool found = false;
    while (const auto word = in.word()) {
        for (const ConfigKey& key : config_keys) {
            if (equal_caseless(*word, key.word)) {
                key.read_value(in);
                found = true;
                break;
            }
        }
    }
    return found;
}

void read_config() {
    set_defaults();
    bool found = false;
    {
        std::ifstream file(config_name);
        found = read_config_words(file);
    }
    if (!found) {
        mirror("Can not open Corvane.ini file!", end_line);
        write_default_file();
    }
}
