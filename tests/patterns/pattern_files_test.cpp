// Input and output files of the annealing, and full runs.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>

#include "base/file.h"
#include "folder.h"
#include "patterns/anneal.h"
#include "patterns/pattern_files.h"
#include "positions.h"

namespace varn {
namespace {

/// Limits the size of files while it exists.
class FileLimit {
public:
    explicit FileLimit(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limits = {bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limits);
    }
    ~FileLimit() { setrlimit(RLIMIT_FSIZE, &before_); }
    FileLimit(const FileLimit&) = delete;
    FileLimit& operator=(const FileLimit&) = delete;

private:
    rlimit before_ = {};
};

class PatternFiles : public ::testing::Test {
protected:
    void write(const std::string& text) const { folder_.write(positions_file_name, text); }
    std::string written() const { return folder_.read(patterns_file_name); }
    std::vector<std::string> names() const { return folder_.names(); }
    const Folder& folder() const { return folder_; }
    /// The output of a run that continues the previous one.
    std::string anneal() {
        const auto game = new_game();
        return printed([&] {
            anneal_kpk(
                run_, *game, [](const PositionRemarks&) {}, 1000);
        });
    }

    AnnealRun run_;

private:
    WorkingFolder folder_;
};

const std::string start_text = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";
const std::string some_text = "8/8/8/8/8/8/7P/5k1K w - - 0 1";
const std::string other_text = "8/8/8/8/8/8/7P/4k2K w - - 0 1";
constexpr Pattern some_position = {{1, 1 << 8, 1 << 2}};

TEST_F(PatternFiles, LoadTheDrawnPositionsFromAnyLines) {
    const std::string nul("\0\t0\n", 4);
    // Text, number of drawn positions, last position read, number of lines.
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
        const auto positions = load_positions(positions_file_name, *game, [](const PositionRemarks&) {});
        EXPECT_EQ(positions->drawn.size(), drawn) << text;
        EXPECT_EQ(positions->lines, lines) << text;
        EXPECT_EQ(position_text(*game), position_text(*game_from(last_read))) << text;
        if (last_read == some_text) {
            EXPECT_EQ(positions->drawn.at(0), some_position);
        }
        if (drawn == 0) continue;
        EXPECT_TRUE(anneal().ends_with("finished dumping wkpk.eb\n")) << text;
    }
}

TEST_F(PatternFiles, ContainTheBoxesInOrder) {
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
    EXPECT_EQ(anneal(),
              "loading precomputed data in memory...\nfinished loading, 1 patterns in memory.\nshuffling...\n"
              "starting annealing process...\nfinished dumping wkpk.eb\n");
    EXPECT_EQ(in_order(*run_.list), std::vector{some_position});
    EXPECT_EQ(written(), "1 w\n1 256 4 0\n");
}

TEST_F(PatternFiles, RemarksOnEachPositionAreReported) {
    write("x\t0\n" + some_text + "\t0\n8/8/8/8/8/8/8/8 x - e3\t1\n");
    std::string told;
    const auto game = new_game();
    load_positions(positions_file_name, *game, [&](const PositionRemarks& remarks) {
        told += remarks.foreign_piece ? 'p' : remarks.foreign_side ? 's' : '-';
    });
    EXPECT_EQ(told, "p-s");
}

TEST_F(PatternFiles, AreWrittenAtomically) {
    const PatternList list(std::vector<Pattern>{some_position}, 1);
    const auto dump = [&] { dump_patterns(patterns_file_name, list); };
    std::filesystem::create_directories("wkpk.eb/in the way");  // can't be renamed to
    EXPECT_EQ(printed(dump), "error: cannot output evalubase file.\n");
    EXPECT_EQ(names(), std::vector<std::string>{"wkpk.eb"});
    std::filesystem::remove_all("wkpk.eb");
    const std::string long_text(10000, 'x');
    {
        const FileLimit limit(9999);
        EXPECT_FALSE(write_whole_file("wkpk.eb", long_text));
        EXPECT_FALSE(can_write_whole_file("wkpk.eb", long_text));
        EXPECT_FALSE(write_whole_file("no folder/wkpk.eb", ""));
    }
    EXPECT_EQ(names(), std::vector<std::string>{});
    // Links are replaced, not followed.
    folder().write("another's", "old");
    std::filesystem::create_symlink("another's", "wkpk.eb");
    EXPECT_TRUE(can_write_whole_file("wkpk.eb", long_text));
    EXPECT_EQ(folder().read("wkpk.eb"), "old");
    EXPECT_TRUE(write_whole_file("wkpk.eb", long_text));
    EXPECT_EQ(folder().read("another's"), "old");
    EXPECT_EQ(folder().read("wkpk.eb"), long_text);
    EXPECT_EQ(names(), (std::vector<std::string>{"another's", "wkpk.eb"}));
}

TEST_F(PatternFiles, ResultsSurviveWriteErrors) {
    write(some_text + "\t0\n");
    const std::string error = "error: cannot output evalubase file.\n";
    std::filesystem::create_directories("wkpk.eb/in the way");
    EXPECT_TRUE(anneal().ends_with("\nstarting annealing process...\n" + error));
    EXPECT_FALSE(run_.is_written);
    EXPECT_NE(run_.list, nullptr);
    std::filesystem::remove_all("wkpk.eb");
    EXPECT_EQ(anneal(), "finished dumping wkpk.eb\n");
    EXPECT_TRUE(run_.is_written);
    EXPECT_EQ(written(), "1 w\n1 256 4 0\n");
}

TEST_F(PatternFiles, ResultsAreRescuedBeforeExit) {
    const std::string error = "error: cannot output evalubase file.\n";
    write(some_text + "\t0\n");
    bool is_settled = false;
    const auto settle = [&] { is_settled = settle_patterns(run_); };
    EXPECT_EQ(printed(settle), "");
    EXPECT_TRUE(is_settled);
    std::filesystem::create_directories("wkpk.eb/in the way");
    anneal();
    std::filesystem::create_directory("temporary");
    std::string said, said_without;
    {
        const Environment folder("TMPDIR", "temporary");
        said = printed(settle);
    }
    {
        const Environment none("TMPDIR", "no folder");
        said_without = printed(settle);
    }
    const std::string begins = error + "the patterns are in temporary/wkpk.eb.";
    ASSERT_TRUE(said.starts_with(begins) && said.ends_with(".\n")) << said;
    const std::size_t name_start = said.find("temporary");
    EXPECT_EQ(folder().read(said.substr(name_start, said.size() - 2 - name_start)), "1 w\n1 256 4 0\n");
    EXPECT_EQ(said_without, error + "the patterns are lost.\n");
    EXPECT_FALSE(is_settled);
    std::filesystem::remove_all("wkpk.eb");
    EXPECT_EQ(printed(settle), "finished dumping wkpk.eb\n");
    EXPECT_TRUE(is_settled);
}

}  // namespace
}  // namespace varn
