#include "frontend/configuration.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "board/file.h"
#include "board/output.h"
#include "eval/pawns.h"
#include "frontend/numbers.h"
#include "search/settings.h"

namespace varn {

std::int32_t pondering_enabled = 1;

namespace {

struct Setting {
    std::string_view key;  // with the blank behind it
    std::int32_t* value;
    bool zero_counts;  // where 0 is a value; elsewhere it leaves what was there
};

constexpr Setting settings[] = {
    {"hash ", &hash_bits, false},
    {"qhash ", &qhash_bytes, false},
    {"phash ", &phash_bytes, false},
    {"pondering ", &pondering_enabled, true},
};

void read_setting(std::string_view line) {
    for (const Setting& setting : settings) {
        if (!line.starts_with(setting.key)) continue;
        line.remove_prefix(setting.key.size());
        const auto number = take_number(line);
        if (number && (*number != 0 || setting.zero_counts)) *setting.value = *number;
        return;
    }
}

}  // namespace

void read_configuration() {
    const File file = open_for_reading("varn.ini");
    if (file == nullptr) {
        say_text("error:  varn.ini cannot be found.\n");
        std::exit(1);
    }
    // A longer line goes on as a line of its own.
    char line[100];
    while (std::fgets(line, sizeof line, file.get()) != nullptr) read_setting(line);
}

}  // namespace varn
