// UCI options: ranges, effects, and invalid input.
#include <gtest/gtest.h>

#include "folder.h"
#include "tables.h"
#include "uci/options.h"
#include "uci/session.h"

namespace varn {
namespace {

auto values_of(const Options& o) {
    return std::tuple(o.hash_mb, o.ponder, o.own_book, o.book_file, o.move_overhead_ms, o.multi_pv, o.threads,
                      o.analyse_mode, o.about);
}

TEST(UciOptions, AcceptExactlyTheirRange) {
    const WorkingFolder folder;
    folder.write("book.dat", "e2e4\n");
    UciSession session;
    const auto standard = values_of(session.uci.options);
    EXPECT_EQ(standard, values_of(standard_options()));
    const auto values = [](const std::string& field) {
        return field.empty() ? std::vector<std::string>() : split(field, ", ");
    };
    for (const auto& row : table_rows("options.txt")) {
        const std::string set = "setoption name " + row.at(0) + " value ";
        for (const std::string& value : values(row.at(1))) {
            EXPECT_EQ(session.answer(set + value), "") << set << value;
            EXPECT_EQ(values_of(session.uci.options) == standard, value == row.at(3)) << set << value;
            session.answer(set + row.at(3));
        }
        std::vector<std::string> wrong = values(row.at(2));
        const std::string text = options_text();
        if (row.at(0) == "Hash") wrong.push_back(std::to_string(std::stoll(text.substr(text.find(" max ") + 5)) + 1));
        for (const std::string& value : wrong) {
            const std::string said = session.answer(set + value);
            EXPECT_TRUE(said.starts_with("info string option " + row.at(0) + " stays as it is: ")) << set << value;
            EXPECT_EQ(values_of(session.uci.options), standard) << set << value;
        }
    }
}

TEST(UciOptions, HashIsTheSizeOfTheTable) {
    UciSession session;
    TranspositionTable& table = session.uci.search->tables.transposition_table;
    for (const int megabytes : {1, 2, 3, 17, 64, 100}) {
        EXPECT_EQ(session.answer("setoption name Hash value " + std::to_string(megabytes)), "");
        // The next power of two doesn't fit.
        const std::uint64_t bytes = (std::uint64_t{1} << hash_bits_for(megabytes)) * sizeof(HashEntry);
        EXPECT_LE(bytes, std::uint64_t(megabytes) << 20U);
        EXPECT_GT(2 * bytes, std::uint64_t(megabytes) << 20U);
        const auto other = new_search();
        EXPECT_EQ(allocate_tables(*other, {.hash_bits = hash_bits_for(megabytes)}), TableFault::none);
        EXPECT_EQ(hash_stats_text(table), hash_stats_text(other->tables.transposition_table));
    }
    EXPECT_LE(hash_bits_for(1 << 30), 30);
    session.answer("setoption name Hash value 1");
    session.search("position startpos; go depth 8");
    EXPECT_GT(hash_permille(table), 0);
    EXPECT_EQ(session.answer("setoption name Clear Hash"), "");
    EXPECT_EQ(hash_permille(table), 0);
    // A running search sends its move first.
    EXPECT_EQ(answers_in(session.answer("go infinite; setoption name Hash value 2")).size(), 1U);
}

}  // namespace
}  // namespace varn
