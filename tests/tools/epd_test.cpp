// Converting EPD files to suites, and the shipped suites.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

#include "epd.h"
#include "positions.h"
#include "tables.h"

namespace varn {
namespace {

TEST(Epd, ConvertsToTheEnginesNotation) {
    std::string epd = "  \t\n", suite, messages;
    int number = 1, refused = 0;
    for (const auto& row : table_rows("epd.txt")) {
        epd += row.at(0) + (++number % 2 == 0 ? "\n" : "\r\n");
        if (!row.at(1).empty()) suite += row.at(1) + '\n';
        if (!row.at(2).empty()) messages += "line " + std::to_string(number) + ": " + row.at(2) + '\n';
        refused += row.at(2).starts_with("refused");
    }
    epd.pop_back();  // the last line may lack a newline
    std::istringstream in(epd);
    std::ostringstream out, said;
    EXPECT_EQ(printed([&] { EXPECT_EQ(convert_epd(in, out, said), refused); }), "");
    EXPECT_EQ(out.str(), suite);
    EXPECT_EQ(said.str(), messages);
}

/// The lines of a shipped suite by id.
std::map<std::string, std::string> shipped_suite(const std::string& name) {
    std::ifstream file(std::filesystem::path(VARN_DATA_FOLDER) / "suites" / name);
    std::map<std::string, std::string> lines;
    const std::regex id("id \"([^\"]+)\";$");
    std::smatch found;
    for (std::string line; std::getline(file, line);) {
        EXPECT_TRUE(std::regex_search(line, found, id)) << line;
        EXPECT_TRUE(lines.emplace(found[1], line).second) << line;
    }
    return lines;
}

TEST(ShippedSuites, ContainLegalMovesInTheEnginesNotation) {
    const std::map<std::string, std::string> notes = {{"BK.12", "will count as solved, too: f5"}};
    for (const auto& [name, size] : {std::pair{"bratko-kopec.epd", 24U}, {"mates.epd", 32U}, {"tactics.epd", 30U}}) {
        const auto suite = shipped_suite(name);
        EXPECT_EQ(suite.size(), size) << name;
        for (const auto& [id, line] : suite) {
            const Conversion conversion = convert_epd_line(line);
            EXPECT_EQ(conversion.line, line) << conversion.refusal;
            EXPECT_EQ(conversion.note, notes.contains(id) ? notes.at(id) : "") << id;
        }
    }
}

}  // namespace
}  // namespace varn
