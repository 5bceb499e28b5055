// UCI options: ranges, effects, and invalid input.
#include <gtest/gtest.h>

#include "folder.h"
#include "uci/options.h"
#include "uci/session.h"

namespace varn {
namespace {

auto values_of(const Options& o) {
    return std::tuple(o.hash_mb, o.ponder, o.own_book, o.book_file, o.move_overhead_ms, o.multi_pv, o.threads,
                      o.analyse_mode, o.about);
}

/// An `option` line.
struct ToldOption {
    std::string name, type, standard, lowest, highest;
};

std::vector<ToldOption> told_options() {
    std::vector<ToldOption> told;
    for (std::string line : split(options_text(), "\n")) {
        if (line.empty()) continue;
        EXPECT_TRUE(line.starts_with("option name ")) << line;
        const auto behind = [&line](const std::string& word) {
            const std::size_t found = line.find(word);
            if (found == std::string::npos) return std::string();
            const std::size_t start = found + word.size();
            return line.substr(start, word == " default " && line.find(" type string ") != std::string::npos
                                          ? std::string::npos
                                          : line.find(' ', start) - start);
        };
        const std::string name = line.substr(12, line.find(" type ") - 12);
        told.push_back({name, behind(" type "), behind(" default "), behind(" min "), behind(" max ")});
    }
    return told;
}

TEST(UciOptions, AcceptExactlyTheirRange) {
    const WorkingFolder folder;
    folder.write("book.dat", "e2e4\n");
    UciSession session;
    const auto set = [&](const std::string& name, const std::string& value) {
        return session.answer("setoption name " + name + " value " + value);
    };
    std::vector<std::string> names;
    for (const ToldOption& option : told_options()) {
        SCOPED_TRACE(option.name);
        names.push_back(option.name);
        if (option.type == "button") continue;
        const bool is_fixed = option.name == "UCI_EngineAbout";
        EXPECT_EQ(set(option.name, option.standard).empty(), !is_fixed) << "its own default";
        const auto before = values_of(session.uci.options);
        EXPECT_EQ(before, values_of(standard_options()));
        std::vector<std::string> wrong = {"", "x", "1x", "0x10", "1.5", "TRUE", "maybe", "99999999999999999999"};
        if (option.type == "spin") {
            wrong.push_back(std::to_string(std::stoll(option.lowest) - 1));
            wrong.push_back(std::to_string(std::stoll(option.highest) + 1));
            EXPECT_EQ(set(option.name, option.lowest), "");
            if (option.name != "Hash") {  // would use all memory
                EXPECT_EQ(set(option.name, option.highest), "");
            }
            set(option.name, option.standard);
        } else if (option.type == "check") {
            EXPECT_EQ(set(option.name, option.standard == "true" ? "false" : "true"), "");
            EXPECT_NE(values_of(session.uci.options), before);
            set(option.name, option.standard);
        } else if (is_fixed) {
            wrong = {"Somebody's"};
        } else {
            wrong.clear();
        }
        for (const std::string& value : wrong) {
            EXPECT_EQ(set(option.name, value).rfind("info string option " + option.name + " stays as it is: ", 0), 0U)
                << value;
            EXPECT_EQ(values_of(session.uci.options), before) << value;
        }
    }
    const std::vector<std::string> all = {
        "Hash",          "Clear Hash", "Ponder",  "OwnBook",         "Book File",
        "Move Overhead", "MultiPV",    "Threads", "UCI_AnalyseMode", "UCI_EngineAbout"};
    EXPECT_EQ(names, all);
    EXPECT_EQ(session.answer("setoption name move OVERHEAD value 12; setoption  name\tmultipv  value\t 4 \r"), "");
    EXPECT_EQ(session.uci.options.move_overhead_ms, 12);
    EXPECT_EQ(session.uci.options.multi_pv, 4);
    for (const char* line : {"setoption", "setoption name", "setoption name value 3", "setoption value 3",
                             "setoption name Hash 3 value 2", "setoption Hash value 3", "setoption name Has value 3"}) {
        EXPECT_TRUE(session.answer(line).starts_with("info string there is no option ")) << line;
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

TEST(UciOptions, TheBookIsForClockedGamesFromTheStart) {
    const WorkingFolder folder;
    folder.write("book.dat", "a2a4h7h5b2b4,Odd\n");
    folder.write("other.dat", "h2h4,Other\n");
    UciSession session;
    const auto is_from_book = [&](const std::string& lines) {
        const std::string said = session.search(lines);
        EXPECT_FALSE(best_move_in(said).empty());
        return said.starts_with("info string from the book\n");
    };
    const std::string clocked = "go wtime 200 btime 200";
    EXPECT_FALSE(is_from_book("position startpos; " + clocked)) << "closed until it is asked for";
    EXPECT_EQ(session.answer("setoption name OwnBook value true"), "");
    EXPECT_EQ(session.search(clocked), "info string from the book\nbestmove a2a4\n");
    EXPECT_EQ(best_move_in(session.search("position startpos moves a2a4 h7h5; " + clocked)), "b2b4");
    session.send("position startpos");
    for (const char* words : {"go depth 1", "go nodes 50", "go movetime 5", "go wtime 50 searchmoves e2e4"}) {
        EXPECT_FALSE(is_from_book(words)) << words;
    }
    EXPECT_FALSE(is_from_book("go infinite; stop"));
    EXPECT_FALSE(is_from_book("go ponder wtime 50; ponderhit"));
    EXPECT_FALSE(is_from_book("position startpos moves b2b4; " + clocked));
    EXPECT_FALSE(is_from_book("position fen rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq - 0 1; " + clocked));
    EXPECT_FALSE(is_from_book("position startpos; setoption name UCI_AnalyseMode value true; " + clocked));
    session.said();
    session.send("setoption name UCI_AnalyseMode value false; setoption name Book File value none.dat");
    EXPECT_EQ(session.said(), "info string option Book File stays as it is: there is no book none.dat\n");
    EXPECT_EQ(best_move_in(session.search(clocked)), "a2a4");
    EXPECT_EQ(session.answer("setoption name Book File value other.dat"), "");
    EXPECT_EQ(best_move_in(session.search(clocked)), "h2h4");
    // A file name may contain blanks and the word "value".
    folder.write("my value book", "g2g4,Third\n");
    EXPECT_EQ(session.answer("setoption name Book File value  my value book "), "");
    EXPECT_EQ(best_move_in(session.search(clocked)), "g2g4");
}

}  // namespace
}  // namespace varn
