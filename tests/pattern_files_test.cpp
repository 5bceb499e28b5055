// The files of the annealing, and its command at the console.
#include <gtest/gtest.h>

#include <filesystem>

#include "patterns/anneal.h"
#include "patterns/pattern_files.h"
#include "positions.h"
#include "process.h"

namespace varn {
namespace {

class PatternFiles : public ::testing::Test {
protected:
    void write(const std::string& text) const { folder_.write(positions_file_name, text); }
    std::string written() const { return folder_.read(patterns_file_name); }

private:
    WorkingFolder folder_;
};

const std::string start_text = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";
const std::string some_text = "8/8/8/8/8/8/7P/5k1K w - - 0 1";
const std::string other_text = "8/8/8/8/8/8/7P/4k2K w - - 0 1";
constexpr Pattern some_position = {{1, 1 << 8, 1 << 2}};

TEST_F(PatternFiles, TakeTheDrawnPositionsOfWhateverLinesThereAre) {
    const std::string nul("\0\t0\n", 4);
    // The text, how many positions are drawn, the last one read, and how many lines there are.
    const std::tuple<std::string, std::size_t, std::string, std::uint64_t> cases[] = {
        {some_text + "\t0", 1, some_text, 1},
        {some_text + "\t+00 of 3\r\n", 1, some_text, 1},
        {some_text + "\t -0\t5\n", 1, some_text, 1},
        {some_text + "\t0\n" + other_text + "\t99999999999999999999\n", 1, other_text, 2},
        {some_text + "\t0\n" + other_text + "\t\n" + other_text + "\tx0\n" + other_text + " 0\n\n", 1, some_text, 5},
        {some_text + "\t0\n" + nul + other_text + "\t2", 1, other_text, 3},
        {some_text + "\t0" + std::string(300, '0') + "\n", 1, some_text, 5},
        {std::string(160, '\xff') + "\n", 0, start_text, 3},
        {"", 0, start_text, 0},
        {"8/8/8/8/8/8/8/8 w - -\t0\nKkPKkP2/8/8/8/8/8/8/8 b - -\t0\n", 2, "KkPKkP2/8/8/8/8/8/8/8 b - -", 2},
    };
    for (const auto& [text, drawn, last_read, lines] : cases) {
        write(text);
        const auto game = game_from(start_text);
        const auto positions = load_positions(positions_file_name, game.get());
        EXPECT_EQ(positions->drawn.size(), drawn) << text;
        EXPECT_EQ(positions->lines, lines) << text;
        EXPECT_EQ(position_text(game.get()), position_text(game_from(last_read).get())) << text;
        if (last_read == some_text) {
            EXPECT_EQ(positions->drawn.at(0), some_position);
        }
        if (drawn == 0) continue;
        EXPECT_TRUE(printed([&] { anneal_kpk(game.get(), 1000); }).ends_with("finished dumping wkpk.eb\n")) << text;
    }
}

TEST_F(PatternFiles, HoldTheBoxesInOrder) {
    EXPECT_EQ(board_number(0), "0");
    EXPECT_EQ(board_number(bit_mask(32) - 1), "4294967295");
    EXPECT_EQ(board_number(bit_mask(a8)), "21474836480");
    EXPECT_EQ(board_number(~Bitboard{0}), "42949672954294967295");
    PatternList list(std::vector<Pattern>{{{2, 1 << 8, bit_mask(a8)}}, some_position}, 2);
    EXPECT_EQ(printed([&] { dump_patterns(patterns_file_name, list); }), "finished dumping wkpk.eb\n");
    EXPECT_EQ(written(), "2 w\n2 256 21474836480 0\n1 256 4 0\n");
    list.side = 1;
    printed([&] { dump_patterns(patterns_file_name, list); });
    EXPECT_TRUE(written().starts_with("2 b\n2 "));

    write(some_text + "\t0\n");
    const auto game = game_from(start_text);
    EXPECT_EQ(printed([&] { EXPECT_EQ(in_order(*anneal_kpk(game.get(), 1000)), std::vector{some_position}); }),
              "loading precomputed data in memory...\nfinished loading, 1 patterns in memory.\nshuffling...\n"
              "starting annealing process...\nfinished dumping wkpk.eb\n");
    EXPECT_EQ(written(), "1 w\n1 256 4 0\n");
}

TEST_F(PatternFiles, ComeIntoBeingAsAWholeOrNotAtAll) {
    const PatternList list(std::vector<Pattern>{some_position}, 1);
    const auto dump = [&] { dump_patterns(patterns_file_name, list); };
    const std::string error = "error: cannot output evalubase file.\n";
    std::filesystem::create_directory("wkpk.eb.tmp");  // can't be opened
    EXPECT_EQ(printed(dump), error);
    std::filesystem::remove("wkpk.eb.tmp");
    std::filesystem::create_directories("wkpk.eb/in the way");  // can't be renamed to
    EXPECT_EQ(printed(dump), error);
    EXPECT_FALSE(std::filesystem::exists("wkpk.eb.tmp"));
    std::filesystem::remove_all("wkpk.eb");
    std::filesystem::create_symlink("/dev/full", "wkpk.eb.tmp");  // can't be written
    EXPECT_EQ(printed(dump), error);
    EXPECT_FALSE(std::filesystem::exists("wkpk.eb"));
    EXPECT_EQ(printed(dump), "finished dumping wkpk.eb\n");
}

TEST_F(PatternFiles, AreKeptWhereTheyCannotBeWritten) {
    write(some_text + "\t0\n");
    const auto game = game_from(start_text);
    const PatternList* patterns = nullptr;
    const auto anneal = [&] { return printed([&] { patterns = anneal_kpk(game.get(), 1000); }); };
    const std::string error = "error: cannot output evalubase file.\n";
    std::filesystem::create_symlink("/dev/full", "wkpk.eb.tmp");  // no room: it is seen before the work begins
    EXPECT_TRUE(anneal().ends_with("\nshuffling...\n" + error));
    EXPECT_EQ(patterns, nullptr);
    std::filesystem::create_directories("wkpk.eb/in the way");
    EXPECT_TRUE(anneal().ends_with("\nstarting annealing process...\n" + error));
    EXPECT_TRUE(patterns_are_unwritten());
    EXPECT_NE(patterns, nullptr);
    std::filesystem::remove_all("wkpk.eb");
    EXPECT_EQ(anneal(), "finished dumping wkpk.eb\n");
    EXPECT_FALSE(patterns_are_unwritten());
    EXPECT_EQ(written(), "1 w\n1 256 4 0\n");
}

// --- At the console ------------------------------------------------------------------------------------------------

/// The files that every run needs, and the positions.
Files with_positions(const std::string& text) {
    Files files = default_files();
    files[positions_file_name] = text;
    return files;
}

TEST(PatternCommands, RefuseWhatCannotBeAnnealed) {
    const std::string loading = "loading precomputed data in memory...\n";
    const std::string none = loading + "finished loading, 0 patterns in memory.\nerror: no patterns to anneal.\n";
    // The game goes on where no position was read: what it is after the command, and after a step back from there.
    const std::string begun = "EPD string is: " + start_text + "\n";
    const std::string moved = "EPD string is: rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq -\n";
    const std::string read = "EPD string is: 8/8/8/8/8/8/7P/5k1K w - -\n";
    const std::tuple<Files, std::string, std::string> cases[] = {
        {default_files(), loading + "error: cannot open kpkbb.\nVarn> " + moved, begun},
        {with_positions("nothing\n"), none + "Varn> " + moved, begun},
        {with_positions(some_text + "\t1\n"), none + "Varn> " + read, read},
    };
    for (const auto& [files, after, back] : cases) {
        const std::string output = run_console("pvp\ne2e4\nkpkbb\nepd\nback\nepd\n", files).output;
        EXPECT_TRUE(output.starts_with("Varn> Varn> Varn> " + after)) << output;
        EXPECT_TRUE(output.ends_with(back + "Varn> ")) << output;
    }
    const Outcome foreign = run_console("kpkbb\nepd\n", with_positions(some_text + "\t0\nx" + some_text + "\t0\n"));
    EXPECT_EQ(foreign.output, "Varn> " + loading + "error: unrecognised character in EPD string.\n");
    EXPECT_EQ(foreign.status, 1);
}

}  // namespace
}  // namespace varn
