#include "frontend/configuration.h"

#include <cstdio>
#include <string_view>

#include "base/file.h"
#include "frontend/numbers.h"

namespace varn {

namespace {

enum class Zero : bool { keeps_default, is_value };

struct Setting {
    std::string_view key;  // including the blank after it
    std::int32_t& value;
    Zero zero;
};

void read_setting(Configuration& configuration, std::string_view line) {
    const Setting settings[] = {
        {"hash ", configuration.tables.hash_bits, Zero::keeps_default},
        {"qhash ", configuration.tables.qhash_bytes, Zero::keeps_default},
        {"phash ", configuration.tables.phash_bytes, Zero::keeps_default},
        {"pondering ", configuration.pondering_enabled, Zero::is_value},
    };
    for (const Setting& setting : settings) {
        if (!line.starts_with(setting.key)) continue;
        line.remove_prefix(setting.key.size());
        const auto number = take_number(line);
        if (number && (*number != 0 || setting.zero == Zero::is_value)) setting.value = *number;
        return;
    }
}

}  // namespace

std::optional<Configuration> read_configuration() {
    const File file = open_for_reading("varn.ini");
    if (file == nullptr) return std::nullopt;
    Configuration configuration;
    // The rest of a longer line is read as another line. Kept: docs/compatibility.md#long-lines-of-the-settings
    constexpr int most_lines = 10000;  // limit for endless files
    char line[100];
    for (int n = 0; n < most_lines && std::fgets(line, sizeof line, file.get()) != nullptr; ++n) {
        read_setting(configuration, line);
    }
    return configuration;
}

}  // namespace varn
